#pragma once
// What a screen needs to print: the surface, the job's state, the run state
// and the output dialog to ask.

#include "reports/grid_report.h"
#include "reports/page_engine.h"

namespace veldo {

struct RunState;

struct ReportRun {
    PrintSurface& surface;
    PrintJob& job;
    RunState& run;
    OutputDialog ask;
};

// The foot of a full page: "<n>.../" at the right, in "Lucida Console" of
// `font_size`, n the next page's number or this one's.
struct PageFoot {
    float font_size = 8;
    bool next_page_number = true;
};

// The loop every grid print shares: a head at the top of each page, the
// grid's rows, the page foot when a page is full, until the grid is done.
// `setup_twin` uses the setup report, which honours "<PAGE>".
void print_grid_pages(ReportRun& r, TextGrid& grid, QString title, const QString& paper,
                      const GridReportOptions& options, bool setup_twin = false, const PageFoot& foot = {});

}  // namespace veldo
