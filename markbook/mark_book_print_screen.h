#pragma once
// pboek_druk: the list of series and the print of a whole mark book. Entry 3
// of the mark book menu, and the print button of the input screen, which
// hands over its book through RunState::print_series_row.

#include <QString>
#include <QStringList>
#include <memory>

#include "shell/form_header.h"

namespace veldo {

class DbfTable;
class PrintService;
struct ShellContext;

class MarkBookPrintScreen {
public:
    MarkBookPrintScreen(ShellContext& ctx, PrintService& printer);
    ~MarkBookPrintScreen();

    // The header, the audit record and the list; with a book handed over,
    // that book is chosen at once. False when the screen went again.
    bool load();
    QString caption() const;  // "PUNTEBOEK DRUK" / "MARK BOOK PRINT"
    QStringList button_captions() const;  // "DRUK"/"PRINT", "EXIT"
    const FormHeader& header() const { return header_; }
    const QList<QStringList>& series() const { return series_; }
    QString vak_ops() const { return vak_ops_; }

    // A click (or Enter) on a row of the list. False when the book is
    // missing or too old: the message has been shown and the screen went.
    bool open_print_series(int row);
    // Prints the chosen book. False when nothing was printed.
    bool pboek_druk_print();
    void pboek_druk_exit();

private:
    void leave();

    ShellContext& ctx_;
    PrintService& printer_;
    FormHeader header_;
    QList<QStringList> series_;
    int row_ = -1;
    QString vak_ops_;
    std::unique_ptr<DbfTable> table_;
};

}  // namespace veldo
