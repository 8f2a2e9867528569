// The export and symbol screens through a teacher's path on the demo school.
#include <gtest/gtest.h>

#include <QFile>

#include "exchange/export_screen.h"
#include "exchange/symbol_screen.h"
#include "markbook/marks_table.h"
#include "tests/markbook/demo_school_fixture.h"
#include "tests/support/golden.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

struct ExchangeScreens : ::testing::Test, testing::DemoSchool {};

TEST_F(ExchangeScreens, ATaskIsExportedFromTheListToBothTables) {
    MarkBookExport screen(ctx);
    ASSERT_TRUE(screen.load());
    ASSERT_EQ(screen.series().size(), 9);
    screen.choose_series(0);
    const auto lists = [&] {
        return QString("series list %1, task list %2\n")
            .arg(screen.series_list_shown() ? "shown" : "gone", screen.task_list_shown() ? "shown" : "gone");
    };
    // Column 2 is pale yellow where the task has a total, white elsewhere.
    QString seen = screen.caption() + ": " + screen.vak_ops() + "\n" + lists() + testing::grid_text(screen.tasks(), 2);
    QStringList bar;  // value/maximum, "-" once hidden
    screen.on_progress = [&] {
        const QString value = screen.progress_visible() ? QString::number(screen.progress_value()) : "-";
        bar << value + "/" + QString::number(screen.progress_max());
    };
    dialogs.folders.enqueue(run.data_folder);
    ASSERT_TRUE(screen.export_task_row(1));
    seen += "bar " + bar.join(' ') + "\n" + lists();
    // 3.5 of 10 goes over as 35 of the series' 100, appended beside the class
    // list's row; the records' bytes and count are ExportMarks' to pin.
    for (const QStringList& r : records("punte1.dbf"))
        if (r.value(1) == "Botha, Anri") seen += "punte1.dbf: " + r.join('|') + "\n";
    screen.pboek_uitvoer_exit();
    EXPECT_TRUE(testing::matches_golden(seen + testing::transcript(*this, screens), "exchange/export_tasks.txt"));
}

// Each refusal: its message in the user's language, nothing appended, and
// the screen gone where the refusal ends it.
TEST_F(ExchangeScreens, TheExportRefusesWithItsMessages) {
    // Why; in Afrikaans; with the series table exp_mrk_control.txt; the task row double-clicked
    // (-1: none, the load refused); a folder chosen and then No to the question.
    const std::tuple<const char*, bool, bool, int, bool> cases[] = {
        {"no series table", false, false, -1, false},
        {"geen reekstabel", true, false, -1, false},
        {"the heading row", false, true, 0, false},
        {"die opskrifry", true, true, 0, false},
        {"a cancelled folder", false, true, 1, false},
        {"No to the question", true, true, 1, true},
    };
    const QString folder = run.data_folder;
    const QByteArray series = testing::read_bytes(table("exp_mrk_control.txt"));
    QString outcome;
    for (const auto& [why, afrikaans, series_table, task_row, answer_no] : cases) {
        SCOPED_TRACE(why);
        run.language_afrikaans = afrikaans;
        run.data_folder = folder;
        dialogs = {};  // each row starts with nothing said or shown
        screens = {};
        QFile::remove(table("exp_mrk_control.txt"));
        if (series_table) testing::write_bytes(QDir(folder).filePath("exp_mrk_control.txt"), series);
        if (answer_no) {
            dialogs.folders.enqueue(folder);
            dialogs.answers.enqueue(MsgAnswer::No);
        }
        const QByteArray punte = testing::read_bytes(table("punte1.dbf"));
        MarkBookExport screen(ctx);
        const bool loaded = screen.load();
        EXPECT_EQ(loaded, task_row >= 0);
        if (loaded) {
            screen.choose_series(0);
            EXPECT_FALSE(screen.export_task_row(task_row));
        }
        EXPECT_EQ(testing::read_bytes(table("punte1.dbf")), punte);
        outcome += QString("== %1\n").arg(why) + testing::transcript(*this, screens);
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "exchange/export_refusals.txt"));
}

TEST_F(ExchangeScreens, TheDistributionShowsInTheGridAndPrintsWhole) {
    run.language_afrikaans = true;
    SymbolPrintScreen screen(ctx, printer);
    ASSERT_TRUE(screen.load());
    EXPECT_EQ(screen.caption() + ": " + screen.button_captions().join('|'), "SIMBOOLVERSPREIDING DRUK: DRUK|EXIT");
    EXPECT_EQ(screen.series_list_height(), 9 * 300);
    EXPECT_FALSE(screen.pboek_druk_print());  // nothing chosen yet
    ASSERT_TRUE(screen.choose_series(0));
    EXPECT_EQ(screen.vak_ops(), "8 AFR 8A");
    const TextGrid& grid = screen.grid();
    // The counts are the counting's own to pin (Symbols.CountsLearnersPerRangeAndAveragesPerTask).
    EXPECT_TRUE(testing::matches_golden(testing::grid_text(grid), "exchange/symbol_grid.txt"));

    const TextGrid shown = grid;
    ASSERT_TRUE(screen.pboek_druk_print());
    EXPECT_EQ(screen.grid().rows(), shown.rows());  // the screen keeps what it printed
    const QString text = testing::pdf_text(printer.files.last()).simplified();
    EXPECT_TRUE(text.contains("SIMBOLE 8 AFR 8A"));
    EXPECT_TRUE(text.contains("GEMIDDELD " + shown.row_texts(shown.rows() - 1).mid(1, 3).join(' ')))
        << text.toStdString();
    printer.cancel = true;
    EXPECT_FALSE(screen.pboek_druk_print());
}

// The table is looked for as marks<N>.txt, then as marks<N>.dbf; each
// message ends the screen and brings the menu back.
TEST_F(ExchangeScreens, TheDistributionFindsItsTableOrEndsTheScreen) {
    // The series row, and what goes in as marks<N>.txt: nothing, a "copy" of the .dbf, an "old" one (41 fields).
    const std::tuple<const char*, int, QString> cases[] = {
        {"the .dbf every screen uses", 0, ""},
        {"an export disk's .txt comes first", 0, "old"},
        {"no book at all", 1, ""},
        {"only the .txt", 1, "copy"},
    };
    QString outcome;
    for (const auto& [why, row, text_table] : cases) {
        const QString txt = QDir(run.data_folder).filePath(QString("marks%1.txt").arg(row + 1));
        QFile::remove(txt);
        if (text_table == "copy") QFile::copy(table("marks1.dbf"), txt);
        if (text_table == "old") DbfTable::create(txt, mark_book_fields().mid(0, 41));
        // Series 2 has no setup of its own: give it series 1's for the copy.
        if (row == 1)
            QFile::copy(table("setup_8  AFR__8A.txt"), QDir(run.data_folder).filePath("setup_8  WISK_8B.txt"));
        dialogs = {};  // each row starts with nothing said or shown
        screens = {};
        SymbolPrintScreen screen(ctx, printer);
        ASSERT_TRUE(screen.load());
        const bool chosen = screen.choose_series(row);
        outcome += QString("== %1: chosen %2, distribution %3\n").arg(why).arg(chosen).arg(screen.has_distribution()) +
                   testing::transcript(*this, screens).replace("\r", "\\r");
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "exchange/symbol_tables.txt"));
}

}  // namespace
}  // namespace veldo
