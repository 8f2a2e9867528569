#include "exchange/symbol_distribution.h"

#include <QDir>
#include <algorithm>
#include <array>
#include <vector>

#include "markbook/marks_table.h"
#include "markbook/setup_file.h"
#include "store/dbf_table.h"
#include "store/record_store.h"
#include "store/series.h"
#include "store/table_layouts.h"
#include "util/cp1252.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/text_helpers.h"

namespace veldo {


bool build_symbol_distribution(RecordStore& store, const QStringList& row, int series, TextGrid& grid) {
    RunState& run = store.run();
    const QString folder = run.data_folder;
    auto say = [&](const QString& text, MsgIcon icon = MsgIcon::Exclamation) {
        if (run.dialogs) run.dialogs->message(text, icon);
        return false;
    };
    const QString marks_path = find_group_table(folder, "marks", series);
    if (marks_path.isEmpty()) return say(no_mark_book_message(run));
    DbfError error;
    auto marks = DbfTable::open(marks_path, &error);
    if (!marks) return say(dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
    if (marks->field_count() < kMarkBookFieldCount) return say(old_export_message(run));

    // This screen looks for the key as built, and only for that.
    const QString key = series_key(row);
    const QString setup_path = QDir(folder).filePath(setup_file_name(key));
    if (!folder_holds_exactly(folder, setup_file_name(key))) return say(no_setup_message(run, 1));
    const MarkBookSetup setup = read_setup_file(setup_path).value_or(MarkBookSetup());
    int used_tasks = 0;
    for (const SetupRow& r : setup.rows)
        if (r.is_used()) ++used_tasks;

    // Headings and the totals row; the columns skip unnamed rows.
    grid.clear();
    grid.set_fixed_rows(1);
    grid.set_fixed_cols(1);
    grid.set_rows(2);
    grid.set_cols(marks->field_count());
    QString format = run.tr("^SIMBOOL", "SYMBOL");
    int column = 0;
    for (int r = 0; r < kSetupRows; ++r) {
        if (!setup.rows[r].is_used()) continue;
        ++column;
        format += "|<" + run.tr("P", "M") + QString::number(column);
    }
    grid.set_format_string(format);
    // The columns past the named tasks take no room on the page.
    for (int c = 0; c < grid.cols(); ++c) grid.set_col_width(c, c <= column ? -1 : 0);
    column = 0;
    for (int r = 0; r < kSetupRows; ++r) {
        if (!setup.rows[r].is_used()) continue;
        grid.set_text(1, ++column, setup.rows[r].total.trimmed());
    }

    // Symbols in their order; a blank symbol gives no row.
    struct Range {
        double lower, upper;
    };
    QList<Range> ranges;
    if (auto symbols = DbfTable::open(path_ignoring_case(folder, "pi2_dta.dbf"))) {
        for (symbols->MoveFirst(); !symbols->Eof(); symbols->MoveNext()) {
            const QString symbol = toets_null_text(symbols->value("PI2_SIMBL")).trimmed();
            if (symbol.isEmpty()) continue;
            const QString lower = toets_null_text(symbols->value("PI2_GRNS_O")).trimmed();
            const QString upper = toets_null_text(symbols->value("PI2_GRNS_B")).trimmed();
            grid.add_item(symbol + " (" + lower + "-" + upper + ")");
            ranges.append({Val(lower), Val(upper)});
        }
    }

    // The walk goes by position: column t is the t-th field after the name,
    // whatever rows the setup left blank. Each symbol's count is kept as a
    // number and written once at the end, as so many additions of one to
    // what its cell held.
    std::array<double, 41> symbol_sum{};
    std::array<int, 41> symbol_count{};
    std::array<double, 41> task_total{};
    const int last_field = std::min(used_tasks + 1, marks->field_count() - 1);
    for (int i = 2; i <= last_field; ++i) task_total[std::size_t(i - 1)] = Val(setup.rows[i - 2].total);
    std::vector<std::array<int, 41>> counts(std::size_t(ranges.size()), std::array<int, 41>{});
    const int first_symbol_row = 2;
    for (marks->MoveFirst(); !marks->Eof(); marks->MoveNext()) {
        const QByteArrayView record = marks->record_bytes();
        for (int i = 2; i <= last_field; ++i) {
            const int t = i - 1;
            double mark = 0;
            const DbfField& field = marks->field(i);
            if (field.type == DbfType::Character && !record.isEmpty()) {
                const char* p = record.data() + marks->field_offset(i);
                const int length = stored_text_length(p, field.width, true);
                if (length < 0) continue;
                const QLatin1StringView text = cp1252::trimmed(QLatin1StringView(p, length));
                if (text.isEmpty() || text == QLatin1StringView("A") || text == QLatin1StringView("a")) continue;
                mark = Val(text);
            } else {
                const QVariant value = marks->value(i);
                if (!value.isValid()) continue;
                const QString text = toets_null_text(value).trimmed();
                if (text.isEmpty() || text.toUpper() == "A") continue;
                mark = Val(text);
            }
            const double total = task_total[std::size_t(t)];
            const double percent = total <= 0 ? mark : mark / total * 100;
            symbol_sum[t] += percent;
            symbol_count[t] += 1;
            for (int s = 0; s < ranges.size(); ++s) {
                if (ranges[s].lower <= percent && percent <= ranges[s].upper) {
                    ++counts[std::size_t(s)][std::size_t(t)];
                    break;
                }
            }
        }
    }
    for (int s = 0; s < ranges.size(); ++s)
        for (int t = 1; t <= 40; ++t)
            if (const int n = counts[std::size_t(s)][std::size_t(t)]; n > 0) {
                const int r = first_symbol_row + s;
                grid.set_text(r, t, QString::number(int(Val(grid.text(r, t))) + n));
            }

    grid.add_item(run.tr("GEMIDDELD", "AVERAGE"));
    const int last = grid.rows() - 1;
    for (int t = 1; t <= used_tasks && t < grid.cols(); ++t)
        if (symbol_count[t] > 0) grid.set_text(last, t, format_one_decimal(symbol_sum[t] / symbol_count[t]));
    return true;
}

bool print_symbol_distribution(ReportRun& r, TextGrid& grid, const QStringList& series_row) {
    const QString title = r.run.tr("SIMBOLE ", "SYMBOLS ") + series_title(series_row);
    if (!ask_output_target(r.surface, r.job, r.run, QString(), r.ask)) return false;
    r.job.new_print_job = true;
    GridReportOptions options;
    options.rows_per_block = 9999;
    print_grid_pages(r, grid, title, kLandscape, options);
    end_of_print(r.surface, r.job, r.run);
    return true;
}

}  // namespace veldo
