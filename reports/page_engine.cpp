#include "reports/page_engine.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

#include "store/run_state.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/text_helpers.h"

namespace veldo {

namespace {

const QString kLucida = QStringLiteral("Lucida Console");

qint16 rounded(float value) { return qint16(std::lround(value)); }

// The three columns of the head block. Left at tab position 3 (x = 2),
// centre on the page, right ending 2 columns before the edge; a right-hand
// part ends its line.
void head_left(PrintSurface& s, const QString& text) {
    s.set_CurrentX(2);
    s.print_text(text.trimmed(), true);
}

void head_centre(PrintSurface& s, const QString& text) {
    const QString t = text.trimmed();
    if (t.isEmpty()) return;
    s.set_CurrentX((s.ScaleWidth() - s.TextWidth(t)) / 2);
    s.print_text(t, true);
}

void head_right(PrintSurface& s, const QString& text) {
    const QString t = text.trimmed();
    if (t.isEmpty()) {  // the line still ends
        s.set_CurrentX(0);
        s.set_CurrentY(s.CurrentY() + 1);
        return;
    }
    s.set_CurrentX(s.ScaleWidth() - 2 - s.TextWidth(t));
    s.print_text(t);
}

QString school_line(const RunState& run) {
    QString school = run.school_name.trimmed();
    if (!run.school_name_2.trimmed().isEmpty())
        school += QStringLiteral(" (") + run.school_name_2.trimmed() + QLatin1Char(')');
    return school;
}

// os_build_text shows only where it starts with this year.
QString build_of_this_year(const RunState& run) {
    const QString build = run.os_build_text.trimmed();
    if (build.isEmpty()) return {};
    if (Val(build.left(4)) != Val(run.current_year)) return {};
    return build;
}

QString page_text(const RunState& run, int page) {
    return run.tr(QStringLiteral("BLADSY : "), QStringLiteral("PAGE : ")) + QString::number(page);
}

}  // namespace

bool is_portrait(const QString& paper) { return paper.isEmpty() || paper == kPortrait; }

void PrintProgress::show(const RunState& run, const QString& job_title, const QString& device, int page) {
    if (!loaded_) {
        loaded_ = true;
        ++starts_;  // the animation plays from the first showing on
    }
    visible_ = true;
    heading_ = job_title.trimmed().isEmpty()
                   ? run.tr(QStringLiteral(" BESIG MET DRUKWERK ... "), QStringLiteral(" BUSY WITH PRINTING ... "))
                   : job_title;
    device_ = device;
    page_ = page;
    if (pages_.isEmpty() || pages_.last() != page) pages_.append(page);
    if (changed) changed(*this);
}

qint16 read_print_colour_file(const QString& path) {
    QFile f(path);
    if (path.isEmpty() || !f.open(QIODevice::ReadOnly)) return 0;
    QString value = QString::fromLatin1(f.readLine()).trimmed();
    value.remove(QLatin1Char('"'));
    const QString upper = value.toUpper();
    if (upper == QLatin1String("#TRUE#") || upper == QLatin1String("TRUE")) return -1;
    if (upper == QLatin1String("#FALSE#") || upper == QLatin1String("FALSE")) return 0;
    const double v = Val(value);
    if (!(v >= -32768.0 && v <= 32767.0)) return 0;
    return qint16(std::lround(v));
}

qint16 read_print_colour(const RunState& run) {
    const QString where = QFileInfo(run.in_folder(run.shared_settings_folder, QStringLiteral("kleur_drukker.txt"))).path();
    return read_print_colour_file(find_ignoring_case(where, QStringLiteral("kleur_drukker.txt")));
}

void reset_print_font(PrintSurface& surface) {
    surface.set_font_name(kLucida);
    surface.set_font_size(10);
    surface.set_fore_colour(0);
    surface.set_bold(false);
}

bool ask_output_target(PrintSurface& surface, PrintJob& job, const RunState& run, const QString& title,
                       const OutputDialog& show_dialog) {
    if (surface.page_has_ink() || surface.Page() > 1) surface.EndDoc();
    job.print_job_title = title;
    job.output_to_excel = false;  // the dialog starts without a target
    if (show_dialog) show_dialog(job);
    if (job.print_chosen) {
        print_setup(surface, job, run);
        job.progress.clear_pages();
        job.new_print_job = true;
        return true;
    }
    if (job.output_to_excel) {
        surface.KillDoc();
        return true;
    }
    return false;
}

void print_setup(PrintSurface& surface, PrintJob& job, const RunState& run, const QString& paper, float zoom) {
    if (job.output_to_excel) return;
    job.progress.show(run, job.print_job_title, surface.DeviceName(), surface.Page());
    surface.set_character_scale(zoom);
    const bool portrait = is_portrait(paper);
    if (job.new_print_job)
        surface.set_orientation(portrait ? PageOrientation::Portrait : PageOrientation::Landscape);
    job.page_font_size = portrait ? 10 : 8;
    job.print_colour = read_print_colour(run);
    surface.set_font_name(kLucida);
    surface.set_font_size(job.page_font_size);
    // Measured at the job's font: the scale follows the font, and the font
    // left over from the last job (the banner's) says nothing of this one.
    job.paper_width = rounded(surface.ScaleWidth());
    job.line_width = job.line_width_left = rounded(surface.ScaleWidth());
    const float h = surface.ScaleHeight();
    job.head_rule_y = portrait ? h / 12 - 0.5f : h / 12 + 1;
    job.page_bottom = h - 1.25f;
    surface.set_draw_width(2);
    surface.set_underline(false);
    surface.set_bold(false);
    surface.set_italic(false);
    reset_print_font(surface);
}

SheetHead sheet_head_texts(const PrintSurface& surface, const PrintJob& job, const RunState& run,
                           const QString& title, const QString& subtitle) {
    SheetHead head;
    head.date = date_to_dotted(short_date_text(run.today)).toString();
    head.time = (job.fixed_time.isValid() ? job.fixed_time : QTime::currentTime()).toString(QStringLiteral("HH:mm:ss"));
    head.school = school_line(run);
    head.program = QString::fromLatin1(kProgramTitle);
    head.os_product = run.os_product_name.trimmed();
    head.page = page_text(run, surface.Page());
    head.title = title.trimmed();
    if (!subtitle.trimmed().isEmpty()) head.title += QStringLiteral(" [") + subtitle.trimmed() + QLatin1Char(']');
    head.build = build_of_this_year(run);
    return head;
}

std::optional<float> page_head(PrintSurface& surface, PrintJob& job, const RunState& run, QString& title,
                               QString& subtitle, const PageHeadOptions& options) {
    if (job.output_to_excel) {
        // The head goes to the cells of a new sheet; the body starts at row 6.
        if (job.worksheet.sheet_head) job.worksheet.sheet_head(sheet_head_texts(surface, job, run, title, subtitle));
        job.new_print_job = false;
        return 6.0f;
    }

    print_setup(surface, job, run, options.paper, options.zoom);
    const bool portrait = is_portrait(options.paper);
    surface.set_font_name(kLucida);
    surface.set_font_size(10);

    job.line_width = rounded(surface.ScaleWidth());
    const float height = surface.ScaleHeight();
    job.page_bottom = portrait ? height - 0.7f : height - 0.5f;
    job.head_rule_y = portrait ? height / 12 - 0.5f : height / 12 + 1;
    job.head_rule_line = rounded(job.head_rule_y);

    // A form calls this before every block of lines: only the top of a
    // page, the last lines of one, or a new job get a head.
    const float y = surface.CurrentY();
    if (!(y >= height - 5 || y == 0 || job.new_print_job)) {
        job.line_width = job.line_width_left = rounded(surface.ScaleWidth());
        return std::nullopt;
    }
    // The first head of a job lands on the empty sheet it starts with.
    if (y > 0 || !job.new_print_job) surface.NewPage();
    job.new_print_job = false;
    job.progress.show(run, job.print_job_title, surface.DeviceName(), surface.Page());

    if (!options.no_head) {
        surface.box(0.25f, 0.25f, job.line_width, job.page_bottom);
        surface.line(0.25f, job.head_rule_y, job.line_width, job.head_rule_y);

        const SheetHead head = sheet_head_texts(surface, job, run, QString(), QString());
        surface.set_CurrentX(0);
        surface.set_CurrentY(portrait ? 0.75f : 0.5f);
        head_left(surface, head.date);
        head_right(surface, head.program);
        head_left(surface, head.time);
        head_centre(surface, head.school);
        head_right(surface, head.os_product);

        const float title_line = surface.CurrentY();
        head_left(surface, head.page);
        if (!portrait && !subtitle.trimmed().isEmpty()) {
            title = title + QStringLiteral(" [") + subtitle.trimmed() + QLatin1Char(']');
            subtitle.clear();
        }
        if (options.large_title) {
            surface.set_font_size(12);
            surface.set_bold(true);
        }
        head_centre(surface, title);
        surface.set_bold(false);
        surface.set_font_size(job.page_font_size);
        if (!head.build.isEmpty()) {
            surface.set_font_size(10);
            head_right(surface, head.build);
            surface.set_font_size(job.page_font_size);
        }

        if (!subtitle.trimmed().isEmpty()) {
            surface.set_font_size(10);
            surface.set_bold(options.large_title);
            surface.set_CurrentY(title_line + (options.large_title ? 1.5f : 1.0f));
            head_centre(surface, subtitle);
            surface.set_font_size(job.page_font_size);
            surface.set_CurrentX(0);
            surface.set_CurrentY(surface.CurrentY() + 1);
            surface.set_bold(false);
        }
        // The body starts at line 6 whatever the head's height.
        surface.set_CurrentX(0);
        surface.set_CurrentY(6);
    }

    if (!job.logo_file.isEmpty() && QFile::exists(job.logo_file)) {
        const float x = surface.ScaleWidth() - 6;
        if (portrait)
            surface.paint_picture(job.logo_file, x, 2.75f, 4, 2);
        else
            surface.paint_picture(job.logo_file, x, 3, 3.5f, 1.5f);
    }

    const float result_y = surface.CurrentY();
    job.line_width = job.line_width_left = rounded(surface.ScaleWidth());
    return result_y;
}

void end_of_print(PrintSurface& surface, PrintJob& job, const RunState& run, bool with_banner, bool with_message) {
    if (job.output_to_excel) {
        if (job.worksheet.finish) job.worksheet.finish();
        job.output_to_excel = false;
        return;
    }

    surface.set_font_name(QStringLiteral("ARIAL"));
    surface.set_bold(false);
    surface.set_italic(false);
    surface.set_underline(false);
    surface.set_fore_colour(0);

    const float y = surface.CurrentY();
    if (y > 5 && with_banner) {
        surface.set_character_scale(1);
        // page_bottom was measured in lines of the head's size 10.
        surface.set_font_size(10);
        surface.set_CurrentX(2);
        surface.set_CurrentY(job.page_bottom - 0.5f);
        surface.set_font_size(8);
        surface.print_text(job.print_job_title, true);
        const QString banner = QStringLiteral("KESTRALIN (") + run.os_product_name + QLatin1Char(')');
        surface.set_CurrentX(surface.ScaleWidth() - surface.TextWidth(banner));
        surface.print_text(banner);
    } else if (with_message && !(y + 2 > surface.ScaleHeight() - 1.25f)) {
        surface.set_font_size(10);
        surface.set_CurrentX(2);
        surface.set_CurrentY(job.page_bottom - 0.5f);
        surface.set_font_size(6);
        surface.print_text(job.print_job_title + QStringLiteral(" KESTRALIN (") + run.os_build_text +
                           QStringLiteral("  ") + run.os_product_name +
                           QStringLiteral(") - Your COMPASS for School Management  (000) 555-0100"));
    }

    // The pages of the job, counted before EndDoc closes it.
    const int pages = surface.Page();
    surface.EndDoc();
    job.progress.hide();
    if (run.dialogs)
        run.dialogs->message(run.language_afrikaans
                                 ? QStringLiteral("DRUKWERK VOLTOOI (%1 bladsye)").arg(pages)
                                 : QStringLiteral("PRINTING COMPLETE (%1 pages)").arg(pages),
                             MsgIcon::Information);
}

}  // namespace veldo
