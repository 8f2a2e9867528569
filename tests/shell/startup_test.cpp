// Start-up without windows: folders, family files, version stamp, settings.
#include <gtest/gtest.h>

#include "shell/startup.h"
#include "store/school_record.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::read_bytes;
using testing::write_bytes;

// An install tree: <drive>/Apps/VELDO-TALLY/ with siblings beside it.
struct Install : TempDrive {
    QString root = path("Apps");
    QString program = path("Apps/VELDO-TALLY");
    Install() { QDir().mkpath(program); }
};

TEST(TimeOut, IsThreeHundredSecondsWithoutTheFile) {
    Install t;
    EXPECT_EQ(read_timeout_seconds(t.program), 300);
    write_bytes(t.program + "/time_out.txt", "600\r\n");
    EXPECT_EQ(read_timeout_seconds(t.program), 600);
    write_bytes(t.program + "/time_out.txt", "0\r\n");
    EXPECT_EQ(read_timeout_seconds(t.program), 0);
}

TEST(MachinePaths, FindTheProgramRootAndFamilyFolders) {
    Install t;
    refresh_machine_paths(t.run, t.program);
    EXPECT_EQ(t.run.program_folder, t.program);
    EXPECT_EQ(t.run.root_folder, t.root);
    EXPECT_EQ(t.run.family_folder, t.path("ProgramData/KESTRALIN"));
    EXPECT_EQ(t.run.product_folder, t.path("ProgramData/KESTRALIN/VELDO-TALLY"));
    EXPECT_TRUE(QFileInfo(t.run.product_folder).isDir());
    EXPECT_TRUE(QFileInfo(t.path("KESTRALIN")).isDir());
}

TEST(MachinePaths, AProgramInAnotherFolderKeepsItsOwnFolder) {
    TempDrive t;
    const QString build = t.path("src/build");
    QDir().mkpath(build);
    refresh_machine_paths(t.run, build);
    EXPECT_EQ(t.run.program_folder, build);
    EXPECT_EQ(t.run.root_folder, t.path("src"));
}

TEST(FamilyFiles, OnlySharedTextAndNetworkFilesAreCopiedAndNoneOverwritten) {
    Install t;
    write_bytes(t.root + "/VELDO-HOUSE/house.txt", "new");
    write_bytes(t.root + "/VELDO-HOUSE/NETWORK.ini", "n");
    write_bytes(t.root + "/VELDO-HOUSE/tool.exe.txt", "x");
    write_bytes(t.root + "/VELDO-HOUSE/readme.md", "x");
    write_bytes(t.root + "/VELDO-INSTAL/setup.txt", "installer");
    write_bytes(t.path("ProgramData/KESTRALIN/setup.txt"), "kept");
    refresh_machine_paths(t.run, t.program);
    const QString house = t.path("ProgramData/KESTRALIN/VELDO-HOUSE");
    EXPECT_EQ(read_bytes(house + "/house.txt"), "new");
    EXPECT_TRUE(QFileInfo::exists(house + "/NETWORK.ini"));
    EXPECT_FALSE(QFileInfo::exists(house + "/tool.exe.txt"));
    EXPECT_FALSE(QFileInfo::exists(house + "/readme.md"));
    EXPECT_EQ(read_bytes(t.path("ProgramData/KESTRALIN/setup.txt")), "kept");

    // An existing sibling folder in the family is left alone.
    write_bytes(t.root + "/VELDO-HOUSE/later.txt", "later");
    copy_family_files(t.run, "VELDO-HOUSE");
    EXPECT_FALSE(QFileInfo::exists(house + "/later.txt"));
}

TEST(FamilyFiles, PathNamesHoldElevenEmptyItems) {
    Install t;
    QDir().mkpath(t.root + "/VELDO-VAULTS");
    refresh_machine_paths(t.run, t.program);
    QByteArray expected;
    for (int i = 0; i < 11; ++i) expected += "\"\"\r\n";
    EXPECT_EQ(read_bytes(t.path("ProgramData/KESTRALIN/VELDO-VAULTS/path_names.txt")), expected);
}

TEST(VersionStamp, ListsTheFamilysProgramsOnceADay) {
    Install t;
    write_bytes(t.program + "/veldo-tally", "elf");
    write_bytes(t.root + "/VELDO-HOUSE/VELDO-HOUSE.EXE", "pe");
    refresh_machine_paths(t.run, t.program);
    const QString family = t.path("ProgramData/KESTRALIN");
    const QByteArray listing = read_bytes(family + "/Version_Numbers.txt");
    const QString upper_root = t.root.toUpper();
    EXPECT_EQ(QString::fromLatin1(listing),
              "\"" + upper_root + "/VELDO-HOUSE/VELDO-HOUSE.EXE\",\"\"\r\n\"" + upper_root +
                  "/VELDO-TALLY/VELDO-TALLY.EXE\",\"" + program_version() + "\"\r\n");
    EXPECT_EQ(read_bytes(family + "/Version_Numbers.dte"), "2026/11/23\r\n");

    // The same day: the listing stays as it is.
    write_bytes(family + "/Version_Numbers.txt", "hand-made");
    stamp_versions(t.run);
    EXPECT_EQ(read_bytes(family + "/Version_Numbers.txt"), "hand-made");
    // A stamp the date reader can't make out counts as today.
    write_bytes(family + "/Version_Numbers.dte", "gibberish\r\n");
    stamp_versions(t.run);
    EXPECT_EQ(read_bytes(family + "/Version_Numbers.txt"), "hand-made");
    // The next day the listing is made anew.
    t.run.today = QDate(2026, 11, 24);
    write_bytes(family + "/Version_Numbers.dte", "2026/11/23\r\n");
    stamp_versions(t.run);
    EXPECT_NE(read_bytes(family + "/Version_Numbers.txt"), "hand-made");
    EXPECT_EQ(read_bytes(family + "/Version_Numbers.dte"), "2026/11/24\r\n");
}

TEST(SetupLanguage, IsReadFromLineTwoAndWrittenBackKeepingTheRest) {
    Install t;
    refresh_machine_paths(t.run, t.program);
    const QString setup = t.path("ProgramData/KESTRALIN/setup.txt");
    write_bytes(setup, "\"HO\xebRSKOOL\",\"x\",12\r\n#TRUE#,\"keep\"\r\n\"line three\"\r\n");
    read_setup_language(t.run);
    EXPECT_TRUE(t.run.language_afrikaans);
    t.run.language_afrikaans = false;
    ASSERT_TRUE(save_setup_language(t.run));
    EXPECT_EQ(read_bytes(setup), QByteArray("\"HO\xebRSKOOL\",\"x\",12\r\n#FALSE#,\"keep\"\r\n\"line three\"\r\n"));
}

TEST(SetupLanguage, IsEnglishWithoutAFileAndTheFirstSaveMakesIt) {
    Install t;
    refresh_machine_paths(t.run, t.program);
    read_setup_language(t.run);
    EXPECT_FALSE(t.run.language_afrikaans);
    t.run.language_afrikaans = true;
    ASSERT_TRUE(save_setup_language(t.run));
    EXPECT_EQ(read_bytes(t.path("ProgramData/KESTRALIN/setup.txt")), QByteArray("\"\"\r\n#TRUE#\r\n"));
}

TEST(SetupLanguage, TheProgramFoldersCopyIsBroughtOverFirst) {
    Install t;
    refresh_machine_paths(t.run, t.program);
    write_bytes(t.program + "/setup.txt", "\"\"\r\n#TRUE#\r\n");
    read_setup_language(t.run);
    EXPECT_TRUE(t.run.language_afrikaans);
    EXPECT_TRUE(QFileInfo::exists(t.path("ProgramData/KESTRALIN/setup.txt")));
}

TEST(SetupLanguage, AShortOrStrayFileKeepsTheFlag) {
    Install t;
    refresh_machine_paths(t.run, t.program);
    t.run.language_afrikaans = true;
    write_bytes(t.path("ProgramData/KESTRALIN/setup.txt"), "\"only one line");
    read_setup_language(t.run);
    EXPECT_TRUE(t.run.language_afrikaans);
}

TEST(SchoolName, IsReadFromTheRecordAtTheDriveRoot) {
    Install t;
    RecordBuffer rec(&school_record_layout());
    rec.set_text("SD_SKOOL", "HOëRSKOOL DIE KRANS");
    write_bytes(t.path("skl_dta_random.txt"), rec.bytes());
    read_school_name(t.run, *t.store);
    EXPECT_EQ(t.run.school_name, "HOëRSKOOL DIE KRANS");
    EXPECT_EQ(t.store->open_file_count(), 0);
}

TEST(SchoolName, StaysEmptyWithoutTheRecord) {
    Install t;
    read_school_name(t.run, *t.store);
    EXPECT_EQ(t.run.school_name, "");
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
}

TEST(Startup, SetsYearProgramFolderAndLanguage) {
    Install t;
    run_startup(t.run, *t.store, t.program);
    EXPECT_EQ(t.run.current_year, "2026");
    EXPECT_EQ(t.run.start_folder, t.program);
    EXPECT_EQ(QDir::currentPath(), t.program);
    EXPECT_EQ(t.run.timeout_seconds, 300);
    EXPECT_EQ(t.run.backdrop_green, 192);
}

// The start reads time_out.txt in the program folder, where the TIME-OUT
// button writes it, also when the program runs from another folder.
TEST(Startup, ReadsTheTimeOutWhereTheButtonWritesIt) {
    Install t;
    const QString bin = t.path("Apps/bin");
    QDir().mkpath(bin);
    write_bytes(bin + "/time_out.txt", " 900 \r\n");
    write_bytes(t.program + "/time_out.txt", " 120 \r\n");
    run_startup(t.run, *t.store, bin);
    EXPECT_EQ(t.run.program_folder, t.program);
    EXPECT_EQ(t.run.timeout_seconds, 120);
}

}  // namespace
}  // namespace veldo
