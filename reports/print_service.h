#pragma once
// Where a screen's print goes. A screen hands over the body of its print; the
// desktop program runs it on the printer or file the user picks in the
// output dialog, the tests on a PDF file of their own.

#include <functional>

#include "reports/report_run.h"

namespace veldo {

class PrintService {
public:
    virtual ~PrintService() = default;
    // Runs `body` on a fresh job; returns what `body` returns (false when
    // the user cancelled the output choice).
    virtual bool print(const std::function<bool(ReportRun&)>& body) = 0;
};

}  // namespace veldo
