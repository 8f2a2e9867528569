#include "util/file_lookup.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace veldo;

namespace {

class FileLookupIgnoringCase : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString path(const QString& name) const { return dir.path() + '/' + name; }
    void touch(const QString& name) {
        QFile f(path(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
};

}  // namespace

// The exact spelling wins; another spelling is found, also part by part
// through folders, and is the one used for writing.
TEST_F(FileLookupIgnoringCase, FindsTheSpellingThatIsThere) {
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(QDir(dir.path()).mkpath("ProgramData/KESTRALIN"));
    for (const char* name : {"Skl_Dta_random.txt", "marks1.DBF", "marks1.dbf", "ProgramData/KESTRALIN/Setup.txt"})
        touch(name);
    const std::pair<const char*, const char*> rows[] = {  // asked, found
        {"skl_dta_random.txt", "Skl_Dta_random.txt"}, {"SKL_DTA_RANDOM.TXT", "Skl_Dta_random.txt"},
        {"marks1.dbf", "marks1.dbf"},                 {"marks1.DBF", "marks1.DBF"},
        {"programdata/kestralin/setup.txt", "ProgramData/KESTRALIN/Setup.txt"},
    };
    for (const auto& [asked, found] : rows) {
        SCOPED_TRACE(asked);
        EXPECT_EQ(find_ignoring_case(dir.path(), asked), path(found));
        EXPECT_EQ(path_ignoring_case(dir.path(), asked), path(found));
        EXPECT_TRUE(file_exists_ignoring_case(dir.path(), asked));
    }
}

// A missing file: no path found, and the path to write is the spelling asked for.
TEST_F(FileLookupIgnoringCase, MissingGivesEmptyAndTheNewSpelling) {
    EXPECT_EQ((QStringList{find_ignoring_case(dir.path(), "setup.txt"),
                           find_ignoring_case("/nonexistent/veldo", "a.txt"), find_ignoring_case("/tmp", QString())}),
              QStringList(3));
    EXPECT_FALSE(file_exists_ignoring_case(dir.path(), "setup.txt"));
    EXPECT_EQ(path_ignoring_case(dir.path(), "setup.txt"), path("setup.txt"));
    EXPECT_EQ(path_ignoring_case(dir.path() + '/', "setup.txt"), path("setup.txt"));
}

TEST_F(FileLookupIgnoringCase, FoldersAreNotFiles) {
    ASSERT_TRUE(QDir(dir.path()).mkdir("KESTRALIN"));
    EXPECT_EQ(find_ignoring_case(dir.path(), "kestralin"), path("KESTRALIN"));
    EXPECT_FALSE(file_exists_ignoring_case(dir.path(), "kestralin"));
    EXPECT_EQ((QList<bool>{folder_exists(path("KESTRALIN")), folder_exists(path("nowhere")), folder_exists(QString())}),
              (QList<bool>{true, false, false}));
}
