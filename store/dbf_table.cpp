#include "store/dbf_table.h"

#include "util/cp1252.h"
#include "util/file_lookup.h"
#include "util/safe_file.h"
#include "util/text_helpers.h"

#include <shapefil.h>

#include <QDate>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

namespace veldo {
namespace {


// ---------------------------------------------------------------------------
// File hooks. shapelib opens `<base>.dbf`, then `<base>.DBF`, then looks for a
// `.cpg`; the family's names differ in case and carry no `.cpg`, so the hooks
// open exactly the file asked for and nothing else. They also remember a
// failed write: from then on the handle writes nothing more, so a header can
// never count a record that did not reach the disk.

struct HookFile {
    FILE* fp = nullptr;
    bool failed = false;
    // shapelib seeks before every record, which costs a system call each
    // time; a seek to where the stream already is gets put off. C wants a
    // real seek between a read and a write, so a change of direction makes
    // up the one put off.
    enum class Last { None, Read, Write } last = Last::None;
    bool seek_owed = false;
};

thread_local const char* t_target = nullptr;

HookFile* hook_file(SAFile file) { return reinterpret_cast<HookFile*>(file); }

bool names_table(const char* name) {
    const std::size_t n = std::strlen(name);
    if (n < 4) return false;
    const char* ext = name + n - 4;
    return ext[0] == '.' && (ext[1] == 'd' || ext[1] == 'D') && (ext[2] == 'b' || ext[2] == 'B') &&
           (ext[3] == 'f' || ext[3] == 'F');
}

SAFile hook_open(const char* name, const char* access) {
    if (!t_target || !names_table(name)) return nullptr;
    FILE* fp = std::fopen(t_target, access);
    if (!fp) return nullptr;
    return reinterpret_cast<SAFile>(new HookFile{fp, false});
}

long long tell(FILE* fp) {
#ifdef _WIN32
    return _ftelli64(fp);
#else
    return ftello(fp);
#endif
}

int seek(HookFile* f, long long offset, int whence) {
#ifdef _WIN32
    const int rc = _fseeki64(f->fp, offset, whence);
#else
    const int rc = fseeko(f->fp, static_cast<off_t>(offset), whence);
#endif
    // A seek flushes pending writes: its failure is a write failure.
    if (rc != 0) f->failed = true;
    f->seek_owed = false;
    return rc;
}

void turn(HookFile* f, HookFile::Last now) {
    if (f->seek_owed && f->last != now && f->last != HookFile::Last::None)
        seek(f, tell(f->fp), SEEK_SET);
    f->seek_owed = false;
    f->last = now;
}

SAOffset hook_read(void* p, SAOffset size, SAOffset count, SAFile file) {
    HookFile* f = hook_file(file);
    turn(f, HookFile::Last::Read);
    return std::fread(p, size, count, f->fp);
}

SAOffset hook_write(void* p, SAOffset size, SAOffset count, SAFile file) {
    HookFile* f = hook_file(file);
    if (f->failed) return 0;
    turn(f, HookFile::Last::Write);
    const std::size_t done = std::fwrite(p, size, count, f->fp);
    if (done != count) f->failed = true;
    return done;
}

SAOffset hook_seek(SAFile file, SAOffset offset, int whence) {
    HookFile* f = hook_file(file);
    // A real seek also clears the end-of-file mark; keep it where one is set.
    if (whence == SEEK_SET && !f->failed && !std::feof(f->fp) && !std::ferror(f->fp) &&
        tell(f->fp) == static_cast<long long>(offset)) {
        f->seek_owed = true;
        return 0;
    }
    return seek(f, static_cast<long long>(offset), whence) == 0 ? 0 : 1;
}

SAOffset hook_tell(SAFile file) { return static_cast<SAOffset>(tell(hook_file(file)->fp)); }

int hook_flush(SAFile file) {
    HookFile* f = hook_file(file);
    const int rc = std::fflush(f->fp);
    if (rc != 0) f->failed = true;
    // After a flushed write, a read needs no seek.
    if (f->last == HookFile::Last::Write) {
        f->seek_owed = false;
        f->last = HookFile::Last::None;
    }
    return rc;
}

int hook_close(SAFile file) {
    HookFile* f = hook_file(file);
    const int rc = std::fclose(f->fp);
    delete f;
    return rc;
}

// shapelib deletes a stale `.cpg` when it creates a table; leave folders alone.
int hook_remove(const char*) { return 0; }

// Failures reach the caller through return values and the write flag.
void hook_error(const char*) {}

std::optional<double> parse_number(const char* begin, const char* end);

double hook_atof(const char* text) {
    return parse_number(text, text + std::strlen(text)).value_or(0.0);
}

SAHooks table_hooks() {
    SAHooks h{};
    h.FOpen = hook_open;
    h.FRead = hook_read;
    h.FWrite = hook_write;
    h.FSeek = hook_seek;
    h.FTell = hook_tell;
    h.FFlush = hook_flush;
    h.FClose = hook_close;
    h.Remove = hook_remove;
    h.Error = hook_error;
    h.Atof = hook_atof;
    return h;
}

// Points the hooks at one file for the length of an open or create.
class TargetScope {
public:
    explicit TargetScope(const QByteArray& native) { t_target = native.constData(); }
    ~TargetScope() { t_target = nullptr; }
    TargetScope(const TargetScope&) = delete;
    TargetScope& operator=(const TargetScope&) = delete;
};

void stamp_today(DBFHandle h) {
    const QDate today = QDate::currentDate();
    DBFSetLastModifiedDate(h, today.year() - 1900, today.month(), today.day());
}

// ---------------------------------------------------------------------------
// Header check, before shapelib sees the file: shapelib trusts the header's
// lengths, and a table that is short or inconsistent must be refused with a
// message rather than read past its end.

constexpr int kFileHeader = 32;
constexpr int kFieldDescriptor = 32;
constexpr char kTerminator = 0x0D;

struct TableLayout {
    int header_length = 0;
    int record_length = 0;
    qint64 records = 0;
    QList<DbfField> fields;
    std::vector<int> offsets;
};

unsigned u8(const QByteArray& b, int i) { return static_cast<unsigned char>(b.at(i)); }
unsigned u16(const QByteArray& b, int i) { return u8(b, i) | (u8(b, i + 1) << 8); }

// dBASE II+ to dBASE 5, FoxBASE, FoxPro and Visual FoxPro, with and without memo.
bool known_version(unsigned v) {
    switch (v) {
    case 0x02: case 0x03: case 0x04: case 0x05: case 0x30: case 0x31: case 0x32:
    case 0x43: case 0x63: case 0x83: case 0x8B: case 0x8E: case 0xCB: case 0xE5:
    case 0xF5: case 0xFB:
        return true;
    default:
        return false;
    }
}

bool known_type(char t) { return t != '\0' && std::strchr("CNFDLMBGPYTIV@+O0WQ", t) != nullptr; }

DbfType type_of(char t) {
    switch (t) {
    case 'C': return DbfType::Character;
    case 'N': case 'F': return DbfType::Numeric;
    case 'D': return DbfType::Date;
    case 'L': return DbfType::Logical;
    case 'M': return DbfType::Memo;
    default: return DbfType::Other;
    }
}

// The layout of a table from its bytes, as read in one go at open.
DbfError::Code read_layout(const QByteArray& bytes, TableLayout* out) {
    const qint64 size = bytes.size();
    if (size == 0) return DbfError::Empty;
    const QByteArray head = bytes.left(kFileHeader);
    if (head.size() < kFileHeader) return DbfError::NotATable;
    if (!known_version(u8(head, 0))) return DbfError::NotATable;

    const int header_length = int(u16(head, 8));
    const int record_length = int(u16(head, 10));
    // The top bit is dropped as shapelib drops it.
    const qint64 records = qint64(u16(head, 4)) | (qint64(u16(head, 6) & 0x7FFF) << 16);
    if (header_length < kFileHeader + kFieldDescriptor) return DbfError::NotATable;

    const QByteArray descriptors = bytes.mid(kFileHeader, header_length - kFileHeader);
    const int places = (header_length - kFileHeader) / kFieldDescriptor;
    bool cut_short = false;
    QList<DbfField> fields;
    std::vector<int> offsets;
    int offset = 1;  // the deletion flag comes first
    for (int i = 0; i < places; ++i) {
        const int at = i * kFieldDescriptor;
        if (at < descriptors.size() && descriptors.at(at) == kTerminator) break;
        if (at + kFieldDescriptor > descriptors.size()) {
            cut_short = true;
            break;
        }
        const char* d = descriptors.constData() + at;
        const auto first = static_cast<unsigned char>(d[0]);
        if (first <= 0x20 || first == 0x7F) return DbfError::NotATable;
        const char type = d[11];
        if (!known_type(type)) return DbfError::NotATable;
        DbfField field;
        const int name_length = int(std::find(d, d + 11, '\0') - d);
        field.name = cp1252::decode(d, name_length);
        while (field.name.endsWith(QLatin1Char(' '))) field.name.chop(1);
        field.type = type_of(type);
        field.width = static_cast<unsigned char>(d[16]);
        field.decimals = field.type == DbfType::Numeric ? static_cast<unsigned char>(d[17]) : 0;
        if (field.width == 0) return DbfError::Damaged;
        fields.append(field);
        offsets.push_back(offset);
        offset += field.width;
    }
    if (fields.isEmpty()) return cut_short ? DbfError::Truncated : DbfError::NotATable;
    if (offset > record_length) return DbfError::Damaged;
    if (cut_short || header_length > size) return DbfError::Truncated;
    if (qint64(header_length) + records * record_length > size) return DbfError::Truncated;

    out->header_length = header_length;
    out->record_length = record_length;
    out->records = records;
    out->fields = fields;
    out->offsets = std::move(offsets);
    return DbfError::None;
}

// ---------------------------------------------------------------------------
// Field values. Everything here is locale-free.

bool is_blank(char c) { return c == ' ' || c == '\0'; }

bool all_blank(const char* p, int n) {
    for (int i = 0; i < n; ++i)
        if (!is_blank(p[i])) return false;
    return true;
}

std::optional<double> parse_number(const char* begin, const char* end) {
    while (begin < end && is_blank(*begin)) ++begin;
    while (end > begin && is_blank(end[-1])) --end;
    if (begin == end) return std::nullopt;
    if (*begin == '+') {
        ++begin;
        if (begin == end || *begin == '-') return std::nullopt;
    }
    double value = 0.0;
    const auto [ptr, ec] = std::from_chars(begin, end, value, std::chars_format::general);
    if (ec != std::errc() || ptr != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

const QDate kDateBase(1899, 12, 30);

QVariant read_date(const char* p, int n) {
    if (n < 8) return {};
    int parts[3] = {0, 0, 0};
    const int lengths[3] = {4, 2, 2};
    int at = 0;
    for (int k = 0; k < 3; ++k) {
        for (int i = 0; i < lengths[k]; ++i, ++at) {
            if (p[at] < '0' || p[at] > '9') return {};
            parts[k] = parts[k] * 10 + (p[at] - '0');
        }
    }
    const QDate date(parts[0], parts[1], parts[2]);
    if (!date.isValid()) return {};
    return QVariant::fromValue(OleDate{double(kDateBase.daysTo(date))});
}

QVariant read_field(const DbfField& field, const char* p) {
    const int n = field.width;
    if (all_blank(p, n)) return {};
    switch (field.type) {
    case DbfType::Character:
        return cp1252::decode(p, stored_text_length(p, n, true));
    case DbfType::Numeric: {
        const auto number = parse_number(p, p + n);
        return number ? QVariant(*number) : QVariant();
    }
    case DbfType::Date:
        return read_date(p, n);
    case DbfType::Logical:
        for (int i = 0; i < n; ++i) {
            switch (p[i]) {
            case 'T': case 't': case 'Y': case 'y': return true;
            case 'F': case 'f': case 'N': case 'n': return false;
            case ' ': case '\0': continue;
            default: return {};
            }
        }
        return {};
    case DbfType::Memo:
    case DbfType::Other:
        return cp1252::decode(p, stored_text_length(p, n, false));
    }
    return {};
}

bool is_integral(const QVariant& v) {
    switch (v.typeId()) {
    case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong:
    case QMetaType::ULongLong: case QMetaType::Short: case QMetaType::UShort:
    case QMetaType::Long: case QMetaType::ULong: case QMetaType::SChar:
    case QMetaType::UChar: case QMetaType::Char:
        return true;
    default:
        return false;
    }
}

bool is_floating(const QVariant& v) {
    return v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float;
}

bool is_text(const QVariant& v) {
    return v.typeId() == QMetaType::QString || v.typeId() == QMetaType::QByteArray ||
           v.typeId() == QMetaType::QChar;
}

QString text_of_variant(const QVariant& v) {
    if (v.typeId() == QMetaType::QByteArray) return cp1252::decode(v.toByteArray());
    return v.toString();
}

std::string integer_text(const QVariant& v) {
    char buf[32];
    std::to_chars_result r{};
    if (v.typeId() == QMetaType::ULongLong || v.typeId() == QMetaType::ULong ||
        v.typeId() == QMetaType::UInt)
        r = std::to_chars(buf, buf + sizeof buf, v.toULongLong());
    else
        r = std::to_chars(buf, buf + sizeof buf, v.toLongLong());
    return std::string(buf, r.ptr);
}

// The digits of `value` with `decimals` places after the point. The value is
// taken to 15 significant digits first, then rounded half away from zero, as
// dBASE and the rest of the system round: 2.675 gives 2.68.
std::string fixed_text(double value, int decimals) {
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, std::fabs(value),
                                 std::chars_format::scientific, 14);
    const char* e = std::find(buf, r.ptr, 'e');
    std::string digits;
    for (const char* c = buf; c < e; ++c)
        if (*c != '.') digits.push_back(*c);
    int exponent = 0;
    std::from_chars(e + 1 + (e[1] == '+' ? 1 : 0), r.ptr, exponent);

    int whole = exponent + 1;  // digits before the point
    const int keep = whole + decimals;
    if (keep < 0) {
        digits.clear();
    } else if (keep < int(digits.size())) {
        const bool up = digits[std::size_t(keep)] >= '5';
        digits.resize(std::size_t(keep));
        if (up) {
            int i = keep - 1;
            for (; i >= 0; --i) {
                if (digits[std::size_t(i)] == '9') {
                    digits[std::size_t(i)] = '0';
                } else {
                    ++digits[std::size_t(i)];
                    break;
                }
            }
            if (i < 0) {
                digits.insert(digits.begin(), '1');
                ++whole;
            }
        }
    }
    if (digits.empty()) return decimals > 0 ? "0." + std::string(std::size_t(decimals), '0') : "0";
    while (int(digits.size()) < whole + decimals) digits.push_back('0');

    std::string int_part;
    std::string fraction;
    if (whole <= 0) {
        int_part = "0";
        fraction = std::string(std::size_t(-whole), '0') + digits;
    } else {
        int_part = digits.substr(0, std::size_t(whole));
        fraction = digits.substr(std::size_t(whole));
    }
    const bool zero = digits.find_first_not_of('0') == std::string::npos;
    std::string text = (value < 0 && !zero) ? "-" : "";
    text += int_part;
    if (decimals > 0) text += "." + fraction;
    return text;
}

void put_left(char* dst, int width, const QByteArray& bytes) {
    const int n = std::min<int>(width, int(bytes.size()));
    std::memcpy(dst, bytes.constData(), std::size_t(n));
    std::memset(dst + n, ' ', std::size_t(width - n));
}

bool put_right(char* dst, int width, const std::string& text) {
    if (int(text.size()) > width) return false;
    const int pad = width - int(text.size());
    std::memset(dst, ' ', std::size_t(pad));
    std::memcpy(dst + pad, text.data(), text.size());
    return true;
}

DbfError::Code write_numeric(const DbfField& field, char* dst, const QVariant& v) {
    std::string text;
    if (is_integral(v)) {
        text = integer_text(v);
        if (field.decimals > 0) text += "." + std::string(std::size_t(field.decimals), '0');
    } else {
        double number = 0.0;
        if (is_floating(v)) {
            number = v.toDouble();
        } else if (is_text(v)) {
            const QByteArray raw = text_of_variant(v).toLatin1();
            if (all_blank(raw.constData(), int(raw.size()))) {
                std::memset(dst, ' ', std::size_t(field.width));
                return DbfError::None;
            }
            const auto parsed = parse_number(raw.constData(), raw.constData() + raw.size());
            if (!parsed) return DbfError::BadValue;
            number = *parsed;
        } else {
            return DbfError::BadValue;
        }
        if (!std::isfinite(number)) return DbfError::BadValue;
        text = fixed_text(number, field.decimals);
    }
    return put_right(dst, field.width, text) ? DbfError::None : DbfError::TooWide;
}

DbfError::Code write_date(const DbfField& field, char* dst, const QVariant& v) {
    QDate date;
    if (v.metaType() == QMetaType::fromType<OleDate>()) {
        const double days = v.value<OleDate>().days;
        if (!std::isfinite(days) || std::fabs(days) > 4.0e6) return DbfError::BadValue;
        date = kDateBase.addDays(qint64(std::floor(days)));
    } else if (v.typeId() == QMetaType::QDate) {
        date = v.toDate();
    } else if (v.typeId() == QMetaType::QDateTime) {
        date = v.toDateTime().date();
    } else if (is_text(v)) {
        const QByteArray raw = text_of_variant(v).toLatin1();
        if (all_blank(raw.constData(), int(raw.size()))) {
            std::memset(dst, ' ', std::size_t(field.width));
            return DbfError::None;
        }
        const QByteArray trimmed = raw.trimmed();
        if (trimmed.size() != 8 || !read_date(trimmed.constData(), 8).isValid())
            return DbfError::BadValue;
        put_left(dst, field.width, trimmed);
        return DbfError::None;
    } else {
        return DbfError::BadValue;
    }
    if (!date.isValid() || date.year() < 1 || date.year() > 9999) return DbfError::BadValue;
    char text[9];
    std::snprintf(text, sizeof text, "%04d%02d%02d", date.year(), date.month(), date.day());
    put_left(dst, field.width, QByteArray(text, 8));
    return DbfError::None;
}

DbfError::Code write_logical(const DbfField& field, char* dst, const QVariant& v) {
    char mark = ' ';
    if (v.typeId() == QMetaType::Bool) {
        mark = v.toBool() ? 'T' : 'F';
    } else if (is_integral(v) || is_floating(v)) {
        mark = v.toDouble() != 0.0 ? 'T' : 'F';
    } else if (is_text(v)) {
        const QString text = text_of_variant(v).trimmed();
        if (!text.isEmpty()) {
            switch (text.at(0).toLatin1()) {
            case 'T': case 't': case 'Y': case 'y': mark = 'T'; break;
            case 'F': case 'f': case 'N': case 'n': mark = 'F'; break;
            case '?': mark = '?'; break;
            default: return DbfError::BadValue;
            }
        }
    } else {
        return DbfError::BadValue;
    }
    std::memset(dst, ' ', std::size_t(field.width));
    dst[0] = mark;
    return DbfError::None;
}

// Memo fields hold the number of a block in the `.dbt`, right-justified.
DbfError::Code write_memo(const DbfField& field, char* dst, const QVariant& v) {
    std::string text;
    if (is_integral(v)) {
        text = integer_text(v);
    } else if (is_text(v)) {
        text = text_of_variant(v).trimmed().toLatin1().toStdString();
    } else {
        return DbfError::BadValue;
    }
    return put_right(dst, field.width, text) ? DbfError::None : DbfError::TooWide;
}

DbfError::Code write_text(const DbfField& field, char* dst, const QVariant& v) {
    QByteArray bytes;
    if (v.typeId() == QMetaType::QByteArray) {
        bytes = v.toByteArray();
    } else if (is_text(v)) {
        bytes = cp1252::encode(v.toString());
    } else if (v.typeId() == QMetaType::Bool) {
        bytes = v.toBool() ? "True" : "False";
    } else if (is_integral(v)) {
        bytes = QByteArray::fromStdString(integer_text(v));
    } else if (is_floating(v)) {
        // QString::number ignores the locale.
        bytes = QString::number(v.toDouble(), 'g', QLocale::FloatingPointShortest).toLatin1();
    } else {
        return DbfError::BadValue;
    }
    put_left(dst, field.width, bytes);
    return DbfError::None;
}

DbfError::Code write_field(const DbfField& field, char* dst, const QVariant& v) {
    if (!v.isValid() || v.isNull()) {
        std::memset(dst, ' ', std::size_t(field.width));
        return DbfError::None;
    }
    switch (field.type) {
    case DbfType::Character: return write_text(field, dst, v);
    case DbfType::Numeric: return write_numeric(field, dst, v);
    case DbfType::Date: return write_date(field, dst, v);
    case DbfType::Logical: return write_logical(field, dst, v);
    case DbfType::Memo: return write_memo(field, dst, v);
    case DbfType::Other: return write_text(field, dst, v);
    }
    return DbfError::BadValue;
}

// ---------------------------------------------------------------------------
// Creating.

constexpr int kMaxFields = 128;
constexpr int kMaxRecordLength = 4000;

bool valid_name(const QString& name) {
    if (name.isEmpty() || name.size() > 10) return false;
    for (int i = 0; i < name.size(); ++i) {
        const char16_t c = name.at(i).unicode();
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        const bool digit = c >= '0' && c <= '9';
        if (i == 0 ? !letter : !(letter || digit || c == '_')) return false;
    }
    return true;
}

// Brings a field to what dBASE III stores, or says why it cannot be.
bool normalise(DbfField* f, char* type) {
    if (!valid_name(f->name)) return false;
    f->name = f->name.toUpper();
    switch (f->type) {
    case DbfType::Character:
        *type = 'C';
        f->decimals = 0;
        return f->width >= 1 && f->width <= 254;
    case DbfType::Numeric:
        *type = 'N';
        return f->width >= 1 && f->width <= 19 && f->decimals >= 0 && f->decimals <= 15 &&
               (f->decimals == 0 || f->decimals <= f->width - 2);
    case DbfType::Date:
        *type = 'D';
        f->width = 8;
        f->decimals = 0;
        return true;
    case DbfType::Logical:
        *type = 'L';
        f->width = 1;
        f->decimals = 0;
        return true;
    case DbfType::Memo:
        *type = 'M';
        f->width = 10;
        f->decimals = 0;
        return true;
    case DbfType::Other:
        return false;
    }
    return false;
}

// `.dbf` has its memo in `.dbt`; a template `.org` has it in `.ort`.
QString memo_path_of(const QString& table_path) {
    const QFileInfo info(table_path);
    const QString suffix = info.suffix();
    const bool upper = !suffix.isEmpty() && suffix == suffix.toUpper();
    const bool template_file = suffix.compare(QStringLiteral("org"), Qt::CaseInsensitive) == 0;
    const QString base =
        suffix.isEmpty() ? table_path : table_path.left(table_path.size() - suffix.size() - 1);
    const QString ext = template_file ? QStringLiteral(".ort") : QStringLiteral(".dbt");
    return base + (upper ? ext.toUpper() : ext);
}

// An empty dBASE III memo file: the next free block is 1.
QByteArray empty_memo_file() {
    QByteArray bytes(512, '\0');
    bytes[0] = 1;
    bytes[16] = 0x03;
    return bytes;
}

void report(DbfError* error, DbfError::Code code, const QString& path, const QString& detail = {}) {
    if (error) *error = DbfError{code, path, detail};
}

}  // namespace

int stored_text_length(const char* p, int width, bool character) {
    if (all_blank(p, width)) return -1;
    return character ? int(std::find(p, p + width, '\0') - p) : width;
}

// ---------------------------------------------------------------------------

QString dbf_error_message(const DbfError& error, bool afrikaans) {
    const QString path = QDir::toNativeSeparators(error.path);
    const QString& detail = error.detail;
    switch (error.code) {
    case DbfError::None:
        return {};
    case DbfError::Missing:
        return afrikaans ? QStringLiteral("Die tabel %1 bestaan nie.").arg(path)
                         : QStringLiteral("The table %1 does not exist.").arg(path);
    case DbfError::Unreadable:
        return afrikaans ? QStringLiteral("Die tabel %1 kan nie gelees word nie.").arg(path)
                         : QStringLiteral("The table %1 cannot be read.").arg(path);
    case DbfError::Empty:
        return afrikaans ? QStringLiteral("Die tabel %1 is leeg (0 grepe) en kan nie oopgemaak word nie.").arg(path)
                         : QStringLiteral("The table %1 is empty (0 bytes) and cannot be opened.").arg(path);
    case DbfError::NotATable:
        return afrikaans ? QStringLiteral("Die lêer %1 is nie 'n dBASE-tabel nie.").arg(path)
                         : QStringLiteral("The file %1 is not a dBASE table.").arg(path);
    case DbfError::Damaged:
        return afrikaans ? QStringLiteral("Die tabel %1 is beskadig: die velde pas nie in die rekords nie.").arg(path)
                         : QStringLiteral("The table %1 is damaged: its fields do not fit its records.").arg(path);
    case DbfError::Truncated:
        return afrikaans ? QStringLiteral("Die tabel %1 is beskadig of onvolledig.").arg(path)
                         : QStringLiteral("The table %1 is damaged or incomplete.").arg(path);
    case DbfError::ReadOnly:
        return afrikaans ? QStringLiteral("Die tabel %1 is 'READ ONLY' en kan nie verander word nie.").arg(path)
                         : QStringLiteral("The table %1 is 'READ ONLY' and cannot be changed.").arg(path);
    case DbfError::WriteFailed:
        return afrikaans ? QStringLiteral("Kon nie na die tabel %1 skryf nie. Is die skyf vol?").arg(path)
                         : QStringLiteral("Could not write to the table %1. Is the disk full?").arg(path);
    case DbfError::NoSuchField:
        return afrikaans ? QStringLiteral("Die tabel %1 het geen veld %2 nie.").arg(path, detail)
                         : QStringLiteral("The table %1 has no field %2.").arg(path, detail);
    case DbfError::NoCurrentRecord:
        return afrikaans ? QStringLiteral("Daar is geen huidige rekord in die tabel %1 nie.").arg(path)
                         : QStringLiteral("There is no current record in the table %1.").arg(path);
    case DbfError::NotEditing:
        return afrikaans ? QStringLiteral("Die tabel %1 word nie gewysig nie (Edit of AddNew ontbreek).").arg(path)
                         : QStringLiteral("The table %1 is not being edited (Edit or AddNew is missing).").arg(path);
    case DbfError::BadValue:
        return afrikaans ? QStringLiteral("Die waarde vir veld %2 van die tabel %1 is ongeldig.").arg(path, detail)
                         : QStringLiteral("The value for field %2 of the table %1 is not valid.").arg(path, detail);
    case DbfError::TooWide:
        return afrikaans ? QStringLiteral("Die getal vir veld %2 van die tabel %1 is te groot vir die veld.").arg(path, detail)
                         : QStringLiteral("The number for field %2 of the table %1 is too wide for the field.").arg(path, detail);
    case DbfError::InUse:
        return afrikaans ? QStringLiteral("DATASTEL %1  REEDS IN GEBRUIK ... PROBEER WEER LATER !").arg(path)
                         : QStringLiteral("DATASET %1  ALREADY IN  USE ... TRY AGAIN LATER !").arg(path);
    case DbfError::Replaced:
        return afrikaans ? QStringLiteral("Die tabel %1 is intussen deur 'n ander werkstasie herbou: maak dit weer oop.").arg(path)
                         : QStringLiteral("The table %1 was rebuilt by another workstation meanwhile: open it again.").arg(path);
    case DbfError::BadField:
        return afrikaans ? QStringLiteral("Die veld %2 van die nuwe tabel %1 is ongeldig.").arg(path, detail)
                         : QStringLiteral("The field %2 of the new table %1 is not valid.").arg(path, detail);
    }
    return {};
}

// ---------------------------------------------------------------------------

std::unique_ptr<DbfTable> DbfTable::open(const QString& path, DbfError* error, DbfAccess access) {
    std::unique_ptr<DbfTable> table(new DbfTable);
    table->path_ = path;
    table->access_ = access;
    if (!table->attach(access, error)) return nullptr;
    if (error) *error = DbfError{};
    return table;
}

DbfTable::~DbfTable() { Close(); }

namespace {

// Locks lie past any table's bytes, where Clipper and dBASE on a network put
// them, so that a lock never stands in a reader's way: the header's (for
// appends) at the base, record r's at base + r + 1, the whole table's over
// all of them.
constexpr qint64 kLockBase = 1000000000;
qint64 record_lock(int record) { return kLockBase + 1 + record; }
int g_lock_wait_ms = 3000;
// How many new files in its place a batch follows before it gives up: on a
// busy book every workstation that opens it rebuilds it.
constexpr int kFollowRebuilds = 50;

}  // namespace

void DbfTable::set_lock_wait_ms(int ms) { g_lock_wait_ms = std::max(ms, 0); }

bool DbfTable::lock_or_fail(qint64 offset, qint64 length) {
    if (file_.lock(offset, length, TableFile::LockKind::Exclusive, g_lock_wait_ms)) return true;
    fail(DbfError::InUse);
    return false;
}

bool DbfTable::attach(DbfAccess access, DbfError* error) {
    const QFileInfo info(path_);
    if (!info.exists()) {
        report(error, DbfError::Missing, path_);
        return false;
    }
    if (info.isDir()) {
        report(error, DbfError::NotATable, path_);
        return false;
    }
    bool read_only = access == DbfAccess::ReadOnly;
    if (!read_only && !file_.open(path_, true)) read_only = true;
    if (read_only && !file_.open(path_, false)) {
        report(error, DbfError::Unreadable, path_);
        return false;
    }
    read_only_ = read_only;
    if (!load_image(error)) {
        file_.close();
        return false;
    }
    return true;
}

// The whole file from the open handle, its layout checked, the walk at the
// first live record.
bool DbfTable::load_image(DbfError* error) {
    // The header first, then the rest: another workstation writes its new
    // records before the count that takes them in, so every record the count
    // names is on the disk by the time the rest is read. Read in one go, the
    // header could already count records that the read cut off.
    char head[kFileHeader];
    const bool have_head = file_.read_at(0, head, kFileHeader);
    QByteArray image;
    if (!file_.read_all(&image)) {
        report(error, DbfError::Unreadable, path_);
        return false;
    }
    if (have_head && image.size() >= kFileHeader) std::memcpy(image.data(), head, kFileHeader);
    TableLayout layout;
    const DbfError::Code code = read_layout(image, &layout);
    if (code != DbfError::None) {
        report(error, code, path_);
        return false;
    }
    fields_ = layout.fields;
    offsets_ = std::move(layout.offsets);
    header_length_ = layout.header_length;
    record_length_ = layout.record_length;
    image_ = std::move(image);
    take_records(int(layout.records));
    return true;
}

// The image's first `records` records as the table's, the walk at the
// first live one.
void DbfTable::take_records(int records) {
    live_.clear();
    live_.reserve(std::size_t(records));
    const char* first = image_.constData() + header_length_;
    for (qint64 r = 0; r < records; ++r)
        if (first[r * record_length_] != '*') live_.push_back(int(r));
    records_ = records;
    stamped_ = false;
    pos_ = 0;
    on_deleted_ = false;
}

// The whole file again, as load_image, but into the image it replaces
// where the file's layout is still the image's (the usual case: other
// workstations change records and the count, never the fields). A table
// of 2,000 learners then takes no new memory each time a batch begins.
bool DbfTable::reload_image(DbfError* error) {
    const qsizetype header = header_length_;
    if (header < kFileHeader || image_.size() < header) return load_image(error);
    // The version, lengths and field descriptors as they stand now; the date
    // and the count (bytes 1 to 7) may differ.
    QByteArray head(header, Qt::Uninitialized);
    if (!file_.read_at(0, head.data(), header) || head.at(0) != image_.at(0) ||
        std::memcmp(head.constData() + 8, image_.constData() + 8, std::size_t(header - 8)) != 0)
        return load_image(error);
    // Only a file that holds every record its count names is read in place:
    // any other takes load_image's way, which says what is wrong and keeps
    // the image as it was.
    const qint64 records = qint64(u16(head, 4)) | (qint64(u16(head, 6) & 0x7FFF) << 16);
    if (file_.size() < qint64(header) + records * record_length_) return load_image(error);
    if (!file_.read_all(&image_) || image_.size() < qint64(header) + records * record_length_) {
        // Half read: nothing of it can be trusted, so the table shows nothing.
        image_.clear();
        take_records(0);
        report(error, DbfError::Unreadable, path_);
        return false;
    }
    // The count read first: records appended while the rest was read are
    // taken in with the next count, as load_image does.
    std::memcpy(image_.data(), head.constData(), kFileHeader);
    take_records(int(records));
    return true;
}

void DbfTable::detach() {
    file_.close();  // and with it every lock of this handle
    record_locked_ = false;
    image_.clear();
    records_ = 0;
    live_.clear();
    pos_ = 0;
    on_deleted_ = false;
    batch_ = false;
    dirty_first_ = dirty_last_ = -1;
}

void DbfTable::fail(DbfError::Code code, const QString& detail) const {
    error_ = DbfError{code, path_, detail};
}

bool DbfTable::current_valid() const {
    return file_.is_open() && !on_deleted_ && pos_ >= 0 && pos_ < int(live_.size());
}

const char* DbfTable::current_bytes() const {
    if (mode_ != Mode::None) return edit_buf_.constData();
    if (!current_valid()) {
        fail(DbfError::NoCurrentRecord);
        return nullptr;
    }
    return image_.constData() + record_offset(live_[std::size_t(pos_)]);
}

void DbfTable::leave_edit() {
    if (record_locked_) file_.unlock(record_lock(edit_record_), 1);
    record_locked_ = false;
    mode_ = Mode::None;
    pending_error_ = DbfError::None;
}

// ---- walk

void DbfTable::MoveFirst() {
    leave_edit();
    on_deleted_ = false;
    pos_ = 0;
}

void DbfTable::MoveLast() {
    leave_edit();
    on_deleted_ = false;
    pos_ = live_.empty() ? 0 : int(live_.size()) - 1;
}

void DbfTable::MoveNext() { Move(1); }

void DbfTable::MovePrevious() { Move(-1); }

void DbfTable::Move(int rows) {
    leave_edit();
    if (rows == 0) return;
    const qint64 size = qint64(live_.size());
    // A deleted current record sat just before the record now at pos_.
    qint64 target = on_deleted_ && rows > 0 ? qint64(pos_) - 1 + rows : qint64(pos_) + rows;
    on_deleted_ = false;
    if (target < 0) target = -1;
    if (target > size) target = size;
    pos_ = int(target);
}

bool DbfTable::Eof() const {
    if (on_deleted_) return false;
    return live_.empty() || pos_ >= int(live_.size());
}

bool DbfTable::Bof() const {
    if (on_deleted_) return false;
    return live_.empty() || pos_ < 0;
}

int DbfTable::position() const { return current_valid() ? pos_ : -1; }

// ---- fields

const DbfField& DbfTable::field(int i) const {
    static const DbfField none;
    if (i < 0 || i >= fields_.size()) {
        fail(DbfError::NoSuchField, QString::number(i));
        return none;
    }
    return fields_[i];
}

int DbfTable::field_index(const QString& name) const {
    const QString wanted = name.trimmed();
    for (int i = 0; i < fields_.size(); ++i)
        if (fields_[i].name.compare(wanted, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

QVariant DbfTable::value(int i) const {
    if (i < 0 || i >= fields_.size()) {
        fail(DbfError::NoSuchField, QString::number(i));
        return {};
    }
    const char* record = current_bytes();
    if (!record) return {};
    return read_field(fields_[i], record + offsets_[std::size_t(i)]);
}

QVariant DbfTable::value(const QString& name) const {
    const int i = field_index(name);
    if (i < 0) {
        fail(DbfError::NoSuchField, name);
        return {};
    }
    return value(i);
}

QByteArrayView DbfTable::record_bytes() const {
    const char* record = current_bytes();
    return record ? QByteArrayView(record, record_length_) : QByteArrayView();
}

bool DbfTable::set_record_bytes(QByteArrayView bytes) {
    if (mode_ == Mode::None) {
        fail(DbfError::NotEditing);
        return false;
    }
    if (bytes.size() != record_length_) {
        fail(DbfError::BadValue);
        return false;
    }
    std::memcpy(edit_buf_.data() + 1, bytes.data() + 1, std::size_t(record_length_ - 1));
    return true;
}

// ---- changes

bool DbfTable::Edit() {
    if (!current_valid()) {
        fail(DbfError::NoCurrentRecord);
        return false;
    }
    if (read_only_) {
        fail(DbfError::ReadOnly);
        return false;
    }
    leave_edit();
    const int record = live_[std::size_t(pos_)];
    // Another workstation may have changed the record since the walk began:
    // the edit starts from what is on the disk now, under the record's lock
    // (a batch holds the whole table and works from memory).
    if (!batch_) {
        if (!lock_or_fail(record_lock(record), 1)) return false;
        edit_record_ = record;
        record_locked_ = true;
        if (file_.replaced(path_)) {
            leave_edit();
            fail(DbfError::Replaced);
            return false;
        }
        if (!file_.read_at(record_offset(record), image_record(record), record_length_)) {
            leave_edit();
            fail(DbfError::Truncated);
            return false;
        }
    }
    const char* bytes = image_record(record);
    // Deleted by another workstation since the walk began: writing it back
    // would bring it back to life.
    if (bytes[0] == '*') {
        leave_edit();
        fail(DbfError::NoCurrentRecord);
        return false;
    }
    edit_buf_.resize(record_length_);
    std::memcpy(edit_buf_.data(), bytes, std::size_t(record_length_));
    edit_record_ = record;
    mode_ = Mode::Edit;
    return true;
}

// An open table this workstation may write; else the reason, and false.
bool DbfTable::can_change() {
    if (!file_.is_open()) {
        fail(DbfError::NoCurrentRecord);
        return false;
    }
    if (read_only_) {
        fail(DbfError::ReadOnly);
        return false;
    }
    return true;
}

bool DbfTable::AddNew() {
    if (!can_change()) return false;
    leave_edit();
    // The buffer is filled again rather than allocated for every record.
    edit_buf_.fill(' ', record_length_);
    edit_record_ = -1;
    mode_ = Mode::AddNew;
    return true;
}

bool DbfTable::set_value(int i, const QVariant& value) {
    if (mode_ == Mode::None) {
        fail(DbfError::NotEditing);
        return false;
    }
    DbfError::Code code = DbfError::None;
    QString detail;
    if (i < 0 || i >= fields_.size()) {
        code = DbfError::NoSuchField;
        detail = QString::number(i);
    } else {
        const DbfField& f = fields_[i];
        QByteArray bytes(f.width, ' ');
        code = write_field(f, bytes.data(), value);
        detail = f.name;
        if (code == DbfError::None)
            std::memcpy(edit_buf_.data() + offsets_[std::size_t(i)], bytes.constData(),
                        std::size_t(f.width));
    }
    if (code == DbfError::None) return true;
    // The edit is spoilt: Update refuses it rather than store half of it.
    if (pending_error_ == DbfError::None) {
        pending_error_ = code;
        pending_detail_ = detail;
    }
    fail(code, detail);
    return false;
}

bool DbfTable::set_value(const QString& name, const QVariant& value) {
    const int i = field_index(name);
    if (i < 0 && mode_ != Mode::None) {
        if (pending_error_ == DbfError::None) {
            pending_error_ = DbfError::NoSuchField;
            pending_detail_ = name;
        }
        fail(DbfError::NoSuchField, name);
        return false;
    }
    return set_value(i, value);
}

// The header's record count on the disk now: another workstation may have
// appended since the open.
int DbfTable::disk_record_count(bool* ok) {
    char head[8];
    *ok = file_.read_at(0, head, sizeof head);
    if (!*ok) return records_;
    const auto b = [&](int i) { return quint32(static_cast<unsigned char>(head[i])); };
    return int(b(4) | (b(5) << 8) | (b(6) << 16) | ((b(7) & 0x7F) << 24));
}

// Records first..last from memory to the disk in one write.
bool DbfTable::write_records(int first, int last) {
    const qint64 from = record_offset(first);
    // end_of_span may grow the image: take the span's end before its start.
    const qint64 end = end_of_span(last);
    return file_.write_at(from, image_.constData() + from, end - from);
}

// Where a write that ends with record `last` ends: after the record, and
// after the end-of-file mark (set in memory here) when it is the table's
// last record, as shapelib writes it.
qint64 DbfTable::end_of_span(int last) {
    const qint64 end = record_offset(last + 1);
    if (last != records_ - 1) return end;
    grow_image(end + 1);
    image_[qsizetype(end)] = char(0x1A);
    return end + 1;
}

// The image made at least `size` bytes long. Its room grows by half again
// at a time, so that a batch of appends moves it a handful of times rather
// than once for every record.
void DbfTable::grow_image(qint64 size) {
    if (size <= image_.size()) return;
    if (size > image_.capacity()) image_.reserve(std::max(qsizetype(size), image_.capacity() + image_.capacity() / 2));
    image_.resize(qsizetype(size));
}

// Today's date and `count` into the header in memory (bytes 1 to 7); true
// when the date bytes changed.
bool DbfTable::stamp_header(int count) {
    const QDate today = QDate::currentDate();
    const char date[3] = {char(today.year() - 1900), char(today.month()), char(today.day())};
    char* h = image_.data();
    const bool date_changed = std::memcmp(h + 1, date, 3) != 0;
    std::memcpy(h + 1, date, 3);
    const quint32 n = quint32(count);
    for (int i = 0; i < 4; ++i) h[4 + i] = char((n >> (8 * i)) & 0xFF);
    return date_changed;
}

// The header's date and `count`, the field descriptors and every record up
// to `last` in one write from byte 1 (the descriptors as they are), with the
// end-of-file mark when `last` is the table's last record.
bool DbfTable::write_through(int last, int count) {
    stamp_header(count);
    const qint64 end = end_of_span(last);  // may grow the image
    const bool ok = file_.write_at(1, image_.constData() + 1, end - 1);
    stamped_ = ok;
    return ok;
}

// Today's date and the record count into the header (bytes 1 to 7). The
// date is written once a day per handle; the count only when it changed.
bool DbfTable::write_header(bool count_changed) {
    const bool date_changed = stamp_header(records_) || !stamped_;
    if (!date_changed && !count_changed) return true;
    const bool ok = file_.write_at(1, image_.constData() + 1, count_changed ? 7 : 3);
    stamped_ = ok;
    return ok;
}

// After a refused write the handle's idea of the file can't be trusted:
// take it again from the disk and stay near where the walk was.
void DbfTable::resync_after_failure() {
    const int keep = pos_;
    const Mode mode = mode_;
    const QByteArray buffer = edit_buf_;
    const int record = edit_record_;
    detach();
    if (!attach(access_, nullptr)) return;
    pos_ = std::clamp(keep, -1, int(live_.size()));
    mode_ = mode;
    edit_buf_ = buffer;
    edit_record_ = record;
}

bool DbfTable::Update(DbfError* error) {
    const auto refuse = [&](DbfError::Code code, const QString& detail = QString()) {
        fail(code, detail);
        if (error) *error = error_;
        return false;
    };
    if (mode_ == Mode::None || !file_.is_open()) return refuse(DbfError::NotEditing);
    if (pending_error_ != DbfError::None) return refuse(pending_error_, pending_detail_);
    if (read_only_) return refuse(DbfError::ReadOnly);

    edit_buf_[0] = ' ';
    int record = edit_record_;
    const bool adding = mode_ == Mode::AddNew;
    bool header_locked = false;
    if (adding) {
        // A new record goes after what other workstations appended since
        // the open, never over it.
        int count = records_;
        if (!batch_) {
            if (!lock_or_fail(kLockBase, 1)) return refuse(DbfError::InUse);
            header_locked = true;
            if (file_.replaced(path_)) {
                file_.unlock(kLockBase, 1);
                return refuse(DbfError::Replaced);
            }
            bool ok = false;
            count = std::max(records_, disk_record_count(&ok));
            if (!ok) {
                file_.unlock(kLockBase, 1);
                resync_after_failure();
                return refuse(DbfError::WriteFailed);
            }
            if (count > records_) {
                image_.resize(record_offset(count));
                if (!file_.read_at(record_offset(records_), image_record(records_),
                                   qint64(count - records_) * record_length_)) {
                    file_.unlock(kLockBase, 1);
                    resync_after_failure();
                    return refuse(DbfError::WriteFailed);
                }
            }
        }
        record = count;
        grow_image(record_offset(record + 1));
    }
    const int records_before = records_;
    std::memcpy(image_record(record), edit_buf_.constData(), std::size_t(record_length_));
    if (adding) records_ = record + 1;

    if (batch_) {
        if (!adding) mark_dirty(record);
    } else {
        const bool written = write_records(record, record) && write_header(records_ != records_before);
        if (header_locked) file_.unlock(kLockBase, 1);
        if (!written) {
            // Taken again from the disk: nothing counts a record it did not take.
            resync_after_failure();
            return refuse(DbfError::WriteFailed);
        }
    }
    if (adding) {
        live_.push_back(record);
        pos_ = int(live_.size()) - 1;
        on_deleted_ = false;
    }
    leave_edit();
    if (error) *error = DbfError{};
    return true;
}

void DbfTable::CancelUpdate() { leave_edit(); }

bool DbfTable::Delete() {
    // The record being added is not stored yet: there is nothing to delete,
    // and the current record is not what the caller has in mind.
    if (mode_ == Mode::AddNew) {
        fail(DbfError::NoCurrentRecord);
        return false;
    }
    leave_edit();
    if (!current_valid()) {
        fail(DbfError::NoCurrentRecord);
        return false;
    }
    if (read_only_) {
        fail(DbfError::ReadOnly);
        return false;
    }
    const int record = live_[std::size_t(pos_)];
    image_record(record)[0] = '*';
    if (batch_) {
        if (record < batch_base_) mark_dirty(record);
    } else {
        // Only the flag, under the record's lock: the rest of the record may
        // have been changed by another workstation since it was read.
        if (!lock_or_fail(record_lock(record), 1)) {
            image_record(record)[0] = ' ';
            return false;
        }
        if (file_.replaced(path_)) {
            file_.unlock(record_lock(record), 1);
            image_record(record)[0] = ' ';
            fail(DbfError::Replaced);
            return false;
        }
        bool ok = file_.write_at(record_offset(record), "*", 1);
        if (ok && record == records_ - 1) ok = file_.write_at(record_offset(records_), "\x1A", 1);
        ok = ok && write_header(false);
        file_.unlock(record_lock(record), 1);
        if (!ok) {
            resync_after_failure();
            fail(DbfError::WriteFailed);
            return false;
        }
    }
    live_.erase(live_.begin() + pos_);
    on_deleted_ = true;
    return true;
}

void DbfTable::mark_dirty(int record) {
    dirty_first_ = dirty_first_ < 0 ? record : std::min(dirty_first_, record);
    dirty_last_ = std::max(dirty_last_, record);
}

bool DbfTable::begin_batch() {
    if (batch_) return true;
    if (!can_change()) return false;
    leave_edit();
    // A rebuild elsewhere may put a new file in the table's place while we
    // wait: then the new one is the table, and it is taken in its turn.
    for (int attempt = 0;; ++attempt) {
        if (!lock_or_fail(kLockBase, kLockBase)) return false;
        if (!file_.replaced(path_)) break;
        file_.unlock(kLockBase, kLockBase);
        detach();
        DbfError error;
        if (attempt == kFollowRebuilds || !attach(access_, &error)) {
            error_ = attempt == kFollowRebuilds ? DbfError{DbfError::Replaced, path_, {}} : error;
            return false;
        }
    }
    DbfError error;
    if (!reload_image(&error)) {
        file_.unlock(kLockBase, kLockBase);
        error_ = error;
        return false;
    }
    batch_ = true;
    batch_base_ = records_;
    dirty_first_ = dirty_last_ = -1;
    return true;
}

bool DbfTable::commit_batch(DbfError* error) {
    if (!batch_) {
        if (error) *error = DbfError{};
        return file_.is_open();
    }
    batch_ = false;
    const int first = dirty_first_, last = dirty_last_;
    dirty_first_ = dirty_last_ = -1;
    const int added = records_ - batch_base_;
    bool ok = true;
    if (first >= 0 || added > 0) {
        const int on_disk = disk_record_count(&ok);
        if (ok && added > 0 && on_disk > batch_base_) {
            // Another workstation appended meanwhile: ours go after theirs.
            const int theirs = on_disk - batch_base_;
            const QByteArray ours = image_.mid(record_offset(batch_base_), qsizetype(added) * record_length_);
            image_.resize(record_offset(on_disk + added));
            ok = file_.read_at(record_offset(batch_base_), image_record(batch_base_), qint64(theirs) * record_length_);
            std::memcpy(image_record(on_disk), ours.constData(), std::size_t(ours.size()));
            for (int& r : live_)
                if (r >= batch_base_) r += theirs;
            records_ = on_disk + added;
        }
        const int append_first = records_ - added;
        if (first < 0) {
            // Only new records: they go past the count on the disk, where
            // nobody reads them, and then the count takes them in.
            ok = ok && write_records(append_first, records_ - 1) && write_header(records_ > on_disk);
        } else {
            // Changed records (and perhaps new ones): new ones that don't
            // follow on go first, past the count; then one write from the
            // header's date and count to the last changed record. Stopped at
            // any point, the table is as it was or as it is now.
            const int end = added > 0 && append_first == last + 1 ? records_ - 1 : last;
            if (ok && added > 0 && end != records_ - 1) ok = write_records(append_first, records_ - 1);
            if (ok) ok = write_through(end, std::max(records_, on_disk));
        }
    }
    file_.unlock(kLockBase, kLockBase);
    if (!ok) {
        leave_edit();
        resync_after_failure();
        fail(DbfError::WriteFailed);
        if (error) *error = error_;
        return false;
    }
    if (error) *error = DbfError{};
    return true;
}

bool DbfTable::Refresh() {
    leave_edit();
    if (batch_) commit_batch();
    detach();
    DbfError error;
    if (!attach(access_, &error)) {
        error_ = error;
        return false;
    }
    return true;
}

void DbfTable::Close() {
    leave_edit();
    if (batch_) commit_batch();
    detach();
    fields_.clear();
    offsets_.clear();
}

bool DbfTable::rename_to(const QString& path) {
    if (!file_.is_open() || batch_ || mode_ != Mode::None) return false;
    if (std::rename(QFile::encodeName(path_).constData(), QFile::encodeName(path).constData()) != 0) return false;
    path_ = path;
    MoveFirst();
    return true;
}

bool DbfTable::flush() {
    if (!file_.is_open()) return false;
    if (batch_) {
        const bool ok = commit_batch();
        begin_batch();
        return ok;
    }
    return true;
}

// ---- creating

bool DbfTable::create(const QString& path, const QList<DbfField>& fields, DbfError* error) {
    if (fields.isEmpty() || fields.size() > kMaxFields) {
        report(error, DbfError::BadField, path, QString::number(fields.size()));
        return false;
    }
    QList<DbfField> wanted;
    QList<char> types;
    QSet<QString> names;
    int record_length = 1;
    bool has_memo = false;
    for (DbfField f : fields) {
        char type = 0;
        const QString asked = f.name;
        if (!normalise(&f, &type) || names.contains(f.name)) {
            report(error, DbfError::BadField, path, asked);
            return false;
        }
        names.insert(f.name);
        record_length += f.width;
        has_memo = has_memo || f.type == DbfType::Memo;
        wanted.append(f);
        types.append(type);
    }
    if (record_length > kMaxRecordLength) {
        report(error, DbfError::BadField, path, QString::number(record_length));
        return false;
    }
    const QFileInfo existing(path);
    if (existing.exists() && !existing.isWritable()) {
        report(error, DbfError::ReadOnly, path);
        return false;
    }

    // shapelib writes the table in a scratch folder; the bytes then replace
    // the target in one rename.
    QTemporaryDir scratch;
    if (!scratch.isValid()) {
        report(error, DbfError::WriteFailed, path);
        return false;
    }
    const QString draft = scratch.filePath(QStringLiteral("table.dbf"));
    const QByteArray native = QFile::encodeName(draft);
    SAHooks hooks = table_hooks();
    DBFHandle h = nullptr;
    {
        const TargetScope scope(native);
        h = DBFCreateLL(native.constData(), "LDID/87", &hooks);  // 0x57: Windows ANSI
    }
    if (!h) {
        report(error, DbfError::WriteFailed, path);
        return false;
    }
    for (int i = 0; i < wanted.size(); ++i) {
        const QByteArray name = wanted[i].name.toLatin1();
        if (DBFAddNativeFieldType(h, name.constData(), types[i], wanted[i].width,
                                  wanted[i].decimals) < 0) {
            DBFClose(h);
            report(error, DbfError::BadField, path, wanted[i].name);
            return false;
        }
    }
    stamp_today(h);
    DBFClose(h);

    QFile file(draft);
    if (!file.open(QIODevice::ReadOnly)) {
        report(error, DbfError::WriteFailed, path);
        return false;
    }
    QByteArray bytes = file.readAll();
    file.close();
    const int header_length = kFileHeader + kFieldDescriptor * int(wanted.size()) + 1;
    if (bytes.size() != header_length + 1 || bytes.at(header_length - 1) != kTerminator) {
        report(error, DbfError::WriteFailed, path);
        return false;
    }
    // shapelib marks every table 0x03; dBASE III looks for 0x83 before it
    // opens the memo file.
    if (has_memo) bytes[0] = char(0x83);

    if (has_memo && !write_file_atomic(memo_path_of(path), empty_memo_file())) {
        report(error, DbfError::WriteFailed, memo_path_of(path));
        return false;
    }
    if (!write_file_atomic(path, bytes)) {
        report(error, DbfError::WriteFailed, path);
        return false;
    }
    if (error) *error = DbfError{};
    return true;
}

// ---------------------------------------------------------------------------

namespace {

QString existing_spelling(const QString& path) {
    const QFileInfo info(path);
    return path_ignoring_case(info.absolutePath(), info.fileName());
}

}  // namespace

bool copy_template_over(const QString& template_path, const QString& target_path) {
    if (!QFileInfo(template_path).isFile()) return false;
    return copy_file_atomic(template_path, existing_spelling(target_path));
}

void copy_table_templates(const QString& program_folder, const QString& folder,
                          const QString& table) {
    const auto copy_one = [&](const QString& template_ext, const QString& table_ext) {
        if (file_exists_ignoring_case(folder, table + table_ext)) return;
        const QString source = find_ignoring_case(program_folder, table + template_ext);
        if (source.isEmpty()) return;
        copy_file_atomic(source, QDir(folder).filePath(table + table_ext));
    };
    copy_one(QStringLiteral(".org"), QStringLiteral(".dbf"));
    copy_one(QStringLiteral(".ort"), QStringLiteral(".dbt"));
}

}  // namespace veldo
