#include "markbook/totals_engine.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "store/dbf_table.h"
#include "util/cp1252.h"
#include "util/text_helpers.h"

namespace veldo {
namespace {

// Fields read as text in their stored bytes; other types through their value.
bool is_text_field(DbfType type) { return type == DbfType::Character || type == DbfType::Memo || type == DbfType::Other; }

// One record's fields as text, held while it is worked on. A value is stored
// as the table would hand it back: cut at the field's width, and Null when it
// is all blanks. Mark fields are text fields; they are worked on in their
// stored bytes, with no QString or QVariant per field.
class WorkRecord {
public:
    explicit WorkRecord(const DbfTable& table) : table_(table), values_(std::size_t(table.field_count())) {
        for (int i = 0; i < table.field_count(); ++i) {
            const int width = table.field(i).width;
            widths_.push_back(width);
            offsets_.push_back(table.field_offset(i));
            text_field_.push_back(is_text_field(table.field(i).type));
            character_.push_back(table.field(i).type == DbfType::Character);
            // "ddd.d" takes two places besides its whole digits, and a third
            // with a sign: below 10^(width - 1) tenths it fits, below
            // 10^(width - 2) with a sign; past 18 digits nothing here comes.
            std::array<long long, 2> limit{};
            for (int negative = 0; negative < 2; ++negative) {
                const int digits = std::min(width - 1 - negative, 18);
                long long power = digits >= 2 ? 1 : 0;  // not even one whole digit: never fits
                for (int k = 0; k < digits && digits >= 2; ++k) power *= 10;
                limit[std::size_t(negative)] = power;
            }
            fitting_.push_back(limit);
        }
    }

    // The mark fields only: the learner's number and name take no part.
    void load() {
        const QByteArrayView record = table_.record_bytes();
        for (int i = 2; i < int(values_.size()); ++i) {
            Value& v = values_[std::size_t(i)];
            v.changed = false;
            v.has_number = false;
            v.pending = false;
            if (text_field_[std::size_t(i)] && !record.isEmpty()) {
                const char* p = record.data() + offsets_[std::size_t(i)];
                const int length = stored_text_length(p, widths_[std::size_t(i)], character_[std::size_t(i)]);
                v.null = length < 0;
                v.text = QLatin1StringView(p, std::max(length, 0));  // the record's own bytes, not copied
            } else {
                const QVariant value = table_.value(i);
                v.null = !value.isValid();
                v.own = cp1252::encode(plain_text(value)).toStdString();
                v.text = QLatin1StringView(v.own.data(), qsizetype(v.own.size()));
            }
        }
    }
    bool has(int f) const { return f >= 0 && f < int(values_.size()); }
    bool is_null(int f) const { return values_[std::size_t(f)].null; }
    // The value through the null test, trimmed.
    QLatin1StringView normalised(int f) const { return is_null(f) ? QLatin1StringView() : cp1252::trimmed(text(f)); }
    double number(int f) const {
        const Value& v = values_[std::size_t(f)];
        if (v.has_number) return tenths_value(v);
        return is_null(f) ? 0.0 : Val(text(f));
    }
    // A mark that is neither blank nor an absence, and its number.
    bool counts(int f, double* value) const {
        const Value& v = values_[std::size_t(f)];
        if (v.has_number) {
            *value = tenths_value(v);
            return true;
        }
        const QLatin1StringView t = normalised(f);
        if (t.isEmpty() || t == QLatin1StringView("a")) return false;
        *value = Val(t);
        return true;
    }
    void set(int f, QLatin1StringView text) {
        Value& v = values_[std::size_t(f)];
        const QLatin1StringView stored = text.left(widths_[std::size_t(f)]);
        v.null = cp1252::trimmed(stored).isEmpty();
        v.own.assign(stored.data(), std::size_t(stored.size()));
        v.text = QLatin1StringView(v.own.data(), qsizetype(v.own.size()));
        v.changed = true;
        v.has_number = false;
        v.pending = false;
    }
    // A number in the one-decimal mask, as set(f, format_one_decimal(value))
    // stores it; the text is written out only when it is read or saved.
    void set_one_decimal(int f, double value) {
        long long tenths = 0;
        if (!one_decimal_tenths(value, &tenths)) {
            set(f, QLatin1StringView(format_one_decimal(value).toLatin1()));
            return;
        }
        set_tenths(f, tenths, value < 0);
    }
    // The whole tenths a total holds when the arithmetic set it and its text
    // was not cut, with their sign; false for a mark as typed.
    bool signed_tenths(int f, long long* tenths) const {
        const Value& v = values_[std::size_t(f)];
        if (!v.has_number) return false;
        *tenths = v.negative ? -v.tenths : v.tenths;
        return true;
    }
    // A sum of two numbers of whole tenths, set in the one-decimal mask.
    // Below a thousand million tenths the double sum lies within a hair of
    // the whole tenths, so set_one_decimal would count these very tenths;
    // the sign is that of the sum, and a sum of nought is never negative.
    // Larger sums take the arithmetic in doubles.
    bool set_tenths_sum(int f, long long tenths) {
        if (tenths >= 1000000000LL || tenths <= -1000000000LL) return false;
        set_tenths(f, tenths < 0 ? -tenths : tenths, tenths < 0);
        return true;
    }
    // A number in its plain text, as set(f, plain_number_chars(value)) stores
    // it; with no more than one decimal, and short enough for the field, it is
    // written straight from its tenths and kept as them.
    void set_plain_number(int f, double value) {
        long long tenths = 0;
        if (plain_number_tenths(value, &tenths)) {
            const bool negative = tenths < 0;
            const long long count = negative ? -tenths : tenths;
            char buf[16];
            int n = 0;
            if (negative) buf[n++] = '-';
            n += write_digits(count / 10, buf + n);
            if (count % 10 != 0) {
                buf[n++] = '.';
                buf[n++] = char('0' + count % 10);
            }
            if (n <= widths_[std::size_t(f)]) {
                Value& v = values_[std::size_t(f)];
                v.own.assign(buf, std::size_t(n));
                v.text = QLatin1StringView(v.own.data(), qsizetype(v.own.size()));
                v.null = false;
                v.changed = true;
                v.pending = false;
                v.has_number = true;
                v.negative = negative;
                v.tenths = count;
                return;
            }
        }
        const std::string text = plain_number_chars(value);
        set(f, QLatin1StringView(text.data(), qsizetype(text.size())));
    }
    // Writes what changed; one Edit and Update for the record.
    void save(DbfTable& table) {
        bool any = false;
        for (const Value& v : values_) any = any || v.changed;
        if (!any) return;
        table.Edit();
        const QByteArrayView stored = table.record_bytes();
        QByteArray& record = record_;  // one buffer for every record
        record.resize(stored.size());
        std::memcpy(record.data(), stored.data(), std::size_t(stored.size()));
        std::vector<int> typed;  // changed fields that are no text: through their value
        for (int f = 2; f < int(values_.size()); ++f) {
            Value& v = values_[std::size_t(f)];
            if (!v.changed) continue;
            const DbfField& field = table.field(f);
            if (!is_text_field(field.type)) {
                typed.push_back(f);
                continue;
            }
            if (v.pending) write_out(v);
            char* p = record.data() + table.field_offset(f);
            std::memset(p, ' ', std::size_t(field.width));
            if (!v.null) std::memcpy(p, v.text.data(), std::min(std::size_t(v.text.size()), std::size_t(field.width)));
        }
        table.set_record_bytes(record);
        for (int f : typed) {
            Value& v = values_[std::size_t(f)];
            if (v.pending) write_out(v);
            table.set_value(f, v.null ? QVariant() : QVariant(cp1252::decode(v.text.data(), qsizetype(v.text.size()))));
        }
        table.Update();
    }

private:
    void set_tenths(int f, long long tenths, bool negative) {
        Value& v = values_[std::size_t(f)];
        v.negative = negative;
        v.tenths = tenths;
        v.changed = true;
        v.null = false;
        if (tenths >= fitting_[std::size_t(f)][negative ? 1 : 0]) {
            // Cut at the field's width, as the table would store it.
            write_out(v);
            set(f, QLatin1StringView(std::string(v.text.data(), std::size_t(v.text.size()))));
            return;
        }
        v.pending = true;
        v.has_number = true;
    }

    struct Value {
        // The text: the loaded record's bytes as they stand, or own once set.
        // The record stays put while it is worked on.
        QLatin1StringView text;
        std::string own;  // short enough to stay in the string itself
        bool null = true;
        bool changed = false;
        // A total as the arithmetic left it: its number in whole tenths
        // (without the sign), and whether its one-decimal text is still to be
        // written out; a plain text is written at once.
        bool has_number = false;
        bool pending = false;
        bool negative = false;
        long long tenths = 0;
    };
    // A pending text is written out the first time it is read.
    QLatin1StringView text(int f) const {
        Value& v = values_[std::size_t(f)];
        if (v.pending) write_out(v);
        return v.text;
    }
    // The decimal digits of a whole number, "0" for nought; gives their count.
    static int write_digits(long long count, char* out) {
        char digits[20];
        int d = 0;
        do {
            digits[d++] = char('0' + count % 10);
            count /= 10;
        } while (count > 0);
        for (int k = 0; k < d; ++k) out[k] = digits[d - 1 - k];
        return d;
    }
    static void write_out(Value& v) {
        char buf[24];
        int n = 0;
        if (v.negative) buf[n++] = '-';
        n += write_digits(v.tenths / 10, buf + n);
        buf[n++] = '.';
        buf[n++] = char('0' + v.tenths % 10);
        v.own.assign(buf, std::size_t(n));
        v.text = QLatin1StringView(v.own.data(), qsizetype(v.own.size()));
        v.pending = false;
    }

    // A total's number: its tenths over ten, never a negative nought.
    static double tenths_value(const Value& v) {
        const double read = double(v.tenths) / 10.0;
        return read == 0.0 ? 0.0 : (v.negative ? -read : read);
    }

    const DbfTable& table_;
    std::vector<int> widths_;  // each field's width, offset and kind, looked up once
    std::vector<int> offsets_;
    std::vector<bool> text_field_;
    std::vector<bool> character_;
    QByteArray record_;
    // The tenths from which a one-decimal number no longer fits its field,
    // without and with a sign.
    std::vector<std::array<long long, 2>> fitting_;
    mutable std::vector<Value> values_;
};

// A real mark field of the table: never the learner's number or name.
bool is_mark_field(const WorkRecord& rec, int f) { return f >= 2 && rec.has(f); }

}  // namespace

bool recalculate_totals(DbfTable& marks, const ColumnLists& lists,
                        const std::function<void(int, int)>& progress) {
    const int entries = lists.entry_count();
    // The whole table is taken, worked in memory and written once at the end.
    if (!marks.begin_batch()) return false;

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
            if (is_mark_field(rec, f)) rec.set(f, QLatin1StringView("     "));

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
            const QLatin1StringView v = rec.normalised(i);
            if (v.isEmpty() || v == QLatin1StringView("A") || v == QLatin1StringView("a")) continue;
            out_of_sum[c] += r.y;
            // The mark's share in one decimal, added to the total, which is
            // kept in one decimal after each addition: in whole tenths where
            // both are whole tenths already.
            const double share = (Val(v) / r.x) * r.y;
            long long share_tenths = 0, total_tenths = 0;
            if (one_decimal_tenths(share, &share_tenths) && rec.signed_tenths(c, &total_tenths) &&
                rec.set_tenths_sum(c, total_tenths + (share < 0 ? -share_tenths : share_tenths)))
                continue;
            const double m = one_decimal_value(share);
            rec.set_one_decimal(c, rec.number(c) + m);
        }

        // Conversion of each fed total, in ascending field order.
        for (const TotalFacts& total : conversions) {
            const int c = total.c;
            if (!is_mark_field(rec, c)) continue;
            const int t = total.t;
            double m = 0;
            if (!rec.counts(c, &m)) continue;
            const double x = total.x;
            double y = out_of_sum[c];
            if (y == 0) y = x;
            if (y == 0) continue;  // a total of 0 with nothing fed: left as summed
            const double w = total.w;
            const double converted = (m / y) * x;
            const double d = converted - m;
            rec.set_one_decimal(c, converted);
            if (c != t && t != kNoTarget && d != 0 && x != 0 && is_mark_field(rec, t)) {
                const double passed = one_decimal_value(number_text_value(d / x) * w);
                rec.set_plain_number(t, rec.number(t) + passed);
                rec.set_plain_number(t, std::min(rec.number(t), x));
            }
        }

        // Fields past the count of named rows are emptied.
        for (int f = named + 2; f <= 41; ++f)
            if (is_mark_field(rec, f)) rec.set(f, QLatin1StringView());

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
    // Only text counts: a Null (all blank) field or a number is passed over.
    struct Counted {
        int f, offset, width;
        bool character;
    };
    std::vector<Counted> counted_fields;
    for (int f = 2; f < fields; ++f) {
        const DbfField& field = marks.field(f);
        if (is_text_field(field.type))
            counted_fields.push_back({f, marks.field_offset(f), field.width, field.type == DbfType::Character});
    }
    for (marks.MoveFirst(); !marks.Eof(); marks.MoveNext()) {
        const QByteArrayView record = marks.record_bytes();
        for (const Counted& c : counted_fields) {
            const int f = c.f;
            const char* p = record.data() + c.offset;
            int length = stored_text_length(p, c.width, c.character);
            if (length < 0) continue;
            while (length > 0 && p[length - 1] == ' ') --length;
            const QLatin1StringView text(p, length);
            if (text.isEmpty() || text == QLatin1StringView("A") || text == QLatin1StringView("a")) continue;
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
