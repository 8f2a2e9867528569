#include "markbook/mark_book_print.h"

#include "markbook/column_actions.h"
#include "reports/grid_report.h"
#include "store/dbf_table.h"
#include "store/run_state.h"
#include "util/text_helpers.h"

namespace veldo {

void fill_print_grid(TextGrid& grid, const MarkBookSetup& setup, DbfTable& marks, bool afrikaans,
                     bool sort_by_column) {
    int used_tasks = 0;
    for (const SetupRow& r : setup.rows)
        if (r.is_used()) ++used_tasks;
    const QString letter = afrikaans ? "P" : "M";

    grid.clear();
    grid.set_fixed_cols(0);
    grid.set_cols(std::max(marks.field_count() + 1, used_tasks + 2));
    grid.set_rows(2);
    grid.set_fixed_rows(1);

    QString format = afrikaans ? "<NR|^  T.NR|<LEERDER" : "<NO|^  A.NO|<LEARNER";
    int last_heading = 2;
    for (int c = 3; c < grid.cols(); ++c) {
        const int r = c - 2;
        const bool named = r <= kSetupRows && setup.rows[r - 1].is_used();
        format += named ? "|<" + letter + QString::number(r) : QStringLiteral("|");
        if (named) {
            grid.set_text(1, c, setup.rows[r - 1].total.trimmed());
            last_heading = c;
        }
    }
    grid.set_format_string(format);
    for (int c = 0; c < grid.cols(); ++c) {
        const int r = c - 2;
        int width = kPrintMarkWidth;
        if (c == 0) width = kPrintNumberWidth;
        if (c == 1) width = kPrintLearnerNumberWidth;
        if (c == 2) width = kPrintLearnerWidth;
        if (c > last_heading || (c >= 3 && (r > kSetupRows || !setup.rows[r - 1].is_used()))) width = 0;
        grid.set_col_width(c, width);
    }

    int number = 0;
    for (marks.MoveFirst(); !marks.Eof(); marks.MoveNext()) {
        const int row = grid.rows();
        grid.set_rows(row + 1);
        grid.set_text(row, 0, QString::number(++number));
        for (int f = 0; f < marks.field_count() && f + 1 < grid.cols(); ++f)
            grid.set_text(row, f + 1, toets_null_text(marks.value(f)));
    }
    marks.MoveFirst();
    if (sort_by_column) {
        grid.set_col(2);
        grid.sort(2, GridSort::NumericDescending);
    }
}

QStringList mark_book_legend(const TextGrid& grid, const MarkBookSetup& setup, bool afrikaans, int line_width,
                             int first_column, int last_column) {
    const QString letter = afrikaans ? "P" : "M";
    const int last = last_column < 0 ? grid.cols() - 1 : last_column;
    const int quarter = std::max(1, line_width / 4);
    QStringList lines;
    QString line;
    int items = 0;
    for (int c = first_column; c <= last; ++c) {
        const int r = c - 2;
        if (r < 1 || r > kSetupRows || !setup.rows[r - 1].is_used()) continue;
        const QString item = letter + QString::number(r) + " " + setup.rows[r - 1].name;
        if (line_width <= 0) {
            lines << item.trimmed();
            continue;
        }
        line += left_justified(item, quarter);
        if (++items % 4 == 0) {
            lines << line;
            line.clear();
        }
    }
    if (!line.isEmpty()) lines << line;
    return lines;
}

void fill_setup_grid(TextGrid& grid, const MarkBookSetup& setup, bool afrikaans) {
    grid.clear();
    grid.set_cols(6);
    grid.set_rows(kSetupRows + 1);
    grid.set_fixed_rows(1);
    grid.set_fixed_cols(1);
    grid.set_format_string(afrikaans ? "NR.|< TAAK/PROJEK             |^ TOTAAL |^ VERWERK NA |^ UIT TOT |< SIKLUSNAAM "
                                     : "NO.|< TASK/PROJECT            |^ TOTAL  |^   RESULT   |^ OUT  OF |< CYCLE NAME ");
    for (int r = 1; r <= kSetupRows; ++r) {
        const SetupRow& row = setup.rows[r - 1];
        grid.set_text(r, 0, QString::number(r));
        grid.set_text(r, 1, row.name);
        grid.set_text(r, 2, row.total);
        grid.set_text(r, 3, row.target);
        grid.set_text(r, 4, row.out_of);
        grid.set_text(r, 5, row.cycle);
        grid.set_cell_back_colour(r, 1, setup.is_total_row(r) ? 0xC0FFFF : 0xFFFFFF);
    }
    grid.set_col_width(1, 4500);
}

QString setup_print_title(bool afrikaans) { return afrikaans ? "PUNTEBOEK OPSTELLING" : "MARK BOOK SETUP"; }

namespace {

void set_widths(TextGrid& grid, int from, int to, int width) {
    for (int c = from; c <= to && c < grid.cols(); ++c) grid.set_col_width(c, width);
}

}  // namespace

bool print_mark_book(ReportRun& r, const MarkBookSetup& setup, DbfTable& marks, const QString& title) {
    const bool af = r.run.language_afrikaans;
    r.job.export_stem = (af ? "PUNTEBOEK " : "MARK BOOK ") + title;
    TextGrid grid;
    fill_print_grid(grid, setup, marks, af);
    QList<int> widths;
    for (int c = 0; c < grid.cols(); ++c) widths << grid.col_width(c);
    int used_tasks = 0;
    for (const SetupRow& row : setup.rows)
        if (row.is_used()) ++used_tasks;

    if (!ask_output_target(r.surface, r.job, r.run, QString(), r.ask)) return false;
    r.job.new_print_job = true;
    // The first block holds at most 20 mark columns.
    set_widths(grid, 23, grid.cols() - 1, 0);
    GridReportOptions options;
    options.left_offset = grid_width_in_columns(r.surface, grid, 120);
    print_grid_pages(r, grid, title, kLandscape, options);

    auto legend = [&](int first, int last) {
        // A workbook's columns are letters and numbers only without it: the
        // legend goes below its grid too, one item to a row.
        if (r.job.output_to_excel) {
            if (r.job.worksheet.write_lines) r.job.worksheet.write_lines(mark_book_legend(grid, setup, af, 0, first, last));
            return;
        }
        r.surface.set_CurrentY(r.surface.CurrentY() + 2);
        r.surface.set_CurrentX(0);
        for (const QString& line : mark_book_legend(grid, setup, af, r.job.line_width, first, last))
            r.surface.print_text(line);
    };
    legend(3, std::min(22, grid.cols() - 1));

    if (used_tasks > 20) {
        r.surface.NewPage();
        r.job.new_print_job = true;
        // The second block: the columns past 20 come out at 300 twips (those
        // without a heading keep no width), the learner and the first 20 go.
        // The report widens a column to its widest text, so "100.0" shows whole.
        for (int c = 23; c < grid.cols(); ++c) grid.set_col_width(c, widths.value(c) == 0 ? 0 : 300);
        set_widths(grid, 2, 22, 0);
        print_grid_pages(r, grid, title, kLandscape, options);
        legend(23, grid.cols() - 1);
    }
    for (int c = 2; c < grid.cols(); ++c) grid.set_col_width(c, widths.value(c));
    r.surface.set_CurrentY(r.surface.CurrentY() + 2);
    end_of_print(r.surface, r.job, r.run);
    return true;
}

bool print_merit_list(ReportRun& r, DbfTable& marks, const QString& column_name, int column, const QString& title) {
    const bool af = r.run.language_afrikaans;
    const TextGrid merit = merit_list(marks, column);
    TextGrid grid(1, 4);
    grid.set_fixed_cols(0);
    grid.set_format_string((af ? "<NR|^  T.NR|<LEERDER|>" : "<NO|^  A.NO|<LEARNER|>") + column_name.trimmed());
    grid.set_rows(merit.rows() + 1);
    grid.set_fixed_rows(1);
    for (int row = 0; row < merit.rows(); ++row) {
        grid.set_text(row + 1, 0, QString::number(row + 1));
        for (int c = 0; c < 3; ++c) grid.set_text(row + 1, c + 1, merit.text(row, c));
    }
    grid.set_col_width(0, kPrintNumberWidth);
    grid.set_col_width(1, kPrintLearnerNumberWidth);
    grid.set_col_width(2, kPrintLearnerWidth);
    grid.set_col_width(3, 2 * kPrintMarkWidth);

    const QString heading = (af ? "MERIETELYS " : "MERIT LIST ") + title + " - " + column_name.trimmed();
    r.job.export_stem = heading;
    if (!ask_output_target(r.surface, r.job, r.run, QString(), r.ask)) return false;
    r.job.new_print_job = true;
    print_grid_pages(r, grid, heading, kPortrait, GridReportOptions{});
    end_of_print(r.surface, r.job, r.run);
    return true;
}

bool print_setup(ReportRun& r, const MarkBookSetup& setup) {
    TextGrid grid;
    fill_setup_grid(grid, setup, r.run.language_afrikaans);
    const QString title = setup_print_title(r.run.language_afrikaans);
    if (!ask_output_target(r.surface, r.job, r.run, title, r.ask)) return false;
    r.job.new_print_job = true;
    print_grid_pages(r, grid, title, kPortrait, GridReportOptions{}, true);
    end_of_print(r.surface, r.job, r.run);
    return true;
}

}  // namespace veldo
