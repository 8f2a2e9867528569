// The command-line face, run as a separate program.
#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <unistd.h>

#include "tests/support/program_run.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::run_program;
using testing::write_bytes;

struct Cli : ::testing::Test {
    QTemporaryDir drive;
    QString data() const { return drive.filePath("data"); }
    testing::ProgramResult run(const QStringList& args) { return run_program(drive.path(), args); }
};

TEST_F(Cli, HelpListsEveryCommandWord) {
    const auto r = run({"--help"});
    EXPECT_EQ(r.exit_code, 0);
    for (const char* word : {"demo --data DIR", "series --data DIR", "dump FILE.dbf", "--lang af|en"})
        EXPECT_TRUE(r.out.contains(word)) << word;
}

TEST_F(Cli, BadUsageExitsTwoWithTheUsage) {
    for (const QStringList& args : {QStringList{"frobnicate"}, QStringList{"series"}, QStringList{"series", "--data"},
                                    QStringList{"series", "--data", "x", "--lang", "fr"},
                                    QStringList{"dump"}, QStringList{"series", "--data", "x", "--bogus", "1"}}) {
        const auto r = run(args);
        EXPECT_EQ(r.exit_code, 2) << args.join(' ').toStdString();
        EXPECT_TRUE(r.err.contains("usage: veldo-tally")) << args.join(' ').toStdString();
    }
}

TEST_F(Cli, TheDemoSchoolListsItsSeries) {
    const auto demo = run({"demo", "--data", data()});
    ASSERT_EQ(demo.exit_code, 0) << demo.err.toStdString();
    EXPECT_TRUE(demo.out.startsWith("Demo school written to " + data()));

    const auto r = run({"series", "--data", data()});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    const QStringList lines = r.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_GE(lines.size(), 8);
    EXPECT_EQ(lines[0], "8  \tAFR  \t100\t8A \t   \t   \t101\tK001 \t2026/01/14");
    for (const QString& line : lines) EXPECT_EQ(line.split('\t').size(), 9) << line.toStdString();
    // Grades above 9 show 100 whatever their stored total.
    EXPECT_TRUE(lines[4].startsWith("10 \tWISK \t100\t10A"));
    EXPECT_TRUE(lines[1].startsWith("8  \tWISK \t150\t"));
}

TEST_F(Cli, TheDemoSchoolHasClassListsMarkBooksAndASchoolRecord) {
    ASSERT_EQ(run({"demo", "--data", data()}).exit_code, 0);
    const QDir d(data());
    for (int n = 1; n <= 9; ++n) {
        EXPECT_TRUE(d.exists(QString("punte%1.dbf").arg(n)));
        EXPECT_TRUE(d.exists(QString("obe_p%1.dbf").arg(n)));
    }
    EXPECT_TRUE(d.exists("pi2_dta.dbf"));
    EXPECT_TRUE(d.exists("marks1.dbf"));
    EXPECT_TRUE(d.exists("setup_8  AFR8A.txt"));
    EXPECT_TRUE(QFileInfo::exists(drive.filePath("Skl_Dta_random.txt")));

    const auto list = run({"dump", d.filePath("punte1.dbf")});
    ASSERT_EQ(list.exit_code, 0);
    const QStringList lines = list.out.split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines[0], "EF_T_NR\tEF_NAME\tEF_PUNT\tEF_P_S");
    EXPECT_EQ(lines.size(), 1 + 32);
    EXPECT_TRUE(lines[1].startsWith("10001\t")) << lines[1].toStdString();

    const auto marks = run({"dump", d.filePath("marks1.dbf")});
    const QStringList rows = marks.out.split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(rows[0].split('\t').size(), 42);
    EXPECT_TRUE(rows[0].startsWith("MB_T_NR\tMB_NAME\tMB_R01"));

    const auto symbols = run({"dump", d.filePath("pi2_dta.dbf")});
    EXPECT_EQ(symbols.out.split('\n', Qt::SkipEmptyParts).size(), 8);
}

TEST_F(Cli, AMissingDataFolderIsRefusedInTheChosenLanguage) {
    auto r = run({"series", "--data", data(), "--lang", "af"});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_EQ(r.err.trimmed(), "DIE GIDS " + data() + " BESTAAN NIE!");
    r = run({"series", "--data", data()});
    EXPECT_EQ(r.err.trimmed(), "THE FOLDER " + data() + " DOES NOT EXIST!");
}

TEST_F(Cli, AFolderWithoutMarksFilesIsRefused) {
    QDir().mkpath(data());
    const auto r = run({"series", "--data", data()});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_EQ(r.err.trimmed(), "Current folder (" + data() + ") does not contain marks files ...");
}

TEST_F(Cli, TheLanguageComesFromTheFamilySetupFile) {
    QDir().mkpath(data());
    write_bytes(drive.filePath("ProgramData/KESTRALIN/setup.txt"), "\"\"\r\n#TRUE#\r\n");
    const auto r = run({"series", "--data", data()});
    EXPECT_EQ(r.err.trimmed(), "Bestaande gids (" + data() + ") bevat nie punteleêrs nie ...");
}

TEST_F(Cli, DumpRefusesADamagedTableWithAMessage) {
    write_bytes(drive.filePath("bad.dbf"), QByteArray("this is no table at all"));
    const auto r = run({"dump", drive.filePath("bad.dbf")});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_TRUE(r.err.contains("bad.dbf"));
    const auto missing = run({"dump", drive.filePath("none.dbf")});
    EXPECT_EQ(missing.exit_code, 1);
}

TEST_F(Cli, ADemoIntoAnUnwritableFolderIsRefused) {
    if (geteuid() == 0) GTEST_SKIP() << "root writes anywhere";
    QDir().mkpath(data());
    QFile::setPermissions(data(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const auto r = run({"demo", "--data", data() + "/school"});
    EXPECT_EQ(r.exit_code, 1);
    QFile::setPermissions(data(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

}  // namespace
}  // namespace veldo
