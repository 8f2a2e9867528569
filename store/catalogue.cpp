#include "store/catalogue.h"

#include "store/school_record.h"

namespace veldo {

const QList<CatalogueEntry>& table_catalogue() {
    using A = AfterOpen;
    // The single-record school additions keep layouts of the family's own;
    // this program never reads them and holds their records whole.
    static const QList<CatalogueEntry> catalogue = {
        {"SKL", "Skl_Dta_random.txt", school_record_layout().length(), "skl_dta.dbf", {}, A::ReadRecord1, true},
        {"SKLADD", "skl_add_random.txt", kSchoolAdditionLength, "", {{"skladd_convert.2016", true}}, A::ReadOrCreateRecord1, true},
        {"SKLHB", "skl_h_b_random.txt", kSchoolAdditionLength, "", {}, A::ReadRecord1, true},
        {"SKLEPOS", "skl_epos_random.txt", kSchoolAdditionLength, "", {}, A::ReadOrCreateRecord1, true},
        {"VCPSKL", "Alle_Skole_VC_personeel.txt", kSchoolAdditionLength, "", {}, A::None, true},
        {"SKLVCP", "Skl_VCP_personeel.txt", kSchoolAdditionLength, "", {}, A::None, true},
        {"GSN", "Gsn_Cmp_random.txt", 2120, "", {{"gsncmp_convert.2016"}, {"gsncmp_convert2.2016"}}},
        {"GSNPPL", "Gsn_Ppl_random.txt", 875},
        {"BRP", "Brp_Dta_random.txt", 30},
        {"GKDE", "Gsn_kde_random.txt", 56},
        {"ACCCNT", "Acc_Cnt_random.txt", 54},
        {"PPL", "Ppl_cmp_random.txt", 1212},
        {"PPLADD", "Ppl_add_random.txt", 177, "", {}, A::CleanAbove2000},
        {"PPLDEL", "Ppl_del_random.txt", 1224},
        {"PPLHST", "Ppl_hst_random.txt", 88, "Ppl_hst.dbf", {{"ph2014_random.txt"}}},
        {"PPLPROM", "Ppl_prom_random.txt", 418},
        {"PPLPROMVJ", "Ppl_prom_VJ_random.txt", 19},
        {"GBRK", "Ppl_gbrk_random.txt", 193, "Ppl_gbrk.dbf"},
        {"KHDTA", "k_h_dta_random.txt", 122, "k_h_dta.dbf"},
        {"PRMREM", "prm_rem_random.txt", 934, "r_c_dta.dbf"},
        {"OBEDTA", "obe_dta_random.txt", 1888, "obe_dta.dbf"},
        {"PIG", "Ppl_pig_random.txt", 372, "Ppl_pig.dbf", {{"pig2014_random.txt"}}},
        {"PPLVAKVERANDER", "Ppl_vakverander_random.txt", 1012},
        {"PI1", "pi1_random.txt", 172, "pi1_dta.dbf"},
        {"PI11", "pi11_random.txt", 272, "", {}, A::DeriveFromPi1},
        {"PI1SMA", "PI1SMA_random.txt", 48, "", {}, A::NoCount},
        {"PI2", "pi2_random.txt", 10, "pi2_dta.dbf", {}, A::StandardSymbols},
        {"PI3", "pi3_random.txt", 250, "", {}, A::CreateAndRepair},
        {"PSMB", "psmb_random.txt", 218, "", {}, A::StandardRows},
        {"PI4SU", "pi4_su_random.txt", 1237, "", {}, A::BuiltWhenAbsent},
        {"PI4VH", "pi4_vh_random.txt", 5717, "", {}, A::LayoutCheck},
        {"PI5", "pi5_random.txt", 89, "", {{"pi54_random.txt"}}},
        {"PI5KUR", "pi5Kur_random.txt", 44},
        {"VAKDTA", "vak_dta_random.txt", 692, "vak_dta.dbf"},
        {"PNTDTA", "pnt_dta_random.txt", 492, "pnt_dta.dbf"},
        {"GEMDTA", "gem_dta_random.txt", 179, "gem_dta.dbf", {{"gem2014_random.txt"}}},
        {"GEMPK", "gem_p_k_random.txt", 131, "gem_p_k.dbf"},
        {"PRMPROM", "prm_prom_random.txt", 8, "", {}, A::RebuildWhenOdd},
        {"H_W", "hw_random.txt", 29, "h_w_dta.dbf"},
        {"HW2", "hw2_random.txt", 129, "hw2_dta.dbf", {}, A::MergeSecondFile},
        {"HWK", "hw_kodes_random.txt", 1547, "", {}, A::BuildWhenEmpty},
        {"B_M", "bm_random.txt", 20},
        {"S_B", "sb_random.txt", 1327, "sb2_dta.dbf", {{"sb2014_random.txt"}}},
        {"SBT", "sbt_random.txt", 60, "s_b_tot.dbf"},
        {"SBP", "sbp_random.txt", 52, "s_b_prs.dbf"},
        {"SBI", "sbi_random.txt", 50, "sbi_kde.dbf"},
        {"KPD", "KPD_random.txt", 213, "k_p_dta.dbf"},
        {"KPK", "kpk_random.txt", 284, "kpv_kde.dbf"},
        {"RT", "rt_random.txt", 28, "rt_dta.dbf"},
        {"PUVAK", "PUVak_random.txt", 12},
        {"PUTOT", "PUTot_random.txt", 108},
        {"KLS", "kls_dta_random.txt", 49},
        {"V_P", "v_p_dta_random.txt", 41},
        {"NWEKLS", "nwe_kls_random.txt", 20},
    };
    return catalogue;
}

const CatalogueEntry* catalogue_entry(const QString& code) {
    for (const auto& e : table_catalogue())
        if (e.code == code) return &e;
    return nullptr;
}

QString previous_layout_name(const QString& file) {
    const int at = file.lastIndexOf("_random", -1, Qt::CaseInsensitive);
    if (at >= 0) return file.left(at) + "_prv" + file.mid(at);
    const int dot = file.lastIndexOf('.');
    return dot < 0 ? file + "_prv" : file.left(dot) + "_prv" + file.mid(dot);
}

}  // namespace veldo
