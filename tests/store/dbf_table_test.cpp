#include "store/dbf_table.h"

#include "util/safe_file.h"
#include "util/text_helpers.h"

#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "tests/support/unprivileged.h"

#include <clocale>
#include <cstdio>
#include <cstring>

#ifdef __linux__
#include <csignal>
#include <sys/resource.h>
#endif

using namespace veldo;

namespace {

// ---- fixtures ---------------------------------------------------------------

QByteArray read_bytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void write_bytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(f.write(bytes), bytes.size());
}

unsigned byte_at(const QByteArray& b, int i) { return static_cast<unsigned char>(b.at(i)); }
unsigned u16_at(const QByteArray& b, int i) { return byte_at(b, i) | (byte_at(b, i + 1) << 8); }
unsigned u32_at(const QByteArray& b, int i) { return u16_at(b, i) | (u16_at(b, i + 2) << 16); }

// A table as another dBASE writer makes it, byte by byte.
struct RawField {
    QByteArray name;
    char type;
    int width;
    int decimals = 0;
};

struct RawOptions {
    unsigned char version = 0x03;
    int yy = 98, mm = 7, dd = 15;
    bool end_marker = false;
    unsigned char language = 0;
    int record_count = -1;   // -1: the number of records given
    int record_length = -1;  // -1: as the fields add up
    int header_length = -1;  // -1: 32 + 32 per field + 1
};

QByteArray raw_table(const QList<RawField>& fields, const QList<QByteArray>& records,
                     const RawOptions& o = {}) {
    int record_length = 1;
    for (const auto& f : fields) record_length += f.width;
    if (o.record_length >= 0) record_length = o.record_length;
    const int header_length = o.header_length >= 0 ? o.header_length : 32 + 32 * int(fields.size()) + 1;
    const int count = o.record_count >= 0 ? o.record_count : int(records.size());

    QByteArray head(32, '\0');
    head[0] = char(o.version);
    head[1] = char(o.yy);
    head[2] = char(o.mm);
    head[3] = char(o.dd);
    for (int i = 0; i < 4; ++i) head[4 + i] = char((count >> (8 * i)) & 0xFF);
    head[8] = char(header_length & 0xFF);
    head[9] = char(header_length >> 8);
    head[10] = char(record_length & 0xFF);
    head[11] = char(record_length >> 8);
    head[29] = char(o.language);
    QByteArray bytes = head;
    for (const auto& f : fields) {
        QByteArray d(32, '\0');
        std::memcpy(d.data(), f.name.constData(), std::size_t(std::min<qsizetype>(f.name.size(), 11)));
        d[11] = f.type;
        d[16] = char(f.width);
        d[17] = char(f.decimals);
        bytes += d;
    }
    bytes += char(0x0D);
    while (bytes.size() < header_length) bytes += char(0);
    for (const auto& r : records) bytes += r;
    if (o.end_marker) bytes += char(0x1A);
    return bytes;
}

// NAAM C(10), PUNT N(5,1), DATUM D, OK L: record length 25.
QList<DbfField> marks_fields() {
    return {{QStringLiteral("NAAM"), DbfType::Character, 10, 0},
            {QStringLiteral("PUNT"), DbfType::Numeric, 5, 1},
            {QStringLiteral("DATUM"), DbfType::Date, 8, 0},
            {QStringLiteral("OK"), DbfType::Logical, 1, 0}};
}
constexpr int kMarksHeader = 32 + 4 * 32 + 1;
constexpr int kMarksRecord = 25;

double ole_days(const QDate& d) { return double(QDate(1899, 12, 30).daysTo(d)); }

QByteArray today_bytes() {
    const QDate t = QDate::currentDate();
    QByteArray b(3, '\0');
    b[0] = char(t.year() - 1900);
    b[1] = char(t.month());
    b[2] = char(t.day());
    return b;
}

class DbfFixture : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString path(const QString& name) const { return dir.filePath(name); }

    // A table of marks_fields() holding the given names, PUNT = 10 * row.
    QString marks_table(const QStringList& names, const QString& name = QStringLiteral("marks1.dbf")) {
        const QString p = path(name);
        EXPECT_TRUE(DbfTable::create(p, marks_fields()));
        auto t = DbfTable::open(p);
        EXPECT_TRUE(t);
        for (int i = 0; i < names.size(); ++i) {
            EXPECT_TRUE(t->AddNew());
            EXPECT_TRUE(t->set_value(0, names[i]));
            EXPECT_TRUE(t->set_value(1, 10.0 * (i + 1)));
            EXPECT_TRUE(t->Update());
        }
        return p;
    }

    static QStringList walk_names(DbfTable& t) {
        QStringList seen;
        for (t.MoveFirst(); !t.Eof(); t.MoveNext()) seen << t.value(0).toString().trimmed();
        return seen;
    }
};

// ---- creating -----------------------------------------------------------------

class DbfCreate : public DbfFixture {};

TEST_F(DbfCreate, WritesADbaseThreeHeaderWithTodaysDate) {
    const QString p = path("new.dbf");
    ASSERT_TRUE(DbfTable::create(p, marks_fields()));
    const QByteArray b = read_bytes(p);
    ASSERT_EQ(b.size(), kMarksHeader + 1);
    EXPECT_EQ(byte_at(b, 0), 0x03u);
    EXPECT_EQ(b.mid(1, 3), today_bytes());
    EXPECT_EQ(u32_at(b, 4), 0u);
    EXPECT_EQ(u16_at(b, 8), unsigned(kMarksHeader));
    EXPECT_EQ(u16_at(b, 10), unsigned(kMarksRecord));
    EXPECT_EQ(byte_at(b, 29), 0x57u);  // Windows ANSI, as shapelib marks it
    const char* types = "CNDL";
    const int widths[] = {10, 5, 8, 1};
    const int decimals[] = {0, 1, 0, 0};
    const char* names[] = {"NAAM", "PUNT", "DATUM", "OK"};
    for (int i = 0; i < 4; ++i) {
        const QByteArray d = b.mid(32 + 32 * i, 32);
        EXPECT_EQ(d.left(11), QByteArray(names[i]).leftJustified(11, '\0')) << i;
        EXPECT_EQ(d.at(11), types[i]) << i;
        EXPECT_EQ(byte_at(d, 16), unsigned(widths[i])) << i;
        EXPECT_EQ(byte_at(d, 17), unsigned(decimals[i])) << i;
    }
    EXPECT_EQ(byte_at(b, kMarksHeader - 1), 0x0Du);
    EXPECT_EQ(byte_at(b, kMarksHeader), 0x1Au);
}

TEST_F(DbfCreate, StoresFieldNamesInUpperCaseAndFixesTheFixedWidths) {
    const QString p = path("t.dbf");
    ASSERT_TRUE(DbfTable::create(p, {{"naam", DbfType::Character, 3, 2},
                                     {"dag", DbfType::Date, 3, 0},
                                     {"ja", DbfType::Logical, 7, 0}}));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->field(0).name, "NAAM");
    EXPECT_EQ(t->field(0).decimals, 0);
    EXPECT_EQ(t->field(1).width, 8);
    EXPECT_EQ(t->field(2).width, 1);
}

TEST_F(DbfCreate, MemoFieldMakesVersion83AndAnEmptyMemoFile) {
    const QString p = path("notas.dbf");
    ASSERT_TRUE(DbfTable::create(p, {{"NAAM", DbfType::Character, 5, 0},
                                     {"NOTA", DbfType::Memo, 0, 0}}));
    const QByteArray b = read_bytes(p);
    EXPECT_EQ(byte_at(b, 0), 0x83u);
    EXPECT_EQ(byte_at(b, 32 + 32 + 16), 10u);
    const QByteArray memo = read_bytes(path("notas.dbt"));
    ASSERT_EQ(memo.size(), 512);
    EXPECT_EQ(u32_at(memo, 0), 1u);
}

TEST_F(DbfCreate, AMemoTemplateGetsItsMemoTemplateBeside) {
    ASSERT_TRUE(DbfTable::create(path("LWISK_P_S.org"), {{"NOTA", DbfType::Memo, 10, 0}}));
    EXPECT_TRUE(QFileInfo::exists(path("LWISK_P_S.ort")));
    EXPECT_FALSE(QFileInfo::exists(path("LWISK_P_S.dbt")));
    auto t = DbfTable::open(path("LWISK_P_S.org"));
    ASSERT_TRUE(t);
    EXPECT_EQ(t->field(0).type, DbfType::Memo);
}

TEST_F(DbfCreate, RefusesWhatDbaseThreeCannotHold) {
    const QList<QList<DbfField>> bad = {
        {},
        {{"NAAMVANLEERDER", DbfType::Character, 5, 0}},
        {{"1NAAM", DbfType::Character, 5, 0}},
        {{"NA AM", DbfType::Character, 5, 0}},
        {{"NAAM", DbfType::Character, 5, 0}, {"naam", DbfType::Character, 5, 0}},
        {{"NAAM", DbfType::Character, 255, 0}},
        {{"NAAM", DbfType::Character, 0, 0}},
        {{"PUNT", DbfType::Numeric, 20, 0}},
        {{"PUNT", DbfType::Numeric, 4, 3}},
        {{"X", DbfType::Other, 4, 0}},
    };
    for (int i = 0; i < bad.size(); ++i) {
        const QString p = path(QStringLiteral("bad%1.dbf").arg(i));
        DbfError error;
        EXPECT_FALSE(DbfTable::create(p, bad[i], &error)) << i;
        EXPECT_EQ(error.code, DbfError::BadField) << i;
        EXPECT_FALSE(QFileInfo::exists(p)) << i;
    }
    QList<DbfField> too_many;
    for (int i = 0; i < 129; ++i) too_many.append({QStringLiteral("F%1").arg(i), DbfType::Character, 1, 0});
    EXPECT_FALSE(DbfTable::create(path("many.dbf"), too_many));
}

TEST_F(DbfCreate, LeavesATableSetReadOnlyAlone) {
    if (veldo::testing::rerun_unprivileged()) return;
    const QString p = marks_table({"Anna"});
    const QByteArray before = read_bytes(p);
    QFile::setPermissions(p, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    ASSERT_FALSE(QFileInfo(p).isWritable());
    DbfError error;
    EXPECT_FALSE(DbfTable::create(p, marks_fields(), &error));
    EXPECT_EQ(error.code, DbfError::ReadOnly);
    EXPECT_EQ(read_bytes(p), before);
}

TEST_F(DbfCreate, ReplacesAnOldTableAndLeavesNoScratchFiles) {
    const QString p = marks_table({"Anna", "Ben"});
    ASSERT_TRUE(DbfTable::create(p, marks_fields()));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->RecordCount(), 0);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"marks1.dbf"});
}

// ---- bytes written ------------------------------------------------------------

class DbfWrite : public DbfFixture {};

TEST_F(DbfWrite, AppendedRecordIsLaidOutAsDbaseDoes) {
    const QString p = path("t.dbf");
    ASSERT_TRUE(DbfTable::create(p, marks_fields()));
    {
        auto t = DbfTable::open(p);
        ASSERT_TRUE(t);
        ASSERT_TRUE(t->AddNew());
        EXPECT_TRUE(t->set_value("naam", QString::fromUtf8("Anë")));
        EXPECT_TRUE(t->set_value("PUNT", 12.5));
        EXPECT_TRUE(t->set_value("DATUM", QVariant::fromValue(OleDate{ole_days(QDate(2024, 3, 5))})));
        EXPECT_TRUE(t->set_value("OK", true));
        ASSERT_TRUE(t->Update());
    }
    const QByteArray b = read_bytes(p);
    ASSERT_EQ(b.size(), kMarksHeader + kMarksRecord + 1);
    EXPECT_EQ(u32_at(b, 4), 1u);
    EXPECT_EQ(b.mid(kMarksHeader, kMarksRecord), QByteArray(" An\xEB       ") + " 12.5" + "20240305" + "T");
    EXPECT_EQ(byte_at(b, kMarksHeader + kMarksRecord), 0x1Au);
}

TEST_F(DbfWrite, TextIsCutAtTheWidthAndNullWritesBlanks) {
    const QString p = path("t.dbf");
    ASSERT_TRUE(DbfTable::create(p, marks_fields()));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t->AddNew());
    t->set_value(0, QStringLiteral("ABCDEFGHIJKLMN"));
    t->set_value(1, QVariant());
    t->set_value(2, QVariant());
    t->set_value(3, QVariant());
    ASSERT_TRUE(t->Update());
    EXPECT_EQ(read_bytes(p).mid(kMarksHeader, kMarksRecord),
              QByteArray(" ABCDEFGHIJ") + QByteArray(14, ' '));
}

TEST_F(DbfWrite, NumbersTakeTheFieldsDecimalsRoundedHalfAwayFromZero) {
    const QString p = path("n.dbf");
    ASSERT_TRUE(DbfTable::create(p, {{"BEDRAG", DbfType::Numeric, 7, 2}}));
    auto t = DbfTable::open(p);
    const QList<QPair<QVariant, QByteArray>> cases = {
        {2.675, "   2.68"},  {-2.675, "  -2.68"}, {0.004, "   0.00"},
        {-0.001, "   0.00"}, {99.995, " 100.00"}, {7, "   7.00"},
        {QStringLiteral(" 3.5 "), "   3.50"},     {qint16(-12), " -12.00"},
        {1234.5f, "1234.50"}, {QStringLiteral("   "), "       "},
    };
    for (const auto& [value, expected] : cases) {
        ASSERT_TRUE(t->AddNew());
        EXPECT_TRUE(t->set_value(0, value)) << value.toString().toStdString();
        ASSERT_TRUE(t->Update());
    }
    const QByteArray b = read_bytes(p);
    const int header = 32 + 32 + 1;
    for (int i = 0; i < cases.size(); ++i)
        EXPECT_EQ(b.mid(header + 8 * i + 1, 7), cases[i].second) << i;
}

TEST_F(DbfWrite, ANumberTooWideIsRefusedAndNothingIsWritten) {
    const QString p = marks_table({"Anna"});
    const QByteArray before = read_bytes(p);
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t->Edit());
    EXPECT_FALSE(t->set_value("PUNT", 12345.6));
    EXPECT_EQ(t->last_error().code, DbfError::TooWide);
    EXPECT_EQ(t->last_error().detail, "PUNT");
    EXPECT_TRUE(t->set_value("NAAM", QStringLiteral("Bert")));
    DbfError error;
    EXPECT_FALSE(t->Update(&error));
    EXPECT_EQ(error.code, DbfError::TooWide);
    t->CancelUpdate();
    EXPECT_EQ(read_bytes(p), before);

    ASSERT_TRUE(t->AddNew());
    EXPECT_FALSE(t->set_value("PUNT", QStringLiteral("12,5")));
    EXPECT_EQ(t->last_error().code, DbfError::BadValue);
    EXPECT_FALSE(t->set_value("DATUM", QStringLiteral("2024-13-01")));
    EXPECT_FALSE(t->set_value("OK", QStringLiteral("maybe")));
    EXPECT_FALSE(t->Update());
    t->CancelUpdate();
    EXPECT_EQ(read_bytes(p), before);
    EXPECT_EQ(t->RecordCount(), 1);
}

TEST_F(DbfWrite, DeleteSetsTheFlagAndKeepsTheHeaderCount) {
    const QString p = marks_table({"Anna", "Ben", "Carl"});
    {
        auto t = DbfTable::open(p);
        t->MoveNext();
        ASSERT_TRUE(t->Delete());
    }
    const QByteArray b = read_bytes(p);
    EXPECT_EQ(u32_at(b, 4), 3u);
    EXPECT_EQ(b.at(kMarksHeader), ' ');
    EXPECT_EQ(b.at(kMarksHeader + kMarksRecord), '*');
    EXPECT_EQ(b.mid(kMarksHeader + kMarksRecord + 1, 10), "Ben       ");
    EXPECT_EQ(b.at(kMarksHeader + 2 * kMarksRecord), ' ');
    auto t = DbfTable::open(p);
    EXPECT_EQ(walk_names(*t), (QStringList{"Anna", "Carl"}));
}

TEST_F(DbfWrite, EditRewritesOnlyItsOwnRecord) {
    const QString p = marks_table({"Anna", "Ben", "Carl"});
    const QByteArray before = read_bytes(p);
    auto t = DbfTable::open(p);
    t->MoveNext();
    ASSERT_TRUE(t->Edit());
    EXPECT_TRUE(t->set_value("PUNT", 55.5));
    ASSERT_TRUE(t->Update());
    const QByteArray after = read_bytes(p);
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(after.mid(kMarksHeader + kMarksRecord, kMarksRecord),
              QByteArray(" Ben       ") + " 55.5" + QByteArray(9, ' '));
    EXPECT_EQ(after.left(kMarksHeader + kMarksRecord), before.left(kMarksHeader + kMarksRecord));
    EXPECT_EQ(after.mid(kMarksHeader + 2 * kMarksRecord), before.mid(kMarksHeader + 2 * kMarksRecord));
}

TEST_F(DbfWrite, ReadingLeavesTheFileAloneAndAChangeStampsToday) {
    const QString p = path("old.dbf");
    write_bytes(p, raw_table({{"NAAM", 'C', 4}}, {" Anna", " Ben "}, {.yy = 99, .mm = 1, .dd = 2}));
    const QByteArray before = read_bytes(p);
    {
        auto t = DbfTable::open(p);
        ASSERT_TRUE(t);
        EXPECT_EQ(walk_names(*t), (QStringList{"Anna", "Ben"}));
    }
    EXPECT_EQ(read_bytes(p), before);
    {
        auto t = DbfTable::open(p);
        ASSERT_TRUE(t->Edit());
        ASSERT_TRUE(t->Update());
    }
    EXPECT_EQ(read_bytes(p).mid(1, 3), today_bytes());
}

// A Qt program calls setlocale(LC_ALL, ""); under a comma locale the C
// conversions write "12,5". Builds a comma locale with localedef when the
// machine has none.
class CommaLocale {
public:
    CommaLocale() {
        for (const char* name : {"af_ZA.UTF-8", "de_DE.UTF-8", "nl_NL.UTF-8", "fr_FR.UTF-8"})
            if (try_locale(name)) return;
        const QString localedef = QStandardPaths::findExecutable(QStringLiteral("localedef"));
        if (localedef.isEmpty() || !scratch_.isValid()) return;
        const QString target = scratch_.filePath(QStringLiteral("de_DE.UTF-8"));
        QProcess::execute(localedef, {"-i", "de_DE", "-f", "UTF-8", target});
        qputenv("LOCPATH", QFile::encodeName(scratch_.path()));
        set_locpath_ = true;
        try_locale("de_DE.UTF-8");
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        if (set_locpath_) qunsetenv("LOCPATH");
    }
    bool active() const { return active_; }

private:
    bool try_locale(const char* name) {
        if (!std::setlocale(LC_ALL, name)) return false;
        char text[16];
        std::snprintf(text, sizeof text, "%.1f", 12.5);
        active_ = std::strcmp(text, "12,5") == 0;
        if (!active_) std::setlocale(LC_ALL, "C");
        return active_;
    }
    QTemporaryDir scratch_;
    bool set_locpath_ = false;
    bool active_ = false;
};

TEST_F(DbfWrite, ACommaLocaleChangesNoStoredByte) {
    const auto fill = [&](const QString& p) {
        ASSERT_TRUE(DbfTable::create(p, marks_fields()));
        auto t = DbfTable::open(p);
        for (double v : {12.5, -3.25, 0.05, 999.9}) {
            ASSERT_TRUE(t->AddNew());
            t->set_value("PUNT", v);
            t->set_value("NAAM", v);
            t->set_value("DATUM", QVariant::fromValue(OleDate{45000.75}));
            ASSERT_TRUE(t->Update());
        }
    };
    fill(path("c.dbf"));
    CommaLocale comma;
    if (!comma.active()) GTEST_SKIP() << "no comma locale on this machine";
    fill(path("comma.dbf"));
    EXPECT_EQ(read_bytes(path("comma.dbf")), read_bytes(path("c.dbf")));
    EXPECT_EQ(read_bytes(path("comma.dbf")).mid(kMarksHeader + 1, 15), "12.5       12.5");
    auto t = DbfTable::open(path("c.dbf"));
    EXPECT_DOUBLE_EQ(t->value("PUNT").toDouble(), 12.5);
    t->MoveNext();
    EXPECT_DOUBLE_EQ(t->value("PUNT").toDouble(), -3.3);  // -3.25 to one decimal, away from zero
}

// ---- values read --------------------------------------------------------------

class DbfRead : public DbfFixture {};

TEST_F(DbfRead, AllBlankFieldsAreNullOfEveryType) {
    const QString p = path("t.dbf");
    write_bytes(p, raw_table({{"C", 'C', 3}, {"N", 'N', 4, 1}, {"D", 'D', 8}, {"L", 'L', 1}, {"M", 'M', 10}},
                             {QByteArray(27, ' '), QByteArray(" ") + QByteArray(26, '\0')},
                             {.version = 0x83}));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    for (int row = 0; row < 2; ++row, t->MoveNext())
        for (int i = 0; i < t->field_count(); ++i) EXPECT_FALSE(t->value(i).isValid()) << row << i;
}

TEST_F(DbfRead, TextKeepsItsBlanksAndIsWindows1252) {
    const QString p = path("t.dbf");
    write_bytes(p, raw_table({{"NAAM", 'C', 8}}, {QByteArray("  An\xEB \x80  ", 9), QByteArray(" Jan\0\0\0\0\0", 9)}));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->value(0).toString(), QString::fromUtf8(" Anë €  "));
    t->MoveNext();
    EXPECT_EQ(t->value(0).toString(), "Jan");  // a NUL ends the text, as in the C readers
}

TEST_F(DbfRead, NumbersDatesAndLogicalsAreTyped) {
    const QString p = path("t.dbf");
    const QList<QByteArray> rows = {
        " 12.5" "20240229" "T", "   -3" "20240230" "t", "   .5" "00000000" "Y", "  1,5" "2024 3 1" "y",
        "*****" "19000101" "F", "1e2  " "        " "f", " +7  " "abcdefgh" "N", "   - " "99991231" "n",
        "  inf" "20240101" "?",
    };
    QList<QByteArray> records;
    for (const auto& r : rows) records << " " + r;
    write_bytes(p, raw_table({{"N", 'N', 5, 1}, {"D", 'D', 8}, {"L", 'L', 1}}, records));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    const QList<QVariant> numbers = {12.5, -3.0, 0.5, {}, {}, 100.0, 7.0, {}, {}};
    const QList<QVariant> dates = {ole_days(QDate(2024, 2, 29)), {}, {}, {}, ole_days(QDate(1900, 1, 1)),
                                   {}, {}, ole_days(QDate(9999, 12, 31)), ole_days(QDate(2024, 1, 1))};
    const QList<QVariant> logicals = {true, true, true, true, false, false, false, false, {}};
    for (int i = 0; i < rows.size(); ++i, t->MoveNext()) {
        const QVariant n = t->value("N");
        EXPECT_EQ(n.isValid(), numbers[i].isValid()) << i;
        if (n.isValid()) {
            EXPECT_EQ(n.typeId(), QMetaType::Double) << i;
            EXPECT_DOUBLE_EQ(n.toDouble(), numbers[i].toDouble()) << i;
        }
        const QVariant d = t->value("D");
        EXPECT_EQ(d.isValid(), dates[i].isValid()) << i;
        if (d.isValid()) {
            EXPECT_EQ(d.value<OleDate>().days, dates[i].toDouble()) << i;
        }
        const QVariant l = t->value("L");
        EXPECT_EQ(l.isValid(), logicals[i].isValid()) << i;
        if (l.isValid()) {
            EXPECT_EQ(l.typeId(), QMetaType::Bool) << i;
            EXPECT_EQ(l.toBool(), logicals[i].toBool()) << i;
        }
    }
}

TEST_F(DbfRead, FieldsAreFoundByNameIgnoringCaseAndAnUnknownNameIsNull) {
    const QString p = marks_table({"Anna"});
    auto t = DbfTable::open(p);
    EXPECT_EQ(t->field_index("punt"), 1);
    EXPECT_EQ(t->field_index("Datum"), 2);
    EXPECT_EQ(t->field_index("SIMBOOL"), -1);
    EXPECT_DOUBLE_EQ(t->value("punt").toDouble(), 10.0);
    EXPECT_EQ(t->last_error().code, DbfError::None);
    EXPECT_FALSE(t->value("SIMBOOL").isValid());
    EXPECT_EQ(t->last_error().code, DbfError::NoSuchField);
    EXPECT_EQ(t->last_error().detail, "SIMBOOL");
    t->clear_error();
    EXPECT_FALSE(t->value(4).isValid());
    EXPECT_EQ(t->last_error().code, DbfError::NoSuchField);
    EXPECT_FALSE(t->value(-1).isValid());
    EXPECT_EQ(t->field(9).name, QString());
}

TEST_F(DbfRead, ATableFromAnotherWriterOpensAndTakesAppends) {
    // Lower-case names, no language byte, no end marker, an old date.
    const QString p = path("PUNTE1.DBF");
    write_bytes(p, raw_table({{"naam", 'C', 6}, {"punt", 'N', 4, 0}}, {" Sarie   12", "*Koos    13", " Piet    14"}));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->field(0).name, "naam");
    EXPECT_EQ(t->field(1).type, DbfType::Numeric);
    EXPECT_EQ(t->RecordCount(), 2);
    EXPECT_EQ(t->value("NAAM").toString(), "Sarie ");
    EXPECT_DOUBLE_EQ(t->value("PUNT").toDouble(), 12.0);

    ASSERT_TRUE(t->AddNew());
    t->set_value("NAAM", QStringLiteral("Lien"));
    t->set_value("PUNT", 15);
    ASSERT_TRUE(t->Update());
    t.reset();
    const QByteArray b = read_bytes(p);
    const int header = 32 + 64 + 1;
    EXPECT_EQ(u32_at(b, 4), 4u);
    EXPECT_EQ(byte_at(b, 29), 0u);  // the other writer's bytes stay
    EXPECT_EQ(b.mid(header + 3 * 11), QByteArray(" Lien    15") + char(0x1A));
}

TEST_F(DbfRead, OtherSpellingsOfTheExtensionOpen) {
    for (const char* name : {"Marks2.Dbf", "MARKS3.DBF", "marks4.dBf"}) {
        write_bytes(path(name), raw_table({{"NAAM", 'C', 4}}, {" Anna"}));
        auto t = DbfTable::open(path(name));
        ASSERT_TRUE(t) << name;
        EXPECT_EQ(t->value(0).toString(), "Anna") << name;
    }
}

TEST_F(DbfRead, MemoFieldGivesItsRawBlockText) {
    const QString p = path("m.dbf");
    write_bytes(p, raw_table({{"NOTA", 'M', 10}}, {"          1"}, {.version = 0x83}));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->field(0).type, DbfType::Memo);
    EXPECT_EQ(t->value(0).toString(), "         1");
}

// ---- the walk -----------------------------------------------------------------

class DbfWalk : public DbfFixture {};

TEST_F(DbfWalk, AnEmptyTableIsAtBofAndEof) {
    const QString p = marks_table({});
    auto t = DbfTable::open(p);
    EXPECT_EQ(t->RecordCount(), 0);
    EXPECT_TRUE(t->Bof());
    EXPECT_TRUE(t->Eof());
    t->MoveNext();
    t->MoveLast();
    t->Move(-3);
    EXPECT_TRUE(t->Eof());
    EXPECT_EQ(t->position(), -1);
    EXPECT_FALSE(t->value(0).isValid());
    EXPECT_EQ(t->last_error().code, DbfError::NoCurrentRecord);
    EXPECT_FALSE(t->Edit());
    EXPECT_FALSE(t->Delete());
}

TEST_F(DbfWalk, MovesStopAtBofAndEof) {
    const QString p = marks_table({"A", "B", "C", "D", "E"});
    auto t = DbfTable::open(p);
    EXPECT_EQ(t->position(), 0);
    EXPECT_FALSE(t->Bof());
    t->Move(2);
    EXPECT_EQ(t->value(0).toString().trimmed(), "C");
    t->Move(-1);
    EXPECT_EQ(t->value(0).toString().trimmed(), "B");
    t->Move(-10);
    EXPECT_TRUE(t->Bof());
    EXPECT_FALSE(t->Eof());
    t->MoveNext();
    EXPECT_EQ(t->position(), 0);
    t->Move(100);
    EXPECT_TRUE(t->Eof());
    EXPECT_EQ(t->position(), -1);
    t->MoveNext();
    EXPECT_TRUE(t->Eof());
    t->MovePrevious();
    EXPECT_EQ(t->value(0).toString().trimmed(), "E");
    t->MoveFirst();
    EXPECT_EQ(t->value(0).toString().trimmed(), "A");
    t->MoveLast();
    EXPECT_EQ(t->position(), 4);
    EXPECT_EQ(t->RecordCount(), 5);
}

TEST_F(DbfWalk, DeletedRecordsAreNeverSeen) {
    const QString p = path("t.dbf");
    write_bytes(p, raw_table({{"NAAM", 'C', 1}}, {" A", "*B", " C", "*D", " E"}, {.end_marker = true}));
    auto t = DbfTable::open(p);
    EXPECT_EQ(t->RecordCount(), 3);
    EXPECT_EQ(walk_names(*t), (QStringList{"A", "C", "E"}));
    t->MoveLast();
    t->Move(-1);
    EXPECT_EQ(t->value(0).toString(), "C");
}

TEST_F(DbfWalk, AfterDeleteMoveNextGoesToTheRecordThatFollowed) {
    const QString p = marks_table({"A", "B", "C"});
    auto t = DbfTable::open(p);
    t->MoveNext();
    ASSERT_TRUE(t->Delete());
    EXPECT_EQ(t->position(), -1);
    EXPECT_FALSE(t->Eof());
    EXPECT_FALSE(t->Bof());
    EXPECT_FALSE(t->value(0).isValid());
    EXPECT_EQ(t->last_error().code, DbfError::NoCurrentRecord);
    EXPECT_FALSE(t->Delete());
    EXPECT_EQ(t->RecordCount(), 2);
    t->MoveNext();
    EXPECT_EQ(t->value(0).toString().trimmed(), "C");

    // The last one: the next move reaches EOF.
    ASSERT_TRUE(t->Delete());
    EXPECT_FALSE(t->Eof());
    t->MoveNext();
    EXPECT_TRUE(t->Eof());

    // Backwards from a deleted record.
    t->MoveFirst();
    ASSERT_TRUE(t->AddNew());
    t->set_value(0, QStringLiteral("Z"));
    ASSERT_TRUE(t->Update());
    ASSERT_TRUE(t->Delete());
    t->MovePrevious();
    EXPECT_EQ(t->value(0).toString().trimmed(), "A");
}

TEST_F(DbfWalk, DeletingEveryRecordInALoopLeavesAnEmptyTable) {
    const QString p = marks_table({"A", "B", "C"});
    auto t = DbfTable::open(p);
    for (t->MoveFirst(); !t->Eof(); t->MoveNext()) ASSERT_TRUE(t->Delete());
    EXPECT_EQ(t->RecordCount(), 0);
    EXPECT_TRUE(t->Bof());
    ASSERT_TRUE(t->Refresh());
    EXPECT_EQ(t->RecordCount(), 0);
}

TEST_F(DbfWalk, AddNewBecomesCurrentOnlyAfterUpdate) {
    const QString p = marks_table({"A", "B"});
    auto t = DbfTable::open(p);
    const QByteArray before = read_bytes(p);
    ASSERT_TRUE(t->AddNew());
    t->set_value(0, QStringLiteral("C"));
    EXPECT_EQ(t->value(0).toString(), "C         ");  // the edit buffer
    EXPECT_EQ(t->RecordCount(), 2);
    t->CancelUpdate();
    EXPECT_EQ(read_bytes(p), before);
    EXPECT_EQ(t->value(0).toString().trimmed(), "A");

    ASSERT_TRUE(t->AddNew());
    t->set_value(0, QStringLiteral("C"));
    ASSERT_TRUE(t->Update());
    EXPECT_EQ(t->RecordCount(), 3);
    EXPECT_EQ(t->position(), 2);
    EXPECT_EQ(t->value(0).toString().trimmed(), "C");
    EXPECT_EQ(walk_names(*t), (QStringList{"A", "B", "C"}));
}

TEST_F(DbfWalk, AMoveAbandonsAnEditThatWasNotUpdated) {
    const QString p = marks_table({"A", "B"});
    const QByteArray before = read_bytes(p);
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t->Edit());
    t->set_value(0, QStringLiteral("X"));
    t->MoveNext();
    EXPECT_FALSE(t->is_editing());
    t->MoveFirst();
    EXPECT_EQ(t->value(0).toString().trimmed(), "A");
    EXPECT_EQ(read_bytes(p), before);
    EXPECT_FALSE(t->Update());
    EXPECT_EQ(t->last_error().code, DbfError::NotEditing);
}

TEST_F(DbfWalk, ChangesWithoutEditOrAddNewAreRefused) {
    const QString p = marks_table({"A"});
    auto t = DbfTable::open(p);
    EXPECT_FALSE(t->set_value(0, QStringLiteral("X")));
    EXPECT_EQ(t->last_error().code, DbfError::NotEditing);
    DbfError error;
    EXPECT_FALSE(t->Update(&error));
    EXPECT_EQ(error.code, DbfError::NotEditing);
}

TEST_F(DbfWalk, AnUnknownFieldSpoilsTheEdit) {
    const QString p = marks_table({"A"});
    const QByteArray before = read_bytes(p);
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t->Edit());
    EXPECT_TRUE(t->set_value("NAAM", QStringLiteral("X")));
    EXPECT_FALSE(t->set_value("SIMBOOL", QStringLiteral("A")));
    DbfError error;
    EXPECT_FALSE(t->Update(&error));
    EXPECT_EQ(error.code, DbfError::NoSuchField);
    EXPECT_EQ(error.detail, "SIMBOOL");
    EXPECT_EQ(read_bytes(p), before);
}

TEST_F(DbfWalk, RefreshTakesInWhatAnotherWorkstationDid) {
    const QString p = marks_table({"A", "B"});
    auto mine = DbfTable::open(p);
    auto theirs = DbfTable::open(p);
    ASSERT_TRUE(theirs->AddNew());
    theirs->set_value(0, QStringLiteral("C"));
    ASSERT_TRUE(theirs->Update());
    theirs->MoveFirst();
    ASSERT_TRUE(theirs->Delete());
    EXPECT_EQ(mine->RecordCount(), 2);
    ASSERT_TRUE(mine->Refresh());
    EXPECT_EQ(walk_names(*mine), (QStringList{"B", "C"}));
}

TEST_F(DbfWalk, ARecordAnotherWorkstationDeletedIsNotBroughtBack) {
    const QString p = marks_table({"A", "B"});
    auto mine = DbfTable::open(p);
    auto theirs = DbfTable::open(p);
    ASSERT_TRUE(theirs->Delete());
    const QByteArray after_delete = read_bytes(p);
    EXPECT_FALSE(mine->Edit());
    EXPECT_EQ(mine->last_error().code, DbfError::NoCurrentRecord);
    EXPECT_EQ(read_bytes(p), after_delete);
}

TEST_F(DbfWalk, DeleteDuringAddNewIsRefused) {
    const QString p = marks_table({"A"});
    const QByteArray before = read_bytes(p);
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t->AddNew());
    EXPECT_FALSE(t->Delete());
    EXPECT_EQ(t->last_error().code, DbfError::NoCurrentRecord);
    EXPECT_EQ(read_bytes(p), before);
}

TEST_F(DbfWalk, AnAppendGoesAfterAnotherWorkstationsAppend) {
    const QString p = marks_table({"A"});
    auto mine = DbfTable::open(p);
    auto theirs = DbfTable::open(p);
    ASSERT_TRUE(theirs->AddNew());
    theirs->set_value(0, QStringLiteral("Theirs"));
    ASSERT_TRUE(theirs->Update());
    ASSERT_TRUE(mine->AddNew());
    mine->set_value(0, QStringLiteral("Mine"));
    ASSERT_TRUE(mine->Update());
    EXPECT_EQ(mine->value(0).toString().trimmed(), "Mine");
    mine.reset();
    theirs.reset();
    EXPECT_EQ(u32_at(read_bytes(p), 4), 3u);
    auto t = DbfTable::open(p);
    EXPECT_EQ(walk_names(*t), (QStringList{"A", "Theirs", "Mine"}));
}

TEST_F(DbfWalk, ClosedTableAnswersWithoutCrashing) {
    const QString p = marks_table({"A"});
    auto t = DbfTable::open(p);
    t->Close();
    EXPECT_FALSE(t->is_open());
    EXPECT_TRUE(t->Eof());
    EXPECT_EQ(t->field_count(), 0);
    EXPECT_FALSE(t->value(0).isValid());
    EXPECT_FALSE(t->AddNew());
    EXPECT_FALSE(t->Update());
    EXPECT_FALSE(t->flush());
    ASSERT_TRUE(t->Refresh());
    EXPECT_EQ(t->RecordCount(), 1);
}

// ---- opening what is not a sound table -----------------------------------------

class DbfOpen : public DbfFixture {
protected:
    DbfError::Code open_code(const QString& p) {
        DbfError error;
        auto t = DbfTable::open(p, &error);
        EXPECT_FALSE(t);
        EXPECT_EQ(error.path, p);
        return error.code;
    }
};

TEST_F(DbfOpen, MissingEmptyAndForeignFilesAreRefused) {
    EXPECT_EQ(open_code(path("none.dbf")), DbfError::Missing);
    write_bytes(path("zero.dbf"), {});
    EXPECT_EQ(open_code(path("zero.dbf")), DbfError::Empty);
    write_bytes(path("short.dbf"), QByteArray("\x03\x7d\x01\x01", 4));
    EXPECT_EQ(open_code(path("short.dbf")), DbfError::NotATable);
    write_bytes(path("text.dbf"), QByteArray("Naam,Punt\nAnna,12\nBen,13\nCarl,14\nDirk,15\n"));
    EXPECT_EQ(open_code(path("text.dbf")), DbfError::NotATable);
    write_bytes(path("png.dbf"), QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(200, 'x'));
    EXPECT_EQ(open_code(path("png.dbf")), DbfError::NotATable);
    // A dBASE version byte but garbage for fields.
    QByteArray fake = raw_table({{"NAAM", 'C', 4}}, {" Anna"});
    fake[32 + 11] = '!';
    write_bytes(path("fake.dbf"), fake);
    EXPECT_EQ(open_code(path("fake.dbf")), DbfError::NotATable);
    QDir(dir.path()).mkdir("folder.dbf");
    EXPECT_EQ(open_code(path("folder.dbf")), DbfError::NotATable);
}

TEST_F(DbfOpen, ATruncatedTableIsRefusedAndLeftAsItIs) {
    const QString p = marks_table({"A", "B", "C"});
    QByteArray b = read_bytes(p);
    b.chop(10);  // the end marker and 9 bytes of the last record
    write_bytes(p, b);
    EXPECT_EQ(open_code(p), DbfError::Truncated);
    EXPECT_EQ(read_bytes(p), b);

    write_bytes(p, b.left(70));  // inside the field descriptors
    EXPECT_EQ(open_code(p), DbfError::Truncated);
}

TEST_F(DbfOpen, SillyFieldLengthsAreRefused) {
    // Fields wider than the record.
    write_bytes(path("wide.dbf"), raw_table({{"NAAM", 'C', 200}}, {" A"}, {.record_length = 2}));
    EXPECT_EQ(open_code(path("wide.dbf")), DbfError::Damaged);
    // A field of no width.
    write_bytes(path("zero.dbf"), raw_table({{"NAAM", 'C', 0}}, {" "}));
    EXPECT_EQ(open_code(path("zero.dbf")), DbfError::Damaged);
    // A header that claims more than the file holds.
    write_bytes(path("long.dbf"), raw_table({{"NAAM", 'C', 1}}, {" A"}, {.header_length = 60000}).left(200));
    EXPECT_EQ(open_code(path("long.dbf")), DbfError::Truncated);
    // A record count far beyond the file.
    write_bytes(path("count.dbf"), raw_table({{"NAAM", 'C', 1}}, {" A"}, {.record_count = 0x7FFFFFFF}));
    EXPECT_EQ(open_code(path("count.dbf")), DbfError::Truncated);
}

TEST_F(DbfOpen, ExtraBytesAfterTheRecordsAreIgnored) {
    const QString p = path("t.dbf");
    write_bytes(p, raw_table({{"NAAM", 'C', 1}}, {" A", " B", " C"}, {.record_count = 2}));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    EXPECT_EQ(walk_names(*t), (QStringList{"A", "B"}));
}

TEST_F(DbfOpen, ReadOnlyAccessWalksButRefusesChanges) {
    const QString p = marks_table({"A", "B"});
    const QByteArray before = read_bytes(p);
    auto t = DbfTable::open(p, nullptr, DbfAccess::ReadOnly);
    ASSERT_TRUE(t);
    EXPECT_TRUE(t->is_read_only());
    EXPECT_EQ(walk_names(*t), (QStringList{"A", "B"}));
    t->MoveFirst();
    EXPECT_FALSE(t->Edit());
    EXPECT_EQ(t->last_error().code, DbfError::ReadOnly);
    EXPECT_FALSE(t->AddNew());
    EXPECT_FALSE(t->Delete());
    EXPECT_EQ(t->last_error().code, DbfError::ReadOnly);
    t.reset();
    EXPECT_EQ(read_bytes(p), before);
}

TEST_F(DbfOpen, AReadOnlyFileOpensReadOnly) {
    if (veldo::testing::rerun_unprivileged()) return;
    const QString p = marks_table({"A"});
    QFile::setPermissions(p, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    ASSERT_FALSE(QFileInfo(p).isWritable());
    DbfError error;
    auto t = DbfTable::open(p, &error);
    ASSERT_TRUE(t);
    EXPECT_EQ(error.code, DbfError::None);
    EXPECT_TRUE(t->is_read_only());
    EXPECT_EQ(t->value(0).toString().trimmed(), "A");
    EXPECT_FALSE(t->Edit());
}

#ifdef __linux__
// A full disk, played by a file size limit: the header must not count a
// record that never reached the disk.
TEST_F(DbfOpen, AFailedAppendLeavesTheStoredRecordsReadable) {
    const QString p = marks_table({"A", "B"});
    auto t = DbfTable::open(p);
    const qint64 size = QFileInfo(p).size();

    struct rlimit old_limit {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old_limit), 0);
    const auto old_handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit limit = old_limit;
    limit.rlim_cur = rlim_t(size);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);

    ASSERT_TRUE(t->AddNew());
    t->set_value(0, QStringLiteral("C"));
    DbfError error;
    const bool stored = t->Update(&error);

    setrlimit(RLIMIT_FSIZE, &old_limit);
    std::signal(SIGXFSZ, old_handler);

    EXPECT_FALSE(stored);
    EXPECT_EQ(error.code, DbfError::WriteFailed);
    EXPECT_EQ(t->RecordCount(), 2);
    t.reset();
    EXPECT_EQ(u32_at(read_bytes(p), 4), 2u);
    auto again = DbfTable::open(p);
    ASSERT_TRUE(again);
    EXPECT_EQ(walk_names(*again), (QStringList{"A", "B"}));
}
#endif

// ---- batches ------------------------------------------------------------------

using DbfBatch = DbfFixture;

// Whole-table work gathered in memory writes the very bytes that the same
// changes write one at a time.
TEST_F(DbfBatch, WritesTheSameBytesAsChangesOneByOne) {
    const auto work = [&](const QString& p, bool batch) {
        auto t = DbfTable::open(p);
        if (batch) t->begin_batch();
        for (t->MoveFirst(); !t->Eof(); t->MoveNext()) {
            EXPECT_TRUE(t->Edit());
            t->set_value(1, t->value(1).toDouble() + 1);
            EXPECT_TRUE(t->Update());
        }
        t->MoveFirst();
        t->Move(1);
        EXPECT_TRUE(t->Delete());
        for (const char* name : {"Nuwe", "Laaste"}) {
            EXPECT_TRUE(t->AddNew());
            t->set_value(0, QString::fromLatin1(name));
            EXPECT_TRUE(t->Update());
        }
        t->MoveLast();
        EXPECT_TRUE(t->Edit());
        t->set_value(1, 99.0);
        EXPECT_TRUE(t->Update());
        if (batch) {
            EXPECT_TRUE(t->commit_batch());
        }
    };
    const QString one = marks_table({"A", "B", "C"}, "one.dbf");
    const QString all = marks_table({"A", "B", "C"}, "all.dbf");
    work(one, false);
    work(all, true);
    EXPECT_EQ(read_bytes(all), read_bytes(one));
    auto t = DbfTable::open(all);
    EXPECT_EQ(walk_names(*t), (QStringList{"A", "C", "Nuwe", "Laaste"}));
}

// A batch holds the whole table: another workstation's append, edit or
// batch waits, and past the wait gets the system's in-use message.
TEST_F(DbfBatch, HoldsTheTableUntilItIsCommitted) {
    DbfTable::set_lock_wait_ms(50);
    const QString p = marks_table({"A", "B"});
    auto mine = DbfTable::open(p);
    ASSERT_TRUE(mine->begin_batch());
    ASSERT_TRUE(mine->AddNew());
    mine->set_value(0, QStringLiteral("Mine"));
    ASSERT_TRUE(mine->Update());

    auto theirs = DbfTable::open(p);
    ASSERT_TRUE(theirs->AddNew());
    theirs->set_value(0, QStringLiteral("Theirs"));
    DbfError error;
    EXPECT_FALSE(theirs->Update(&error));
    EXPECT_EQ(error.code, DbfError::InUse);
    EXPECT_EQ(dbf_error_message(error, false), "DATASET " + p + "  ALREADY IN  USE ... TRY AGAIN LATER !");
    EXPECT_EQ(dbf_error_message(error, true), "DATASTEL " + p + "  REEDS IN GEBRUIK ... PROBEER WEER LATER !");
    EXPECT_FALSE(theirs->Edit());
    EXPECT_EQ(theirs->last_error().code, DbfError::InUse);
    EXPECT_FALSE(theirs->begin_batch());

    ASSERT_TRUE(mine->commit_batch());
    ASSERT_TRUE(theirs->AddNew());
    theirs->set_value(0, QStringLiteral("Theirs"));
    ASSERT_TRUE(theirs->Update());
    // While a record is being edited, nobody else edits it; other records
    // stay free.
    theirs->MoveFirst();
    ASSERT_TRUE(theirs->Edit());
    mine->MoveFirst();
    EXPECT_FALSE(mine->Edit());
    mine->MoveNext();
    EXPECT_TRUE(mine->Edit());
    mine->CancelUpdate();
    theirs->CancelUpdate();
    mine->MoveFirst();
    EXPECT_TRUE(mine->Edit());
    DbfTable::set_lock_wait_ms(3000);
    mine.reset();
    theirs.reset();
    auto t = DbfTable::open(p);
    EXPECT_EQ(walk_names(*t), (QStringList{"A", "B", "Mine", "Theirs"}));
}

// A rebuild puts a new file in the table's place: an edit on the old one is
// refused rather than lost; a batch takes the new one.
TEST_F(DbfBatch, AReplacedTableIsNoticed) {
    const QString p = marks_table({"A", "B"});
    auto held = DbfTable::open(p);
    const QString fresh = marks_table({"B", "A", "C"}, "fresh.dbf");
    ASSERT_EQ(std::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(p).constData()), 0);
    EXPECT_FALSE(held->Edit());
    EXPECT_EQ(held->last_error().code, DbfError::Replaced);
    EXPECT_TRUE(dbf_error_message(held->last_error(), false).contains("rebuilt by another workstation"));
    ASSERT_TRUE(held->AddNew());
    EXPECT_FALSE(held->Update());
    EXPECT_EQ(held->last_error().code, DbfError::Replaced);
    ASSERT_TRUE(held->begin_batch());
    EXPECT_EQ(walk_names(*held), (QStringList{"B", "A", "C"}));
    EXPECT_TRUE(held->commit_batch());
}

#ifdef __linux__
TEST_F(DbfBatch, AFailedCommitCountsNothingItDidNotWrite) {
    const QString p = marks_table({"A", "B"});
    const QByteArray before = read_bytes(p);
    auto t = DbfTable::open(p);
    t->begin_batch();
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(t->AddNew());
        t->set_value(0, QString("N%1").arg(i));
        ASSERT_TRUE(t->Update());
    }
    struct rlimit old_limit {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old_limit), 0);
    const auto old_handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit limit = old_limit;
    limit.rlim_cur = rlim_t(before.size() + 100);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    DbfError error;
    const bool stored = t->commit_batch(&error);
    setrlimit(RLIMIT_FSIZE, &old_limit);
    std::signal(SIGXFSZ, old_handler);

    EXPECT_FALSE(stored);
    EXPECT_EQ(error.code, DbfError::WriteFailed);
    EXPECT_EQ(t->RecordCount(), 2);  // taken again from the disk
    t.reset();
    // What reached the disk lies past the counted records (over the end
    // mark); the header and every counted record are as they were.
    EXPECT_EQ(read_bytes(p).left(before.size() - 1), before.left(before.size() - 1));
    auto again = DbfTable::open(p);
    ASSERT_TRUE(again);
    EXPECT_EQ(walk_names(*again), (QStringList{"A", "B"}));
}
#endif

// ---- messages -----------------------------------------------------------------

TEST(DbfMessage, NamesTheTableInTheUsersLanguage) {
    const DbfError truncated{DbfError::Truncated, QStringLiteral("/data/marks1.dbf"), {}};
    EXPECT_EQ(dbf_error_message(truncated, true),
              QStringLiteral("Die tabel %1 is beskadig of onvolledig.").arg(QDir::toNativeSeparators("/data/marks1.dbf")));
    EXPECT_EQ(dbf_error_message(truncated, false),
              QStringLiteral("The table %1 is damaged or incomplete.").arg(QDir::toNativeSeparators("/data/marks1.dbf")));
    const DbfError field{DbfError::NoSuchField, QStringLiteral("t.dbf"), QStringLiteral("SIMBOOL")};
    EXPECT_TRUE(dbf_error_message(field, false).contains("SIMBOOL"));
    EXPECT_TRUE(dbf_error_message(field, true).contains("SIMBOOL"));
}

TEST(DbfMessage, EveryFailureHasTwoDistinctTexts) {
    QSet<QString> seen;
    for (int c = DbfError::Missing; c <= DbfError::BadField; ++c) {
        const DbfError e{DbfError::Code(c), QStringLiteral("x.dbf"), QStringLiteral("F")};
        const QString af = dbf_error_message(e, true);
        const QString en = dbf_error_message(e, false);
        EXPECT_TRUE(af.contains("x.dbf")) << c;
        EXPECT_NE(af, en) << c;
        EXPECT_FALSE(seen.contains(en)) << c;
        seen.insert(en);
    }
    EXPECT_EQ(dbf_error_message(DbfError{}, false), QString());
}

// ---- templates and whole-file writes --------------------------------------------

class DbfTemplate : public DbfFixture {
protected:
    QString program;
    QString data;
    void SetUp() override {
        program = path("VELDO-TALLY");
        data = path("data");
        QDir().mkpath(program);
        QDir().mkpath(data);
    }
};

TEST_F(DbfTemplate, MissingTableAndMemoComeFromTheTemplates) {
    write_bytes(program + "/abc_p_s.ORG", "table template");
    write_bytes(program + "/abc_p_s.ort", "memo template");
    copy_table_templates(program, data, QStringLiteral("abc_P_S"));
    EXPECT_EQ(read_bytes(data + "/abc_P_S.dbf"), "table template");
    EXPECT_EQ(read_bytes(data + "/abc_P_S.dbt"), "memo template");
}

TEST_F(DbfTemplate, AnExistingTableIsKeptWhateverItsCase) {
    write_bytes(program + "/abc_P_S.org", "table template");
    write_bytes(program + "/abc_P_S.ort", "memo template");
    write_bytes(data + "/ABC_P_S.DBF", "the teacher's marks");
    copy_table_templates(program, data, QStringLiteral("abc_P_S"));
    EXPECT_EQ(read_bytes(data + "/ABC_P_S.DBF"), "the teacher's marks");
    EXPECT_FALSE(QFileInfo::exists(data + "/abc_P_S.dbf"));
    // The memo file is judged on its own.
    EXPECT_EQ(read_bytes(data + "/abc_P_S.dbt"), "memo template");
}

TEST_F(DbfTemplate, NoTemplateNoCopy) {
    copy_table_templates(program, data, QStringLiteral("abc_P_S"));
    EXPECT_TRUE(QDir(data).entryList(QDir::Files).isEmpty());
}

TEST_F(DbfTemplate, IfMissingKeepsAndOverReplacesTheExistingSpelling) {
    const QString tmpl = program + "/mrk_book.org";
    write_bytes(tmpl, "template");
    write_bytes(data + "/Marks1.DBF", "old");
    EXPECT_TRUE(copy_template_if_missing(tmpl, data + "/marks1.dbf"));
    EXPECT_EQ(read_bytes(data + "/Marks1.DBF"), "old");
    EXPECT_TRUE(copy_template_over(tmpl, data + "/marks1.dbf"));
    EXPECT_EQ(read_bytes(data + "/Marks1.DBF"), "template");
    EXPECT_EQ(QDir(data).entryList(QDir::Files), QStringList{"Marks1.DBF"});

    EXPECT_TRUE(copy_template_if_missing(tmpl, data + "/marks2.dbf"));
    EXPECT_EQ(read_bytes(data + "/marks2.dbf"), "template");
    EXPECT_FALSE(copy_template_if_missing(program + "/none.org", data + "/marks3.dbf"));
    EXPECT_FALSE(copy_template_over(program + "/none.org", data + "/marks2.dbf"));
    EXPECT_EQ(read_bytes(data + "/marks2.dbf"), "template");
}

TEST(DbfSafeFile, ReplacesWholeFilesAndFailsWithoutHarm) {
    if (veldo::testing::rerun_unprivileged()) return;
    QTemporaryDir dir;
    const QString p = dir.filePath("setup.txt");
    QString error;
    ASSERT_TRUE(write_file_atomic(p, "one", &error));
    ASSERT_TRUE(write_file_atomic(p, "two", &error));
    EXPECT_EQ(read_bytes(p), "two");
    EXPECT_FALSE(copy_file_atomic(dir.filePath("none.txt"), p, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(read_bytes(p), "two");
    EXPECT_FALSE(write_file_atomic(dir.filePath("no/such/folder/x.txt"), "x", &error));
    ASSERT_TRUE(copy_file_atomic(p, dir.filePath("copy.txt"), &error));
    EXPECT_EQ(read_bytes(dir.filePath("copy.txt")), "two");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), (QStringList{"copy.txt", "setup.txt"}));

    // A file set read-only on purpose is not replaced behind its back.
    QFile::setPermissions(p, QFile::ReadOwner);
    ASSERT_FALSE(QFileInfo(p).isWritable());
    EXPECT_FALSE(write_file_atomic(p, "three", &error));
    EXPECT_FALSE(copy_file_atomic(dir.filePath("copy.txt"), p, &error));
    EXPECT_EQ(read_bytes(p), "two");
}

// ---- size ---------------------------------------------------------------------

// Not a benchmark: a guard against a reopen or a read per field.
TEST(DbfWalkCost, TwoThousandRecordsOfFortyTwoFieldsWalkQuickly) {
    QTemporaryDir dir;
    const QString p = dir.filePath("marks.dbf");
    QList<RawField> fields;
    for (int i = 0; i < 42; ++i) fields.append({QByteArray("V") + QByteArray::number(i), 'C', 5});
    QList<QByteArray> records;
    for (int r = 0; r < 2000; ++r) records << " " + QByteArray::number(r % 100).rightJustified(5).repeated(42);
    write_bytes(p, raw_table(fields, records, {.end_marker = true}));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    QElapsedTimer clock;
    clock.start();
    qint64 blanks = 0;
    for (t->MoveFirst(); !t->Eof(); t->MoveNext())
        for (int i = 0; i < t->field_count(); ++i) blanks += t->value(i).toString().count(QLatin1Char(' '));
    const qint64 ms = clock.elapsed();
    EXPECT_GT(blanks, 0);
    EXPECT_LT(ms, 200) << ms << " ms";
}

}  // namespace
