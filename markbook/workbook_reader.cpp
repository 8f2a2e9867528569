#include "markbook/workbook_reader.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringDecoder>
#include <QUrl>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>

#if defined(Q_OS_UNIX)
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <freexl.h>
#include <zip.h>

#include "util/cp1252.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"

namespace veldo {
namespace {

// A class list is a few hundred cells; these only keep a hostile file from
// eating the machine. Cells count as the rows come out, padding included.
// kMaxPartBytes bounds a .csv file, an unpacked .xlsx part and the cells an
// .xls reader hands over.
constexpr qint64 kMaxPartBytes = 64LL * 1024 * 1024;
constexpr qsizetype kMaxCells = qsizetype(1) << 22;
constexpr qsizetype kMaxSharedStrings = qsizetype(1) << 22;

enum class Kind { Xlsx, Xls, Text, NotAWorkbook };

std::nullopt_t fail(SheetReadError* error, SheetReadError::Code code, const QString& path,
                    const QString& detail) {
    if (error) *error = SheetReadError{code, path, detail};
    return std::nullopt;
}

// The cells as they arrive, in any order; only non-empty texts are kept, so
// the rows come out as long as their last non-empty cell.
class SheetGrid {
public:
    // False when the sheet grows past kMaxCells.
    bool set(qint64 row, qint64 column, const QString& text) {
        if (text.isEmpty() || row < 0 || column < 0) return true;
        if (row >= kSheetMaxRows || column >= kSheetMaxColumns) return true;
        if (rows_.size() <= row) rows_.resize(qsizetype(row) + 1);
        QStringList& cells = rows_[qsizetype(row)];
        if (cells.size() <= column) {
            cells_ += qsizetype(column) + 1 - cells.size();
            if (cells_ > kMaxCells) return false;
            cells.resize(qsizetype(column) + 1);
        }
        cells[qsizetype(column)] = text;
        return true;
    }
    QList<QStringList> take() { return std::move(rows_); }

private:
    QList<QStringList> rows_;
    qsizetype cells_ = 0;
};

// ---------------------------------------------------------------- kind

Kind kind_of(const QString& path, const QByteArray& head) {
    if (head.startsWith(QByteArrayLiteral("PK\x03\x04"))) return Kind::Xlsx;
    // An empty archive has only its end record.
    if (head.startsWith(QByteArrayLiteral("PK\x05\x06"))) return Kind::Xlsx;
    if (head.startsWith(QByteArrayLiteral("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"))) return Kind::Xls;
    // Workbook bytes are told by their first bytes alone; a renamed text
    // file under a workbook's name is a mistake worth saying so.
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("xlsx") || suffix == QLatin1String("xls") ||
        suffix == QLatin1String("xlsm"))
        return Kind::NotAWorkbook;
    return Kind::Text;
}

// ---------------------------------------------------------------- .csv

QString decode_text(QByteArray bytes) {
    if (bytes.startsWith(QByteArrayLiteral("\xEF\xBB\xBF"))) bytes.remove(0, 3);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(bytes);
    if (!utf8.hasError()) return text;
    // Excel saves "CSV (Comma delimited)" in the Windows code page.
    return cp1252::decode(bytes);
}

// ';' where it stands outside quotes on the first line that has a ';' or a
// ','; Afrikaans Windows saves with ';' and its decimal comma may sit
// unquoted beside it, so ';' wins when both occur.
QChar separator_of(const QString& text) {
    bool quoted = false;
    bool comma = false;
    for (QChar c : text) {
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
        } else if (quoted) {
            continue;
        } else if (c == QLatin1Char(';')) {
            return QLatin1Char(';');
        } else if (c == QLatin1Char(',')) {
            comma = true;
        } else if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
            if (comma) return QLatin1Char(',');
        }
    }
    return QLatin1Char(',');
}

std::optional<QList<QStringList>> read_text_sheet(const QString& path, SheetReadError* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(error, SheetReadError::Unreadable, path, file.errorString());
    if (file.size() > kMaxPartBytes)
        return fail(error, SheetReadError::Unreadable, path, QStringLiteral("file too large"));
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return fail(error, SheetReadError::Unreadable, path, file.errorString());

    const QString text = decode_text(bytes);
    const QChar separator = separator_of(text);
    SheetGrid grid;
    qint64 row = 0;
    qint64 column = 0;
    QString field;
    const qsizetype n = text.size();
    qsizetype i = 0;
    auto end_field = [&] {
        const bool ok = grid.set(row, column, field);
        field.clear();
        ++column;
        return ok;
    };
    while (i < n) {
        if (row >= kSheetMaxRows) break;
        const QChar c = text.at(i);
        if (c == QLatin1Char('"') && field.isEmpty()) {
            // A quoted stretch: "" is a quote, line ends belong to the field.
            ++i;
            while (i < n) {
                if (text.at(i) == QLatin1Char('"')) {
                    if (i + 1 < n && text.at(i + 1) == QLatin1Char('"')) {
                        field += QLatin1Char('"');
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                field += text.at(i++);
            }
            continue;
        }
        if (c == separator) {
            if (!end_field())
                return fail(error, SheetReadError::Unreadable, path,
                            QStringLiteral("sheet too large"));
            ++i;
        } else if (c == QLatin1Char('\r') || c == QLatin1Char('\n')) {
            if (!end_field())
                return fail(error, SheetReadError::Unreadable, path,
                            QStringLiteral("sheet too large"));
            ++row;
            column = 0;
            const bool crlf = c == QLatin1Char('\r') && i + 1 < n && text.at(i + 1) == QLatin1Char('\n');
            i += crlf ? 2 : 1;
        } else {
            field += c;
            ++i;
        }
    }
    if (!field.isEmpty() && !grid.set(row, column, field))
        return fail(error, SheetReadError::Unreadable, path, QStringLiteral("sheet too large"));
    return grid.take();
}

// ---------------------------------------------------------------- .xlsx

struct Relationship {
    QString id;
    QString type;
    QString target;  // the part name it points to, without a leading '/'
};

// The folder part of a part name: "xl/workbook.xml" -> "xl/".
QString folder_of(const QString& part) {
    const qsizetype slash = part.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : part.left(slash + 1);
}

// A relationship's target as a part name, resolved against the folder of
// the part that holds it; ".." may not climb out of the package.
QString resolve_target(const QString& source_folder, const QString& target) {
    const QString decoded = QUrl::fromPercentEncoding(target.toUtf8());
    const QString joined = decoded.startsWith(QLatin1Char('/')) ? decoded : source_folder + decoded;
    QStringList parts;
    for (const QString& piece : joined.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (piece == QLatin1String(".")) continue;
        if (piece == QLatin1String("..")) {
            if (!parts.isEmpty()) parts.removeLast();
            continue;
        }
        parts.append(piece);
    }
    return parts.join(QLatin1Char('/'));
}

int hex_digit(QChar c) {
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9') return u - '0';
    if (u >= 'a' && u <= 'f') return u - 'a' + 10;
    if (u >= 'A' && u <= 'F') return u - 'A' + 10;
    return -1;
}

// "_x000D_" is how Excel writes a character XML cannot carry ("_x005F_" for
// the underscore of such a text).
QString decode_excel_escapes(const QString& text) {
    if (!text.contains(QLatin1String("_x"))) return text;
    QString out;
    out.reserve(text.size());
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        if (text.at(i) == QLatin1Char('_') && i + 6 < n && text.at(i + 1) == QLatin1Char('x') &&
            text.at(i + 6) == QLatin1Char('_')) {
            int code = 0;
            bool hex = true;
            for (qsizetype k = i + 2; k < i + 6 && hex; ++k) {
                const int d = hex_digit(text.at(k));
                hex = d >= 0;
                code = code * 16 + d;
            }
            if (hex) {
                out += QChar(char16_t(code));
                i += 6;
                continue;
            }
        }
        out += text.at(i);
    }
    return out;
}

bool is_local(const QXmlStreamReader& xml, QLatin1String name) { return xml.name() == name; }

// The text of an <si> or <is> at its start tag: the <t> of each run, and
// none of the phonetic guide (<rPh>). Leaves the reader on its end tag.
QString read_rich_text(QXmlStreamReader& xml) {
    QString text;
    int depth = 1;
    int phonetic = 0;
    while (depth > 0 && !xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            if (is_local(xml, QLatin1String("t")) && phonetic == 0) {
                text += xml.readElementText(QXmlStreamReader::IncludeChildElements);
                continue;  // readElementText stops on the </t>
            }
            ++depth;
            if (is_local(xml, QLatin1String("rPh"))) ++phonetic;
        } else if (token == QXmlStreamReader::EndElement) {
            --depth;
            if (is_local(xml, QLatin1String("rPh")) && phonetic > 0) --phonetic;
        }
    }
    return decode_excel_escapes(text);
}

// "C7" -> column 2 (0-based) and row 6; false when it is no reference.
bool parse_cell_reference(QStringView ref, qint64* column, qint64* row) {
    qsizetype i = 0;
    qint64 c = 0;
    while (i < ref.size() && ref.at(i).isLetter() && ref.at(i).unicode() < 128) {
        c = c * 26 + (ref.at(i).toUpper().unicode() - 'A' + 1);
        if (c > (qint64(1) << 30)) return false;
        ++i;
    }
    if (i == 0 || i == ref.size()) return false;
    qint64 r = 0;
    for (; i < ref.size(); ++i) {
        const char16_t u = ref.at(i).unicode();
        if (u < '0' || u > '9') return false;
        r = r * 10 + (u - '0');
        if (r > (qint64(1) << 30)) return false;
    }
    if (r == 0) return false;
    *column = c - 1;
    *row = r - 1;
    return true;
}

// A number cell's plain text: "1.0001E4" is "10001". Text that is no
// number stays as written.
QString number_cell_text(const QString& value) {
    const QByteArray latin = value.trimmed().toLatin1();
    double number = 0.0;
    const char* first = latin.constData();
    const char* last = first + latin.size();
    const auto [end, ec] = std::from_chars(first, last, number, std::chars_format::general);
    if (latin.isEmpty() || ec != std::errc() || end != last || !std::isfinite(number)) return value;
    if (number == 0.0) return QStringLiteral("0");
    return plain_number_text(number);
}

class XlsxPackage {
public:
    ~XlsxPackage() {
        if (zip_) zip_discard(zip_);
    }

    bool open(const QString& path, SheetReadError* error) {
        path_ = path;
        int code = 0;
        zip_ = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &code);
        if (zip_) return true;
        zip_error_t ze;
        zip_error_init_with_code(&ze, code);
        const QString detail = QString::fromUtf8(zip_error_strerror(&ze));
        zip_error_fini(&ze);
        fail(error,
             code == ZIP_ER_NOZIP ? SheetReadError::NotAWorkbook : SheetReadError::Unreadable, path,
             detail);
        return false;
    }

    bool has(const QString& part) const { return index_of(part) >= 0; }

    // The bytes of one part; nullopt (and *error) when it is missing or damaged.
    std::optional<QByteArray> read(const QString& part, SheetReadError::Code missing_code,
                                   SheetReadError* error) const {
        const zip_int64_t index = index_of(part);
        if (index < 0) return fail(error, missing_code, path_, QStringLiteral("no part ") + part);
        zip_file_t* file = zip_fopen_index(zip_, zip_uint64_t(index), 0);
        if (!file)
            return fail(error, SheetReadError::Unreadable, path_,
                        part + QStringLiteral(": ") + QString::fromUtf8(zip_strerror(zip_)));
        QByteArray bytes;
        char buffer[65536];
        bool ok = true;
        QString detail;
        for (;;) {
            const zip_int64_t got = zip_fread(file, buffer, sizeof buffer);
            if (got < 0) {
                ok = false;
                detail = QString::fromUtf8(zip_file_strerror(file));
                break;
            }
            if (got == 0) break;
            if (bytes.size() + got > kMaxPartBytes) {
                ok = false;
                detail = QStringLiteral("part too large");
                break;
            }
            bytes.append(buffer, qsizetype(got));
        }
        zip_fclose(file);
        if (!ok)
            return fail(error, SheetReadError::Unreadable, path_,
                        part + QStringLiteral(": ") + detail);
        return bytes;
    }

private:
    zip_int64_t index_of(const QString& part) const {
        if (part.isEmpty()) return -1;
        // Part names ignore case.
        return zip_name_locate(zip_, part.toUtf8().constData(), ZIP_FL_NOCASE);
    }

    QString path_;
    zip_t* zip_ = nullptr;
};

// The relationships of a .rels part; nullopt on broken XML.
std::optional<QList<Relationship>> parse_relationships(const QByteArray& bytes,
                                                       const QString& source_folder) {
    QList<Relationship> out;
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        if (!is_local(xml, QLatin1String("Relationship"))) continue;
        const QXmlStreamAttributes a = xml.attributes();
        if (a.value(QLatin1String("TargetMode"))
                .compare(QLatin1String("External"), Qt::CaseInsensitive) == 0)
            continue;
        out.append({a.value(QLatin1String("Id")).toString(),
                    a.value(QLatin1String("Type")).toString(),
                    resolve_target(source_folder, a.value(QLatin1String("Target")).toString())});
    }
    if (xml.hasError()) return std::nullopt;
    return out;
}

bool type_is(const Relationship& r, QLatin1String last_word) {
    return r.type.endsWith(QLatin1Char('/') + last_word, Qt::CaseInsensitive);
}

// The relationship ids of the sheets in workbook order; nullopt on broken XML.
std::optional<QStringList> sheet_ids_of(const QByteArray& bytes) {
    QStringList ids;
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        if (!is_local(xml, QLatin1String("sheet"))) continue;
        // r:id, whatever the prefix and the namespace's year.
        for (const QXmlStreamAttribute& a : xml.attributes())
            if (a.name() == QLatin1String("id") && !a.prefix().isEmpty()) {
                ids.append(a.value().toString());
                break;
            }
    }
    if (xml.hasError()) return std::nullopt;
    return ids;
}

std::optional<QStringList> parse_shared_strings(const QByteArray& bytes) {
    QStringList strings;
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        if (!is_local(xml, QLatin1String("si"))) continue;
        if (strings.size() >= kMaxSharedStrings) return std::nullopt;
        strings.append(read_rich_text(xml));
    }
    if (xml.hasError()) return std::nullopt;
    return strings;
}

// The text of a <c> at its start tag; leaves the reader on its end tag.
QString read_cell(QXmlStreamReader& xml, const QStringList& shared) {
    const QString type = xml.attributes().value(QLatin1String("t")).toString();
    QString value;
    QString inline_text;
    bool has_inline = false;
    int depth = 1;
    while (depth > 0 && !xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            if (depth == 1 && is_local(xml, QLatin1String("v"))) {
                value = xml.readElementText(QXmlStreamReader::IncludeChildElements);
                continue;
            }
            if (depth == 1 && is_local(xml, QLatin1String("is"))) {
                inline_text = read_rich_text(xml);
                has_inline = true;
                continue;
            }
            ++depth;
        } else if (token == QXmlStreamReader::EndElement) {
            --depth;
        }
    }
    if (type == QLatin1String("s")) {
        bool ok = false;
        const qlonglong index = value.trimmed().toLongLong(&ok);
        return ok && index >= 0 && index < shared.size() ? shared.at(qsizetype(index)) : QString();
    }
    if (type == QLatin1String("inlineStr") || has_inline) return inline_text;
    if (type == QLatin1String("b")) {
        const QString v = value.trimmed();
        if (v == QLatin1String("1")) return QStringLiteral("TRUE");
        if (v == QLatin1String("0")) return QStringLiteral("FALSE");
        return value;
    }
    if (type == QLatin1String("str") || type == QLatin1String("e") || type == QLatin1String("d"))
        return value;
    return number_cell_text(value);
}

// The cells of a worksheet part; false on broken XML or a sheet too large.
bool parse_worksheet(const QByteArray& bytes, const QStringList& shared, SheetGrid& grid,
                     QString* detail) {
    QXmlStreamReader xml(bytes);
    bool in_data = false;
    bool in_row = false;
    qint64 row = -1;
    qint64 column = -1;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::EndElement) {
            if (is_local(xml, QLatin1String("sheetData"))) break;  // the rest is layout
            if (is_local(xml, QLatin1String("row"))) in_row = false;
            continue;
        }
        if (token != QXmlStreamReader::StartElement) continue;
        if (is_local(xml, QLatin1String("sheetData"))) {
            in_data = true;
        } else if (in_data && is_local(xml, QLatin1String("row"))) {
            // Rows and cells without a number follow the one before.
            bool ok = false;
            const qlonglong r = xml.attributes().value(QLatin1String("r")).toLongLong(&ok);
            row = ok && r >= 1 ? r - 1 : row + 1;
            column = -1;
            in_row = true;
        } else if (in_row && is_local(xml, QLatin1String("c"))) {
            qint64 ref_column = 0;
            qint64 ref_row = 0;
            if (parse_cell_reference(xml.attributes().value(QLatin1String("r")), &ref_column,
                                     &ref_row))
                column = ref_column;
            else
                ++column;
            const QString text = read_cell(xml, shared);
            if (!grid.set(row, column, text)) {
                *detail = QStringLiteral("sheet too large");
                return false;
            }
        }
    }
    if (xml.hasError()) {
        *detail = xml.errorString();
        return false;
    }
    return true;
}

std::optional<QList<QStringList>> read_xlsx_sheet(const QString& path, SheetReadError* error) {
    XlsxPackage package;
    if (!package.open(path, error)) return std::nullopt;

    // The package's own relationships name the workbook part.
    QString workbook_part = QStringLiteral("xl/workbook.xml");
    if (package.has(QStringLiteral("_rels/.rels"))) {
        const auto bytes =
            package.read(QStringLiteral("_rels/.rels"), SheetReadError::Unreadable, error);
        if (!bytes) return std::nullopt;
        const auto rels = parse_relationships(*bytes, QString());
        if (!rels)
            return fail(error, SheetReadError::Unreadable, path,
                        QStringLiteral("broken _rels/.rels"));
        for (const Relationship& r : *rels)
            if (type_is(r, QLatin1String("officeDocument")) && !r.target.isEmpty()) {
                workbook_part = r.target;
                break;
            }
    }
    const auto workbook = package.read(workbook_part, SheetReadError::NotAWorkbook, error);
    if (!workbook) return std::nullopt;
    const auto sheet_ids = sheet_ids_of(*workbook);
    if (!sheet_ids)
        return fail(error, SheetReadError::Unreadable, path,
                    QStringLiteral("broken ") + workbook_part);

    const QString folder = folder_of(workbook_part);
    const QString rels_part = folder + QStringLiteral("_rels/") + workbook_part.mid(folder.size()) +
                              QStringLiteral(".rels");
    const auto rels_bytes = package.read(rels_part, SheetReadError::Unreadable, error);
    if (!rels_bytes) return std::nullopt;
    const auto rels = parse_relationships(*rels_bytes, folder);
    if (!rels)
        return fail(error, SheetReadError::Unreadable, path, QStringLiteral("broken ") + rels_part);

    // The first sheet in workbook order that is a worksheet, not a chart.
    QHash<QString, QString> worksheets;  // by relationship id; the first of an id counts
    for (const Relationship& r : *rels)
        if (type_is(r, QLatin1String("worksheet")) && !worksheets.contains(r.id))
            worksheets.insert(r.id, r.target);
    QString sheet_part;
    for (const QString& id : *sheet_ids) {
        sheet_part = worksheets.value(id);
        if (!sheet_part.isEmpty()) break;
    }
    if (sheet_part.isEmpty())
        return fail(error, SheetReadError::NoSheet, path, QStringLiteral("no worksheet"));

    QStringList shared;
    for (const Relationship& r : *rels) {
        // A table that is named but absent leaves only numbers to read.
        if (!type_is(r, QLatin1String("sharedStrings")) || !package.has(r.target)) continue;
        const auto bytes = package.read(r.target, SheetReadError::Unreadable, error);
        if (!bytes) return std::nullopt;
        auto strings = parse_shared_strings(*bytes);
        if (!strings)
            return fail(error, SheetReadError::Unreadable, path,
                        QStringLiteral("broken ") + r.target);
        shared = std::move(*strings);
        break;
    }

    const auto sheet = package.read(sheet_part, SheetReadError::Unreadable, error);
    if (!sheet) return std::nullopt;
    SheetGrid grid;
    QString detail;
    if (!parse_worksheet(*sheet, shared, grid, &detail))
        return fail(error, SheetReadError::Unreadable, path,
                    sheet_part + QStringLiteral(": ") + detail);
    return grid.take();
}

// ---------------------------------------------------------------- .xls

// FreeXL 1.0.6 trusts the string lengths inside a BIFF file and reads past
// its own buffers on a damaged one. So the file is read in a child process
// that hands the cells over a pipe: a bad file costs the child, never the
// mark book, and a child that takes too long is stopped.
constexpr int kXlsSeconds = 30;

enum XlsRecord : char {
    kXlsCell = 'C',  // row u32, column u16, kind u8, then the value
    kXlsDone = 'D',
    kXlsFailed = 'E',  // code i32: a FreeXL error, or one of the below
};
enum XlsKind : char { kXlsInt = 'i', kXlsDouble = 'd', kXlsText = 't' };
constexpr std::int32_t kXlsPassword = 1;
constexpr std::int32_t kXlsNoSheet = 2;
constexpr std::int32_t kXlsNoDimensions = 3;

class FreexlHandle {
public:
    ~FreexlHandle() {
        if (handle) freexl_close(handle);  // also after a failed open
    }
    const void* handle = nullptr;
};

// Writes the cells of the first worksheet of `path` to `out`, ending with
// kXlsDone or kXlsFailed. False when the reader is gone.
template <typename Write>
bool dump_xls_sheet(const char* path, Write&& out) {
    auto put = [&](const void* data, std::size_t size) { return out(data, size); };
    auto failed = [&](std::int32_t code) {
        const char tag = kXlsFailed;
        return put(&tag, 1) && put(&code, sizeof code);
    };
    FreexlHandle xls;
    const int opened = freexl_open(path, &xls.handle);
    if (opened != FREEXL_OK) return failed(opened);
    unsigned int password = 0;
    if (freexl_get_info(xls.handle, FREEXL_BIFF_PASSWORD, &password) == FREEXL_OK &&
        password == FREEXL_BIFF_OBFUSCATED)
        return failed(kXlsPassword);
    unsigned int sheets = 0;
    if (freexl_get_info(xls.handle, FREEXL_BIFF_SHEET_COUNT, &sheets) != FREEXL_OK || sheets == 0 ||
        freexl_select_active_worksheet(xls.handle, 0) != FREEXL_OK)
        return failed(kXlsNoSheet);
    unsigned int rows = 0;
    unsigned short columns = 0;
    if (freexl_worksheet_dimensions(xls.handle, &rows, &columns) != FREEXL_OK)
        return failed(kXlsNoDimensions);

    const std::uint32_t row_count = std::min(rows, unsigned(kSheetMaxRows));
    const std::uint16_t column_count =
        std::uint16_t(std::min(unsigned(columns), unsigned(kSheetMaxColumns)));
    for (std::uint32_t r = 0; r < row_count; ++r) {
        for (std::uint16_t c = 0; c < column_count; ++c) {
            FreeXL_CellValue cell;
            // A cell FreeXL cannot decode reads as empty.
            if (freexl_get_cell_value(xls.handle, r, c, &cell) != FREEXL_OK) continue;
            char head[8] = {kXlsCell};
            std::memcpy(head + 1, &r, 4);
            std::memcpy(head + 5, &c, 2);
            bool ok = true;
            switch (cell.type) {
                case FREEXL_CELL_INT: {
                    head[7] = kXlsInt;
                    const std::int32_t v = cell.value.int_value;
                    ok = put(head, 8) && put(&v, sizeof v);
                    break;
                }
                case FREEXL_CELL_DOUBLE: {
                    head[7] = kXlsDouble;
                    const double v = cell.value.double_value;
                    ok = put(head, 8) && put(&v, sizeof v);
                    break;
                }
                case FREEXL_CELL_TEXT:
                case FREEXL_CELL_SST_TEXT:
                case FREEXL_CELL_DATE:
                case FREEXL_CELL_DATETIME:
                case FREEXL_CELL_TIME: {
                    if (!cell.value.text_value) break;
                    head[7] = kXlsText;
                    const std::uint32_t n = std::uint32_t(std::strlen(cell.value.text_value));
                    if (n == 0) break;
                    ok = put(head, 8) && put(&n, sizeof n) && put(cell.value.text_value, n);
                    break;
                }
                default:
                    break;
            }
            if (!ok) return false;
        }
    }
    const char done = kXlsDone;
    return put(&done, 1);
}

// The child's report turned into rows.
std::optional<QList<QStringList>> xls_rows_from(const QByteArray& report, const QString& path,
                                                SheetReadError* error) {
    const char* p = report.constData();
    const char* end = p + report.size();
    auto take = [&](void* into, std::size_t size) {
        if (std::size_t(end - p) < size) return false;
        std::memcpy(into, p, size);
        p += size;
        return true;
    };
    SheetGrid grid;
    while (p < end) {
        const char tag = *p++;
        if (tag == kXlsDone) {
            if (p != end) break;
            return grid.take();
        }
        if (tag == kXlsFailed) {
            std::int32_t code = 0;
            if (!take(&code, sizeof code)) break;
            const QString detail = QStringLiteral("FreeXL error %1").arg(code);
            if (code == kXlsPassword)
                return fail(error, SheetReadError::Unreadable, path,
                            QStringLiteral("protected by a password"));
            if (code == kXlsNoSheet)
                return fail(error, SheetReadError::NoSheet, path, QStringLiteral("no worksheet"));
            // A compound file without a workbook stream is some other Office file.
            return fail(error,
                        code == FREEXL_BIFF_WORKBOOK_NOT_FOUND ? SheetReadError::NotAWorkbook
                                                               : SheetReadError::Unreadable,
                        path, detail);
        }
        if (tag != kXlsCell) break;
        std::uint32_t row = 0;
        std::uint16_t column = 0;
        char kind = 0;
        if (!take(&row, 4) || !take(&column, 2) || !take(&kind, 1)) break;
        QString text;
        if (kind == kXlsInt) {
            std::int32_t v = 0;
            if (!take(&v, sizeof v)) break;
            text = QString::number(v);
        } else if (kind == kXlsDouble) {
            double v = 0;
            if (!take(&v, sizeof v)) break;
            text = plain_number_text(v);
        } else if (kind == kXlsText) {
            std::uint32_t n = 0;
            if (!take(&n, sizeof n) || std::size_t(end - p) < n) break;
            text = QString::fromUtf8(p, qsizetype(n));
            p += n;
        } else {
            break;
        }
        if (!grid.set(row, column, text))
            return fail(error, SheetReadError::Unreadable, path, QStringLiteral("sheet too large"));
    }
    return fail(error, SheetReadError::Unreadable, path, QStringLiteral("the .xls reader stopped"));
}

#if defined(Q_OS_UNIX)

extern "C" void __sanitizer_set_death_callback(void (*)(void)) __attribute__((weak));

bool write_all(int fd, const void* data, std::size_t size) {
    const char* p = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t n = ::write(fd, p, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        p += n;
        size -= std::size_t(n);
    }
    return true;
}

// Runs in the child: only FreeXL, write() and _exit(), nothing of Qt.
[[noreturn]] void xls_child(const char* path, int fd) {
    // Nothing from here may reach the user's terminal, and a sanitizer build
    // must not take the child's end for the parent's.
    const int null_fd = ::open("/dev/null", O_WRONLY);
    if (null_fd >= 0) ::dup2(null_fd, STDERR_FILENO);
    if (__sanitizer_set_death_callback) __sanitizer_set_death_callback(nullptr);
    std::array<char, 65536> buffer;
    std::size_t used = 0;
    auto out = [&](const void* data, std::size_t size) {
        if (used + size > buffer.size()) {
            if (!write_all(fd, buffer.data(), used)) return false;
            used = 0;
            if (size > buffer.size()) return write_all(fd, data, size);
        }
        std::memcpy(buffer.data() + used, data, size);
        used += size;
        return true;
    };
    const bool ok = dump_xls_sheet(path, out) && write_all(fd, buffer.data(), used);
    ::_exit(ok ? 0 : 1);
}

std::optional<QList<QStringList>> read_xls_sheet(const QString& path, SheetReadError* error) {
    const QByteArray native_path = QFile::encodeName(path);
    int fds[2];
    // Close-on-exec, so that no program started meanwhile holds the pipe open.
    if (::pipe2(fds, O_CLOEXEC) != 0)
        return fail(error, SheetReadError::Unreadable, path,
                    QString::fromLocal8Bit(std::strerror(errno)));
    const pid_t child = ::fork();
    if (child < 0) {
        const int e = errno;
        ::close(fds[0]);
        ::close(fds[1]);
        return fail(error, SheetReadError::Unreadable, path,
                    QString::fromLocal8Bit(std::strerror(e)));
    }
    if (child == 0) {
        ::close(fds[0]);
        xls_child(native_path.constData(), fds[1]);
    }
    ::close(fds[1]);

    QByteArray report;
    QString trouble;
    const QDeadlineTimer deadline{std::chrono::seconds(kXlsSeconds)};
    char buffer[65536];
    for (;;) {
        pollfd pfd{fds[0], POLLIN, 0};
        const int ready = ::poll(&pfd, 1, int(std::min<qint64>(deadline.remainingTime(), 1000)));
        if (ready < 0 && errno == EINTR) continue;
        if (ready < 0) {
            trouble = QString::fromLocal8Bit(std::strerror(errno));
            break;
        }
        if (ready == 0) {
            if (deadline.hasExpired()) {
                trouble = QStringLiteral("the .xls reader took too long");
                break;
            }
            continue;
        }
        const ssize_t n = ::read(fds[0], buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;  // end of the report
        if (report.size() + n > kMaxPartBytes) {
            trouble = QStringLiteral("sheet too large");
            break;
        }
        report.append(buffer, qsizetype(n));
    }
    ::close(fds[0]);
    if (!trouble.isEmpty()) ::kill(child, SIGKILL);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!trouble.isEmpty()) return fail(error, SheetReadError::Unreadable, path, trouble);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return fail(error, SheetReadError::Unreadable, path,
                    QStringLiteral("the .xls reader stopped"));
    return xls_rows_from(report, path, error);
}

#else

std::optional<QList<QStringList>> read_xls_sheet(const QString& path, SheetReadError* error) {
    QByteArray report;
    dump_xls_sheet(QFile::encodeName(path).constData(), [&](const void* data, std::size_t size) {
        report.append(static_cast<const char*>(data), qsizetype(size));
        return true;
    });
    return xls_rows_from(report, path, error);
}

#endif

}  // namespace

QString sheet_error_message(const SheetReadError& error, bool afrikaans) {
    const QString& p = error.path;
    switch (error.code) {
        case SheetReadError::None:
            return QString();
        case SheetReadError::Missing:
            return afrikaans ? QStringLiteral("Die werkboek %1 bestaan nie.").arg(p)
                             : QStringLiteral("The workbook %1 doesn't exist.").arg(p);
        case SheetReadError::Unreadable:
            return afrikaans ? QStringLiteral("Die werkboek %1 kan nie gelees word nie.").arg(p)
                             : QStringLiteral("The workbook %1 can't be read.").arg(p);
        case SheetReadError::NotAWorkbook:
            return afrikaans
                       ? QStringLiteral("%1 is nie 'n werkboek (.xlsx, .xls of .csv) nie.").arg(p)
                       : QStringLiteral("%1 isn't a workbook (.xlsx, .xls or .csv).").arg(p);
        case SheetReadError::NoSheet:
            return afrikaans ? QStringLiteral("Die werkboek %1 het geen werkblad nie.").arg(p)
                             : QStringLiteral("The workbook %1 has no worksheet.").arg(p);
    }
    return QString();
}

std::optional<QList<QStringList>> read_first_sheet(const QString& path, SheetReadError* error) {
    if (error) *error = SheetReadError{SheetReadError::None, path, QString()};
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return fail(error, SheetReadError::Missing, path, QString());
    // A folder, a pipe or a device is no file to read to its end.
    if (!info.isFile())
        return fail(error, SheetReadError::Unreadable, path, QStringLiteral("not a plain file"));

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(error, SheetReadError::Unreadable, path, file.errorString());
    const QByteArray head = file.read(8);
    file.close();

    switch (kind_of(path, head)) {
        case Kind::Xlsx:
            return read_xlsx_sheet(path, error);
        case Kind::Xls:
            return read_xls_sheet(path, error);
        case Kind::Text:
            return read_text_sheet(path, error);
        case Kind::NotAWorkbook:
            break;
    }
    return fail(error, SheetReadError::NotAWorkbook, path, QStringLiteral("unknown content"));
}

QString find_first_fill_workbook(const QString& data_folder, const QString& base_name) {
    if (base_name.isEmpty()) return QString();
    for (const char* extension : {"", ".xlsx", ".xls", ".csv"}) {
        const QString name = base_name + QLatin1String(extension);
        if (file_exists_ignoring_case(data_folder, name))
            return find_ignoring_case(data_folder, name);
    }
    return QString();
}

QList<ClassListEntry> class_list_from_sheet(const QList<QStringList>& rows) {
    QList<ClassListEntry> out;
    for (qsizetype r = 1; r < rows.size(); ++r) {
        const QStringList& cells = rows.at(r);
        const QString first = cells.value(0);
        if (first.trimmed().isEmpty()) break;
        out.append({Val(first), cells.value(1).trimmed()});
    }
    return out;
}

}  // namespace veldo
