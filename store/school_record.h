#pragma once
// The school record (`Skl_Dta_random.txt`, one record) and the symbol
// record (`pi2_random.txt`). Of the school record this program reads only the
// school's name and province; the layout is declared whole so that the
// converter from `skl_dta.dbf` keeps every field.

#include "store/record_layout.h"

namespace veldo {

// Records of the single-record school additions, held whole.
constexpr int kSchoolAdditionLength = 512;

const RecordLayout& school_record_layout();
const RecordLayout& symbol_record_layout();      // pi2_simbl, pi2_grns_b, pi2_grns_o
const RecordLayout& school_addition_layout();    // one opaque text field

}  // namespace veldo
