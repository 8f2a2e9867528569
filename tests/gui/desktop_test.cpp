// Clicking through the real widgets, offscreen: splash, top menu, the mark
// book menu and back.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QDir>
#include <QTemporaryDir>

#include "gui/desktop.h"
#include "gui/menu_widget.h"
#include "gui/splash_widget.h"

namespace veldo {
namespace {

struct DesktopWidgets : ::testing::Test {
    QTemporaryDir drive;
    QString program = drive.filePath("Apps/VELDO-TALLY");
    void SetUp() override {
        qputenv("KESTRALIN_DRIVE", drive.path().toUtf8());
        QDir().mkpath(program);
    }
    void TearDown() override { qunsetenv("KESTRALIN_DRIVE"); }
};

TEST_F(DesktopWidgets, ALanguageClickLeadsFromTheSplashToTheMenus) {
    Desktop desktop(program, [] { return false; });
    ASSERT_TRUE(desktop.start());
    auto* splash = qobject_cast<SplashWidget*>(desktop.screen_widget("marks_splash"));
    ASSERT_TRUE(splash);
    splash->language_button(1)->click();
    EXPECT_FALSE(desktop.is_loaded("marks_splash"));
    auto* top = qobject_cast<MenuWidget*>(desktop.screen_widget("punte_mnu"));
    ASSERT_TRUE(top);
    EXPECT_TRUE(top->isVisible());
    EXPECT_EQ(top->entry_button(1)->text(), "SIKLUS/UGO");
    EXPECT_EQ(top->entry_button(2)->toolTip(), "PUNTEBOEK");

    top->entry_button(2)->click();
    auto* book = qobject_cast<MenuWidget*>(desktop.screen_widget("punte_menu2"));
    ASSERT_TRUE(book);
    EXPECT_EQ(book->entry_button(1)->text(), "PUNTEBOEK OPSTEL");
    EXPECT_EQ(book->entry_button(5)->text(), "UITVOER na ADMIN");
    book->exit_button()->click();
    EXPECT_FALSE(desktop.is_loaded("punte_menu2"));
    EXPECT_TRUE(desktop.is_loaded("punte_mnu"));
    EXPECT_TRUE(QFileInfo::exists(drive.filePath("ProgramData/KESTRALIN/setup.txt")));
    EXPECT_EQ(QFileInfo(drive.filePath("ProgramData/KESTRALIN/Audit_Trail.txt")).size(), 2 * 258);
}

TEST_F(DesktopWidgets, ASecondCopyEndsBeforeAnyMenu) {
    Desktop desktop(program, [] { return true; });
    // The refusal shows a message box; answer it at once.
    QTimer::singleShot(0, [] {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->inherits("QMessageBox")) w->close();
    });
    EXPECT_FALSE(desktop.start());
    EXPECT_TRUE(desktop.ended());
    EXPECT_FALSE(desktop.is_loaded("punte_mnu"));
}

}  // namespace
}  // namespace veldo

namespace veldo {
namespace {

TEST_F(DesktopWidgets, TheFrameRefusesToCloseAndShowsTheTopMenu) {
    Desktop desktop(program, [] { return false; });
    ASSERT_TRUE(desktop.start());
    qobject_cast<SplashWidget*>(desktop.screen_widget("marks_splash"))->language_button(2)->click();
    desktop.unload("punte_mnu");
    EXPECT_FALSE(desktop.is_loaded("punte_mnu"));
    EXPECT_FALSE(desktop.close());
    EXPECT_TRUE(desktop.isVisible());
    EXPECT_TRUE(desktop.is_loaded("punte_mnu"));
    auto* top = qobject_cast<MenuWidget*>(desktop.screen_widget("punte_mnu"));
    ASSERT_TRUE(top);
    EXPECT_EQ(top->entry_button(2)->text(), "MARKS BOOK");
}

}  // namespace
}  // namespace veldo

namespace veldo {
namespace {

// The keyboard on the menus: Enter and Space press the focused entry,
// Escape goes back from a second-level menu.
TEST_F(DesktopWidgets, TheMenusWorkFromTheKeyboard) {
    Desktop desktop(program, [] { return false; });
    ASSERT_TRUE(desktop.start());
    qobject_cast<SplashWidget*>(desktop.screen_widget("marks_splash"))->language_button(2)->click();
    // Keys go to the entry that would have the keyboard: an offscreen window
    // is not always the active one, so focus can't be relied on here.
    const auto key = [](QWidget* target, int code, const QString& text = QString()) {
        QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, text);
        QKeyEvent release(QEvent::KeyRelease, code, Qt::NoModifier, text);
        QApplication::sendEvent(target, &press);
        QApplication::sendEvent(target, &release);
    };
    auto* top = qobject_cast<MenuWidget*>(desktop.screen_widget("punte_mnu"));
    ASSERT_TRUE(top);
    key(top->entry_button(2), Qt::Key_Return);
    auto* book = qobject_cast<MenuWidget*>(desktop.screen_widget("punte_menu2"));
    ASSERT_TRUE(book) << "Enter presses the focused entry";
    key(book->entry_button(1), Qt::Key_Escape);
    EXPECT_FALSE(desktop.is_loaded("punte_menu2")) << "Escape goes back to the top menu";
    top = qobject_cast<MenuWidget*>(desktop.screen_widget("punte_mnu"));
    ASSERT_TRUE(top);
    key(top->entry_button(2), Qt::Key_Space, " ");
    book = qobject_cast<MenuWidget*>(desktop.screen_widget("punte_menu2"));
    ASSERT_TRUE(book) << "Space presses the focused entry";
    key(book->entry_button(1), Qt::Key_Escape);
    EXPECT_FALSE(desktop.is_loaded("punte_menu2"));
}

}  // namespace
}  // namespace veldo
