// The column model, its file and the example book; the setup screen,
// copying setups and moving learners, on the demo school.
#include <gtest/gtest.h>

#include <QFile>

#include "markbook/marks_table.h"
#include "markbook/move_learners.h"
#include "markbook/setup_copy.h"
#include "markbook/setup_model.h"
#include "markbook/setup_screen.h"
#include "store/series.h"
#include "store/table_layouts.h"
#include "tests/markbook/demo_school_fixture.h"
#include "tests/support/golden.h"

namespace veldo {
namespace {

using testing::read_bytes;
using testing::setup_rows;

TEST(SetupFile, HoldsTwoHundredQuotedValuesWithCrLf) {
    MarkBookSetup s;
    s.rows[0] = {"TAAK 1", "10", "5", "", ""};
    s.rows[39] = {"LAASTE", "", "", "", "S4"};
    const QByteArray bytes = s.to_file_bytes();
    EXPECT_EQ(bytes.count("\r\n"), 200);
    EXPECT_TRUE(bytes.startsWith("\"TAAK 1\"\r\n\"10\"\r\n\"5\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n"));
    EXPECT_TRUE(bytes.endsWith("\"LAASTE\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"S4\"\r\n"));
    const MarkBookSetup back = MarkBookSetup::from_file_bytes(bytes);
    EXPECT_EQ(setup_rows(back, {1, 40}), (QStringList{"TAAK 1|10|5||", "LAASTE||||S4"}));
}

TEST(SetupFile, AShortFileLeavesTheRestBlank) {
    const MarkBookSetup s = MarkBookSetup::from_file_bytes("\"TASK 1\"\r\n\"10\"\r\n\"3\"\r\n");
    EXPECT_EQ(setup_rows(s, {1, 2}), (QStringList{"TASK 1|10|3||", "||||"}));
    EXPECT_TRUE(MarkBookSetup::from_file_bytes({}).is_empty());
}

TEST(SetupModel, ARowNamedAsSomeTargetIsATotalEvenWhenItNamesItself) {
    MarkBookSetup s;
    s.rows[0] = {"A", "10", "3", "", ""};
    s.rows[1] = {"B", "10", "2", "", ""};  // names itself
    s.rows[2] = {"C", "20", "", "", ""};
    EXPECT_EQ((QList<bool>{s.is_total_row(1), s.is_total_row(2), s.is_total_row(3)}), (QList<bool>{false, true, true}));
    EXPECT_FALSE(s.is_empty());
}

// A dash in the example (TAAK 1's out-of, most cycles) leaves the cell as it was.
TEST(ExampleBook, WritesTwentyOneRowsAndLeavesTheDashCellsAndTheRest) {
    MarkBookSetup s;
    for (auto& r : s.rows) r = {"old", "1", "2", "3", "4"};
    apply_example_book(s, true);
    EXPECT_EQ(setup_rows(s, {1, 5, 14, 21, 22}),
              (QStringList{"TAAK 1|10|5|3|4", "KLASWERK|40|11|40|4", "HOOFTOETS 1|50|16|3|S1", "TOTAAL|100||100|4",
                           "old|1|2|3|4"}));
    apply_example_book(s, false);
    EXPECT_EQ(setup_rows(s, {6, 11, 19}),
              (QStringList{"MINI ASSIGNMENT|20|11|10|4", "SUB TOTAL 1|60|21|60|4", "EXAMINATIONS|20|20|20|4"}));
}

struct Setup : ::testing::Test, testing::DemoSchool {
    Setup() {
        run.start_folder = run.program_folder;
        DbfTable::create(run.start_folder + "/mrk_book.org", mark_book_fields());
    }
};

TEST_F(Setup, ABookIsMadeFromTheExampleAndItsMarksTableFromTheClassList) {
    SetupScreen screen(ctx, printer);
    ASSERT_TRUE(screen.load());
    // 8 WISK 8B has no setup and no marks table yet; never saved, its key
    // has no underscores.
    ASSERT_TRUE(screen.choose_subject(1));
    step("choose 8 WISK 8B", {QStringList{screen.caption(), screen.vak_ops(), screen.key()}.join('|'),
                              QString("setup empty %1, marks table %2")
                                  .arg(screen.setup().is_empty())
                                  .arg(!table("marks2.dbf").isEmpty())});

    screen.pboek_opstel_help();
    ASSERT_TRUE(screen.pboek_opstel_stoor());
    step("the example, saved");
    MarkBookSetup example;
    apply_example_book(example, false);
    EXPECT_EQ(read_bytes(table("setup_8  WISK8B.txt")), example.to_file_bytes());
    // One row per learner of the class list, number and name, marks blank.
    QList<QStringList> expected;
    for (const QStringList& l : records("punte2.dbf")) expected << l.mid(0, 2) + QStringList(40, "");
    ASSERT_FALSE(expected.isEmpty());
    EXPECT_EQ(records("marks2.dbf"), expected);
    // The totals of the example in pale yellow, the rest white.
    screen.choose_subject(1);
    QStringList colours;
    for (int row : {5, 11, 21, 1, 22}) colours << QString("%1 #%2").arg(row).arg(screen.name_colour(row), 6, 16);
    step("the colours", {colours.join(", "), QString("list shown %1").arg(screen.list_shown())});
    ASSERT_TRUE(screen.pboek_opstel_save());
    step("saved again", {QString("list shown %1").arg(screen.list_shown())});
    EXPECT_TRUE(testing::matches_golden(session, "markbook/new_book.txt"));
}

// Insert before line 3, then remove line 5, on 8 AFR 8A with its marks:
// the setup rows and targets as the screen moves them, and every field of
// every learner moved along.
TEST_F(Setup, InsertAndRemoveMoveTheRowsTargetsAndEveryLearnersMarks) {
    const QList<QStringList> before = records("marks1.dbf");
    SetupScreen screen(ctx, printer);
    ASSERT_TRUE(screen.load());
    ASSERT_TRUE(screen.choose_subject(0));
    dialogs.inputs.enqueue("3");
    ASSERT_TRUE(screen.pboek_data_ins());
    screen.select_row(5);
    ASSERT_TRUE(screen.pboek_data_del());
    // How the targets move is the rows' own test below; here the screen ends
    // with line 3 blank and TAAK 4 gone.
    EXPECT_EQ(setup_rows(screen.setup(), {3, 4, 5, 6}),
              (QStringList{"||||", "TAAK 3|10|5|10|", "KLASWERK|40|11|40|", "MINI OPDRAG|20|11|10|"}));
    EXPECT_EQ(setup_rows(screen.setup(), {40}), QStringList{"||||"});
    EXPECT_EQ(dialogs.prompts, QStringList{"INSERT BEFORE LINE ..."});
    EXPECT_EQ(dialogs.texts(), QStringList{"DO YOU WISH TO DELETE \r\n\"TAAK 4\" ?"});
    // What was saved is what the screen shows.
    EXPECT_EQ(read_bytes(table("setup_8  AFR__8A.txt")), screen.setup().to_file_bytes());

    // Field 4 (row 3) came in blank, field 6 (row 5, TAAK 4) went out.
    QList<QStringList> expected = before;
    for (QStringList& r : expected) {
        r.insert(4, "");
        r.removeLast();
        r.removeAt(6);
        r << "";
    }
    EXPECT_EQ(records("marks1.dbf"), expected);
    EXPECT_EQ(expected[0].mid(0, 9), (QStringList{"10001", "Botha, Anri", "3.5", "4.5", "", "6.0", "", "8.0", "5.5"}));
}

// The rows move as the screen moves them, the edges included.
TEST(SetupRows, InsertAndRemoveAdjustTargetsAsTheScreenDoes) {
    auto setup = [](std::initializer_list<SetupRow> rows) {
        MarkBookSetup s;
        int i = 0;
        for (const SetupRow& r : rows) s.rows[std::size_t(i++)] = r;
        return s;
    };
    const MarkBookSetup three = setup({{"A", "10", "3", "", ""}, {"B", "10", "3", "", ""}, {"T", "20", "", "", ""}});
    // Why, insert or remove, the line, then rows 1 to 4.
    const std::tuple<const char*, bool, int, QStringList> cases[] = {
        {"insert before 2: B and T move, A keeps 3", true, 2, {"A|10|3||", "||||", "B|10|4||", "T|20|||"}},
        {"insert above every used row moves nothing", true, 30, {"A|10|3||", "B|10|3||", "T|20|||", "||||"}},
        {"insert 0 does nothing", true, 0, {"A|10|3||", "B|10|3||", "T|20|||", "||||"}},
        {"remove the named target: the targets stay on 3, the next row", false, 3,
         {"A|10|3||", "B|10|3||", "||||", "||||"}},
        {"remove row 1: every target above it drops", false, 1, {"B|10|2||", "T|20|||", "||||", "||||"}},
    };
    for (const auto& [why, insert, at, rows] : cases) {
        SCOPED_TRACE(why);
        MarkBookSetup s = three;
        if (insert) SetupScreen::insert_rows(s, at);
        else SetupScreen::remove_row(s, at);
        EXPECT_EQ(setup_rows(s, {1, 2, 3, 4}), rows);
    }
    // Rows moved down that name the line itself keep its number.
    MarkBookSetup own = setup({{"A", "10", "", "", ""}, {"B", "10", "2", "", ""}, {"C", "10", "2", "", ""}});
    SetupScreen::insert_rows(own, 2);
    EXPECT_EQ(setup_rows(own, {1, 2, 3, 4}), (QStringList{"A|10|||", "||||", "B|10|2||", "C|10|2||"}));
    // Row 40 in use is lost by an insert.
    MarkBookSetup full;
    full.rows[39] = {"LAST", "10", "", "", ""};
    SetupScreen::insert_rows(full, 1);
    EXPECT_TRUE(full.is_empty());
}

// The boxes of line 22: the name takes capitals of a to z only, the
// numbers refuse letters with a beep; a blank name is refused, since a row
// is cleared only by removing it; a click paints the row it names; nothing
// is saved until UPDATE.
TEST_F(Setup, ThePanelTakesCapitalsRefusesNonNumbersAndNeedsAName) {
    SetupScreen screen(ctx, printer);
    ASSERT_TRUE(screen.load());
    ASSERT_TRUE(screen.choose_subject(0));
    screen.select_row(22);
    step("select line 22", {"line " + screen.panel()[0]});
    for (const auto& [box, typed] : {std::pair{1, "eksamen 3 é"}, {2, ""}, {2, "12.5"}, {2, "abc"}, {3, "21"},
                                     {3, "2x"}, {4, " "}, {5, "s5"}}) {
        screen.type_into(box, QString::fromUtf8(typed));
        const QString kept = screen.panel()[std::size_t(box)];
        step(QString("type '%1' into box %2").arg(QString::fromUtf8(typed)).arg(box),
             {QString("kept '%1', may leave %2").arg(kept).arg(screen.leave_box(box))});
    }
    const auto ok = [&] {
        const bool accepted = screen.pboek_data_ok();
        return QString("accepted %1: %2").arg(accepted).arg(setup_rows(screen.setup(), {22}).value(0));
    };
    screen.type_into(2, "50");
    screen.type_into(3, "21");
    step("50 and 21, then OK", {ok()});
    screen.type_into(1, "  ");
    step("a blank name, then OK", {ok()});
    screen.select_row(1);
    step("click line 1", {QString("line 22 #%1, in the file %2")
                              .arg(screen.name_colour(21), 6, 16)
                              .arg(read_bytes(table("setup_8  AFR__8A.txt")).count("EKSAMEN 3"))});
    EXPECT_TRUE(testing::matches_golden(session, "markbook/setup_panel.txt"));
}

// The explanations are read from the program's folder; edited, they are
// written back only at VELDO-HOUSE.
TEST_F(Setup, TheExplanationsComeFromTheProgramsFolderAndGoBackOnlyAtVeldoHouse) {
    const QString file = run.start_folder + "/kolom_info.eng";
    testing::write_bytes(file, "\"COLUMNS\r\nTOTAL, the mark\"\r\n");
    SetupScreen screen(ctx, printer);
    ASSERT_TRUE(screen.load());
    ASSERT_TRUE(screen.choose_subject(0));
    for (const char* school : {"HOëRSKOOL DIE KRANS", "VELDO-HOUSE"}) {
        run.school_name = QString::fromUtf8(school);
        screen.show_explanations();
        const QString shown = QString("shown %1: %2").arg(screen.explanations_shown()).arg(screen.explanations());
        screen.set_explanations("COLUMNS\r\nTOTAL, edited");
        screen.kb_ok();
        step(run.school_name, {shown, QString("after OK shown %1").arg(screen.explanations_shown()),
                               "the file: " + QString::fromUtf8(read_bytes(file))});
    }
    EXPECT_TRUE(testing::matches_golden(session, "markbook/setup_explanations.txt"));
    ASSERT_TRUE(screen.kb_druk());
    EXPECT_TRUE(testing::pdf_text(printer.files.last()).contains("TOTAL, edited"));
    ASSERT_TRUE(screen.pboek_opstel_print());
    EXPECT_TRUE(testing::pdf_text(printer.files.last()).contains("MARK BOOK SETUP"));
}

TEST_F(Setup, ASetupIsCopiedToTwoClassesUnderTheShortestKey) {
    const QList<QStringList> rows = series_rows(*store);
    const QByteArray source = read_bytes(table("setup_8  AFR__8A.txt"));
    // 8 WISK 8B is answered Yes, 9 NW N1 No, 10 WISK 10A Yes; the source itself is passed over.
    for (MsgAnswer a : {MsgAnswer::Yes, MsgAnswer::No, MsgAnswer::Yes}) dialogs.answers.enqueue(a);
    EXPECT_EQ(copy_setups(run, rows, 0, without_source({1, 0, 3, 4}, 0)), 2);
    step("copy 8 AFR 8A to 8 WISK 8B, 9 NW N1 and 10 WISK 10A");
    EXPECT_EQ((QByteArrayList{read_bytes(table("setup_8WISK8B.txt")), read_bytes(table("setup_10WISK10A.txt"))}),
              QByteArrayList(2, source));
    EXPECT_EQ(table("setup_9NWN1.txt") + table("marks2.dbf"), "");  // only setups go over
    // A source without a setup is named and nothing is copied.
    EXPECT_EQ(copy_setups(run, rows, 1 + 0 * int(QFile::remove(table("setup_8WISK8B.txt"))), {2}), -1);
    step("copy 8 WISK 8B, without a setup");
    EXPECT_TRUE(testing::matches_golden(session, "markbook/setup_copies.txt"));
}

// The two boxes ask again after each refusal, with a beep and the message.
TEST_F(Setup, MovingALearnerAsksForTwoValidGroupsAndMovesBothRows) {
    const QList<QStringList> to_before = records("marks5.dbf");
    const int list_before = int(records("punte5.dbf").size());
    MoveLearners move(*store, dialogs);
    for (const char* i : {"8A", "8a", "7Z", "8A", "8A", "7Z", "8a", "10A"}) dialogs.inputs.enqueue(i);
    ASSERT_TRUE(move.choose_groups());
    step("8A to 8a, 7Z to 8A, 8A to 7Z, 8a to 10A", {QString("series %1 to %2, learner 2 of the list: %3")
                                                          .arg(move.from_series())
                                                          .arg(move.to_series())
                                                          .arg(move.learners().value(1))});
    const QStringList marks = records("marks1.dbf")[1];
    ASSERT_TRUE(move.move_learner(1));
    QStringList added;
    for (const QStringList& r : records("punte5.dbf").mid(list_before)) added << r.mid(0, 2).join(' ');
    const QStringList left = fields("marks1.dbf", {10002}, 0) + fields("punte1.dbf", {10002}, 0);
    step("move 10002", {"still in 8A's tables: " + left.join('|'), "added to 10A's class list: " + added.join('|'),
                        QString("still on the list %1").arg(move.learners().contains("10002 Venter, Jaco"))});
    EXPECT_TRUE(testing::matches_golden(session, "markbook/move_learner.txt"));
    EXPECT_EQ(records("marks5.dbf"), to_before + QList<QStringList>{marks});  // every field as it stood

    // A blank box ends the action.
    dialogs.inputs.enqueue("8A");
    dialogs.inputs.enqueue("");
    EXPECT_FALSE(MoveLearners(*store, dialogs).choose_groups());
}

TEST_F(Setup, AMoveToAGroupWithoutABookIsRefusedAndTheTxtNameComesFirst) {
    MoveLearners move(*store, dialogs);
    ASSERT_TRUE(move.set_groups("8A", "8B"));  // 8 WISK 8B has no marks table
    const QByteArray marks = read_bytes(table("marks1.dbf"));
    EXPECT_FALSE(move.move_learner(0));
    EXPECT_EQ(dialogs.texts().last(), "See 'MARK BOOK SETUP' to create TO GROUP mark book");
    EXPECT_EQ(read_bytes(table("marks1.dbf")), marks);
    // An export disk's marks2.txt and punte2.txt stand for the group's tables.
    QFile::copy(table("marks1.dbf"), run.data_folder + "/marks2.txt");
    QFile::copy(table("punte1.dbf"), run.data_folder + "/punte2.txt");
    const int before = int(DbfTable::open(run.data_folder + "/marks2.txt")->RecordCount());
    ASSERT_TRUE(move.move_learner(0));
    EXPECT_EQ(DbfTable::open(run.data_folder + "/marks2.txt")->RecordCount(), before + 1);
    EXPECT_EQ(find_group_table(run.data_folder, "marks", 2), run.data_folder + "/marks2.txt");
}

}  // namespace
}  // namespace veldo
