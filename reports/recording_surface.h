#pragma once
// A print surface that draws nothing and keeps every operation, so that the
// tests can see where the engine put each text, rule and page break.
//
// Its metrics are fixed so that positions can be worked out by hand:
// - an A4 sheet of 595 x 842 points (842 x 595 in landscape), less a margin
//   of 36 points on every side: 523 x 770 printable points in portrait;
// - every font is monospaced: a character cell is 0.6 x size points wide and
//   1.2 x size points high, whatever the family or boldness;
// - the character scale follows the current font: ScaleWidth is the
//   printable width over the cell width, ScaleHeight the printable height
//   over the cell height (times the vertical zoom), so at size 10 in
//   portrait the page is 87.17 columns by 64.17 lines;
// - TextWidth(text) is text.size() in that scale, TextHeight the number of
//   lines of the text.
// The position is kept in points, so a change of font keeps the pen where it
// was and only the numbers of the scale change, as on a real printer.

#include <QList>
#include <QSet>
#include <QString>

#include "reports/print_surface.h"

namespace veldo {

struct PrintRecord {
    enum class Kind { Text, Rotated, Line, Box, Picture, NewPage, EndDoc, KillDoc };
    Kind kind = Kind::Text;
    // In the character scale in force when the operation ran.
    float x = 0, y = 0, x2 = 0, y2 = 0;
    // The same corners in points from the printable area's top left.
    double px = 0, py = 0, px2 = 0, py2 = 0;
    QString text;  // text, or the picture's path
    QString font;
    float size = 0;
    bool bold = false;
    int colour = 0;      // fore colour, 0xBBGGRR
    int fill = -1;       // box fill, -1 for none
    int page = 1;        // page of the document the operation landed on
    int document = 1;    // counts EndDoc and KillDoc
};

class RecordingSurface : public PrintSurface {
public:
    static constexpr double kPageWidth = 595, kPageHeight = 842, kMargin = 36;

    RecordingSurface();

    float ScaleWidth() const override;
    float ScaleHeight() const override;
    PageOrientation orientation() const override { return orientation_; }
    void set_orientation(PageOrientation o) override;
    int Page() const override { return page_; }
    QString DeviceName() const override { return device_name_; }
    void set_character_scale(float vertical_zoom = 1.0f) override;
    float columns_to_lines(float columns) const override;
    float lines_to_columns(float lines) const override;

    float CurrentX() const override;
    float CurrentY() const override;
    void set_CurrentX(float x) override;
    void set_CurrentY(float y) override;

    void set_font_name(const QString& name) override { font_ = name; }
    QString font_name() const override { return font_; }
    void set_font_size(float points) override;
    float font_size() const override { return size_; }
    void set_bold(bool on) override { bold_ = on; }
    bool bold() const override { return bold_; }
    void set_italic(bool on) override { italic_ = on; }
    void set_underline(bool on) override { underline_ = on; }
    void set_fore_colour(int bgr) override { colour_ = bgr; }
    int fore_colour() const override { return colour_; }
    void set_draw_width(int width) override { draw_width_ = width; }

    float TextWidth(const QString& text) const override;
    float TextHeight(const QString& text) const override;

    void print_text(const QString& text, bool stay_on_line = false) override;
    void print_rotated(const QString& text, float x, float y) override;
    void line(float x1, float y1, float x2, float y2) override;
    void box(float x1, float y1, float x2, float y2, int fill_bgr = -1) override;
    bool paint_picture(const QString& path, float x, float y, float width, float height) override;

    void NewPage() override;
    void EndDoc() override;
    void KillDoc() override;
    bool page_has_ink() const override { return ink_; }

    // --- for the tests ---
    void set_device_name(const QString& name) { device_name_ = name; }
    // Picture files that paint_picture accepts; any other path fails.
    void add_picture(const QString& path) { pictures_.insert(path); }
    const QList<PrintRecord>& records() const { return records_; }
    QList<PrintRecord> records_of(PrintRecord::Kind kind) const;
    // The texts printed (plain and rotated), in order.
    QStringList texts() const;
    // The first text record whose text is `text`; null when none.
    const PrintRecord* find_text(const QString& text) const;
    int pages_ended() const { return pages_ended_; }  // pages of documents closed by EndDoc
    int draw_width() const { return draw_width_; }
    bool italic() const { return italic_; }
    bool underline() const { return underline_; }
    void clear_records() { records_.clear(); }

private:
    double printable_width() const;
    double printable_height() const;
    double cell_width() const { return 0.6 * size_; }
    double line_height() const { return 1.2 * size_ / zoom_; }
    PrintRecord make(PrintRecord::Kind kind) const;
    void ink() { ink_ = true; }

    QList<PrintRecord> records_;
    QSet<QString> pictures_;
    QString device_name_ = QStringLiteral("Recording");
    PageOrientation orientation_ = PageOrientation::Portrait;
    QString font_ = QStringLiteral("Lucida Console");
    float size_ = 10;
    float zoom_ = 1;
    bool bold_ = false, italic_ = false, underline_ = false;
    int colour_ = 0;
    int draw_width_ = 1;
    double x_pt_ = 0, y_pt_ = 0;
    int page_ = 1;
    int document_ = 1;
    int pages_ended_ = 0;
    bool ink_ = false;
};

}  // namespace veldo
