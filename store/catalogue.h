#pragma once
// The family's record tables by code: file, record length, the dBASE table
// an older data folder holds in its place, the once-only layout migrations
// and the step that runs when a table has been opened.

#include <QList>
#include <QString>
#include <QStringList>

namespace veldo {

enum class AfterOpen {
    None,
    ReadRecord1,          // single-record tables: read record 1 when there is one
    ReadOrCreateRecord1,  // ... and write an empty record 1 when there is none
    CleanAbove2000,       // a runaway log: emptied, "?" shown, the opener starts again
    DeriveFromPi1,        // empty file: filled by the family's report set-up program
    NoCount,              // the count is not kept
    StandardSymbols,      // too few symbol rows: the standard set is added
    CreateAndRepair,      // created when absent; repaired by its owner program
    StandardRows,         // empty file: standard rows of its owner program
    BuiltWhenAbsent,      // built by the owner program's converter
    LayoutCheck,          // layout checked by the owner program after opening
    RebuildWhenOdd,       // count 0, or 11 and more: deleted and made anew
    MergeSecondFile,      // gedrag2_random.txt, same length, merged in
    BuildWhenEmpty,       // empty file: built by the owner program
};

struct MigrationStep {
    QString marker;
    bool only_before_2017 = false;
};

struct CatalogueEntry {
    QString code;
    QString file;
    int record_length = 0;  // the length of the table's record buffer
    QString source;         // dBASE table that is converted when the file is absent
    QList<MigrationStep> migrations;
    AfterOpen after_open = AfterOpen::None;
    // The six single-record blocks from SKL on: never remembered as open.
    bool single_record_block = false;
};

const QList<CatalogueEntry>& table_catalogue();
const CatalogueEntry* catalogue_entry(const QString& code);

// The name under which a migration keeps the old file:
// "skl_add_random.txt" -> "skl_add_prv_random.txt".
QString previous_layout_name(const QString& file);

}  // namespace veldo
