#include "markbook/setup_copy.h"

#include <QDir>

#include "markbook/setup_file.h"
#include "store/run_state.h"
#include "store/series.h"
#include "util/safe_file.h"
#include "util/user_dialogs.h"

namespace veldo {

QStringList copy_list_items(const QList<QStringList>& series_rows) {
    QStringList items;
    for (const QStringList& row : series_rows)
        items << QStringList{row.value(0).trimmed(), row.value(1).trimmed(), row.value(3).trimmed(),
                             row.value(4).trimmed(), row.value(5).trimmed()}
                     .join(' ');
    return items;
}

QList<int> without_source(const QList<int>& destinations, int source) {
    QList<int> kept = destinations;
    kept.removeAll(source);
    return kept;
}

int copy_setups(RunState& run, const QList<QStringList>& series_rows, int source, const QList<int>& destinations) {
    if (source < 0 || source >= series_rows.size()) return 0;
    const QStringList items = copy_list_items(series_rows);
    const QString folder = run.data_folder;
    const auto key = find_setup_key(folder, series_key(series_rows[source]), SetupSearch::Readers);
    if (!key) {
        if (run.dialogs)
            run.dialogs->message(run.tr("PUNTEBOEK OPSTELLING VIR " + items[source] + " BESTAAN NIE ...",
                                        "MARK BOOK SETUP FOR " + items[source] + " DOES NOT EXIST ..."),
                                 MsgIcon::Exclamation);
        return -1;
    }
    const QString from = QDir(folder).filePath(setup_file_name(*key));
    int copied = 0;
    for (int d : destinations) {
        if (d < 0 || d >= series_rows.size() || d == source) continue;
        // A copy lands under the shortest form of the destination's key.
        QString to_key = series_key(series_rows[d]);
        to_key.remove('_');
        to_key.remove(' ');
        const QString question = run.tr("WIL U DEFNITIEF PUNTEBOEK OPSTELLING VIR \r\n" + items[source] + " KOPIEER NA " +
                                            items[d] + " ?",
                                        "DO YOU WISH TO COPY MARK BOOK SETUP FOR \r\n" + items[source] + " TO " + items[d] +
                                            " ?");
        if (!run.dialogs || run.dialogs->message(question, MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes)
            continue;
        QString error;
        if (!copy_file_atomic(from, QDir(folder).filePath(setup_file_name(to_key)), &error)) {
            run.dialogs->message(error, MsgIcon::Critical);
            continue;
        }
        ++copied;
    }
    return copied;
}

}  // namespace veldo
