// The column model, its file and the example book.
#include <gtest/gtest.h>

#include "markbook/setup_model.h"
#include "tests/support/mark_book_fixture.h"

namespace veldo {
namespace {

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

}  // namespace
}  // namespace veldo
