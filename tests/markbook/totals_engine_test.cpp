// The arithmetic of totals and class averages, to the last decimal.
#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "markbook/totals_engine.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/temp_drive.h"
#include "util/legacy_number.h"

namespace veldo {
namespace {

using testing::fill_marks_table;
using testing::marks_row;
using testing::stored_row;

struct Totals : ::testing::Test, testing::MarksFile {
    // Recalculates a one-learner book and returns the stored fields.
    QStringList recalc_one(const QStringList& marks) {
        auto t = book({marks_row(10001, "Botha, Anri", marks)});
        recalculate_totals(*t, lists());
        return stored_row(*t, 0);
    }
};

TEST_F(Totals, TheWorkedExampleOfTheExampleBook) {
    apply_example_book(setup, true);
    const QStringList f = recalc_one({"8", "6", "A", "7"});
    // Feeders stay as typed. KLASWERK (6): 21 of 30 on a scale of 40;
    // SUBTOTAAL 1 (12): 21 + 7 passed up = 28 of 40, on 60; TOTAAL (22):
    // 21 + 14 passed up = 35 of 60, on 100. PRAKTIESE WERK (11) and the
    // totals 17 and 21 are fed nothing.
    EXPECT_EQ((QStringList{f[2], f[4], f[6], f[12], f[22], f[11], f[17], f[21]}),
              (QStringList{"8", "A", "28.0", "42.0", "58.3", "", "", ""}));

    // All absent leaves the totals blank, without a zero.
    apply_example_book(setup, false);
    const QStringList absent = recalc_one({"A", "a", "", "A"});
    EXPECT_EQ((QStringList{absent[6], absent[12], absent[22]}), QStringList(3, ""));
}

// One learner's marks under a small setup; the stored fields after a
// recalculation (field 2 is setup row 1).
TEST_F(Totals, EachRuleOfTheArithmeticToTheLastDecimal) {
    const std::vector<SetupRow> weighted = {
        {"TOETS A", "50", "3", "30", ""}, {"TOETS B", "50", "3", "70", ""}, {"TOTAAL", "100", "", "", ""}};
    const std::vector<SetupRow> into_total = {{"T1", "10", "2", "", ""}, {"TOT", "20", "", "", ""}};
    const std::vector<SetupRow> two_tests = {
        {"T1", "10", "3", "", ""}, {"T2", "10", "3", "", ""}, {"TOT", "20", "", "", ""}};
    const std::vector<SetupRow> big_pair = {
        {"T1", "10000", "3", "", ""}, {"T2", "10000", "3", "", ""}, {"TOT", "20000", "", "", ""}};
    // Why, the setup rows, the marks, then fields and their stored texts.
    using Stored = std::vector<std::pair<int, const char*>>;
    const std::tuple<const char*, std::vector<SetupRow>, QStringList, Stored> cases[] = {
        // X = 1, Y = 1: the mark 7 goes over as 7; then 7 of 1 on a scale of 10.
        {"a feeder with total 0 counts in full", {{"TASK", "0", "2", "", ""}, {"TOTAL", "10", "", "", ""}},
         {"7", "99"}, {{3, "70.0"}}},
        {"a row naming itself is blanked and stays blank", {{"SELF", "10", "1", "", ""}, {"OTHER", "10", "", "", ""}},
         {"5", "6"}, {{2, ""}, {3, "6"}}},
        {"a typed mark in a total is blanked away", into_total, {"", "a"}, {{3, ""}}},
        {"a typed mark in a total is blanked away: 5 of 10 on a scale of 20", into_total, {"5", "a"}, {{3, "10.0"}}},
        {"out-of weights a feeder inside its total: 24.0 + 35.0", weighted, {"40", "25"}, {{4, "59.0"}}},
        {"an absent test leaves the other on its own scale: 35 of 70 on 100", weighted, {"A", "25"}, {{4, "50.0"}}},
        // 1 of 3 weighted 10 is 3.3 (not 3.333...); two of them sum to 6.6,
        // which on a scale of 20 of 20 stays 6.6.
        {"rounding happens between the steps",
         {{"A", "3", "3", "10", ""}, {"B", "3", "3", "10", ""}, {"SUM", "20", "", "", ""}}, {"1", "1"}, {{4, "6.6"}}},
        // 0.25 of 1 weighted 1 is 0.3, and 0.05 stays 0.1: 0.3 + 0.1 of 2 on 2.
        {"half away from zero", {{"A", "1", "3", "1", ""}, {"B", "10", "3", "1", ""}, {"SUM", "2", "", "", ""}},
         {"0.25", "0.5"}, {{4, "0.4"}}},
        // Row 1 is the final total; row 3 feeds it and is fed by row 2. SUB
        // gets 5.0 from TEST (5 of 10 on 20), then FINAL gets SUB's
        // unconverted 5.0 weighted 100 of 20: 25.0. FINAL (field 2) is
        // converted before SUB (field 4): 25 of 100 stays 25.0. SUB's
        // correction of 5 then arrives as 25 more, and the sum of 50 is capped
        // at SUB's own total of 20, written as a plain number.
        {"a target above its source gets no correction in time",
         {{"FINAL", "100", "", "", ""}, {"TEST", "10", "3", "", ""}, {"SUB", "20", "1", "100", ""}}, {"", "5"},
         {{4, "10.0"}, {2, "20"}}},
        // Two named rows: fields from 2 + 2 on are emptied, T3's mark with
        // them, while the stray mark under the unnamed row 2 stays.
        {"a gap among the rows wipes the last named rows",
         {{"T1", "10", "", "", ""}, SetupRow(), {"T3", "10", "", "", ""}}, {"4", "9", "6"},
         {{2, "4"}, {3, "9"}, {4, ""}}},
        // "abc" is no absence: it is a mark of 0 and its scale counts.
        {"text in a mark reads as its leading number", two_tests, {"abc", "8x"}, {{4, "8.0"}}},
        {"text in a mark reads as its leading number: a comma ends it", two_tests, {"  7.5 ", "8,5"}, {{4, "15.5"}}},
        {"a no-break space around a mark is trimmed as a blank", two_tests, {"\u00A07\u00A0", "8"}, {{4, "15.0"}}},
        {"a no-break space alone is no mark", two_tests, {"\u00A0", "8"}, {{4, "16.0"}}},
        // 1 of 3 on a scale of 20 is 6.7. FINAL is fed SUB's 1 of 20
        // weighted 3, 0.2; the 5.666... that SUB gained is passed up read
        // back from its fifteen-digit text before the weight:
        // 0.283333333333333 * 3 is 0.8 (0.2833...33 * 3 straight would be
        // 0.9). 1.0 of 3 on a scale of 100 is 33.3 (not 36.7).
        {"the share passed up is read back from its text before the weight",
         {{"T", "3", "2", "", ""}, {"SUB", "20", "3", "3", ""}, {"FINAL", "100", "", "", ""}}, {"1"},
         {{3, "6.7"}, {4, "33.3"}}},
        // A mark field holds six characters: a total that needs more is cut
        // there, as the table stores it; a sign takes one of the six.
        {"a total that fills its field exactly", big_pair, {"4999.9", "5000"}, {{4, "9999.9"}}},
        {"a total one tenth past its field is cut", big_pair, {"5000", "5000"}, {{4, "10000."}}},
        {"a negative total that fills its field exactly", big_pair, {"-500", "-499.9"}, {{4, "-999.9"}}},
        {"a negative total one tenth past its field is cut", big_pair, {"-500", "-500"}, {{4, "-1000."}}},
        // 10000.5 is kept as 10000., and that is what its conversion (20 of
        // 40 thousand) doubles: 20000, not 20001.
        {"a cut total is converted as it was cut",
         {{"T1", "10000", "3", "10000", ""}, {"T2", "10000", "3", "10000", ""}, {"TOT", "40000", "", "", ""}},
         {"5000", "5000.5"}, {{4, "20000."}}},
        // Target 0 would be the name; target 41 is past the last field.
        {"a target outside the mark fields never touches the name",
         {{"ODD", "10", "0", "", ""}, {"FAR", "10", "41", "", ""}}, {"5", "6"}, {{1, "Botha, Anri"}, {0, "10001"}}},
    };
    for (const auto& [why, rows, marks, fields] : cases) {
        SCOPED_TRACE(why);
        setup = MarkBookSetup();
        for (size_t r = 0; r < rows.size(); ++r) setup.rows[r] = rows[r];
        const QStringList f = recalc_one(marks);
        for (const auto& [field, text] : fields) EXPECT_EQ(f[field], text) << "field " << field;
    }
}

TEST_F(Totals, EmptyRowsOfTheTableAreLeftAndOthersWorkedInTableOrder) {
    setup.rows[0] = {"T1", "10", "2", "", ""};
    setup.rows[1] = {"TOT", "100", "", "", ""};
    auto t = book({marks_row(2, "B", {"5"}), marks_row(1, "A", {"A"}), marks_row(3, "C", {"10"})});
    QStringList progress;
    recalculate_totals(*t, lists(), [&](int done, int count) { progress << QString("%1 of %2").arg(done).arg(count); });
    EXPECT_EQ(progress, (QStringList{"1 of 3", "2 of 3", "3 of 3"}));
    t.reset();
    EXPECT_EQ(column(3), (QStringList{"50.0", "", "100.0"}));
}

// The record's bytes of field f as they stand in the file.
QByteArray field_bytes(const QString& path, int record, int f) {
    const QByteArray bytes = testing::read_bytes(path);
    const int header = uchar(bytes[8]) | (uchar(bytes[9]) << 8);
    const int length = uchar(bytes[10]) | (uchar(bytes[11]) << 8);
    int offset = 1;
    const QList<DbfField> fields = mark_book_fields();
    for (int i = 0; i < f; ++i) offset += fields[i].width;
    return bytes.mid(header + record * length + offset, fields[f].width);
}

// Worked by hand: PRACTICAL WORK holds 15.4 of 30 on a scale of 30, so its
// conversion is (15.4 / 30) * 30 = 15.399999999999999 and D = -1.78e-15.
// D / X = -5.92e-17 goes through text and back: written with an exponent,
// Val read it as -5.92 and SUB TOTAL 1 fell to -16.6.
TEST_F(Totals, ARescalingOfAHairPassesUpAsNothing) {
    const QStringList rows[] = {
        {"TASK 1", "10", "5", "10"},           {"TASK 2", "10", "5", "10"},
        {"TASK 3", "10", "5", "10"},           {"TASK 4", "10", "5", "10"},
        {"CLASS WORK", "40", "11", "40"},      {"MINI ASSIGNMENT", "20", "11", "10"},
        {"PRACTICAL 1", "10", "10", "10"},     {"PRACTICAL 2", "10", "10", "10"},
        {"PRACTICAL 3", "10", "10", "10"},     {"PRACTICAL WORK", "30", "11", "10"},
        {"SUB TOTAL 1", "60", "", "60"},
    };
    for (int r = 0; r < int(std::size(rows)); ++r)
        setup.rows[r] = {rows[r][0], rows[r][1], rows[r][2], rows[r][3], ""};
    ASSERT_EQ((15.4 / 30) * 30, 15.399999999999999);
    recalc_one({"8", "6", "7", "9", "", "15", "5.1", "5.2", "5.1"});
    // CLASS WORK 30 of 40; PRACTICAL WORK 15.4 of 30; SUB TOTAL 1 got
    // 30.0 + 7.5 + 5.1 = 42.6, which the cap after PRACTICAL WORK's
    // (empty) correction cuts to that column's 30: 30 of 60 on 60.
    EXPECT_EQ((QByteArrayList{field_bytes(path, 0, 6), field_bytes(path, 0, 11), field_bytes(path, 0, 12),
                              field_bytes(path, 0, 13)}),
              (QByteArrayList{"30.0  ", "15.4  ", "30.0  ", "      "}));
}

// A book built as a teacher is meant to build one: each total's feeders have
// out-of values that add up to it, nested two or three deep, rows from 1 on
// without a gap, every feeder above its total.
struct GeneratedBook {
    MarkBookSetup setup;
    int rows = 0;
};

class BookGenerator {
public:
    explicit BookGenerator(unsigned seed) : rng_(seed) {}

    GeneratedBook make() {
        book_ = GeneratedBook();
        budget_ = pick(10, 36);  // the rows of totals still open may take a few more
        add_total(100, pick(2, 3), -1);
        return book_;
    }

    // A mark as a teacher might type it into a column out of `total`.
    QString mark(double total) {
        switch (pick(0, 19)) {
            case 0: return "A";
            case 1: return "a";
            case 2: return "";
            case 3: return "x";  // reads as 0
            case 4: return total >= 8 ? QString("%1,5").arg(pick(0, int(total) - 1)) : "0,5";
            default: return format_one_decimal(pick(0, int(total) * 10) / 10.0);
        }
    }

private:
    int pick(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng_); }

    int append(const QString& name, int total, int out_of) {
        const int row = book_.rows++;
        book_.setup.rows[row] = {name, QString::number(total), "", out_of > 0 ? QString::number(out_of) : "",
                                 ""};
        --budget_;
        return row;
    }

    // Adds the feeders of a total of `total`, then the total itself; returns
    // its row index. Leaves one row of the budget for every total still open.
    int add_total(int total, int depth, int out_of) {
        const int feeders = std::max(1, std::min(pick(2, 5), budget_ - 1 - (depth > 1 ? 2 : 0)));
        std::vector<int> parts(feeders, 1);
        for (int left = total - feeders; left > 0; --left) ++parts[pick(0, feeders - 1)];
        std::vector<int> children;
        for (int k = 0; k < feeders; ++k) {
            if (depth > 1 && budget_ >= 4 && pick(0, 2) == 0) {
                children.push_back(add_total(pick(2, 12) * 5, depth - 1, parts[k]));
            } else if (budget_ > 1) {
                const int own = std::array{5, 10, 15, 20, 25, 40, 50, 100}[pick(0, 7)];
                // A blank out-of means the feeder's own total.
                children.push_back(append(QString("T%1").arg(book_.rows + 1), own, own == parts[k] ? 0 : parts[k]));
            }
        }
        const int row = append(QString("TOT%1").arg(book_.rows + 1), total, out_of);
        for (int c : children) book_.setup.rows[c].target = QString::number(row + 1);
        return row;
    }

    std::mt19937 rng_;
    GeneratedBook book_;
    int budget_ = 0;
};

TEST(TotalsProperty, EveryTotalLiesInItsRangeAndARecalculationIsStable) {
    QTemporaryDir dir;
    int totals_checked = 0;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        BookGenerator gen(seed);
        const GeneratedBook book = gen.make();
        ASSERT_LE(book.rows, kSetupRows);
        const QString path = dir.filePath(QString("marks%1.dbf").arg(seed));
        QList<QStringList> learners;
        for (int l = 0; l < 12; ++l) {
            QStringList marks;
            for (int r = 0; r < book.rows; ++r)
                marks << (book.setup.is_total_row(r + 1) ? "" : gen.mark(Val(book.setup.rows[r].total)));
            learners << testing::marks_row(l + 1, QString("L%1").arg(l), marks);
        }
        fill_marks_table(path, learners);
        const ColumnLists lists = ColumnLists::from_setup(book.setup);
        {
            auto t = DbfTable::open(path);
            recalculate_totals(*t, lists);
        }
        const QByteArray first = testing::read_bytes(path);
        auto t = DbfTable::open(path);
        for (int l = 0; l < learners.size(); ++l) {
            const QStringList f = stored_row(*t, l);
            for (int r = 1; r <= book.rows; ++r) {
                if (!book.setup.is_total_row(r) || f[r + 1].isEmpty()) continue;
                const double total = Val(book.setup.rows[r - 1].total);
                const double v = Val(f[r + 1]);
                EXPECT_TRUE(v >= 0 && v <= total + 0.1)
                    << "row " << r << " of " << total << ": " << f[r + 1].toStdString();
                ++totals_checked;
            }
        }
        recalculate_totals(*t, lists);
        t->Close();
        EXPECT_EQ(testing::read_bytes(path), first) << "a second recalculation changed the table";
    }
    EXPECT_GT(totals_checked, 2000);
}

TEST_F(Totals, ClassAveragesArePercentagesOfTheColumnTotalToFourDecimals) {
    const char* totals[] = {"10", "30", "0", "10"};
    for (int r = 0; r < 4; ++r) setup.rows[r] = {QString("T%1").arg(r + 1), totals[r], "", "", ""};
    auto t = book({marks_row(1, "A", {"8", "1", "5", "A"}), marks_row(2, "B", {"6", "1", "5", "a"}),
                   marks_row(3, "C", {"A", "2", "", ""}), marks_row(4, "D", {"", "", "", ""})});
    const auto avg = class_averages(*t, lists());
    // (8 + 6) / 2 of 10; (1 + 1 + 2) / 3 of 30; a total of 0; only absences;
    // the number and the field past the last.
    EXPECT_EQ((QStringList{avg[2].fixed4(), avg[3].fixed4(), avg[4].fixed4(), avg[5].fixed4(), avg[0].fixed4(),
                           avg[42].fixed4()}),
              (QStringList{"70.0000", "4.4444", "0.0000", "0.0000", "0.0000", "0.0000"}));
}

}  // namespace
}  // namespace veldo
