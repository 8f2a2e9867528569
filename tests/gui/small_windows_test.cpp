// The small windows, offscreen: the calculator, the password prompt, the
// timed closing message and the print progress. Each hands what it is given
// to its screen class, whose answers are pinned by that class's own tests.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>

#include "gui/calculator_dialog.h"
#include "gui/closing_message_widget.h"
#include "gui/password_prompt_dialog.h"
#include "gui/print_progress_widget.h"
#include "shell/calculator.h"
#include "tests/support/shell_fixture.h"

namespace veldo {
namespace {

struct CalculatorDialogTest : ::testing::Test {
    testing::FakeScreens screens;
    MathCalc calc{screens};
    CalculatorDialog dialog{calc, false};

    QString shown() const { return dialog.findChild<QLabel*>("Display")->text(); }
    void press(int key, const QString& text) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(&dialog, &event);
    }
};

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

// The caption and label in the user's language; OK, or Enter in the box,
// hands the typed password to the prompt (whose answer is pinned by the
// password tests) and closes the window.
TEST(PasswordPromptDialog, OkOrEnterShowsThePlatformErrorAndCloses) {
    for (const bool enter : {false, true}) {
        SCOPED_TRACE(enter);
        testing::ShellFixture t;
        t.run.language_afrikaans = enter;
        PasswordPromptDialog dialog(t.ctx);
        dialog.show();
        const QString caption = enter ? "WAGWOORD" : "PASSWORD";
        const auto label = [&](const char* name) { return dialog.findChild<QLabel*>(name)->text(); };
        EXPECT_EQ((QStringList{dialog.windowTitle(), label("scr_wwd_txt"), label("ww_program_beskrywing")}),
                  (QStringList{caption, caption, ""}));
        EXPECT_EQ(dialog.scr_wagwoord()->echoMode(), QLineEdit::Password);
        dialog.scr_wagwoord()->setText("geheim");
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        if (enter)
            QApplication::sendEvent(dialog.scr_wagwoord(), &press);
        else
            dialog.wagwoord_ok()->click();
        EXPECT_EQ(t.dialogs.texts(), QStringList({"Object required"}));
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_EQ(dialog.result(), QDialog::Rejected);
    }
}

TEST(ClosingMessage, WidgetShowsTheCountdown) {
    testing::TempDrive t;
    t.run.language_afrikaans = true;
    ClosingMessageWidget w(t.run);
    w.start("", "TIME-OUT", 5000);
    EXPECT_TRUE(w.running());
    w.tmr_label_tick();
    w.tmr_label_tick();
    const auto text = [&](const char* name) { return w.findChild<QLabel*>(name)->text(); };
    EXPECT_EQ((QStringList{w.windowTitle(), text("lblMessage_0"), text("lblClose"), text("lblMessage_1")}),
              (QStringList{"TIME-OUT", "Stelsel sluit oor ", "4.8", " sekondes !"}));
    EXPECT_FALSE(w.findChild<QLabel*>("Image1")->isVisible());
    bool finished = false;
    QObject::connect(&w, &ClosingMessageWidget::finished, [&] { finished = true; });
    w.timer1_tick();
    EXPECT_TRUE(finished);
    EXPECT_FALSE(w.running());
}

TEST(PrintProgressWindow, ShowsTheJobThePrinterAndThePage) {
    testing::TempDrive t;
    t.run.language_afrikaans = true;
    PrintProgress progress;
    PrintProgressWidget window;
    window.follow(progress);
    progress.show(t.run, QString(), "Kantoor", 3);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.findChild<QLabel*>("wdv_opskrif")->text(), " BESIG MET DRUKWERK ... ");
    EXPECT_EQ(window.findChild<QLabel*>("wdv_drukker")->text(), "Kantoor");
    EXPECT_EQ(window.findChild<QLabel*>("wdv_bladsy")->text(), "3");
    progress.hide();
    EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace veldo
