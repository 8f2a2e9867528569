#include "app/cli.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QTextStream>
#include <cstdio>
#include <functional>

#include "app/cli_dialogs.h"
#include "markbook/mark_book_print.h"
#include "markbook/setup_file.h"
#include "reports/qt_print_surface.h"
#include "reports/worksheet.h"
#include "store/table_layouts.h"
#include "exchange/export_marks.h"
#include "markbook/move_learners.h"
#include "markbook/setup_copy.h"
#include "markbook/setup_screen.h"
#include "input/assessment_input.h"
#include "input/mark_lists.h"
#include "input/marks_input.h"
#include "reports/print_service.h"
#include "exchange/symbol_distribution.h"
#include "markbook/column_actions.h"
#include "markbook/marks_table.h"
#include "markbook/totals_engine.h"
#include "markbook/typed_mark.h"
#include "shell/demo_school.h"
#include "shell/startup.h"
#include "store/dbf_table.h"
#include "store/record_store.h"
#include "store/series.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/text_grid.h"
#include "util/text_helpers.h"

namespace veldo {
namespace {

struct Context {
    RunState run;
    CliDialogs dialogs;
    RecordStore store{run};
    QMap<QString, QString> options;
    QStringList positional;
    QString invocation_folder = QDir::currentPath();
    QTextStream out{stdout};
};

struct Command {
    QString word;
    QString synopsis;
    QString description;
    QStringList options;       // options it takes besides --lang
    int positional = 0;        // positional arguments it needs
    std::function<int(Context&)> run;
    QStringList optional = {};  // options among `options` that may be left out
};

void print_error(const QString& text) { std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData()); }

// A data folder given on the command line must exist; the system's own
// message says so.
bool check_data_folder(Context& c) {
    if (folder_exists(c.run.data_folder)) return true;
    print_error(folder_missing_message(c.run, c.run.data_folder));
    return false;
}

int cmd_demo(Context& c) {
    const DemoResult result = write_demo_school(c.run, c.run.data_folder);
    if (!result.ok) {
        print_error(result.message);
        return 1;
    }
    c.out << c.run.tr("Voorbeeldskool geskryf in ", "Demo school written to ") << c.run.data_folder << " ("
          << result.written.size() << c.run.tr(" lêers)", " files)") << "\n";
    for (const QString& f : result.written) c.out << "  " << f << "\n";
    return 0;
}

// The data folder must exist and hold the mark series, as the menus test
// before they show a mark book screen.
bool check_marks_folder(Context& c) {
    if (!check_data_folder(c)) return false;
    if (has_marks_files(c.run.data_folder)) return true;
    print_error(c.run.tr("Bestaande gids (" + c.run.data_folder + ") bevat nie punteleêrs nie ...",
                         "Current folder (" + c.run.data_folder + ") does not contain marks files ..."));
    return false;
}

int cmd_series(Context& c) {
    if (!check_marks_folder(c)) return 1;
    for (const QStringList& row : series_rows(c.store)) c.out << row.join('\t') << "\n";
    return c.dialogs.refused ? 1 : 0;
}

// The series number a command line gives, 1 to the count of `rows`; 0,
// with the message, when the folder has no such series.
int series_number(Context& c, const QList<QStringList>& rows, const QString& text) {
    const int n = int(Val(text));
    if (n >= 1 && n <= rows.size()) return n;
    print_error(c.run.tr("Daar is geen puntereeks " + text + " in " + c.run.data_folder + " nie.",
                         "There is no mark series " + text + " in " + c.run.data_folder + "."));
    return 0;
}

// The vak_grid row of --series N; N counts from 1.
bool chosen_series(Context& c, int* series, QStringList* row) {
    if (!check_marks_folder(c)) return false;
    const auto rows = series_rows(c.store);
    *series = series_number(c, rows, c.options.value("series"));
    if (*series == 0) return false;
    *row = rows[*series - 1];
    return true;
}

std::unique_ptr<OpenMarkBook> open_chosen_book(Context& c) {
    int series = 0;
    QStringList row;
    if (!chosen_series(c, &series, &row)) return nullptr;
    return open_mark_book(c.store, row, series);
}

int cmd_open(Context& c) {
    auto book = open_chosen_book(c);
    if (!book) return 1;
    c.out << c.run.tr("Punteboek ", "Mark book ") << book->series << " (setup_" << book->key << ".txt): "
          << book->table->RecordCount() << c.run.tr(" leerders, ", " learners, ") << book->lists.kopieer_reeks.size()
          << c.run.tr(" kolomme", " columns") << "\n";
    return 0;
}

int cmd_sync(Context& c) {
    int series = 0;
    QStringList row;
    if (!chosen_series(c, &series, &row)) return 1;
    if (!update_marks_table(c.store, series)) return 1;
    c.out << marks_table_name(series) << c.run.tr(" is bygewerk.", " is up to date.") << "\n";
    return 0;
}

int cmd_recalc(Context& c) {
    auto book = open_chosen_book(c);
    if (!book) return 1;
    if (!recalculate_totals(*book->table, book->lists)) {
        c.dialogs.message(dbf_error_message(book->table->last_error(), c.run.language_afrikaans), MsgIcon::Critical,
                          MsgButtons::Ok, QString());
        return 1;
    }
    c.out << c.run.tr("Totale herbereken vir ", "Totals recalculated for ") << book->table->RecordCount()
          << c.run.tr(" leerders.", " learners.") << "\n";
    return 0;
}

// A column of an open book given on the command line: a named row's field
// index (2 to 41); a total column only where `totals_too`.
int chosen_column(Context& c, const OpenMarkBook& book, const QString& option, bool totals_too) {
    const QString given = c.options.value(option);
    const int column = int(Val(given));
    const ColumnLists& lists = book.lists;
    if (column < 2 || column > 41 || lists.name(column).trimmed().isEmpty() || (!totals_too && lists.is_total(column))) {
        print_error(c.run.tr("Kolom " + given + " van punteboek " + QString::number(book.series) +
                                 " neem nie punte nie: kies 'n taak se kolom (2 tot 41).",
                             "Column " + given + " of mark book " + QString::number(book.series) +
                                 " takes no marks: choose a task's column (2 to 41)."));
        return -1;
    }
    return column;
}

int table_failed(Context& c, const DbfTable& table) {
    print_error(dbf_error_message(table.last_error(), c.run.language_afrikaans));
    return 1;
}

// A mark typed into book N as the input screen takes it: the book opened
// (and so rebuilt), the learner found by number, the mark judged and stored
// with the running figure. A book rebuilt by another workstation meanwhile is
// opened again.
int cmd_mark(Context& c) {
    int series = 0;
    QStringList row;
    if (!chosen_series(c, &series, &row)) return 1;
    const QString learner = c.options.value("learner").trimmed();
    const int column = int(Val(c.options.value("column")));
    for (int attempt = 0;; ++attempt) {
        auto book = open_mark_book(c.store, row, series);
        if (!book) return 1;
        const ColumnLists& lists = book->lists;
        if (chosen_column(c, *book, "column", false) < 0) return 1;
        DbfTable& t = *book->table;
        bool found = false;
        for (t.MoveFirst(); !t.Eof() && !found; t.MoveNext())
            found = Val(plain_text(t.value(0))) == Val(learner) && Val(learner) > 0;
        if (!found) {
            print_error(c.run.tr("Daar is geen leerder " + learner + " in punteboek " + QString::number(series) + " nie.",
                                 "There is no learner " + learner + " in mark book " + QString::number(series) + "."));
            return 1;
        }
        t.MovePrevious();
        const TypedMark result = store_typed_mark(c.run, t, lists, column, c.options.value("value"));
        if (result == TypedMark::Refused) return 1;
        if (result == TypedMark::Failed) {
            if (t.last_error().code == DbfError::Replaced && attempt < 20) continue;
            print_error(dbf_error_message(t.last_error(), c.run.language_afrikaans));
            return 1;
        }
        const int target = lists.target(column);
        c.out << toets_null_text(t.value(1)).trimmed() << ", " << lists.name(column).trimmed() << ": "
              << toets_null_text(t.value(column)).trimmed();
        if (target >= 2 && target < t.field_count())
            c.out << " (" << lists.name(target).trimmed() << " " << toets_null_text(t.value(target)).trimmed() << ")";
        c.out << "\n";
        return 0;
    }
}

// Scaling as the column menu does it: every mark moved by the same number of
// percentage points towards the new class average.
int cmd_scale(Context& c) {
    auto book = open_chosen_book(c);
    if (!book) return 1;
    const int column = chosen_column(c, *book, "column", true);
    if (column < 0) return 1;
    if (book->lists.is_total(column)) {
        print_error(scaling_total_column_message(c.run));
        return 1;
    }
    const double wanted = Val(c.options.value("average").trimmed());
    if (wanted == 0) {
        print_error(c.run.tr("Die nuwe gemiddeld moet 'n getal bo 0 wees: niks is verskaal nie.",
                             "The new average must be a number above 0: nothing was scaled."));
        return 1;
    }
    const double before = class_averages(*book->table, book->lists)[std::size_t(column)].to_double();
    if (!scale_column(*book->table, book->lists, column, before, wanted)) return table_failed(c, *book->table);
    const double after = class_averages(*book->table, book->lists)[std::size_t(column)].to_double();
    c.out << book->lists.name(column).trimmed() << ": " << format_one_decimal(before) << " -> "
          << format_one_decimal(after) << "\n";
    return 0;
}

int cmd_copy_column(Context& c) {
    auto book = open_chosen_book(c);
    if (!book) return 1;
    const int from = chosen_column(c, *book, "from", true);
    const int to = from < 0 ? -1 : chosen_column(c, *book, "to", true);
    if (to < 0) return 1;
    if (!copy_column(*book->table, from, to)) return table_failed(c, *book->table);
    c.out << book->lists.name(from).trimmed() << " -> " << book->lists.name(to).trimmed() << ": "
          << book->table->RecordCount() << c.run.tr(" leerders", " learners") << "\n";
    return 0;
}

// The clipboard's text, read from a file: one line per learner.
int cmd_paste_column(Context& c) {
    auto book = open_chosen_book(c);
    if (!book) return 1;
    const int column = chosen_column(c, *book, "column", true);
    if (column < 0) return 1;
    QFile file(QDir(c.invocation_folder).absoluteFilePath(c.options.value("file")));
    if (!file.open(QIODevice::ReadOnly)) {
        print_error(c.run.tr("Die lêer " + file.fileName() + " kan nie gelees word nie.",
                             "The file " + file.fileName() + " can't be read."));
        return 1;
    }
    const QString text = QString::fromUtf8(file.readAll());
    if (!paste_column(*book->table, column, text)) return table_failed(c, *book->table);
    c.out << book->lists.name(column).trimmed() << ": " << book->table->RecordCount()
          << c.run.tr(" leerders", " learners") << "\n";
    return 0;
}

int cmd_averages(Context& c) {
    auto book = open_chosen_book(c);
    if (!book) return 1;
    const auto averages = class_averages(*book->table, book->lists);
    for (const auto& [name, field] : book->lists.kopieer_reeks)
        c.out << field << "\t" << name << "\t" << averages[field].fixed4() << "\n";
    return 0;
}

int cmd_export(Context& c) {
    int series = 0;
    QStringList row;
    if (!chosen_series(c, &series, &row)) return 1;
    ExportRequest request;
    request.series = series;
    request.series_row = row;
    request.task = int(Val(c.options.value("task")));
    request.folder = c.options.contains("to") ? QDir::cleanPath(QDir(c.invocation_folder).absoluteFilePath(c.options["to"]))
                                              : c.run.data_folder;
    return export_task(c.store, request) ? 0 : 1;
}

int cmd_symbols(Context& c) {
    int series = 0;
    QStringList row;
    if (!chosen_series(c, &series, &row)) return 1;
    TextGrid grid;
    if (!build_symbol_distribution(c.store, row, series, grid)) return 1;
    for (int r = 0; r < grid.rows(); ++r) c.out << grid.row_texts(r).join('\t') << "\n";
    return 0;
}

int cmd_dump(Context& c) {
    DbfError error;
    auto table = DbfTable::open(QDir(c.invocation_folder).absoluteFilePath(c.positional.first()), &error);
    if (!table) {
        print_error(dbf_error_message(error, c.run.language_afrikaans));
        return 1;
    }
    QStringList names;
    for (int i = 0; i < table->field_count(); ++i) names << table->field(i).name;
    c.out << names.join('\t') << "\n";
    QStringList cells;
    for (table->MoveFirst(); !table->Eof(); table->MoveNext()) {
        cells.clear();
        for (int i = 0; i < table->field_count(); ++i) {
            QString text = plain_text(table->value(i));
            while (!text.isEmpty() && text.back() == ' ') text.chop(1);
            cells << text;
        }
        c.out << cells.join('\t') << "\n";
    }
    return 0;
}

// A print as the screens do it after the output choice: to a PDF file as
// if the user pressed PRINT, or to a workbook as if he chose Excel.
// The output of a print: a PDF file or a workbook named on the command line.
struct CliOutput {
    bool to_pdf = false;
    QString target;
};

bool chosen_output(Context& c, CliOutput* out) {
    out->to_pdf = c.options.contains("pdf");
    if (out->to_pdf == c.options.contains("xlsx")) {
        print_error("veldo-tally: print needs one of --pdf FILE and --xlsx FILE\n\n" + usage_text());
        return false;
    }
    out->target = QDir::cleanPath(QDir(c.invocation_folder).absoluteFilePath(c.options.value(out->to_pdf ? "pdf" : "xlsx")));
    return true;
}

// Runs a screen's print body on the chosen file.
class CliPrinter : public PrintService {
public:
    CliPrinter(Context& c, CliOutput out) : c_(c), out_(std::move(out)) {}
    bool print(const std::function<bool(ReportRun&)>& body) override {
        PrintJob job;
        if (!out_.to_pdf) install_worksheet_hooks(job, c_.run);
        QtPrintSurface surface(out_.to_pdf ? out_.target : QDir::temp().filePath("veldo-tally-unused.pdf"));
        ReportRun r{surface, job, c_.run, [this](PrintJob& j) {
                        if (out_.to_pdf) {
                            j.print_chosen = true;
                            return;
                        }
                        const QFileInfo file(out_.target);
                        j.print_chosen = false;
                        j.output_to_excel = true;
                        j.export_folder = file.absolutePath() + "/";
                        j.export_stem = file.completeBaseName();
                    }};
        return body(r);
    }

private:
    Context& c_;
    CliOutput out_;
};

// The cycle marks screen (or, with `mode` 0 to 3, the assessment screen in
// that mode) with series --series K open, out of --input-total where given.
// Null, with the reason on standard error, when it did not open.
struct OpenSeries {
    CliScreens screens;
    ShellContext ctx;
    std::unique_ptr<MarksInput> input;
    explicit OpenSeries(Context& c) : ctx{c.run, c.store, c.dialogs, screens, Clock{}} {}
};

std::unique_ptr<OpenSeries> open_series(Context& c, PrintService& printer, const QStringList& more_inputs = {},
                                        int mode = AssessmentInput::NoMode) {
    int series = 0;
    QStringList row;
    if (!chosen_series(c, &series, &row)) return nullptr;
    auto open = std::make_unique<OpenSeries>(c);
    const bool assessment = mode != AssessmentInput::NoMode;
    if (assessment)
        open->input = std::make_unique<AssessmentInput>(open->ctx, printer);
    else
        open->input = std::make_unique<MarksInput>(open->ctx, printer);
    open->input->list_series();
    c.dialogs.inputs = QStringList{c.options.value("input-total")} + more_inputs;
    bool opened = open->input->open_subject(series - 1);
    if (opened && assessment) opened = static_cast<AssessmentInput&>(*open->input).io_ok(mode);
    if (!opened) {
        const QString table = (assessment ? "OBE_P" : "PUNTE") + QString::number(series) + ".DBF";
        if (!c.dialogs.refused)
            print_error(!open->input->has_table()
                            ? c.run.tr("Daar is geen punteleêr " + table + " in " + c.run.data_folder + " nie.",
                                       "There is no marks file " + table + " in " + c.run.data_folder + ".")
                            : c.run.tr("Puntereeks " + QString::number(series) + " het geen leerders nie.",
                                       "Mark series " + QString::number(series) + " has no learners."));
        return nullptr;
    }
    if (c.options.contains("input-total") && open->input->input_total() != Val(c.options.value("input-total"))) {
        open->input->restore_backup();
        return nullptr;
    }
    return open;
}

// A series' marks as the grid shows them, then the total and the average.
void show_series(Context& c, MarksInput& input) {
    for (int r = 0; r < input.learner_count(); ++r) {
        QStringList cells;
        for (int col = 0; col < input.column_count(); ++col)
            if (input.column_shown(col)) cells << input.cell(r, col).trimmed();
        c.out << cells.join('\t') << "\n";
    }
    c.out << input.heading(2) << ": " << c.run.tr("TOTAAL ", "TOTAL ") << input.total_text() << ", "
          << c.run.tr("GEMIDDELD ", "AVERAGE ") << input.average_text() << "%\n";
}

// The grid row of learner --learner; -1, with the table put back and a
// message, when the series has no such learner.
int learner_row(Context& c, MarksInput& input) {
    const double learner = Val(c.options.value("learner"));
    for (int row = 0; row < input.learner_count(); ++row)
        if (learner > 0 && Val(input.cell(row, 0)) == learner) return row;
    input.restore_backup();
    print_error(c.run.tr("Daar is geen leerder " + c.options.value("learner") + " in puntereeks " +
                             c.options.value("series") + " nie.",
                         "There is no learner " + c.options.value("learner") + " in mark series " +
                             c.options.value("series") + "."));
    return -1;
}

int cmd_marks(Context& c) {
    const QString what = c.positional.value(0);
    if (what != "show" && what != "set" && what != "save") {
        print_error("veldo-tally: marks takes show, set or save\n\n" + usage_text());
        return 2;
    }
    if (what == "set" && (!c.options.contains("learner") || (!c.options.contains("value") && !c.options.contains("key")))) {
        print_error("veldo-tally: marks set needs --learner and --value or --key\n\n" + usage_text());
        return 2;
    }
    CliPrinter printer(c, {});
    auto open = open_series(c, printer);
    if (!open) return 1;
    MarksInput& input = *open->input;
    if (what == "show") {
        show_series(c, input);
        // Seen, not changed: the table goes back as it was opened.
        return input.restore_backup() ? 0 : 1;
    }
    if (what == "set") {
        const int row = learner_row(c, input);
        if (row < 0) return 1;
        if ((c.options.contains("value") && !input.cell_changed(row, 2, c.options.value("value"))) ||
            (c.options.contains("key") && !input.cell_changed(row, 3, c.options.value("key")))) {
            input.restore_backup();
            return 1;
        }
        c.out << input.cell(row, 1).trimmed() << ": " << input.cell(row, 2).trimmed() << " "
              << input.cell(row, 3).trimmed() << "\n";
    }
    show_series(c, input);
    return input.marks_save() && !c.dialogs.refused ? 0 : 1;
}

// The assessment screen in mode --mode: show, set a learner's fields, save.
int cmd_obe(Context& c) {
    const QString what = c.positional.value(0);
    const QString mode_text = c.options.value("mode").trimmed();
    const int mode = mode_text.size() == 1 && mode_text[0] >= '0' && mode_text[0] <= '3' ? mode_text.toInt() : -1;
    if ((what != "show" && what != "set" && what != "save") || mode < 0) {
        print_error("veldo-tally: obe takes show, set or save and --mode 0, 1, 2 or 3\n\n" + usage_text());
        return 2;
    }
    const bool any_field = c.options.contains("value") || c.options.contains("key") || c.options.contains("formative");
    if (what == "set" && (!c.options.contains("learner") || !any_field)) {
        print_error("veldo-tally: obe set needs --learner and --value, --key or --formative\n\n" + usage_text());
        return 2;
    }
    CliPrinter printer(c, {});
    auto open = open_series(c, printer, {}, mode);
    if (!open) return 1;
    MarksInput& input = *open->input;
    if (what == "show") {
        show_series(c, input);
        return input.restore_backup() ? 0 : 1;
    }
    if (what == "set") {
        const int row = learner_row(c, input);
        if (row < 0) return 1;
        QList<std::pair<int, QString>> fields;
        if (c.options.contains("value")) fields.append({kClassListMark, c.options.value("value")});
        if (c.options.contains("key")) fields.append({kAssessmentKey, c.options.value("key")});
        if (c.options.contains("formative")) {
            const QStringList marks = c.options.value("formative").split(',');
            for (int i = 0; i < marks.size() && i < 4; ++i)
                fields.append({kAssessmentFormativeFirst + i, marks[i]});
        }
        for (const auto& [column, value] : fields) {
            if (!input.column_shown(column)) {
                input.restore_backup();
                print_error(c.run.tr("Modus " + mode_text + " wys nie die kolom " + input.heading(column).trimmed() +
                                         " nie.",
                                     "Mode " + mode_text + " does not show the column " +
                                         input.heading(column).trimmed() + "."));
                return 1;
            }
            if (!input.cell_changed(row, column, value)) {
                input.restore_backup();
                return 1;
            }
        }
    }
    show_series(c, input);
    return input.marks_save() && !c.dialogs.refused ? 0 : 1;
}

// Scaling as a click on the average does it, then the save.
int cmd_scale_marks(Context& c) {
    if (Val(c.options.value("average").trimmed()) == 0) {
        print_error(c.run.tr("Die nuwe gemiddeld moet 'n getal bo 0 wees: niks is verskaal nie.",
                             "The new average must be a number above 0: nothing was scaled."));
        return 1;
    }
    CliPrinter printer(c, {});
    auto open = open_series(c, printer, {c.options.value("average")});
    if (!open) return 1;
    MarksInput& input = *open->input;
    const QString before = input.average_text();
    input.scale_marks();
    c.out << input.heading(2) << ": " << before << " -> " << input.average_text() << "\n";
    return input.marks_save() && !c.dialogs.refused ? 0 : 1;
}

int cmd_print(Context& c) {
    const QString what = c.positional.value(0);
    if (what != "markbook" && what != "symbols" && what != "setup" && what != "meritlist" && what != "marks" &&
        what != "marklist") {
        print_error("veldo-tally: print takes markbook, meritlist, symbols, setup, marks or marklist\n\n" +
                    usage_text());
        return 2;
    }
    CliOutput output;
    if (!chosen_output(c, &output)) return 2;
    int series = 0;
    QStringList row;
    if (!chosen_series(c, &series, &row)) return 1;
    CliPrinter printer(c, output);

    if (what == "marks") {
        // The cycle marks screen's list, out of the input total, and the
        // table back as it was.
        auto open = open_series(c, printer);
        if (!open) return 1;
        const bool printed = open->input->marks_print();
        return open->input->restore_backup() && printed && !c.dialogs.refused ? 0 : 1;
    }
    if (what == "marklist") {
        // The mark lists screen: the series chosen, its print total unless
        // --print-total gives one, alphabetical or by rank.
        CliScreens screens;
        ShellContext ctx{c.run, c.store, c.dialogs, screens, Clock{}};
        MarkLists lists(ctx, printer);
        lists.load();
        lists.select_series(series - 1);
        if (c.options.contains("print-total")) lists.set_print_total(c.options.value("print-total"));
        lists.set_rank_order(c.options.contains("rank"));
        return lists.punte_druk_print() && !c.dialogs.refused ? 0 : 1;
    }
    if (what == "meritlist") {
        if (!c.options.contains("column")) {
            print_error("veldo-tally: print meritlist needs --column\n\n" + usage_text());
            return 2;
        }
        auto book = open_mark_book(c.store, row, series);
        if (!book) return 1;
        const int column = chosen_column(c, *book, "column", true);
        if (column < 0) return 1;
        printer.print([&](ReportRun& r) {
            return print_merit_list(r, *book->table, book->lists.name(column), column, series_title(row));
        });
        return c.dialogs.refused ? 1 : 0;
    }
    if (what == "symbols") {
        TextGrid grid;
        if (!build_symbol_distribution(c.store, row, series, grid)) return 1;
        printer.print([&](ReportRun& r) { return print_symbol_distribution(r, grid, row); });
        return c.dialogs.refused ? 1 : 0;
    }
    const auto key = find_setup_key(c.run.data_folder, series_key(row), SetupSearch::Readers);
    if (!key) {
        print_error(no_setup_message(c.run, 1));
        return 1;
    }
    const MarkBookSetup setup =
        read_setup_file(QDir(c.run.data_folder).filePath(setup_file_name(*key))).value_or(MarkBookSetup());
    if (what == "setup") {
        printer.print([&](ReportRun& r) { return print_setup(r, setup); });
        return c.dialogs.refused ? 1 : 0;
    }
    const QString marks_path = find_ignoring_case(c.run.data_folder, marks_table_name(series));
    if (marks_path.isEmpty()) {
        print_error(no_mark_book_message(c.run));
        return 1;
    }
    DbfError error;
    auto marks = DbfTable::open(marks_path, &error);
    if (!marks) {
        print_error(dbf_error_message(error, c.run.language_afrikaans));
        return 1;
    }
    if (marks->field_count() < kMarkBookFieldCount) {
        print_error(old_export_message(c.run));
        return 1;
    }
    printer.print([&](ReportRun& r) { return print_mark_book(r, setup, *marks, series_title(row)); });
    return c.dialogs.refused ? 1 : 0;
}

// The setup screen's actions on series N, each ending with the save of its
// UPDATE button: a command has no later save.
int cmd_setup(Context& c) {
    const QString what = c.positional.value(0);
    static const QStringList words{"show", "set", "insert", "remove", "example"};
    if (!words.contains(what)) {
        print_error("veldo-tally: setup takes show, set, insert, remove or example\n\n" + usage_text());
        return 2;
    }
    if ((what == "set" || what == "remove") && !c.options.contains("row")) {
        print_error("veldo-tally: setup " + what + " needs --row\n\n" + usage_text());
        return 2;
    }
    if (what == "insert" && !c.options.contains("line")) {
        print_error("veldo-tally: setup insert needs --line\n\n" + usage_text());
        return 2;
    }
    int series = 0;
    QStringList row;
    if (!chosen_series(c, &series, &row)) return 1;
    CliScreens screens;
    ShellContext ctx{c.run, c.store, c.dialogs, screens, Clock{}};
    CliPrinter printer(c, {});
    SetupScreen screen(ctx, printer);
    if (!screen.load() || !screen.choose_subject(series - 1)) return 1;
    const int setup_row = int(Val(c.options.value("row")));
    if ((what == "set" || what == "remove") && (setup_row < 1 || setup_row > kSetupRows)) {
        print_error(c.run.tr("Die ry moet 1 tot 40 wees, nie \"" + c.options.value("row") + "\" nie.",
                             "The row must be 1 to 40, not \"" + c.options.value("row") + "\"."));
        return 1;
    }
    bool saved = false;
    if (what == "show") {
        c.out << "setup_" << screen.key() << ".txt\n";
        const QStringList headings = screen.panel_headings();
        c.out << headings.join('\t') << "\n";
        for (int r = 1; r <= kSetupRows; ++r) {
            const SetupRow& s = screen.setup().rows[std::size_t(r - 1)];
            c.out << r << '\t' << s.name.trimmed() << '\t' << s.total.trimmed() << '\t' << s.target.trimmed() << '\t'
                  << s.out_of.trimmed() << '\t' << s.cycle.trimmed() << "\n";
        }
        return 0;
    }
    if (what == "set") {
        screen.select_row(setup_row);
        const QStringList names{"", "name", "total", "target", "out-of", "cycle"};
        for (int box = 1; box <= 5; ++box)
            if (c.options.contains(names[box])) screen.type_into(box, c.options.value(names[box]));
        for (int box = 2; box <= 4; ++box) {
            if (screen.leave_box(box)) continue;
            print_error(c.run.tr(screen.panel_headings()[box] + " moet 'n getal wees, nie \"" + screen.panel()[box] + "\" nie.",
                                 screen.panel_headings()[box] + " must be a number, not \"" + screen.panel()[box] + "\"."));
            return 1;
        }
        if (!screen.pboek_data_ok()) {
            print_error(c.run.tr("Ry " + QString::number(setup_row) + " het geen naam nie: 'n ry word net met remove leeggemaak.",
                                 "Row " + QString::number(setup_row) + " has no name: a row is only cleared by remove."));
            return 1;
        }
        saved = screen.pboek_opstel_stoor();
    } else if (what == "insert") {
        c.dialogs.inputs = QStringList{c.options.value("line")};
        if (Val(c.options.value("line")) <= 0) {
            print_error(c.run.tr("Die lyn moet groter as 0 wees.", "The line must be above 0."));
            return 1;
        }
        saved = screen.pboek_data_ins();
    } else if (what == "remove") {
        screen.select_row(setup_row);
        saved = screen.pboek_data_del();
    } else {
        screen.pboek_opstel_help();
        saved = screen.pboek_opstel_stoor();
    }
    if (saved) c.out << "setup_" << screen.key() << ".txt\n";
    return saved ? 0 : 1;
}

int cmd_copy_setup(Context& c) {
    if (!check_marks_folder(c)) return 1;
    const auto rows = series_rows(c.store);
    const int from = series_number(c, rows, c.options.value("from"));
    if (from == 0) return 1;
    QList<int> to;
    for (const QString& part : c.options.value("to").split(',')) {
        const int n = series_number(c, rows, part.trimmed());
        if (n == 0) return 1;
        to << n - 1;
    }
    const int copied = copy_setups(c.run, rows, from - 1, without_source(to, from - 1));
    if (copied < 0) return 1;
    c.out << copied << c.run.tr(" opstelling(s) gekopieer\n", " setup(s) copied\n");
    return c.dialogs.refused ? 1 : 0;
}

int cmd_move_learner(Context& c) {
    if (!check_marks_folder(c)) return 1;
    MoveLearners move(c.store, c.dialogs);
    if (!move.set_groups(c.options.value("from"), c.options.value("to"))) return 1;
    const QString number = c.options.value("learner").trimmed();
    for (int i = 0; i < move.learners().size(); ++i) {
        if (move.learners()[i].section(' ', 0, 0) != number) continue;
        if (!move.move_learner(i)) return 1;
        c.out << number << c.run.tr(": van groep ", ": from group ") << move.from_group()
              << c.run.tr(" na groep ", " to group ") << move.to_group() << "\n";
        return 0;
    }
    print_error(c.run.tr("Leerder " + number + " is nie in groep " + move.from_group() + " nie.",
                         "Learner " + number + " is not in group " + move.from_group() + "."));
    return 1;
}

const QList<Command>& commands() {
    static const QList<Command> list = {
        {"demo", "demo --data DIR", "write a sample school's data folder to DIR", {"data"}, 0, cmd_demo},
        {"series", "series --data DIR", "list the mark series of a data folder, one line each", {"data"}, 0,
         cmd_series},
        {"dump", "dump FILE.dbf", "print a dBASE table: field names, then one line per record", {}, 1, cmd_dump},
        {"open", "open --data DIR --series N", "open mark book N for input: checks, first filling, rebuild in name order",
         {"data", "series"}, 0, cmd_open},
        {"sync", "sync --data DIR --series N", "bring marks<N>.dbf in step with its class list, as saving a setup does",
         {"data", "series"}, 0, cmd_sync},
        {"recalc", "recalc --data DIR --series N", "open mark book N and recalculate all its totals",
         {"data", "series"}, 0, cmd_recalc},
        {"averages", "averages --data DIR --series N", "open mark book N and print each column's class average",
         {"data", "series"}, 0, cmd_averages},
        {"mark", "mark --data DIR --series N --learner T-NR --column C --value V",
         "type mark V for learner T-NR in column C (a field index, 2 to 41) of book N, as the input screen takes it",
         {"data", "series", "learner", "column", "value"}, 0, cmd_mark},
        {"scale", "scale --data DIR --series N --column C --average X",
         "move every mark of column C of book N by the same points, towards class average X percent",
         {"data", "series", "column", "average"}, 0, cmd_scale},
        {"copy-column", "copy-column --data DIR --series N --from C --to C2",
         "copy the marks of column C of book N into column C2", {"data", "series", "from", "to"}, 0, cmd_copy_column},
        {"paste-column", "paste-column --data DIR --series N --column C --file FILE",
         "paste FILE, one line per learner in the book's order, into column C of book N",
         {"data", "series", "column", "file"}, 0, cmd_paste_column},
        {"export", "export --data DIR --series N --task T [--to DIR2]",
         "send task T of book N to punte<N>.dbf and obe_p<N>.dbf in DIR2 (default DIR)", {"data", "series", "task", "to"},
         0, cmd_export},
        {"symbols", "symbols --data DIR --series N", "print the symbol distribution of mark book N",
         {"data", "series"}, 0, cmd_symbols},
        {"setup", "setup show|set|insert|remove|example --data DIR --series N [--row R] [--name X] [--total T] "
                  "[--target R2] [--out-of O] [--cycle C] [--line L]",
         "show the setup of book N, set row R's values, insert a row before line L, remove row R (its marks go "
         "with it) or fill the example; each change ends with the save of UPDATE",
         {"data", "series", "row", "name", "total", "target", "out-of", "cycle", "line"}, 1, cmd_setup,
         {"row", "name", "total", "target", "out-of", "cycle", "line"}},
        {"copy-setup", "copy-setup --data DIR --from N --to N2[,N3...]",
         "copy the setup of series N to the series listed, each under the shortest form of its key",
         {"data", "from", "to"}, 0, cmd_copy_setup},
        {"move-learner", "move-learner --data DIR --from GROUP --to GROUP --learner T-NR",
         "move a learner's marks row and class-list row from one group to another",
         {"data", "from", "to", "learner"}, 0, cmd_move_learner},
        {"marks", "marks show|set|save --data DIR --series K [--input-total X] [--learner T-NR --value V --key E]",
         "the marks of series K (punte<K>.dbf) out of X: show them, set a learner's mark or effort key and save, or "
         "save them into obe_p<K>.dbf",
         {"data", "series", "input-total", "learner", "value", "key"}, 1, cmd_marks},
        {"obe", "obe show|set|save --data DIR --series K --mode M [--input-total X] [--learner T-NR --value V --key E "
                "--formative F1,F2,F3,F4]",
         "the assessment of series K (obe_p<K>.dbf) in mode M (0 marks, 1 effort keys, 2 formative marks, 3 all): "
         "show it, set a learner's fields and save, or save the marks into punte<K>.dbf",
         {"data", "series", "mode", "input-total", "learner", "value", "key", "formative"}, 1, cmd_obe},
        {"scale-marks", "scale-marks --data DIR --series K --average X [--input-total Y]",
         "move every mark of series K by the same points to class average X percent, and save",
         {"data", "series", "average", "input-total"}, 0, cmd_scale_marks},
        {"print", "print markbook|meritlist|symbols|setup|marks|marklist --data DIR --series N [--column C] "
                  "[--input-total X] [--rank] [--print-total X] (--pdf FILE | --xlsx FILE)",
         "print mark book N, the merit list of its column C, its symbol distribution or its setup; the cycle marks "
         "list of series N out of X; or its mark list in alphabetical or rank order, to a PDF file or a workbook",
         {"data", "series", "column", "input-total", "rank", "print-total", "pdf", "xlsx"}, 1, cmd_print},
    };
    return list;
}

}  // namespace

QString usage_text() {
    QString text = "usage: veldo-tally [COMMAND] [--lang af|en] [options]\n\n"
                   "Without a command the desktop program starts. Commands:\n";
    for (const Command& c : commands()) text += QString("  %1\n      %2\n").arg(c.synopsis, -28).arg(c.description);
    text += "\nEvery command takes --lang af|en (default: the language of the family's setup.txt,\n"
            "else English). KESTRALIN_DRIVE names the folder that stands for the root of the\n"
            "current drive. Exit status: 0 done, 1 refused with a message, 2 bad usage.\n";
    return text;
}

int run_command_line(const QStringList& arguments, const QString& application_folder) {
    if (arguments.contains("--help") || arguments.contains("-h") || arguments.first() == "help") {
        std::fputs(qPrintable(usage_text()), stdout);
        return 0;
    }
    const Command* command = nullptr;
    for (const Command& c : commands())
        if (c.word == arguments.first()) command = &c;
    const auto usage_error = [](const QString& why) {
        print_error("veldo-tally: " + why + "\n");
        std::fputs(qPrintable(usage_text()), stderr);
        return 2;
    };
    if (!command) return usage_error("unknown command '" + arguments.first() + "'");

    Context c;
    c.run.dialogs = &c.dialogs;
    c.run.drive_root = drive_root_from_environment();
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& a = arguments[i];
        if (a.startsWith("--")) {
            const QString name = a.mid(2);
            if (name != "lang" && !command->options.contains(name)) return usage_error("unknown option " + a);
            if (name == "rank") {  // a switch, without a value
                c.options[name] = "yes";
                continue;
            }
            if (i + 1 >= arguments.size()) return usage_error(a + " needs a value");
            c.options[name] = arguments[++i];
        } else {
            c.positional << a;
        }
    }
    if (c.positional.size() != command->positional) return usage_error("wrong arguments for " + command->word);
    for (const QString& required : command->options)
        if (!(required == "to" && command->word == "export") && required != "pdf" && required != "xlsx" &&
            !(required == "column" && command->word == "print") && required != "input-total" &&
            !((command->word == "marks" || command->word == "obe") &&
              (required == "learner" || required == "value" || required == "key" || required == "formative")) &&
            required != "rank" && required != "print-total" && !command->optional.contains(required) &&
            !c.options.contains(required))
            return usage_error(command->word + " needs --" + required);
    if (c.options.contains("lang") && c.options["lang"] != "af" && c.options["lang"] != "en")
        return usage_error("--lang takes af or en");
    // Folders given on the command line are taken from where the user stands,
    // before the start moves the current folder to the program folder.
    if (c.options.contains("data")) c.run.data_folder = QDir::cleanPath(QDir::current().absoluteFilePath(c.options["data"]));

    try {
        run_startup(c.run, c.store, application_folder);
        if (c.options.contains("lang")) c.run.language_afrikaans = c.options["lang"] == "af";
        const int code = command->run(c);
        c.out.flush();
        return code;
    } catch (const ProgramEnd& end) {
        c.out.flush();
        return end.exit_code;
    }
}

}  // namespace veldo
