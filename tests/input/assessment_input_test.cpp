// The assessment screen and the mark lists on the demo school: series 1
// (8 AFR, out of 100) with a few marks in obe_p1.dbf, its effort keys in
// LAFR_P_S.dbf and its formative codes in LAFR_f_e.8.
#include <gtest/gtest.h>

#include <QFile>

#include "input/assessment_input.h"
#include "input/mark_lists.h"
#include "store/table_layouts.h"
#include "tests/markbook/demo_school_fixture.h"
#include "tests/support/golden.h"
#include "tests/support/shell_transcript.h"
#include "tests/support/unprivileged.h"
#include "util/text_grid.h"

namespace veldo {
namespace {

using testing::read_bytes;
using testing::write_bytes;

struct Assessment : ::testing::Test, testing::DemoSchool {
    Assessment() {
        set_fields("obe_p1.dbf", {{10001, "80.0"}, {10002, "0.8"}, {10003, "A"}, {10004, "33.3"}, {10005, "95.0"}});
    }
    QString punte() const { return table("punte1.dbf"); }
    QString obe() const { return table("obe_p1.dbf"); }
    // Series 1 open in `mode`, with `input_total` typed into the prompt.
    void open(AssessmentInput& input, int mode, const QString& input_total = QString()) {
        ASSERT_TRUE(input.load());
        dialogs.inputs.enqueue(input_total);
        ASSERT_TRUE(input.open_subject(0));
        ASSERT_TRUE(input.choosing_mode());
        ASSERT_TRUE(input.io_ok(mode));
        dialogs.messages.clear();
        dialogs.prompts.clear();
    }
};

// Out of 50 in the mode with every column, saved back into both tables.
TEST_F(Assessment, ATeacherKeysMarksKeysAndFormativeCodesAndSaves) {
    {  // a learner the class list doesn't have yet
        auto t = DbfTable::open(obe());
        ASSERT_TRUE(t->AddNew() && t->set_value(0, 10099.0) && t->set_value(1, "Zulu, Ayanda") &&
                    t->set_value(2, "20.0") && t->Update());
    }
    AssessmentInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    dialogs.inputs.enqueue("50");
    ASSERT_TRUE(input.open_subject(0));
    // The mode comes before anything is copied or converted.
    step("open out of 50", QStringList{input.caption(), QString("choosing a mode %1, series open %2, backup %3")
                                                            .arg(input.choosing_mode())
                                                            .arg(input.series_open())
                                                            .arg(QFile::exists(run.data_folder + "/OBE_P1.BAK"))} +
                               input.mode_captions());
    const QByteArray before = read_bytes(obe());
    ASSERT_TRUE(input.io_ok(AssessmentInput::MultiAssessment));
    EXPECT_EQ(read_bytes(run.data_folder + "/OBE_P1.BAK"), before);
    // The lists of the subject: keys with their texts and NONE under a blank
    // key; formative codes padded to the longest ("10"). The headings, then
    // 10001's and 10002's marks out of 50 and the two labels.
    QStringList keys, codes, headings;
    for (const LookupItem& i : input.effort_keys()) keys << i.display();
    for (const LookupItem& i : input.formative_list()) codes << i.display();
    for (int c = 0; c < input.column_count(); ++c) headings << input.heading(c);
    step("multi assessment", {input.cell(0, 1).trimmed(), keys.join('|'), codes.join('|'), headings.join('|'),
                              QStringList{input.cell(row_of(input, 10001), 2).trimmed(),
                                          input.cell(row_of(input, 10002), 2).trimmed(), input.total_text(),
                                          input.average_text()}.join('|')});

    // Keying: no running count here, so the average divides by the count
    // found at the opening (5).
    const int r6 = row_of(input, 10006);
    const std::pair<int, const char*> typed[] = {
        {2, "50.1"},  // above the input total
        {2, "50"},    // the input total itself
        {3, "xyz"},   // no test, cut to the field
        {4, "3"},
        {7, "10"},
    };
    for (const auto& [column, text] : typed) {
        const bool accepted = input.cell_changed(r6, column, text);
        step(QString("type %1 into column %2").arg(text).arg(column),
             {QString("accepted %1 cell %2 total %3 average %4")
                  .arg(accepted)
                  .arg(input.cell(r6, column).trimmed(), input.total_text(), input.average_text())});
    }
    // A key from the list, found again by the cell's value.
    ASSERT_TRUE(input.choose_lookup(AssessmentInput::EffortKeyList, 1, r6, 3));
    step("choose the second effort key", {QString("cell %1, the list's row of 2: %2, of blank: %3")
                                              .arg(input.cell(r6, 3).trimmed())
                                              .arg(input.lookup_row(AssessmentInput::EffortKeyList, "2"))
                                              .arg(input.lookup_row(AssessmentInput::EffortKeyList, ""))});

    ASSERT_TRUE(input.marks_save());
    // 10006's record, then the marks of both tables; the keys stay in the
    // assessment table.
    const QList<int> copied = {10001, 10002, 10003, 10006, 10007, 10099};
    step("save", {QString("series open %1").arg(input.series_open()), learner("obe_p1.dbf", 10006).join('|'),
                  "obe_p1 " + fields("obe_p1.dbf", copied).join('|'),
                  "punte1 " + fields("punte1.dbf", copied).join('|'),
                  "punte1 keys " + fields("punte1.dbf", copied, 3).join('|')});
    EXPECT_TRUE(testing::matches_golden(session, "input/assessment_session.txt"));
}

// Each mode shows its columns; the cursor lands on the first of them, runs
// right through them and then down to the next learner; the last learner
// stays where it is. The lists appear only with their boxes on.
TEST_F(Assessment, EachModeShowsItsColumnsAndTheCursorWalksThem) {
    const auto at = [](std::pair<int, int> cell) { return QString("(%1,%2)").arg(cell.first).arg(cell.second); };
    for (int mode = AssessmentInput::Summative; mode <= AssessmentInput::MultiAssessment; ++mode) {
        AssessmentInput input(ctx, printer);
        open(input, mode);
        QStringList shown;
        for (int c = 0; c < input.column_count(); ++c)
            if (input.column_shown(c)) shown << QString::number(c);
        const int first = input.column_entered(0, 0), end = shown.last().toInt(), last = input.learner_count() - 1;
        step(input.mode_captions().value(mode),
             {"columns " + shown.join(' '), QString("enters %1, then %2; from the last column %3; last learner %4")
                                                .arg(first)
                                                .arg(at(input.next_cell(0, first)), at(input.next_cell(0, end)),
                                                     at(input.next_cell(last, end)))});
        ASSERT_TRUE(input.restore_backup());
    }
    AssessmentInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    const auto lists = [&] {
        static const char* names[] = {"none", "effort keys", "formative"};
        QStringList out;
        for (int c : {2, 3, 4, 7}) out << QString("%1 %2").arg(c).arg(names[input.lookup_for(c)]);
        return "lists: " + out.join(", ");
    };
    step("boxes off", {lists()});
    input.set_ps_info(true);
    input.set_fe_info(true);
    step("boxes on", {lists()});
    // No option marked: OK acts as exit.
    ASSERT_TRUE(input.open_subject(0));
    step("OK with no option marked", {QString("opened %1").arg(input.io_ok(AssessmentInput::NoMode))});
    EXPECT_TRUE(testing::matches_golden(session, "input/assessment_modes.txt"));
}

// The two boxes live in user_info.txt of the data folder: the folder, then
// the two values; read on the next load.
TEST_F(Assessment, TheListBoxesAreKeptInTheDataFolder) {
    AssessmentInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    EXPECT_FALSE(input.ps_info());
    input.set_ps_info(true);
    EXPECT_EQ(read_bytes(run.data_folder + "/user_info.txt"),
              "\"" + run.data_folder.toUtf8() + "\"\r\n#TRUE#\r\n#FALSE#\r\n");
    input.set_fe_info(true);
    input.set_ps_info(false);
    EXPECT_EQ(read_bytes(run.data_folder + "/user_info.txt"),
              "\"" + run.data_folder.toUtf8() + "\"\r\n#FALSE#\r\n#TRUE#\r\n");
    AssessmentInput again(ctx, printer);
    ASSERT_TRUE(again.load());
    EXPECT_EQ(std::pair(again.ps_info(), again.fe_info()), std::pair(false, true));
}

// Paste after the warning into the chosen column; Cancel pastes nothing.
// Undo says its own English words.
TEST_F(Assessment, PasteGoesIntoTheChosenColumnAndUndoPutsItBack) {
    run.language_afrikaans = true;
    AssessmentInput input(ctx, printer);
    open(input, AssessmentInput::MultiAssessment);
    const int n = input.learner_count();
    dialogs.clipboard = "4\r\n5x\r\n";
    input.paste_into_flex();
    step("paste", {QString("pasting %1, heading %2").arg(input.pasting()).arg(input.paste_heading())});
    // Target -1 is Cancel; each paste after the first shows the warning again.
    // Beyond the clipboard's lines a mark becomes 0.0, a text blank.
    for (const auto& [target, column] : {std::pair{-1, 3}, {1, 3}, {2, 4}, {0, 2}}) {
        if (!input.pasting()) input.paste_into_flex();
        input.pr_ok(target);
        const QString cells = QStringList{input.cell(0, column).trimmed(), input.cell(1, column).trimmed()}.join('|');
        step(QString("paste to %1").arg(target), {QString("pasting %1, column %2: %3 ... %4")
                                                      .arg(input.pasting())
                                                      .arg(column)
                                                      .arg(cells, input.cell(n - 1, column).trimmed())});
    }
    run.language_afrikaans = false;
    input.marks_undo();
    step("undo", {"column 3 row 1: " + input.cell(0, 3).trimmed()});
    EXPECT_TRUE(testing::matches_golden(session, "input/assessment_paste.txt"));
}

// A missing table beeps; a foreign one says why and keeps the last good
// backup; an empty one ends with no message; missing lists stay empty.
TEST_F(Assessment, BadTablesOpenNothingAndLoseNothing) {
    write_bytes(run.data_folder + "/OBE_P1.BAK", "the last good copy");
    ASSERT_TRUE(DbfTable::create(run.data_folder + "/narrow.dbf", class_list_fields()));
    const QByteArray narrow_bytes = read_bytes(run.data_folder + "/narrow.dbf");
    ASSERT_TRUE(DbfTable::create(run.data_folder + "/empty.dbf", assessment_fields()));
    const QByteArray empty_bytes = read_bytes(run.data_folder + "/empty.dbf");
    const std::pair<const char*, QByteArray> cases[] = {
        {"missing", {}}, {"class list layout", narrow_bytes}, {"no records", empty_bytes}};
    for (const auto& [name, bytes] : cases) {
        QFile::remove(run.data_folder + "/obe_p1.dbf");
        if (!bytes.isEmpty()) write_bytes(run.data_folder + "/obe_p1.dbf", bytes);
        AssessmentInput input(ctx, printer);
        ASSERT_TRUE(input.load());
        const bool chosen = input.open_subject(0);
        const bool opened = chosen && input.io_ok(AssessmentInput::Summative);
        // An empty table's copy is taken before it is found empty.
        const QByteArray backup = read_bytes(run.data_folder + "/OBE_P1.BAK");
        step(name, {QString("chosen %1, opened %2, series open %3, backup %4")
                        .arg(chosen)
                        .arg(opened)
                        .arg(input.series_open())
                        .arg(backup == bytes ? "of the table" : backup)});
    }
    EXPECT_TRUE(
        testing::matches_golden(session.replace(run.data_folder, "<data>"), "input/assessment_bad_tables.txt"));
    QFile::remove(run.data_folder + "/LAFR_P_S.dbf");
    QFile::remove(run.data_folder + "/LAFR_f_e.8");
    QFile::remove(run.data_folder + "/obe_p1.dbf");
    ASSERT_TRUE(QFile::copy(run.data_folder + "/obe_p2.dbf", run.data_folder + "/obe_p1.dbf"));
    // Without a subject table and an effort-key file the lists stay empty,
    // and nothing is said about them.
    dialogs.messages.clear();
    AssessmentInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    dialogs.inputs.enqueue(QString());
    ASSERT_TRUE(input.open_subject(0) && input.choosing_mode() && input.io_ok(AssessmentInput::EffortKeys));
    EXPECT_TRUE(input.effort_keys().isEmpty());
    EXPECT_TRUE(input.formative_list().isEmpty());
    EXPECT_TRUE(dialogs.texts().isEmpty());
}

// A data folder the teacher may not write: nothing opens, the boxes say
// why they can't be kept, no file changes.
TEST_F(Assessment, AReadOnlyFolderOpensNothingAndSaysWhy) {
    if (testing::rerun_unprivileged()) return;
    const QByteArray before = read_bytes(obe());
    QFile(run.data_folder).setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    AssessmentInput input(ctx, printer);
    ASSERT_TRUE(input.load());
    ASSERT_TRUE(input.open_subject(0));
    EXPECT_FALSE(input.io_ok(AssessmentInput::Summative));
    input.set_ps_info(true);
    QFile(run.data_folder).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    const QString folder = shown(run.data_folder);
    ASSERT_EQ(dialogs.messages.size(), 2);
    EXPECT_TRUE(dialogs.messages[0].text.startsWith("Can't write " + folder + "/OBE_P1.BAK: "));
    EXPECT_TRUE(dialogs.messages[1].text.startsWith("Can't write " + run.data_folder + "/user_info.txt: "));
    EXPECT_EQ(read_bytes(obe()), before);
    EXPECT_FALSE(QFile::exists(run.data_folder + "/OBE_P1.BAK"));
    EXPECT_FALSE(QFile::exists(run.data_folder + "/user_info.txt"));
}

// The list of the screen on paper: the list's own head, the visible fields
// right-aligned between "¦", the totals and the average.
TEST_F(Assessment, TheListPrintsTheVisibleFieldsAndItsTotals) {
    AssessmentInput input(ctx, printer);
    open(input, AssessmentInput::Summative);
    ASSERT_TRUE(input.cell_changed(row_of(input, 10005), 2, "a"));
    ASSERT_TRUE(input.marks_print());
    const QString text = testing::pdf_text(printer.files.last());
    for (const QString& line : {QString("PRINT MARKS"), QString("PAGE : 1"), QString("A-NO¦ LEARNER¦MARK( 100)"),
                                QString("10001¦ Botha, Anri¦ 80.0"), QString("10003¦ Steyn, Lindiwe¦ A"),
                                QString("TOTAL NUMBER OF LEARNERS/MARKS : 3.0 114.1"), QString("AVERAGE : 38.0")})
        EXPECT_TRUE(text.simplified().contains(QString(line).simplified())) << line.toStdString() << "\n"
                                                                            << text.toStdString();
    EXPECT_EQ(printer.stems.last(), "MARKS 8 AFR__ 8A ");
}

// punte_druk: the join of both tables, alphabetical or by rank with ties by
// name, the running total anew, the average lines out of the print total.
TEST_F(Assessment, MarkListsJoinBothTablesInEitherOrder) {
    set_fields("punte1.dbf", {{10001, "80.0"}, {10002, "77.0"}, {10003, "A"}, {10004, "77.0"}, {10005, "a"}});
    for (const auto& [field, value] : {std::pair{3, "4"}, {4, "1"}, {6, "10"}, {7, "99"}})
        set_fields("obe_p1.dbf", {{10002, value}}, field);
    MarkLists lists(ctx, printer);
    lists.load();
    QString grids = QStringList{lists.vak_ops(), lists.order_captions().join('/'), lists.series().value(3).text,
                                QString("print enabled %1").arg(lists.print_enabled())}.join('|');
    ASSERT_TRUE(lists.select_series(0));
    grids += "|print total " + lists.print_total() + '\n';

    // Alphabetical, then by rank with the tie of 77.0 by name: number,
    // learner, mark, running total, key, formative. "A" and "a" are no marks.
    for (const bool rank : {false, true}) {
        lists.set_rank_order(rank);
        TextGrid grid;
        double sum = 0;
        int count = 0;
        ASSERT_TRUE(lists.build_list(grid, &sum, &count));
        grids += QString("%1 marks, sum %2\n").arg(count).arg(QString::number(sum, 'g', 17)) + testing::grid_text(grid);
    }
    EXPECT_TRUE(testing::matches_golden(grids, "input/mark_lists.txt"));
    // Out of 0 no percentage is printed.
    for (const auto& [total, percentage] : {std::pair{"50", "156.0%"}, {"0", ""}}) {
        SCOPED_TRACE(total);
        lists.set_print_total(total);
        ASSERT_TRUE(lists.punte_druk_print());
        const QString text = testing::pdf_text(printer.files.last()).simplified();
        EXPECT_TRUE(text.contains("AVERAGE := 78.0"));
        EXPECT_TRUE(text.contains(percentage));
        EXPECT_EQ(text.contains("%"), QString(total) != "0");
        EXPECT_EQ(printer.stems.last(), "MARKLIST 8 AFR 8A");
    }
    QFile::remove(punte());
    dialogs.messages.clear();
    EXPECT_FALSE(lists.punte_druk_print());
    EXPECT_EQ(dialogs.texts(), QStringList{"There is no marks file PUNTE1.DBF in " + shown(run.data_folder) + "."});
}

}  // namespace
}  // namespace veldo
