// Feeds arbitrary bytes to the quoted-values reader. Whatever it reads must
// write out and read back the same: the reader never yields a text with a
// quote or a line end, nor a bare value with a comma, a line end or blanks
// around it, so no value read is one the format cannot carry.

#include "util/quoted_values.h"

#include <cstdint>
#include <cstdlib>

namespace {

bool same_lines(const QList<veldo::QuotedLine>& a, const QList<veldo::QuotedLine>& b) {
    if (a.size() != b.size()) return false;
    for (qsizetype i = 0; i < a.size(); ++i) {
        if (a[i].size() != b[i].size()) return false;
        for (qsizetype j = 0; j < a[i].size(); ++j) {
            const veldo::QuotedValue& x = a[i][j];
            const veldo::QuotedValue& y = b[i][j];
            if (x.kind != y.kind || x.text != y.text || x.boolean != y.boolean) return false;
        }
    }
    return true;
}

bool carries(const veldo::QuotedValue& v) {
    for (QChar c : v.text) {
        if (c == QLatin1Char('\r') || c == QLatin1Char('\n')) return false;
        if (v.kind == veldo::QuotedValue::Kind::Text && c == QLatin1Char('"')) return false;
        if (v.kind == veldo::QuotedValue::Kind::Bare && c == QLatin1Char(',')) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QList<veldo::QuotedLine> lines = veldo::read_quoted_lines(bytes);

    qsizetype count = 0;
    bool all_carried = true;
    for (const veldo::QuotedLine& line : lines) {
        count += line.size();
        for (const veldo::QuotedValue& v : line) all_carried = all_carried && carries(v);
    }
    if (veldo::read_quoted_values(bytes).size() != count) std::abort();
    if (!all_carried) std::abort();  // the reader made a value it cannot write

    const QByteArray written = veldo::write_quoted_lines(lines);
    const QList<veldo::QuotedLine> again = veldo::read_quoted_lines(written);
    if (!same_lines(lines, again)) std::abort();
    if (veldo::write_quoted_lines(again) != written) std::abort();
    return 0;
}
