// The frame and the splash: second copy, language, hand-over to the menu.
#include <gtest/gtest.h>

#include "shell/splash.h"
#include "shell/startup.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

using testing::ShellFixture;

struct SplashTest : ::testing::Test, ShellFixture {
    Splash make(bool second_copy, double random = 0.5) {
        return Splash(ctx, run.program_folder, [second_copy] { return second_copy; }, [random] { return random; });
    }
    QString transcript() const { return testing::transcript(*this, screens); }
    QByteArray setup() const { return testing::read_bytes(path("ProgramData/KESTRALIN/setup.txt")); }
};

TEST_F(SplashTest, ASecondCopyIsRefusedInEnglishAndEndsTheRun) {
    Splash s = make(true);
    EXPECT_FALSE(s.load());
    // No folder search either: nothing is written.
    EXPECT_EQ(transcript(), "message Critical Ok []: VELDO-TALLY system already loaded - see TASK BAR ...\nended\n");
    EXPECT_FALSE(QFileInfo::exists(path("ProgramData/KESTRALIN/VELDO-TALLY")));
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
    EXPECT_EQ(std::pair(s.chk_lang[1], s.chk_lang[2]), std::pair(false, true));
    EXPECT_EQ(run.current_year, "2026");
}

TEST_F(SplashTest, ALanguageButtonChoosesSavesAndStartsAtOnce) {
    Splash s = make(false);
    ASSERT_TRUE(s.load());
    s.chk_lang_click(1);
    EXPECT_TRUE(run.language_afrikaans);
    // The timer does not fire afterwards.
    s.timer1_timer();
    EXPECT_EQ(transcript(), "shown: punte_mnu\nunloaded: marks_splash\n");
    EXPECT_EQ(setup(), QByteArray("\"\"\r\n#TRUE#\r\n"));
}

TEST_F(SplashTest, TheTimerKeepsTheStoredLanguage) {
    testing::write_bytes(path("ProgramData/KESTRALIN/setup.txt"), "\"SKOOL\"\r\n#TRUE#\r\n\"ander\"\r\n");
    Splash s = make(false);
    ASSERT_TRUE(s.load());
    EXPECT_TRUE(s.chk_lang[1]);
    s.timer1_timer();
    EXPECT_TRUE(run.language_afrikaans);
    EXPECT_EQ(transcript(), "shown: punte_mnu\nunloaded: marks_splash\n");
    EXPECT_EQ(setup(), QByteArray("\"SKOOL\"\r\n#TRUE#\r\n\"ander\"\r\n"));
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
