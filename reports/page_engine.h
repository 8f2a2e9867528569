#pragma once
// The page engine: every printed list of the program goes through four
// operations, so that all of them look the same. ask_output_target chooses
// the output, print_setup sets up the job, page_head decides when a page
// starts and writes its frame and head block, end_of_print closes the job.
// When the user chose Excel the same calls land in a worksheet through the
// hooks of WorksheetHooks; nothing then reaches the print surface.

#include <QList>
#include <QString>
#include <QTime>

#include <functional>
#include <optional>

#include "reports/print_surface.h"

namespace veldo {

struct RunState;
class TextGrid;

// The program's title in the head block and the family's name in the banner.
inline constexpr const char* kProgramTitle = "VELDO-TALLY";

// What page_head would write on a sheet, for the worksheet side.
struct SheetHead {
    QString date;
    QString time;
    QString school;      // school_name with " (<school_name_2>)" where given
    QString program;     // the program's title
    QString os_product;  // os_product_name
    QString page;        // "BLADSY : <n>" or "PAGE : <n>"
    QString title;       // with " [<subtitle>]" where a subtitle is given
    QString build;       // os_build_text where its year is this year, else ""
};

// The Excel side, wired in by the worksheet writer. A hook left empty is
// passed over.
struct WorksheetHooks {
    // page_head with output_to_excel: the next sheet, with the head in cells.
    std::function<void(const SheetHead&)> sheet_head;
    // print_grid_report with output_to_excel: the grid onto the current sheet.
    std::function<void(TextGrid&)> write_grid;
    // Lines of text below what the current sheet holds, a blank row first,
    // one line to a row in the first column (a legend under a grid).
    std::function<void(const QStringList&)> write_lines;
    // print_grid_report's to_excel_file: asks the file, writes, saves.
    std::function<void(TextGrid&)> grid_to_new_file;
    // end_of_print with output_to_excel: saves the workbook and tells the user.
    std::function<void()> finish;
};

// The progress window wys_druk_vordering as logic: what it shows. The widget
// only renders this.
class PrintProgress {
public:
    // Shown by print_setup: the job's title or the busy text, the printer
    // and the page now printing.
    void show(const RunState& run, const QString& job_title, const QString& device, int page);
    void hide() {
        visible_ = false;
        if (changed) changed(*this);
    }
    // Told after every change, so that a window can show it at once (the
    // print loop gives the event loop no turn).
    std::function<void(const PrintProgress&)> changed;
    // The list of pages printed so far, cleared when a job starts.
    void clear_pages() { pages_.clear(); }

    bool visible() const { return visible_; }
    // True once it was shown: its animation starts only the first time.
    bool loaded() const { return loaded_; }
    int times_started() const { return starts_; }
    QString heading() const { return heading_; }   // wdv_opskrif
    QString device() const { return device_; }     // wdv_drukker
    int page() const { return page_; }             // wdv_bladsy
    const QList<int>& pages() const { return pages_; }

private:
    bool visible_ = false;
    bool loaded_ = false;
    int starts_ = 0;
    QString heading_;
    QString device_;
    int page_ = 0;
    QList<int> pages_;
};

// The print state of a job. One object lives for the run, as the family's
// program-wide variables did.
struct PrintJob {
    bool print_chosen = false;
    bool output_to_excel = false;
    bool new_print_job = false;
    QString print_job_title;
    qint16 print_colour = 0;  // 0 black; anything else colour
    qint16 paper_width = 0;
    qint16 page_font_size = 10;
    qint16 line_width = 0;
    qint16 line_width_left = 0;
    float page_bottom = 0;
    float head_rule_y = 0;
    qint16 head_rule_line = 0;
    QString export_stem;
    QString export_folder;
    // The printer chosen with VERANDER; empty for the default printer.
    QString printer_name;

    // The school's crest, painted by page_head where the file exists.
    QString logo_file;
    // The head's clock; an invalid time reads the clock.
    QTime fixed_time;

    PrintProgress progress;
    WorksheetHooks worksheet;
};

inline const QString kPortrait = QStringLiteral("A4_portrait");
inline const QString kLandscape = QStringLiteral("A4_landscape");

// Any paper text but "A4_portrait" is landscape.
bool is_portrait(const QString& paper);

// Shows the output dialog (kies_drukker), which fills print_chosen,
// output_to_excel, print_colour and the export names of the job.
using OutputDialog = std::function<void(PrintJob&)>;

// Before every print: ends any document still open, copies the title, shows
// the dialog and sets the job up. True when the caller is to go on printing
// (to the surface or to a worksheet).
bool ask_output_target(PrintSurface& surface, PrintJob& job, const RunState& run,
                       const QString& title, const OutputDialog& show_dialog);

// Sets up the job: progress window, character scale, orientation (only for a
// new job), paper width, font, colour switch, rules. Passes over everything
// when output goes to a worksheet.
void print_setup(PrintSurface& surface, PrintJob& job, const RunState& run,
                 const QString& paper = kPortrait, float zoom = 1.0f);

// "Lucida Console" 10, black, not bold; the scale stays.
void reset_print_font(PrintSurface& surface);

struct PageHeadOptions {
    QString paper = kPortrait;
    bool large_title = false;  // the title at 12 bold
    bool no_head = false;      // no frame and no head block
    float zoom = 1.0f;
};

// Called before every block of body lines. Writes a head only at the top of
// a page, near its foot (CurrentY at or beyond ScaleHeight - 5), or for a new
// job; starts a new sheet unless the page is still empty. `title` may be
// rewritten (landscape takes the subtitle into it); `subtitle` then becomes
// empty. Gives the line where the body continues (6), or nothing where no
// head was written, which a caller reads as 0.
std::optional<float> page_head(PrintSurface& surface, PrintJob& job, const RunState& run,
                               QString& title, QString& subtitle,
                               const PageHeadOptions& options = {});

// The head texts of the current page, as page_head prints them.
SheetHead sheet_head_texts(const PrintSurface& surface, const PrintJob& job, const RunState& run,
                           const QString& title, const QString& subtitle);

// Closes the job: the banner on the last page (or the long last line when the
// page holds no body), EndDoc, hides the progress window and tells the user
// how many pages went out. With output_to_excel the worksheet side finishes
// instead and output_to_excel is cleared.
void end_of_print(PrintSurface& surface, PrintJob& job, const RunState& run,
                  bool with_banner = true, bool with_message = true);

// The colour switch of the shared settings: the number in kleur_drukker.txt,
// 0 where the file is missing or unreadable.
qint16 read_print_colour(const RunState& run);
// The same from a given file: a number, or #TRUE# / #FALSE#; 0 where the
// file is missing or unreadable.
qint16 read_print_colour_file(const QString& path);

}  // namespace veldo
