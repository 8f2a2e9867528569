#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "shell/calculator.h"
#include "tests/support/fake_screens.h"

using namespace veldo;
using veldo::testing::FakeScreens;

namespace {

// Presses the buttons of a script: "." the point, + - * / =, "r" for 1/x,
// "~" for +/- and "C" for clear. Any other character presses digit(c - '0'),
// so ':' is 10 and ' ' is -16.
void press(MathCalc& calc, const std::string& script) {
    static const std::map<char, void (MathCalc::*)()> buttons{
        {'.', &MathCalc::DotBttn}, {'+', &MathCalc::Plus},   {'-', &MathCalc::Minus},     {'*', &MathCalc::Times},
        {'/', &MathCalc::Div},     {'=', &MathCalc::Equals}, {'r', &MathCalc::Over},      {'~', &MathCalc::PlusMinus},
        {'C', &MathCalc::ClearBttn}};
    for (const char c : script) {
        if (const auto b = buttons.find(c); b != buttons.end())
            (calc.*b->second)();
        else
            calc.digit(c - '0');
    }
}

}  // namespace

TEST(Calculator, ButtonsShowTheirFigures) {
    const std::string e200 = "1" + std::string(200, '0');  // 1E+200
    const struct {
        std::string script;
        const char* shown;
        const char* why;
    } rows[] = {
        {"1203", "1203", "digits append"},
        {"007", "007", "leading zeros stay as typed"},
        {" :", "", "digits out of range are passed over"},
        {"12.5+7.5=", "20", "adds"},
        {"3-10=", "-7", "subtracts"},
        {"6*0.5=", "3", "multiplies"},
        {"1/8=", "0.125", "divides"},
        {"2/3=", "0.666666666666667", "plain number text without a leading blank"},
        {"7/=", "0", "division by an empty display shows zero"},
        {"7/0=", "0", "so does division by zero, without a message"},
        {"42=", "0", "equals without an operator shows zero"},
        {"9*", "", "an operator empties the display"},
        {"..+5=", "5", "a point alone reads as zero"},
        {e200 + "*" + e200 + "=", "0", "an overflow is passed over and shows zero"},
        // Plain decimals, never an exponent, so a result reads back whole
        // when the next operator takes it.
        {"1000000000*1000000000=", "1000000000000000000", "a large result"},
        {"1000000000*1000000000=/1000000000000000000=", "1", "a large result read back"},
        {"1/40000=", "0.000025", "a small result"},
        {"1/40000=*40000=", "1", "a small result read back"},
        {"1/40000=*40000=0.00001r", "100000", "1/x of a small number"},
        {"2+3+4=", "7", "a chain drops the pending sum"},
        {"10*5-2=", "3", "a chain of mixed operators keeps only the last"},
        {"-5=", "-5", "an operator on an empty display takes zero"},
        {"100/4===", "25", "a third equals divides by the 4 shown again"},
        {"2+3==", "7", "a second equals adds the shown result"},
        {"2+3=81", "81", "the number begun after equals goes on"},
        {"1+1.5=.", ".", "a point after equals starts a new number"},
        {"1+1.5=.5", ".5", "and the digits follow it"},
        {"1.2.3.", "1.23", "a second point in a number is ignored"},
        {"..", ".", "a point on an empty display stands alone"},
        {"0.5r", "2", "1/x"},
        {"0.0r", "0.0", "1/x of zero leaves the display"},
        {"r", "", "1/x of an empty display leaves it"},
        {"4~r", "-0.25", "1/x of a negative number"},
        {"3r", "0.333333333333333", "1/x of three"},
        {"4r5", "0.255", "1/x does not start a new number"},
        {"12.5~", "-12.5", "+/- turns the sign"},
        {"12.5~~", "12.5", "and back"},
        {"~", "0", "+/- on an empty display gives zero"},
        {"007.50~", "-7.5", "+/- tidies the typed figure"},
        {"2+3=~", "-5", "+/- on a result"},
        {"2+3=~1", "1", "keeps the flag that a new number replaces it"},
        {"8-99C3=", "5", "clear keeps the operands and the operator"},
        {"8*2=C=", "0", "clear after equals, then equals takes zero"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.script.substr(0, 60) + ": " + r.why);
        FakeScreens screens;
        MathCalc calc{screens};
        press(calc, r.script);
        EXPECT_EQ(calc.display(), r.shown);
    }
}

TEST(Calculator, KeyCodesPressTheButtons) {
    const struct {
        std::vector<int> codes;
        const char* shown;
        const char* op;
        const char* why;
    } rows[] = {
        {{48, 49, 50, 51, 52, 53, 54, 55, 56, 57}, "0123456789", "", "48-57 are the digits"},
        {{49, 50, 107, 51, 187}, "15", "+", "107 plus, 187 equals"},
        {{57, 109, 52, 187}, "5", "-", "109 minus"},
        {{54, 106, 55, 187}, "42", "*", "106 times"},
        {{57, 111, 50, 187}, "4.5", "/", "111 divide"},
        {{49, 46, 53, 46}, "1.5", "", "46 the point"},
        {{49, 67}, "", "", "67 clears"},
        {{50, 99}, "", "", "so does 99"},
        {{51, 106, 50, 187, 187}, "18", "*", "equals twice gives 3 * 6"},
        // Enter, the keypad digits, the main '-' and '.' keys' other codes, letters.
        {{49, 13, 96, 105, 189, 190, 65, 100, 0, 255, 1000, -1}, "1", "", "other keys do nothing"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.why);
        FakeScreens screens;
        MathCalc calc{screens};
        for (int code : r.codes) calc.key_press(code);
        EXPECT_EQ(calc.display(), r.shown);
        EXPECT_EQ(calc.pending_operator(), r.op);
        EXPECT_TRUE(screens.unloaded.isEmpty());
    }
}
