// The command-line face, run as a separate program. What the words do to the
// tables is pinned by the layers below; here stand the exit codes, the
// messages, the argument errors and the files that appear.
#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include "markbook/workbook_reader.h"
#include "store/dbf_table.h"
#include "tests/support/golden.h"
#include "tests/support/pdf_printer.h"
#include "tests/support/reports_app_helpers.h"
#include "tests/support/temp_drive.h"
#include "util/legacy_number.h"

namespace veldo {
namespace {

using testing::matches_golden;
using testing::pdf_text;
using testing::read_bytes;
using testing::write_bytes;

struct Cli : ::testing::Test {
    QTemporaryDir drive;
    bool nobody = false;  // the words run as an unprivileged user
    QString data() const { return drive.filePath("data"); }
    testing::ProgramResult run(const QStringList& args) { return testing::run_program(drive.path(), args, nobody); }
    static QStringList lines(const QString& text) { return text.split('\n', Qt::SkipEmptyParts); }
    // The first sheet of a workbook the program wrote, from its third row on
    // (the two above hold the date, time and system), its cells joined by tabs.
    static QString sheet_text(const QString& xlsx) {
        SheetReadError error;
        const auto rows = read_first_sheet(xlsx, &error);
        EXPECT_TRUE(rows) << error.detail.toStdString();
        QString out;
        for (const QStringList& row : rows.value_or(QList<QStringList>()).mid(2)) out += row.join('\t') + '\n';
        return out;
    }

    // Each word on the data folder, on mark series `series` unless 0 (-1:
    // the words as they stand, without the data folder), as a shell session
    // reads: the word, its lines (standard error's after "!", a usage cut
    // after its first line), the exit code and whether `watched` changed, if
    // given. The drive reads as <drive>, the test's own folder as <cwd>.
    QString session(const QString& watched, const QList<QStringList>& words, int series = 1) {
        QString out = series < 0 ? "# no data folder" : QString("# series %1").arg(series);
        out += watched.isEmpty() ? "\n" : ", watching " + watched + "\n";
        for (const QStringList& word : words) {
            const QByteArray before = read_bytes(watched);
            QStringList args{word[0]};
            if (series >= 0) args << "--data" << data();
            if (series > 0) args << "--series" << QString::number(series);
            const auto r = run(args + word.mid(1));
            out += "$ " + word.join(' ') + "\n";
            for (const QString& line : lines(r.out)) out += line + "\n";
            for (const QString& line : lines(r.err)) {
                out += "! " + line + "\n";
                if (line.startsWith("usage: ")) break;  // the rest is the help's
            }
            out += QString("exit %1%2\n").arg(r.exit_code).arg(read_bytes(watched) != before ? ", changed" : "");
        }
        return out.replace(drive.path(), "<drive>").replace(QDir::currentPath(), "<cwd>");
    }
};

// The words on the demo school.
struct CliBook : Cli {
    void SetUp() override { ASSERT_EQ(run({"demo", "--data", data()}).exit_code, 0); }
};

TEST_F(Cli, HelpListsEveryCommandWord) {
    const auto r = run({"--help"});
    EXPECT_EQ(r.exit_code, 0);
    EXPECT_TRUE(matches_golden(r.out, "app/help.txt"));
}

// Each with its own complaint above the usage, and exit code 2.
TEST_F(Cli, BadUsageExitsTwoWithTheUsage) {
    const QList<QStringList> cases = {
        {"frobnicate"}, {"series"}, {"series", "--data"}, {"series", "--data", "x", "--lang", "fr"}, {"dump"},
        {"series", "--data", "x", "--bogus", "1"}, {"print", "bogus", "--data", "x", "--series", "1", "--pdf", "x.pdf"},
        {"marks", "frob", "--data", "x", "--series", "1"},
        {"marks", "set", "--data", "x", "--series", "1", "--value", "1"},
        {"print", "setup", "--data", "x", "--series", "1"},
        {"print", "setup", "--data", "x", "--series", "1", "--pdf", "a", "--xlsx", "b"},
        {"setup", "frob", "--data", "x", "--series", "1"}, {"setup", "set", "--data", "x", "--series", "1"},
        {"setup", "insert", "--data", "x", "--series", "1"}, {"copy-setup", "--data", "x", "--from", "1"},
        {"move-learner", "--data", "x", "--from", "8A", "--to", "8B"}};
    EXPECT_TRUE(matches_golden(session({}, cases, -1), "app/bad_usage.txt"));
}

// The files appear; the listing words print the series and a table line by line.
TEST_F(Cli, TheDemoSchoolIsWrittenAndListedLineByLine) {
    const QString demo = session({}, {{"demo", "--data", data()}}, -1);
    EXPECT_TRUE(QFileInfo::exists(drive.filePath("Skl_Dta_random.txt")));
    const QString files = QDir(data()).entryList(QDir::Files, QDir::Name).join('\n') + '\n';
    EXPECT_TRUE(matches_golden(demo + files + session({}, {{"series"}}, 0) + run({"dump", data() + "/punte1.dbf"}).out,
                               "app/demo_listing.txt"));
}

TEST_F(Cli, AFolderWithoutMarksOrATableIsRefusedInTheUsersLanguage) {
    QString said = session({}, {{"series", "--lang", "af"}, {"series"}}, 0);
    QDir().mkpath(data());
    said += session({}, {{"series"}}, 0);
    // Without --lang the language comes from the family's setup file.
    write_bytes(drive.filePath("ProgramData/KESTRALIN/setup.txt"), "\"\"\r\n#TRUE#\r\n");
    said += session({}, {{"series"}}, 0);
    write_bytes(drive.filePath("bad.dbf"), QByteArray("this is no table at all"));
    said += session({}, {{"dump", drive.filePath("bad.dbf")}, {"dump", drive.filePath("none.dbf")}}, -1);
    EXPECT_TRUE(matches_golden(said, "app/folder_refusals.txt"));
}

// Only the data folder is closed to writing: each word is refused at the
// first table it opens, in the user's language, before anything is touched.
TEST_F(CliBook, AReadOnlyFolderIsRefusedWithAMessageAndKeepsItsFiles) {
    ASSERT_EQ(QProcess::execute("chmod", {"-R", "a+rwX", drive.path()}), 0);
    ASSERT_EQ(QProcess::execute("chmod", {"-R", "a-w", data()}), 0);
    nobody = true;
    const QString demo = session({}, {{"demo", "--data", data() + "/school"}}, -1);
    const QList<QStringList> words{{"open", "--lang", "en"}, {"open", "--lang", "af"}, {"recalc", "--lang", "en"}};
    EXPECT_TRUE(matches_golden(demo + session(data() + "/marks1.dbf", words), "app/read_only.txt"));
    QProcess::execute("chmod", {"-R", "u+w", data()});
}

// The averages as field, name and a percentage to four decimals, moved by a
// recalculation on its totals only: a task column keeps its figure.
TEST_F(CliBook, AveragesPrintEachColumnAndFollowARecalculation) {
    const QList<QStringList> words{{"averages"}, {"recalc"}, {"averages", "--lang", "af"}};
    EXPECT_TRUE(matches_golden(session(data() + "/marks1.dbf", words), "app/averages.txt"));
}

// A mark typed into book 4 (PRAKTIES 1, out of 25): the range from both sides
// in either language, a column without marks, an unknown learner.
TEST_F(CliBook, AMarkIsJudgedAndSaysWhereItWent) {
    ASSERT_EQ(run({"recalc", "--data", data(), "--series", "4"}).exit_code, 0);
    const auto mark = [](const char* column, const char* value, const char* learner = "10106") {
        return QStringList{"mark", "--learner", learner, "--column", column, "--value", value};
    };
    EXPECT_TRUE(matches_golden(session(data() + "/marks4.dbf",
                                       {mark("2", "25"), mark("2", "25.1"), mark("2", "-1"),
                                        mark("2", "26") + QStringList{"--lang", "af"}, mark("5", "1"),
                                        mark("2", "1", "1")},
                                       4),
                               "app/mark.txt"));
}

// The column actions on book 1: refusals change no byte.
TEST_F(CliBook, TheColumnActionsSayWhatTheyDidOrWhyNot) {
    ASSERT_EQ(run({"open", "--data", data(), "--series", "1"}).exit_code, 0);
    write_bytes(drive.filePath("clip.txt"), "7\r\n-1\r\n8.25\r\n");
    const QString merit = drive.filePath("merit.pdf");
    EXPECT_TRUE(matches_golden(
        session(data() + "/marks1.dbf",
                {{"scale", "--column", "3", "--average", "80"}, {"scale", "--column", "6", "--average", "50"},
                 {"scale", "--column", "2", "--average", "0"}, {"scale", "--column", "1", "--average", "50"},
                 {"copy-column", "--from", "2", "--to", "42"},
                 {"paste-column", "--column", "3", "--file", "missing.txt"},
                 {"print", "meritlist", "--column", "24", "--pdf", "m.pdf"},
                 {"copy-column", "--from", "2", "--to", "3"},
                 {"paste-column", "--column", "3", "--file", drive.filePath("clip.txt")},
                 {"print", "meritlist", "--column", "3", "--pdf", merit}}),
        "app/column_actions.txt"));
    EXPECT_TRUE(pdf_text(merit).contains("MERIT LIST 8 AFR 8A - TAAK 2"));
}

// Export, the symbol distribution as lines of tab-separated cells, and the
// update of a book from its class list.
TEST_F(CliBook, ExportSymbolsAndSyncSayWhatTheyDid) {
    const QString sessions =
        session(drive.filePath("marks5.dbf"), {{"export", "--task", "14"}, {"export", "--task", "0"}}, 5) +
        session(data() + "/marks2.dbf", {{"sync"}}, 2) + session(data() + "/marks1.dbf", {{"symbols"}});
    EXPECT_TRUE(matches_golden(sessions, "app/export_sync_symbols.txt"));
}

// Books and series that are not there, each with the system's message.
TEST_F(CliBook, RefusalsUseTheSystemsMessages) {
    QFile::remove(data() + "/punte9.dbf");
    EXPECT_TRUE(matches_golden(session(data() + "/marks1.dbf",
                                       {{"print", "--series", "2", "markbook", "--pdf", drive.filePath("x.pdf")},
                                        {"open", "--series", "2"}, {"open", "--series", "99", "--lang", "af"},
                                        {"marks", "show", "--series", "9"}, {"recalc"}},
                                       0),
                               "app/refusals.txt"));
}

// The cycle marks words: each opens the series as the screen does and ends
// with its save, or puts the table back where nothing was to change.
TEST_F(CliBook, CycleMarksAreSetShownScaledAndPrinted) {
    const QString pdf = drive.filePath("marks.pdf"), xlsx = drive.filePath("marks.xlsx");
    EXPECT_TRUE(matches_golden(
        session(data() + "/punte1.dbf",
                {{"marks", "set", "--input-total", "50", "--learner", "10001", "--value", "40", "--key", "3"},
                 {"marks", "set", "--input-total", "50", "--learner", "10002", "--value", "51"},
                 {"marks", "set", "--input-total", "0", "--learner", "10002", "--value", "1"},
                 {"marks", "set", "--learner", "99999", "--value", "1"}, {"marks", "show", "--input-total", "50"},
                 {"marks", "show", "--lang", "af"}, {"scale-marks", "--average", "70"},
                 {"print", "marks", "--pdf", pdf}, {"print", "marks", "--xlsx", xlsx}, {"marks", "save"}}),
        "app/cycle_marks.txt"));
    EXPECT_TRUE(pdf_text(pdf).contains("70.0%"));
    // The workbook holds the list and the averages as its last rows.
    EXPECT_TRUE(matches_golden(sheet_text(xlsx), "app/cycle_marks_sheet.txt"));
}

// The assessment words, and the mark list's options reaching it.
TEST_F(CliBook, AssessmentIsSetAndTheMarkListPrintsByRank) {
    EXPECT_TRUE(matches_golden(
        session(data() + "/obe_p1.dbf",
                {{"obe", "set", "--mode", "3", "--learner", "10001", "--value", "40", "--key", "3", "--formative",
                  "1,10", "--input-total", "50"},
                 {"obe", "set", "--mode", "0", "--learner", "10002", "--value", "40"},
                 {"obe", "set", "--mode", "1", "--learner", "10002", "--value", "7"},
                 {"obe", "set", "--mode", "0", "--learner", "10002", "--value", "101"}, {"obe", "show", "--mode", "2"},
                 {"obe", "show", "--mode", "4"},
                 {"print", "marklist", "--rank", "--print-total", "50", "--pdf", drive.filePath("list.pdf")}}),
        "app/assessment.txt"));
    const QString text = pdf_text(drive.filePath("list.pdf")).simplified();
    for (const char* part : {"2 10002 Venter, Jaco 40.0 120.0", "AVERAGE := 60.0 120.0%"})
        EXPECT_TRUE(text.contains(part)) << part << "\n" << text.toStdString();
}

// The print words: the message with its page count and the files made. A
// workbook names the book's columns below its grid, after a blank row.
TEST_F(CliBook, ThePrintsGoToAPdfOrAWorkbook) {
    QDir().mkpath(drive.filePath("out"));
    // 38 learners: two pages for the first block, one for the second.
    const QString symbols = drive.filePath("out/symbols.xlsx");
    EXPECT_TRUE(matches_golden(session(data() + "/marks5.dbf",
                                       {{"print", "markbook", "--pdf", drive.filePath("book.pdf"), "--lang", "af"},
                                        {"print", "markbook", "--xlsx", drive.filePath("book.xlsx")}},
                                       5) +
                                   session(symbols, {{"print", "symbols", "--xlsx", symbols}}),
                               "app/prints.txt"));
    EXPECT_TRUE(pdf_text(drive.filePath("book.pdf")).contains("BLADSY : 3"));
    EXPECT_TRUE(matches_golden(sheet_text(drive.filePath("book.xlsx")), "app/prints_book_sheet.txt"));
    EXPECT_TRUE(matches_golden(sheet_text(symbols), "app/prints_symbols_sheet.txt"));
}

// The setup words say what they did; each refusal exits 1 and changes nothing.
TEST_F(CliBook, TheSetupWordsEditCopyAndMoveWithExitCodes) {
    const QString setup = data() + "/setup_8  AFR__8A.txt";
    const QStringList row22{"setup", "set", "--series", "1", "--row", "22"};
    EXPECT_TRUE(matches_golden(
        session(setup,
                {{"setup", "show", "--series", "1"}, row22 + QStringList{"--name", "eksamen 3", "--total", "x"},
                 {"setup", "set", "--series", "1", "--row", "41", "--name", "A"}, row22 + QStringList{"--total", "50"},
                 row22 + QStringList{"--name", "eksamen 3", "--total", "50"}, {"setup", "show", "--series", "1"},
                 {"setup", "insert", "--series", "1", "--line", "0"},
                 {"setup", "insert", "--series", "1", "--line", "3"},
                 {"setup", "remove", "--series", "1", "--row", "3"}, {"setup", "example", "--series", "2"},
                 {"copy-setup", "--from", "1", "--to", "3,6"}, {"copy-setup", "--from", "1", "--to", "99"},
                 {"move-learner", "--from", "8A", "--to", "8A", "--learner", "10001"},
                 {"move-learner", "--from", "8A", "--to", "10A", "--learner", "99999"},
                 {"move-learner", "--from", "8A", "--to", "10A", "--learner", "10001"}},
                0),
        "app/setup_words.txt"));
    EXPECT_EQ(read_bytes(data() + "/setup_9ENHL9A.txt"), read_bytes(setup));  // copies land under the shortest key
}

// A recalculation of 2,000 learners opens the marks table a handful of times,
// not once per learner, and reads and writes it in a few large calls.
TEST_F(CliBook, ARecalculationOpensTheTableAHandfulOfTimes) {
    ASSERT_FALSE(QStandardPaths::findExecutable("strace").isEmpty()) << "strace is installed by scripts/setup.sh";
    {
        auto t = DbfTable::open(data() + "/marks1.dbf");
        ASSERT_TRUE(t);
        t->begin_batch();
        for (int l = 0; l < 2000; ++l) {
            t->AddNew();
            t->set_value(0, 50000.0 + l);
            t->set_value(1, QString("Leerder %1").arg(l));
            for (int f = 2; f < 22; ++f) t->set_value(f, format_one_decimal((l + f) % 10));
            t->Update();
        }
        ASSERT_TRUE(t->commit_batch());
    }
    const QString trace = drive.filePath("trace.txt");
    QProcess p;
    testing::start_traced(p, drive.path(), "open,openat,read,write,pread64,pwrite64,lseek", trace,
                          {"recalc", "--data", data(), "--series", "1"});
    ASSERT_TRUE(p.waitForFinished(120000));
    ASSERT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    EXPECT_TRUE(p.readAllStandardOutput().contains("2032 learners"));

    int opens = 0, calls = 0;
    for (const QByteArray& line : read_bytes(trace).split('\n')) {
        // Calls on the table's descriptor carry no name; count them all but
        // those of the program's own start (libraries, fonts).
        if (line.contains("marks1.dbf"))
            opens += line.contains("open");
        else
            calls += line.contains("pread64(") || line.contains("pwrite64(") || line.contains("lseek(");
    }
    EXPECT_GT(opens, 0) << "no trace";
    EXPECT_LE(opens, 8) << "the marks table was opened " << opens << " times";
    EXPECT_LE(calls, 40) << calls << " positioned reads, writes and seeks";
}

}  // namespace
}  // namespace veldo
