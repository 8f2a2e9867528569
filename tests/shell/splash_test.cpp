// The frame and the splash: second copy, language, hand-over to the menu.
#include <gtest/gtest.h>

#include "shell/splash.h"
#include "shell/startup.h"
#include "tests/support/shell_fixture.h"

namespace veldo {
namespace {

using testing::ShellFixture;
using testing::read_bytes;

struct SplashTest : ::testing::Test, ShellFixture {
    Splash make(bool second_copy, double random = 0.5) {
        return Splash(ctx, run.program_folder, [second_copy] { return second_copy; }, [random] { return random; });
    }
};

TEST_F(SplashTest, ASecondCopyIsRefusedInEnglishAndEndsTheRun) {
    Splash s = make(true);
    EXPECT_FALSE(s.load());
    EXPECT_EQ(dialogs.texts(), QStringList{"VELDO-TALLY system already loaded - see TASK BAR ..."});
    EXPECT_EQ(dialogs.messages.first().icon, MsgIcon::Critical);
    EXPECT_TRUE(screens.ended);
    EXPECT_FALSE(QFileInfo::exists(path("ProgramData/KESTRALIN/VELDO-TALLY")));  // no folder search
    EXPECT_EQ(second_copy_message(true), "VELDO-TALLY stelsel reeds gelaai - sien 'TASK BAR' ...");
}

TEST_F(SplashTest, PicksOneOfSevenPastelsAndShowsTheVersion) {
    EXPECT_EQ(make(false, 0.0).skin_colour(), 0xC0C0FF);
    Splash s = make(false, 0.99);
    ASSERT_TRUE(s.load());
    EXPECT_EQ(s.skin_colour(), 0xFFC0FF);
    EXPECT_EQ(s.lblVersion, "Version " + program_version());
    EXPECT_EQ(s.lblProductName, "VELDO-TALLY");
    EXPECT_TRUE(s.timer_enabled);
    EXPECT_TRUE(s.chk_lang[2]);
    EXPECT_FALSE(s.chk_lang[1]);
    EXPECT_EQ(run.current_year, "2026");
}

TEST_F(SplashTest, ALanguageButtonChoosesSavesAndStartsAtOnce) {
    Splash s = make(false);
    ASSERT_TRUE(s.load());
    s.chk_lang_click(1);
    EXPECT_TRUE(run.language_afrikaans);
    EXPECT_EQ(screens.unloaded, QStringList{"marks_splash"});
    EXPECT_EQ(screens.shown, QStringList{"punte_mnu"});
    EXPECT_EQ(read_bytes(path("ProgramData/KESTRALIN/setup.txt")), QByteArray("\"\"\r\n#TRUE#\r\n"));
    // The timer does not fire afterwards.
    s.timer1_timer();
    EXPECT_EQ(screens.shown.size(), 1);
}

TEST_F(SplashTest, TheTimerKeepsTheStoredLanguage) {
    testing::write_bytes(path("ProgramData/KESTRALIN/setup.txt"), "\"SKOOL\"\r\n#TRUE#\r\n\"ander\"\r\n");
    Splash s = make(false);
    ASSERT_TRUE(s.load());
    EXPECT_TRUE(s.chk_lang[1]);
    s.timer1_timer();
    EXPECT_TRUE(run.language_afrikaans);
    EXPECT_EQ(screens.shown, QStringList{"punte_mnu"});
    EXPECT_EQ(read_bytes(path("ProgramData/KESTRALIN/setup.txt")),
              QByteArray("\"SKOOL\"\r\n#TRUE#\r\n\"ander\"\r\n"));
}

TEST_F(SplashTest, TheFrameRefusesToCloseAndBringsTheTopMenuBack) {
    MainFrame frame(ctx);
    frame.load(run.program_folder);
    EXPECT_EQ(run.timeout_seconds, 300);
    EXPECT_FLOAT_EQ(run.last_activity, 10 * 3600 + 15 * 60 + 30);
    EXPECT_TRUE(frame.query_unload());
    EXPECT_EQ(screens.shown, QStringList{"punte_mnu"});
}

}  // namespace
}  // namespace veldo
