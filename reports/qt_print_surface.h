#pragma once
// The print surface of real output: one QPainter on either a PDF file (A4)
// or a printer the user chose.
//
// The character scale: a character cell is that of the monospaced family
// (Lucida Console, or the machine's stand-in for it) at the current size:
// its average character width across, its line spacing down. The scale so
// depends on the size alone, not on the family, so that a change to ARIAL
// for the banner keeps the lines of the page where they were. TextWidth
// measures with the real font and gives the result in those cells.
//
// Fonts the machine lacks: "Lucida Console" (and "Courier New") fall back to
// "DejaVu Sans Mono" or the system's fixed font, "ARIAL" to "Liberation
// Sans" or "DejaVu Sans".
//
// The painter starts at the first drawing or page break, so that a new job
// can still turn its first sheet to landscape.

#include <QFont>
#include <QPainter>
#include <QString>

#include <memory>

#include "reports/print_surface.h"

class QPagedPaintDevice;
class QPdfWriter;
class QPrinter;

namespace veldo {

class QtPrintSurface : public PrintSurface {
public:
    // A4 PDF at `pdf_path`, half an inch of margin on every side.
    explicit QtPrintSurface(const QString& pdf_path);
    // The printer the user chose; the surface doesn't own it.
    explicit QtPrintSurface(QPrinter& printer);
    ~QtPrintSurface() override;
    QtPrintSurface(const QtPrintSurface&) = delete;
    QtPrintSurface& operator=(const QtPrintSurface&) = delete;

    // The family this machine draws `name` with.
    static QString resolve_family(const QString& name);

    float ScaleWidth() const override;
    float ScaleHeight() const override;
    PageOrientation orientation() const override;
    void set_orientation(PageOrientation o) override;
    int Page() const override { return page_; }
    QString DeviceName() const override;
    void set_character_scale(float vertical_zoom = 1.0f) override;
    float columns_to_lines(float columns) const override;
    float lines_to_columns(float lines) const override;

    float CurrentX() const override;
    float CurrentY() const override;
    void set_CurrentX(float x) override;
    void set_CurrentY(float y) override;

    void set_font_name(const QString& name) override;
    QString font_name() const override { return font_name_; }
    void set_font_size(float points) override;
    float font_size() const override { return size_; }
    void set_bold(bool on) override;
    bool bold() const override { return font_.bold(); }
    void set_italic(bool on) override;
    void set_underline(bool on) override;
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

private:
    bool ensure_started();
    void apply_font();
    double cell_width() const;   // device pixels
    double line_height() const;  // device pixels, zoom taken in
    double printable_width() const;
    double printable_height() const;
    QColor colour_of(int bgr) const;
    QPen pen() const;

    std::unique_ptr<QPdfWriter> pdf_;
    QPrinter* printer_ = nullptr;
    QPagedPaintDevice* device_ = nullptr;
    QString pdf_path_;
    QPainter painter_;
    bool started_ = false;
    bool ink_ = false;
    int page_ = 1;

    QString font_name_ = QStringLiteral("Lucida Console");
    QFont font_;
    QFont cell_font_;  // the monospaced font that defines the scale
    float size_ = 10;
    float zoom_ = 1;
    int colour_ = 0;
    int draw_width_ = 1;
    double x_ = 0, y_ = 0;  // device pixels from the printable area's corner
};

}  // namespace veldo
