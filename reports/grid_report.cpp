#include "reports/grid_report.h"

#include <QChar>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <vector>

namespace veldo {

namespace {

const QString kRotated = QStringLiteral("~~R~~");
const QString kNewLine = QStringLiteral("~NL~");
const QString kEmptyCell = QStringLiteral("a\u00A6a");
const QString kPageBreak = QStringLiteral("<PAGE>");

// Room above and below the text of a row, in lines.
constexpr float kRowGap = 0.25f;
// The table stays this far above the sheet's foot, clear of the banner.
constexpr float kFootRoom = 1.75f;
// Where page_head starts the body.
constexpr float kBodyStart = 6.0f;

struct Column {
    int index = 0;
    float left = 0;
    float width = 0;
    GridAlign align = GridAlign::Left;
    QString heading;
    bool rotated = false;
};

// A "W" of the grid, in twips: 0.6 em at the grid's size, 20 twips a point.
double grid_letter_twips(const TextGrid& grid) {
    const double size = grid.font_size() > 0 ? grid.font_size() : 8.25;
    return 0.6 * size * 20.0;
}

float letter(const PrintSurface& s) {
    const float w = s.TextWidth(QStringLiteral("W"));
    return w > 0 ? w : 1.0f;
}

// Blanks off both ends, as the family's Trim does: tabs and other control
// characters stay, so that autofit can pass such a column over.
QString trim_blanks(const QString& text) {
    qsizetype from = 0, to = text.size();
    while (from < to && text.at(from) == QLatin1Char(' ')) ++from;
    while (to > from && text.at(to - 1) == QLatin1Char(' ')) --to;
    return text.mid(from, to - from);
}

QString cell_text(const TextGrid& grid, int row, int col) {
    const QString t = trim_blanks(grid.text(row, col));
    return t == kEmptyCell ? QString() : t;
}

QStringList split_breaks(const QString& text) {
    QString t = text;
    t.replace(kNewLine, QStringLiteral("\n"));
    t.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    t.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return t.split(QLatin1Char('\n'));
}

// The lines a cell prints on: wrapped where it asks for breaks or where a
// text of several words is wider than its column; a single word wider than
// its column (only a turned heading's column can be narrower) is cut.
QStringList cell_lines(const PrintSurface& s, const QString& text, float width) {
    if (has_line_break(text) || (text.trimmed().contains(QLatin1Char(' ')) && s.TextWidth(text) > width))
        return wrap_cell_text(s, text, width).split(QLatin1Char('\n'));
    return {fit_cell_text(s, text, width)};
}

// What a column needs so that nothing in it is cut: its widest line, and
// its widest word (where a text of several words may wrap), in columns.
ColumnNeeds column_needs(const PrintSurface& s, const TextGrid& grid, int col) {
    ColumnNeeds needs;
    QSet<QString> seen;  // a column's texts repeat: each is measured once
    for (int r = 0; r < grid.rows(); ++r) {
        const QString t = cell_text(grid, r, col);
        if (t.isEmpty() || (r < grid.fixed_rows() && t.startsWith(kRotated))) continue;
        if (seen.contains(t)) continue;
        seen.insert(t);
        for (const QString& part : split_breaks(t)) {
            const QString line = part.trimmed();
            const float width = s.TextWidth(line);
            needs.line = std::max(needs.line, width);
            if (!line.contains(QLatin1Char(' '))) {
                needs.word = std::max(needs.word, width);
                continue;
            }
            for (const QString& word : line.split(QLatin1Char(' '), Qt::SkipEmptyParts))
                needs.word = std::max(needs.word, s.TextWidth(word));
        }
    }
    return needs;
}

// The widest line of the column's texts, in columns; -1 where the column's
// longest text is empty or starts with a control character.
float content_width(const PrintSurface& s, const TextGrid& grid, int col) {
    QString longest;
    float widest = 0;
    for (int r = 0; r < grid.rows(); ++r) {
        QString t = cell_text(grid, r, col);
        if (r < grid.fixed_rows() && t.startsWith(kRotated)) continue;
        if (t.size() > longest.size()) longest = t;
        for (const QString& part : split_breaks(t)) widest = std::max(widest, s.TextWidth(part.trimmed()));
    }
    if (longest.isEmpty() || longest.at(0).unicode() < 32) return -1;
    return widest;
}

float row_lines(const std::vector<QStringList>& cells) {
    qsizetype n = 1;
    for (const auto& c : cells) n = std::max(n, c.size());
    return float(n);
}

class GridPrinter {
public:
    GridPrinter(PrintSurface& s, PrintJob& job, TextGrid& grid, const GridReportOptions& o, bool setup_twin)
        : s_(s), job_(job), grid_(grid), o_(o), twin_(setup_twin) {}

    GridReportResult run();

private:
    void lay_out_columns(int count);
    void widen_to_texts();
    std::vector<QStringList> row_cells(int row) const;
    float row_height(int row) const { return row_lines(row_cells(row)) + kRowGap; }
    bool is_page_break(int row) const;
    void print_cells(int row, const std::vector<QStringList>& cells, float y, float height);
    void print_heading(float y);
    void close_table(float bottom);

    PrintSurface& s_;
    PrintJob& job_;
    TextGrid& grid_;
    const GridReportOptions& o_;
    bool twin_;
    std::vector<Column> columns_;
    float pad_ = 0.5f;
    float table_left_ = 0, table_right_ = 0, table_top_ = 0, heading_height_ = 0;
};

void GridPrinter::lay_out_columns(int count) {
    const float w = letter(s_);
    pad_ = w / 2;
    // The left margin is in twips of the grid: 60 in landscape, 15 in portrait.
    const int margin_units = o_.no_margin ? 0 : (s_.orientation() == PageOrientation::Landscape ? 60 : 15);
    table_left_ = grid_width_in_columns(s_, grid_, margin_units) + o_.left_offset;
    float x = table_left_;
    for (int c = 0; c < count; ++c) {
        const int twips = grid_.col_width(c);
        if (twips == 0) continue;  // a hidden column takes no space
        Column col;
        col.index = c;
        col.left = x;
        if (twips < 0) {
            const float content = content_width(s_, grid_, c);
            col.width = std::max(content, 0.0f) + 2 * pad_;
        } else {
            col.width = grid_width_in_columns(s_, grid_, twips);
        }
        col.align = grid_.column_alignment(c);
        if (grid_.fixed_rows() > 0) {
            col.heading = cell_text(grid_, 0, c);
            if (col.heading.startsWith(kRotated)) {
                col.rotated = true;
                col.heading = col.heading.mid(kRotated.size()).trimmed();
            }
        }
        x += col.width;
        columns_.push_back(col);
    }
    table_right_ = x;
    widen_to_texts();
}

// A column is never narrower than its widest text in the printing font:
// a figure is never cut. Where the widened table would run off the page,
// columns of words give the room back, down to their widest word, and
// their texts wrap.
void GridPrinter::widen_to_texts() {
    const float designed_right = table_right_;
    std::vector<ColumnNeeds> needs;
    for (Column& c : columns_) {
        const auto known = o_.measured ? o_.measured->find(c.index) : MeasuredColumns::iterator();
        if (o_.measured && known != o_.measured->end()) {
            needs.push_back(known->second);
        } else {
            needs.push_back(column_needs(s_, grid_, c.index));
            if (o_.measured) (*o_.measured)[c.index] = needs.back();
        }
        c.width = std::max(c.width, needs.back().line + 2 * pad_);
    }
    float excess = table_left_ - std::max(designed_right, s_.ScaleWidth());
    for (const Column& c : columns_) excess += c.width;
    for (std::size_t i = columns_.size(); i-- > 0 && excess > 0;) {
        Column& c = columns_[i];
        const float least = needs[i].word + 2 * pad_;
        const float give = std::min(excess, c.width - least);
        if (give <= 0) continue;
        c.width -= give;
        excess -= give;
    }
    float x = table_left_;
    for (Column& c : columns_) {
        c.left = x;
        x += c.width;
    }
    table_right_ = x;
}

std::vector<QStringList> GridPrinter::row_cells(int row) const {
    std::vector<QStringList> out;
    out.reserve(columns_.size());
    for (const Column& c : columns_)
        out.push_back(cell_lines(s_, cell_text(grid_, row, c.index), std::max(0.0f, c.width - 2 * pad_)));
    return out;
}

bool GridPrinter::is_page_break(int row) const {
    for (int c = 0; c < grid_.cols(); ++c)
        if (trim_blanks(grid_.text(row, c)) == kPageBreak) return true;
    return false;
}

void GridPrinter::print_cells(int row, const std::vector<QStringList>& cells, float y, float height) {
    const int plain_colour = s_.fore_colour();
    const bool plain_bold = s_.bold();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const Column& c = columns_[i];
        const bool coloured = job_.print_colour != 0 && grid_.cell_has_own_colours(row, c.index);
        if (coloured) {
            s_.box(c.left, y, c.left + c.width, y + height, grid_.cell_back_colour(row, c.index));
            s_.set_fore_colour(grid_.cell_fore_colour(row, c.index));
        }
        s_.set_bold(grid_.cell_bold(row, c.index));
        float line_y = y + kRowGap / 2;
        for (const QString& text : cells[i]) {
            if (!text.isEmpty()) {
                const float tw = s_.TextWidth(text);
                float x = c.left + pad_;
                if (c.align == GridAlign::Right) x = c.left + c.width - pad_ - tw;
                if (c.align == GridAlign::Centre) x = c.left + (c.width - tw) / 2;
                s_.set_CurrentX(x);
                s_.set_CurrentY(line_y);
                s_.print_text(text, true);
            }
            line_y += 1;
        }
        if (coloured) s_.set_fore_colour(plain_colour);
    }
    s_.set_bold(plain_bold);
}

void GridPrinter::print_heading(float y) {
    if (grid_.fixed_rows() == 0) return;
    std::vector<QStringList> cells;
    for (const Column& c : columns_)
        cells.push_back(c.rotated ? QStringList() : cell_lines(s_, c.heading, std::max(0.0f, c.width - 2 * pad_)));
    // The cells first: a coloured cell's box would cover a turned heading.
    print_cells(0, cells, y, heading_height_);
    const int plain_colour = s_.fore_colour();
    for (const Column& c : columns_) {
        if (!c.rotated || c.heading.isEmpty()) continue;
        if (job_.print_colour != 0 && grid_.cell_has_own_colours(0, c.index))
            s_.set_fore_colour(grid_.cell_fore_colour(0, c.index));
        // Reading upwards from the foot of the heading row, centred across.
        const float across = s_.lines_to_columns(1);
        s_.print_rotated(c.heading, c.left + (c.width - across) / 2, y + heading_height_ - kRowGap / 2);
        s_.set_fore_colour(plain_colour);
    }
    s_.line(table_left_, y + heading_height_, table_right_, y + heading_height_);
}

void GridPrinter::close_table(float bottom) {
    for (const Column& c : columns_) s_.line(c.left, table_top_, c.left, bottom);
    s_.line(table_right_, table_top_, table_right_, bottom);
    if (o_.group_every > 0 && o_.group_column >= 0) {
        // A column group is marked by a second rule beside the first.
        for (const Column& c : columns_)
            if (c.index > o_.group_column && (c.index - o_.group_column) % o_.group_every == 0)
                s_.line(c.left + 0.15f, table_top_, c.left + 0.15f, bottom);
    }
    s_.box(table_left_, table_top_, table_right_, bottom);
    s_.set_CurrentX(0);
    s_.set_CurrentY(bottom);
}

GridReportResult GridPrinter::run() {
    if (job_.output_to_excel) {
        if (job_.worksheet.write_grid) job_.worksheet.write_grid(grid_);
        return GridReportResult::Finished;
    }
    if (o_.to_excel_file) {
        if (job_.worksheet.grid_to_new_file) job_.worksheet.grid_to_new_file(grid_);
        return GridReportResult::Finished;
    }

    const int count = o_.last_column > 0 ? std::min(o_.last_column, grid_.cols()) : grid_.cols();
    if (count > kMaxReportColumns) return GridReportResult::Refused;
    if (grid_.tag() == QLatin1String("autofit") && !autofit_columns(s_, grid_)) return GridReportResult::Refused;
    if (twin_) job_.progress.clear_pages();

    const int first = std::max(1, o_.first_row);
    lay_out_columns(count);

    heading_height_ = 0;
    if (grid_.fixed_rows() > 0) {
        float lines = 1;
        for (const Column& c : columns_) {
            if (c.rotated)
                lines = std::max(lines, s_.columns_to_lines(s_.TextWidth(c.heading)) + 0.5f);
            else
                lines = std::max(lines, float(cell_lines(s_, c.heading, std::max(0.0f, c.width - 2 * pad_)).size()));
        }
        heading_height_ = lines + kRowGap;
    }

    const float limit = s_.ScaleHeight() - kFootRoom;
    table_top_ = s_.CurrentY() + o_.top_offset;
    float y = table_top_ + heading_height_;
    bool started = false;
    int printed = 0;

    // Printed rows leave the grid when the page is full, so that the next
    // call goes on behind them; the rows of the last page stay, and a
    // second block of columns prints them again.
    int row = first;
    auto page_full = [&] {
        if (started) close_table(y);
        for (int i = first; i < row; ++i) grid_.remove_item(first);
        job_.new_print_job = true;  // the next page_head turns the sheet
        return GridReportResult::PageFull;
    };

    while (grid_.rows() > row) {
        if (twin_ && is_page_break(row)) {
            grid_.remove_item(row);
            if (printed > 0 && grid_.rows() > row) return page_full();
            continue;
        }
        const auto cells = row_cells(row);
        const float height = row_lines(cells) + kRowGap;

        if (printed > 0 && o_.rows_per_block > 0 && printed % o_.rows_per_block == 0) {
            float block = 0;
            const int end = std::min(grid_.rows(), row + o_.rows_per_block);
            for (int r = row; r < end; ++r) block += row_height(r);
            if (y + block > limit) return page_full();
        }
        if (y + height > limit) {
            // A row taller than a whole page goes out anyway, else it would
            // never print.
            const bool never_fits = kBodyStart + o_.top_offset + heading_height_ + height > limit;
            if (printed > 0 || !never_fits) return page_full();
        }
        if (!started) {
            print_heading(table_top_);
            started = true;
        }
        print_cells(row, cells, y, height);
        y += height;
        s_.line(table_left_, y, table_right_, y);
        ++row;
        ++printed;
    }
    if (started) close_table(y);
    return GridReportResult::Finished;
}

}  // namespace

bool has_line_break(const QString& text) {
    return text.contains(kNewLine) || text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'));
}

QString fit_cell_text(const PrintSurface& surface, const QString& text, float width) {
    if (text.trimmed().isEmpty()) return text;
    QString t = text;
    while (!t.isEmpty() && surface.TextWidth(t) > width) t.chop(1);
    return t;
}

QString wrap_cell_text(const PrintSurface& surface, const QString& text, float width) {
    QStringList out;
    for (QString part : split_breaks(text)) {
        while (surface.TextWidth(part) > width && part.size() > 1) {
            qsizetype fit = 0;  // characters that fit, at least one
            while (fit < part.size() && surface.TextWidth(part.left(fit + 1)) <= width) ++fit;
            if (fit == 0) fit = 1;
            const qsizetype blank = part.left(fit + 1).lastIndexOf(QLatin1Char(' '));
            if (blank > 0) {
                out << part.left(blank).trimmed();
                part = part.mid(blank + 1);
            } else {
                out << part.left(fit);
                part = part.mid(fit);
            }
        }
        out << part;
    }
    return out.join(QLatin1Char('\n'));
}

float grid_width_in_columns(const PrintSurface& surface, const TextGrid& grid, int twips) {
    return float(twips / grid_letter_twips(grid)) * letter(surface);
}

bool autofit_columns(const PrintSurface& surface, TextGrid& grid) {
    if (grid.cols() > kMaxAutofitColumns) return false;
    const float w = letter(surface);
    for (int c = 0; c < grid.cols(); ++c) {
        if (grid.col_width(c) == 0) continue;  // hidden columns stay hidden
        const float content = content_width(surface, grid, c);
        if (content < 0) continue;
        // Text plus half a "W" on each side, in the grid's twips.
        grid.set_col_width(c, int(std::ceil((content + w) / w * grid_letter_twips(grid))));
    }
    return true;
}

GridReportResult print_grid_report(PrintSurface& surface, PrintJob& job, TextGrid& grid,
                                   const GridReportOptions& options) {
    return GridPrinter(surface, job, grid, options, false).run();
}

GridReportResult print_setup_report(PrintSurface& surface, PrintJob& job, TextGrid& grid,
                                    const GridReportOptions& options) {
    return GridPrinter(surface, job, grid, options, true).run();
}

}  // namespace veldo
