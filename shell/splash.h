#pragma once
// The main frame `startup` and the splash `marks_splash`: the first things
// that run. The splash refuses a second copy, finds the folders, picks the
// language and hands over to the top menu, after two seconds or at once when
// a language button is pressed.

#include <QString>
#include <functional>

namespace veldo {

struct ShellContext;

// The seven pastel colours of the splash, 0xBBGGRR.
inline constexpr int kSplashColours[7] = {0xC0C0FF, 0xC0E0FF, 0xC0FFFF, 0xC0FFC0, 0xFFFFC0, 0xFFC0C0, 0xFFC0FF};

class MainFrame {
public:
    explicit MainFrame(ShellContext& ctx) : ctx_(ctx) {}
    // Steps before the splash: the time-out limit and the first activity.
    void load(const QString& application_folder);
    // The frame never closes: the top menu comes back instead. Returns true
    // to cancel the close.
    bool query_unload();

private:
    ShellContext& ctx_;
};

class Splash {
public:
    // `another_copy_running` asks the platform; `random_unit` gives a number
    // in [0, 1) for the colour.
    Splash(ShellContext& ctx, QString application_folder, std::function<bool()> another_copy_running,
           std::function<double()> random_unit);

    // The whole load. False when the run must end (a second copy).
    bool load();
    void timer1_timer();
    void chk_lang_click(int index);  // 1 Afrikaans, 2 English

    int skin_colour() const { return skin_colour_; }
    QString lblVersion, lblProductName;
    bool chk_lang[3] = {false, false, false};
    bool timer_enabled = false;
    bool done() const { return done_; }

private:
    void leave();

    ShellContext& ctx_;
    QString application_folder_;
    std::function<bool()> another_copy_running_;
    std::function<double()> random_unit_;
    int skin_colour_ = kSplashColours[0];
    bool done_ = false;
};

// The message of a second copy.
QString second_copy_message(bool afrikaans);

}  // namespace veldo
