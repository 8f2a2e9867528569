#include "reports/report_run.h"

#include "reports/grid_report.h"
#include "util/text_grid.h"

namespace veldo {

void print_grid_pages(ReportRun& r, TextGrid& grid, QString title, const QString& paper,
                      const GridReportOptions& given, bool setup_twin, const PageFoot& foot) {
    GridReportOptions options = given;
    if (!options.measured) options.measured = std::make_shared<MeasuredColumns>();
    PageHeadOptions head;
    head.paper = paper;
    for (;;) {
        QString subtitle;
        QString page_title = title;
        page_head(r.surface, r.job, r.run, page_title, subtitle, head);
        const GridReportResult result = setup_twin ? print_setup_report(r.surface, r.job, grid, options)
                                                   : print_grid_report(r.surface, r.job, grid, options);
        if (report_done(result)) return;
        // The page foot, then a new page.
        r.surface.set_font_name("Lucida Console");
        r.surface.set_font_size(foot.font_size);
        r.surface.set_bold(false);
        r.surface.print_text(QString());
        r.surface.set_CurrentX(float(r.job.line_width - 8));
        r.surface.print_text(QString::number(r.surface.Page() + (foot.next_page_number ? 1 : 0)) + ".../");
        r.surface.NewPage();
        r.job.new_print_job = true;
    }
}

}  // namespace veldo
