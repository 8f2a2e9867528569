// The calculator's window: its buttons and keys reach the engine, whose
// figures are pinned by the calculator's own tests.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>

#include "gui/calculator_dialog.h"
#include "shell/calculator.h"
#include "tests/support/fake_screens.h"

using namespace veldo;
using veldo::testing::FakeScreens;

namespace {

struct CalculatorDialogTest : ::testing::Test {
    FakeScreens screens;
    MathCalc calc{screens};
    CalculatorDialog dialog{calc, false};

    QString shown() const { return dialog.findChild<QLabel*>("Display")->text(); }
    void press(int key, const QString& text) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(&dialog, &event);
    }
};

}  // namespace

TEST_F(CalculatorDialogTest, CaptionFollowsTheLanguage) {
    EXPECT_EQ(dialog.windowTitle(), "CALCULATOR");
    CalculatorDialog afrikaans(calc, true);
    EXPECT_EQ(afrikaans.windowTitle(), "SAKREKENAAR");
}

TEST_F(CalculatorDialogTest, EveryButtonPressesItsOwnButton) {
    for (int d = 0; d <= 9; ++d) {
        auto* b = dialog.findChild<QAbstractButton*>(QStringLiteral("Digits_%1").arg(d));
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(b->text(), QString::number(d));
        b->click();
    }
    EXPECT_EQ(shown(), "0123456789");
    const struct {
        const char *button, *shown;  // the display afterwards; nullptr: not looked at
    } clicks[] = {
        {"ClearBttn", ""}, {"Digits_1", "1"}, {"Digits_2", "12"}, {"DotBttn", nullptr}, {"Digits_5", "12.5"},
        {"Plus", ""},      {"Digits_7", "7"}, {"Equals", "19.5"}, {"Minus", ""},        {"Digits_4", "4"},
        {"Equals", "15.5"}, {"Times", ""},    {"Digits_2", "2"},  {"Equals", "31"},     {"Div", ""},
        {"Digits_8", "8"}, {"Equals", "3.875"}, {"ClearBttn", ""}, {"Digits_4", "4"},   {"Over", "0.25"},
        {"PlusMinus", "-0.25"},
    };
    for (const auto& c : clicks) {
        SCOPED_TRACE(c.button);
        auto* button = dialog.findChild<QAbstractButton*>(QString::fromLatin1(c.button));
        ASSERT_NE(button, nullptr);
        button->click();
        if (c.shown) {
            EXPECT_EQ(shown(), c.shown);
        }
    }
}

// Keys go to the engine by the codes of the original keyboard; Enter and
// letters other than C have none.
TEST_F(CalculatorDialogTest, KeysAreForwardedByTheCodesOfTheOriginalKeyboard) {
    const struct {
        int key;
        const char* text;
        int code;
    } keys[] = {{Qt::Key_0, "0", 48},     {Qt::Key_9, "9", 57},      {Qt::Key_Escape, "", 27},
                {Qt::Key_Equal, "=", 187}, {Qt::Key_Asterisk, "*", 106}, {Qt::Key_Plus, "+", 107},
                {Qt::Key_Minus, "-", 109}, {Qt::Key_Slash, "/", 111}, {Qt::Key_Period, ".", 46},
                {Qt::Key_C, "C", 67},      {Qt::Key_C, "c", 99},      {Qt::Key_Return, "\r", 0},
                {Qt::Key_A, "a", 0}};
    for (const auto& k : keys) {
        QKeyEvent event(QEvent::KeyPress, k.key, Qt::NoModifier, k.text);
        EXPECT_EQ(CalculatorDialog::key_code_for(event), k.code) << k.text;
    }
    press(Qt::Key_7, "7");
    press(Qt::Key_Asterisk, "*");
    press(Qt::Key_6, "6");
    press(Qt::Key_Equal, "=");
    press(Qt::Key_Return, "\r");
    EXPECT_EQ(shown(), "42");
    press(Qt::Key_C, "c");
    EXPECT_EQ(shown(), "");
    EXPECT_TRUE(screens.unloaded.isEmpty());
}

TEST_F(CalculatorDialogTest, EscapeUnloadsAndCloses) {
    dialog.show();
    press(Qt::Key_Escape, QString());
    EXPECT_EQ(screens.unloaded, QStringList{screen::MathCalc});
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}
