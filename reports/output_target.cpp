#include "reports/output_target.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "reports/page_engine.h"
#include "store/run_state.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/quoted_values.h"
#include "util/safe_file.h"

namespace veldo {

namespace {

QByteArray read_all(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The settings files are met in whatever case another family program gave them.
QString settings_path(const QString& full_path) {
    const QFileInfo info(full_path);
    return path_ignoring_case(info.path(), info.fileName());
}

QString without_closing_slash(QString folder) {
    while (folder.size() > 1 && (folder.endsWith('/') || folder.endsWith('\\'))) folder.chop(1);
    return folder;
}

QString with_closing_slash(const QString& folder) {
    return folder.endsWith('/') ? folder : folder + '/';
}

}  // namespace

int read_colour_switch(const QString& path) {
    return QFileInfo(path).isFile() ? read_print_colour_file(path) : 0;
}

bool write_colour_switch(const QString& path, int colour) {
    const QByteArray bytes = write_quoted_lines({QuotedLine{QuotedValue::bare(QString::number(colour))}});
    return write_file_atomic(path, bytes);
}

OutputTarget::OutputTarget(RunState& run, OutputChoice& choice, PrinterChooser choose_printer)
    : run_(run), choice_(choice), choose_printer_(std::move(choose_printer)) {}

QString OutputTarget::colour_file_path() const {
    return settings_path(run_.in_folder(run_.shared_settings_folder, QStringLiteral("kleur_drukker.txt")));
}
QString OutputTarget::excel_folder_file_path() const {
    return settings_path(run_.in_folder(run_.family_folder, QStringLiteral("excel_uitvoer_gids")));
}
QString OutputTarget::html_folder_file_path() const {
    return settings_path(run_.in_folder(run_.family_folder, QStringLiteral("html_uitvoer_gids")));
}

void OutputTarget::load() {
    closed_ = false;
    choice_.output_to_excel = false;
    choice_.output_to_html = false;
    choice_.print_colour = read_colour_switch(colour_file_path());
}

void OutputTarget::druk_ok() {
    choice_.print_chosen = true;
    // Only into a settings folder that is there: an empty one is no folder.
    // A switch that can't be written leaves the job to go on in its colour.
    const QString folder = run_.shared_settings_folder.trimmed();
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) write_colour_switch(colour_file_path(), choice_.print_colour);
    closed_ = true;
}

void OutputTarget::druk_stop() {
    choice_.print_chosen = false;
    closed_ = true;
}

void OutputTarget::druk_wysig() {
    if (!choose_printer_) return;
    const QString name = choose_printer_(choice_.printer_name);
    if (!name.isEmpty()) choice_.printer_name = name;
}

void OutputTarget::kies_kleur() { choice_.print_colour = -1; }

void OutputTarget::kies_mono() { choice_.print_colour = 0; }

QString OutputTarget::remembered_folder(const QString& path) const {
    if (!QFileInfo(path).isFile()) return QString();
    const QList<QuotedValue> values = read_quoted_values(read_all(path));
    return values.isEmpty() ? QString() : values.first().as_text().trimmed();
}

bool OutputTarget::ask_file_name(const QString& remembered_file, const QString& title,
                                 const QString& start_name, QString* folder, QString* file_name) {
    QString start = remembered_folder(remembered_file);
    if (start.isEmpty() || !QFileInfo(start).isDir()) {
        start = QFileInfo(run_.program_folder).isDir() ? run_.program_folder : run_.drive_root;
    }
    start = without_closing_slash(start);
    const QString start_path = start_name.isEmpty() ? start : start + '/' + start_name;
    const QString chosen = run_.dialogs->choose_save_file(title, start_path, QString());
    if (chosen.trimmed().isEmpty()) return false;
    const QFileInfo info(chosen.trimmed());
    *folder = without_closing_slash(QDir::cleanPath(info.absolutePath()));
    *file_name = info.fileName().trimmed();
    if (file_name->isEmpty()) return false;
    // The next export starts where this one went; losing that is no harm.
    write_file_atomic(remembered_file, write_quoted_lines({QuotedLine{QuotedValue::of_text(*folder)}}));
    return true;
}

void OutputTarget::kies_excel() {
    choice_.print_job_title = run_.tr(QStringLiteral("DRUKWERK NA EXCEL"), QStringLiteral("REPORTING TO EXCEL"));
    choice_.print_chosen = false;
    choice_.output_to_excel = true;
    choice_.print_colour = -1;
    choice_.export_stem.remove('/');

    if (!ask_excel_file()) {
        choice_.output_to_excel = false;
        return;
    }
    closed_ = true;
}

bool OutputTarget::ask_excel_file() {
    QString folder, file_name;
    if (!ask_file_name(excel_folder_file_path(), excel_file_title(), choice_.export_stem, &folder, &file_name))
        return false;
    // The workbook always gets ".xlsx" when saved, so a typed extension goes.
    for (const char* ext : {".xlsx", ".xls"}) {
        if (file_name.endsWith(QLatin1String(ext), Qt::CaseInsensitive)) {
            file_name.chop(qsizetype(qstrlen(ext)));
            break;
        }
    }
    choice_.export_folder = with_closing_slash(folder);
    choice_.export_stem = file_name.trimmed();
    return true;
}

void OutputTarget::kies_html() {
    // Only recorded: no report reads these values, so nothing is printed or written.
    choice_.print_chosen = false;
    choice_.output_to_html = true;
    choice_.print_colour = -1;
    choice_.export_stem.remove('/');

    QString folder, file_name;
    if (!ask_file_name(html_folder_file_path(), html_file_title(), choice_.export_stem, &folder, &file_name)) {
        choice_.output_to_html = false;
        return;
    }
    choice_.html_folder = with_closing_slash(folder);
    choice_.html_file_name = file_name;
    choice_.print_chosen = false;
    closed_ = true;
}

QString OutputTarget::druk_ok_caption() const { return run_.tr(QStringLiteral("DRUK"), QStringLiteral("PRINT")); }
QString OutputTarget::druk_ok_tooltip() const {
    return run_.tr(QStringLiteral(" Druk na "), QStringLiteral(" Print to ")) + choice_.printer_name;
}
QString OutputTarget::druk_stop_caption() const {
    return run_.tr(QStringLiteral("KANSELLEER"), QStringLiteral("CANCEL"));
}
QString OutputTarget::druk_stop_tooltip() const {
    return run_.tr(QStringLiteral(" Kanselleer drukwerk "), QStringLiteral(" Cancel printing "));
}
QString OutputTarget::druk_wysig_caption() const {
    return run_.tr(QStringLiteral("VERANDER"), QStringLiteral("SELECT"));
}
QString OutputTarget::druk_wysig_tooltip() const {
    return run_.tr(QStringLiteral(" Kies 'n ander drukker "), QStringLiteral(" Select a different printer "));
}
QString OutputTarget::kies_kleur_caption() const {
    return run_.tr(QStringLiteral("KLEUR"), QStringLiteral("COLOUR"));
}
QString OutputTarget::kies_kleur_tooltip() const {
    return run_.tr(QStringLiteral(" Doen drukwerk in kleur "), QStringLiteral(" Do printing in colour "));
}
QString OutputTarget::kies_mono_tooltip() const {
    return run_.tr(QStringLiteral(" Doen drukwerk in swart "), QStringLiteral(" Do printing in black "));
}
QString OutputTarget::kies_mono_caption() const {
    return run_.tr(QStringLiteral("SWART"), QStringLiteral("BLACK"));
}
QString OutputTarget::excel_folder_title() const {
    return run_.tr(QStringLiteral("GIDSADRES VIR EXCEL-UITVOER"), QStringLiteral("FOLDER ADDRESS FOR EXCEL EXPORT"));
}
QString OutputTarget::excel_file_title() const {
    return run_.tr(QStringLiteral("EXCEL UITVOER LE\u00eaRNAAM"), QStringLiteral("EXCEL EXPORT FILE NAME"));
}
QString OutputTarget::html_folder_title() const {
    return run_.tr(QStringLiteral("GIDSADRES VIR HTML-UITVOER"), QStringLiteral("FOLDER ADDRESS FOR HTML EXPORT"));
}
QString OutputTarget::html_file_title() const {
    return run_.tr(QStringLiteral("HTML UITVOER LE\u00eaRNAAM"), QStringLiteral("HTML EXPORT FILE NAME"));
}

OutputChoice output_choice_of(const PrintJob& job) {
    OutputChoice choice;
    choice.print_chosen = job.print_chosen;
    choice.output_to_excel = job.output_to_excel;
    choice.print_colour = job.print_colour;
    choice.export_folder = job.export_folder;
    choice.export_stem = job.export_stem;
    choice.print_job_title = job.print_job_title;
    choice.printer_name = job.printer_name;
    return choice;
}

void apply_output_choice(const OutputChoice& choice, PrintJob& job) {
    job.print_chosen = choice.print_chosen;
    job.output_to_excel = choice.output_to_excel;
    job.print_colour = qint16(choice.print_colour);
    job.export_folder = choice.export_folder;
    job.export_stem = choice.export_stem;
    job.print_job_title = choice.print_job_title;
    job.printer_name = choice.printer_name;
}

}  // namespace veldo
