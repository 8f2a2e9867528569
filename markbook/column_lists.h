#pragma once
// The column lists of an open mark book, by field index of the marks table:
// position 0 and 1 stand for the learner's number and name, position k (2 to
// 41) for setup row k - 1.
//
//   list 0  the row's name
//   list 1  its total
//   list 2  "True" when some row feeds it, else "False"
//   list 3  its target as a 0-based row number, "99" when it has none
//   list 4  its out-of

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <array>

#include "markbook/setup_model.h"

namespace veldo {

// The field index that means "no target": 99 + 2.
constexpr int kNoTarget = 101;

struct ColumnLists {
    std::array<QStringList, 5> rks;   // 42 entries each
    QStringList tot_rks;              // list 3 of the 40 rows, without the fillers
    QList<QPair<QString, int>> kopieer_reeks;  // named rows: trimmed name, field index

    static ColumnLists from_setup(const MarkBookSetup& setup);

    // Reads past the end give the empty text.
    QString at(int list, int k) const;
    int entry_count() const { return int(rks[3].size()); }

    QString name(int f) const { return at(0, f); }
    double total(int f) const;     // T(f)
    double out_of(int f) const;    // O(f)
    int target(int f) const;       // G(f): list 3 plus 2
    bool is_total(int f) const { return at(2, f) == "True"; }
};

}  // namespace veldo
