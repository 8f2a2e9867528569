// The cycle marks screen on the demo school: series 1 (8 AFR, out of 100)
// with a few marks already in punte1.dbf.
#include <gtest/gtest.h>

#include <QFile>

#include "input/marks_input.h"
#include "tests/markbook/demo_school_fixture.h"
#include "tests/support/golden.h"

namespace veldo {
namespace {

using testing::read_bytes;
using testing::write_bytes;

const QList<int> kSeeded = {10001, 10002, 10003, 10004, 10005, 10006};

struct CycleMarks : ::testing::Test, testing::DemoSchool {
    CycleMarks() {
        set_fields("punte1.dbf", {{10001, "80.0"}, {10002, "0.8"}, {10003, "A"}, {10004, "33.3"}, {10005, "95.0"}});
    }
    QString punte() const { return table("punte1.dbf"); }
    QString bak() const { return table("PUNTE1.BAK"); }
    // Opens series 1 with `input_total` typed into the prompt.
    void open(MarksInput& input, const QString& input_total, MsgAnswer effort_keys = MsgAnswer::No) {
        ASSERT_TRUE(input.load());
        dialogs.inputs.enqueue(input_total);
        if (!input_total.isEmpty() && Val(input_total) != 100) dialogs.answers.enqueue(MsgAnswer::Ok);
        dialogs.answers.enqueue(effort_keys);
        ASSERT_TRUE(input.open_subject(0));
        dialogs.messages.clear();
        dialogs.prompts.clear();
    }
};

// The messages, the figures on the screen and the marks of both tables after
// each step of a session out of 50.
TEST_F(CycleMarks, ATeacherKeysScalesUndoesAndSavesOutOfAnotherTotal) {
    const QByteArray before = read_bytes(punte());
    MarksInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    // The seeded learners' marks as shown (in name order, ".4" without its
    // whole digit) and as both tables hold them, 10006's effort key, the two
    // labels and the count.
    const auto state = [&] {
        QStringList shown;
        for (int n : kSeeded) shown << input.cell(row_of(input, n), 2).trimmed();
        return QStringList{
            QString("screen %1 key %2 total %3 average %4 count %5")
                .arg(shown.join('|'), input.cell(row_of(input, 10006), 3).trimmed(), input.total_text(),
                     input.average_text())
                .arg(input.mark_count()),
            "punte1 " + fields("punte1.dbf", kSeeded).join('|') + " key " + learner("punte1.dbf", 10006).value(3),
            "obe_p1 " + fields("obe_p1.dbf", kSeeded).join('|')};
    };
    dialogs.inputs.enqueue("50");
    ASSERT_TRUE(input.open_subject(0));
    step("open out of 50", QStringList{input.caption() + QString(", %1 series").arg(input.series().size()),
                                       QStringList{input.vak_ops(), input.ops_totale(), input.heading(2)}.join('|'),
                                       QString("effort keys %1, first %2")
                                           .arg(input.effort_keys_wanted())
                                           .arg(input.cell(0, 1).trimmed())} +
                               state());
    EXPECT_EQ(read_bytes(bak()), before);

    const int r6 = row_of(input, 10006);
    const std::pair<int, const char*> keys[] = {
        {2, "51"},     // above the input total
        {2, "-0.1"},   // below 0
        {2, "50"},     // the input total itself
        {3, "3"},      // the effort key takes any text
        {2, "A"},      // the 50 leaves the sum, the count stays
        {2, "12abc"},  // Val reads the leading number
    };
    for (const auto& [column, typed] : keys) {
        const bool accepted = input.cell_changed(r6, column, typed);
        step(QString("type %1 into column %2").arg(typed).arg(column),
             QStringList{QString("accepted %1").arg(accepted)} + state());
    }
    // With effort keys the cursor zigzags between mark and key.
    EXPECT_EQ((QList<std::pair<int, int>>{input.next_cell(r6, 2), input.next_cell(r6, 3), input.next_cell(31, 3)}),
              (QList<std::pair<int, int>>{{r6, 3}, {r6 + 1, 2}, {31, 2}}));

    // Scaling from 38.9 percent to 50: a shift of the points, clipped at 100.
    dialogs.inputs.enqueue("50");
    input.scale_marks();
    step("scale to 50", state());
    // Undo: Cancel keeps everything; OK puts the backup back, out of 50
    // again, and the labels stay.
    const QByteArray scaled = read_bytes(punte());
    dialogs.answers.enqueue(MsgAnswer::Cancel);
    input.marks_undo();
    EXPECT_EQ(read_bytes(punte()), scaled);
    step("undo, Cancel", state());
    input.marks_undo();
    step("undo, OK", state());
    // Exit: the save back to 100 and into obe_p1.dbf, then the print; exit
    // again: the screen closes and the menu comes.
    input.marks_exit();
    step("exit", QStringList{QString("series open %1").arg(input.series_open())} + state());
    input.marks_exit();
    step("exit again");
    EXPECT_TRUE(testing::matches_golden(session, "input/cycle_marks_session.txt"));

    EXPECT_EQ(printer.stems, QStringList{"MARKS 8 AFR__ 8A "});  // one print
    const QString text = testing::pdf_text(printer.files.value(0));
    // The list prints after the save, out of 100, while its percentage is
    // still taken against the input total.
    for (const char* part :
         {"A.NO", "LEARNER", "MARK", "EK/SR", "TOTAL", "Botha, Anri", "80.0", "AVERAGE :=", "52.3", "104.6%"})
        EXPECT_TRUE(text.contains(part)) << part << "\n" << text.toStdString();
}

// The input total: an empty reply or Cancel keeps the subject total; a
// reply that reads as 0 or as more than the mark field holds is refused.
// 10001's 80.0 after the trip there and back, except out of 0.1: 0.08 keeps
// one decimal, .1, and comes back as 100.0.
TEST_F(CycleMarks, TheInputTotalIsAboveZeroAndFitsTheField) {
    for (const char* reply : {"", "50", "12abc", "9999", "0", "abc", "-5", "9999.1", "  100 ", "0.1"}) {
        MarksInput input(ctx, printer);
        ASSERT_TRUE(input.load());
        dialogs.messages.clear();
        dialogs.beeps = 0;
        dialogs.inputs.enqueue(reply);
        ASSERT_TRUE(input.open_subject(0));
        const double total = input.input_total();
        input.marks_save();
        step(QString("reply '%1'").arg(reply),
             {QString("input total %1, 10001 saved %2").arg(total).arg(learner("punte1.dbf", 10001).value(2))});
    }
    EXPECT_TRUE(testing::matches_golden(session, "input/cycle_marks_input_total.txt"));
}

// Saving with equal totals leaves punte1.dbf as the opening left it and
// copies every mark into obe_p1.dbf; a learner missing there is added.
TEST_F(CycleMarks, TheSaveCopiesEachMarkIntoTheAssessmentTable) {
    {
        auto t = DbfTable::open(table("obe_p1.dbf"));
        t->MoveFirst();
        t->Delete();  // 10001 leaves obe_p1.dbf
    }
    MarksInput input(ctx, printer);
    open(input, "");
    const QByteArray opened = read_bytes(punte());
    ASSERT_TRUE(input.marks_save());
    EXPECT_TRUE(dialogs.texts().isEmpty());
    EXPECT_EQ(read_bytes(punte()), opened);
    const QList<QStringList> obe = records("obe_p1.dbf");
    ASSERT_EQ(obe.size(), 32);
    EXPECT_EQ(obe.last(), (QStringList{"10001", "", "80.0", "", "", "", "", ""}));
    EXPECT_EQ(fields("obe_p1.dbf", {10002, 10003, 10004, 10007}), (QStringList{"0.8", "A", "33.3", ""}));
}

// Paste: the clipboard's first column, line by line in the grid's order,
// each as a number with one decimal and no range test.
TEST_F(CycleMarks, PasteWritesTheClipboardLineByLine) {
    MarksInput input(ctx, printer);
    open(input, "");
    dialogs.answers.enqueue(MsgAnswer::No);
    input.paste_into_flex();
    EXPECT_EQ(dialogs.messages.last().icon, MsgIcon::Critical);
    EXPECT_TRUE(dialogs.messages.last().text.endsWith(
        "(consider LEARNER SEQUENCE and SUBJECT TOTAL)\r\nDO YOU REALY WANT TO CONTINUE ?"));
    EXPECT_EQ(input.cell(0, 2).trimmed(), "");
    dialogs.clipboard = "12\tx\r\nabc\n-5\r150.25\n";
    input.paste_into_flex();
    QStringList pasted;
    for (int r : {0, 1, 2, 3, 4, 31}) pasted << input.cell(r, 2).trimmed();
    EXPECT_EQ(pasted, (QStringList{"12.0", "0.0", "-5.0", "150.3", "0.0", "0.0"}));
}

// What a teacher reads in Afrikaans: the caption and headings, the prompts
// and messages of a session out of 20 with a refused mark, a scaling, an
// undo answered Cancel and an exit with a print.
TEST_F(CycleMarks, TheScreenSpeaksAfrikaans) {
    run.language_afrikaans = true;
    MarksInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    dialogs.inputs.enqueue("20");
    ASSERT_TRUE(input.open_subject(0));
    step("open out of 20", {input.caption(), QStringList{input.heading(0), input.heading(1), input.heading(2),
                                                             input.heading(3)}.join('|')});
    EXPECT_FALSE(input.cell_changed(0, 2, "20.1"));
    EXPECT_TRUE(input.cell_changed(0, 2, "20"));
    step("type 20.1, then 20");
    input.scale_marks();
    dialogs.answers.enqueue(MsgAnswer::Cancel);
    input.marks_undo();
    input.marks_exit();
    step("scale, undo answered Cancel, exit");
    EXPECT_TRUE(testing::matches_golden(session, "input/cycle_marks_afrikaans.txt"));
    EXPECT_TRUE(testing::pdf_text(printer.files.value(0)).contains("GEMIDDELD :="));
}

// Bad tables: a missing one beeps and nothing else; a damaged or foreign one
// says why; neither the table nor the last backup is touched.
TEST_F(CycleMarks, ABadTableIsRefusedAndLosesNothing) {
    write_bytes(run.data_folder + "/PUNTE1.BAK", "the last good copy");
    const QByteArray good = read_bytes(punte());
    DbfTable::create(path("foreign.dbf"),
                     {{"EF_T_NR", DbfType::Character, 10, 0}, {"EF_NAME", DbfType::Character, 40, 0}});
    const std::pair<const char*, QByteArray> cases[] = {
        {"missing", QByteArray()},
        {"truncated", good.left(good.size() - 100)},
        {"foreign", read_bytes(path("foreign.dbf"))},
        {"not a table", "hello"},
    };
    for (const auto& [name, bytes] : cases) {
        if (bytes.isEmpty()) QFile::remove(punte().isEmpty() ? data("x") : punte());
        else write_bytes(run.data_folder + "/punte1.dbf", bytes);
        MarksInput input(ctx, printer);
        ASSERT_TRUE(input.load());
        const bool opened = input.open_subject(0);
        step(name, {QString("opened %1, series open %2, table kept %3, backup: %4")
                        .arg(opened)
                        .arg(input.series_open())
                        .arg(bytes.isEmpty() || read_bytes(punte()) == bytes)
                        .arg(read_bytes(run.data_folder + "/PUNTE1.BAK"))});
    }
    EXPECT_TRUE(
        testing::matches_golden(session.replace(run.data_folder, "<data>"), "input/cycle_marks_bad_tables.txt"));
}

}  // namespace
}  // namespace veldo
