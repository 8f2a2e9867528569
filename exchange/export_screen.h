#pragma once
// pboek_uitvoer: a double click on a series lists its tasks, a double click
// on a task sends its marks, converted to the series' total, to the tables
// the administration program reads back.

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

#include "shell/form_header.h"
#include "util/text_grid.h"

namespace veldo {

struct ShellContext;

class MarkBookExport {
public:
    explicit MarkBookExport(ShellContext& ctx);

    // Refused, with the system's message and the menu back, when the data
    // folder holds no series table. False when the screen went again.
    bool load();
    QString caption() const;  // "PUNTEBOEK UITVOER" / "MARK BOOK EXPORT"
    QString exit_caption() const { return QStringLiteral("EXIT"); }
    QString school() const;
    QString data_folder() const;  // dir_disp; the export's folder once it ran
    const FormHeader& header() const { return header_; }
    const QList<QStringList>& series() const { return series_; }
    QString vak_ops() const { return vak_ops_; }

    // vak_grid double click or Enter: the series' task list; vak_grid goes.
    void choose_series(int row);
    bool series_list_shown() const { return series_list_shown_; }
    // msflexgrid2: the heading row and 40 tasks; column 2 of a task with a
    // total above 0 in 0xC0FFFF, of the others in white.
    const TextGrid& tasks() const { return tasks_; }
    bool task_list_shown() const { return task_list_shown_; }

    // msflexgrid2 double click on `row` (0 = the heading): the folder, the
    // question, the export with its progress bar, the closing message.
    // True when the marks went over.
    bool export_task_row(int row);

    // ProgressBar1 as the export moves it.
    bool progress_visible() const { return progress_visible_; }
    int progress_value() const { return progress_value_; }
    int progress_max() const { return progress_max_; }
    std::function<void()> on_progress;

    void pboek_uitvoer_exit();

private:
    void leave();

    ShellContext& ctx_;
    FormHeader header_;
    QList<QStringList> series_;
    QString vak_ops_;
    TextGrid tasks_;
    int series_row_ = -1;
    bool series_list_shown_ = true;
    bool task_list_shown_ = false;
    bool progress_visible_ = false;
    int progress_value_ = 0;
    int progress_max_ = 0;
};

}  // namespace veldo
