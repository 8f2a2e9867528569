#pragma once
// Copying a mark book setup to other subject combinations: only the setup
// file goes over; no marks table is made or touched.

#include <QList>
#include <QString>
#include <QStringList>

namespace veldo {

struct RunState;

// kopieer_vaklys: grade, subject and the three group fields of each series
// record, joined by blanks.
QStringList copy_list_items(const QList<QStringList>& series_rows);

// copy_ok: the source's setup under the first of its three key forms that
// exists (else "... BESTAAN NIE ..." and false); then for each destination
// in order the question, and at Yes the file copied over the shortest form
// of the destination's key. `destinations` holds positions in `series_rows`;
// the source's own position is passed over. Gives the number copied, -1
// when the source has no setup.
int copy_setups(RunState& run, const QList<QStringList>& series_rows, int source, const QList<int>& destinations);

// The two lists' click rule: a click on `position` of the from list clears
// that position in the destinations.
QList<int> without_source(const QList<int>& destinations, int source);

}  // namespace veldo
