// The actions on a whole column: scaling, copying, pasting, the merit list.
#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "markbook/column_actions.h"
#include "markbook/totals_engine.h"
#include "store/run_state.h"
#include "tests/support/golden.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/temp_drive.h"
#include "util/legacy_number.h"

namespace veldo {
namespace {

struct ColumnActions : ::testing::Test, testing::MarksFile {
    ColumnActions() {
        setup.rows[0] = {"TAAK 1", "20", "3", "", ""};
        setup.rows[1] = {"TAAK 2", "50", "3", "", ""};
        setup.rows[2] = {"TOTAAL", "100", "", "", ""};
    }
    // Learners 10001 on, "Leerder 0" on, with these marks from setup row 1.
    std::unique_ptr<DbfTable> book(const QList<QStringList>& marks) {
        QList<QStringList> rows;
        for (int i = 0; i < marks.size(); ++i)
            rows << testing::marks_row(10001 + i, "Leerder " + QString::number(i), marks[i]);
        return MarksFile::book(rows);
    }
};

// Scaling moves every mark by the same percentage points and clamps at 0 and
// at the column's total; A, a and blank stay.
TEST_F(ColumnActions, ScalingMovesMarksByPointsAndClamps) {
    // Why, the class average now and wanted, the marks before and after.
    const std::tuple<const char*, double, double, QStringList, QStringList> cases[] = {
        // 10 of 20 = 50 %: 50 - 40 + 60 = 70 % = 14.0
        {"up by 20 points", 40, 60, {"10", "4", "A", "a", "", "19.5"}, {"14.0", "8.0", "A", "a", "", "20.0"}},
        {"down past 0", 60, 20, {"10", "4", "0.1"}, {"2.0", "0.0", "0.0"}},
        {"above 100 clamps at the total", 50, 150, {"1", "0", "19"}, {"20.0", "20.0", "20.0"}},
        {"a class at 0", 0, 25, {"0", "2"}, {"5.0", "7.0"}},
        {"just below the top stays below", 50, 50.5, {"19.8"}, {"19.9"}},
        {"text reads by its leading number", 50, 50, {"12x"}, {"12.0"}},
    };
    for (const auto& [why, current, wanted, before, after] : cases) {
        SCOPED_TRACE(why);
        QList<QStringList> marks;
        for (const QString& m : before) marks << QStringList{m};
        auto t = book(marks);
        ASSERT_TRUE(scale_column(*t, lists(), 2, current, wanted));
        t.reset();
        EXPECT_EQ(column(2), after);
    }
}

TEST_F(ColumnActions, ScalingLeavesTheOtherColumnsAndAColumnOutOfZero) {
    setup.rows[0].total = "0";
    auto t = book({{"10", "30", "40.0"}, {"A", "50", "60.0"}});
    const QByteArray before = testing::read_bytes(path);
    ASSERT_TRUE(scale_column(*t, lists(), 2, 10, 90));
    EXPECT_EQ(testing::read_bytes(path), before);
    setup.rows[0].total = "20";
    ASSERT_TRUE(scale_column(*t, lists(), 2, 50, 100));
    t.reset();
    EXPECT_EQ(column(2) + column(3) + column(4), (QStringList{"20.0", "A", "30", "50", "40.0", "60.0"}));
}

// Over generated classes: every scaled mark lies in 0..total with one
// decimal, and the marks keep their order.
TEST_F(ColumnActions, ScaledMarksStayInRangeAndInOrder) {
    std::mt19937 random(20261124);
    for (int round = 0; round < 40; ++round) {
        const int total = 1 + int(random() % 150);
        setup.rows[0].total = QString::number(total);
        QList<QStringList> marks;
        const int learners = 1 + int(random() % 30);
        for (int i = 0; i < learners; ++i)
            marks << QStringList{format_one_decimal((random() % (total * 10 + 1)) / 10.0)};
        auto t = book(marks);
        const double current = class_averages(*t, lists())[2].to_double();
        const double wanted = double(random() % 1200) / 10.0;
        ASSERT_TRUE(scale_column(*t, lists(), 2, current, wanted));
        t.reset();
        const QStringList after = column(2);
        for (int i = 0; i < learners; ++i) {
            const double m = after[i].toDouble();
            EXPECT_GE(m, 0) << after[i].toStdString();
            EXPECT_LE(m, total) << after[i].toStdString();
            EXPECT_EQ(after[i], format_one_decimal(m));
            for (int j = 0; j < learners; ++j)
                if (marks[i][0].toDouble() > marks[j][0].toDouble()) { EXPECT_GE(m, after[j].toDouble()); }
        }
    }
}

TEST_F(ColumnActions, CopyTakesEachValueAsItStands) {
    auto t = book({{"12.5", "3"}, {"A", ""}, {"", "7"}, {"abc", "1"}});
    ASSERT_TRUE(copy_column(*t, 2, 3));
    EXPECT_EQ(column(3), (QStringList{"12.5", "A", "", "abc"}));
    const QByteArray before = testing::read_bytes(path);
    ASSERT_TRUE(copy_column(*t, 3, 3));  // onto itself: nothing changes
    EXPECT_EQ(testing::read_bytes(path), before);
    EXPECT_FALSE(copy_column(*t, 99, 3));
}

TEST_F(ColumnActions, PasteGivesEachLearnerALine) {
    const std::tuple<const char*, QString, QStringList> cases[] = {
        {"Windows line ends", "12\r\n13.25\r\n7\r\n", {"12.0", "13.3", "7.0"}},
        {"fewer lines than learners", "5\n", {"5.0", "0.0", "0.0"}},
        {"text and a negative", "abc\n-2\n150", {"0.0", "9", "150.0"}},
        {"more lines than learners", "1\n2\n3\n4\n5", {"1.0", "2.0", "3.0"}},
        {"a tab ends the cell", "4\t99\n\t5\n6", {"4.0", "0.0", "6.0"}},
    };
    for (const auto& [why, text, after] : cases) {
        SCOPED_TRACE(why);
        auto t = book({{"1"}, {"9"}, {"A"}});
        ASSERT_TRUE(paste_column(*t, 2, text));
        t.reset();
        EXPECT_EQ(column(2), after);
    }
}

TEST_F(ColumnActions, TheMeritListIsHighestFirstWithTiesInTableOrder) {
    auto t = book({{"12.5"}, {"A"}, {"30"}, {"12.5"}, {""}, {"4"}});
    const TextGrid grid = merit_list(*t, 2);
    QStringList rows;
    for (int r = 0; r < grid.rows(); ++r) rows << grid.text(r, 0) + " " + grid.text(r, 2).trimmed();
    EXPECT_EQ(rows, (QStringList{"10003 30", "10001 12.5", "10004 12.5", "10006 4", "10002 A", "10005 "}));
    EXPECT_EQ(grid.text(0, 1), "Leerder 2");  // the name beside the number
}

// The scaling prompt, the copy question, the paste warning and the two
// refusals, in Afrikaans, then in English.
TEST(ColumnActionMessages, InBothLanguages) {
    RunState run;
    QString texts;
    for (const bool afrikaans : {true, false}) {
        run.language_afrikaans = afrikaans;
        for (QString text : {scaling_prompt(run, 61.8966), scaling_prompt(run, 0), paste_warning(run),
                             copy_column_question(run, "TAAK 1", "TAAK 2"), scaling_total_column_message(run),
                             paste_no_column_message(run)})
            texts += text.replace("\r", "\\r").replace("\n", "\\n") + '\n';
    }
    EXPECT_TRUE(testing::matches_golden(texts, "markbook/column_action_messages.txt"));
}

}  // namespace
}  // namespace veldo
