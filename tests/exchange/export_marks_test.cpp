// Sending a task column back to the administration program.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "exchange/export_marks.h"
#include "markbook/marks_table.h"
#include "markbook/setup_file.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::fill_marks_table;
using testing::marks_row;
using testing::read_bytes;
using testing::stored_row;

// Scaled to the series total with ties to even; absences, blanks and a
// series total of 0 go over as they stand.
TEST(ExportConversion, ScalesToTheSeriesTotalWithTiesToEven) {
    struct Case {
        const char* mark;
        double out_of, series_total;
        const char* sent;
    };
    const Case cases[] = {
        {"47", 50, 100, "94"},       {"33", 70, 100, "47.1"},  {"12.25", 2, 2, "12.2"},
        {"12.35", 2, 2, "12.3"},     // 12.3499999999999996 in binary: below the half
        {"26.1", 40, 100, "65.3"},   // 65.25000000000001: above the half
        {"7.5", 10, 150, "112.5"},   {"A", 50, 100, "A"},      {"a", 50, 100, "a"},
        {"", 50, 100, ""},           {"  ", 50, 100, "  "},    {"47", 50, 0, "47"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(convert_export_mark(c.mark, c.out_of, c.series_total), c.sent) << c.mark << " of " << c.out_of;
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
    EXPECT_EQ(raw.mid(header, length),
              QByteArray(" ") + "101       " + QByteArray("Botha, Anri").leftJustified(40, ' ') + "94    " + "  ");
    EXPECT_EQ(raw.mid(header + length, length).mid(51, 6), QByteArray("A     "));
    EXPECT_EQ(raw.right(1), QByteArray("\x1a"));
    auto punte = DbfTable::open(t.data("punte1.dbf"));
    EXPECT_EQ(stored_row(*punte, 1), (QStringList{"102", "Nel, Jan", "A", ""}));
    EXPECT_EQ(stored_row(*punte, 2), (QStringList{"103", "Smith, Emily", "", ""}));
    auto obe = DbfTable::open(t.data("obe_p1.dbf"));
    EXPECT_EQ(stored_row(*obe, 0).mid(0, 3), (QStringList{"101", "Botha, Anri", "94"}));
    EXPECT_EQ(read_bytes(t.path("marks1.dbf")), read_bytes(t.data("marks1.dbf")));
    EXPECT_EQ(t.dialogs.texts(), (QStringList{"DO YOU WISH TO EXPORT \"TOETS 1\" ?",
                                             "Marks for 10 WISK_10A exported sucessfully ..."}));
    // A second export appends a second set.
    ASSERT_TRUE(export_task(*t.store, request(1)));
    EXPECT_EQ(DbfTable::open(t.data("punte1.dbf"))->RecordCount(), 6);
}

TEST_F(Export, NoAnswerOrNoTaskWritesNothing) {
    t.dialogs.answers.enqueue(MsgAnswer::No);
    EXPECT_FALSE(export_task(*t.store, request(1)));
    EXPECT_FALSE(export_task(*t.store, request(0)));
    t.run.language_afrikaans = true;
    EXPECT_FALSE(export_task(*t.store, request(0)));
    EXPECT_EQ(t.dialogs.texts().mid(1), (QStringList{"NO MARK SERIES SELECTED ... DOUBLE CLICK ON SERIES TO EXPORT  !",
                                                     "GEEN PUNTEREEKS GESKIES NIE ... DUBBELKLIK OP REEKS OM UIT TE VOER !"}));
    EXPECT_EQ(DbfTable::open(t.data("punte1.dbf"))->RecordCount(), 0);
    EXPECT_FALSE(QFileInfo::exists(t.path("marks1.dbf")));
}

TEST_F(Export, ATaskOutOfZeroIsRefusedBeforeAnythingIsWritten) {
    EXPECT_FALSE(export_task(*t.store, request(2)));
    EXPECT_EQ(t.dialogs.texts().last(), "The total of \"NUL\" is 0: its marks can't be converted.");
    EXPECT_EQ(DbfTable::open(t.data("punte1.dbf"))->RecordCount(), 0);
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

TEST_F(Export, AMissingExportTableIsReportedAndNothingIsAppended) {
    QFile::remove(t.data("obe_p1.dbf"));
    EXPECT_FALSE(export_task(*t.store, request(1)));
    EXPECT_TRUE(t.dialogs.texts().last().contains("obe_p1.dbf"));
    EXPECT_EQ(DbfTable::open(t.data("punte1.dbf"))->RecordCount(), 0);
}

}  // namespace
}  // namespace veldo
