// The command-line face, run as a separate program.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QProcess>

#include "tests/support/pdf_printer.h"
#include <QRegularExpression>
#include <QStandardPaths>
#include <unistd.h>

#include "markbook/workbook_reader.h"
#include "store/dbf_table.h"
#include "tests/support/program_run.h"
#include "tests/support/temp_drive.h"
#include "util/legacy_number.h"

namespace veldo {
namespace {

using testing::run_program;
using testing::write_bytes;

// A PDF's text as a reader sees it.
using veldo::testing::pdf_text;

struct Cli : ::testing::Test {
    QTemporaryDir drive;
    QString data() const { return drive.filePath("data"); }
    testing::ProgramResult run(const QStringList& args) { return run_program(drive.path(), args); }
};

TEST_F(Cli, HelpListsEveryCommandWord) {
    const auto r = run({"--help"});
    EXPECT_EQ(r.exit_code, 0);
    for (const char* word : {"demo --data DIR", "series --data DIR", "dump FILE.dbf", "--lang af|en"})
        EXPECT_TRUE(r.out.contains(word)) << word;
}

TEST_F(Cli, BadUsageExitsTwoWithTheUsage) {
    for (const QStringList& args : {QStringList{"frobnicate"}, QStringList{"series"}, QStringList{"series", "--data"},
                                    QStringList{"series", "--data", "x", "--lang", "fr"},
                                    QStringList{"dump"}, QStringList{"series", "--data", "x", "--bogus", "1"}}) {
        const auto r = run(args);
        EXPECT_EQ(r.exit_code, 2) << args.join(' ').toStdString();
        EXPECT_TRUE(r.err.contains("usage: veldo-tally")) << args.join(' ').toStdString();
    }
}

TEST_F(Cli, TheDemoSchoolListsItsSeries) {
    const auto demo = run({"demo", "--data", data()});
    ASSERT_EQ(demo.exit_code, 0) << demo.err.toStdString();
    EXPECT_TRUE(demo.out.startsWith("Demo school written to " + data()));

    const auto r = run({"series", "--data", data()});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    const QStringList lines = r.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_GE(lines.size(), 8);
    EXPECT_EQ(lines[0], "8  \tAFR  \t100\t8A \t   \t   \t101\tK001 \t2026/01/14");
    for (const QString& line : lines) EXPECT_EQ(line.split('\t').size(), 9) << line.toStdString();
    // Grades above 9 show 100 whatever their stored total.
    EXPECT_TRUE(lines[4].startsWith("10 \tWISK \t100\t10A"));
    EXPECT_TRUE(lines[1].startsWith("8  \tWISK \t150\t"));
}

TEST_F(Cli, TheDemoSchoolHasClassListsMarkBooksAndASchoolRecord) {
    ASSERT_EQ(run({"demo", "--data", data()}).exit_code, 0);
    const QDir d(data());
    for (int n = 1; n <= 9; ++n) {
        EXPECT_TRUE(d.exists(QString("punte%1.dbf").arg(n)));
        EXPECT_TRUE(d.exists(QString("obe_p%1.dbf").arg(n)));
    }
    EXPECT_TRUE(d.exists("pi2_dta.dbf"));
    EXPECT_TRUE(d.exists("marks1.dbf"));
    EXPECT_TRUE(d.exists("setup_8  AFR__8A.txt"));
    EXPECT_TRUE(QFileInfo::exists(drive.filePath("Skl_Dta_random.txt")));

    const auto list = run({"dump", d.filePath("punte1.dbf")});
    ASSERT_EQ(list.exit_code, 0);
    const QStringList lines = list.out.split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines[0], "EF_T_NR\tEF_NAME\tEF_PUNT\tEF_P_S");
    EXPECT_EQ(lines.size(), 1 + 32);
    EXPECT_TRUE(lines[1].startsWith("10001\t")) << lines[1].toStdString();

    const auto marks = run({"dump", d.filePath("marks1.dbf")});
    const QStringList rows = marks.out.split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(rows[0].split('\t').size(), 42);
    EXPECT_TRUE(rows[0].startsWith("MB_T_NR\tMB_NAME\tMB_R01"));

    const auto symbols = run({"dump", d.filePath("pi2_dta.dbf")});
    EXPECT_EQ(symbols.out.split('\n', Qt::SkipEmptyParts).size(), 8);
}

TEST_F(Cli, AMissingDataFolderIsRefusedInTheChosenLanguage) {
    auto r = run({"series", "--data", data(), "--lang", "af"});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_EQ(r.err.trimmed(), "DIE GIDS " + data() + " BESTAAN NIE!");
    r = run({"series", "--data", data()});
    EXPECT_EQ(r.err.trimmed(), "THE FOLDER " + data() + " DOES NOT EXIST!");
}

TEST_F(Cli, AFolderWithoutMarksFilesIsRefused) {
    QDir().mkpath(data());
    const auto r = run({"series", "--data", data()});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_EQ(r.err.trimmed(), "Current folder (" + data() + ") does not contain marks files ...");
}

TEST_F(Cli, TheLanguageComesFromTheFamilySetupFile) {
    QDir().mkpath(data());
    write_bytes(drive.filePath("ProgramData/KESTRALIN/setup.txt"), "\"\"\r\n#TRUE#\r\n");
    const auto r = run({"series", "--data", data()});
    EXPECT_EQ(r.err.trimmed(), "Bestaande gids (" + data() + ") bevat nie punteleêrs nie ...");
}

TEST_F(Cli, DumpRefusesADamagedTableWithAMessage) {
    write_bytes(drive.filePath("bad.dbf"), QByteArray("this is no table at all"));
    const auto r = run({"dump", drive.filePath("bad.dbf")});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_TRUE(r.err.contains("bad.dbf"));
    const auto missing = run({"dump", drive.filePath("none.dbf")});
    EXPECT_EQ(missing.exit_code, 1);
}

TEST_F(Cli, AReadOnlyFolderIsRefusedWithAMessageAndKeepsItsFiles) {
    ASSERT_EQ(run({"demo", "--data", data()}).exit_code, 0);
    // The school's own records stay open to every user; only the data folder
    // and its tables are closed to writing.
    const auto open_all = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner |
                          QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;
    QDirIterator all(drive.path(), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
    while (all.hasNext()) QFile::setPermissions(all.next(), open_all);
    QFile::setPermissions(drive.path(), open_all);
    const auto read_only = QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther | QFileDevice::ExeOther;
    QDirIterator tables(data(), QDir::Files);
    while (tables.hasNext()) QFile::setPermissions(tables.next(), read_only & ~(QFileDevice::ExeOwner | QFileDevice::ExeOther));
    QFile::setPermissions(data(), read_only);
    const QByteArray before = testing::read_bytes(data() + "/marks1.dbf");

    const auto demo = testing::run_program(drive.path(), {"demo", "--data", data() + "/school"}, true);
    EXPECT_EQ(demo.exit_code, 1);
    EXPECT_EQ(demo.err.trimmed(), "The folder " + data() + "/school can't be created or written to.");
    // A data set that may not be written is refused at the first of its
    // tables opened, in the user's language, before anything is touched.
    struct Case { const char* word; const char* lang; QString message; };
    const QString control = data() + "/exp_mrk_control.txt";
    const Case cases[] = {
        {"open", "en", "DATASET " + control + "  IS 'READ ONLY' ... CONTACT VELDO-HOUSE !"},
        {"open", "af", "DATASTEL " + control + "  IS 'READ ONLY' ... SKAKEL VELDO-HOUSE !"},
        {"recalc", "en", "DATASET " + control + "  IS 'READ ONLY' ... CONTACT VELDO-HOUSE !"},
    };
    for (const Case& c : cases) {
        const auto r = testing::run_program(drive.path(), {c.word, "--data", data(), "--series", "1", "--lang", c.lang}, true);
        EXPECT_EQ(r.exit_code, 1) << c.word << c.lang;
        EXPECT_EQ(r.err.trimmed().toStdString(), c.message.toStdString()) << c.word << c.lang;
        EXPECT_EQ(r.out.toStdString(), "") << c.word << c.lang;
        EXPECT_EQ(testing::read_bytes(data() + "/marks1.dbf"), before) << c.word << c.lang;
    }
    QFile::setPermissions(data(), open_all);
}

}  // namespace
}  // namespace veldo

namespace veldo {
namespace {

// The mark book words, on the demo school.
struct CliBook : ::testing::Test {
    QTemporaryDir drive;
    QString data() const { return drive.filePath("data"); }
    testing::ProgramResult run(const QStringList& args) { return testing::run_program(drive.path(), args); }
    void SetUp() override { ASSERT_EQ(run({"demo", "--data", data()}).exit_code, 0); }
    QStringList lines(const testing::ProgramResult& r) { return r.out.split('\n', Qt::SkipEmptyParts); }
};

TEST_F(CliBook, OpenRebuildsTheBookInNameOrder) {
    const auto r = run({"open", "--data", data(), "--series", "1"});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    EXPECT_EQ(r.out.trimmed(), "Mark book 1 (setup_8  AFR__8A.txt): 32 learners, 21 columns");
    const QStringList rows = lines(run({"dump", data() + "/marks1.dbf"}));
    QStringList names;
    for (int i = 1; i < rows.size(); ++i) names << rows[i].section('\t', 1, 1);
    QStringList sorted = names;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    EXPECT_EQ(names, sorted);
}

TEST_F(CliBook, RecalcFillsTheTotalsAndAveragesShowThem) {
    auto before = lines(run({"averages", "--data", data(), "--series", "1"}));
    ASSERT_EQ(before.size(), 21);
    EXPECT_TRUE(before[4].startsWith("6\tKLASWERK\t0.0000"));
    ASSERT_EQ(run({"recalc", "--data", data(), "--series", "1"}).exit_code, 0);
    auto after = lines(run({"averages", "--data", data(), "--series", "1", "--lang", "af"}));
    ASSERT_EQ(after.size(), 21);
    EXPECT_EQ(after[0], before[0]);  // a task column is not touched
    EXPECT_TRUE(after[4].startsWith("6\tKLASWERK\t"));
    EXPECT_NE(after[4], before[4]);
    EXPECT_TRUE(QRegularExpression("^22\tTOTAAL\t\\d+\\.\\d{4}$").match(after[20]).hasMatch()) << after[20].toStdString();
}

// Every figure of every demo book after a recalculation, total columns by
// field index with their totals: the example book's and the short book's.
TEST_F(CliBook, EveryDemoTotalLiesInItsRange) {
    const QList<QPair<int, double>> example = {{6, 40}, {11, 30}, {12, 60}, {17, 40}, {20, 20}, {21, 40}, {22, 100}};
    const QList<QPair<int, QList<QPair<int, double>>>> books = {
        {1, example}, {3, example}, {4, {{5, 100}}}, {5, example}, {7, example}, {9, example}};
    for (const auto& [series, totals] : books) {
        const QString n = QString::number(series);
        ASSERT_EQ(run({"recalc", "--data", data(), "--series", n}).exit_code, 0) << series;
        const QStringList rows = lines(run({"dump", data() + "/marks" + n + ".dbf"}));
        ASSERT_GT(rows.size(), 20) << series;
        int finals = 0;
        for (int r = 1; r < rows.size(); ++r) {
            const QStringList f = rows[r].split('\t');
            for (const auto& [field, total] : totals) {
                const QString v = f.value(field).trimmed();
                if (v.isEmpty()) continue;
                const double mark = Val(v);
                EXPECT_TRUE(mark >= 0 && mark <= total) << "book " << series << ", " << f[1].toStdString() << ", field "
                                                        << field << ": " << v.toStdString();
                if (total == 100) ++finals;
            }
        }
        EXPECT_EQ(finals, rows.size() - 1) << "every learner of book " << series << " has a final total";
    }
}

// Marks typed one after another into one learner's PRAKTIES 1 (out of 25,
// feeding TOTAAL): the range test from both sides, the running figure moved
// by the difference from the old mark, "A" and an emptied cell.
TEST_F(CliBook, AMarkIsJudgedStoredAndAddedToTheRunningFigure) {
    ASSERT_EQ(run({"recalc", "--data", data(), "--series", "4"}).exit_code, 0);
    const auto learner_row = [&](const QString& number) {
        for (const QString& line : lines(run({"dump", data() + "/marks4.dbf"})))
            if (line.startsWith(number + "\t")) return line.split('\t');
        return QStringList();
    };
    const QString number = "10106";
    const QStringList before = learner_row(number);
    ASSERT_EQ(before.size(), 42);
    double figure = Val(before[5]);
    double old = Val(before[2]);
    struct Row {
        const char* typed;
        int exit_code;
        const char* stored;  // field 2 afterwards
        const char* why;
    } rows[] = {
        {"25", 0, "25.0", "the column's total is a mark"},
        {"25.1", 1, "25.0", "a tenth above is refused"},
        {"-1", 1, "25.0", "a negative mark is refused"},
        {"0", 0, "0.0", "0 is a mark"},
        {"12x", 0, "12.0", "the leading number"},
        {"A", 0, "A", "an absence leaves the figure alone"},
        {"7.25", 0, "7.3", "one decimal, half away from zero"},
        {"", 0, "", "an emptied cell takes its old mark off the figure"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.why);
        const auto result = run({"mark", "--data", data(), "--series", "4", "--learner", number, "--column", "2", "--value", r.typed});
        EXPECT_EQ(result.exit_code, r.exit_code) << result.err.toStdString();
        const QStringList after = learner_row(number);
        EXPECT_EQ(after.value(2), QString(r.stored));
        if (r.exit_code != 0) {
            EXPECT_EQ(result.err.trimmed(), "Marks can only be ' ', 'A', 'a' or 0-25");
            continue;
        }
        if (QString(r.typed) != "A") {
            if (old > 0) figure -= old;
            figure += Val(r.stored);
        }
        old = Val(r.stored);
        EXPECT_EQ(after.value(5), format_one_decimal(figure));
    }
    const auto af = run({"mark", "--data", data(), "--series", "4", "--learner", number, "--column", "2", "--value", "26",
                         "--lang", "af"});
    EXPECT_EQ(af.err.trimmed(), "Punte kan slegs ' ', 'A', 'a' of 0-25 wees");
    const auto total = run({"mark", "--data", data(), "--series", "4", "--learner", number, "--column", "5", "--value", "1"});
    EXPECT_EQ(total.exit_code, 1);
    EXPECT_EQ(total.err.trimmed(), "Column 5 of mark book 4 takes no marks: choose a task's column (2 to 41).");
    const auto nobody = run({"mark", "--data", data(), "--series", "4", "--learner", "1", "--column", "2", "--value", "1"});
    EXPECT_EQ(nobody.err.trimmed(), "There is no learner 1 in mark book 4.");
}

// The column actions on book 1 of the demo school, each read back from the
// table; refusals change no byte.
TEST_F(CliBook, TheColumnActionsWorkOnTheTable) {
    const auto field = [&](int f) {
        QStringList out;
        const QStringList rows = lines(run({"dump", data() + "/marks1.dbf"}));
        for (int i = 1; i < rows.size(); ++i) out << rows[i].section('\t', f, f);
        return out;
    };
    ASSERT_EQ(run({"open", "--data", data(), "--series", "1"}).exit_code, 0);
    const QStringList task2 = field(3);
    const QByteArray start = testing::read_bytes(data() + "/marks1.dbf");
    struct Refusal {
        QStringList args;
        QString message;
    };
    const Refusal refusals[] = {
        {{"scale", "--column", "6", "--average", "50"}, "Scaling not possible on total columns ..."},
        {{"scale", "--column", "2", "--average", "0"}, "The new average must be a number above 0: nothing was scaled."},
        {{"scale", "--column", "1", "--average", "50"}, "Column 1 of mark book 1 takes no marks: choose a task's column (2 to 41)."},
        {{"copy-column", "--from", "2", "--to", "42"}, "Column 42 of mark book 1 takes no marks: choose a task's column (2 to 41)."},
        {{"paste-column", "--column", "3", "--file", "missing.txt"}, "The file " + QDir::current().absoluteFilePath("missing.txt") + " can't be read."},
        {{"print", "meritlist", "--column", "24", "--pdf", "m.pdf"}, "Column 24 of mark book 1 takes no marks: choose a task's column (2 to 41)."},
    };
    for (const Refusal& r : refusals) {
        const auto result = run(QStringList{r.args[0]} + QStringList{"--data", data(), "--series", "1"} + r.args.mid(1));
        EXPECT_EQ(result.exit_code, 1) << r.args.join(' ').toStdString();
        EXPECT_EQ(result.err.trimmed().toStdString(), r.message.toStdString());
        EXPECT_EQ(testing::read_bytes(data() + "/marks1.dbf"), start) << r.args.join(' ').toStdString();
    }

    // TAAK 2 (out of 10) to an average of 80 %, then past 100: every mark at the total.
    auto r = run({"scale", "--data", data(), "--series", "1", "--column", "3", "--average", "80"});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    EXPECT_TRUE(QRegularExpression("^TAAK 2: 59\\.7 -> \\d+\\.\\d$").match(r.out.trimmed()).hasMatch()) << r.out.toStdString();
    r = run({"scale", "--data", data(), "--series", "1", "--column", "3", "--average", "250"});
    ASSERT_EQ(r.exit_code, 0);
    for (int i = 0; i < task2.size(); ++i) {
        const QString t = task2[i].trimmed();
        EXPECT_EQ(field(3)[i], t.isEmpty() || t == "A" || t == "a" ? task2[i] : "10.0") << i;
    }

    // Copy TAAK 1 over TAAK 2, then paste three lines into TAAK 2.
    ASSERT_EQ(run({"copy-column", "--data", data(), "--series", "1", "--from", "2", "--to", "3"}).exit_code, 0);
    EXPECT_EQ(field(3), field(2));
    testing::write_bytes(drive.filePath("clip.txt"), "7\r\n-1\r\n8.25\r\n");
    r = run({"paste-column", "--data", data(), "--series", "1", "--column", "3", "--file", drive.filePath("clip.txt")});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    EXPECT_EQ(r.out.trimmed(), "TAAK 2: 32 learners");
    const QStringList pasted = field(3);
    EXPECT_EQ(pasted.mid(0, 1), QStringList{"7.0"});
    EXPECT_EQ(pasted[1], field(2)[1]);  // a negative line is left out
    EXPECT_EQ(pasted[2], "8.3");
    EXPECT_EQ(pasted.mid(3), QStringList(pasted.size() - 3, "0.0"));

    // The merit list of TAAK 2 as a PDF: the highest mark first.
    r = run({"print", "meritlist", "--data", data(), "--series", "1", "--column", "3", "--pdf", drive.filePath("merit.pdf")});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    const QString text = pdf_text(drive.filePath("merit.pdf"));
    EXPECT_TRUE(text.contains("MERIT LIST 8 AFR 8A - TAAK 2")) << text.toStdString();
    EXPECT_LT(text.indexOf(" 8.3"), text.indexOf(" 7.0"));
}

TEST_F(CliBook, ExportAppendsToTheChosenFolder) {
    const auto r = run({"export", "--data", data(), "--series", "5", "--task", "14"});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains("WIL U DEFNITIEF") || r.err.contains("DO YOU WISH TO EXPORT \"HOOFTOETS 1\" ?"));
    EXPECT_TRUE(r.err.contains("Marks for 10 WISK_10A exported sucessfully ..."));
    EXPECT_EQ(lines(run({"dump", data() + "/punte5.dbf"})).size(), 1 + 38 + 38);
    EXPECT_TRUE(QFileInfo::exists(drive.filePath("marks5.dbf")));
    const auto none = run({"export", "--data", data(), "--series", "5", "--task", "0"});
    EXPECT_EQ(none.exit_code, 1);
    EXPECT_TRUE(none.err.contains("NO MARK SERIES SELECTED"));
}

TEST_F(CliBook, SymbolsPrintsTheDistributionGrid) {
    const auto r = run({"symbols", "--data", data(), "--series", "1"});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    const QStringList rows = lines(r);
    ASSERT_EQ(rows.size(), 1 + 1 + 7 + 1);
    EXPECT_TRUE(rows[0].startsWith("SYMBOL\tM1\tM2\t"));
    EXPECT_TRUE(rows[1].startsWith("\t10\t10\t10\t10\t40\t"));
    EXPECT_TRUE(rows[2].startsWith("1 (0-29.9)\t"));
    EXPECT_TRUE(rows[9].startsWith("AVERAGE\t"));
}

TEST_F(CliBook, SyncAddsTheClassListToANewBook) {
    const auto r = run({"sync", "--data", data(), "--series", "2"});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    EXPECT_EQ(lines(run({"dump", data() + "/marks2.dbf"})).size(), 1 + 28);
}

TEST_F(CliBook, RefusalsUseTheSystemsMessages) {
    auto r = run({"open", "--data", data(), "--series", "2"});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_EQ(r.err.trimmed(), "3 See 'MARK BOOK SETUP' to create mark book");
    r = run({"open", "--data", data(), "--series", "99", "--lang", "af"});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_EQ(r.err.trimmed(), "Daar is geen puntereeks 99 in " + data() + " nie.");
    r = run({"recalc", "--data", data()});
    EXPECT_EQ(r.exit_code, 2);
}

}  // namespace
}  // namespace veldo

namespace veldo {
namespace {

// The print word, read back as a reader would: the PDF's text and the
// workbook's cells.
struct CliPrint : ::testing::Test {
    QTemporaryDir drive;
    QString data() const { return drive.filePath("data"); }
    testing::ProgramResult run(const QStringList& args) { return testing::run_program(drive.path(), args); }
    void SetUp() override { ASSERT_EQ(run({"demo", "--data", data()}).exit_code, 0); }
};

TEST_F(CliPrint, TheMarkBookGoesToAPdfWithItsHeadTableAndLegend) {
    const QString pdf = drive.filePath("book.pdf");
    const auto r = run({"print", "markbook", "--data", data(), "--series", "5", "--pdf", pdf, "--lang", "af"});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    // 38 learners: two pages for the first block, one for the second, which
    // holds the rows the last page left in the grid.
    EXPECT_TRUE(r.err.contains("DRUKWERK VOLTOOI (3 bladsye)")) << r.err.toStdString();
    const QString text = pdf_text(pdf);
    for (const char* expected : {"HOëRSKOOL DIE KRANS", "BLADSY : 1", "BLADSY : 3", "VELDO-TALLY", "10 WISK 10A", "LEERDER",
                                 "P20", "P21", "P1 TAAK 1", "P21 TOTAAL", "KESTRALIN"})
        EXPECT_TRUE(text.contains(QString::fromUtf8(expected))) << expected;
}

TEST_F(CliPrint, TheSymbolDistributionGoesToAWorkbook) {
    const QString xlsx = drive.filePath("out/symbols.xlsx");
    QDir().mkpath(drive.filePath("out"));
    const auto r = run({"print", "symbols", "--data", data(), "--series", "1", "--xlsx", xlsx});
    ASSERT_EQ(r.exit_code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains("EXPORT OF symbols TO " + drive.filePath("out") + "/symbols COMPLETE !!"))
        << r.err.toStdString();
    SheetReadError error;
    const auto sheet = read_first_sheet(xlsx, &error);
    ASSERT_TRUE(sheet) << error.detail.toStdString();
    ASSERT_GE(sheet->size(), 15);
    EXPECT_EQ(sheet->at(0).value(4), "VELDO-TALLY");
    EXPECT_EQ(sheet->at(1).value(2), "HOëRSKOOL DIE KRANS");
    EXPECT_EQ(sheet->at(2).value(0), "PAGE : 1");
    EXPECT_EQ(sheet->at(2).value(2), "SYMBOLS 8 AFR 8A");
    EXPECT_EQ(sheet->at(5).value(0), "SYMBOL");
    EXPECT_EQ(sheet->at(5).value(1), "M1");
    EXPECT_EQ(sheet->at(7).value(0), "1 (0-29.9)");
    EXPECT_EQ(sheet->at(14).value(0), "AVERAGE");
}

TEST_F(CliPrint, BadUsageAndRefusals) {
    EXPECT_EQ(run({"print", "marks", "--data", data(), "--series", "1", "--pdf", "x.pdf"}).exit_code, 2);
    EXPECT_EQ(run({"print", "setup", "--data", data(), "--series", "1"}).exit_code, 2);
    EXPECT_EQ(run({"print", "setup", "--data", data(), "--series", "1", "--pdf", "a", "--xlsx", "b"}).exit_code, 2);
    const auto r = run({"print", "markbook", "--data", data(), "--series", "2", "--pdf", drive.filePath("x.pdf")});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_EQ(r.err.trimmed().split('\n').last(), "1 No ranges available ... see 'MARK BOOK SETUP'");
}

}  // namespace
}  // namespace veldo

namespace veldo {
namespace {

// A guard on the table layer's cost: a recalculation of 2,000 learners opens
// the marks table a handful of times, not once per learner, and reads and
// writes it in a few large calls.
TEST(CliSystemCalls, ARecalculationOpensTheTableAHandfulOfTimes) {
    ASSERT_FALSE(QStandardPaths::findExecutable("strace").isEmpty()) << "strace is installed by scripts/setup.sh";
    QTemporaryDir drive;
    const QString data = drive.filePath("data");
    ASSERT_EQ(testing::run_program(drive.path(), {"demo", "--data", data}).exit_code, 0);
    {
        auto t = DbfTable::open(data + "/marks1.dbf");
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
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("KESTRALIN_DRIVE", drive.path());
    p.setProcessEnvironment(env);
    p.start("strace", {"-f", "-qq", "-e", "trace=open,openat,read,write,pread64,pwrite64,lseek", "-o", trace,
                       VELDO_PROGRAM, "recalc", "--data", data, "--series", "1"});
    ASSERT_TRUE(p.waitForFinished(120000));
    ASSERT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    EXPECT_TRUE(p.readAllStandardOutput().contains("2032 learners"));

    QFile file(trace);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    int opens = 0, calls = 0;
    const QByteArray marks = QFile::encodeName(data) + "/";
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        if (!line.contains("marks1.dbf")) {
            // Calls on the table's descriptor carry no name; count them all
            // but those of the program's own start (libraries, fonts).
            if (line.contains("pread64(") || line.contains("pwrite64(") || line.contains("lseek(")) ++calls;
            continue;
        }
        if (line.contains("open")) ++opens;
    }
    EXPECT_LE(opens, 8) << "the marks table was opened " << opens << " times";
    EXPECT_LE(calls, 40) << calls << " positioned reads, writes and seeks";
}

}  // namespace
}  // namespace veldo
