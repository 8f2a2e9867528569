#include "gui/desktop_printer.h"

#include <QPrinter>

#include "gui/output_dialog.h"
#include "reports/qt_print_surface.h"
#include "reports/worksheet.h"

namespace veldo {

bool DesktopPrinter::print(const std::function<bool(ReportRun&)>& body) {
    QPrinter printer(QPrinter::HighResolution);
    PrintJob job;
    job.printer_name = printer_name_;
    install_worksheet_hooks(job, run_);
    QtPrintSurface surface(printer);
    const OutputDialog ask = desktop_output_dialog(run_, parent_);
    ReportRun r{surface, job, run_, [&](PrintJob& j) {
                    ask(j);
                    // The pages go to the printer chosen in the dialog; nothing
                    // has been drawn yet, so the printer may still change.
                    if (!j.print_chosen) return;
                    if (!j.printer_name.isEmpty()) {
                        printer.setPrinterName(j.printer_name);
                        printer_name_ = j.printer_name;
                    }
                    // The job's name in the printer's queue.
                    printer.setDocName(j.print_job_title.isEmpty() ? j.export_stem : j.print_job_title);
                }};
    return body(r);
}

}  // namespace veldo
