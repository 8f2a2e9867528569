#include "store/dbf_table.h"

#include "util/safe_file.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

#include "tests/store/store_tables.h"
#include "tests/support/golden.h"
#include "tests/support/store_transcript.h"
#include "tests/support/store_util_helpers.h"
#include "tests/support/temp_drive.h"
#include "tests/support/unprivileged.h"

#include <cstdio>
#include <csignal>
#include <sys/resource.h>

using namespace veldo;
using namespace veldo::testing;

namespace {

unsigned u32_at(const QByteArray& b, int i) { return qFromLittleEndian<quint32>(b.constData() + i); }

// `value` as `n` bytes, least significant first.
QByteArray le(quint32 value, int n) {
    const quint32 little = qToLittleEndian(value);
    return QByteArray(reinterpret_cast<const char*>(&little), n);
}

// A table as another dBASE writer makes it, byte by byte; no language byte.
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
    int record_count = -1;   // -1: the number of records given
    int record_length = -1;  // -1: as the fields add up
    int header_length = -1;  // -1: 32 + 32 per field + 1
    bool today = false;      // today's date instead of yy, mm, dd
    unsigned char language = 0;
};

QByteArray today_bytes() {
    const QDate t = QDate::currentDate();
    return QByteArray() + char(t.year() - 1900) + char(t.month()) + char(t.day());
}

QByteArray raw_table(const QList<RawField>& fields, const QList<QByteArray>& records,
                     const RawOptions& o = {}) {
    int record_length = 1;
    for (const auto& f : fields) record_length += f.width;
    if (o.record_length >= 0) record_length = o.record_length;
    const int header_length = o.header_length >= 0 ? o.header_length : 32 + 32 * int(fields.size()) + 1;
    const int count = o.record_count >= 0 ? o.record_count : int(records.size());
    const QByteArray date = o.today ? today_bytes() : QByteArray() + char(o.yy) + char(o.mm) + char(o.dd);
    QByteArray bytes = char(o.version) + date + le(count, 4) + le(header_length, 2) + le(record_length, 2) +
                       QByteArray(17, '\0') + char(o.language) + QByteArray(2, '\0');
    for (const auto& f : fields)
        bytes += f.name.left(11).leftJustified(11, '\0') + f.type + QByteArray(4, '\0') + char(f.width) +
                 char(f.decimals) + QByteArray(14, '\0');
    bytes += char(0x0D);
    while (bytes.size() < header_length) bytes += char(0);
    for (const auto& r : records) bytes += r;
    if (o.end_marker) bytes += char(0x1A);
    return bytes;
}

// NAAM C(10), PUNT N(5,1), DATUM D, OK L: record length 25; as we describe
// it and as its bytes describe it.
QList<DbfField> marks_fields() {
    return {{"NAAM", DbfType::Character, 10, 0}, {"PUNT", DbfType::Numeric, 5, 1},
            {"DATUM", DbfType::Date, 8, 0},       {"OK", DbfType::Logical, 1, 0}};
}
const QList<RawField> kRawMarks = {{"NAAM", 'C', 10}, {"PUNT", 'N', 5, 1}, {"DATUM", 'D', 8}, {"OK", 'L', 1}};
// What we write: today's date, Windows ANSI as shapelib marks it, the end mark.
constexpr RawOptions kOurs = {.end_marker = true, .today = true, .language = 0x57};
constexpr int kMarksHeader = 32 + 4 * 32 + 1;
constexpr int kMarksRecord = 25;

QVariant date_value(int y, int m, int d) { return QVariant::fromValue(ole_date_from(QDate(y, m, d))); }

// A value with its type, exactly: "double 12.5", "OleDate 45351 (2024-02-29)", "null".
QString typed(const QVariant& v) {
    if (!v.isValid()) return "null";
    if (v.metaType() != QMetaType::fromType<OleDate>()) return QString(v.metaType().name()) + " " + v.toString();
    const OleDate d = v.value<OleDate>();
    return QString("OleDate %1 (%2)").arg(QString::number(d.days, 'g', 17), date_of(d).toString(Qt::ISODate));
}

const char* const kCodes[] = {"None", "Missing", "Unreadable", "Empty", "NotATable", "Damaged", "Truncated",
                              "ReadOnly", "WriteFailed", "NoSuchField", "NoCurrentRecord", "NotEditing",
                              "BadValue", "TooWide", "BadField", "InUse", "Replaced"};

// What a call did: "done", or "refused" with the error's code and field.
QString outcome(bool done, const DbfError& e) {
    return done ? QStringLiteral("done")
                : QStringLiteral("refused ") + kCodes[e.code] + (e.detail.isEmpty() ? "" : " " + e.detail);
}
QString outcome(bool done, const DbfTable& t) { return outcome(done, t.last_error()); }

// A full disk, played by a file size limit while this lives.
struct FileSizeLimit {
    explicit FileSizeLimit(qint64 bytes) : set(getrlimit(RLIMIT_FSIZE, &old) == 0) {
        const rlimit limit{rlim_t(bytes), old.rlim_max};
        set = set && setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit() {
        if (set) setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, old_handler);
    }
    struct rlimit old {};
    void (*old_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
    bool set = false;
};

class DbfFixture : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString path(const QString& name) const { return dir.filePath(name); }

    // A table of marks_fields() holding the given names, PUNT = 10 * row.
    QString marks_table(const QStringList& names, const QString& name = QStringLiteral("marks1.dbf")) {
        QList<QVariantList> rows;
        for (int i = 0; i < names.size(); ++i) rows.append({names[i], 10.0 * (i + 1)});
        make_table(path(name), marks_fields(), rows);
        return path(name);
    }

    QString p;          // the table open_marks made
    QByteArray before;  // its bytes then
    std::unique_ptr<DbfTable> open_marks(const QStringList& names) {
        p = marks_table(names);
        before = read_bytes(p);
        return DbfTable::open(p);
    }

    // The names a fresh open of open_marks's table walks through.
    QStringList reopened() const {
        auto t = DbfTable::open(p);
        return t ? walk_names(*t) : QStringList{"not opened"};
    }

    // AddNew, the first field, Update.
    static bool add(DbfTable& t, const QString& name) { return t.AddNew() && t.set_value(0, name) && t.Update(); }

    // Where the walk stands: the position, BOF and EOF, and the current
    // record's name; "-1" alone just after a Delete.
    static QString where(DbfTable& t) {
        QString s = QString::number(t.position());
        if (t.Bof()) s += " BOF";
        if (t.Eof()) s += " EOF";
        if (t.position() >= 0) s += " " + t.value(0).toString().trimmed();
        return s;
    }

    // A scenario's transcript (store_transcript.h): the outcome of each step.
    QStringList log;
    void step(const QString& what, bool done, const DbfError& e) { log << what + ": " + outcome(done, e); }
    void step(const QString& what, bool done, const DbfTable& t) { step(what, done, t.last_error()); }
    void TearDown() override {
        if (!log.isEmpty()) {
            EXPECT_TRUE(matches_test_golden(log, "store/dbf", dir.path()));
        }
    }
};

using DbfCreate = DbfFixture;

// Version 3, today's date, no records, the lengths, each field's name in
// capitals, type, width and decimals, Windows ANSI, the header's end and the
// end mark. Text takes no decimals; a date is 8 wide, a logical 1.
TEST_F(DbfCreate, WritesADbaseThreeHeaderWithTodaysDate) {
    ASSERT_TRUE(DbfTable::create(path("new.dbf"), marks_fields()));
    EXPECT_EQ(read_bytes(path("new.dbf")), raw_table(kRawMarks, {}, kOurs));
    ASSERT_TRUE(DbfTable::create(path("t.dbf"), {{"naam", DbfType::Character, 3, 2}, {"dag", DbfType::Date, 3, 0},
                                                 {"ja", DbfType::Logical, 7, 0}}));
    EXPECT_EQ(read_bytes(path("t.dbf")), raw_table({{"NAAM", 'C', 3}, {"DAG", 'D', 8}, {"JA", 'L', 1}}, {}, kOurs));
}

// Version 0x83 and an empty memo file: `.dbt` beside a table, `.ort` beside
// a template `.org`.
TEST_F(DbfCreate, AMemoFieldMakesVersion83AndAnEmptyMemoFileBeside) {
    ASSERT_TRUE(
        DbfTable::create(path("notas.dbf"), {{"NAAM", DbfType::Character, 5, 0}, {"NOTA", DbfType::Memo, 0, 0}}));
    RawOptions with_memo = kOurs;
    with_memo.version = 0x83;
    EXPECT_EQ(read_bytes(path("notas.dbf")), raw_table({{"NAAM", 'C', 5}, {"NOTA", 'M', 10}}, {}, with_memo));
    const QByteArray memo = read_bytes(path("notas.dbt"));
    EXPECT_EQ(memo.size(), 512);
    EXPECT_EQ(u32_at(memo.leftJustified(4, '\0'), 0), 1u);

    ASSERT_TRUE(DbfTable::create(path("LWISK_P_S.org"), {{"NOTA", DbfType::Memo, 10, 0}}));
    EXPECT_EQ(QDir(dir.path()).entryList({"LWISK*"}), (QStringList{"LWISK_P_S.org", "LWISK_P_S.ort"}));
    auto t = DbfTable::open(path("LWISK_P_S.org"));
    ASSERT_TRUE(t);
    EXPECT_EQ(t->field(0).type, DbfType::Memo);
}

TEST_F(DbfCreate, RefusesWhatDbaseThreeCannotHold) {
    QList<DbfField> too_many;
    for (int i = 0; i < 129; ++i) too_many.append({QStringLiteral("F%1").arg(i), DbfType::Character, 1, 0});
    const QList<QList<DbfField>> bad = {  // no field; bad names; a name twice; too wide or narrow; an unknown type
        {},
        {{"NAAMVANLEERDER", DbfType::Character, 5, 0}},
        {{"1NAAM", DbfType::Character, 5, 0}},
        {{"NA AM", DbfType::Character, 5, 0}},
        {{"NAAM", DbfType::Character, 5, 0}, {"naam", DbfType::Character, 5, 0}},
        {{"NAAM", DbfType::Character, 255, 0}}, {{"NAAM", DbfType::Character, 0, 0}},
        {{"PUNT", DbfType::Numeric, 20, 0}},    {{"PUNT", DbfType::Numeric, 4, 3}},
        {{"X", DbfType::Other, 4, 0}},
        too_many,
    };
    for (int i = 0; i < bad.size(); ++i) {
        DbfError error;
        step(QString::number(i), DbfTable::create(path(QStringLiteral("bad%1.dbf").arg(i)), bad[i], &error), error);
    }
    EXPECT_TRUE(QDir(dir.path()).isEmpty());
}

// A table set read-only, or opened for reading only, walks but refuses every
// change and keeps its bytes; one set read-only opens without an error and is
// not created anew over.
TEST_F(DbfCreate, AReadOnlyTableWalksButRefusesChanges) {
    if (veldo::testing::rerun_unprivileged()) return;
    auto t = open_marks({"A", "B"});
    for (const bool set_read_only : {false, true}) {
        SCOPED_TRACE(set_read_only ? "set read-only" : "opened for reading");
        DbfError error;
        if (set_read_only) {
            QFile::setPermissions(p, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
            ASSERT_FALSE(QFileInfo(p).isWritable());
            EXPECT_EQ(outcome(DbfTable::create(p, marks_fields(), &error), error), "refused ReadOnly");
            error = DbfError{};
        }
        t = DbfTable::open(p, &error, set_read_only ? DbfAccess::ReadWrite : DbfAccess::ReadOnly);
        ASSERT_TRUE(t);
        EXPECT_EQ(walk_names(*t), (QStringList{"A", "B"}));
        t->MoveFirst();
        const QStringList seen{kCodes[error.code], t->is_read_only() ? "read-only" : "writable",
                               outcome(t->Edit(), *t), outcome(t->AddNew(), *t), outcome(t->Delete(), *t)};
        EXPECT_EQ(seen, (QStringList{"None", "read-only", "refused ReadOnly", "refused ReadOnly", "refused ReadOnly"}));
        t.reset();
        EXPECT_EQ(read_bytes(p), before);
    }
}

TEST_F(DbfCreate, ReplacesAnOldTableAndLeavesNoScratchFiles) {
    const QString p = marks_table({"Anna", "Ben"});
    ASSERT_TRUE(DbfTable::create(p, marks_fields()));
    EXPECT_EQ(DbfTable::open(p)->RecordCount(), 0);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"marks1.dbf"});
}

using DbfWrite = DbfFixture;

// Text left-justified in Windows-1252 and cut at the width, numbers right-
// justified, dates yyyymmdd, logicals T/F, Null as blanks; then the end mark.
TEST_F(DbfWrite, AppendedRecordsAreLaidOutAsDbaseDoes) {
    const QString p = path("t.dbf");
    make_table(p, marks_fields(), {{QString::fromUtf8("Anë"), 12.5, date_value(2024, 3, 5), true},
                                   {"ABCDEFGHIJKLMN", QVariant(), QVariant(), QVariant()}});
    EXPECT_EQ(read_bytes(p), raw_table(kRawMarks, {QByteArray(" An\xEB       ") + " 12.5" + "20240305" + "T",
                                                   " ABCDEFGHIJ" + QByteArray(14, ' ')},
                                       kOurs));
}

TEST_F(DbfWrite, NumbersTakeTheFieldsDecimalsRoundedHalfAwayFromZero) {
    const QList<QPair<QVariant, QByteArray>> cases = {
        {2.675, "   2.68"},  {-2.675, "  -2.68"}, {0.004, "   0.00"},
        {-0.001, "   0.00"}, {99.995, " 100.00"}, {7, "   7.00"},
        {QStringLiteral(" 3.5 "), "   3.50"},     {qint16(-12), " -12.00"},
        {1234.5f, "1234.50"}, {QStringLiteral("   "), "       "},
    };
    QList<QVariantList> rows;
    for (const auto& [value, expected] : cases) rows.append({value});
    make_table(path("n.dbf"), {{"BEDRAG", DbfType::Numeric, 7, 2}}, rows);
    const QByteArray b = read_bytes(path("n.dbf"));
    for (int i = 0; i < cases.size(); ++i) EXPECT_EQ(b.mid(32 + 32 + 1 + 8 * i + 1, 7), cases[i].second) << i;
}

// A number too wide for its field, or a value its type cannot hold, is
// refused, and Update refuses until CancelUpdate.
TEST_F(DbfWrite, ANumberTooWideIsRefusedAndNothingIsWritten) {
    auto t = open_marks({"Anna"});
    ASSERT_TRUE(t->Edit());
    step("PUNT 12345.6", t->set_value("PUNT", 12345.6), *t);
    step("NAAM Bert", t->set_value("NAAM", QStringLiteral("Bert")), *t);
    DbfError error;
    step("Update", t->Update(&error), error);
    t->CancelUpdate();
    EXPECT_EQ(read_bytes(p), before);

    ASSERT_TRUE(t->AddNew());
    step("PUNT 12,5", t->set_value("PUNT", QStringLiteral("12,5")), *t);
    step("DATUM 2024-13-01", t->set_value("DATUM", QStringLiteral("2024-13-01")), *t);
    step("OK maybe", t->set_value("OK", QStringLiteral("maybe")), *t);
    step("Update", t->Update(), *t);
    t->CancelUpdate();
    EXPECT_EQ(read_bytes(p), before);
    EXPECT_EQ(t->RecordCount(), 1);
}

// An Edit rewrites its own record and nothing else; Delete sets the flag
// and keeps the header's count.
TEST_F(DbfWrite, EditAndDeleteRewriteOnlyTheirOwnRecord) {
    auto t = open_marks({"Anna", "Ben", "Carl"});
    const int ben = kMarksHeader + kMarksRecord;
    t->MoveNext();
    ASSERT_TRUE(t->Edit() && t->set_value("PUNT", 55.5) && t->Update());
    const QByteArray after = read_bytes(p);
    EXPECT_EQ(after, before.left(ben) + " Ben       " + " 55.5" + QByteArray(9, ' ') + before.mid(ben + kMarksRecord));
    ASSERT_TRUE(t->Delete());
    EXPECT_EQ(read_bytes(p), after.left(ben) + '*' + after.mid(ben + 1));
    EXPECT_EQ(reopened(), (QStringList{"Anna", "Carl"}));
}

TEST_F(DbfWrite, ReadingLeavesTheFileAloneAndAChangeStampsToday) {
    const QString p = path("old.dbf");
    write_bytes(p, raw_table({{"NAAM", 'C', 4}}, {" Anna", " Ben "}, {.yy = 99, .mm = 1, .dd = 2}));
    const QByteArray before = read_bytes(p);
    auto t = DbfTable::open(p);
    EXPECT_EQ(walk_names(*t), (QStringList{"Anna", "Ben"}));
    t.reset();
    EXPECT_EQ(read_bytes(p), before);
    t = DbfTable::open(p);
    ASSERT_TRUE(t->Edit() && t->Update());
    EXPECT_EQ(read_bytes(p).mid(1, 3), today_bytes());
}

TEST_F(DbfWrite, ACommaLocaleChangesNoStoredByte) {
    QList<QVariantList> rows;  // NAAM and PUNT take the same number
    for (double v : {12.5, -3.25, 0.05, 999.9}) rows.append({v, v, QVariant::fromValue(OleDate{45000.75})});
    make_table(path("c.dbf"), marks_fields(), rows);
    CommaLocale comma;
    ASSERT_TRUE(comma.active) << "no comma locale, and localedef could not make one";
    make_table(path("comma.dbf"), marks_fields(), rows);
    EXPECT_EQ(read_bytes(path("comma.dbf")), read_bytes(path("c.dbf")));
    EXPECT_EQ(read_bytes(path("comma.dbf")).mid(kMarksHeader + 1, 15), "12.5       12.5");
    // PUNT to one decimal, away from zero: -3.25 gives -3.3, 0.05 gives 0.1.
    EXPECT_EQ(walk_names(*DbfTable::open(path("c.dbf")), 1), (QStringList{"12.5", "-3.3", "0.1", "999.9"}));
}

using DbfRead = DbfFixture;

// All blanks (or NULs) are Null of every type; a memo gives its block text;
// text keeps its blanks, is Windows-1252, and ends at a NUL as in the C readers.
TEST_F(DbfRead, BlankFieldsAreNullAndTextIsReadAsStored) {
    write_bytes(path("t.dbf"),
                raw_table({{"C", 'C', 3}, {"N", 'N', 4, 1}, {"D", 'D', 8}, {"L", 'L', 1}, {"M", 'M', 10}},
                          {QByteArray(27, ' '), QByteArray(" ") + QByteArray(26, '\0'),
                           QByteArray(17, ' ') + "         1"},
                          {.version = 0x83}));
    auto t = DbfTable::open(path("t.dbf"));
    ASSERT_TRUE(t);
    for (int row = 0; row < 2; ++row, t->MoveNext())
        for (int i = 0; i < t->field_count(); ++i) EXPECT_FALSE(t->value(i).isValid()) << row << i;
    EXPECT_EQ(t->field(4).type, DbfType::Memo);
    EXPECT_EQ(t->value(4).toString(), "         1");

    write_bytes(path("n.dbf"),
                raw_table({{"NAAM", 'C', 8}}, {QByteArray("  An\xEB \x80  ", 9), QByteArray(" Jan\0\0\0\0\0", 9)}));
    t = DbfTable::open(path("n.dbf"));
    ASSERT_TRUE(t);
    EXPECT_EQ(t->value(0).toString(), QString::fromUtf8(" Anë €  "));
    t->MoveNext();
    EXPECT_EQ(t->value(0).toString(), "Jan");
}

// N as double, D as OleDate, L as bool; what a field cannot hold is Null.
// The transcript gives each record's N(5,1), D and L as read.
TEST_F(DbfRead, NumbersDatesAndLogicalsAreTyped) {
    const QList<QByteArray> records = {
        "  12.5" "20240229" "T", "    -3" "20240230" "t", "    .5" "00000000" "Y", "   1,5" "2024 3 1" "y",
        " *****" "19000101" "F", " 1e2  " "        " "f", "  +7  " "abcdefgh" "N", "    - " "99991231" "n",
        "   inf" "20240101" "?",
    };
    write_bytes(path("t.dbf"), raw_table({{"N", 'N', 5, 1}, {"D", 'D', 8}, {"L", 'L', 1}}, records));
    auto t = DbfTable::open(path("t.dbf"));
    ASSERT_TRUE(t);
    for (const QByteArray& r : records) {
        const QString shown = QString(r.mid(1, 5) + "|" + r.mid(6, 8) + "|" + r.mid(14));
        log << QString("[%1]: %2, %3, %4").arg(shown, typed(t->value("N")), typed(t->value("D")), typed(t->value("L")));
        t->MoveNext();
    }
}

TEST_F(DbfRead, FieldsAreFoundByNameIgnoringCaseAndAnUnknownNameIsNull) {
    auto t = DbfTable::open(marks_table({"Anna"}));
    EXPECT_EQ((QList<int>{t->field_index("punt"), t->field_index("Datum"), t->field_index("SIMBOOL")}),
              (QList<int>{1, 2, -1}));
    const auto read = [&](const auto& field) {  // the value and the error it leaves, then cleared
        const QString value = typed(t->value(field));
        const DbfError e = t->last_error();
        t->clear_error();
        return value + ", " + kCodes[e.code] + (e.detail.isEmpty() ? "" : " " + e.detail);
    };
    EXPECT_EQ((QStringList{read("punt"), read("SIMBOOL"), read(4), read(-1), t->field(9).name}),
              (QStringList{"double 10, None", "null, NoSuchField SIMBOOL", "null, NoSuchField 4",
                           "null, NoSuchField -1", ""}));
}

// Lower-case names, no language byte, no end marker, an old date: the other
// writer's bytes stay but for the count, the date and the end mark an append
// writes. Any spelling of the extension opens; bytes past the counted records
// are passed over.
TEST_F(DbfRead, ATableFromAnotherWriterOpensAndTakesAppends) {
    const QString p = path("PUNTE1.DBF");
    const QList<RawField> fields = {{"naam", 'C', 6}, {"punt", 'N', 4, 0}};
    const QList<QByteArray> records = {" Sarie   12", "*Koos    13", " Piet    14"};
    write_bytes(p, raw_table(fields, records));
    auto t = DbfTable::open(p);
    ASSERT_TRUE(t);
    EXPECT_EQ((QStringList{t->field(0).name, QString::number(t->RecordCount()), typed(t->value("NAAM")),
                           typed(t->value("PUNT"))}),
              (QStringList{"naam", "2", "QString Sarie ", "double 12"}));
    ASSERT_TRUE(t->AddNew() && t->set_value("NAAM", QStringLiteral("Lien")) && t->set_value("PUNT", 15));
    ASSERT_TRUE(t->Update());
    t.reset();
    EXPECT_EQ(read_bytes(p), raw_table(fields, records + QList<QByteArray>{" Lien    15"},
                                       {.end_marker = true, .today = true}));

    for (const char* name : {"Marks2.Dbf", "MARKS3.DBF", "marks4.dBf"}) {
        write_bytes(path(name), raw_table({{"NAAM", 'C', 4}}, {" Anna"}));
        auto other = DbfTable::open(path(name));
        ASSERT_TRUE(other) << name;
        EXPECT_EQ(other->value(0).toString(), "Anna") << name;
    }
    write_bytes(path("t.dbf"), raw_table({{"NAAM", 'C', 1}}, {" A", " B", " C"}, {.record_count = 2}));
    t = DbfTable::open(path("t.dbf"));
    ASSERT_TRUE(t);
    EXPECT_EQ(walk_names(*t), (QStringList{"A", "B"}));
}

class DbfWalk : public DbfFixture {
protected:
    // Takes each step ("first", "next", "previous", "last", "delete",
    // "refused delete", "add" and a name, a signed move or "" for none) and
    // checks where the walk then stands.
    static void walk(DbfTable& t, std::initializer_list<std::pair<const char*, const char*>> steps) {
        const QMap<QString, void (DbfTable::*)()> moves = {{"first", &DbfTable::MoveFirst},
            {"next", &DbfTable::MoveNext}, {"previous", &DbfTable::MovePrevious}, {"last", &DbfTable::MoveLast}};
        for (const auto& [step, expected] : steps) {
            const QString s = QString::fromLatin1(step);
            if (moves.contains(s))
                (t.*moves[s])();
            else if (s.endsWith("delete"))
                EXPECT_EQ(t.Delete(), s == "delete") << step;
            else if (s.startsWith("add "))
                EXPECT_TRUE(add(t, s.mid(4))) << step;
            else if (!s.isEmpty())
                t.Move(s.toInt());
            EXPECT_EQ(where(t), expected) << step;
        }
    }
};

// Moves stop at BOF and EOF, an empty table stands at both, and deleted
// records are never seen.
TEST_F(DbfWalk, MovesStopAtBofAndEofAndPassDeletedRecords) {
    auto empty = DbfTable::open(marks_table({}));
    walk(*empty, {{"", "-1 BOF EOF"}, {"next", "-1 BOF EOF"}, {"last", "-1 BOF EOF"}, {"-3", "-1 BOF EOF"},
                  {"refused delete", "-1 BOF EOF"}});
    EXPECT_EQ(outcome(empty->value(0).isValid(), *empty), "refused NoCurrentRecord");
    EXPECT_FALSE(empty->Edit());

    auto five = DbfTable::open(marks_table({"A", "B", "C", "D", "E"}, "five.dbf"));
    walk(*five, {{"", "0 A"}, {"2", "2 C"}, {"-1", "1 B"}, {"-10", "-1 BOF"}, {"next", "0 A"}, {"100", "-1 EOF"},
                 {"next", "-1 EOF"}, {"previous", "4 E"}, {"first", "0 A"}, {"last", "4 E"}});

    write_bytes(path("t.dbf"), raw_table({{"NAAM", 'C', 1}}, {" A", "*B", " C", "*D", " E"}, {.end_marker = true}));
    auto deleted = DbfTable::open(path("t.dbf"));
    EXPECT_EQ(walk_names(*deleted), (QStringList{"A", "C", "E"}));
    walk(*deleted, {{"last", "2 E"}, {"-1", "1 C"}});
    EXPECT_EQ((QList<int>{empty->RecordCount(), five->RecordCount(), deleted->RecordCount()}), (QList<int>{0, 5, 3}));
}

// After a Delete there is no current record until the next move; MoveNext
// goes to the record that followed, MovePrevious to the one before. So a loop
// deleting each record it walks to empties the table.
TEST_F(DbfWalk, AfterDeleteTheNextMoveGoesOnFromTheDeletedRecord) {
    auto t = DbfTable::open(marks_table({"A", "B", "C"}));
    walk(*t, {{"next", "1 B"}, {"delete", "-1"}});
    EXPECT_EQ(outcome(t->value(0).isValid(), *t), "refused NoCurrentRecord");
    EXPECT_EQ(t->RecordCount(), 2);
    walk(*t, {{"refused delete", "-1"}, {"next", "1 C"}, {"delete", "-1"}, {"next", "-1 EOF"}, {"first", "0 A"},
              {"add Z", "1 Z"}, {"delete", "-1"}, {"previous", "0 A"}, {"add Y", "1 Y"}});
    for (t->MoveFirst(); !t->Eof(); t->MoveNext()) ASSERT_TRUE(t->Delete());
    EXPECT_EQ(where(*t), "-1 BOF EOF");
    ASSERT_TRUE(t->Refresh());
    EXPECT_EQ(t->RecordCount(), 0);
}

TEST_F(DbfWalk, AddNewBecomesCurrentOnlyAfterUpdate) {
    auto t = open_marks({"A", "B"});
    ASSERT_TRUE(t->AddNew() && t->set_value(0, QStringLiteral("C")));
    EXPECT_EQ(t->value(0).toString(), "C         ");  // the edit buffer
    EXPECT_EQ(t->RecordCount(), 2);
    t->CancelUpdate();
    EXPECT_EQ(read_bytes(p), before);
    walk(*t, {{"", "0 A"}, {"add C", "2 C"}});
    EXPECT_EQ(t->RecordCount(), 3);
    EXPECT_EQ(walk_names(*t), (QStringList{"A", "B", "C"}));
}

// A change without Edit or AddNew, an Edit abandoned by a move, an edit
// spoilt by an unknown field and a Delete during AddNew write nothing.
TEST_F(DbfWalk, ARefusedChangeWritesNothing) {
    auto t = open_marks({"A", "B"});
    DbfError error;
    step("NAAM X without Edit", t->set_value(0, QStringLiteral("X")), *t);
    step("Update", t->Update(&error), error);

    step("Edit", t->Edit(), *t);
    t->set_value(0, QStringLiteral("X"));
    t->MoveNext();
    log << QString("editing after a move: %1").arg(t->is_editing() ? "yes" : "no");
    t->MoveFirst();
    log << "first: " + where(*t);
    step("Update", t->Update(), *t);

    step("Edit", t->Edit(), *t);
    step("NAAM X", t->set_value("NAAM", QStringLiteral("X")), *t);
    step("SIMBOOL A", t->set_value("SIMBOOL", QStringLiteral("A")), *t);
    step("Update", t->Update(&error), error);
    t->CancelUpdate();

    step("AddNew", t->AddNew(), *t);
    step("Delete", t->Delete(), *t);
    EXPECT_EQ(read_bytes(p), before);
}

// Two handles on one file play two workstations: nothing of theirs is seen
// before Refresh, a record they deleted is not brought back by an edit here,
// and an append here goes after theirs.
TEST_F(DbfWalk, AnotherWorkstationsChangesAreKept) {
    auto mine = open_marks({"A", "B"});
    auto theirs = DbfTable::open(p);
    ASSERT_TRUE(theirs->Delete());
    ASSERT_TRUE(add(*theirs, "Theirs"));
    const QByteArray theirs_done = read_bytes(p);
    EXPECT_EQ(mine->RecordCount(), 2);
    EXPECT_EQ(outcome(mine->Edit(), *mine), "refused NoCurrentRecord");
    EXPECT_EQ(read_bytes(p), theirs_done);
    ASSERT_TRUE(add(*mine, "Mine"));
    EXPECT_EQ(where(*mine), "2 Mine");
    ASSERT_TRUE(mine->Refresh());
    EXPECT_EQ(walk_names(*mine), (QStringList{"B", "Theirs", "Mine"}));
    mine.reset();
    theirs.reset();
    EXPECT_EQ(u32_at(read_bytes(p), 4), 4u);
}

TEST_F(DbfWalk, ClosedTableAnswersWithoutCrashing) {
    auto t = DbfTable::open(marks_table({"A"}));
    t->Close();
    EXPECT_TRUE(t->Eof());
    EXPECT_EQ(t->field_count(), 0);
    EXPECT_EQ((QList<bool>{t->is_open(), t->value(0).isValid(), t->AddNew(), t->Update(), t->flush()}),
              QList<bool>(5, false));
    ASSERT_TRUE(t->Refresh());
    EXPECT_EQ(t->RecordCount(), 1);
}

using DbfOpen = DbfFixture;

TEST_F(DbfOpen, WhatIsNotASoundTableIsRefused) {
    const auto open = [&](const QString& why, const QString& p) {
        DbfError error;
        step(why, bool(DbfTable::open(p, &error)), error);
        EXPECT_EQ(error.path, p) << why.toStdString();
    };
    open("no file", path("none.dbf"));
    QDir(dir.path()).mkdir("folder.dbf");
    open("a folder", path("folder.dbf"));

    const QByteArray whole = read_bytes(marks_table({"A", "B", "C"}));
    QByteArray fake = raw_table({{"NAAM", 'C', 4}}, {" Anna"});
    fake[32 + 11] = '!';
    const QList<QPair<QString, QByteArray>> rows = {
        {"no bytes", ""},
        {"shorter than a header", QByteArray("\x03\x7d\x01\x01", 4)},
        {"text", "Naam,Punt\nAnna,12\nBen,13\nCarl,14\nDirk,15\n"},
        {"a picture", QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(200, 'x')},
        {"a dBASE version byte but garbage for fields", fake},
        {"the end marker and 9 bytes of the last record gone", whole.chopped(10)},
        {"cut inside the field descriptors", whole.left(70)},
        {"fields wider than the record", raw_table({{"NAAM", 'C', 200}}, {" A"}, {.record_length = 2})},
        {"a field of no width", raw_table({{"NAAM", 'C', 0}}, {" "})},
        {"a header that claims more than the file holds",
         raw_table({{"NAAM", 'C', 1}}, {" A"}, {.header_length = 60000}).left(200)},
        {"a record count far beyond the file", raw_table({{"NAAM", 'C', 1}}, {" A"}, {.record_count = 0x7FFFFFFF})},
    };
    for (const auto& [why, bytes] : rows) {
        write_bytes(path("t.dbf"), bytes);
        open(why, path("t.dbf"));
        EXPECT_EQ(read_bytes(path("t.dbf")), bytes) << why.toStdString();
    }
}

// The header must not count a record that never reached the disk.
TEST_F(DbfOpen, AFailedAppendLeavesTheStoredRecordsReadable) {
    auto t = open_marks({"A", "B"});
    ASSERT_TRUE(t->AddNew() && t->set_value(0, QStringLiteral("C")));
    {
        DbfError error;
        FileSizeLimit full(before.size());
        ASSERT_TRUE(full.set);
        step("Update on a full disk", t->Update(&error), error);
    }
    EXPECT_EQ(t->RecordCount(), 2);
    t.reset();
    EXPECT_EQ(u32_at(read_bytes(p), 4), 2u);
    EXPECT_EQ(reopened(), (QStringList{"A", "B"}));
}

using DbfBatch = DbfFixture;

TEST_F(DbfBatch, WritesTheSameBytesAsChangesOneByOne) {
    const auto work = [&](const QString& p, bool batch) {
        auto t = DbfTable::open(p);
        if (batch) t->begin_batch();
        for (t->MoveFirst(); !t->Eof(); t->MoveNext())
            EXPECT_TRUE(t->Edit() && t->set_value(1, t->value(1).toDouble() + 1) && t->Update());
        t->MoveFirst();
        t->Move(1);
        EXPECT_TRUE(t->Delete() && add(*t, "Nuwe") && add(*t, "Laaste"));
        t->MoveLast();
        EXPECT_TRUE(t->Edit() && t->set_value(1, 99.0) && t->Update());
        EXPECT_TRUE(!batch || t->commit_batch());
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
// batch waits, and past the wait gets the system's in-use message. While a
// record is being edited, nobody else edits it; other records stay free.
TEST_F(DbfBatch, HoldsTheTableUntilItIsCommitted) {
    DbfTable::set_lock_wait_ms(50);
    auto mine = open_marks({"A", "B"});
    ASSERT_TRUE(mine->begin_batch() && add(*mine, "Mine"));
    auto theirs = DbfTable::open(p);
    ASSERT_TRUE(theirs->AddNew() && theirs->set_value(0, QStringLiteral("Theirs")));
    DbfError error;  // InUse: the system's in-use message, as DbfMessage pins it
    step("their append", theirs->Update(&error), error);
    log << "in use: " + error.path;
    step("their Edit", theirs->Edit(), *theirs);
    step("their batch", theirs->begin_batch(), *theirs);

    step("my commit", mine->commit_batch(), *mine);
    step("their append", add(*theirs, "Theirs"), *theirs);
    theirs->MoveFirst();
    step("their Edit of A", theirs->Edit(), *theirs);
    mine->MoveFirst();
    step("my Edit of A", mine->Edit(), *mine);
    mine->MoveNext();
    step("my Edit of B", mine->Edit(), *mine);
    mine->CancelUpdate();
    theirs->CancelUpdate();
    mine->MoveFirst();
    step("my Edit of A once theirs is cancelled", mine->Edit(), *mine);
    DbfTable::set_lock_wait_ms(3000);
    mine.reset();
    theirs.reset();
    EXPECT_EQ(reopened(), (QStringList{"A", "B", "Mine", "Theirs"}));
}

// A rebuild puts a new file in the table's place: an edit on the old one is
// refused rather than lost; a batch takes the new one.
TEST_F(DbfBatch, AReplacedTableIsNoticed) {
    auto held = open_marks({"A", "B"});
    const QString fresh = marks_table({"B", "A", "C"}, "fresh.dbf");
    ASSERT_EQ(std::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(p).constData()), 0);
    step("Edit", held->Edit(), *held);
    step("AddNew", held->AddNew(), *held);
    step("Update", held->Update(), *held);
    step("begin_batch", held->begin_batch(), *held);
    log << "walk: " + walk_names(*held).join(' ');
    step("commit_batch", held->commit_batch(), *held);
}

TEST_F(DbfBatch, AFailedCommitCountsNothingItDidNotWrite) {
    auto t = open_marks({"A", "B"});
    t->begin_batch();
    for (int i = 0; i < 50; ++i) ASSERT_TRUE(add(*t, QString("N%1").arg(i)));
    {
        DbfError error;
        FileSizeLimit full(before.size() + 100);
        ASSERT_TRUE(full.set);
        step("commit on a full disk", t->commit_batch(&error), error);
    }
    EXPECT_EQ(t->RecordCount(), 2);  // taken again from the disk
    t.reset();
    // What reached the disk lies past the counted records (over the end
    // mark); the header and every counted record are as they were.
    EXPECT_EQ(read_bytes(p).left(before.size() - 1), before.left(before.size() - 1));
    EXPECT_EQ(reopened(), (QStringList{"A", "B"}));
}

// Every failure has its own text in each language, naming the table (and
// the field where there is one); no failure, no text.
TEST(DbfMessage, EveryFailureNamesTheTableInTheUsersLanguage) {
    QString texts;
    for (int c = DbfError::None; c <= DbfError::Replaced; ++c) {
        const DbfError e{DbfError::Code(c), QStringLiteral("/data/marks1.dbf"), QStringLiteral("SIMBOOL")};
        texts += QString("%1\n%2\n").arg(dbf_error_message(e, true), dbf_error_message(e, false));
    }
    EXPECT_TRUE(veldo::testing::matches_golden(texts, "store/dbf_messages.txt"));
}

// Each file of `folder` as "name: bytes", by name.
QStringList files_in(const QString& folder) {
    QStringList out;
    for (const QString& name : QDir(folder).entryList(QDir::Files))
        out << name + ": " + read_bytes(folder + "/" + name);
    return out;
}

class DbfTemplate : public DbfFixture {
protected:
    QString program = path("VELDO-TALLY"), data = path("data");
    void SetUp() override {
        QDir().mkpath(program);
        QDir().mkpath(data);
    }
};

// A missing table and memo come from the templates, whatever their case; an
// existing table is kept whatever its case, and the memo file is judged on
// its own; no template, no copy.
TEST_F(DbfTemplate, MissingTablesAndMemosComeFromTheTemplates) {
    copy_table_templates(program, data, QStringLiteral("abc_P_S"));
    EXPECT_TRUE(QDir(data).isEmpty());
    write_bytes(program + "/abc_p_s.ORG", "table template");
    write_bytes(program + "/abc_p_s.ort", "memo template");
    write_bytes(program + "/xyz_P_S.org", "table template");
    write_bytes(program + "/xyz_P_S.ort", "memo template");
    write_bytes(data + "/XYZ_P_S.DBF", "the teacher's marks");
    copy_table_templates(program, data, QStringLiteral("abc_P_S"));
    copy_table_templates(program, data, QStringLiteral("xyz_P_S"));
    EXPECT_EQ(files_in(data), (QStringList{"abc_P_S.dbf: table template", "abc_P_S.dbt: memo template",
                                           "XYZ_P_S.DBF: the teacher's marks", "xyz_P_S.dbt: memo template"}));
}

// Over another spelling of the table the template takes that spelling's
// place; no template, no copy.
TEST_F(DbfTemplate, OverReplacesTheExistingSpelling) {
    const QString tmpl = program + "/mrk_book.org";
    write_bytes(tmpl, "template");
    write_bytes(data + "/Marks1.DBF", "old");
    EXPECT_TRUE(copy_template_over(tmpl, data + "/marks1.dbf"));
    EXPECT_EQ(files_in(data), QStringList{"Marks1.DBF: template"});
    write_bytes(data + "/Marks1.DBF", "old");
    EXPECT_FALSE(copy_template_over(program + "/none.org", data + "/marks1.dbf"));
    EXPECT_EQ(read_bytes(data + "/Marks1.DBF"), "old");
}

TEST(DbfSafeFile, ReplacesWholeFilesAndFailsWithoutHarm) {
    if (veldo::testing::rerun_unprivileged()) return;
    QTemporaryDir dir;
    const QString p = dir.filePath("setup.txt"), copy = dir.filePath("copy.txt");
    QString error;
    EXPECT_EQ((QList<bool>{write_file_atomic(p, "one", &error), write_file_atomic(p, "two", &error),
                           copy_file_atomic(dir.filePath("none.txt"), p, &error)}),
              (QList<bool>{true, true, false}));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(write_file_atomic(dir.filePath("no/such/folder/x.txt"), "x", &error));
    ASSERT_TRUE(copy_file_atomic(p, copy, &error));
    EXPECT_EQ(files_in(dir.path()), (QStringList{"copy.txt: two", "setup.txt: two"}));

    // A file set read-only on purpose is not replaced behind its back.
    QFile::setPermissions(p, QFile::ReadOwner);
    ASSERT_FALSE(QFileInfo(p).isWritable());
    EXPECT_FALSE(write_file_atomic(p, "three", &error));
    EXPECT_FALSE(copy_file_atomic(copy, p, &error));
    EXPECT_EQ(read_bytes(p), "two");
}

}  // namespace
