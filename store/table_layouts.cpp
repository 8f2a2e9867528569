#include "store/table_layouts.h"

namespace veldo {

QList<DbfField> mark_book_fields() {
    QList<DbfField> fields{{"MB_T_NR", DbfType::Numeric, 10, 0}, {"MB_NAME", DbfType::Character, 40, 0}};
    for (int r = 1; r <= kMarkFieldCount; ++r)
        fields.append({QString("MB_R%1").arg(r, 2, 10, QChar('0')), DbfType::Character, 6, 0});
    return fields;
}

QList<DbfField> class_list_fields() {
    return {{"EF_T_NR", DbfType::Character, 10, 0},
            {"EF_NAME", DbfType::Character, 40, 0},
            {"EF_PUNT", DbfType::Character, 6, 0},
            {"EF_P_S", DbfType::Character, 2, 0}};
}

QList<DbfField> assessment_fields() {
    return {{"EO_T_NR", DbfType::Numeric, 10, 0}, {"EO_NAME", DbfType::Character, 40, 0},
            {"EO_PUNT", DbfType::Character, 6, 0}, {"EO_P_S", DbfType::Character, 2, 0},
            {"EO_FE_1", DbfType::Character, 4, 0}, {"EO_FE_2", DbfType::Character, 4, 0},
            {"EO_FE_3", DbfType::Character, 4, 0}, {"EO_FE_4", DbfType::Character, 4, 0}};
}

QList<DbfField> effort_key_fields() {
    return {{"PS_SLEUTEL", DbfType::Character, 2, 0}, {"PS_BESKRYF", DbfType::Character, 30, 0}};
}

QList<DbfField> symbol_table_fields() {
    return {{"PI2_SIMBL", DbfType::Character, 2, 0},
            {"PI2_GRNS_B", DbfType::Numeric, 6, 1},
            {"PI2_GRNS_O", DbfType::Numeric, 6, 1}};
}

}  // namespace veldo
