// Several workstations on one data folder, played by processes of the
// program started at once: appends, edits and rebuilds of one table at the
// same time lose nothing.
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <map>
#include <memory>
#include <vector>

#include "tests/support/reports_app_helpers.h"

namespace veldo {
namespace {

struct Workstations : ::testing::Test {
    QTemporaryDir drive;
    QString data = drive.filePath("data");

    void SetUp() override { ASSERT_EQ(testing::run_program(drive.path(), {"demo", "--data", data}).exit_code, 0); }

    // Starts every command at once and waits for all; each must end 0.
    void all_at_once(const QList<QStringList>& commands) {
        std::vector<std::unique_ptr<QProcess>> running;
        for (const QStringList& args : commands) {
            auto p = std::make_unique<QProcess>();
            p->setProcessEnvironment(testing::program_environment(drive.path()));
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

    // A word's arguments on book 4.
    QStringList on(const QString& word, const QStringList& more = {}) const {
        return QStringList{word, "--data", data, "--series", "4"} + more;
    }
    QList<QStringList> rows(const QString& table) const { return testing::table_rows(data + "/" + table); }
};

// K exports of one task append K times the class to both tables the
// administration program reads, while the book is rebuilt twice.
TEST_F(Workstations, ConcurrentExportsKeepEveryRow) {
    int expected = 26;
    for (int k : {2, 4, 8}) {
        SCOPED_TRACE(k);
        QList<QStringList> commands;
        for (int i = 0; i < k; ++i) commands << on("export", {"--task", "1"});
        commands << on("open") << on("open");
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
    for (int k : {2, 4, 8}) {
        SCOPED_TRACE(k);
        // Each round gives each learner a mark he had not before.
        const auto value = [&](int i) { return QString::number(k + i) + ".5"; };
        QList<QStringList> commands;
        for (int i = 0; i < k; ++i)
            commands << on("mark", {"--learner", learners[i][0], "--column", "3", "--value", value(i)});
        commands << on("open") << on("recalc");
        all_at_once(commands);
        const QList<QStringList> after = rows("marks4.dbf");
        EXPECT_EQ(after.size(), 26);
        std::map<QString, QString> stored;  // learner's number: the mark in column 3
        for (const QStringList& r : after) stored[r[0]] = r[3];
        for (int i = 0; i < k; ++i) EXPECT_EQ(stored[learners[i][0]], value(i)) << learners[i][0].toStdString();
    }
}

}  // namespace
}  // namespace veldo
