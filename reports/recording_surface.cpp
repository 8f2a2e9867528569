#include "reports/recording_surface.h"

#include <algorithm>

namespace veldo {

RecordingSurface::RecordingSurface() = default;

double RecordingSurface::printable_width() const {
    const double w = orientation_ == PageOrientation::Portrait ? kPageWidth : kPageHeight;
    return w - 2 * kMargin;
}

double RecordingSurface::printable_height() const {
    const double h = orientation_ == PageOrientation::Portrait ? kPageHeight : kPageWidth;
    return h - 2 * kMargin;
}

float RecordingSurface::ScaleWidth() const { return float(printable_width() / cell_width()); }
float RecordingSurface::ScaleHeight() const { return float(printable_height() / line_height()); }

void RecordingSurface::set_orientation(PageOrientation o) {
    if (!ink_) orientation_ = o;  // a sheet with ink on it keeps its shape
}

void RecordingSurface::set_character_scale(float vertical_zoom) {
    zoom_ = vertical_zoom > 0 ? vertical_zoom : 1.0f;
}

float RecordingSurface::columns_to_lines(float columns) const {
    return float(columns * cell_width() / line_height());
}

float RecordingSurface::lines_to_columns(float lines) const {
    return float(lines * line_height() / cell_width());
}

float RecordingSurface::CurrentX() const { return float(x_pt_ / cell_width()); }
float RecordingSurface::CurrentY() const { return float(y_pt_ / line_height()); }
void RecordingSurface::set_CurrentX(float x) { x_pt_ = x * cell_width(); }
void RecordingSurface::set_CurrentY(float y) { y_pt_ = y * line_height(); }

void RecordingSurface::set_font_size(float points) {
    if (points > 0) size_ = points;
}

float RecordingSurface::TextWidth(const QString& text) const {
    // The widest line counts, as the Printer measures a text with breaks.
    qsizetype widest = 0;
    for (const QString& part : text.split(QLatin1Char('\n')))
        widest = std::max(widest, QString(part).remove(QLatin1Char('\r')).size());
    return float(widest);
}

float RecordingSurface::TextHeight(const QString& text) const {
    return float((text.count(QLatin1Char('\n')) + 1) * (1.2 * size_) / line_height());
}

PrintRecord RecordingSurface::make(PrintRecord::Kind kind) const {
    PrintRecord r;
    r.kind = kind;
    r.x = CurrentX();
    r.y = CurrentY();
    r.px = x_pt_;
    r.py = y_pt_;
    r.font = font_;
    r.size = size_;
    r.bold = bold_;
    r.colour = colour_;
    r.page = page_;
    r.document = document_;
    return r;
}

void RecordingSurface::print_text(const QString& text, bool stay_on_line) {
    PrintRecord r = make(PrintRecord::Kind::Text);
    r.text = text;
    records_.append(r);
    if (!text.isEmpty()) ink();
    if (stay_on_line) {
        x_pt_ += TextWidth(text) * cell_width();
    } else {
        x_pt_ = 0;
        y_pt_ += (text.count(QLatin1Char('\n')) + 1) * line_height();
    }
}

void RecordingSurface::print_rotated(const QString& text, float x, float y) {
    PrintRecord r = make(PrintRecord::Kind::Rotated);
    r.text = text;
    r.x = x;
    r.y = y;
    r.px = x * cell_width();
    r.py = y * line_height();
    records_.append(r);
    if (!text.isEmpty()) ink();
}

void RecordingSurface::line(float x1, float y1, float x2, float y2) {
    PrintRecord r = make(PrintRecord::Kind::Line);
    r.x = x1, r.y = y1, r.x2 = x2, r.y2 = y2;
    r.px = x1 * cell_width(), r.py = y1 * line_height();
    r.px2 = x2 * cell_width(), r.py2 = y2 * line_height();
    records_.append(r);
    x_pt_ = r.px2;
    y_pt_ = r.py2;
    ink();
}

void RecordingSurface::box(float x1, float y1, float x2, float y2, int fill_bgr) {
    PrintRecord r = make(PrintRecord::Kind::Box);
    r.x = x1, r.y = y1, r.x2 = x2, r.y2 = y2;
    r.px = x1 * cell_width(), r.py = y1 * line_height();
    r.px2 = x2 * cell_width(), r.py2 = y2 * line_height();
    r.fill = fill_bgr;
    records_.append(r);
    x_pt_ = r.px2;
    y_pt_ = r.py2;
    ink();
}

bool RecordingSurface::paint_picture(const QString& path, float x, float y, float width, float height) {
    if (!pictures_.contains(path)) return false;
    PrintRecord r = make(PrintRecord::Kind::Picture);
    r.text = path;
    r.x = x, r.y = y, r.x2 = x + width, r.y2 = y + height;
    r.px = x * cell_width(), r.py = y * line_height();
    r.px2 = r.x2 * cell_width(), r.py2 = r.y2 * line_height();
    records_.append(r);
    ink();
    return true;
}

void RecordingSurface::NewPage() {
    records_.append(make(PrintRecord::Kind::NewPage));
    ++page_;
    x_pt_ = y_pt_ = 0;
    ink_ = false;
}

void RecordingSurface::EndDoc() {
    records_.append(make(PrintRecord::Kind::EndDoc));
    // A document that never got ink sends no sheet.
    if (page_ > 1 || ink_) pages_ended_ += page_;
    ++document_;
    page_ = 1;
    x_pt_ = y_pt_ = 0;
    ink_ = false;
}

void RecordingSurface::KillDoc() {
    records_.append(make(PrintRecord::Kind::KillDoc));
    ++document_;
    page_ = 1;
    x_pt_ = y_pt_ = 0;
    ink_ = false;
}

QList<PrintRecord> RecordingSurface::records_of(PrintRecord::Kind kind) const {
    QList<PrintRecord> out;
    for (const auto& r : records_)
        if (r.kind == kind) out.append(r);
    return out;
}

QStringList RecordingSurface::texts() const {
    QStringList out;
    for (const auto& r : records_)
        if (r.kind == PrintRecord::Kind::Text || r.kind == PrintRecord::Kind::Rotated) out << r.text;
    return out;
}

const PrintRecord* RecordingSurface::find_text(const QString& text) const {
    for (const auto& r : records_)
        if ((r.kind == PrintRecord::Kind::Text || r.kind == PrintRecord::Kind::Rotated) && r.text == text)
            return &r;
    return nullptr;
}

}  // namespace veldo
