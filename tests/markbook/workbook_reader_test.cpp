// Reading the first worksheet of the workbook that fills a new mark book.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <map>
#include <optional>
#include <utility>
#include <vector>

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
using Part = std::pair<QString, QByteArray>;

// A zip archive of the given parts, compressed as Excel does.
void write_zip(const QString& path, const std::vector<Part>& parts) {
    int code = 0;
    zip_t* z = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    ASSERT_NE(z, nullptr) << code;
    for (const Part& p : parts) {
        zip_source_t* src = zip_source_buffer(z, p.second.constData(), zip_uint64_t(p.second.size()), 0);
        ASSERT_NE(src, nullptr);
        ASSERT_GE(zip_file_add(z, p.first.toUtf8().constData(), src, ZIP_FL_ENC_UTF_8), 0)
            << zip_strerror(z);
    }
    ASSERT_EQ(zip_close(z), 0);
}

// The first worksheet's part around the given rows.
QByteArray worksheet(const QByteArray& sheet_data) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<worksheet xmlns=\""
           "http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><dimension ref=\"A1:D5\"/><sheetData>" +
           sheet_data + "</sheetData><pageMargins left=\"0.7\"/></worksheet>";
}

// The parts kept under tests/data/workbook/xlsx/<folder>, later folders over
// earlier ones; "common" is a workbook of one sheet, Blad1, with shared
// strings, and lacks the sheet itself.
std::vector<Part> book(const QStringList& folders) {
    std::map<QString, QByteArray> parts;
    for (const QString& folder : folders) {
        const QDir root(QStringLiteral(VELDO_SOURCE_DIR "/tests/data/workbook/xlsx/") + folder);
        QDirIterator it(root.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString file = it.next();
            parts[root.relativeFilePath(file)] = read_bytes(file);
        }
    }
    return std::vector<Part>(parts.begin(), parts.end());
}

// The common workbook with `sheet_data` as the rows of its sheet.
std::vector<Part> simple_book(const QByteArray& sheet_data) {
    std::vector<Part> parts = book({"common"});
    parts.push_back({"xl/worksheets/sheet1.xml", worksheet(sheet_data)});
    return parts;
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

// Shared strings plain and rich, inline strings, numbers in any notation,
// booleans, errors, formula results, a missing row.
TEST_F(WorkbookTest, WorkbookXlsxReadsSharedRichInlineNumbersAndGaps) {
    write_zip(path("klas.xlsx"), book({"common", "klas"}));
    EXPECT_EQ(read_ok("klas.xlsx"), (Rows{{"Nommer", "Naam"},
                                          {"10001", QString::fromUtf8("An\xC3\xA9l Botha"), "", "inline"},
                                          {"12.5", "TRUE", "#DIV/0!", "ab", "FALSE"},
                                          {},  // the missing row 4
                                          {"10002", "  Jan  ", "", "0.3"},
                                          {"Twee\rlyne", "0.001", "-7"}}));
}

TEST_F(WorkbookTest, WorkbookXlsxReadsTheFirstWorksheetInWorkbookOrder) {
    // Sheet order lives in workbook.xml, not in the part names; a chart sheet
    // ahead of the worksheets is passed over.
    write_zip(path("order.xlsx"), book({"common", "order"}));
    EXPECT_EQ(read_ok("order.xlsx"), Rows({QStringList({"", "right"})}));
}

TEST_F(WorkbookTest, WorkbookXlsxFollowsRelationshipsWhereverTheyPoint) {
    // A workbook part outside xl/, an absolute target, names in another case.
    write_zip(path("elders.xlsx"), book({"elders"}));
    // Rows and cells without a reference follow the one before; a shared
    // string index past the table reads as empty.
    EXPECT_EQ(read_ok("elders.xlsx"), Rows({QStringList({"een", "3"}), QStringList({"twee"})}));
}

TEST_F(WorkbookTest, WorkbookXlsxCellsOutsideTheLimitsAreLeftOutAndEmptyOnesGiveNoRows) {
    write_zip(path("wyd.xlsx"),
              simple_book("<row r=\"1\"><c r=\"A1\"><v>1</v></c><c r=\"AMJ1\"><v>1024</v></c>"
                          "<c r=\"AMK1\"><v>1025</v></c><c r=\"XFD1\"><v>2</v></c></row>"
                          "<row r=\"65537\"><c r=\"A65537\"><v>3</v></c></row>"
                          "<row r=\"1048576\"><c r=\"A1048576\"><v>4</v></c></row>"));
    const Rows rows = read_ok("wyd.xlsx");
    ASSERT_EQ(rows.size(), 1);
    ASSERT_EQ(rows[0].size(), kSheetMaxColumns);
    EXPECT_EQ(rows[0].first(), "1");
    EXPECT_EQ(rows[0].last(), "1024");

    write_zip(path("leeg.xlsx"), simple_book("<row r=\"1\"><c r=\"A1\" s=\"2\"/></row><row r=\"7\"/>"));
    EXPECT_TRUE(read_ok("leeg.xlsx").isEmpty());
}

TEST_F(WorkbookTest, WorkbookXlsxAHugeSparseSheetIsUnreadableNotAMemoryHog) {
    QByteArray cells;
    for (int r = 1; r <= 5000; ++r)
        cells += "<row r=\"" + QByteArray::number(r) + "\"><c r=\"AMJ" + QByteArray::number(r) +
                 "\"><v>1</v></c></row>";
    write_zip(path("yl.xlsx"), simple_book(cells));
    EXPECT_EQ(read_fails("yl.xlsx").code, SheetReadError::Unreadable);
}

TEST_F(WorkbookTest, WorkbookXlsxBrokenPackagesSayWhatIsWrong) {
    write_zip(path("geen_boek.xlsx"), {{"readme.txt", "hello"}});
    EXPECT_EQ(read_fails("geen_boek.xlsx").code, SheetReadError::NotAWorkbook);

    write_zip(path("geen_blad.xlsx"), book({"common", "no_sheet"}));
    EXPECT_EQ(read_fails("geen_blad.xlsx").code, SheetReadError::NoSheet);

    write_zip(path("stukkend.xlsx"), simple_book("<row r=\"1\"><c r=\"A1\"><v>1</v></row>"));
    EXPECT_EQ(read_fails("stukkend.xlsx").code, SheetReadError::Unreadable);

    write_zip(path("weg.xlsx"), book({"common"}));
    EXPECT_EQ(read_fails("weg.xlsx").code, SheetReadError::Unreadable);

    write_bytes(path("kop.xlsx"), QByteArray("PK\x03\x04", 4) + QByteArray(200, '\x7F'));
    const SheetReadError torn = read_fails("kop.xlsx");
    EXPECT_TRUE(torn.code == SheetReadError::NotAWorkbook || torn.code == SheetReadError::Unreadable)
        << torn.code;

    // A damaged entry: flip bytes in the middle of the compressed sheet.
    write_zip(path("crc.xlsx"), simple_book(QByteArray(4000, ' ') + "<row r=\"1\"><c r=\"A1\"><v>1</v></c></row>"));
    QByteArray bytes = read_bytes(path("crc.xlsx"));
    const qsizetype at = bytes.indexOf("xl/worksheets/sheet1.xml") + 40;
    for (qsizetype i = at; i < at + 8 && i < bytes.size(); ++i) bytes[i] = char(bytes[i] ^ 0x55);
    write_bytes(path("crc.xlsx"), bytes);
    EXPECT_EQ(read_fails("crc.xlsx").code, SheetReadError::Unreadable);
}

TEST_F(WorkbookTest, WorkbookMissingEmptyAndGarbageFiles) {
    QByteArray garbage;
    for (int i = 0; i < 3000; ++i) garbage.append(char((i * 7919 + 13) & 0xFF));
    struct Case {
        const char* name;
        std::optional<QByteArray> bytes;
        SheetReadError::Code code;
    };
    const Case cases[] = {
        {"nêrens.xlsx", std::nullopt, SheetReadError::Missing},
        {"nêrens", std::nullopt, SheetReadError::Missing},
        {"leeg.xlsx", QByteArray(), SheetReadError::NotAWorkbook},
        {"leeg.xls", QByteArray(), SheetReadError::NotAWorkbook},
        {"rommel.xlsx", garbage, SheetReadError::NotAWorkbook},
        {"rommel.xls", garbage, SheetReadError::NotAWorkbook},
    };
    for (const Case& c : cases) {
        if (c.bytes) write_bytes(path(c.name), *c.bytes);
        EXPECT_EQ(read_fails(c.name).code, c.code) << c.name;
    }
    // Under any other name an empty file is an empty sheet, and garbage is
    // text: it must merely not crash.
    write_bytes(path("leeg.csv"), {});
    EXPECT_TRUE(read_ok("leeg.csv").isEmpty());
    write_bytes(path("rommel.csv"), garbage);
    EXPECT_TRUE(read_first_sheet(path("rommel.csv")).has_value());

    QDir(dir.path()).mkdir("gids.xlsx");
    EXPECT_EQ(read_fails("gids.xlsx").code, SheetReadError::Unreadable);
#if defined(Q_OS_UNIX)
    // A pipe would never end; it is refused before it is opened.
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pyp.csv")).constData(), 0600), 0);
    EXPECT_EQ(read_fails("pyp.csv").code, SheetReadError::Unreadable);
#endif
}

TEST_F(WorkbookTest, WorkbookContentDecidesOverTheName) {
    const QByteArray cells = "<row r=\"1\"><c r=\"A1\"><v>7</v></c></row>";
    write_zip(path("sonder_agtervoegsel"), simple_book(cells));
    EXPECT_EQ(read_ok("sonder_agtervoegsel"), Rows({QStringList({"7"})}));
    write_zip(path("verkeerd.xls"), simple_book(cells));
    EXPECT_EQ(read_ok("verkeerd.xls"), Rows({QStringList({"7"})}));
    write_bytes(path("teks"), "1;Jan\r\n");
    EXPECT_EQ(read_ok("teks"), Rows({QStringList({"1", "Jan"})}));
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

TEST_F(WorkbookTest, WorkbookXlsReadsTheFirstSheetThroughFreeXL) {
    // Written by xlwt: RK and NUMBER cells, shared strings, a gap, two sheets.
    const QString fixture = QStringLiteral(VELDO_SOURCE_DIR "/tests/data/workbook/class_list.xls");
    ASSERT_TRUE(QFile::copy(fixture, path("klas.xls")));
    const Rows rows = read_ok("klas.xls");
    EXPECT_EQ(rows, (Rows{{"Nommer", "Naam"},
                          {"10001", QString::fromUtf8("  An\xC3\xA9l Botha  ")},
                          {"10002", "Jan"},
                          {"12.5", "Sipho", "", "D4"},
                          {"10001", QString::fromUtf8("\xC3\x8Blize")},
                          {},
                          {"", "after a blank row"}}));

    // Found without its extension, and read by its first bytes.
    ASSERT_TRUE(QFile::copy(fixture, path("wisk_10A")));
    EXPECT_EQ(read_ok("wisk_10A"), rows);
}

TEST_F(WorkbookTest, WorkbookXlsDamagedCompoundFileIsUnreadable) {
    QByteArray bytes = read_bytes(QStringLiteral(VELDO_SOURCE_DIR "/tests/data/workbook/class_list.xls"));
    ASSERT_GT(bytes.size(), 1024);
    bytes.truncate(600);  // the header survives, the sectors do not
    write_bytes(path("kort.xls"), bytes);
    EXPECT_EQ(read_fails("kort.xls").code, SheetReadError::Unreadable);

    write_bytes(path("kop.xls"), QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + QByteArray(504, '\0'));
    EXPECT_EQ(read_fails("kop.xls").code, SheetReadError::Unreadable);
}

// Commas or semicolons, quotes, encodings: each file's bytes and the rows read.
TEST_F(WorkbookTest, WorkbookCsvSeparatorsQuotesAndEncodings) {
    const QString e_trema = QString::fromUtf8("Mari\xC3\xAB");
    struct Case {
        const char* why;
        QByteArray bytes;
        Rows rows;
    };
    const Case cases[] = {
        {"commas, quotes, blank lines and line ends of either kind",
         "Nommer,Naam\r\n10001,\"Botha, Anel\"\r\n\"10002\",\"S\xC3\xAA \"\"Jan\"\"\",,\r\n"
         "10003,\"twee\nlyne\",x\n\n10004\r\n\r\n\r\n",
         {{"Nommer", "Naam"}, {"10001", "Botha, Anel"}, {"10002", QString::fromUtf8("S\xC3\xAA \"Jan\"")},
          {"10003", "twee\nlyne", "x"}, {}, {"10004"}}},
        {"the semicolon wins when both occur", "Nr;Naam, Van;Punt\r\n1;Botha, Anel;12,5\r\n2;\"a;b\";3",
         {{"Nr", "Naam, Van", "Punt"}, {"1", "Botha, Anel", "12,5"}, {"2", "a;b", "3"}}},
        {"a separator only inside quotes on the first line does not count", "\"Nr;Naam\",Van\r\n1,Jan\r\n",
         {{"Nr;Naam", "Van"}, {"1", "Jan"}}},
        {"a heading of one cell: the first line that has one decides", "Klaslys\n1;Jan, Piet\n",
         {{"Klaslys"}, {"1", "Jan, Piet"}}},
        {"a heading of one cell, then commas", "Klaslys\n1,Jan\n", {{"Klaslys"}, {"1", "Jan"}}},
        {"UTF-8", "Nr;Naam\n1;Mari\xC3\xAB\n", {{"Nr", "Naam"}, {"1", e_trema}}},
        {"UTF-8 with its mark", "\xEF\xBB\xBFNr;Naam\n1;Mari\xC3\xAB\n", {{"Nr", "Naam"}, {"1", e_trema}}},
        {"Windows-1252", "Nr;Naam\n1;Mari\xEB\n2;\x93Oupa\x94\n",
         {{"Nr", "Naam"}, {"1", e_trema}, {"2", QString::fromUtf8("\xE2\x80\x9COupa\xE2\x80\x9D")}}},
        {"an unclosed quote runs to the end; a quote inside a field stands as is", "1,ab\"c,\"nooit\r\ntoe",
         {{"1", "ab\"c", "nooit\r\ntoe"}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        write_bytes(path("lys.csv"), c.bytes);
        EXPECT_EQ(read_ok("lys.csv"), c.rows);
    }
}

TEST_F(WorkbookTest, WorkbookCsvRowsAndColumnsStopAtTheLimits) {
    QByteArray wide = "x";
    for (int i = 0; i < 1100; ++i) wide += ",y";
    write_bytes(path("wyd.csv"), wide + "\n");
    const Rows rows = read_ok("wyd.csv");
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0].size(), kSheetMaxColumns);

    write_bytes(path("lank.csv"), QByteArray("1\n").repeated(kSheetMaxRows + 100));
    EXPECT_EQ(read_ok("lank.csv").size(), kSheetMaxRows);
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

TEST(WorkbookClassList, HeadingSkippedStopsAtTheFirstBlankFirstCell) {
    const Rows rows = {
        {"Nommer", "Naam"},
        {"10001", "  Anel Botha  "},
        {"12345abc", "Jan"},
        {" 7 ", "\tSipho\t", "ignored"},
        {"geen"},
        {"   ", "after the blank"},
        {"10009", "never read"},
    };
    EXPECT_EQ(entries(class_list_from_sheet(rows)), (QStringList{"10001|Anel Botha", "12345|Jan", "7|Sipho", "0|"}));
}

TEST(WorkbookClassList, EmptyAndShortSheets) {
    EXPECT_TRUE(class_list_from_sheet({}).isEmpty());
    EXPECT_TRUE(class_list_from_sheet({{"Nommer", "Naam"}}).isEmpty());
    EXPECT_TRUE(class_list_from_sheet({{"Nommer"}, {}}).isEmpty());
    EXPECT_EQ(entries(class_list_from_sheet({{}, {"12.5"}})), QStringList{"12.5|"});
}

}  // namespace
}  // namespace veldo
