#include "util/file_lookup.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace veldo;

namespace {

void touch(const QString& path) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
}

}  // namespace

TEST(FileLookupIgnoringCase, FindsAnotherSpelling) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    touch(dir.filePath(QStringLiteral("Skl_Dta_random.txt")));
    EXPECT_EQ(find_ignoring_case(dir.path(), QStringLiteral("skl_dta_random.txt")),
              dir.path() + QStringLiteral("/Skl_Dta_random.txt"));
    EXPECT_TRUE(file_exists_ignoring_case(dir.path(), QStringLiteral("SKL_DTA_RANDOM.TXT")));
}

TEST(FileLookupIgnoringCase, ExactSpellingWins) {
    QTemporaryDir dir;
    touch(dir.filePath(QStringLiteral("marks1.DBF")));
    touch(dir.filePath(QStringLiteral("marks1.dbf")));
    EXPECT_EQ(find_ignoring_case(dir.path(), QStringLiteral("marks1.dbf")),
              dir.path() + QStringLiteral("/marks1.dbf"));
    EXPECT_EQ(find_ignoring_case(dir.path(), QStringLiteral("marks1.DBF")),
              dir.path() + QStringLiteral("/marks1.DBF"));
}

TEST(FileLookupIgnoringCase, MissingGivesEmptyAndTheNewSpelling) {
    QTemporaryDir dir;
    EXPECT_EQ(find_ignoring_case(dir.path(), QStringLiteral("setup.txt")), QString());
    EXPECT_FALSE(file_exists_ignoring_case(dir.path(), QStringLiteral("setup.txt")));
    EXPECT_EQ(path_ignoring_case(dir.path(), QStringLiteral("setup.txt")),
              dir.path() + QStringLiteral("/setup.txt"));
    EXPECT_EQ(path_ignoring_case(dir.path() + QStringLiteral("/"), QStringLiteral("setup.txt")),
              dir.path() + QStringLiteral("/setup.txt"));
}

TEST(FileLookupIgnoringCase, ExistingSpellingIsUsedForWriting) {
    QTemporaryDir dir;
    touch(dir.filePath(QStringLiteral("Time_Out.TXT")));
    EXPECT_EQ(path_ignoring_case(dir.path(), QStringLiteral("time_out.txt")),
              dir.path() + QStringLiteral("/Time_Out.TXT"));
}

TEST(FileLookupIgnoringCase, FoldersAreNotFiles) {
    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("KESTRALIN")));
    EXPECT_FALSE(find_ignoring_case(dir.path(), QStringLiteral("kestralin")).isEmpty());
    EXPECT_FALSE(file_exists_ignoring_case(dir.path(), QStringLiteral("kestralin")));
    EXPECT_TRUE(folder_exists(dir.path() + QStringLiteral("/KESTRALIN")));
    EXPECT_FALSE(folder_exists(dir.path() + QStringLiteral("/nowhere")));
    EXPECT_FALSE(folder_exists(QString()));
}

TEST(FileLookupIgnoringCase, NamesWithFoldersResolvePartByPart) {
    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("ProgramData/KESTRALIN")));
    touch(dir.filePath(QStringLiteral("ProgramData/KESTRALIN/Setup.txt")));
    EXPECT_EQ(find_ignoring_case(dir.path(), QStringLiteral("programdata/kestralin/setup.txt")),
              dir.path() + QStringLiteral("/ProgramData/KESTRALIN/Setup.txt"));
}

TEST(FileLookupIgnoringCase, MissingFolderGivesEmpty) {
    EXPECT_EQ(find_ignoring_case(QStringLiteral("/nonexistent/veldo"), QStringLiteral("a.txt")), QString());
    EXPECT_EQ(find_ignoring_case(QStringLiteral("/tmp"), QString()), QString());
}
