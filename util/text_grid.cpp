#include "util/text_grid.h"

#include "util/cp1252.h"
#include "util/legacy_number.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <string_view>

namespace veldo {

TextGrid::TextGrid(int rows, int cols) {
    set_cols(cols);
    set_rows(rows);
    set_fixed_rows(1);
    set_fixed_cols(1);
}

TextGrid::Row TextGrid::empty_row() const {
    Row r;
    r.cells.resize(std::size_t(cols_));
    return r;
}

void TextGrid::set_rows(int rows) {
    rows = std::max(rows, 0);
    if (rows < this->rows()) {
        rows_.resize(std::size_t(rows));
    } else {
        rows_.reserve(std::size_t(rows));
        while (this->rows() < rows) rows_.push_back(empty_row());
    }
    fixed_rows_ = std::min(fixed_rows_, rows);
}

void TextGrid::set_cols(int cols) {
    cols = std::max(cols, 0);
    cols_ = cols;
    for (Row& r : rows_) {
        r.cells.resize(std::size_t(cols));
        if (!r.styles.empty()) r.styles.resize(std::size_t(cols));
    }
    widths_.resize(std::size_t(cols), -1);
    aligns_.resize(std::size_t(cols), GridAlign::General);
    fixed_cols_ = std::min(fixed_cols_, cols);
}

void TextGrid::set_fixed_rows(int n) { fixed_rows_ = std::clamp(n, 0, rows()); }
void TextGrid::set_fixed_cols(int n) { fixed_cols_ = std::clamp(n, 0, cols()); }

bool TextGrid::contains(int row, int col) const {
    return row >= 0 && row < rows() && col >= 0 && col < cols_;
}

QString TextGrid::text(int row, int col) const {
    if (!contains(row, col)) return QString();
    return rows_[std::size_t(row)].cells[std::size_t(col)];
}

void TextGrid::set_text(int row, int col, const QString& text) {
    if (!contains(row, col)) return;
    rows_[std::size_t(row)].cells[std::size_t(col)] = text;
}

QStringList TextGrid::row_texts(int row) const {
    QStringList out;
    if (row < 0 || row >= rows()) return out;
    for (const QString& s : rows_[std::size_t(row)].cells) out.append(s);
    return out;
}

void TextGrid::add_item(const QString& item, int index) {
    Row r = empty_row();
    const QStringList cells = item.split(QLatin1Char('\t'));
    for (qsizetype i = 0; i < cells.size() && i < cols_; ++i) r.cells[std::size_t(i)] = cells.at(i);
    if (index < 0 || index > rows()) index = rows();
    rows_.insert(rows_.begin() + index, std::move(r));
}

bool TextGrid::remove_item(int row) {
    if (row < 0 || row >= rows()) return false;
    rows_.erase(rows_.begin() + row);
    if (row < fixed_rows_) --fixed_rows_;
    return true;
}

void TextGrid::clear() {
    for (Row& r : rows_) {
        for (QString& s : r.cells) s.clear();
        r.styles.clear();
    }
}

QString TextGrid::clip(int row1, int col1, int row2, int col2) const {
    if (row1 > row2) std::swap(row1, row2);
    if (col1 > col2) std::swap(col1, col2);
    QString out;
    for (int r = row1; r <= row2; ++r) {
        if (r > row1) out.append(QLatin1Char('\r'));
        for (int c = col1; c <= col2; ++c) {
            if (c > col1) out.append(QLatin1Char('\t'));
            out.append(text(r, c));
        }
    }
    return out;
}

void TextGrid::set_clip(int row1, int col1, int row2, int col2, const QString& text) {
    if (row1 > row2) std::swap(row1, row2);
    if (col1 > col2) std::swap(col1, col2);
    QString t = text;
    t.replace(QLatin1String("\r\n"), QLatin1String("\r"));
    t.replace(QLatin1Char('\n'), QLatin1Char('\r'));
    const QStringList lines = t.split(QLatin1Char('\r'));
    for (int i = 0; i < lines.size() && row1 + i <= row2; ++i) {
        const QStringList cells = lines.at(i).split(QLatin1Char('\t'));
        for (int j = 0; j < cells.size() && col1 + j <= col2; ++j)
            set_text(row1 + i, col1 + j, cells.at(j));
    }
}

void TextGrid::set_format_string(const QString& format) {
    format_string_ = format;
    const qsizetype semicolon = format.indexOf(QLatin1Char(';'));
    const QString col_part = semicolon < 0 ? format : format.left(semicolon);
    if (!col_part.isEmpty()) {
        const QStringList parts = col_part.split(QLatin1Char('|'));
        if (cols_ < parts.size()) set_cols(int(parts.size()));
        for (int i = 0; i < parts.size(); ++i) {
            QString heading = parts.at(i);
            if (!heading.isEmpty()) {
                const QChar p = heading.at(0);
                GridAlign a = GridAlign::General;
                if (p == QLatin1Char('<')) a = GridAlign::Left;
                if (p == QLatin1Char('^')) a = GridAlign::Centre;
                if (p == QLatin1Char('>')) a = GridAlign::Right;
                if (a != GridAlign::General) {
                    aligns_[std::size_t(i)] = a;
                    heading.remove(0, 1);
                }
            }
            if (fixed_rows_ > 0) set_text(0, i, heading);
        }
    }
    if (semicolon >= 0) {
        const QStringList parts = format.mid(semicolon + 1).split(QLatin1Char('|'));
        if (rows() < parts.size()) set_rows(int(parts.size()));
        for (int i = 0; i < parts.size(); ++i) {
            // The corner belongs to the column headings when there are any.
            if (i == 0 && !col_part.isEmpty()) continue;
            if (fixed_cols_ > 0) set_text(i, 0, parts.at(i));
        }
    }
}

GridAlign TextGrid::column_alignment(int col) const {
    if (col < 0 || col >= cols_) return GridAlign::General;
    return aligns_[std::size_t(col)];
}

void TextGrid::set_column_alignment(int col, GridAlign align) {
    if (col >= 0 && col < cols_) aligns_[std::size_t(col)] = align;
}

int TextGrid::col_width(int col) const {
    if (col < 0 || col >= cols_) return -1;
    return widths_[std::size_t(col)];
}

void TextGrid::set_col_width(int col, int width) {
    if (col >= 0 && col < cols_) widths_[std::size_t(col)] = width;
}

int TextGrid::row_height(int row) const {
    if (row < 0 || row >= rows()) return -1;
    return rows_[std::size_t(row)].height;
}

void TextGrid::set_row_height(int row, int height) {
    if (row >= 0 && row < rows()) rows_[std::size_t(row)].height = height;
}

const TextGrid::Style* TextGrid::style_at(int row, int col) const {
    if (!contains(row, col)) return nullptr;
    const Row& r = rows_[std::size_t(row)];
    return r.styles.empty() ? nullptr : &r.styles[std::size_t(col)];
}

TextGrid::Style* TextGrid::style_at(int row, int col) {
    if (!contains(row, col)) return nullptr;
    Row& r = rows_[std::size_t(row)];
    if (r.styles.empty()) r.styles.resize(std::size_t(cols_));
    return &r.styles[std::size_t(col)];
}

int TextGrid::cell_back_colour(int row, int col) const {
    const Style* s = style_at(row, col);
    return s && s->back >= 0 ? s->back : back_colour_;
}

int TextGrid::cell_fore_colour(int row, int col) const {
    const Style* s = style_at(row, col);
    return s && s->fore >= 0 ? s->fore : fore_colour_;
}

bool TextGrid::cell_has_own_colours(int row, int col) const {
    return cell_back_colour(row, col) != back_colour_ || cell_fore_colour(row, col) != fore_colour_;
}

void TextGrid::set_cell_back_colour(int row, int col, int colour) {
    if (Style* s = style_at(row, col)) s->back = colour;
}

void TextGrid::set_cell_fore_colour(int row, int col, int colour) {
    if (Style* s = style_at(row, col)) s->fore = colour;
}

bool TextGrid::cell_bold(int row, int col) const {
    const Style* s = style_at(row, col);
    return s && s->bold;
}

void TextGrid::set_cell_bold(int row, int col, bool bold) {
    if (Style* s = style_at(row, col)) s->bold = bold;
}

namespace {

struct SortKey {
    QString text;  // case-folded for the no-case and generic sorts
    double number = 0.0;
    bool numeric = false;
};

int three_way(double a, double b) { return a < b ? -1 : (a > b ? 1 : 0); }

// QString::toCaseFolded, without its cost for the plain ASCII text almost
// every cell holds: there folding is A-Z to a-z and nothing else.
QString folded(const QString& cell) {
    bool upper = false;
    for (QChar c : cell) {
        const char16_t u = c.unicode();
        if (u >= 0x80) return cell.toCaseFolded();
        upper = upper || (u >= 'A' && u <= 'Z');
    }
    if (!upper) return cell;
    QString out(cell.size(), Qt::Uninitialized);
    QChar* to = out.data();
    for (QChar c : cell) {
        const char16_t u = c.unicode();
        *to++ = QChar(u >= 'A' && u <= 'Z' ? char16_t(u + ('a' - 'A')) : u);
    }
    return out;
}
int three_way(const QString& a, const QString& b) {
    const int c = QString::compare(a, b, Qt::CaseSensitive);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

// The key of a plain ASCII text: its folded bytes, which compare as its
// folded UTF-16 code units would.
struct ByteSortKey {
    std::string_view text;
    double number = 0.0;
    bool numeric = false;
};
int three_way(std::string_view a, std::string_view b) {
    const int c = a.compare(b);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

}  // namespace

namespace {

struct SortModes {
    bool descending, generic, numeric, no_case;
    explicit SortModes(GridSort mode)
        : descending(mode == GridSort::GenericDescending || mode == GridSort::NumericDescending ||
                     mode == GridSort::StringNoCaseDescending || mode == GridSort::StringDescending),
          generic(mode == GridSort::GenericAscending || mode == GridSort::GenericDescending),
          numeric(mode == GridSort::NumericAscending || mode == GridSort::NumericDescending),
          no_case(mode == GridSort::StringNoCaseAscending || mode == GridSort::StringNoCaseDescending) {}

    // A cell's key, worked out once per cell, not once per comparison.
    SortKey key(const QString& cell) const {
        SortKey key;
        if (numeric) {
            key.number = Val(cell);
        } else if (generic) {
            key.numeric = parse_numeric(cell, &key.number);
            key.text = folded(cell);
        } else {
            key.text = no_case ? folded(cell) : cell;
        }
        return key;
    }
    // Rows a and b compared on their key_cols keys, left to right.
    template <typename Key>
    int compare(const std::vector<Key>& keys, int key_cols, int a, int b) const {
        for (int k = 0; k < key_cols; ++k) {
            const Key& x = keys[std::size_t(a) * std::size_t(key_cols) + std::size_t(k)];
            const Key& y = keys[std::size_t(b) * std::size_t(key_cols) + std::size_t(k)];
            int c;
            if (numeric || (generic && x.numeric && y.numeric))
                c = three_way(x.number, y.number);
            else
                c = three_way(x.text, y.text);
            if (c != 0) return descending ? -c : c;
        }
        return 0;
    }
    // A merge sort of our own: the generic order is not transitive across
    // numbers and texts, which the standard sorts are not required to bear.
    template <typename Key>
    std::vector<int> order(const std::vector<Key>& keys, int key_cols, int n) const {
        std::vector<int> order(static_cast<std::size_t>(n)), buffer(static_cast<std::size_t>(n));
        std::iota(order.begin(), order.end(), 0);
        for (int width = 1; width < n; width *= 2) {
            for (int lo = 0; lo < n; lo += 2 * width) {
                const int mid = std::min(lo + width, n), hi = std::min(lo + 2 * width, n);
                int i = lo, j = mid, out = lo;
                while (i < mid && j < hi) {
                    // The right element goes first only when strictly before: stable.
                    if (compare(keys, key_cols, order[std::size_t(j)], order[std::size_t(i)]) < 0)
                        buffer[std::size_t(out++)] = order[std::size_t(j++)];
                    else
                        buffer[std::size_t(out++)] = order[std::size_t(i++)];
                }
                while (i < mid) buffer[std::size_t(out++)] = order[std::size_t(i++)];
                while (j < hi) buffer[std::size_t(out++)] = order[std::size_t(j++)];
            }
            order.swap(buffer);
        }
        return order;
    }
};

}  // namespace

void TextGrid::sort(int first_col, int last_col, GridSort mode) {
    if (mode == GridSort::None) return;
    if (first_col > last_col) std::swap(first_col, last_col);
    first_col = std::max(first_col, 0);
    last_col = std::min(last_col, cols_ - 1);
    const int first_row = fixed_rows_;
    const int n = rows() - first_row;
    if (n < 2 || first_col > last_col) return;

    const SortModes modes(mode);
    const int key_cols = last_col - first_col + 1;
    std::vector<SortKey> keys;
    keys.reserve(std::size_t(n) * std::size_t(key_cols));
    for (int i = 0; i < n; ++i) {
        const Row& r = rows_[std::size_t(first_row + i)];
        for (int k = 0; k < key_cols; ++k) keys.push_back(modes.key(r.cells[std::size_t(first_col + k)]));
    }
    const std::vector<int> order = modes.order(keys, key_cols, n);

    std::vector<Row> sorted;
    sorted.reserve(std::size_t(n));
    for (int i : order) sorted.push_back(std::move(rows_[std::size_t(first_row + i)]));
    std::move(sorted.begin(), sorted.end(), rows_.begin() + first_row);
}

std::vector<int> sorted_order(const std::vector<QString>& cells, GridSort mode) {
    const int n = int(cells.size());
    std::vector<int> order(static_cast<std::size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    if (mode == GridSort::None || n < 2) return order;
    const SortModes modes(mode);
    std::vector<SortKey> keys;
    keys.reserve(std::size_t(n));
    for (const QString& cell : cells) keys.push_back(modes.key(cell));
    return modes.order(keys, 1, n);
}

std::vector<int> sorted_order(const std::vector<QLatin1StringView>& cells, GridSort mode) {
    const int n = int(cells.size());
    bool ascii = true;
    qsizetype bytes = 0;
    for (QLatin1StringView cell : cells) {
        bytes += cell.size();
        for (char c : cell) ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    }
    if (!ascii) {
        std::vector<QString> texts;
        texts.reserve(cells.size());
        for (QLatin1StringView cell : cells) texts.push_back(cp1252::decode(cell.data(), cell.size()));
        return sorted_order(texts, mode);
    }
    std::vector<int> order(static_cast<std::size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    if (mode == GridSort::None || n < 2) return order;
    const SortModes modes(mode);
    // Every folded text in one buffer, made before any key looks into it.
    std::string folded_texts(std::size_t(bytes), '\0');
    char* to = folded_texts.data();
    const bool fold = modes.generic || modes.no_case;
    for (QLatin1StringView cell : cells)
        for (char c : cell) *to++ = fold && c >= 'A' && c <= 'Z' ? char(c + ('a' - 'A')) : c;
    std::vector<ByteSortKey> keys(static_cast<std::size_t>(n));
    std::size_t at = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const QLatin1StringView cell = cells[i];
        ByteSortKey& key = keys[i];
        key.text = std::string_view(folded_texts).substr(at, std::size_t(cell.size()));
        at += std::size_t(cell.size());
        if (modes.numeric) {
            key.number = Val(cell);
        } else if (modes.generic) {
            // A number starts, past its blanks, with a digit, a sign or a point.
            qsizetype k = 0;
            while (k < cell.size() && (cell[k] == QLatin1Char(' ') || cell[k] == QLatin1Char('\t'))) ++k;
            const char first = k < cell.size() ? cell[k].toLatin1() : ' ';
            if ((first >= '0' && first <= '9') || first == '+' || first == '-' || first == '.')
                key.numeric = parse_numeric(QString(cell), &key.number);
        }
    }
    return modes.order(keys, 1, n);
}

}  // namespace veldo
