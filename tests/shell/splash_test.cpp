// The frame and the splash: second copy, language, hand-over to the menu.
#include <gtest/gtest.h>

#include "shell/splash.h"
#include "shell/startup.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

// A start, row by row: whether the load goes on, its pastel (picked by the
// random number), labels, language boxes and timer; then after a language
// button or the timer, the language, the product folder the folder search
// makes, what the user saw and the family's setup.txt. The timer is played
// after a button too: it must not fire then.
TEST(Splash, PicksAPastelAndTheLanguageAndHandsOverToTheTopMenu) {
    const struct {
        const char* why;
        bool second_copy;
        double random;
        QByteArray setup;  // the family's setup.txt before; empty: none
        int button;        // 1 Afrikaans, 2 English; 0: the timer only
    } rows[] = {
        {"a second copy is refused in English and ends the run before any folder search", true, 0.5, "", 0},
        {"the first pastel; a button saves the choice and starts at once", false, 0.0, "", 1},
        {"the last pastel; the timer keeps the stored language and its file", false, 0.99,
         "\"SKOOL\"\r\n#TRUE#\r\n\"ander\"\r\n", 0},
    };
    QString outcome;
    for (const auto& r : rows) {
        testing::ShellFixture t;
        const QString setup = t.path("ProgramData/KESTRALIN/setup.txt");
        if (!r.setup.isEmpty()) testing::write_bytes(setup, r.setup);
        Splash s(t.ctx, t.run.program_folder, [&r] { return r.second_copy; }, [&r] { return r.random; });
        const bool goes_on = s.load();
        outcome += QString("== %1\nload %2, colour %3, '%4' '%5', boxes %6%7, timer %8, year %9\n")
                       .arg(r.why)
                       .arg(goes_on)
                       .arg(s.skin_colour(), 6, 16, QChar('0'))
                       .arg(QString(s.lblVersion).replace(program_version(), "<version>"), s.lblProductName)
                       .arg(s.chk_lang[1])
                       .arg(s.chk_lang[2])
                       .arg(s.timer_enabled)
                       .arg(t.run.current_year);
        if (r.button) s.chk_lang_click(r.button);
        if (goes_on) s.timer1_timer();
        outcome += QString("afrikaans %1, product folder %2, setup.txt '%3'\n")
                       .arg(t.run.language_afrikaans)
                       .arg(QFileInfo::exists(t.path("ProgramData/KESTRALIN/VELDO-TALLY")))
                       .arg(testing::shown_bytes(testing::read_bytes(setup))) +
                   testing::transcript(t, t.screens);
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/splash_starts.txt"));
    EXPECT_EQ(second_copy_message(true), "VELDO-TALLY stelsel reeds gelaai - sien 'TASK BAR' ...");
}

TEST(Splash, TheFrameRefusesToCloseAndBringsTheTopMenuBack) {
    testing::ShellFixture t;
    MainFrame frame(t.ctx);
    frame.load(t.run.program_folder);
    EXPECT_EQ(t.run.timeout_seconds, 300);
    EXPECT_FLOAT_EQ(t.run.last_activity, 10 * 3600 + 15 * 60 + 30);
    EXPECT_TRUE(frame.query_unload());
    EXPECT_EQ(t.screens.shown, QStringList{"punte_mnu"});
}

}  // namespace
}  // namespace veldo
