#include "markbook/column_lists.h"

#include "util/legacy_number.h"

namespace veldo {

ColumnLists ColumnLists::from_setup(const MarkBookSetup& setup) {
    ColumnLists lists;
    const QString fillers[5] = {"", "", "False", "0", ""};
    for (int l = 0; l < 5; ++l) lists.rks[l] = {fillers[l], fillers[l]};
    for (int r = 0; r < kSetupRows; ++r) {
        const SetupRow& row = setup.rows[r];
        const QString target = row.target.trimmed().isEmpty() ? QStringLiteral("99")
                                                               : plain_number_text(Val(row.target) - 1);
        lists.rks[0] << row.name;
        lists.rks[1] << row.total;
        lists.rks[2] << (setup.is_total_row(r + 1) ? "True" : "False");
        lists.rks[3] << target;
        lists.rks[4] << row.out_of;
        lists.tot_rks << target;
        if (row.is_used()) lists.kopieer_reeks.append({row.name.trimmed(), r + 2});
    }
    return lists;
}

QString ColumnLists::at(int list, int k) const {
    if (list < 0 || list > 4 || k < 0 || k >= rks[list].size()) return QString();
    return rks[list][k];
}

double ColumnLists::total(int f) const { return Val(at(1, f)); }
double ColumnLists::out_of(int f) const { return Val(at(4, f)); }
// An index is a whole number; a fraction rounds as an index conversion does.
int ColumnLists::target(int f) const { return int(Round(Val(at(3, f)))) + 2; }

}  // namespace veldo
