// The frame and the splash: second copy, language, hand-over to the menu.
#include <gtest/gtest.h>

#include "shell/splash.h"
#include "shell/startup.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

struct Boot : testing::ShellFixture {
    Splash make(bool second_copy, double random = 0.5) {
        return Splash(ctx, run.program_folder, [second_copy] { return second_copy; }, [random] { return random; });
    }
    QString transcript() const { return testing::transcript(*this, screens); }
    QString setup() const { return path("ProgramData/KESTRALIN/setup.txt"); }
};

TEST(Splash, ASecondCopyIsRefusedInEnglishAndEndsTheRun) {
    Boot t;
    EXPECT_FALSE(t.make(true).load());
    // No folder search either: nothing is written.
    EXPECT_EQ(t.transcript(), "message Critical Ok []: VELDO-TALLY system already loaded - see TASK BAR ...\nended\n");
    EXPECT_FALSE(QFileInfo::exists(t.path("ProgramData/KESTRALIN/VELDO-TALLY")));
    EXPECT_EQ(second_copy_message(true), "VELDO-TALLY stelsel reeds gelaai - sien 'TASK BAR' ...");
}

TEST(Splash, PicksOneOfSevenPastelsAndShowsTheVersion) {
    Boot t;
    EXPECT_EQ(t.make(false, 0.0).skin_colour(), 0xC0C0FF);
    Splash s = t.make(false, 0.99);
    ASSERT_TRUE(s.load());
    EXPECT_EQ(QStringList({QString::number(s.skin_colour(), 16), s.lblVersion, s.lblProductName, t.run.current_year}),
              QStringList({"ffc0ff", "Version " + program_version(), "VELDO-TALLY", "2026"}));
    EXPECT_EQ(std::tuple(s.timer_enabled, s.chk_lang[1], s.chk_lang[2]), std::tuple(true, false, true));
}

// A language button saves the choice and starts at once, and the timer does
// not fire after it; the timer alone keeps the stored language and its file.
TEST(Splash, ALanguageButtonOrTheTimerHandsOverToTheTopMenu) {
    const QByteArray stored = "\"SKOOL\"\r\n#TRUE#\r\n\"ander\"\r\n";
    const struct {
        QByteArray before;  // setup.txt; empty: none
        bool button;
        QByteArray after;
    } rows[] = {{"", true, "\"\"\r\n#TRUE#\r\n"}, {stored, false, stored}};
    for (const auto& r : rows) {
        SCOPED_TRACE(r.button);
        Boot t;
        if (!r.before.isEmpty()) testing::write_bytes(t.setup(), r.before);
        Splash s = t.make(false);
        ASSERT_TRUE(s.load());
        EXPECT_EQ(s.chk_lang[1], !r.button);
        if (r.button) s.chk_lang_click(1);
        s.timer1_timer();
        EXPECT_TRUE(t.run.language_afrikaans);
        EXPECT_EQ(t.transcript(), "shown: punte_mnu\nunloaded: marks_splash\n");
        EXPECT_EQ(testing::read_bytes(t.setup()), r.after);
    }
}

TEST(Splash, TheFrameRefusesToCloseAndBringsTheTopMenuBack) {
    Boot t;
    MainFrame frame(t.ctx);
    frame.load(t.run.program_folder);
    EXPECT_EQ(t.run.timeout_seconds, 300);
    EXPECT_FLOAT_EQ(t.run.last_activity, 10 * 3600 + 15 * 60 + 30);
    EXPECT_TRUE(frame.query_unload());
    EXPECT_EQ(t.screens.shown, QStringList{"punte_mnu"});
}

}  // namespace
}  // namespace veldo
