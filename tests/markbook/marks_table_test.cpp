// Keeping a marks table in step with its class list, and opening it.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "markbook/marks_table.h"
#include "markbook/setup_file.h"
#include "store/record_store.h"
#include "store/series.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::fill_marks_table;
using testing::marks_row;
using testing::stored_row;
using testing::write_bytes;

struct MarksTable : ::testing::Test {
    TempDrive t;
    QString program = t.path("program");
    const QStringList row{"10 ", "WISK ", "100", "10A", "   ", "   ", "5", "", ""};

    void SetUp() override {
        QDir().mkpath(program);
        t.run.start_folder = program;
        ASSERT_TRUE(DbfTable::create(program + "/mrk_book.org", mark_book_fields()));
    }
    void class_list(const QList<QStringList>& learners) {
        QList<QVariantList> rows;
        for (const QStringList& l : learners) rows << QVariantList{l[0], l[1]};
        testing::make_table(t.data("punte1.dbf"), class_list_fields(), rows);
    }
    QList<QStringList> rows_of(const QString& file) {
        auto table = DbfTable::open(t.data(file));
        QList<QStringList> out;
        for (int i = 0; i < table->RecordCount(); ++i) out << stored_row(*table, i).mid(0, 4);
        return out;
    }
    void save_setup(const QString& key) {
        MarkBookSetup s;
        apply_example_book(s, true);
        ASSERT_TRUE(write_setup_file(t.data(setup_file_name(key)), s));
    }
};

// The update after a setup save: each row a class list, the book before (none
// where empty) and the book after, number, name and the first two marks.
TEST_F(MarksTable, TheBookFollowsTheClassListByNumber) {
    using Rows = QList<QStringList>;
    const struct {
        const char* why;
        Rows list, book, after;
    } cases[] = {
        {"a new book is made from the template", {{"102", "Nel, Jan"}, {"101", "Botha, Anri"}}, {},
         {{"102", "Nel, Jan", "", ""}, {"101", "Botha, Anri", "", ""}}},
        {"known learners keep their marks and their old name", {{"101", "Botha, Anri-Mari"}, {"103", "Smith, Emily"}},
         {marks_row(101, "Botha, Anri", {"8", "A"})},
         {{"101", "Botha, Anri", "8", "A"}, {"103", "Smith, Emily", "", ""}}},
        {"a second row of a learner is emptied", {{"101", "Botha, Anri"}},
         {marks_row(101, "Botha, Anri", {"8"}), marks_row(101, "Botha, Anri", {"9"})},
         {{"101", "Botha, Anri", "8", ""}, {"0", "", "9", ""}}},
        // Every other learner keeps every mark, wherever the departed ones stood.
        {"departed learners are deleted by their number", {{"203", "C"}, {"205", "E"}, {"201", "A"}},
         {marks_row(202, "B", {"2"}), marks_row(201, "A", {"1"}), marks_row(204, "D", {"4"}),
          marks_row(203, "C", {"3"}), marks_row(206, "F", {"6"})},
         {{"201", "A", "1", ""}, {"203", "C", "3", ""}, {"205", "E", "", ""}}},
        // Last: its class list is looked at below.
        {"a duplicate in the class list adds a row of number 0",
         {{"101", "Botha, Anri"}, {"101", "Botha, Anri (2)"}}, {},
         {{"101", "Botha, Anri", "", ""}, {"0", "Botha, Anri (2)", "", ""}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        QFile::remove(t.data("marks1.dbf"));
        class_list(c.list);
        if (!c.book.isEmpty()) fill_marks_table(t.data("marks1.dbf"), c.book);
        ASSERT_TRUE(update_marks_table(*t.store, 1));
        EXPECT_EQ(rows_of("marks1.dbf"), c.after);
    }
    EXPECT_EQ(rows_of("punte1.dbf")[1][0], "0");  // the duplicate is zeroed in the class list too
}

TEST_F(MarksTable, OpeningRefusesAMissingBookAndAnOldExport) {
    EXPECT_FALSE(open_mark_book(*t.store, row, 1));
    EXPECT_EQ(t.dialogs.texts().last(), "3 See 'MARK BOOK SETUP' to create mark book");
    QList<DbfField> old = mark_book_fields().mid(0, 41);
    DbfTable::create(t.data("marks1.dbf"), old);
    t.run.language_afrikaans = true;
    EXPECT_FALSE(open_mark_book(*t.store, row, 1));
    EXPECT_EQ(t.dialogs.texts().last(),
              "Laai die nuutste kopie van VELDO-CLERK en herskep die \r\nuitvoerskyf om vir 40 reekse voorsiening te maak ...");
}

TEST_F(MarksTable, OpeningRebuildsInNameOrderWithoutEmptyRows) {
    save_setup("10 WISK_10A");
    fill_marks_table(t.data("marks1.dbf"), {marks_row(3, "nel, Jan", {"7"}), marks_row(0, "Ghost", {"1"}),
                                            marks_row(1, "Botha, Anri", {"8", "A"}), marks_row(-2, "Neg", {}),
                                            marks_row(2, "du Plessis, Ruan", {"", "5"}),
                                            marks_row(5, "\u20ACuro", {}), marks_row(4, "\u00E9lan", {})});
    // A template installed read-only still gives a table the teacher can write.
    QFile::setPermissions(program + "/mrk_book.org", QFileDevice::ReadOwner | QFileDevice::ReadOther);
    auto book = open_mark_book(*t.store, row, 1);
    ASSERT_TRUE(book);
    EXPECT_EQ(book->key, "10 WISK_10A");
    EXPECT_EQ(rows_of("marks1.dbf"), (QList<QStringList>{{"1", "Botha, Anri", "8", "A"},
                                                         {"2", "du Plessis, Ruan", "", "5"},
                                                         {"3", "nel, Jan", "7", ""},
                                                         // Code-page names go by their characters, not their bytes.
                                                         {"4", "\u00E9lan", "", ""},
                                                         {"5", "\u20ACuro", "", ""}}));
    EXPECT_EQ(book->lists.kopieer_reeks.size(), 21);
    EXPECT_FALSE(QFileInfo::exists(t.data(".marks1.dbf.rebuild")));
    EXPECT_TRUE(QFileInfo(t.data("marks1.dbf")).permissions() & QFileDevice::WriteOwner);
}

TEST_F(MarksTable, TheSetupIsFoundUnderItsOlderKeyForms) {
    save_setup("10WISK10A");
    fill_marks_table(t.data("marks1.dbf"), {marks_row(1, "A", {})});
    auto book = open_mark_book(*t.store, row, 1);
    ASSERT_TRUE(book);
    EXPECT_EQ(book->key, "10WISK10A");
}

TEST_F(MarksTable, NoSetupOrAnEmptyOneClosesWithItsMessage) {
    fill_marks_table(t.data("marks1.dbf"), {marks_row(1, "A", {})});
    EXPECT_FALSE(open_mark_book(*t.store, row, 1));
    EXPECT_EQ(t.dialogs.texts().last(), "1 No ranges available ... see 'MARK BOOK SETUP'");
    ASSERT_TRUE(write_setup_file(t.data("setup_10 WISK_10A.txt"), MarkBookSetup()));
    EXPECT_FALSE(open_mark_book(*t.store, row, 1));
    EXPECT_EQ(t.dialogs.texts().last(), "2 No ranges available ... see 'MARK BOOK SETUP'");
    // A short file: the rows it lacks stay blank, the book opens.
    write_bytes(t.data("setup_10 WISK_10A.txt"), "\"TOETS\"\r\n\"50\"\r\n");
    auto book = open_mark_book(*t.store, row, 1);
    ASSERT_TRUE(book);
    EXPECT_EQ(book->lists.kopieer_reeks.size(), 1);
}

// An empty book closes quietly without the teacher's workbook, and with it
// is filled from it.
TEST_F(MarksTable, AnEmptyBookIsFilledFromTheTeachersWorkbook) {
    save_setup("10 WISK_10A");
    DbfTable::create(t.data("marks1.dbf"), mark_book_fields());
    EXPECT_FALSE(open_mark_book(*t.store, row, 1));
    EXPECT_TRUE(t.dialogs.messages.isEmpty());
    write_bytes(t.data("WISK_10A.csv"), "NR;NAAM\r\n3;  Nel, Jan  \r\n1;Botha, Anri\r\n \r\n9;after the blank\r\n");
    auto book = open_mark_book(*t.store, row, 1);
    ASSERT_TRUE(book);
    EXPECT_EQ(rows_of("marks1.dbf"), (QList<QStringList>{{"1", "Botha, Anri", "", ""}, {"3", "Nel, Jan", "", ""}}));
}

TEST_F(MarksTable, WithoutTheTemplateTheBookIsLeftAsItWas) {
    QFile::remove(program + "/mrk_book.org");
    fill_marks_table(t.data("marks1.dbf"), {marks_row(2, "B", {"5"}), marks_row(1, "A", {"6"})});
    const QByteArray before = testing::read_bytes(t.data("marks1.dbf"));
    QString error;
    EXPECT_FALSE(rebuild_marks_table(t.run, t.data("marks1.dbf"), &error));
    EXPECT_EQ(testing::read_bytes(t.data("marks1.dbf")), before);
}

}  // namespace
}  // namespace veldo
