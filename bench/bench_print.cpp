// Printing a mark book of 2,000 learners and 40 columns to PDF. Goal on the
// project machine: under 2 s (median).
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QTemporaryDir>

#include "markbook/mark_book_print.h"
#include "reports/qt_print_surface.h"
#include "store/dbf_table.h"
#include "store/run_state.h"
#include "store/table_layouts.h"
#include "util/legacy_number.h"

namespace {

using namespace veldo;

void BM_PrintMarkBookToPdf(benchmark::State& state) {
    QTemporaryDir dir;
    SilentDialogs dialogs;
    RunState run;
    run.dialogs = &dialogs;
    run.drive_root = dir.path();
    run.school_name = "HOëRSKOOL DIE KRANS";
    MarkBookSetup setup;
    for (int r = 0; r < 40; ++r) setup.rows[r] = {QString("TAAK %1").arg(r + 1), "10", "", "", ""};
    const QString path = dir.filePath("marks1.dbf");
    DbfTable::create(path, mark_book_fields());
    {
        auto t = DbfTable::open(path);
        for (int l = 0; l < int(state.range(0)); ++l) {
            t->AddNew();
            t->set_value(0, double(10000 + l));
            t->set_value(1, QString("Leerder %1").arg(l, 5, 10, QChar('0')));
            for (int f = 2; f < 42; ++f) t->set_value(f, format_one_decimal((l * 3 + f) % 11));
            t->Update();
        }
    }
    auto marks = DbfTable::open(path);
    for (auto _ : state) {
        QtPrintSurface surface(dir.filePath("book.pdf"));
        PrintJob job;
        ReportRun r{surface, job, run, [](PrintJob& j) { j.print_chosen = true; }};
        print_mark_book(r, setup, *marks, "10 WISK 10A");
        benchmark::DoNotOptimize(surface.Page());
    }
}
BENCHMARK(BM_PrintMarkBookToPdf)->Arg(2000)->Unit(benchmark::kMillisecond)->Repetitions(3)->ReportAggregatesOnly(true);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
