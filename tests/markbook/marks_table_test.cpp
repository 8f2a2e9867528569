// Keeping a marks table in step with its class list, and opening it.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "markbook/marks_table.h"
#include "markbook/setup_file.h"
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

// What opening a book gives: the key and the count of columns, or the
// message it closes with. Each row a book (none, one of an older export's
// 41 fields, one learner) and a setup file (none, or its name and bytes).
TEST_F(MarksTable, OpeningNeedsABookOfThisVersionAndASetup) {
    MarkBookSetup example;
    apply_example_book(example, true);
    enum Book { NoBook, OldExport, OneLearner };
    const std::tuple<Book, const char*, QByteArray, const char*> cases[] = {
        {NoBook, nullptr, {}, "3 See 'MARK BOOK SETUP' to create mark book"},
        {OldExport, nullptr, {}, "Laai die nuutste kopie van VELDO-CLERK en herskep die \r\n"
                                 "uitvoerskyf om vir 40 reekse voorsiening te maak ..."},
        {OneLearner, nullptr, {}, "1 No ranges available ... see 'MARK BOOK SETUP'"},
        {OneLearner, "setup_10 WISK_10A.txt", MarkBookSetup().to_file_bytes(),
         "2 No ranges available ... see 'MARK BOOK SETUP'"},
        // The rows a short file lacks stay blank.
        {OneLearner, "setup_10 WISK_10A.txt", "\"TOETS\"\r\n\"50\"\r\n", "opens 10 WISK_10A, 1 columns"},
        {OneLearner, "setup_10WISK10A.txt", example.to_file_bytes(), "opens 10WISK10A, 21 columns"},  // an older key
    };
    for (const auto& [kind, setup_name, setup, said] : cases) {
        SCOPED_TRACE(said);
        for (const QString& f : QDir(t.data("")).entryList({"marks1.dbf", "setup_*"})) QFile::remove(t.data(f));
        if (kind == OldExport) DbfTable::create(t.data("marks1.dbf"), mark_book_fields().mid(0, 41));
        if (kind == OneLearner) fill_marks_table(t.data("marks1.dbf"), {marks_row(1, "A", {})});
        if (setup_name) write_bytes(t.data(setup_name), setup);
        t.run.language_afrikaans = kind == OldExport;
        const auto book = open_mark_book(*t.store, row, 1);
        EXPECT_EQ(book ? QString("opens %1, %2 columns").arg(book->key).arg(book->lists.kopieer_reeks.size())
                       : t.dialogs.texts().value(t.dialogs.texts().size() - 1),
                  QString(said));
    }
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
