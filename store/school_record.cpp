#include "store/school_record.h"

namespace veldo {

const RecordLayout& school_record_layout() {
    static const RecordLayout layout = [] {
        RecordLayout l;
        auto text = [&](const char* name, int width) { l.add_text(name, width); };
        text("SD_SKOOL", 50);
        text("SD_KRING", 30);
        text("SD_SNTR_NM", 30);
        text("SD_SNTR_NR", 10);
        text("SD_ADRES1", 40);
        text("SD_ADRES2", 40);
        text("SD_ADRES3", 40);
        text("SD_KODE", 4);
        text("SD_FOON", 15);
        text("SD_FAKS", 15);
        text("SD_PROV", 20);
        text("SD_T_NR", 10);
        for (int n = 1; n <= 20; ++n) {
            text(qPrintable(QString("SD_ST_%1").arg(n)), 10);
            text(qPrintable(QString("SD_OBE_%1").arg(n)), 10);
            text(qPrintable(QString("SD_NME_%1").arg(n)), 30);
        }
        l.add("SD_TME_OUT", FieldKind::Int16);
        text("SD_T_O_TPE", 1);
        text("SD_DIST_NR", 10);
        text("SD_DISTRIK", 30);
        text("SD_USE_CDE", 10);
        text("SD_OUDSTES", 10);
        text("SD_EMAIL", 60);
        l.add("SD_AKA_MAX", FieldKind::Single);
        l.add("SD_S_T_MAX", FieldKind::Single);
        l.add("SD_N_A_MAX", FieldKind::Single);
        text("SD_STREEK", 30);
        text("SD_WYK", 30);
        text("SD_OD_LOGO", 60);
        text("SX_HOOF", 40);
        text("SX_S_ADJ1", 40);
        text("SX_S_ADJ2", 40);
        text("SX_ADJ", 40);
        text("SX_DPO", 40);
        text("SX_SVO_NME", 40);
        text("SX_SVO_T_A", 40);
        text("SX_SVO_T_E", 40);
        text("SX_DEPT_NM", 40);
        text("SX_USER1", 20);
        text("SX_SEL_1", 1);
        text("SX_USER2", 20);
        text("SX_SEL_2", 1);
        text("SX_EXPRESS", 1);
        text("SD_S_ADR1", 40);
        text("SD_S_ADR2", 40);
        text("SD_S_ADR3", 40);
        text("SD_S_KODE", 4);
        text("SD_FOON_K", 6);
        text("SD_FAKS_K", 6);
        text("SX_TTL_HF", 10);
        text("SX_VRL_HF", 10);
        text("SX_FNK_HF", 20);
        text("SX_FNR_HF", 20);
        text("SX_SNK_HF", 20);
        text("SX_SNR_HF", 20);
        return l;
    }();
    return layout;
}

const RecordLayout& symbol_record_layout() {
    static const RecordLayout layout{{"pi2_simbl", FieldKind::Text, 2},
                                     {"pi2_grns_b", FieldKind::Single},
                                     {"pi2_grns_o", FieldKind::Single}};
    return layout;
}

const RecordLayout& school_addition_layout() {
    static const RecordLayout layout{{"record", FieldKind::Text, kSchoolAdditionLength}};
    return layout;
}

}  // namespace veldo
