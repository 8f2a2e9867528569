#include "reports/qt_print_surface.h"

#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QImage>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QPrinter>

#include <algorithm>

namespace veldo {

namespace {

constexpr int kPdfResolution = 1200;
// The family's printers counted DrawWidth in pixels of about 300 per inch.
constexpr double kDrawWidthDpi = 300.0;

bool has_family(const QString& name) {
    for (const QString& f : QFontDatabase::families())
        if (f.compare(name, Qt::CaseInsensitive) == 0) return true;
    return false;
}

QString first_present(std::initializer_list<const char*> names, const QString& last_resort) {
    for (const char* n : names)
        if (has_family(QString::fromLatin1(n))) return QString::fromLatin1(n);
    return last_resort;
}

}  // namespace

QString QtPrintSurface::resolve_family(const QString& name) {
    if (has_family(name)) return name;
    const QString lower = name.trimmed().toLower();
    if (lower == QLatin1String("lucida console") || lower == QLatin1String("courier new") ||
        lower == QLatin1String("courier"))
        return first_present({"DejaVu Sans Mono", "Liberation Mono"},
                             QFontDatabase::systemFont(QFontDatabase::FixedFont).family());
    if (lower == QLatin1String("arial") || lower == QLatin1String("ms sans serif"))
        return first_present({"Liberation Sans", "DejaVu Sans"},
                             QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
    return name;
}

QtPrintSurface::QtPrintSurface(const QString& pdf_path) : pdf_(std::make_unique<QPdfWriter>(pdf_path)), pdf_path_(pdf_path) {
    pdf_->setResolution(kPdfResolution);
    pdf_->setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                    QMarginsF(36, 36, 36, 36), QPageLayout::Point));
    pdf_->setCreator(QStringLiteral("VELDO-TALLY"));
    device_ = pdf_.get();
    apply_font();
}

QtPrintSurface::QtPrintSurface(QPrinter& printer) : printer_(&printer), device_(&printer) {
    apply_font();
}

QtPrintSurface::~QtPrintSurface() {
    if (started_) painter_.end();
}

void QtPrintSurface::apply_font() {
    font_ = QFont(resolve_family(font_name_));
    font_.setPointSizeF(size_);
    cell_font_ = QFont(resolve_family(QStringLiteral("Lucida Console")));
    cell_font_.setStyleHint(QFont::TypeWriter);
    cell_font_.setPointSizeF(size_);
    if (started_) painter_.setFont(font_);
}

double QtPrintSurface::cell_width() const {
    return QFontMetricsF(cell_font_, device_).averageCharWidth();
}

double QtPrintSurface::line_height() const {
    return QFontMetricsF(cell_font_, device_).lineSpacing() / zoom_;
}

double QtPrintSurface::printable_width() const {
    return device_->pageLayout().paintRectPixels(device_->logicalDpiX()).width();
}

double QtPrintSurface::printable_height() const {
    return device_->pageLayout().paintRectPixels(device_->logicalDpiX()).height();
}

float QtPrintSurface::ScaleWidth() const { return float(printable_width() / cell_width()); }
float QtPrintSurface::ScaleHeight() const { return float(printable_height() / line_height()); }

PageOrientation QtPrintSurface::orientation() const {
    return device_->pageLayout().orientation() == QPageLayout::Landscape ? PageOrientation::Landscape
                                                                         : PageOrientation::Portrait;
}

void QtPrintSurface::set_orientation(PageOrientation o) {
    // A sheet with ink keeps its shape; on a started but empty sheet the new
    // shape holds from the next page on.
    if (ink_) return;
    device_->setPageOrientation(o == PageOrientation::Landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
}

QString QtPrintSurface::DeviceName() const {
    return printer_ ? printer_->printerName() : QStringLiteral("PDF");
}

void QtPrintSurface::set_character_scale(float vertical_zoom) { zoom_ = vertical_zoom > 0 ? vertical_zoom : 1.0f; }

float QtPrintSurface::columns_to_lines(float columns) const { return float(columns * cell_width() / line_height()); }
float QtPrintSurface::lines_to_columns(float lines) const { return float(lines * line_height() / cell_width()); }

float QtPrintSurface::CurrentX() const { return float(x_ / cell_width()); }
float QtPrintSurface::CurrentY() const { return float(y_ / line_height()); }
void QtPrintSurface::set_CurrentX(float x) { x_ = x * cell_width(); }
void QtPrintSurface::set_CurrentY(float y) { y_ = y * line_height(); }

void QtPrintSurface::set_font_name(const QString& name) {
    const bool b = font_.bold(), i = font_.italic(), u = font_.underline();
    font_name_ = name;
    apply_font();
    font_.setBold(b);
    font_.setItalic(i);
    font_.setUnderline(u);
    if (started_) painter_.setFont(font_);
}

void QtPrintSurface::set_font_size(float points) {
    if (points <= 0) return;
    size_ = points;
    font_.setPointSizeF(points);
    cell_font_.setPointSizeF(points);
    if (started_) painter_.setFont(font_);
}

void QtPrintSurface::set_bold(bool on) {
    font_.setBold(on);
    if (started_) painter_.setFont(font_);
}

void QtPrintSurface::set_italic(bool on) {
    font_.setItalic(on);
    if (started_) painter_.setFont(font_);
}

void QtPrintSurface::set_underline(bool on) {
    font_.setUnderline(on);
    if (started_) painter_.setFont(font_);
}

float QtPrintSurface::TextWidth(const QString& text) const {
    const QFontMetricsF fm(font_, device_);
    double widest = 0;
    for (const QString& part : text.split(QLatin1Char('\n')))
        widest = std::max(widest, fm.horizontalAdvance(QString(part).remove(QLatin1Char('\r'))));
    return float(widest / cell_width());
}

float QtPrintSurface::TextHeight(const QString& text) const {
    const QFontMetricsF fm(font_, device_);
    return float((text.count(QLatin1Char('\n')) + 1) * fm.lineSpacing() / line_height());
}

QColor QtPrintSurface::colour_of(int bgr) const {
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

QPen QtPrintSurface::pen() const {
    QPen p(colour_of(colour_));
    p.setWidthF(std::max(1, draw_width_) * device_->logicalDpiX() / kDrawWidthDpi);
    return p;
}

bool QtPrintSurface::ensure_started() {
    if (started_) return true;
    started_ = painter_.begin(device_);
    if (started_) {
        painter_.setFont(font_);
        painter_.setRenderHint(QPainter::Antialiasing, false);
    }
    return started_;
}

void QtPrintSurface::print_text(const QString& text, bool stay_on_line) {
    if (!text.isEmpty() && ensure_started()) {
        painter_.setFont(font_);
        painter_.setPen(colour_of(colour_));
        const QFontMetricsF fm(font_, device_);
        double y = y_;
        for (const QString& part : text.split(QLatin1Char('\n'))) {
            painter_.drawText(QPointF(x_, y + fm.ascent()), QString(part).remove(QLatin1Char('\r')));
            y += fm.lineSpacing();
        }
        ink_ = true;
    }
    if (stay_on_line) {
        x_ += TextWidth(text) * cell_width();
    } else {
        x_ = 0;
        y_ += (text.count(QLatin1Char('\n')) + 1) * line_height();
    }
}

void QtPrintSurface::print_rotated(const QString& text, float x, float y) {
    if (text.isEmpty() || !ensure_started()) return;
    const QFontMetricsF fm(font_, device_);
    painter_.save();
    painter_.setFont(font_);
    painter_.setPen(colour_of(colour_));
    // Reading upwards: the glyphs stand between x and x + ascent.
    painter_.translate(x * cell_width() + fm.ascent(), y * line_height());
    painter_.rotate(-90);
    painter_.drawText(QPointF(0, 0), text);
    painter_.restore();
    ink_ = true;
}

void QtPrintSurface::line(float x1, float y1, float x2, float y2) {
    if (!ensure_started()) return;
    painter_.setPen(pen());
    const QPointF a(x1 * cell_width(), y1 * line_height()), b(x2 * cell_width(), y2 * line_height());
    painter_.drawLine(a, b);
    x_ = b.x();
    y_ = b.y();
    ink_ = true;
}

void QtPrintSurface::box(float x1, float y1, float x2, float y2, int fill_bgr) {
    if (!ensure_started()) return;
    const QRectF r(QPointF(x1 * cell_width(), y1 * line_height()), QPointF(x2 * cell_width(), y2 * line_height()));
    if (fill_bgr != -1) painter_.fillRect(r.normalized(), colour_of(fill_bgr));
    painter_.setPen(pen());
    painter_.setBrush(Qt::NoBrush);
    painter_.drawRect(r.normalized());
    x_ = r.right();
    y_ = r.bottom();
    ink_ = true;
}

bool QtPrintSurface::paint_picture(const QString& path, float x, float y, float width, float height) {
    const QImage image(path);
    if (image.isNull() || !ensure_started()) return false;
    painter_.drawImage(QRectF(x * cell_width(), y * line_height(), width * cell_width(), height * line_height()), image);
    ink_ = true;
    return true;
}

void QtPrintSurface::NewPage() {
    if (!ensure_started()) return;
    device_->newPage();
    ++page_;
    x_ = y_ = 0;
    ink_ = false;
}

void QtPrintSurface::EndDoc() {
    // An empty job still makes its PDF file, but sends no blank sheet to a
    // printer.
    if (pdf_) ensure_started();
    if (started_) painter_.end();
    started_ = false;
    page_ = 1;
    x_ = y_ = 0;
    ink_ = false;
}

void QtPrintSurface::KillDoc() {
    if (started_) {
        if (printer_) printer_->abort();
        painter_.end();
        started_ = false;
    }
    if (pdf_ && QFile::exists(pdf_path_)) QFile::remove(pdf_path_);
    page_ = 1;
    x_ = y_ = 0;
    ink_ = false;
}

}  // namespace veldo
