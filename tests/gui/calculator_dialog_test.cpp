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

// The caption of each digit, then the display after each click.
TEST_F(CalculatorDialogTest, EveryButtonPressesItsOwnButton) {
    QStringList captions, displays;
    const QString clicks = "Digits_0 Digits_1 Digits_2 Digits_3 Digits_4 Digits_5 Digits_6 Digits_7 Digits_8 Digits_9 "
                           "ClearBttn Digits_1 Digits_2 DotBttn Digits_5 Plus Digits_7 Equals Minus Digits_4 Equals "
                           "Times Digits_2 Equals Div Digits_8 Equals ClearBttn Digits_4 Over PlusMinus";
    for (const QString& name : clicks.split(' ')) {
        auto* button = dialog.findChild<QAbstractButton*>(name);
        ASSERT_NE(button, nullptr) << name.toStdString();
        if (name.startsWith("Digits_")) captions << button->text();
        button->click();
        displays << shown();
    }
    EXPECT_EQ(captions.mid(0, 10).join(""), "0123456789");
    EXPECT_EQ(displays.join('|'), "0|01|012|0123|01234|012345|0123456|01234567|012345678|0123456789|"
                                  "|1|12|12.|12.5||7|19.5||4|15.5||2|31||8|3.875||4|0.25|-0.25");
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
    for (const auto& [key, text] : {std::pair{Qt::Key_7, "7"}, {Qt::Key_Asterisk, "*"}, {Qt::Key_6, "6"},
                                    {Qt::Key_Equal, "="}, {Qt::Key_Return, "\r"}})
        press(key, text);
    EXPECT_EQ(shown(), "42");
    press(Qt::Key_C, "c");
    EXPECT_EQ(shown(), "");
    EXPECT_TRUE(screens.unloaded.isEmpty());
}

TEST_F(CalculatorDialogTest, TheCaptionFollowsTheLanguageAndEscapeUnloadsAndCloses) {
    EXPECT_EQ(dialog.windowTitle(), "CALCULATOR");
    EXPECT_EQ(CalculatorDialog(calc, true).windowTitle(), "SAKREKENAAR");
    dialog.show();
    press(Qt::Key_Escape, QString());
    EXPECT_EQ(screens.unloaded, QStringList{screen::MathCalc});
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}
