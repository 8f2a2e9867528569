#include "markbook/setup_model.h"

#include <QStringList>
#include <optional>

#include "util/legacy_number.h"
#include "util/quoted_values.h"

namespace veldo {

bool MarkBookSetup::is_total_row(int row_number) const {
    for (const SetupRow& r : rows)
        if (!r.target.trimmed().isEmpty() && Val(r.target) == row_number) return true;
    return false;
}

bool MarkBookSetup::is_empty() const {
    for (const SetupRow& r : rows)
        if (r.is_used()) return false;
    return true;
}

QByteArray MarkBookSetup::to_file_bytes() const {
    QStringList values;
    values.reserve(kSetupValues);
    for (const SetupRow& r : rows) values << r.name << r.total << r.target << r.out_of << r.cycle;
    return write_one_per_line(values);
}

MarkBookSetup MarkBookSetup::from_file_bytes(const QByteArray& bytes) {
    MarkBookSetup setup;
    const auto values = read_quoted_values(bytes);
    auto at = [&](int i) { return i < values.size() ? values[i].as_text() : QString(); };
    for (int r = 0; r < kSetupRows; ++r) {
        SetupRow& row = setup.rows[r];
        row.name = at(r * 5);
        row.total = at(r * 5 + 1);
        row.target = at(r * 5 + 2);
        row.out_of = at(r * 5 + 3);
        row.cycle = at(r * 5 + 4);
    }
    return setup;
}

void apply_example_book(MarkBookSetup& setup, bool afrikaans) {
    struct Example {
        const char* afrikaans;
        const char* english;
        const char* total;
        std::optional<const char*> target;  // nullopt: left as it is
        std::optional<const char*> out_of;
        std::optional<const char*> cycle;
    };
    const std::nullopt_t keep = std::nullopt;
    static const Example rows[] = {
        {"TAAK 1", "TASK 1", "10", "5", keep, keep},
        {"TAAK 2", "TASK 2", "10", "5", keep, keep},
        {"TAAK 3", "TASK 3", "10", "5", keep, keep},
        {"TAAK 4", "TASK 4", "10", "5", keep, keep},
        {"KLASWERK", "CLASS WORK", "40", "11", "40", keep},
        {"MINI OPDRAG", "MINI ASSIGNMENT", "20", "11", "10", keep},
        {"PRAKTIES 1", "PRACTICAL 1", "10", "10", keep, keep},
        {"PRAKTIES 2", "PRACTICAL 2", "10", "10", keep, keep},
        {"PRAKTIES 3", "PRACTICAL 3", "10", "10", keep, keep},
        {"PRAKTIESE WERK", "PRACTICAL WORK", "30", "11", "10", keep},
        {"SUBTOTAAL 1", "SUB TOTAL 1", "60", "21", "60", keep},
        {"KLASTOETS 1", "CLASS TEST 1", "20", "16", keep, keep},
        {"KLASTOETS 2", "CLASS TEST 2", "20", "16", keep, keep},
        {"HOOFTOETS 1", "MAIN TEST 1", "50", "16", keep, "S1"},
        {"HOOFTOETS 2", "MAIN TEST 2", "50", "16", keep, "S2"},
        {"KLASTOETSE", "CLASS TESTS", "40", "20", "20", keep},
        {"EKSAMEN 1", "EXAM 1", "20", "19", keep, "S3"},
        {"EKSAMEN 2", "EXAM 2", "20", "19", keep, "S4"},
        {"EKSAMENS", "EXAMINATIONS", "20", "20", "20", keep},
        {"SUBTOTAAL 2", "SUB TOTAL 2", "40", "21", "40", keep},
        {"TOTAAL", "TOTAL", "100", "", "100", keep},
    };
    for (int i = 0; i < 21; ++i) {
        const Example& e = rows[i];
        SetupRow& row = setup.rows[i];
        row.name = afrikaans ? e.afrikaans : e.english;
        row.total = e.total;
        if (e.target) row.target = *e.target;
        if (e.out_of) row.out_of = *e.out_of;
        if (e.cycle) row.cycle = *e.cycle;
    }
}

}  // namespace veldo
