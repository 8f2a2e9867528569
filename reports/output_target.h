#pragma once
// kies_drukker, the output dialog shown before every print: a printer and
// colour or black, or a worksheet (Excel), or an HTML target, or nothing.
// The choice lands in an OutputChoice that the page engine reads.

#include <QString>
#include <functional>

namespace veldo {

struct PrintJob;
struct RunState;

// The print state the dialog sets and the page engine and worksheet read.
struct OutputChoice {
    bool print_chosen = false;     // output goes to the printer
    bool output_to_excel = false;  // output goes to a worksheet
    bool output_to_html = false;   // recorded only: nothing reads it
    int print_colour = 0;          // 0 black; anything else colour (-1 as the family writes True)
    QString export_folder;         // ends in "/"
    QString export_stem;           // file name without folder and extension
    QString html_folder;           // ends in "/"
    QString html_file_name;
    QString printer_name;          // device name of the chosen printer
    QString print_job_title;       // "DRUKWERK NA EXCEL" once Excel is chosen
};

class OutputTarget {
public:
    // Asks the platform for another printer, starting from the current one;
    // "" when the user cancelled or there is none.
    using PrinterChooser = std::function<QString(const QString& current)>;

    OutputTarget(RunState& run, OutputChoice& choice, PrinterChooser choose_printer = {});

    // --- events ---
    void load();
    void druk_ok();
    void druk_stop();
    void druk_wysig();
    void drukker_naam_dblclick() { druk_wysig(); }
    void kies_kleur();
    void kies_mono();
    void kies_excel();
    void kies_html();

    // The file name part of kies_excel (ask_excel_file): the save dialog from
    // the remembered folder, starting from export_stem. On OK the folder is
    // remembered and export_folder and export_stem are set; false on Cancel.
    bool ask_excel_file();

    // True once a handler has closed the dialog.
    bool closed() const { return closed_; }
    // The colour button shows pressed (the black one released), or the reverse.
    bool colour_pressed() const { return choice_.print_colour != 0; }

    // --- texts of the controls ---
    QString druk_ok_caption() const;
    QString druk_ok_tooltip() const;
    QString druk_stop_caption() const;
    QString druk_stop_tooltip() const;
    QString druk_wysig_caption() const;
    QString druk_wysig_tooltip() const;
    QString kies_kleur_caption() const;
    QString kies_kleur_tooltip() const;
    QString kies_mono_tooltip() const;
    // The family's black button carries only a picture; a word stands in.
    QString kies_mono_caption() const;
    QString excel_folder_title() const;
    QString excel_file_title() const;
    QString html_folder_title() const;
    QString html_file_title() const;

    // Where the switch and the remembered folders lie.
    QString colour_file_path() const;
    QString excel_folder_file_path() const;
    QString html_folder_file_path() const;

    const OutputChoice& choice() const { return choice_; }

private:
    // The save dialog of the Excel and HTML buttons. Returns false on Cancel;
    // else the chosen folder (no closing "/") and file name.
    bool ask_file_name(const QString& remembered_file, const QString& title, const QString& start_name,
                       QString* folder, QString* file_name);
    QString remembered_folder(const QString& path) const;

    RunState& run_;
    OutputChoice& choice_;
    PrinterChooser choose_printer_;
    bool closed_ = false;
};

// Reads the colour switch file; 0 where it is absent or unreadable.
int read_colour_switch(const QString& path);
// Writes it as one bare number and CR LF; false when it can't be written.
bool write_colour_switch(const QString& path, int colour);

// Between the dialog's choice and the page engine's job.
OutputChoice output_choice_of(const PrintJob& job);
void apply_output_choice(const OutputChoice& choice, PrintJob& job);

}  // namespace veldo
