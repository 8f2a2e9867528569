// The password prompt and the timed message as widgets, offscreen.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>

#include "gui/closing_message_widget.h"
#include "gui/password_prompt_dialog.h"
#include "tests/support/shell_fixture.h"

namespace veldo {
namespace {

using PromptDrive = testing::ShellFixture;
using testing::TempDrive;

TEST(PasswordPromptDialog, OkShowsThePlatformErrorAndCloses) {
    PromptDrive t;
    t.run.language_afrikaans = true;
    t.run.password_accepted = true;
    PasswordPromptDialog dialog(t.ctx);
    dialog.show();
    EXPECT_EQ(dialog.windowTitle(), "WAGWOORD");
    EXPECT_FALSE(t.run.password_accepted);
    EXPECT_EQ(dialog.scr_wagwoord()->echoMode(), QLineEdit::Password);
    dialog.scr_wagwoord()->setText("geheim");
    dialog.wagwoord_ok()->click();
    ASSERT_EQ(t.dialogs.messages.size(), 1);
    EXPECT_EQ(t.dialogs.messages[0].text, "Object required");
    EXPECT_EQ(t.dialogs.messages[0].icon, MsgIcon::Critical);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_FALSE(t.run.menu_access_granted);
    EXPECT_FALSE(t.run.password_accepted);
}

TEST(PasswordPromptDialog, EnterInTheBoxActsAsOk) {
    PromptDrive t;
    PasswordPromptDialog dialog(t.ctx);
    dialog.show();
    EXPECT_EQ(dialog.windowTitle(), "PASSWORD");
    dialog.scr_wagwoord()->setText("x");
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(dialog.scr_wagwoord(), &press);
    EXPECT_EQ(t.dialogs.texts(), QStringList({"Object required"}));
    EXPECT_FALSE(dialog.isVisible());
}

TEST(ClosingMessage, WidgetShowsTheCountdown) {
    TempDrive t;
    t.run.language_afrikaans = true;
    ClosingMessageWidget w(t.run);
    w.start("", "TIME-OUT", 5000);
    EXPECT_TRUE(w.running());
    EXPECT_EQ(w.windowTitle(), "TIME-OUT");
    w.tmr_label_tick();
    w.tmr_label_tick();
    const auto text = [&](const char* name) { return w.findChild<QLabel*>(name)->text(); };
    EXPECT_EQ(text("lblMessage_0"), "Stelsel sluit oor ");
    EXPECT_EQ(text("lblClose"), "4.8");
    EXPECT_EQ(text("lblMessage_1"), " sekondes !");
    EXPECT_FALSE(w.findChild<QLabel*>("Image1")->isVisible());
    bool finished = false;
    QObject::connect(&w, &ClosingMessageWidget::finished, [&] { finished = true; });
    w.timer1_tick();
    EXPECT_TRUE(finished);
    EXPECT_FALSE(w.running());
}

}  // namespace
}  // namespace veldo
