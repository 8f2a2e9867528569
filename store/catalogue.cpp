#include "store/catalogue.h"

#include "store/school_record.h"

namespace veldo {

namespace {

CatalogueEntry entry(const QString& code, const QString& file, int record_length, const QString& source = {},
                     const QList<MigrationStep>& migrations = {}, AfterOpen after_open = AfterOpen::None,
                     bool single_record_block = false) {
    return CatalogueEntry{code, file, record_length, source, migrations, after_open, single_record_block};
}

MigrationStep marker(const QString& name, bool only_before_2017 = false) { return {name, only_before_2017}; }

}  // namespace

const QList<CatalogueEntry>& table_catalogue() {
    using A = AfterOpen;
    // The single-record school additions keep layouts of the family's own;
    // this program never reads them and holds their records whole.
    static const QList<CatalogueEntry> catalogue = {
        entry("SKL", "Skl_Dta_random.txt", school_record_layout().length(), "skl_dta.dbf", {}, A::ReadRecord1, true),
        entry("SKLADD", "skl_add_random.txt", kSchoolAdditionLength, "", {marker("skladd_convert.2016", true)}, A::ReadOrCreateRecord1, true),
        entry("SKLHB", "skl_h_b_random.txt", kSchoolAdditionLength, "", {}, A::ReadRecord1, true),
        entry("SKLEPOS", "skl_epos_random.txt", kSchoolAdditionLength, "", {}, A::ReadOrCreateRecord1, true),
        entry("VCPSKL", "Alle_Skole_VC_personeel.txt", kSchoolAdditionLength, "", {}, A::None, true),
        entry("SKLVCP", "Skl_VCP_personeel.txt", kSchoolAdditionLength, "", {}, A::None, true),
        entry("GSN", "Gsn_Cmp_random.txt", 2120, "", {marker("gsncmp_convert.2016"), marker("gsncmp_convert2.2016")}),
        entry("GSNPPL", "Gsn_Ppl_random.txt", 875),
        entry("BRP", "Brp_Dta_random.txt", 30),
        entry("GKDE", "Gsn_kde_random.txt", 56),
        entry("ACCCNT", "Acc_Cnt_random.txt", 54),
        entry("PPL", "Ppl_cmp_random.txt", 1212),
        entry("PPLADD", "Ppl_add_random.txt", 177, "", {}, A::CleanAbove2000),
        entry("PPLDEL", "Ppl_del_random.txt", 1224),
        entry("PPLHST", "Ppl_hst_random.txt", 88, "Ppl_hst.dbf", {marker("ph2014_random.txt")}),
        entry("PPLPROM", "Ppl_prom_random.txt", 418),
        entry("PPLPROMVJ", "Ppl_prom_VJ_random.txt", 19),
        entry("GBRK", "Ppl_gbrk_random.txt", 193, "Ppl_gbrk.dbf"),
        entry("KHDTA", "k_h_dta_random.txt", 122, "k_h_dta.dbf"),
        entry("PRMREM", "prm_rem_random.txt", 934, "r_c_dta.dbf"),
        entry("OBEDTA", "obe_dta_random.txt", 1888, "obe_dta.dbf"),
        entry("PIG", "Ppl_pig_random.txt", 372, "Ppl_pig.dbf", {marker("pig2014_random.txt")}),
        entry("PPLVAKVERANDER", "Ppl_vakverander_random.txt", 1012),
        entry("PI1", "pi1_random.txt", 172, "pi1_dta.dbf"),
        entry("PI11", "pi11_random.txt", 272, "", {}, A::DeriveFromPi1),
        entry("PI1SMA", "PI1SMA_random.txt", 48, "", {}, A::NoCount),
        entry("PI2", "pi2_random.txt", 10, "pi2_dta.dbf", {}, A::StandardSymbols),
        entry("PI3", "pi3_random.txt", 250, "", {}, A::CreateAndRepair),
        entry("PSMB", "psmb_random.txt", 218, "", {}, A::StandardRows),
        entry("PI4SU", "pi4_su_random.txt", 1237, "", {}, A::BuiltWhenAbsent),
        entry("PI4VH", "pi4_vh_random.txt", 5717, "", {}, A::LayoutCheck),
        entry("PI5", "pi5_random.txt", 89, "", {marker("pi54_random.txt")}),
        entry("PI5KUR", "pi5Kur_random.txt", 44),
        entry("VAKDTA", "vak_dta_random.txt", 692, "vak_dta.dbf"),
        entry("PNTDTA", "pnt_dta_random.txt", 492, "pnt_dta.dbf"),
        entry("GEMDTA", "gem_dta_random.txt", 179, "gem_dta.dbf", {marker("gem2014_random.txt")}),
        entry("GEMPK", "gem_p_k_random.txt", 131, "gem_p_k.dbf"),
        entry("PRMPROM", "prm_prom_random.txt", 8, "", {}, A::RebuildWhenOdd),
        entry("H_W", "hw_random.txt", 29, "h_w_dta.dbf"),
        entry("HW2", "hw2_random.txt", 129, "hw2_dta.dbf", {}, A::MergeSecondFile),
        entry("HWK", "hw_kodes_random.txt", 1547, "", {}, A::BuildWhenEmpty),
        entry("B_M", "bm_random.txt", 20),
        entry("S_B", "sb_random.txt", 1327, "sb2_dta.dbf", {marker("sb2014_random.txt")}),
        entry("SBT", "sbt_random.txt", 60, "s_b_tot.dbf"),
        entry("SBP", "sbp_random.txt", 52, "s_b_prs.dbf"),
        entry("SBI", "sbi_random.txt", 50, "sbi_kde.dbf"),
        entry("KPD", "KPD_random.txt", 213, "k_p_dta.dbf"),
        entry("KPK", "kpk_random.txt", 284, "kpv_kde.dbf"),
        entry("RT", "rt_random.txt", 28, "rt_dta.dbf"),
        entry("PUVAK", "PUVak_random.txt", 12),
        entry("PUTOT", "PUTot_random.txt", 108),
        entry("KLS", "kls_dta_random.txt", 49),
        entry("V_P", "v_p_dta_random.txt", 41),
        entry("NWEKLS", "nwe_kls_random.txt", 20),
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
