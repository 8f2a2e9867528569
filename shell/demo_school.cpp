#include "shell/demo_school.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <random>

#include "markbook/setup_model.h"
#include "store/dbf_table.h"
#include "store/record_layout.h"
#include "store/run_state.h"
#include "store/school_record.h"
#include "store/series.h"
#include "store/table_layouts.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/safe_file.h"
#include "util/text_helpers.h"

namespace veldo {
namespace {

struct DemoSeries {
    const char* grade;
    const char* subject;
    float total;
    const char* klass;
    const char* klass2;
    const char* group;
    int learners;
    enum Book { None, Afrikaans, English, Short } book;
};

// Class series and group series over grades 8 to 12; a subject code with a
// blank, a class with a slash, grades above 9 (shown out of 100).
constexpr DemoSeries kSeries[] = {
    {"8  ", "AFR  ", 100, "8A ", "   ", "   ", 32, DemoSeries::Afrikaans},
    {"8  ", "WISK ", 150, "8B ", "   ", "   ", 28, DemoSeries::None},
    {"9  ", "EN HL", 100, "9/A", "   ", "   ", 35, DemoSeries::English},
    {"9  ", "NW   ", 80, "   ", "   ", "N1 ", 26, DemoSeries::Short},
    {"10 ", "WISK ", 300, "10A", "   ", "   ", 38, DemoSeries::Afrikaans},
    {"10 ", "FIS  ", 150, "   ", "   ", "F2 ", 25, DemoSeries::None},
    {"11 ", "EN HL", 200, "11B", "   ", "   ", 40, DemoSeries::English},
    {"12 ", "GES  ", 400, "12A", "   ", "   ", 30, DemoSeries::None},
    {"12 ", "LO   ", 100, "   ", "   ", "L1 ", 27, DemoSeries::English},
};

constexpr const char* kSurnames[] = {
    "Botha",     "van der Merwe", "Nel",      "Pretorius", "du Plessis", "Smith",   "Jacobs",  "Venter",
    "Coetzee",   "Mokoena",       "Williams", "Naidoo",    "Dlamini",    "Fourie",  "Steyn",   "Erasmus",
    "le Roux",   "Khumalo",       "Adams",    "Kruger",    "Swanepoel",  "Jansen",  "Brown",   "Louw",
    "Ndlovu",    "O'Connor",      "Viljoen",  "Marais",    "Olivier",    "Taylor",  "Hendricks", "Bezuidenhout"};
constexpr const char* kFirstNames[] = {
    "Anri",   "Jan",     "Thabo",   "Ruan",   "Liezl", "Michael", "Zanele", "Pieter", "Chantelle", "Sipho",
    "Elize",  "Jaco",    "Emily",   "Lerato", "Wian",  "Nomsa",   "Johan",  "Aimée",  "Riaan",     "Karabo",
    "Marné",  "Daniel",  "Lindiwe", "Gerhard", "Ané",  "Connor",  "Mia",    "Francois", "Busisiwe", "Hannes"};

QString demo_school_name() { return QStringLiteral("HOËRSKOOL DIE KRANS"); }

bool add_rows(const QString& path, const QList<DbfField>& fields, const QList<QList<QVariant>>& rows,
              DbfError* error) {
    if (!DbfTable::create(path, fields, error)) return false;
    auto table = DbfTable::open(path, error);
    if (!table) return false;
    for (const auto& row : rows) {
        table->AddNew();
        for (int i = 0; i < row.size(); ++i) table->set_value(i, row[i]);
        if (!table->Update(error)) return false;
    }
    table->Close();
    return true;
}

// A mark as a teacher types it: mostly whole or half marks, now and then an
// absence or nothing at all.
QString typed_mark(std::mt19937& rng, double total, double ability) {
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    const double roll = unit(rng);
    if (roll < 0.03) return "A";
    if (roll < 0.04) return "a";
    if (roll < 0.07) return QString();
    std::normal_distribution<double> spread(ability, 0.12);
    const double fraction = std::clamp(spread(rng), 0.05, 1.0);
    const double mark = std::round(fraction * total * 2.0) / 2.0;
    return format_one_decimal(mark);
}

}  // namespace

DemoResult write_demo_school(RunState& run, const QString& data_folder) {
    DemoResult result;
    const auto fail = [&](const QString& afrikaans, const QString& english) {
        result.message = run.tr(afrikaans, english);
        return result;
    };
    if (!QDir().mkpath(data_folder) || !QFileInfo(data_folder).isWritable())
        return fail("Die gids " + data_folder + " kan nie geskep of beskryf word nie.",
                    "The folder " + data_folder + " can't be created or written to.");
    const QDir dir(data_folder);
    std::mt19937 rng(20261123);

    // The mark series table.
    QByteArray control;
    RecordBuffer rec(&series_record_layout());
    for (int i = 0; i < int(std::size(kSeries)); ++i) {
        const DemoSeries& s = kSeries[i];
        rec.clear();
        rec.set_text("ec_grade", s.grade);
        rec.set_text("ec_subject", s.subject);
        rec.set_single("ec_total", s.total);
        rec.set_text("ec_class", s.klass);
        rec.set_text("ec_class2", s.klass2);
        rec.set_text("ec_group", s.group);
        rec.set_int16("ec_number", qint16(101 + i));
        rec.set_text("ec_code", QString("K%1").arg(i + 1, 3, 10, QChar('0')));
        rec.set_date("ec_date", ole_date_from(QDate(2026, 1, 14)).days);
        control += rec.bytes();
    }
    QString error_text;
    const QString control_path = dir.filePath("exp_mrk_control.txt");
    if (!write_file_atomic(control_path, control, &error_text))
        return fail("Kan nie " + control_path + " skryf nie.", "Can't write " + control_path + ".");
    result.written << control_path;

    // Symbols.
    DbfError error;
    const QString symbols = dir.filePath("pi2_dta.dbf");
    const QList<QList<QVariant>> symbol_rows = {{"1", 29.9, 0.0},  {"2", 39.9, 30.0}, {"3", 49.9, 40.0},
                                                {"4", 59.9, 50.0}, {"5", 69.9, 60.0}, {"6", 79.9, 70.0},
                                                {"7", 100.0, 80.0}};
    if (!add_rows(symbols, symbol_table_fields(), symbol_rows, &error))
        return fail(dbf_error_message(error, true), dbf_error_message(error, false));
    result.written << symbols;

    int next_number = 10001;
    for (int i = 0; i < int(std::size(kSeries)); ++i) {
        const DemoSeries& s = kSeries[i];
        const int n = i + 1;
        QList<QList<QVariant>> class_rows, assessment_rows, mark_rows;
        MarkBookSetup setup;
        if (s.book == DemoSeries::Afrikaans || s.book == DemoSeries::English) {
            apply_example_book(setup, s.book == DemoSeries::Afrikaans);
            // As a teacher is meant to finish the example: the out-of values
            // of each total's feeders add up to that total.
            for (const auto& [row, out_of] : {std::pair{1, "10"}, {2, "10"}, {3, "10"}, {4, "10"}, {7, "10"},
                                              {8, "10"}, {9, "10"}, {12, "5"}, {13, "5"}, {14, "15"},
                                              {15, "15"}, {17, "10"}, {18, "10"}})
                setup.rows[row - 1].out_of = out_of;
        }
        if (s.book == DemoSeries::Short) {
            setup.rows[0] = {"PRAKTIES 1", "25", "4", "", ""};
            setup.rows[1] = {"PRAKTIES 2", "25", "4", "", ""};
            setup.rows[2] = {"TOETS", "50", "4", "", "S1"};
            setup.rows[3] = {"TOTAAL", "100", "", "", ""};
        }
        for (int l = 0; l < s.learners; ++l) {
            const QString name = QString("%1, %2")
                                     .arg(kSurnames[(l * 7 + i * 3) % std::size(kSurnames)])
                                     .arg(kFirstNames[(l * 11 + i * 5) % std::size(kFirstNames)]);
            const int number = next_number++;
            class_rows.append({QString::number(number), name, QString(), QString()});
            assessment_rows.append({double(number), name, QString(), QString(), QString(), QString(), QString(),
                                    QString()});
            if (s.book == DemoSeries::None) continue;
            std::uniform_real_distribution<double> talent(0.35, 0.92);
            const double ability = talent(rng);
            QList<QVariant> row{double(number), name};
            for (int r = 1; r <= kMarkFieldCount; ++r) {
                const SetupRow& sr = setup.rows[r - 1];
                const bool feeder = sr.is_used() && !setup.is_total_row(r);
                row.append(feeder ? typed_mark(rng, Val(sr.total), ability) : QString());
            }
            mark_rows.append(row);
        }
        const QString punte = dir.filePath(QString("punte%1.dbf").arg(n));
        const QString obe = dir.filePath(QString("obe_p%1.dbf").arg(n));
        if (!add_rows(punte, class_list_fields(), class_rows, &error) ||
            !add_rows(obe, assessment_fields(), assessment_rows, &error))
            return fail(dbf_error_message(error, true), dbf_error_message(error, false));
        result.written << punte << obe;
        if (s.book == DemoSeries::None) continue;

        // Saved under the key as built, as books set up before the key lost
        // its underscores still are; every screen finds them so.
        const QStringList grid_row{s.grade, s.subject, QString(), s.klass, s.klass2, s.group};
        const QString key = series_key(grid_row);
        const QString setup_path = dir.filePath("setup_" + key + ".txt");
        const QString marks = dir.filePath(QString("marks%1.dbf").arg(n));
        if (!write_file_atomic(setup_path, setup.to_file_bytes(), &error_text))
            return fail("Kan nie " + setup_path + " skryf nie.", "Can't write " + setup_path + ".");
        if (!add_rows(marks, mark_book_fields(), mark_rows, &error))
            return fail(dbf_error_message(error, true), dbf_error_message(error, false));
        result.written << setup_path << marks;
    }

    // The lookup lists of the assessment screen, per subject: its effort
    // keys, and per grade its formative codes, as the administration
    // program leaves them.
    QStringList listed;
    for (const DemoSeries& s : kSeries) {
        const QString base = QString(s.subject).trimmed().replace(' ', '_');
        const QString keys = dir.filePath("L" + base + "_P_S.dbf");
        if (!listed.contains(keys)) {
            listed << keys;
            const QList<QList<QVariant>> rows = {{"1", "Uitstekend"}, {"2", "Goed"}, {"3", "Bevredigend"},
                                                 {"4", "Swak"},       {"5", "Geen poging"}};
            if (!add_rows(keys, effort_key_fields(), rows, &error))
                return fail(dbf_error_message(error, true), dbf_error_message(error, false));
            result.written << keys;
        }
        const QString formative = dir.filePath("L" + base + "_f_e." + QString(s.grade).trimmed());
        if (listed.contains(formative)) continue;
        listed << formative;
        if (!write_file_atomic(formative,
                               "1\r\nNie bereik nie\r\n2\r\nGedeeltelik bereik\r\n3\r\nBereik\r\n4\r\n"
                               "Oortref\r\n10\r\nAfwesig met rede\r\n",
                               &error_text))
            return fail("Kan nie " + formative + " skryf nie.", "Can't write " + formative + ".");
        result.written << formative;
    }

    // The school record lies at the drive root, where the start looks for it.
    const QString school = run.in_folder(QString(), "Skl_Dta_random.txt");
    if (find_ignoring_case(QFileInfo(school).path(), "skl_dta_random.txt").isEmpty()) {
        RecordBuffer skl(&school_record_layout());
        skl.set_text("SD_SKOOL", upper_afrikaans_text(demo_school_name()));
        skl.set_text("SD_PROV", "WES-KAAP");
        skl.set_text("SD_ADRES1", "Posbus 12");
        skl.set_text("SD_ADRES2", "Kransdal");
        skl.set_text("SD_KODE", "7701");
        skl.set_text("SD_EMAIL", "kantoor@krans.example");
        if (write_file_atomic(school, skl.bytes(), &error_text)) result.written << school;
    }
    result.ok = true;
    return result;
}

}  // namespace veldo
