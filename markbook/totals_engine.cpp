#include "markbook/totals_engine.h"

#include <QStringList>
#include <optional>
#include <vector>

#include "store/dbf_table.h"
#include "util/text_helpers.h"

namespace veldo {
namespace {

// One record's fields as text, held while it is worked on. A value is stored
// as the table would hand it back: cut at the field's width, and Null when it
// is all blanks.
class WorkRecord {
public:
    explicit WorkRecord(const DbfTable& table) : table_(table), values_(table.field_count()) {}

    // The mark fields only: the learner's number and name take no part.
    void load() {
        for (int i = 2; i < int(values_.size()); ++i) {
            const QVariant v = table_.value(i);
            values_[i] = v.isValid() ? std::optional<QString>(plain_text(v)) : std::nullopt;
        }
        changed_.assign(values_.size(), false);
    }
    bool has(int f) const { return f >= 0 && f < int(values_.size()); }
    bool is_null(int f) const { return !values_[f].has_value(); }
    // The value through the null test, trimmed.
    QString normalised(int f) const { return values_[f] ? values_[f]->trimmed() : QString(); }
    double number(int f) const { return values_[f] ? Val(*values_[f]) : 0.0; }
    void set(int f, const QString& text) {
        const QString stored = text.left(table_.field(f).width);
        values_[f] = stored.trimmed().isEmpty() ? std::nullopt : std::optional<QString>(stored);
        changed_[f] = true;
    }
    // Writes what changed; one Edit and Update for the record.
    void save(DbfTable& table) {
        bool any = false;
        for (bool c : changed_) any = any || c;
        if (!any) return;
        table.Edit();
        for (int f = 0; f < int(values_.size()); ++f)
            if (changed_[f]) table.set_value(f, values_[f] ? QVariant(*values_[f]) : QVariant());
        table.Update();
    }

private:
    const DbfTable& table_;
    std::vector<std::optional<QString>> values_;
    std::vector<bool> changed_;
};

// A real mark field of the table: never the learner's number or name.
bool is_mark_field(const WorkRecord& rec, int f) { return f >= 2 && rec.has(f); }

}  // namespace

bool recalculate_totals(DbfTable& marks, const ColumnLists& lists,
                        const std::function<void(int, int)>& progress) {
    const int entries = lists.entry_count();
    // The whole table is worked in memory and written once at the end.
    marks.begin_batch();

    // Blanking: every field a row feeds into. Each field is blanked once; the
    // repeats of the list would write the same blanks again.
    std::vector<int> blanked;
    for (const QString& entry : lists.tot_rks) {
        const double number = Val(entry);
        if (number >= 0 && number != 99) {
            const int f = int(Round(number)) + 2;
            if (std::find(blanked.begin(), blanked.end(), f) == blanked.end()) blanked.push_back(f);
        }
    }

    // What the setup says of each row, read once: the same for every learner.
    struct RowFacts {
        bool named = false;
        int target = 0;      // G(i)
        double x = 0, y = 0;  // X and Y of the feeding step
    };
    std::vector<RowFacts> rows(std::size_t(std::max(entries + 1, 0)));
    QStringList totaal_kolomme;  // fed fields + 100, a text sort
    for (int i = 2; i <= entries; ++i) {
        RowFacts& r = rows[std::size_t(i)];
        r.named = !lists.name(i).trimmed().isEmpty();
        if (!r.named) continue;
        r.target = lists.target(i);
        r.x = lists.total(i);
        if (r.x == 0) r.x = 1;
        r.y = lists.out_of(i);
        if (r.y <= 0) r.y = r.x;
        // Every named row puts its target in the list, the sentinel too,
        // whether or not the learner has a mark there: the list is the same
        // after the first learner as after the last.
        const QString key = QString::number(r.target + 100);
        if (!totaal_kolomme.contains(key)) totaal_kolomme.append(key);
    }
    totaal_kolomme.sort();
    struct TotalFacts {
        int c = 0, t = 0;
        double x = 0, w = 0;
    };
    std::vector<TotalFacts> conversions;
    for (const QString& entry : totaal_kolomme) {
        const int c = int(Val(entry)) - 100;
        if (c == kNoTarget) continue;
        conversions.push_back({c, lists.target(c), lists.total(c), lists.out_of(c)});
    }

    const int count = marks.RecordCount();
    int done = 0;
    WorkRecord rec(marks);
    for (marks.MoveFirst(); !marks.Eof(); marks.MoveNext()) {
        rec.load();
        for (int f : blanked)
            if (is_mark_field(rec, f)) rec.set(f, "     ");

        std::array<double, 46> out_of_sum{};
        int named = 0;

        // Feeding, in ascending order of the rows.
        for (int i = 2; i <= entries; ++i) {
            const RowFacts& r = rows[std::size_t(i)];
            if (!r.named) continue;
            ++named;
            const int c = r.target;
            if (c == i || c == 0 || c > entries) continue;
            if (!is_mark_field(rec, c) || !rec.has(i)) continue;
            const QString v = rec.normalised(i);
            if (v.isEmpty() || v.toUpper() == "A") continue;
            out_of_sum[c] += r.y;
            const QString m = format_one_decimal((Val(v) / r.x) * r.y);
            if (rec.is_null(c)) rec.set(c, "0");
            rec.set(c, format_one_decimal(rec.number(c) + Val(m)));
        }

        // Conversion of each fed total, in ascending field order.
        for (const TotalFacts& total : conversions) {
            const int c = total.c;
            if (!is_mark_field(rec, c)) continue;
            const int t = total.t;
            const QString v = rec.normalised(c);
            if (v.isEmpty() || v == "a") continue;
            const double x = total.x;
            double y = out_of_sum[c];
            if (y == 0) y = x;
            if (y == 0) continue;  // a total of 0 with nothing fed: left as summed
            const double w = total.w;
            const double m = Val(v);
            const double converted = (m / y) * x;
            const double d = converted - m;
            rec.set(c, format_one_decimal(converted));
            if (c != t && t != kNoTarget && d != 0 && x != 0 && is_mark_field(rec, t)) {
                const QString passed = format_one_decimal(Val(number_text(d / x)) * w);
                rec.set(t, plain_number_text(rec.number(t) + Val(passed)));
                rec.set(t, plain_number_text(std::min(rec.number(t), x)));
            }
        }

        // Fields past the count of named rows are emptied.
        for (int f = named + 2; f <= 41; ++f)
            if (is_mark_field(rec, f)) rec.set(f, QString());

        rec.save(marks);
        if (progress) progress(++done, count);
    }
    marks.MoveFirst();
    return marks.commit_batch();
}

std::array<Currency, 43> class_averages(DbfTable& marks, const ColumnLists& lists) {
    std::array<Currency, 43> averages{};
    std::array<double, 43> sum{};
    std::array<int, 43> counted{};
    const int fields = std::min(marks.field_count(), 42);
    for (marks.MoveFirst(); !marks.Eof(); marks.MoveNext()) {
        for (int f = 2; f < fields; ++f) {
            const QVariant v = marks.value(f);
            if (!v.isValid() || v.typeId() != QMetaType::QString) continue;
            QString text = v.toString();
            while (text.endsWith(' ')) text.chop(1);
            if (text.isEmpty() || text == "A" || text == "a") continue;
            sum[f] += Val(text);
            ++counted[f];
        }
    }
    marks.MoveFirst();
    for (int r = 1; r <= 40; ++r) {
        const int f = r + 1;
        const double t = lists.total(f);
        if (sum[f] > 0 && t > 0) averages[f] = Currency::from_double(((sum[f] / counted[f]) / t) * 100);
    }
    return averages;
}

}  // namespace veldo
