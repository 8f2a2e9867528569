#pragma once
// The desktop's print service: the output dialog (kies_drukker) chooses, and
// the pages go to the chosen printer through Qt's print support (CUPS on
// this platform), or to the workbook or HTML file the dialog names.

#include "reports/print_service.h"

class QWidget;

namespace veldo {

struct RunState;

class DesktopPrinter : public PrintService {
public:
    DesktopPrinter(RunState& run, QWidget* parent) : run_(run), parent_(parent) {}
    bool print(const std::function<bool(ReportRun&)>& body) override;

private:
    RunState& run_;
    QWidget* parent_;
    // The printer chosen last: the next print offers it again.
    QString printer_name_;
};

}  // namespace veldo
