// Sending a task column back to the administration program.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "exchange/export_marks.h"
#include "markbook/marks_table.h"
#include "markbook/setup_file.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/reports_app_helpers.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using namespace testing;

// Scaled to the series total with ties to even; absences, blanks and a
// series total of 0 go over as they stand.
TEST(ExportConversion, ScalesToTheSeriesTotalWithTiesToEven) {
    // The mark, its total and the series total; what is sent.
    const std::tuple<const char*, double, double, const char*> cases[] = {
        {"47", 50, 100, "94"},       {"33", 70, 100, "47.1"},  {"12.25", 2, 2, "12.2"},
        {"12.35", 2, 2, "12.3"},     // 12.3499999999999996 in binary: below the half
        {"26.1", 40, 100, "65.3"},   // 65.25000000000001: above the half
        {"7.5", 10, 150, "112.5"},   {"A", 50, 100, "A"},      {"a", 50, 100, "a"},
        {"", 50, 100, ""},           {"  ", 50, 100, "  "},    {"47", 50, 0, "47"},
    };
    for (const auto& [mark, out_of, series_total, sent] : cases)
        EXPECT_EQ(convert_export_mark(mark, out_of, series_total), sent) << mark << " of " << out_of;
}

struct Export : ::testing::Test {
    TempDrive t;
    const QStringList row{"10 ", "WISK ", "100", "10A", "   ", "   ", "5", "", ""};
    void SetUp() override {
        MarkBookSetup s;
        s.rows[0] = {"TOETS 1", "50", "", "", ""};
        s.rows[1] = {"NUL", "0", "", "", ""};
        ASSERT_TRUE(write_setup_file(t.data("setup_10 WISK_10A.txt"), s));
        fill_marks_table(t.data("marks1.dbf"), {marks_row(101, "Botha, Anri", {"47", "3"}),
                                                marks_row(102, "Nel, Jan", {"A", ""}),
                                                marks_row(103, "Smith, Emily", {"", ""})});
        DbfTable::create(t.data("punte1.dbf"), class_list_fields());
        DbfTable::create(t.data("obe_p1.dbf"), assessment_fields());
    }
    ExportRequest request(int task) {
        return ExportRequest{1, row, task, t.run.data_folder, {}};
    }
};

// The records appended are the bytes the administration program reads.
TEST_F(Export, AppendsConvertedMarksToBothTablesAndCopiesTheBookToTheDriveRoot) {
    ASSERT_TRUE(export_task(*t.store, request(1)));
    const QByteArray raw = read_bytes(t.data("punte1.dbf"));
    const int header = quint8(raw[8]) | quint8(raw[9]) << 8;
    const int length = quint8(raw[10]) | quint8(raw[11]) << 8;
    ASSERT_EQ(length, 1 + 10 + 40 + 6 + 2);
    EXPECT_EQ(quint8(raw[4]), 3);  // record count, little-endian
    // Each record: not deleted, number, name, mark and a last field left blank; then the end-of-file mark.
    EXPECT_EQ(raw.mid(header), QByteArray(" 101       ") + QByteArray("Botha, Anri").leftJustified(40) + "94      " +
                                   " 102       " + QByteArray("Nel, Jan").leftJustified(40) + "A       " +
                                   " 103       " + QByteArray("Smith, Emily").leftJustified(40) + "        " + "\x1a");
    EXPECT_EQ(table_rows(t.data("obe_p1.dbf")).value(0).mid(0, 3), (QStringList{"101", "Botha, Anri", "94"}));
    EXPECT_EQ(read_bytes(t.path("marks1.dbf")), read_bytes(t.data("marks1.dbf")));
    EXPECT_EQ(t.dialogs.texts(), (QStringList{"DO YOU WISH TO EXPORT \"TOETS 1\" ?",
                                             "Marks for 10 WISK_10A exported sucessfully ..."}));
    // A second export appends a second set.
    ASSERT_TRUE(export_task(*t.store, request(1)));
    EXPECT_EQ(DbfTable::open(t.data("punte1.dbf"))->RecordCount(), 6);
}

// Each refusal says why, appends nothing and copies no book.
TEST_F(Export, RefusalsWriteNothing) {
    // Why, the task, in Afrikaans, No to the question, without the assessment table; what is said.
    const std::tuple<const char*, int, bool, bool, bool, QStringList> cases[] = {
        {"No to the question", 1, false, true, false, {"DO YOU WISH TO EXPORT \"TOETS 1\" ?"}},
        {"no task", 0, false, false, false, {"NO MARK SERIES SELECTED ... DOUBLE CLICK ON SERIES TO EXPORT  !"}},
        {"geen taak", 0, true, false, false, {"GEEN PUNTEREEKS GESKIES NIE ... DUBBELKLIK OP REEKS OM UIT TE VOER !"}},
        {"a task out of 0, refused before anything is written", 2, false, false, false,
         {"DO YOU WISH TO EXPORT \"NUL\" ?", "The total of \"NUL\" is 0: its marks can't be converted."}},
        {"the assessment table gone", 1, false, false, true,
         {"DO YOU WISH TO EXPORT \"TOETS 1\" ?", "The table <drive>/data/obe_p1.dbf does not exist."}},
    };
    for (const auto& [why, task, afrikaans, answer_no, no_assessment_table, said] : cases) {
        SCOPED_TRACE(why);
        t.dialogs.messages.clear();
        t.run.language_afrikaans = afrikaans;
        if (answer_no) t.dialogs.answers.enqueue(MsgAnswer::No);
        if (no_assessment_table) QFile::remove(t.data("obe_p1.dbf"));
        EXPECT_FALSE(export_task(*t.store, request(task)));
        EXPECT_EQ(t.dialogs.texts().replaceInStrings(t.dir.path(), "<drive>"), said);
        EXPECT_EQ(DbfTable::open(t.data("punte1.dbf"))->RecordCount(), 0);
        EXPECT_FALSE(QFileInfo::exists(t.path("marks1.dbf")));
    }
}

TEST_F(Export, AnotherFolderBecomesTheDataFolder) {
    const QString other = t.path("other");
    QDir().mkpath(other);
    for (const char* f : {"marks1.dbf", "punte1.dbf", "obe_p1.dbf"}) QFile::copy(t.data(f), other + "/" + f);
    ExportRequest r = request(1);
    r.folder = other;
    ASSERT_TRUE(export_task(*t.store, r));
    EXPECT_EQ(t.run.data_folder, other);
    EXPECT_EQ(DbfTable::open(other + "/punte1.dbf")->RecordCount(), 3);
    EXPECT_EQ(DbfTable::open(t.path("data/punte1.dbf"))->RecordCount(), 0);
}

}  // namespace
}  // namespace veldo
