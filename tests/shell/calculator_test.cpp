#include <gtest/gtest.h>

#include "shell/calculator.h"
#include "tests/support/fake_screens.h"

using namespace veldo;
using veldo::testing::FakeScreens;

namespace {

struct CalculatorTest : ::testing::Test {
    FakeScreens screens;
    MathCalc calc{screens};

    // Types a figure digit by digit, with "." for the point.
    void type(const char* text) {
        for (const char* p = text; *p; ++p) {
            if (*p == '.')
                calc.DotBttn();
            else
                calc.digit(*p - '0');
        }
    }
    void keys(std::initializer_list<int> codes) {
        for (int code : codes) calc.key_press(code);
    }
};

}  // namespace

// Buttons.

TEST_F(CalculatorTest, StartsEmptyWithNoOperator) {
    EXPECT_EQ(calc.display(), "");
    EXPECT_EQ(calc.pending_operator(), "");
    EXPECT_FALSE(calc.replace_display());
}

TEST_F(CalculatorTest, DigitsAppendToTheDisplay) {
    type("1203");
    EXPECT_EQ(calc.display(), "1203");
}

TEST_F(CalculatorTest, LeadingZerosStayAsTyped) {
    type("007");
    EXPECT_EQ(calc.display(), "007");
}

TEST_F(CalculatorTest, DigitOutOfRangeIsPassedOver) {
    calc.digit(10);
    calc.digit(-1);
    EXPECT_EQ(calc.display(), "");
}

TEST_F(CalculatorTest, AddsSubtractsMultipliesDivides) {
    type("12.5");
    calc.Plus();
    type("7.5");
    calc.Equals();
    EXPECT_EQ(calc.display(), "20");

    type("3");
    calc.Minus();
    type("10");
    calc.Equals();
    EXPECT_EQ(calc.display(), "-7");

    type("6");
    calc.Times();
    type("0.5");
    calc.Equals();
    EXPECT_EQ(calc.display(), "3");

    type("1");
    calc.Div();
    type("8");
    calc.Equals();
    EXPECT_EQ(calc.display(), "0.125");
}

TEST_F(CalculatorTest, ResultIsPlainNumberTextWithoutLeadingBlank) {
    type("2");
    calc.Div();
    type("3");
    calc.Equals();
    EXPECT_EQ(calc.display(), "0.666666666666667");
}

TEST_F(CalculatorTest, DivisionByZeroShowsZeroWithoutMessage) {
    type("7");
    calc.Div();
    type("0");
    calc.Equals();
    EXPECT_EQ(calc.display(), "0");
    EXPECT_EQ(calc.pending_operator(), "/");
}

TEST_F(CalculatorTest, DivisionByEmptyDisplayShowsZero) {
    type("7");
    calc.Div();
    calc.Equals();
    EXPECT_EQ(calc.display(), "0");
}

TEST_F(CalculatorTest, OverflowIsPassedOverAndShowsZero) {
    type("1");
    for (int i = 0; i < 200; ++i) calc.digit(0);  // 1E+200
    calc.Times();
    type("1");
    for (int i = 0; i < 200; ++i) calc.digit(0);
    calc.Equals();
    EXPECT_EQ(calc.display(), "0");
}

// The display holds plain decimals, never an exponent, so that Val reads a
// result back whole when the next operator takes it.
TEST_F(CalculatorTest, LargeAndSmallResultsShowInPlainDecimalsAndReadBack) {
    type("1000000000");
    calc.Times();
    type("1000000000");
    calc.Equals();
    EXPECT_EQ(calc.display(), "1000000000000000000");
    calc.Div();
    type("1000000000000000000");
    calc.Equals();
    EXPECT_EQ(calc.display(), "1");

    type("1");
    calc.Div();
    type("40000");
    calc.Equals();
    EXPECT_EQ(calc.display(), "0.000025");
    calc.Times();
    type("40000");
    calc.Equals();
    EXPECT_EQ(calc.display(), "1");
    type("0.00001");
    calc.Over();
    EXPECT_EQ(calc.display(), "100000");
}

TEST_F(CalculatorTest, EqualsWithoutOperatorShowsZero) {
    type("42");
    calc.Equals();
    EXPECT_EQ(calc.display(), "0");
    EXPECT_DOUBLE_EQ(calc.second_operand(), 42.0);
}

TEST_F(CalculatorTest, ChainDropsThePendingSum) {
    type("2");
    calc.Plus();
    type("3");
    calc.Plus();
    type("4");
    calc.Equals();
    EXPECT_EQ(calc.display(), "7");
}

TEST_F(CalculatorTest, ChainOfMixedOperatorsKeepsOnlyTheLast) {
    type("10");
    calc.Times();
    type("5");
    calc.Minus();
    type("2");
    calc.Equals();
    EXPECT_EQ(calc.display(), "3");
}

TEST_F(CalculatorTest, OperatorEmptiesDisplayAndKeepsFirstOperand) {
    type("9");
    calc.Times();
    EXPECT_EQ(calc.display(), "");
    EXPECT_DOUBLE_EQ(calc.first_operand(), 9.0);
    EXPECT_EQ(calc.pending_operator(), "*");
}

TEST_F(CalculatorTest, OperatorOnEmptyDisplayTakesZero) {
    calc.Minus();
    type("5");
    calc.Equals();
    EXPECT_EQ(calc.display(), "-5");
}

TEST_F(CalculatorTest, SecondEqualsRepeatsWithShownNumberAsSecondOperand) {
    type("100");
    calc.Div();
    type("4");
    calc.Equals();
    EXPECT_EQ(calc.display(), "25");
    calc.Equals();  // 100 / 25
    EXPECT_EQ(calc.display(), "4");
    EXPECT_DOUBLE_EQ(calc.second_operand(), 25.0);
    calc.Equals();  // 100 / 4
    EXPECT_EQ(calc.display(), "25");
}

TEST_F(CalculatorTest, SecondEqualsAfterPlusKeepsTheOldFirstOperand) {
    type("2");
    calc.Plus();
    type("3");
    calc.Equals();
    EXPECT_EQ(calc.display(), "5");
    calc.Equals();  // 2 + 5
    EXPECT_EQ(calc.display(), "7");
    calc.Equals();  // 2 + 7
    EXPECT_EQ(calc.display(), "9");
    EXPECT_DOUBLE_EQ(calc.first_operand(), 2.0);
}

TEST_F(CalculatorTest, DigitAfterEqualsStartsNewNumber) {
    type("2");
    calc.Plus();
    type("3");
    calc.Equals();
    EXPECT_TRUE(calc.replace_display());
    calc.digit(8);
    EXPECT_EQ(calc.display(), "8");
    EXPECT_FALSE(calc.replace_display());
    calc.digit(1);
    EXPECT_EQ(calc.display(), "81");
}

TEST_F(CalculatorTest, PointAfterEqualsStartsNewNumber) {
    type("1");
    calc.Plus();
    type("1.5");
    calc.Equals();
    EXPECT_EQ(calc.display(), "2.5");
    calc.DotBttn();
    EXPECT_EQ(calc.display(), ".");
    calc.digit(5);
    EXPECT_EQ(calc.display(), ".5");
}

TEST_F(CalculatorTest, SecondPointInNumberIsIgnored) {
    type("1.2.3");
    EXPECT_EQ(calc.display(), "1.23");
    calc.DotBttn();
    EXPECT_EQ(calc.display(), "1.23");
}

TEST_F(CalculatorTest, PointOnEmptyDisplayStandsAlone) {
    calc.DotBttn();
    calc.DotBttn();
    EXPECT_EQ(calc.display(), ".");
    calc.Plus();
    EXPECT_DOUBLE_EQ(calc.first_operand(), 0.0);
}

TEST_F(CalculatorTest, OverOfHalfShowsTwo) {
    type("0.5");
    calc.Over();
    EXPECT_EQ(calc.display(), "2");
}

TEST_F(CalculatorTest, OverOfZeroOrEmptyLeavesDisplay) {
    type("0.0");
    calc.Over();
    EXPECT_EQ(calc.display(), "0.0");
    calc.ClearBttn();
    calc.Over();
    EXPECT_EQ(calc.display(), "");
}

TEST_F(CalculatorTest, OverOfNegativeAndOfThree) {
    type("4");
    calc.PlusMinus();
    calc.Over();
    EXPECT_EQ(calc.display(), "-0.25");
    calc.ClearBttn();
    type("3");
    calc.Over();
    EXPECT_EQ(calc.display(), "0.333333333333333");
}

TEST_F(CalculatorTest, OverDoesNotStartANewNumber) {
    type("4");
    calc.Over();
    calc.digit(5);
    EXPECT_EQ(calc.display(), "0.255");
}

TEST_F(CalculatorTest, PlusMinusTurnsTheSign) {
    type("12.5");
    calc.PlusMinus();
    EXPECT_EQ(calc.display(), "-12.5");
    calc.PlusMinus();
    EXPECT_EQ(calc.display(), "12.5");
}

TEST_F(CalculatorTest, PlusMinusOnEmptyDisplayGivesZero) {
    calc.PlusMinus();
    EXPECT_EQ(calc.display(), "0");
}

TEST_F(CalculatorTest, PlusMinusTidiesTheTypedFigure) {
    type("007.50");
    calc.PlusMinus();
    EXPECT_EQ(calc.display(), "-7.5");
}

TEST_F(CalculatorTest, PlusMinusOnResultKeepsReplaceFlag) {
    type("2");
    calc.Plus();
    type("3");
    calc.Equals();
    calc.PlusMinus();
    EXPECT_EQ(calc.display(), "-5");
    calc.digit(1);
    EXPECT_EQ(calc.display(), "1");
}

TEST_F(CalculatorTest, ClearKeepsOperandsAndOperator) {
    type("8");
    calc.Minus();
    type("99");
    calc.ClearBttn();
    EXPECT_EQ(calc.display(), "");
    EXPECT_EQ(calc.pending_operator(), "-");
    EXPECT_DOUBLE_EQ(calc.first_operand(), 8.0);
    type("3");
    calc.Equals();
    EXPECT_EQ(calc.display(), "5");
}

TEST_F(CalculatorTest, ClearAfterEqualsThenEqualsUsesZero) {
    type("8");
    calc.Times();
    type("2");
    calc.Equals();
    calc.ClearBttn();
    calc.Equals();  // 8 * 0
    EXPECT_EQ(calc.display(), "0");
}

TEST_F(CalculatorTest, CaptionsInBothLanguages) {
    EXPECT_EQ(MathCalc::caption(true), "SAKREKENAAR");
    EXPECT_EQ(MathCalc::caption(false), "CALCULATOR");
}

// Keys.

TEST_F(CalculatorTest, KeyCodesOfDigitsPressDigits) {
    for (int code = 48; code <= 57; ++code) calc.key_press(code);
    EXPECT_EQ(calc.display(), "0123456789");
}

TEST_F(CalculatorTest, KeyCodesOfOperators) {
    keys({49, 50, 107, 51, 187});  // 12 + 3 =
    EXPECT_EQ(calc.display(), "15");
    keys({57, 109, 52, 187});  // 9 - 4 =
    EXPECT_EQ(calc.display(), "5");
    keys({54, 106, 55, 187});  // 6 * 7 =
    EXPECT_EQ(calc.display(), "42");
    keys({57, 111, 50, 187});  // 9 / 2 =
    EXPECT_EQ(calc.display(), "4.5");
}

TEST_F(CalculatorTest, KeyCodeOfPoint) {
    keys({49, 46, 53, 46});
    EXPECT_EQ(calc.display(), "1.5");
}

TEST_F(CalculatorTest, KeyCodesOfClearBothCases) {
    keys({49, 67});
    EXPECT_EQ(calc.display(), "");
    keys({50, 99});
    EXPECT_EQ(calc.display(), "");
}

TEST_F(CalculatorTest, EscapeUnloadsTheForm) {
    calc.key_press(27);
    EXPECT_EQ(screens.unloaded, QStringList{screen::MathCalc});
}

TEST_F(CalculatorTest, OtherKeysDoNothing) {
    keys({49});
    // Enter, the keypad digits, the main '-' and '.' keys' other codes, letters.
    keys({13, 96, 105, 189, 190, 65, 100, 0, 255, 1000, -1});
    EXPECT_EQ(calc.display(), "1");
    EXPECT_EQ(calc.pending_operator(), "");
    EXPECT_TRUE(screens.unloaded.isEmpty());
}

TEST_F(CalculatorTest, KeyEqualsTwiceRepeats) {
    keys({51, 106, 50, 187, 187});  // 3 * 2 = = gives 3 * 6
    EXPECT_EQ(calc.display(), "18");
}
