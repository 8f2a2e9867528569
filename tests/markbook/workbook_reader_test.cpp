// Reading the first worksheet of the workbook that fills a new mark book.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <map>
#include <optional>
#include <tuple>

#include <zip.h>

#if defined(Q_OS_UNIX)
#include <sys/stat.h>
#endif

#include "markbook/workbook_reader.h"
#include "tests/support/golden.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::read_bytes;
using testing::write_bytes;
using Rows = QList<QStringList>;
using Parts = std::map<QString, QByteArray>;

// The bytes of a zip archive of the given parts, compressed as Excel does.
QByteArray zipped(const Parts& parts) {
    QTemporaryDir dir;
    const QString path = dir.filePath("book.zip");
    int code = 0;
    zip_t* z = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!z) ADD_FAILURE() << "zip_open " << code;
    for (const auto& [name, bytes] : parts) {
        zip_source_t* src = zip_source_buffer(z, bytes.constData(), zip_uint64_t(bytes.size()), 0);
        if (!src || zip_file_add(z, name.toUtf8().constData(), src, ZIP_FL_ENC_UTF_8) < 0)
            ADD_FAILURE() << zip_strerror(z);
    }
    if (zip_close(z) != 0) ADD_FAILURE() << "zip_close";
    return read_bytes(path);
}

// The parts kept under tests/data/workbook/xlsx/<folder>, later folders over
// earlier ones; "common" is a workbook of one sheet, Blad1, with shared
// strings, and lacks the sheet itself.
Parts parts_of(const QStringList& folders) {
    Parts parts;
    for (const QString& folder : folders) {
        const QDir root(QStringLiteral(VELDO_SOURCE_DIR "/tests/data/workbook/xlsx/") + folder);
        QDirIterator it(root.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString file = it.next();
            parts[root.relativeFilePath(file)] = read_bytes(file);
        }
    }
    return parts;
}
QByteArray book(const QStringList& folders) { return zipped(parts_of(folders)); }

// The common workbook with `sheet_data` as the rows of its sheet.
QByteArray simple_book(const QByteArray& sheet_data) {
    Parts parts = parts_of({"common"});
    parts["xl/worksheets/sheet1.xml"] =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<worksheet xmlns=\""
        "http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><dimension ref=\"A1:D5\"/><sheetData>" +
        sheet_data + "</sheetData><pageMargins left=\"0.7\"/></worksheet>";
    return zipped(parts);
}

QByteArray class_list_xls() {
    return read_bytes(QStringLiteral(VELDO_SOURCE_DIR "/tests/data/workbook/class_list.xls"));
}

// Bytes that look like nothing: a step of a prime through the byte values.
QByteArray garbage() {
    QByteArray bytes;
    for (int i = 0; i < 3000; ++i) bytes.append(char((i * 7919 + 13) & 0xFF));
    return bytes;
}

class WorkbookTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString path(const QString& name) const { return dir.filePath(name); }

    Rows read_ok(const QString& name) {
        SheetReadError error;
        const auto rows = read_first_sheet(path(name), &error);
        EXPECT_TRUE(rows.has_value()) << error.code << " " << error.detail.toStdString();
        EXPECT_EQ(error.code, SheetReadError::None);
        return rows.value_or(Rows());
    }
    SheetReadError read_fails(const QString& name) {
        SheetReadError error;
        const auto rows = read_first_sheet(path(name), &error);
        EXPECT_FALSE(rows.has_value());
        EXPECT_EQ(error.path, path(name));
        return error;
    }
};

// Each file's name and bytes; the rows read are in the golden file, each
// with its count of cells. The content decides over the name, and a file
// without an extension is read by its first bytes.
TEST_F(WorkbookTest, EachKindOfFileReadsToItsRows) {
    const QByteArray seven = simple_book("<row r=\"1\"><c r=\"A1\"><v>7</v></c></row>");
    const std::tuple<const char*, const char*, QByteArray> cases[] = {
        {"shared strings plain and rich, inline strings, numbers in any notation, booleans, errors, formula "
         "results, a missing row",
         "klas.xlsx", book({"common", "klas"})},
        // Sheet order lives in workbook.xml, not in the part names.
        {"the first worksheet in workbook order, a chart sheet ahead passed over", "order.xlsx",
         book({"common", "order"})},
        // Rows and cells without a reference follow the one before; a shared
        // string index past the table reads as empty.
        {"relationships followed outside xl/, absolute, in another case", "elders.xlsx", book({"elders"})},
        {"empty cells give no rows", "leeg_blad.xlsx",
         simple_book("<row r=\"1\"><c r=\"A1\" s=\"2\"/></row><row r=\"7\"/>")},
        {"a workbook without an extension", "sonder_agtervoegsel", seven},
        {"a workbook named .xls", "verkeerd.xls", seven},
        {"text without an extension", "teks", "1;Jan\r\n"},
        {"an empty file under another name is an empty sheet", "leeg.csv", {}},
        // Written by xlwt: RK and NUMBER cells, shared strings, a gap, two sheets.
        {"the first sheet of an xls", "klas.xls", class_list_xls()},
        {"an xls without its extension", "wisk_10A", class_list_xls()},
        {"commas, quotes, blank lines and line ends of either kind", "lys.csv",
         "Nommer,Naam\r\n10001,\"Botha, Anel\"\r\n\"10002\",\"S\xC3\xAA \"\"Jan\"\"\",,\r\n"
         "10003,\"twee\nlyne\",x\n\n10004\r\n\r\n\r\n"},
        {"the semicolon wins when both occur", "lys.csv", "Nr;Naam, Van;Punt\r\n1;Botha, Anel;12,5\r\n2;\"a;b\";3"},
        {"a separator only inside quotes on the first line does not count", "lys.csv", "\"Nr;Naam\",Van\r\n1,Jan\r\n"},
        {"a heading of one cell: the first line that has one decides", "lys.csv", "Klaslys\n1;Jan, Piet\n"},
        {"a heading of one cell, then commas", "lys.csv", "Klaslys\n1,Jan\n"},
        {"UTF-8", "lys.csv", "Nr;Naam\n1;Mari\xC3\xAB\n"},
        {"UTF-8 with its mark", "lys.csv", "\xEF\xBB\xBFNr;Naam\n1;Mari\xC3\xAB\n"},
        {"Windows-1252", "lys.csv", "Nr;Naam\n1;Mari\xEB\n2;\x93Oupa\x94\n"},
        {"an unclosed quote runs to the end; a quote inside a field stands as is", "lys.csv",
         "1,ab\"c,\"nooit\r\ntoe"},
    };
    QString read;
    for (const auto& [why, name, bytes] : cases) {
        SCOPED_TRACE(why);
        write_bytes(path(name), bytes);
        read += QString("== %1 (%2)\n").arg(why, name);
        for (const QStringList& row : read_ok(name))
            read += QString("%1: %2\n").arg(row.size()).arg(row.join('|').replace('\r', "\\r").replace('\n', "\\n"));
    }
    EXPECT_TRUE(testing::matches_golden(read, "workbook/rows_read.txt"));
}

// Cells past column AMJ and rows past 65536 are left out, in either kind.
TEST_F(WorkbookTest, RowsAndColumnsStopAtTheLimits) {
    QStringList wide_xlsx(kSheetMaxColumns), wide_csv(kSheetMaxColumns, "y");
    wide_xlsx.first() = "1";
    wide_xlsx.last() = "1024";
    wide_csv.first() = "x";
    write_bytes(path("wyd.xlsx"), simple_book("<row r=\"1\"><c r=\"A1\"><v>1</v></c><c r=\"AMJ1\"><v>1024</v></c>"
                                              "<c r=\"AMK1\"><v>1025</v></c><c r=\"XFD1\"><v>2</v></c></row>"
                                              "<row r=\"65537\"><c r=\"A65537\"><v>3</v></c></row>"
                                              "<row r=\"1048576\"><c r=\"A1048576\"><v>4</v></c></row>"));
    EXPECT_EQ(read_ok("wyd.xlsx"), Rows{wide_xlsx});
    write_bytes(path("wyd.csv"), "x" + QByteArray(",y").repeated(1100) + "\n");
    EXPECT_EQ(read_ok("wyd.csv"), Rows{wide_csv});
    write_bytes(path("lank.csv"), QByteArray("1\n").repeated(kSheetMaxRows + 100));
    EXPECT_EQ(read_ok("lank.csv"), Rows(kSheetMaxRows, {"1"}));
}

// Each file that is no readable workbook, and the failure it gives.
TEST_F(WorkbookTest, BrokenMissingAndForeignFilesSayWhatIsWrong) {
    QByteArray cells;
    for (int r = 1; r <= 5000; ++r)
        cells += "<row r=\"" + QByteArray::number(r) + "\"><c r=\"AMJ" + QByteArray::number(r) +
                 "\"><v>1</v></c></row>";
    // A damaged entry: bytes flipped in the middle of the compressed sheet.
    QByteArray crc = simple_book(QByteArray(4000, ' ') + "<row r=\"1\"><c r=\"A1\"><v>1</v></c></row>");
    const qsizetype at = crc.indexOf("xl/worksheets/sheet1.xml") + 40;
    for (qsizetype i = at; i < at + 8 && i < crc.size(); ++i) crc[i] = char(crc[i] ^ 0x55);
    const std::tuple<const char*, std::optional<QByteArray>, SheetReadError::Code> cases[] = {
        {"yl.xlsx", simple_book(cells), SheetReadError::Unreadable},  // huge and sparse: no memory hog
        {"geen_boek.xlsx", zipped({{"readme.txt", "hello"}}), SheetReadError::NotAWorkbook},
        {"geen_blad.xlsx", book({"common", "no_sheet"}), SheetReadError::NoSheet},
        {"stukkend.xlsx", simple_book("<row r=\"1\"><c r=\"A1\"><v>1</v></row>"), SheetReadError::Unreadable},
        {"weg.xlsx", book({"common"}), SheetReadError::Unreadable},  // the sheet's part is missing
        {"crc.xlsx", crc, SheetReadError::Unreadable},
        {"nêrens.xlsx", std::nullopt, SheetReadError::Missing},
        {"nêrens", std::nullopt, SheetReadError::Missing},
        {"leeg.xlsx", QByteArray(), SheetReadError::NotAWorkbook},
        {"leeg.xls", QByteArray(), SheetReadError::NotAWorkbook},
        {"rommel.xlsx", garbage(), SheetReadError::NotAWorkbook},
        {"rommel.xls", garbage(), SheetReadError::NotAWorkbook},
        {"kort.xls", class_list_xls().left(600), SheetReadError::Unreadable},  // the header survives, the sectors not
        {"kop.xls", QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + QByteArray(504, '\0'),
         SheetReadError::Unreadable},
    };
    for (const auto& [name, bytes, code] : cases) {
        if (bytes) write_bytes(path(name), *bytes);
        EXPECT_EQ(read_fails(name).code, code) << name;
    }
    write_bytes(path("kop.xlsx"), QByteArray("PK\x03\x04", 4) + QByteArray(200, '\x7F'));
    const SheetReadError torn = read_fails("kop.xlsx");
    EXPECT_TRUE(torn.code == SheetReadError::NotAWorkbook || torn.code == SheetReadError::Unreadable) << torn.code;
    // Under any other name garbage is text: it must merely not crash.
    write_bytes(path("rommel.csv"), garbage());
    EXPECT_TRUE(read_first_sheet(path("rommel.csv")).has_value());
    QDir(dir.path()).mkdir("gids.xlsx");
    EXPECT_EQ(read_fails("gids.xlsx").code, SheetReadError::Unreadable);
#if defined(Q_OS_UNIX)
    // A pipe would never end; it is refused before it is opened.
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pyp.csv")).constData(), 0600), 0);
    EXPECT_EQ(read_fails("pyp.csv").code, SheetReadError::Unreadable);
#endif
}

// Each failure in both languages, naming the workbook; no failure, no text.
TEST(WorkbookMessages, InBothLanguages) {
    QString texts;
    for (int c = SheetReadError::None; c <= SheetReadError::NoSheet; ++c) {
        const SheetReadError e{SheetReadError::Code(c), "/data/wisk_10A.xlsx", "crc"};
        texts += sheet_error_message(e, true) + '\n' + sheet_error_message(e, false) + '\n';
    }
    EXPECT_TRUE(testing::matches_golden(texts, "markbook/workbook_messages.txt"));
}

TEST_F(WorkbookTest, WorkbookFoundByNameThenByExtensionIgnoringCase) {
    EXPECT_EQ(find_first_fill_workbook(dir.path(), "wisk_10A"), "");
    write_bytes(path("WISK_10a.CSV"), "x");
    EXPECT_EQ(find_first_fill_workbook(dir.path(), "wisk_10A"), path("WISK_10a.CSV"));
    write_bytes(path("wisk_10A.xls"), "x");
    EXPECT_EQ(find_first_fill_workbook(dir.path(), "wisk_10A"), path("wisk_10A.xls"));
    write_bytes(path("Wisk_10A.xlsx"), "x");
    EXPECT_EQ(find_first_fill_workbook(dir.path(), "wisk_10A"), path("Wisk_10A.xlsx"));
    // A folder of that name is no workbook.
    QDir(dir.path()).mkdir("wisk_10a");
    EXPECT_EQ(find_first_fill_workbook(dir.path(), "wisk_10A"), path("Wisk_10A.xlsx"));
    write_bytes(path("wisk_10A.xlsx.bak"), "x");
    EXPECT_EQ(find_first_fill_workbook(dir.path(), "wisk_10A.xlsx.bak"), path("wisk_10A.xlsx.bak"));
    EXPECT_EQ(find_first_fill_workbook(dir.path(), ""), "");
}

// Each entry as "<number>|<name>", the number to its last digit.
QStringList entries(const QList<ClassListEntry>& list) {
    QStringList out;
    for (const ClassListEntry& e : list) out << QString::number(e.number, 'g', 17) + "|" + e.name;
    return out;
}

// The first row is the heading; the list stops at the first blank first cell.
TEST(WorkbookClassList, HeadingSkippedStopsAtTheFirstBlankFirstCell) {
    const std::tuple<const char*, Rows, QStringList> cases[] = {
        {"numbers read by Val, names trimmed",
         {{"Nommer", "Naam"}, {"10001", "  Anel Botha  "}, {"12345abc", "Jan"}, {" 7 ", "\tSipho\t", "ignored"},
          {"geen"}, {"   ", "after the blank"}, {"10009", "never read"}},
         {"10001|Anel Botha", "12345|Jan", "7|Sipho", "0|"}},
        {"no rows", {}, {}},
        {"a heading only", {{"Nommer", "Naam"}}, {}},
        {"a heading, then an empty row", {{"Nommer"}, {}}, {}},
        {"an empty heading, then a number without a name", {{}, {"12.5"}}, {"12.5|"}},
    };
    for (const auto& [why, rows, list] : cases) EXPECT_EQ(entries(class_list_from_sheet(rows)), list) << why;
}

}  // namespace
}  // namespace veldo
