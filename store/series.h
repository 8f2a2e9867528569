#pragma once
// The mark series table `E_C` (`exp_mrk_control.txt`, 44-byte records): the
// list of grade, subject and class combinations the administration program
// prepared. Record N is series N everywhere; nothing here writes it.

#include <QList>
#include <QString>
#include <QStringList>

#include "store/record_layout.h"

namespace veldo {

class RecordStore;
class TextGrid;
struct RunState;

const RecordLayout& series_record_layout();

// The nine `vak_grid` columns of every record, untrimmed: grade, subject,
// total (100 for a grade above 9), class, second class part, group, number,
// code, date. Opens the table in the data folder and closes it again.
QList<QStringList> series_rows(RecordStore& store);
// Fills a grid (no heading row, nine columns) with series_rows.
void fill_series_grid(RecordStore& store, TextGrid& grid);

// The title of a series on prints: grade, subject, class (or else group)
// and the second class part, as "8 AFR 8A".
QString series_title(const QStringList& row);

// The key that names a series' setup file, from a grid row.
QString series_key(const QStringList& row);

// The list of `punte_druk`: item text and the stored total, per record.
struct MarkListItem {
    QString text;
    QString total;
};
QList<MarkListItem> mark_list_items(RecordStore& store);

// The classes or groups of the series, in record order, and the same joined
// by ", ".
struct ClassList {
    QStringList items;
    QString joined;
};
ClassList class_list(RecordStore& store);

// True when the data folder holds `Exp_Mrk_control.txt` or the older
// `Exp_Control.dbf`.
bool has_marks_files(const QString& data_folder);

}  // namespace veldo
