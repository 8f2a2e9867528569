#pragma once
// A print service for tests: every print goes to a numbered PDF file, with
// the output choice answered "print" (or "cancel" when told so).

#include <QProcess>
#include <QStringList>

#include "reports/print_service.h"
#include "reports/qt_print_surface.h"

namespace veldo::testing {

// What one of poppler's tools prints for `pdf`; empty when it fails.
inline QString poppler(const QString& tool, const QString& pdf, const QStringList& options = {}) {
    QProcess p;
    p.start(tool, options + QStringList{pdf} + (tool == "pdftotext" ? QStringList{"-"} : QStringList()));
    if (!p.waitForFinished(30000) || p.exitCode() != 0) return {};
    return QString::fromUtf8(p.readAllStandardOutput());
}

// A PDF's text as pdftotext lays it out (with "-raw": in drawing order).
inline QString pdf_text(const QString& pdf, const QString& mode = "-layout") {
    return poppler("pdftotext", pdf, {mode});
}

class PdfPrinter : public PrintService {
public:
    PdfPrinter(RunState& run, QString folder) : run_(run), folder_(std::move(folder)) {}
    bool print(const std::function<bool(ReportRun&)>& body) override {
        const QString pdf = folder_ + "/print" + QString::number(files.size() + 1) + ".pdf";
        PrintJob job;
        bool ok = false;
        {
            QtPrintSurface surface(pdf);
            ReportRun r{surface, job, run_, [this](PrintJob& j) { j.print_chosen = !cancel; }};
            ok = body(r);
        }
        files << pdf;
        stems << job.export_stem;
        return ok;
    }
    bool cancel = false;
    QStringList files, stems;

private:
    RunState& run_;
    QString folder_;
};

}  // namespace veldo::testing
