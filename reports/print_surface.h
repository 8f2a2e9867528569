#pragma once
// The page a report is drawn on, as the print engine sees it: the family's
// Printer object with its scale in characters. x counts character columns
// and y lines of the current font (both 32-bit floats, so half lines are
// possible); changing the font changes the scale, and ScaleWidth and
// ScaleHeight are read anew after each change.
//
// Three targets stand behind this: a printer the user chose and a PDF file,
// both through one Qt painter, and a recording surface for the tests that
// keeps every operation.

#include <QString>
#include <QStringList>

namespace veldo {

enum class PageOrientation { Portrait = 1, Landscape = 2 };

class PrintSurface {
public:
    virtual ~PrintSurface() = default;

    // --- page and scale (in characters of the current font) ---
    virtual float ScaleWidth() const = 0;
    virtual float ScaleHeight() const = 0;
    virtual PageOrientation orientation() const = 0;
    // Only takes effect on an empty page (before anything is drawn on it).
    virtual void set_orientation(PageOrientation o) = 0;
    virtual int Page() const = 0;  // 1 on the first page
    virtual QString DeviceName() const = 0;
    // ScaleMode 4 again: the character scale of the current font, with the
    // lines stretched by `vertical_zoom` (ScaleHeight = ScaleHeight x zoom).
    virtual void set_character_scale(float vertical_zoom = 1.0f) = 0;
    // ScaleX/ScaleY between the two axes of the current scale: a horizontal
    // distance in columns as lines, and back. Rotated text needs them.
    virtual float columns_to_lines(float columns) const = 0;
    virtual float lines_to_columns(float lines) const = 0;

    // --- position ---
    virtual float CurrentX() const = 0;
    virtual float CurrentY() const = 0;
    virtual void set_CurrentX(float x) = 0;
    virtual void set_CurrentY(float y) = 0;

    // --- font and pen ---
    // A font the machine lacks falls back to one that it has; "Lucida
    // Console" falls back to a monospaced one.
    virtual void set_font_name(const QString& name) = 0;
    virtual QString font_name() const = 0;
    virtual void set_font_size(float points) = 0;
    virtual float font_size() const = 0;
    virtual void set_bold(bool on) = 0;
    virtual bool bold() const = 0;
    virtual void set_italic(bool on) = 0;
    virtual void set_underline(bool on) = 0;
    virtual void set_fore_colour(int bgr) = 0;  // 0xBBGGRR
    virtual int fore_colour() const = 0;
    virtual void set_draw_width(int width) = 0;  // pixels of the family's printers

    // --- measuring, in the current scale ---
    virtual float TextWidth(const QString& text) const = 0;
    virtual float TextHeight(const QString& text) const = 0;

    // --- drawing ---
    // Prints at (CurrentX, CurrentY). With `stay_on_line` CurrentX moves
    // behind the text; otherwise CurrentX returns to 0 and CurrentY moves one
    // line down, as the family's Print statement does.
    virtual void print_text(const QString& text, bool stay_on_line = false) = 0;
    // Text turned 90 degrees (reading upwards), its foot at (x, y).
    virtual void print_rotated(const QString& text, float x, float y) = 0;
    virtual void line(float x1, float y1, float x2, float y2) = 0;
    // A rectangle; filled with `fill_bgr` when it is not -1.
    virtual void box(float x1, float y1, float x2, float y2, int fill_bgr = -1) = 0;
    // A picture file painted into the rectangle; false when it can't be read.
    virtual bool paint_picture(const QString& path, float x, float y, float width, float height) = 0;

    // --- the job ---
    virtual void NewPage() = 0;
    virtual void EndDoc() = 0;
    virtual void KillDoc() = 0;
    // True once something was drawn on the current page.
    virtual bool page_has_ink() const = 0;
};

}  // namespace veldo
