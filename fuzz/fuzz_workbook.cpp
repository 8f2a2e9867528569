// Feeds arbitrary bytes to the workbook reader under each of the names a
// teacher's file may have. Whatever it reads must keep the promised shape:
// no more rows and columns than the limits, no row ending in an empty cell,
// no empty row at the end.
//
// A mutated zip rarely passes its checksums, so the same bytes are also cut
// at 0x01 into the parts of a sound package (sheet, shared strings,
// workbook, workbook relationships) to reach the XML readers.

#include "markbook/workbook_reader.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QTemporaryDir>

#include <zip.h>

#include <cstdint>
#include <cstdlib>

namespace {

bool well_shaped(const QList<QStringList>& rows) {
    if (rows.size() > veldo::kSheetMaxRows) return false;
    if (!rows.isEmpty() && rows.last().isEmpty()) return false;
    for (const QStringList& row : rows) {
        if (row.size() > veldo::kSheetMaxColumns) return false;
        if (!row.isEmpty() && row.last().isEmpty()) return false;
    }
    return true;
}

void check(const QString& path) {
    veldo::SheetReadError error;
    const auto rows = veldo::read_first_sheet(path, &error);
    if (rows.has_value() != (error.code == veldo::SheetReadError::None)) std::abort();
    if (rows) {
        if (!well_shaped(*rows)) std::abort();
        (void)veldo::class_list_from_sheet(*rows);
    } else if (veldo::sheet_error_message(error, true).isEmpty()) {
        std::abort();
    }
}

const char kRels[] =
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
    "<Relationship Id=\"rId1\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/"
    "relationships/officeDocument\" Target=\"xl/workbook.xml\"/></Relationships>";
const char kWorkbook[] =
    "<workbook xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
    "<sheets><sheet name=\"A\" sheetId=\"1\" r:id=\"rId1\"/></sheets></workbook>";
const char kWorkbookRels[] =
    "<Relationships><Relationship Id=\"rId1\" Type=\"x/worksheet\" Target=\"worksheets/sheet1.xml\"/>"
    "<Relationship Id=\"rId2\" Type=\"x/sharedStrings\" Target=\"sharedStrings.xml\"/></Relationships>";

void write_package(const QString& path, const QByteArray& bytes) {
    const QList<QByteArray> pieces = bytes.split('\x01');
    const QByteArray parts[] = {
        pieces.value(0),
        pieces.value(1),
        pieces.size() > 2 ? pieces.at(2) : QByteArray(kWorkbook),
        pieces.size() > 3 ? pieces.at(3) : QByteArray(kWorkbookRels),
        QByteArray(kRels),
    };
    const char* const names[] = {"xl/worksheets/sheet1.xml", "xl/sharedStrings.xml",
                                 "xl/workbook.xml", "xl/_rels/workbook.xml.rels", "_rels/.rels"};
    int code = 0;
    zip_t* z = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!z) std::abort();
    for (int i = 0; i < 5; ++i) {
        zip_source_t* src =
            zip_source_buffer(z, parts[i].constData(), zip_uint64_t(parts[i].size()), 0);
        if (!src) std::abort();
        const zip_int64_t index = zip_file_add(z, names[i], src, ZIP_FL_OVERWRITE);
        if (index < 0) std::abort();
        zip_set_file_compression(z, zip_uint64_t(index), ZIP_CM_STORE, 0);
    }
    if (zip_close(z) != 0) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Four files a run: memory-backed where there is such a folder.
    static QTemporaryDir dir(QFileInfo(QStringLiteral("/dev/shm")).isWritable()
                                 ? QStringLiteral("/dev/shm/fuzz_workbook-XXXXXX")
                                 : QDir::tempPath() + QStringLiteral("/fuzz_workbook-XXXXXX"));
    if (!dir.isValid()) std::abort();
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));

    for (const char* name : {"boek.xlsx", "boek.xls", "boek.csv"}) {
        const QString path = dir.filePath(QLatin1String(name));
        {
            QFile file(path);
            if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) std::abort();
            if (file.write(bytes) != bytes.size()) std::abort();
        }
        check(path);
    }
    const QString package = dir.filePath(QStringLiteral("dele.xlsx"));
    write_package(package, bytes);
    check(package);
    return 0;
}
