// The program killed (SIGKILL, by strace) as it enters its k-th write, rename
// or removal, for every k, in an open, a recalculation, an export, a setup
// row inserted and an update: every table and setup file reads back whole,
// as before or as after, never half-written or empty.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <map>

#include "markbook/setup_model.h"
#include "store/dbf_table.h"
#include "tests/support/reports_app_helpers.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

const QStringList kCalls{"write", "pwrite64", "rename", "renameat2", "unlink", "unlinkat", "sendfile", "ftruncate"};

// What a reader finds in every table and setup file under a drive root: a
// table as its rows of trimmed texts, a setup as its 200 values.
using State = std::map<QString, QList<QStringList>>;

State state_of(const QString& root) {
    State state;
    QDirIterator it(root, {"*.dbf", "*.DBF", "setup_*.txt"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QList<QStringList>& rows = state[QDir(root).relativeFilePath(path)];
        if (!path.endsWith(".txt")) {
            rows = testing::table_rows(path);
            continue;
        }
        for (const SetupRow& r : MarkBookSetup::from_file_bytes(testing::read_bytes(path)).rows)
            rows << QStringList{r.name, r.total, r.target, r.out_of, r.cycle};
    }
    return state;
}

struct CrashSafety : ::testing::Test {
    QTemporaryDir work;
    QString pristine = work.filePath("pristine");

    void SetUp() override {
        ASSERT_EQ(testing::run_program(pristine, {"demo", "--data", pristine + "/data"}).exit_code, 0);
    }
    // Runs the command under strace on a fresh copy of the pristine drive at
    // `root`, %DATA% standing for its data folder, killed as it enters `call`
    // for the k-th time (k = 0: not at all; `trace` names a file to log the
    // calls to). Gives the exit code, -1 when killed.
    int traced(const QString& root, QStringList command, const QString& call, int k,
               const QString& trace = "/dev/null") {
        QDir(root).removeRecursively();
        QProcess::execute("cp", {"-a", pristine, root});
        QProcess p;
        const QString inject = QString("inject=%1:signal=KILL:when=%2").arg(call).arg(k);
        testing::start_traced(p, root, kCalls.join(','), trace, command.replaceInStrings("%DATA%", root + "/data"),
                              k > 0 ? QStringList{"-e", inject} : QStringList());
        p.waitForFinished(60000);
        return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    }
    // The state a command leaves when it runs through, and how often it makes
    // each call on the way.
    State state_after(const QStringList& command, std::map<QString, int>* counts = nullptr) {
        const QString root = work.filePath("through"), trace = work.filePath("trace.txt");
        EXPECT_EQ(traced(root, command, "", 0, trace), 0) << command.join(' ').toStdString();
        for (const QByteArray& line : testing::read_bytes(trace).split('\n'))
            for (const QString& call : kCalls)
                if (counts && line.contains(" " + call.toLatin1() + "(")) ++(*counts)[call];
        const State state = state_of(root);
        QDir(root).removeRecursively();
        return state;
    }

    // Every kill point of the command; returns how many were tried. A table
    // may also be as `step` (the open before a recalculation) leaves it.
    int kill_everywhere(const QStringList& command, const QStringList& step = {}) {
        const State first = state_of(pristine);
        const State before = step.isEmpty() ? first : state_after(step);
        std::map<QString, int> counts;
        const State after = state_after(command, &counts);
        EXPECT_NE(first, after) << "the command changed nothing";
        int tried = 0;
        for (const auto& [call, count] : counts) {
            for (int k = 1; k <= count; ++k, ++tried) {
                const QString root = work.filePath(QString("run-%1-%2").arg(call).arg(k));
                traced(root, command, call, k);
                const State found = state_of(root);
                const QString where = QString("%1 killed at %2 #%3").arg(command.first(), call).arg(k);
                for (const auto& entry : found) {
                    SCOPED_TRACE((where + ": " + entry.first).toStdString());
                    const auto holds = [&](const State& s) {
                        return s.count(entry.first) && s.at(entry.first) == entry.second;
                    };
                    EXPECT_TRUE(holds(first) || holds(before) || holds(after)) << entry.second.size() << " rows";
                }
                for (const auto& [file, rows] : first)
                    EXPECT_TRUE(found.count(file)) << file.toStdString() << " is gone: " << where.toStdString();
                QDir(root).removeRecursively();
            }
        }
        std::printf("[ kill points ] %s: %d\n", qPrintable(command.first()), tried);
        return tried;
    }
};

TEST_F(CrashSafety, EveryTableReadsBackWholeBeforeOrAfter) {
    int tried = 0;
    tried += kill_everywhere({"open", "--data", "%DATA%", "--series", "1"});
    tried += kill_everywhere({"recalc", "--data", "%DATA%", "--series", "3"},
                             {"open", "--data", "%DATA%", "--series", "3"});
    tried += kill_everywhere({"export", "--data", "%DATA%", "--series", "4", "--task", "1"});
    // A row inserted in a setup: the setup file saved, every learner's marks moved.
    tried += kill_everywhere({"setup", "insert", "--data", "%DATA%", "--series", "1", "--line", "3"});
    // The update after a setup save, a learner gone from the class list and one come.
    {
        auto list = DbfTable::open(pristine + "/data/punte5.dbf");
        ASSERT_TRUE(list);
        list->MoveFirst();
        ASSERT_TRUE(list->Edit());
        list->set_value(0, QString("99999"));
        list->set_value(1, QString("Nuwe, Leerder"));
        ASSERT_TRUE(list->Update());
    }
    tried += kill_everywhere({"sync", "--data", "%DATA%", "--series", "5"});
    std::printf("[ kill points ] in all: %d\n", tried);
    EXPECT_GT(tried, 20);
}

}  // namespace
}  // namespace veldo
