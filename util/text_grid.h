#pragma once
// The hidden grid of the screens and reports: a table of texts with fixed
// heading rows and columns, column alignments and widths, cell colours, and
// the sorts of the original grid control. No widget: a screen that shows one
// wraps it in a model.

#include <QString>
#include <QStringList>

#include <vector>

namespace veldo {

enum class GridAlign { General, Left, Centre, Right };

// The numbers are those of the original control's Sort property.
enum class GridSort {
    None = 0,
    GenericAscending = 1,   // numbers by value when both cells are numeric, else text ignoring case
    GenericDescending = 2,
    NumericAscending = 3,   // by Val of the text
    NumericDescending = 4,
    StringNoCaseAscending = 5,
    StringNoCaseDescending = 6,
    StringAscending = 7,    // case-sensitive
    StringDescending = 8,
};

class TextGrid {
public:
    static constexpr int kWhite = 0xFFFFFF;  // colours are 0xBBGGRR
    static constexpr int kBlack = 0x000000;

    // Two rows and two columns, one of each fixed, as the control starts.
    TextGrid() : TextGrid(2, 2) {}
    TextGrid(int rows, int cols);

    int rows() const { return int(rows_.size()); }
    int cols() const { return cols_; }
    // Growing adds empty cells; shrinking cuts rows or columns off the end.
    // The fixed counts shrink with them.
    void set_rows(int rows);
    void set_cols(int cols);
    int fixed_rows() const { return fixed_rows_; }
    int fixed_cols() const { return fixed_cols_; }
    // Clamped to 0..rows() (0..cols()).
    void set_fixed_rows(int n);
    void set_fixed_cols(int n);

    // TextMatrix. Reading outside the grid gives ""; writing there is ignored.
    QString text(int row, int col) const;
    void set_text(int row, int col, const QString& text);
    bool contains(int row, int col) const;
    // The texts of one row, one entry per column.
    QStringList row_texts(int row) const;

    // AddItem: a new row of tab-separated cells from column 0, at `index`
    // (the end when -1 or beyond it). Cells beyond cols() are dropped.
    void add_item(const QString& item, int index = -1);
    // RemoveItem; false when the row does not exist.
    bool remove_item(int row);
    // Empties every cell and its colours and boldness; shape, widths and
    // alignments stay.
    void clear();

    // Clip: the block row1..row2 x col1..col2 as text, cells by tabs and rows
    // by CR. set_clip fills the block from such a text (CR LF, CR or LF end
    // rows); text beyond the block is dropped, cells without text are left.
    QString clip(int row1, int col1, int row2, int col2) const;
    void set_clip(int row1, int col1, int row2, int col2, const QString& text);

    // FormatString: "|"-separated headings of row 0, each with an optional
    // alignment prefix "<", "^" or ">" for its column; the columns become at
    // least as many as the headings. After a ";" come the headings of column 0,
    // one per row from row 0, and the rows become at least as many. The
    // heading texts are written only into fixed rows (fixed columns).
    void set_format_string(const QString& format);
    QString format_string() const { return format_string_; }

    GridAlign column_alignment(int col) const;
    void set_column_alignment(int col, GridAlign align);

    // Column widths in twips; -1 leaves the width to whoever shows the grid.
    int col_width(int col) const;
    void set_col_width(int col, int width);
    int row_height(int row) const;  // -1 by default
    void set_row_height(int row, int height);

    // Grid-wide colours; a cell without its own colour shows these.
    int back_colour() const { return back_colour_; }
    void set_back_colour(int colour) { back_colour_ = colour; }
    int fore_colour() const { return fore_colour_; }
    void set_fore_colour(int colour) { fore_colour_ = colour; }
    int cell_back_colour(int row, int col) const;
    int cell_fore_colour(int row, int col) const;
    // True when the cell has a colour of its own that differs from the grid's.
    bool cell_has_own_colours(int row, int col) const;
    void set_cell_back_colour(int row, int col, int colour);
    void set_cell_fore_colour(int row, int col, int colour);
    bool cell_bold(int row, int col) const;
    void set_cell_bold(int row, int col, bool bold);

    // The current cell (Row, Col), as the forms' handlers use it.
    int row() const { return row_; }
    int col() const { return col_; }
    void set_row(int row) { row_ = row; }
    void set_col(int col) { col_ = col; }

    // The grid's tag ("autofit" asks the report for fitted widths) and font size.
    QString tag() const { return tag_; }
    void set_tag(const QString& tag) { tag_ = tag; }
    double font_size() const { return font_size_; }
    void set_font_size(double points) { font_size_ = points; }

    // Sorts the rows below the fixed ones on one column, or on the columns
    // first_col..last_col compared left to right. Stable: rows with equal keys
    // keep their order, descending sorts too. Colours and heights move with
    // their rows.
    void sort(int col, GridSort mode) { sort(col, col, mode); }
    void sort(int first_col, int last_col, GridSort mode);

private:
    struct Style {
        int back = -1;  // -1: the grid's colour
        int fore = -1;
        bool bold = false;
        bool operator==(const Style&) const = default;
    };
    struct Row {
        std::vector<QString> cells;
        std::vector<Style> styles;  // empty until a cell gets a style
        int height = -1;
    };

    Row empty_row() const;
    Style* style_at(int row, int col);
    const Style* style_at(int row, int col) const;

    std::vector<Row> rows_;
    int cols_ = 0;
    int fixed_rows_ = 0;
    int fixed_cols_ = 0;
    std::vector<int> widths_;
    std::vector<GridAlign> aligns_;
    int back_colour_ = kWhite;
    int fore_colour_ = kBlack;
    int row_ = 0;
    int col_ = 0;
    QString tag_;
    double font_size_ = 8.25;
    QString format_string_;
};

// The order TextGrid::sort puts these cells in, as the one column of a
// grid with no fixed rows: their places, first to last.
std::vector<int> sorted_order(const std::vector<QString>& cells, GridSort mode);
// The same for texts in the tables' single-byte code page: when every text is
// plain ASCII, as names and numbers almost always are, they are sorted in
// their bytes with no QString each; otherwise each is decoded first.
std::vector<int> sorted_order(const std::vector<QLatin1StringView>& cells, GridSort mode);

}  // namespace veldo
