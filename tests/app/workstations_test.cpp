// Several workstations on one data folder, played by processes of the
// program started at once: appends, edits and rebuilds of one table at the
// same time lose nothing.
#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <memory>
#include <vector>

#include "store/dbf_table.h"
#include "tests/support/program_run.h"
#include "util/text_helpers.h"

namespace veldo {
namespace {

struct Workstations : ::testing::Test {
    QTemporaryDir drive;
    QString data = drive.filePath("data");

    void SetUp() override { ASSERT_EQ(testing::run_program(drive.path(), {"demo", "--data", data}).exit_code, 0); }

    // Starts every command at once and waits for all; each must end 0.
    void all_at_once(const QList<QStringList>& commands) {
        std::vector<std::unique_ptr<QProcess>> running;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("KESTRALIN_DRIVE", drive.path());
        for (const QStringList& args : commands) {
            auto p = std::make_unique<QProcess>();
            p->setProcessEnvironment(env);
            p->start(VELDO_PROGRAM, args);
            running.push_back(std::move(p));
        }
        for (std::size_t i = 0; i < running.size(); ++i) {
            QProcess& p = *running[i];
            ASSERT_TRUE(p.waitForFinished(120000));
            EXPECT_EQ(p.exitCode(), 0) << commands[int(i)].join(' ').toStdString() << ": "
                                       << p.readAllStandardError().toStdString();
        }
    }

    QList<QStringList> rows(const QString& table) {
        auto t = DbfTable::open(data + "/" + table);
        QList<QStringList> out;
        if (!t) return out;
        for (t->MoveFirst(); !t->Eof(); t->MoveNext()) {
            QStringList r;
            for (int f = 0; f < t->field_count(); ++f) r << toets_null_text(t->value(f)).trimmed();
            out << r;
        }
        return out;
    }
};

// K exports of one task append K times the class to both tables the
// administration program reads, while the book is rebuilt twice.
TEST_F(Workstations, ConcurrentExportsKeepEveryRow) {
    int expected = 26;
    for (int k : {2, 4, 8}) {
        SCOPED_TRACE(k);
        QList<QStringList> commands;
        for (int i = 0; i < k; ++i) commands << QStringList{"export", "--data", data, "--series", "4", "--task", "1"};
        commands << QStringList{"open", "--data", data, "--series", "4"} << QStringList{"open", "--data", data, "--series", "4"};
        all_at_once(commands);
        expected += k * 26;
        EXPECT_EQ(rows("punte4.dbf").size(), expected);
        EXPECT_EQ(rows("obe_p4.dbf").size(), expected);
    }
    EXPECT_EQ(rows("marks4.dbf").size(), 26);
}

// K workstations type marks for different learners of one book, each opening
// (and so rebuilding) it, while two more open it: every mark is there.
TEST_F(Workstations, ConcurrentMarksOnOneBookAreAllStored) {
    const QList<QStringList> learners = rows("marks4.dbf");
    ASSERT_EQ(learners.size(), 26);
    int round = 0;
    for (int k : {2, 4, 8}) {
        SCOPED_TRACE(k);
        const auto value = [&](int i) { return QString::number(round * 8 + i) + ".5"; };
        QList<QStringList> commands;
        for (int i = 0; i < k; ++i)
            commands << QStringList{"mark", "--data", data, "--series", "4", "--learner", learners[i][0],
                                    "--column", "3", "--value", value(i)};
        commands << QStringList{"open", "--data", data, "--series", "4"} << QStringList{"recalc", "--data", data, "--series", "4"};
        all_at_once(commands);
        const QList<QStringList> after = rows("marks4.dbf");
        ASSERT_EQ(after.size(), 26);
        for (int i = 0; i < k; ++i) {
            const auto row =
                std::find_if(after.begin(), after.end(), [&](const QStringList& r) { return r[0] == learners[i][0]; });
            ASSERT_NE(row, after.end()) << learners[i][0].toStdString();
            EXPECT_EQ((*row)[3], value(i)) << "learner " << learners[i][0].toStdString();
        }
        ++round;
    }
}

}  // namespace
}  // namespace veldo
