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

    void click(const char* name) {
        auto* button = dialog.findChild<QAbstractButton*>(QString::fromLatin1(name));
        ASSERT_NE(button, nullptr) << name;
        button->click();
    }
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

TEST_F(CalculatorDialogTest, ClickedButtonsShowOnTheDisplay) {
    click("Digits_1");
    click("Digits_2");
    click("DotBttn");
    click("Digits_5");
    EXPECT_EQ(shown(), "12.5");
    click("Plus");
    EXPECT_EQ(shown(), "");
    click("Digits_7");
    click("DotBttn");
    click("Digits_5");
    click("Equals");
    EXPECT_EQ(shown(), "20");
}

TEST_F(CalculatorDialogTest, EveryButtonIsThere) {
    for (int d = 0; d <= 9; ++d) {
        auto* b = dialog.findChild<QAbstractButton*>(QStringLiteral("Digits_%1").arg(d));
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(b->text(), QString::number(d));
    }
    click("Digits_8");
    click("Over");
    EXPECT_EQ(shown(), "0.125");
    click("PlusMinus");
    EXPECT_EQ(shown(), "-0.125");
    click("ClearBttn");
    EXPECT_EQ(shown(), "");
    click("Digits_9");
    click("Times");
    click("Digits_3");
    click("Equals");
    EXPECT_EQ(shown(), "27");
    click("Minus");
    click("Digits_6");
    click("Equals");
    EXPECT_EQ(shown(), "21");
    click("Div");
    click("Digits_0");
    click("Equals");
    EXPECT_EQ(shown(), "0");
}

TEST_F(CalculatorDialogTest, KeysAreForwardedByTheirCodes) {
    press(Qt::Key_7, "7");
    press(Qt::Key_Asterisk, "*");
    press(Qt::Key_6, "6");
    press(Qt::Key_Equal, "=");
    EXPECT_EQ(shown(), "42");
    press(Qt::Key_Equal, "=");  // 7 * 42
    EXPECT_EQ(shown(), "294");
    press(Qt::Key_C, "c");
    EXPECT_EQ(shown(), "");
    press(Qt::Key_1, "1");
    press(Qt::Key_Period, ".");
    press(Qt::Key_5, "5");
    press(Qt::Key_Return, "\r");  // Enter does nothing
    EXPECT_EQ(shown(), "1.5");
    EXPECT_TRUE(screens.unloaded.isEmpty());
}

TEST_F(CalculatorDialogTest, KeyCodesOfTheOriginalKeyboard) {
    auto code = [](int key, const QString& text) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        return CalculatorDialog::key_code_for(event);
    };
    EXPECT_EQ(code(Qt::Key_0, "0"), 48);
    EXPECT_EQ(code(Qt::Key_9, "9"), 57);
    EXPECT_EQ(code(Qt::Key_Escape, ""), 27);
    EXPECT_EQ(code(Qt::Key_Equal, "="), 187);
    EXPECT_EQ(code(Qt::Key_Asterisk, "*"), 106);
    EXPECT_EQ(code(Qt::Key_Plus, "+"), 107);
    EXPECT_EQ(code(Qt::Key_Minus, "-"), 109);
    EXPECT_EQ(code(Qt::Key_Slash, "/"), 111);
    EXPECT_EQ(code(Qt::Key_Period, "."), 46);
    EXPECT_EQ(code(Qt::Key_C, "C"), 67);
    EXPECT_EQ(code(Qt::Key_C, "c"), 99);
    EXPECT_EQ(code(Qt::Key_Return, "\r"), 0);
    EXPECT_EQ(code(Qt::Key_A, "a"), 0);
}

TEST_F(CalculatorDialogTest, EscapeUnloadsAndCloses) {
    dialog.show();
    press(Qt::Key_Escape, QString());
    EXPECT_EQ(screens.unloaded, QStringList{screen::MathCalc});
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}
