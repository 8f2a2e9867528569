#pragma once
// The column model of a mark book: 40 rows of five text fields (task name,
// total, target row, out of, cycle name), stored as `setup_<key>.txt` with
// one quoted value a line, 200 values.

#include <QByteArray>
#include <QString>
#include <array>

namespace veldo {

struct SetupRow {
    QString name;
    QString total;
    QString target;
    QString out_of;
    QString cycle;

    bool is_used() const { return !name.trimmed().isEmpty(); }
};

constexpr int kSetupRows = 40;
constexpr int kSetupValues = kSetupRows * 5;

struct MarkBookSetup {
    std::array<SetupRow, kSetupRows> rows;  // rows[0] is row 1

    // A row is a total when some row names it as its target.
    bool is_total_row(int row_number) const;
    // No row has a name.
    bool is_empty() const;

    // The 200 values, each between quotes with CR LF.
    QByteArray to_file_bytes() const;
    // Reads up to 200 values; a short file leaves the rest blank.
    static MarkBookSetup from_file_bytes(const QByteArray& bytes);
};

// The example book over rows 1 to 21; cells the example leaves alone stay.
void apply_example_book(MarkBookSetup& setup, bool afrikaans);

}  // namespace veldo
