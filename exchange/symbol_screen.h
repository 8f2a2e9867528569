#pragma once
// simbole_druk: the series list, the distribution of the chosen series in a
// grid, and its print. Every message of the screen ends it: the menu returns.

#include <QList>
#include <QString>
#include <QStringList>

#include "shell/form_header.h"
#include "util/text_grid.h"

namespace veldo {

class PrintService;
struct ShellContext;

class SymbolPrintScreen {
public:
    SymbolPrintScreen(ShellContext& ctx, PrintService& printer);

    // The audit record, the header and the series list. False when the
    // screen went again.
    bool load();
    QString caption() const;              // "SIMBOOLVERSPREIDING DRUK" / "SYMBOL DISTRIBUTION PRINT"
    QStringList button_captions() const;  // "DRUK"/"PRINT", "EXIT"
    QString school() const;
    QString data_folder() const;
    const FormHeader& header() const { return header_; }
    const QList<QStringList>& series() const { return series_; }
    // vak_grid's height in twips: 300 a row, at most 5295.
    int series_list_height() const;
    QString vak_ops() const { return vak_ops_; }

    // A click or Enter on a series: the distribution is built anew. False
    // when a message ended the screen.
    bool choose_series(int row);
    const TextGrid& grid() const { return grid_; }
    bool has_distribution() const { return series_number_ > 0; }

    // pboek_druk_print: the output choice, then the grid on landscape pages.
    // False when nothing was printed.
    bool pboek_druk_print();
    void pboek_druk_exit();

private:
    void leave();

    ShellContext& ctx_;
    PrintService& printer_;
    FormHeader header_;
    QList<QStringList> series_;
    QString vak_ops_;
    TextGrid grid_;
    int series_number_ = 0;
};

}  // namespace veldo
