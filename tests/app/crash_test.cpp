// The program killed (SIGKILL) at every write, rename and removal it makes
// during an open (the rebuild), a recalculation, an export and the update
// after a setup save: every table and setup file reads back whole, holding
// the state from before or from after, never a half-written record or an
// empty file. strace plays the kill: it stops the program as it enters the
// k-th such call, for every k.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <map>

#include "markbook/setup_model.h"
#include "store/dbf_table.h"
#include "tests/support/program_run.h"
#include "util/text_helpers.h"

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
        if (path.endsWith(".txt")) {
            QFile f(path);
            f.open(QIODevice::ReadOnly);
            for (const SetupRow& r : MarkBookSetup::from_file_bytes(f.readAll()).rows)
                rows << QStringList{r.name, r.total, r.target, r.out_of, r.cycle};
            continue;
        }
        DbfError error;
        auto t = DbfTable::open(path, &error);
        if (!t) {
            rows << QStringList{"unreadable: " + dbf_error_message(error, false)};
            continue;
        }
        for (t->MoveFirst(); !t->Eof(); t->MoveNext()) {
            QStringList r;
            for (int f = 0; f < t->field_count(); ++f) r << toets_null_text(t->value(f)).trimmed();
            rows << r;
        }
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
    // `root`, %DATA% standing for its data folder. Gives the exit code, -1
    // when killed.
    int traced(const QString& root, const QStringList& strace_args, QStringList command) {
        QDir(root).removeRecursively();
        QProcess cp;
        cp.start("cp", {"-a", pristine, root});
        cp.waitForFinished(30000);
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("KESTRALIN_DRIVE", root);
        p.setProcessEnvironment(env);
        command.replaceInStrings("%DATA%", root + "/data");
        p.start("strace", QStringList{"-f", "-qq", "-e", "trace=" + kCalls.join(',')} + strace_args +
                              QStringList{VELDO_PROGRAM} + command);
        p.waitForFinished(60000);
        return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    }
    // The command killed as it enters call `call` for the `k`-th time (k = 0:
    // not at all). Gives the drive root used.
    QString run_killed(const QStringList& command, const QString& call, int k, int* exit_code) {
        const QString root = work.filePath(QString("run-%1-%2").arg(call).arg(k));
        QStringList args{"-o", "/dev/null"};
        if (k > 0) args << "-e" << QString("inject=%1:signal=KILL:when=%2").arg(call).arg(k);
        *exit_code = traced(root, args, command);
        return root;
    }
    // How often the command makes each call, run through to the end.
    std::map<QString, int> calls_made(const QStringList& command) {
        const QString root = work.filePath("count"), trace = work.filePath("count.txt");
        traced(root, {"-o", trace}, command);
        std::map<QString, int> counts;
        QFile f(trace);
        f.open(QIODevice::ReadOnly);
        while (!f.atEnd()) {
            const QByteArray line = f.readLine();
            for (const QString& call : kCalls)
                if (line.contains(" " + call.toLatin1() + "(")) ++counts[call];
        }
        QDir(root).removeRecursively();
        return counts;
    }
    // The state a command leaves when it runs through.
    State state_after(const QStringList& command) {
        int code = 0;
        const QString done = run_killed(command, "write", 0, &code);
        EXPECT_EQ(code, 0) << command.join(' ').toStdString();
        const State state = state_of(done);
        QDir(done).removeRecursively();
        return state;
    }

    // Every kill point of the command; returns how many were tried. A table
    // may also be as a first step of the command leaves it (`step`: opening
    // the book, which rebuilds it, before its totals are recalculated).
    int kill_everywhere(const QStringList& command, const QStringList& step = {}) {
        const State first = state_of(pristine);
        const State before = step.isEmpty() ? first : state_after(step);
        const State after = state_after(command);
        EXPECT_NE(first, after) << "the command changed nothing";
        int tried = 0, code = 0;
        for (const auto& [call, count] : calls_made(command)) {
            for (int k = 1; k <= count; ++k, ++tried) {
                const QString root = run_killed(command, call, k, &code);
                const State found = state_of(root);
                for (const auto& [file, rows] : found) {
                    SCOPED_TRACE(QString("%1 killed at %2 #%3: %4").arg(command.first(), call).arg(k).arg(file).toStdString());
                    const auto b = before.find(file), a = after.find(file), f = first.find(file);
                    const bool as_before = (b != before.end() && b->second == rows) || (f != first.end() && f->second == rows);
                    const bool as_after = a != after.end() && a->second == rows;
                    EXPECT_TRUE(as_before || as_after)
                        << rows.size() << " rows, before " << (b == before.end() ? -1 : b->second.size()) << ", after "
                        << (a == after.end() ? -1 : a->second.size());
                }
                for (const auto& [file, rows] : first)
                    EXPECT_TRUE(found.count(file)) << file.toStdString() << " is gone after a kill at " << call.toStdString()
                                                   << " #" << k;
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
    tried += kill_everywhere({"recalc", "--data", "%DATA%", "--series", "3"}, {"open", "--data", "%DATA%", "--series", "3"});
    tried += kill_everywhere({"export", "--data", "%DATA%", "--series", "4", "--task", "1"});
    // The update after a setup save, with a learner gone from the class list
    // and one come.
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
