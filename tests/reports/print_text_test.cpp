// Every figure of the mark book, merit list and symbol prints reads back
// whole from the PDF a teacher gets: no column is narrower than its text.
#include <gtest/gtest.h>

#include <random>

#include "exchange/symbol_distribution.h"
#include "markbook/column_actions.h"
#include "markbook/mark_book_print.h"
#include "markbook/setup_file.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/pdf_printer.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::TempDrive;

// A printed row: its non-empty cells with one blank between.
QString row_line(const QStringList& cells) {
    QStringList kept;
    for (const QString& c : cells)
        if (!c.trimmed().isEmpty()) kept << c.trimmed();
    return kept.join(' ');
}

// Marks of every width a book holds: the widest a field takes among them.
QString generated_mark(std::mt19937& random) {
    static const QStringList wide{"100.6", "-274.0", "1234.5", "999.9", "A", "a", "", "0.5"};
    const int pick = int(random() % 12);
    if (pick < int(wide.size())) return wide[pick];
    return QString::number(int(random() % 1000) / 10.0, 'f', 1);
}

struct PrintText : ::testing::TestWithParam<bool> {
    TempDrive t;
    testing::PdfPrinter printer{t.run, t.path("")};
    MarkBookSetup setup;
    QList<QStringList> records;  // number, name, 25 marks
    std::unique_ptr<DbfTable> marks;

    void SetUp() override {
        t.run.language_afrikaans = GetParam();
        std::mt19937 random(20261124);
        for (int r = 0; r < 25; ++r) setup.rows[r] = {QString("TAAK %1").arg(r + 1), "50", "", "", ""};
        for (int l = 1; l <= 14; ++l) {
            QStringList marks;
            for (int r = 0; r < 25; ++r) marks << generated_mark(random);
            records << testing::marks_row(10000 + l, QString("Leerder%1").arg(l), marks);
        }
        testing::fill_marks_table(t.data("marks1.dbf"), records);
        marks = DbfTable::open(t.data("marks1.dbf"));
        ASSERT_TRUE(marks);
    }
    // Each line expected is a line of the last PDF, read in drawing order with
    // blanks collapsed.
    void expect_printed(const QStringList& expected) {
        QStringList printed;
        for (const QString& line : testing::pdf_text(printer.files.last(), "-raw").split('\n'))
            printed << line.simplified();
        for (const QString& line : expected) EXPECT_TRUE(printed.contains(line)) << line.toStdString();
    }
};

TEST_P(PrintText, TheMarkBookPrintsEveryMarkWholeInBothBlocks) {
    ASSERT_TRUE(printer.print([&](ReportRun& r) { return print_mark_book(r, setup, *marks, "8 AFR 8A"); }));
    QStringList expected{GetParam() ? "P1 TAAK 1 P2 TAAK 2 P3 TAAK 3 P4 TAAK 4"
                                    : "M1 TAAK 1 M2 TAAK 2 M3 TAAK 3 M4 TAAK 4"};
    for (int l = 0; l < records.size(); ++l) {
        const QStringList& rec = records[l];
        const QString number = QString::number(l + 1);
        // The first block: the learner and marks 1 to 20; the second: marks 21 to 25.
        expected << row_line(QStringList{number, rec[0], rec[1]} + rec.mid(2, 20));
        expected << row_line(QStringList{number, rec[0]} + rec.mid(22, 5));
    }
    expect_printed(expected);
}

TEST_P(PrintText, TheMeritListPrintsEveryMarkWhole) {
    const int column = 3;
    ASSERT_TRUE(printer.print([&](ReportRun& r) { return print_merit_list(r, *marks, "TAAK 2", column, "8 AFR 8A"); }));
    const TextGrid merit = merit_list(*marks, column);
    ASSERT_EQ(merit.rows(), records.size());
    QStringList expected;
    for (int row = 0; row < merit.rows(); ++row)
        expected << row_line({QString::number(row + 1), merit.text(row, 0), merit.text(row, 1), merit.text(row, 2)});
    expect_printed(expected);
}

TEST_P(PrintText, TheSymbolDistributionPrintsEveryCellWhole) {
    MarkBookSetup five;
    for (int r = 0; r < 5; ++r) five.rows[r] = setup.rows[r];
    ASSERT_TRUE(write_setup_file(t.data("setup_8  AFR__8A.txt"), five));
    testing::make_table(t.data("pi2_dta.dbf"), symbol_table_fields(), {{"A+", 3000.0, 90.0}, {"B", 89.9, 0.0}});
    const QStringList row{"8  ", "AFR  ", "100", "8A ", "   ", "   ", "101", "", ""};
    TextGrid grid;
    ASSERT_TRUE(build_symbol_distribution(*t.store, row, 1, grid));
    ASSERT_TRUE(printer.print([&](ReportRun& r) {
        TextGrid copy = grid;
        return print_symbol_distribution(r, copy, row);
    }));
    QStringList expected;
    for (int r = 0; r < grid.rows(); ++r) expected << row_line(grid.row_texts(r));
    EXPECT_EQ(grid.text(grid.rows() - 1, 0), GetParam() ? "GEMIDDELD" : "AVERAGE");
    expect_printed(expected);
}

INSTANTIATE_TEST_SUITE_P(Languages, PrintText, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "Afrikaans" : "English"; });

}  // namespace
}  // namespace veldo
