// The column model, its file and the example book.
#include <gtest/gtest.h>

#include "markbook/setup_model.h"

namespace veldo {
namespace {

TEST(SetupFile, HoldsTwoHundredQuotedValuesWithCrLf) {
    MarkBookSetup s;
    s.rows[0] = {"TAAK 1", "10", "5", "", ""};
    s.rows[39] = {"LAASTE", "", "", "", "S4"};
    const QByteArray bytes = s.to_file_bytes();
    EXPECT_EQ(bytes.count("\r\n"), 200);
    EXPECT_TRUE(bytes.startsWith("\"TAAK 1\"\r\n\"10\"\r\n\"5\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n"));
    EXPECT_TRUE(bytes.endsWith("\"LAASTE\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"S4\"\r\n"));
    const MarkBookSetup back = MarkBookSetup::from_file_bytes(bytes);
    EXPECT_EQ(back.rows[0].target, "5");
    EXPECT_EQ(back.rows[39].cycle, "S4");
}

TEST(SetupFile, AShortFileLeavesTheRestBlank) {
    const MarkBookSetup s = MarkBookSetup::from_file_bytes("\"TASK 1\"\r\n\"10\"\r\n\"3\"\r\n");
    EXPECT_EQ(s.rows[0].name, "TASK 1");
    EXPECT_EQ(s.rows[0].target, "3");
    EXPECT_EQ(s.rows[0].out_of, "");
    EXPECT_FALSE(s.rows[1].is_used());
    EXPECT_TRUE(MarkBookSetup::from_file_bytes({}).is_empty());
}

TEST(SetupModel, ARowNamedAsSomeTargetIsATotalEvenWhenItNamesItself) {
    MarkBookSetup s;
    s.rows[0] = {"A", "10", "3", "", ""};
    s.rows[1] = {"B", "10", "2", "", ""};  // names itself
    s.rows[2] = {"C", "20", "", "", ""};
    EXPECT_FALSE(s.is_total_row(1));
    EXPECT_TRUE(s.is_total_row(2));
    EXPECT_TRUE(s.is_total_row(3));
    EXPECT_FALSE(s.is_empty());
}

TEST(ExampleBook, WritesTwentyOneRowsAndLeavesTheDashCellsAndTheRest) {
    MarkBookSetup s;
    for (auto& r : s.rows) r = {"old", "1", "2", "3", "4"};
    apply_example_book(s, true);
    EXPECT_EQ(s.rows[0].name, "TAAK 1");
    EXPECT_EQ(s.rows[0].total, "10");
    EXPECT_EQ(s.rows[0].target, "5");
    EXPECT_EQ(s.rows[0].out_of, "3");  // a dash: left as it was
    EXPECT_EQ(s.rows[4].name, "KLASWERK");
    EXPECT_EQ(s.rows[4].out_of, "40");
    EXPECT_EQ(s.rows[13].cycle, "S1");
    EXPECT_EQ(s.rows[20].name, "TOTAAL");
    EXPECT_EQ(s.rows[20].target, "");
    EXPECT_EQ(s.rows[21].name, "old");
    apply_example_book(s, false);
    EXPECT_EQ(s.rows[5].name, "MINI ASSIGNMENT");
    EXPECT_EQ(s.rows[10].name, "SUB TOTAL 1");
    EXPECT_EQ(s.rows[18].name, "EXAMINATIONS");
}

}  // namespace
}  // namespace veldo
