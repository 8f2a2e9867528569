#pragma once
// How screens move: every screen is a plain class with one handler per
// event; it shows, hides and unloads other screens only through `Screens`,
// and speaks to the user only through `UserDialogs`. The desktop program
// implements both with Qt widgets; the tests with scripted fakes.

#include <QDate>
#include <QString>
#include <QStringList>
#include <QTime>
#include <functional>

namespace veldo {

class RecordStore;
class UserDialogs;
struct RunState;

// The names of the screens, as the system calls them.
namespace screen {
inline const QString startup = QStringLiteral("startup");
inline const QString marks_splash = QStringLiteral("marks_splash");
inline const QString punte_mnu = QStringLiteral("punte_mnu");
inline const QString punte_menu1 = QStringLiteral("punte_menu1");
inline const QString punte_menu2 = QStringLiteral("punte_menu2");
inline const QString sk0_floating = QStringLiteral("sk0_floating");
inline const QString sk1_wagwoord = QStringLiteral("sk1_wagwoord");
inline const QString change_folder = QStringLiteral("change_folder");
inline const QString frmMessage = QStringLiteral("frmMessage");
inline const QString punte_inlees = QStringLiteral("punte_inlees");
inline const QString obe_inlees = QStringLiteral("obe_inlees");
inline const QString punte_druk = QStringLiteral("punte_druk");
inline const QString pboek_opstel = QStringLiteral("pboek_opstel");
inline const QString pboek_inlees = QStringLiteral("pboek_inlees");
inline const QString pboek_druk = QStringLiteral("pboek_druk");
inline const QString pboek_uitvoer = QStringLiteral("pboek_uitvoer");
inline const QString simbole_druk = QStringLiteral("simbole_druk");
inline const QString acrobat_interface = QStringLiteral("acrobat_interface");
inline const QString MathCalc = QStringLiteral("MathCalc");
inline const QString kies_drukker = QStringLiteral("kies_drukker");
inline const QString wys_druk_vordering = QStringLiteral("wys_druk_vordering");
}  // namespace screen

class Screens {
public:
    virtual ~Screens() = default;
    // Loads the screen on first use and shows it as a child of the frame.
    virtual void show(const QString& name) = 0;
    // Shows the screen modal; returns when it has closed.
    virtual void show_modal(const QString& name) = 0;
    virtual void unload(const QString& name) = 0;
    virtual bool is_loaded(const QString& name) const = 0;
    // The loaded screens, the frame first.
    virtual QStringList loaded() const = 0;
    // Ends the run at once.
    virtual void end_program() = 0;
    // Starts a program of the family as a process of its own; false when it
    // could not be started.
    virtual bool start_process(const QString& program) = 0;
    // Opens a document (a PDF manual) with the desktop's viewer.
    virtual bool open_document(const QString& path) = 0;
    // The process environment, one "NAME=value" entry each.
    virtual QStringList process_environment() const = 0;
    // Closes every dialog that waits on the user (message boxes, modal
    // screens), so that what the time-out unloads is no longer underneath
    // one.
    virtual void close_dialogs() {}
};

// The clock as the screens read it; tests put a fake one in its place.
struct Clock {
    std::function<QDate()> today = [] { return QDate::currentDate(); };
    std::function<QTime()> now = [] { return QTime::currentTime(); };
    // Seconds since midnight, as a 32-bit float like the family's timer.
    float seconds() const {
        const QTime t = now();
        return float(t.msecsSinceStartOfDay()) / 1000.0f;
    }
};

// What every screen is given.
struct ShellContext {
    RunState& run;
    RecordStore& store;
    UserDialogs& dialogs;
    Screens& screens;
    Clock clock;
};

}  // namespace veldo
