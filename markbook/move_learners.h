#pragma once
// skuif_leerders: a learner who changes class or post group takes the marks
// already entered along. Two groups are asked for, then each click on a
// learner of the from group moves the learner's marks row and class-list
// row to the other group.

#include <QString>
#include <QStringList>

namespace veldo {

class RecordStore;
class UserDialogs;

// groep_lys: one entry per record of `E_C` that has a group (its first
// group code, else its second), in file order. The mark series of a group
// is its position in the list plus 1.
QStringList learner_groups(RecordStore& store);

class MoveLearners {
public:
    MoveLearners(RecordStore& store, UserDialogs& dialogs);

    // The two input boxes, asked again after every refusal (beep and
    // message). False when either box was left blank.
    bool choose_groups();
    // Both groups given in one go, as the command line does: the same
    // tests, false (beep and message) on the first refusal.
    bool set_groups(const QString& from, const QString& to);
    QString from_group() const { return from_; }
    QString to_group() const { return to_; }
    int from_series() const { return from_series_; }
    int to_series() const { return to_series_; }

    // ppl_skuif_lys: "<T.NR> <name>" for each row of the from group's marks
    // table, in its order.
    const QStringList& learners() const { return learners_; }
    // A click on learner `position` of the list: the question, the two
    // existence tests, then the move of both rows (the class-list row found
    // by the learner's number). The learner is added to the other group
    // before being taken from this one, so a failure leaves the learner in
    // one group or both, never in neither. True when moved.
    bool move_learner(int position);

private:
    bool check(const QString& from, const QString& to);
    void fill_learners();

    RecordStore& store_;
    UserDialogs& dialogs_;
    QStringList groups_;
    QString from_, to_;
    int from_series_ = 0, to_series_ = 0;
    QStringList learners_;
};

}  // namespace veldo
