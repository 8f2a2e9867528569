// The mark book input and print screens on the demo school.
#include <gtest/gtest.h>

#include "markbook/mark_book_input.h"
#include "markbook/mark_book_print_screen.h"
#include "tests/markbook/demo_school_fixture.h"
#include "tests/support/golden.h"

namespace veldo {
namespace {

using veldo::testing::pdf_text;

struct MarkBookScreens : ::testing::Test, testing::DemoSchool {
    QString book_path() const { return run.data_folder + "/marks1.dbf"; }
    // Column `f` of marks1.dbf as stored, right-trimmed.
    QStringList stored_column(int f) const {
        QStringList out;
        for (const QStringList& r : records("marks1.dbf")) out << r[f];
        return out;
    }
};

// A missing folder, then an empty one, in English and in Afrikaans: the
// message, and the menu in the screen's place.
TEST_F(MarkBookScreens, TheLoadRefusesAFolderWithoutMarksFiles) {
    QDir().mkpath(path("empty"));
    for (const char* folder : {"nowhere", "empty"})
        for (const bool afrikaans : {false, true}) {
            run.data_folder = path(folder);
            run.language_afrikaans = afrikaans;
            MarkBookInput input(ctx, printer);
            EXPECT_FALSE(input.load());
            step(QString("%1 folder, Afrikaans %2").arg(folder).arg(afrikaans));
        }
    EXPECT_TRUE(testing::matches_golden(session, "markbook/load_refused.txt"));
}

// Open a book, type marks (one refused, "A" over a mark), recalculate.
TEST_F(MarkBookScreens, ATeacherTypesMarksAndRecalculates) {
    MarkBookInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    ASSERT_TRUE(input.vak_grid_click(0));
    // KLASWERK (6) is a total: the cursor passes over it in the direction it
    // came from, and back to the left when it did not move (6 from 6).
    QStringList entered;
    for (const auto& [column, from] : {std::pair{0, 2}, {1, 2}, {3, 2}, {6, 5}, {6, 7}, {6, 6}, {41, 40}})
        entered << QString("%1 from %2: %3").arg(column).arg(from).arg(input.column_entered(column, from));
    step("open 8 AFR", {QString("%1, %2 series").arg(input.captions().first()).arg(input.series().size()),
                        QString("%1, %2 learners").arg(input.vak_info()).arg(input.learner_count()),
                        "headings " + QStringList{input.heading(0), input.heading(2)}.join('|').replace('\n', '/'),
                        QString("column 30 hidden %1, KLASWERK takes marks %2")
                            .arg(input.column_hidden(30))
                            .arg(input.column_takes_marks(6)),
                        "entering a column: " + entered.join(", ")});

    // TAAK 1 (out of 10, 3.5 before) feeds KLASWERK (field 6, blank before the
    // recalculation): a stored mark moves the running figure by the difference
    // from the old one, below 0 too; "A" leaves it, and counts as 0 when the
    // next mark comes. Above 10, below 0 and a leading number above 10 are
    // refused.
    const QString first = input.cell(0, 1);
    for (const char* text : {"10", "10.1", "-1", "0", "12x", "5x", "A", "7.25", ""}) {
        const bool accepted = input.cell_changed(0, 2, text);
        step(QString("type '%1' into TAAK 1").arg(text),
             {QString("accepted %1 shown %2 stored %3 KLASWERK %4")
                  .arg(accepted)
                  .arg(input.cell(0, 2).trimmed(), stored_column(2)[0], stored_column(6)[0])});
    }
    EXPECT_TRUE(testing::matches_golden(session, "markbook/typed_marks.txt"));
    EXPECT_FALSE(input.cell_changed(0, 6, "5"));  // a total takes no typing
    EXPECT_EQ(input.cell(0, 1), first);

    int last_done = 0, count = 0;
    ASSERT_TRUE(input.pboek_inlees_totale([&](int done, int of) { last_done = done, count = of; }));
    EXPECT_GT(count, 0);
    EXPECT_EQ(last_done, count);
    EXPECT_FALSE(input.book_open());
    EXPECT_NE(stored_column(6)[0], "");
}

// The column actions from the screen: undo, scaling (a total column, a
// cancelled box, TAAK 2 to an average of 250), copy (No, no column, Yes),
// paste (no column chosen, then into TAAK 3), each through the system's
// words; after each, the three TAAK columns of every learner.
TEST_F(MarkBookScreens, TheColumnActionsAskAndWrite) {
    MarkBookInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    ASSERT_TRUE(input.vak_grid_click(0));
    const QByteArray before = testing::read_bytes(book_path());
    const auto state = [&] {
        QStringList out{"TAAK 2 heading " + input.heading(3).replace('\n', '|')};
        for (int f : {2, 3, 4}) out << QString("field %1: %2").arg(f).arg(stored_column(f).join('|'));
        return out;
    };
    step("opened", state());

    input.pboek_inlees_undo();
    step("undo");
    EXPECT_FALSE(input.heading_click(1));
    ASSERT_TRUE(input.heading_click(6));
    input.kol_opsie_click(1);
    step("scale KLASWERK");
    ASSERT_TRUE(input.heading_click(3));
    dialogs.inputs << "";  // a cancelled box scales nothing
    input.kol_opsie_click(1);
    step("scale TAAK 2, the box cancelled");
    EXPECT_EQ(testing::read_bytes(book_path()), before);
    dialogs.inputs << "250";
    input.kol_opsie_click(1);
    step("scale TAAK 2 to 250", state());

    dialogs.answers << MsgAnswer::No;
    input.copy_ok(0, 1);
    input.copy_ok(0, -1);
    step("copy TAAK 1 to TAAK 2 answered No, copy to no column", state());
    input.copy_ok(0, 1);
    step("copy TAAK 1 to TAAK 2", state());

    input.paste_into_flex(0);
    dialogs.clipboard = "7\r\n8.25\r\n";
    input.paste_into_flex(4);
    step("paste into no column, then into TAAK 3", state());
    EXPECT_TRUE(testing::matches_golden(session, "markbook/column_actions_session.txt"));

    ASSERT_TRUE(input.heading_click(4));
    input.kol_opsie_click(2);
    EXPECT_EQ(printer.stems, QStringList{"MERIT LIST 8 AFR 8A - TAAK 3"});
    const QString text = pdf_text(printer.files.value(0));
    EXPECT_TRUE(text.contains("MERIT LIST 8 AFR 8A - TAAK 3")) << text.toStdString();
    EXPECT_LT(text.indexOf("8.3"), text.indexOf("7.0"));
}

// EXIT closes the book, EXIT again offers the mark list print; the print
// button hands the book to pboek_druk.
TEST_F(MarkBookScreens, LeavingOffersThePrintAndTheMenuComesBack) {
    MarkBookInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    ASSERT_TRUE(input.vak_grid_click(0));
    int handed = -2;
    screens.modal_handlers[screen::pboek_druk] = [&] { handed = run.print_series_row; };
    input.pboek_inlees_print();
    step("the print button", {QString("handed series row %1, then %2").arg(handed).arg(run.print_series_row)});
    input.marks_exit();
    step("exit", {QString("book open %1").arg(input.book_open())});
    run.language_afrikaans = true;
    dialogs.answers << MsgAnswer::No;
    input.marks_exit();
    step("exit again, the print answered No");
    EXPECT_TRUE(testing::matches_golden(session, "markbook/leaving.txt"));
}

// The chosen book on paper; a cancelled print; a series without a book,
// which sends the teacher back to the menu; a book handed over by the
// input screen, chosen at once.
TEST_F(MarkBookScreens, ThePrintScreenPrintsTheChosenBook) {
    MarkBookPrintScreen screen(ctx, printer);
    ASSERT_TRUE(screen.load());
    ASSERT_TRUE(screen.open_print_series(0));
    step("choose 8 AFR 8A", {screen.caption() + ": " + screen.vak_ops()});
    ASSERT_TRUE(screen.pboek_druk_print());
    const QString text = pdf_text(printer.files.value(0));
    step("print", {QString("files %1: %2; chosen now '%3'")
                       .arg(printer.files.size())
                       .arg(printer.stems.join('|'), screen.vak_ops()),
                   QString("printed LEARNER %1, M1 TAAK 1 %2")
                       .arg(text.contains("LEARNER"))
                       .arg(text.contains("M1 TAAK 1"))});
    printer.cancel = true;
    ASSERT_TRUE(screen.open_print_series(0));
    step("print, cancelled", {QString("printed %1").arg(screen.pboek_druk_print())});
    step("choose series 2, without a book", {QString("chosen %1").arg(screen.open_print_series(1))});
    run.print_series_row = 0;
    MarkBookPrintScreen handed(ctx, printer);
    ASSERT_TRUE(handed.load());
    step("handed 8 AFR 8A by the input screen", {handed.vak_ops()});
    EXPECT_TRUE(testing::matches_golden(session, "markbook/print_screen.txt"));
}

}  // namespace
}  // namespace veldo
