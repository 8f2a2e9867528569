// The password prompt and the timed message as widgets, offscreen.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>

#include "gui/closing_message_widget.h"
#include "gui/password_prompt_dialog.h"
#include "tests/support/shell_fixture.h"

namespace veldo {
namespace {

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

}  // namespace
}  // namespace veldo
