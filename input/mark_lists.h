#pragma once
// punte_druk: the mark list of a series without opening it for input. The
// marks of `punte<K>.dbf` joined with the effort keys and formative marks
// of `obe_p<K>.dbf`, in alphabetical order or in order of rank (ties by
// name). The print total enters only into the percentage at the foot.

#include <QList>
#include <QString>
#include <QStringList>

#include "store/series.h"

namespace veldo {

class PrintService;
class TextGrid;
struct ReportRun;
struct ShellContext;

class MarkLists {
public:
    MarkLists(ShellContext& ctx, PrintService& printer);

    // The list of series and the captions.
    void load();
    QString caption() const;  // "VELDO-TALLY : <school>"
    QString data_folder() const;
    QString vak_ops() const { return vak_ops_; }  // "DRUK PUNTELYS(TE)", then the chosen series
    QStringList captions() const;                 // " DRUKTOTAAL", " DRUKMODUS"
    QStringList order_captions() const;           // " ALFABETIES", " RANGORDE" (no English for the second)
    QStringList button_captions() const;          // "DRUK", "EXIT"
    const QList<MarkListItem>& series() const { return items_; }

    // A double click or Enter on a series: the print total, the tables, the
    // print enabled. False for a row that isn't there.
    bool select_series(int row);
    int chosen_series() const { return series_row_ + 1; }
    QString print_total() const { return druk_tot_; }
    void set_print_total(const QString& text) { druk_tot_ = text; }
    bool rank_order() const { return rank_; }
    void set_rank_order(bool rank) { rank_ = rank; }
    bool print_enabled() const { return series_row_ >= 0; }

    // pnt_grid: the heading row, then one row per learner: number, T.NR,
    // name, mark as stored, running total, effort key, formative marks.
    // Gives the sum and the count of the marks; false (message shown) when
    // the marks table can't be read.
    bool build_list(TextGrid& grid, double* sum, int* count);
    // punte_druk_print: the output dialog, the list, the average lines.
    bool punte_druk_print();
    void punte_druk_exit();

private:
    ShellContext& ctx_;
    PrintService& printer_;
    QList<MarkListItem> items_;
    QList<QStringList> rows_;
    QString vak_ops_;
    QString druk_tot_;
    int series_row_ = -1;
    bool rank_ = false;
};

}  // namespace veldo
