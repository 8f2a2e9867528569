#pragma once
// Field layouts of the dBASE tables in a data folder: the mark book template
// this program ships, and the tables the administration program prepares
// (class list, assessment table, symbol table) as the demo school writes
// them.

#include <QList>

#include "store/dbf_table.h"

namespace veldo {

constexpr int kMarkFieldCount = 40;
constexpr int kMarkBookFieldCount = 42;

// `mrk_book.org`: mb_t_nr, mb_name, then 40 mark fields of six characters.
QList<DbfField> mark_book_fields();
// `punte<N>.dbf`: EF_T_NR, EF_NAME, EF_PUNT, EF_P_S.
QList<DbfField> class_list_fields();
// `obe_p<N>.dbf`: EO_T_NR, EO_NAME, EO_PUNT, EO_P_S, EO_FE_1 to EO_FE_4.
QList<DbfField> assessment_fields();
// `L<subject>_P_S.dbf`, the effort keys of a subject: the key, its text.
QList<DbfField> effort_key_fields();
// `pi2_dta.dbf`: PI2_SIMBL, PI2_GRNS_B, PI2_GRNS_O.
QList<DbfField> symbol_table_fields();

}  // namespace veldo
