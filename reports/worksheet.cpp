#include "reports/worksheet.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>

#include <algorithm>
#include <cmath>
#include <memory>
#include <xlsxwriter.h>

#include "reports/output_target.h"
#include "store/run_state.h"
#include "util/legacy_number.h"
#include "util/safe_file.h"
#include "util/text_grid.h"
#include "util/user_dialogs.h"

namespace veldo {

namespace {

constexpr int kMaxSheetRows = 1048576;
constexpr int kMaxSheetCols = 16384;
constexpr int kMaxCellChars = 32767;

int rgb_from_bgr(int bgr) {
    return ((bgr & 0xFF) << 16) | (bgr & 0xFF00) | ((bgr >> 16) & 0xFF);
}

// The longest line of a cell, in characters.
int longest_line(const QString& text) {
    int longest = 0;
    for (const QString& line : text.split('\n')) longest = std::max(longest, int(line.trimmed().size()));
    return longest;
}

}  // namespace

QString column_letters(int n) {
    if (n < 1) return QString();
    if (n <= 26) return QString(QChar(64 + n));
    return QString(QChar(64 + n / 26)) + QChar(64 + n % 26);
}

WorkbookOutput::Cell sheet_cell_from_text(const QString& raw) {
    WorkbookOutput::Cell cell;
    if (raw.trimmed() == QStringLiteral("a\u00a6a")) return cell;
    QString text = raw;
    text.replace(QStringLiteral("~NL~"), QStringLiteral("\n"));
    cell.wrap = text.contains('\n');

    // "'" marks a long number the family wants kept as text, digit for digit.
    if (text.startsWith('\'')) {
        cell.text = text.mid(1);
        cell.thirteen_digits = true;
        return cell;
    }
    cell.thirteen_digits = Val(text) > 9999999999.0;

    static const QRegularExpression plain_number(QStringLiteral("^[+-]?(\\d+(\\.\\d*)?|\\.\\d+)$"));
    static const QRegularExpression leading_zero(QStringLiteral("^[+-]?0\\d"));
    const QString t = text.trimmed();
    if (plain_number.match(t).hasMatch() && !leading_zero.match(t).hasMatch()) {
        bool ok = false;
        const double v = t.toDouble(&ok);  // QString reads numbers in the C locale
        if (ok && std::isfinite(v)) {
            cell.is_number = true;
            cell.number = v;
            cell.text = t;
            return cell;
        }
    }
    cell.text = text;
    return cell;
}

WorkbookOutput::WorkbookOutput(const RunState& run) : run_(run) {}

WorkbookOutput::Sheet& WorkbookOutput::current_sheet() {
    if (sheets_.empty()) {
        Sheet sheet;
        sheet.name = QStringLiteral("Sheet1");
        sheets_.push_back(sheet);
        excel_row_ = 1;
    }
    return sheets_.back();
}

void WorkbookOutput::put_text(int row, int col, const QString& text) {
    const QString t = text.trimmed();
    if (t.isEmpty()) return;
    Cell cell;
    cell.text = t;
    cell.font_size = kHeadFontSize;
    current_sheet().cells[{row, col}] = cell;
}

void WorkbookOutput::begin_sheet_head(const SheetHead& head) {
    Sheet sheet;
    sheet.name = QStringLiteral("Sheet%1").arg(sheets_.size() + 1);
    sheets_.push_back(sheet);

    put_text(1, 1, head.date);
    put_text(1, 5, head.program);
    put_text(2, 1, head.time);
    put_text(2, 3, head.school);
    put_text(2, 5, head.os_product);
    put_text(3, 1, head.page);
    put_text(3, 3, head.title);
    put_text(3, 5, head.build);
    excel_row_ = 6;
}

void WorkbookOutput::write_grid_to_sheet(const TextGrid& grid) {
    Sheet& sheet = current_sheet();
    sheet.font_size = grid.font_size();
    const int first_row = excel_row_;
    const int cols = std::min(grid.cols(), kMaxSheetCols);
    if (int(sheet.hidden_columns.size()) < cols + 1) sheet.hidden_columns.resize(size_t(cols) + 1, false);

    for (int c = 0; c < cols; ++c) {
        // A column of width 0 takes no room on paper; it stays out of sight here too.
        if (grid.col_width(c) == 0) sheet.hidden_columns[size_t(c) + 1] = true;
    }
    for (int r = 0; r < grid.rows(); ++r) {
        const int sheet_row = first_row + r;
        if (sheet_row > kMaxSheetRows) break;
        const bool heading = r < grid.fixed_rows();
        for (int c = 0; c < cols; ++c) {
            QString text = grid.text(r, c);
            bool rotated = false;
            if (heading && text.left(5) == QStringLiteral("~~R~~")) {
                text = text.mid(5);
                rotated = true;
            }
            Cell cell = sheet_cell_from_text(text);
            cell.rotated = rotated;
            cell.font_size = grid.font_size();
            cell.bold = grid.cell_bold(r, c);
            switch (grid.column_alignment(c)) {
                case GridAlign::Left: cell.align = 1; break;
                case GridAlign::Centre: cell.align = 2; break;
                case GridAlign::Right: cell.align = 3; break;
                case GridAlign::General: break;
            }
            if (grid.cell_has_own_colours(r, c)) {
                if (grid.cell_back_colour(r, c) != grid.back_colour())
                    cell.back_rgb = rgb_from_bgr(grid.cell_back_colour(r, c));
                if (grid.cell_fore_colour(r, c) != grid.fore_colour())
                    cell.fore_rgb = rgb_from_bgr(grid.cell_fore_colour(r, c));
            }
            if (cell.text.isEmpty() && cell.back_rgb < 0) continue;
            if (cell.rotated && !cell.text.isEmpty()) {
                // An upright heading raises its row to the longest such text.
                const double points = std::min(409.0, longest_line(cell.text) * cell.font_size * 0.62 + 6.0);
                double& height = sheet.row_heights[sheet_row];
                height = std::max(height, points);
            }
            sheet.cells[{sheet_row, c + 1}] = cell;
        }
    }
    excel_row_ = first_row + grid.rows();
}

void WorkbookOutput::write_lines_to_sheet(const QStringList& lines) {
    Sheet& sheet = current_sheet();
    int row = excel_row_ + 1;
    for (const QString& line : lines) {
        if (row > kMaxSheetRows) break;
        Cell cell = sheet_cell_from_text(line);
        cell.font_size = sheet.font_size;
        cell.spills = true;
        if (!cell.text.isEmpty()) sheet.cells[{row, 1}] = cell;
        ++row;
    }
    excel_row_ = row;
}

std::vector<double> WorkbookOutput::fitted_widths(const Sheet& sheet) {
    std::vector<double> widths;
    for (const auto& [at, cell] : sheet.cells) {
        const int col = at.second;
        if (int(widths.size()) < col) widths.resize(size_t(col), 0.0);
        if (cell.rotated || cell.spills || cell.text.isEmpty()) continue;
        // Excel's unit is a digit of an 11-point font; a text of n characters
        // at size s needs about n * s / 10 of them, and a little air.
        QString shown = cell.text;
        if (cell.is_number && cell.thirteen_digits) shown = QStringLiteral("0000000000000");
        const double w = longest_line(shown) * cell.font_size / 10.0 * 1.1 + 1.0;
        widths[size_t(col) - 1] = std::max(widths[size_t(col) - 1], std::min(255.0, w));
    }
    for (double& w : widths)
        if (w > 0.0) w = std::max(w, 2.0);
    return widths;
}

QString WorkbookOutput::export_path(const QString& export_folder, const QString& export_stem) {
    return export_folder + export_stem + QStringLiteral(".xlsx");
}

QString WorkbookOutput::completion_message(const QString& folder, const QString& stem, bool afrikaans) {
    return afrikaans ? "UITVOER VAN " + stem + " NA " + folder + stem + " VOLTOOI !!"
                     : "EXPORT OF " + stem + " TO " + folder + stem + " COMPLETE !!";
}

namespace {

// One libxlsxwriter format per distinct look; the workbook owns them.
class FormatCache {
public:
    explicit FormatCache(lxw_workbook* book) : book_(book) {}
    lxw_format* get(const WorkbookOutput::Cell& c) {
        const QString key = QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8")
                                .arg(c.font_size)
                                .arg(c.rotated)
                                .arg(c.thirteen_digits)
                                .arg(c.wrap)
                                .arg(c.bold)
                                .arg(c.back_rgb)
                                .arg(c.fore_rgb)
                                .arg(c.align);
        auto it = formats_.find(key);
        if (it != formats_.end()) return it->second;
        lxw_format* f = workbook_add_format(book_);
        format_set_font_name(f, "Arial");
        format_set_font_size(f, c.font_size);
        if (c.rotated) format_set_rotation(f, 90);
        if (c.thirteen_digits) format_set_num_format(f, "0000000000000");
        if (c.wrap) format_set_text_wrap(f);
        if (c.bold) format_set_bold(f);
        if (c.back_rgb >= 0) {
            format_set_pattern(f, LXW_PATTERN_SOLID);
            format_set_bg_color(f, lxw_color_t(c.back_rgb));
        }
        if (c.fore_rgb >= 0) format_set_font_color(f, lxw_color_t(c.fore_rgb));
        if (c.align == 1) format_set_align(f, LXW_ALIGN_LEFT);
        if (c.align == 2) format_set_align(f, LXW_ALIGN_CENTER);
        if (c.align == 3) format_set_align(f, LXW_ALIGN_RIGHT);
        formats_.emplace(key, f);
        return f;
    }

private:
    lxw_workbook* book_;
    std::map<QString, lxw_format*> formats_;
};

// Writes the sheets to `path` through libxlsxwriter.
bool write_xlsx(const std::vector<WorkbookOutput::Sheet>& sheets, const QString& path, QString* detail) {
    const QByteArray file_name = QFile::encodeName(path);
    lxw_workbook* book = workbook_new(file_name.constData());
    if (!book) {
        *detail = QStringLiteral("workbook_new");
        return false;
    }
    FormatCache formats(book);
    std::vector<WorkbookOutput::Sheet> all = sheets;
    if (all.empty()) all.push_back({QStringLiteral("Sheet1"), {}, {}, {}, WorkbookOutput::kHeadFontSize});
    for (const auto& sheet : all) {
        const QByteArray name = sheet.name.toUtf8();
        lxw_worksheet* ws = workbook_add_worksheet(book, name.constData());
        if (!ws) continue;
        // Empty cells of the sheet show Arial too, as the family set the whole sheet.
        WorkbookOutput::Cell plain;
        plain.font_size = sheet.font_size;
        lxw_format* sheet_format = formats.get(plain);
        const std::vector<double> widths = WorkbookOutput::fitted_widths(sheet);
        const size_t used = std::max(widths.size(), sheet.hidden_columns.size() ? sheet.hidden_columns.size() - 1 : 0);
        for (size_t i = 0; i < used; ++i) {
            const double w = i < widths.size() && widths[i] > 0.0 ? widths[i] : LXW_DEF_COL_WIDTH;
            const bool hidden = i + 1 < sheet.hidden_columns.size() && sheet.hidden_columns[i + 1];
            if (hidden) {
                lxw_row_col_options options{};
                options.hidden = 1;
                worksheet_set_column_opt(ws, lxw_col_t(i), lxw_col_t(i), w, sheet_format, &options);
            } else {
                worksheet_set_column(ws, lxw_col_t(i), lxw_col_t(i), w, sheet_format);
            }
        }
        for (const auto& [row, height] : sheet.row_heights)
            worksheet_set_row(ws, lxw_row_t(row - 1), height, nullptr);
        for (const auto& [at, cell] : sheet.cells) {
            const lxw_row_t r = lxw_row_t(at.first - 1);
            const lxw_col_t c = lxw_col_t(at.second - 1);
            lxw_format* f = formats.get(cell);
            if (cell.is_number) {
                worksheet_write_number(ws, r, c, cell.number, f);
            } else if (cell.text.isEmpty()) {
                worksheet_write_blank(ws, r, c, f);
            } else {
                const QByteArray utf8 = cell.text.left(kMaxCellChars).toUtf8();
                worksheet_write_string(ws, r, c, utf8.constData(), f);
            }
        }
    }
    const lxw_error err = workbook_close(book);
    if (err != LXW_NO_ERROR) {
        *detail = QString::fromUtf8(lxw_strerror(err));
        return false;
    }
    return true;
}

}  // namespace

bool WorkbookOutput::save_to(const QString& path, QString* error) {
    const QFileInfo target(path);
    const QString folder = target.path();
    const QString stem = target.completeBaseName();
    if (!QFileInfo(folder).isDir()) {
        *error = run_.tr("GIDS " + folder + " BESTAAN NIE - " + stem + " IS NIE GESTOOR NIE !!",
                         "FOLDER " + folder + " DOES NOT EXIST - " + stem + " WAS NOT SAVED !!");
        return false;
    }
    // The owner files of LibreOffice and Excel: the workbook is open there.
    const QDir dir(folder);
    if (dir.exists(".~lock." + target.fileName() + "#") || dir.exists("~$" + target.fileName())) {
        *error = run_.tr(path + " IS OOP IN 'N ANDER PROGRAM - MAAK DIT TOE EN PROBEER WEER !!",
                         path + " IS OPEN IN ANOTHER PROGRAM - CLOSE IT AND TRY AGAIN !!");
        return false;
    }
    // A file with no write permission at all is read-only on purpose, even
    // for a user whom the system would let write it.
    const auto write_bits = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    if (target.exists() && (!target.isWritable() || !(target.permissions() & write_bits))) {
        *error = run_.tr(path + " IS SLEGS-LEES - " + stem + " IS NIE GESTOOR NIE !!",
                         path + " IS READ-ONLY - " + stem + " WAS NOT SAVED !!");
        return false;
    }
    const QString cannot_write = run_.tr("KON NIE " + path + " SKRYF NIE - " + stem + " IS NIE GESTOOR NIE !!",
                                         "COULD NOT WRITE " + path + " - " + stem + " WAS NOT SAVED !!");
    // libxlsxwriter writes a file of its own; it goes to a scratch file first
    // and replaces the old workbook in one step, so a failure leaves that as it was.
    QTemporaryFile scratch(QDir::temp().filePath(QStringLiteral("veldo-sheet-XXXXXX.xlsx")));
    if (!scratch.open()) {
        *error = cannot_write;
        return false;
    }
    scratch.close();
    QString detail;
    if (!write_xlsx(sheets_, scratch.fileName(), &detail)) {
        *error = cannot_write;
        return false;
    }
    QFile written(scratch.fileName());
    if (!written.open(QIODevice::ReadOnly)) {
        *error = cannot_write;
        return false;
    }
    const QByteArray bytes = written.readAll();
    written.close();
    if (!write_file_atomic(path, bytes, &detail)) {
        *error = cannot_write;
        return false;
    }
    return true;
}

bool WorkbookOutput::save(const QString& export_folder, const QString& export_stem) {
    QString error;
    if (!save_to(export_path(export_folder, export_stem), &error)) {
        run_.dialogs->message(error, MsgIcon::Exclamation);
        return false;
    }
    run_.dialogs->message(completion_message(export_folder, export_stem, run_.language_afrikaans),
                          MsgIcon::Information);
    return true;
}

void install_worksheet_hooks(PrintJob& job, RunState& run) {
    auto book = std::make_shared<std::unique_ptr<WorkbookOutput>>();
    auto open_book = [book, &run]() -> WorkbookOutput& {
        if (!*book) *book = std::make_unique<WorkbookOutput>(run);
        return **book;
    };
    job.worksheet.sheet_head = [open_book](const SheetHead& head) { open_book().begin_sheet_head(head); };
    job.worksheet.write_grid = [open_book](TextGrid& grid) { open_book().write_grid_to_sheet(grid); };
    job.worksheet.write_lines = [open_book](const QStringList& lines) { open_book().write_lines_to_sheet(lines); };
    // Asks for the file again, from the job's names; false on Cancel.
    auto ask_file = [&job, &run]() {
        OutputChoice choice;
        choice.export_folder = job.export_folder;
        choice.export_stem = job.export_stem;
        OutputTarget target(run, choice);
        if (!target.ask_excel_file()) return false;
        job.export_folder = choice.export_folder;
        job.export_stem = choice.export_stem;
        return true;
    };
    // A workbook that can't be saved where it was meant to go is offered
    // another place until it is saved or the user gives up; an old file in
    // the way is never touched.
    auto save_or_ask = [&job, ask_file](WorkbookOutput& output) {
        while (!output.save(job.export_folder, job.export_stem)) {
            if (!ask_file()) return;
        }
    };
    job.worksheet.finish = [book, save_or_ask]() {
        if (!*book) return;
        save_or_ask(**book);
        book->reset();
    };
    job.worksheet.grid_to_new_file = [&run, ask_file, save_or_ask](TextGrid& grid) {
        if (!ask_file()) return;
        WorkbookOutput own(run);
        own.write_grid_to_sheet(grid);
        save_or_ask(own);
    };
}

}  // namespace veldo
