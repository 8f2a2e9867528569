// Opening and recalculating a mark book of 40 columns, and the symbol
// distribution of a large book. Goals on the project machine (median):
// open + recalculation under 20 ms for 40 learners and under 300 ms for
// 2,000; memory under 64 MB (the peak_rss_mb counter).
#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <sys/resource.h>

#include "exchange/symbol_distribution.h"
#include "markbook/marks_table.h"
#include "markbook/setup_file.h"
#include "markbook/totals_engine.h"
#include "store/record_store.h"
#include "store/table_layouts.h"
#include "util/legacy_number.h"

namespace {

using namespace veldo;

const QStringList kRow{"10 ", "WISK ", "100", "10A", "   ", "   ", "1", "", ""};

// 36 tasks of 10 in six groups, three subtotals of two groups each, a total.
MarkBookSetup forty_columns() {
    MarkBookSetup s;
    for (int r = 1; r <= 36; ++r)
        s.rows[r - 1] = {QString("TAAK %1").arg(r), "10", QString::number(37 + (r - 1) / 12), "", ""};
    for (int r = 37; r <= 39; ++r) s.rows[r - 1] = {QString("SUBTOTAAL %1").arg(r - 36), "120", "40", "100", ""};
    s.rows[39] = {"TOTAAL", "300", "", "300", ""};
    return s;
}

struct Book {
    QTemporaryDir dir;
    SilentDialogs dialogs;
    RunState run;
    std::unique_ptr<RecordStore> store;
    QString pristine;

    explicit Book(int learners) {
        run.dialogs = &dialogs;
        run.drive_root = dir.path();
        run.data_folder = dir.filePath("data");
        run.start_folder = dir.filePath("program");
        QDir().mkpath(run.data_folder);
        QDir().mkpath(run.start_folder);
        DbfTable::create(run.start_folder + "/mrk_book.org", mark_book_fields());
        write_setup_file(run.data_folder + "/" + setup_file_name("10 WISK_10A"), forty_columns());
        pristine = dir.filePath("pristine.dbf");
        DbfTable::create(pristine, mark_book_fields());
        auto t = DbfTable::open(pristine);
        for (int l = 0; l < learners; ++l) {
            t->AddNew();
            t->set_value(0, double(learners - l));
            t->set_value(1, QString("Leerder %1").arg(learners - l, 5, 10, QChar('0')));
            for (int f = 2; f < 38; ++f) {
                const int mark = (l * 7 + f * 3) % 11;
                t->set_value(f, mark == 10 && f % 5 == 0 ? QString("A") : format_one_decimal(mark));
            }
            t->Update();
        }
        t->Close();
        store = std::make_unique<RecordStore>(run);
    }
    void reset() {
        const QString live = run.data_folder + "/marks1.dbf";
        QFile::remove(live);
        QFile::copy(pristine, live);
    }
};

void set_memory_counter(benchmark::State& state) {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak_rss_mb"] = double(usage.ru_maxrss) / 1024.0;
}

void BM_OpenAndRecalculate(benchmark::State& state) {
    Book book(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        book.reset();
        state.ResumeTiming();
        auto opened = open_mark_book(*book.store, kRow, 1);
        if (!opened) state.SkipWithError("book did not open");
        recalculate_totals(*opened->table, opened->lists);
        benchmark::DoNotOptimize(class_averages(*opened->table, opened->lists));
    }
    set_memory_counter(state);
}
BENCHMARK(BM_OpenAndRecalculate)->Arg(40)->Arg(2000)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_SymbolDistribution(benchmark::State& state) {
    Book book(int(state.range(0)));
    book.reset();
    DbfTable::create(book.run.data_folder + "/pi2_dta.dbf", symbol_table_fields());
    {
        auto s = DbfTable::open(book.run.data_folder + "/pi2_dta.dbf");
        for (int level = 1; level <= 7; ++level) {
            s->AddNew();
            s->set_value(0, QString::number(level));
            s->set_value(1, level == 7 ? 100.0 : 19.9 + 10 * level);
            s->set_value(2, level == 1 ? 0.0 : 10.0 + 10 * level);
            s->Update();
        }
    }
    for (auto _ : state) {
        TextGrid grid;
        if (!build_symbol_distribution(*book.store, kRow, 1, grid)) state.SkipWithError("no distribution");
        benchmark::DoNotOptimize(grid.rows());
    }
    set_memory_counter(state);
}
BENCHMARK(BM_SymbolDistribution)->Arg(2000)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace

BENCHMARK_MAIN();
