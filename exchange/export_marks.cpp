#include "exchange/export_marks.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "markbook/marks_table.h"
#include "markbook/setup_file.h"
#include "store/dbf_table.h"
#include "store/dbf_open.h"
#include "store/record_store.h"
#include "store/series.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/safe_file.h"
#include "util/text_helpers.h"

namespace veldo {

QString convert_export_mark(const QString& mark, double task_total, double series_total) {
    const QString trimmed = mark.trimmed();
    if (series_total == 0 || trimmed.isEmpty() || trimmed.toUpper() == "A") return mark;
    return plain_number_text(Round(Val(mark) / task_total * series_total, 1));
}

namespace {

MsgAnswer say(RunState& run, const QString& text, MsgIcon icon, MsgButtons buttons = MsgButtons::Ok) {
    return run.dialogs ? run.dialogs->message(text, icon, buttons) : MsgAnswer::Yes;
}

}  // namespace

bool export_task(RecordStore& store, const ExportRequest& request) {
    RunState& run = store.run();
    const QString source_folder = run.data_folder;
    const auto key = find_setup_key(source_folder, series_key(request.series_row), SetupSearch::Readers);
    // Without a setup file the task list stays empty and no task can be chosen.
    if (request.task <= 0 || request.task > kSetupRows || !key) {
        say(run, run.tr("GEEN PUNTEREEKS GESKIES NIE ... DUBBELKLIK OP REEKS OM UIT TE VOER !",
                        "NO MARK SERIES SELECTED ... DOUBLE CLICK ON SERIES TO EXPORT  !"),
            MsgIcon::Exclamation);
        return false;
    }
    const QString series_key_text = *key;
    const MarkBookSetup setup =
        read_setup_file(QDir(source_folder).filePath(setup_file_name(*key))).value_or(MarkBookSetup());
    const SetupRow& task = setup.rows[request.task - 1];
    const double series_total = Val(request.series_row.value(2));
    const double task_total = Val(task.total);

    if (request.folder.isEmpty()) return false;
    run.data_folder = request.folder;

    const QString question = run.tr("WIL U DEFNITIEF \"" + task.name.trimmed() + "\" UITVOER ?",
                                    "DO YOU WISH TO EXPORT \"" + task.name.trimmed() + "\" ?");
    if (say(run, question, MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes) return false;

    const QString folder = run.data_folder;
    DbfError error;
    auto fail = [&](const DbfError& e) {
        say(run, dbf_error_message(e, run.language_afrikaans), MsgIcon::Critical);
        return false;
    };
    auto marks = open_table_to_write(run, path_ignoring_case(folder, marks_table_name(request.series)), &error);
    if (!marks) return fail(error);
    auto punte = open_table_to_write(run, path_ignoring_case(folder, class_list_table_name(request.series)), &error);
    if (!punte) return fail(error);
    auto obe = open_table_to_write(run, path_ignoring_case(folder, assessment_table_name(request.series)), &error);
    if (!obe) return fail(error);
    if (obe->field_index("EO_PUNT") < 0) return fail({DbfError::NoSuchField, obe->path(), "EO_PUNT"});
    const int mark_field = request.task + 1;
    if (mark_field >= marks->field_count()) return fail({DbfError::NoSuchField, marks->path(), QString()});

    // A task out of 0 can't be converted: refuse before anything is written.
    if (series_total != 0 && task_total == 0) {
        for (marks->MoveFirst(); !marks->Eof(); marks->MoveNext()) {
            const QString m = toets_null_text(marks->value(mark_field)).trimmed();
            if (!m.isEmpty() && m.toUpper() != "A") {
                say(run, run.tr("Die totaal van \"" + task.name.trimmed() + "\" is 0: die punte kan nie omgereken word nie.",
                                "The total of \"" + task.name.trimmed() + "\" is 0: its marks can't be converted."),
                    MsgIcon::Critical);
                return false;
            }
        }
    }

    // The rows go to both tables in memory and to the disk in one write each.
    if (!punte->begin_batch()) return fail(punte->last_error());
    if (!obe->begin_batch()) return fail(obe->last_error());
    const int records = marks->RecordCount();
    auto progress = [&](int value) {
        if (request.progress) request.progress(value, records);
    };
    progress(0);
    int done = 0;
    for (marks->MoveFirst(); !marks->Eof(); marks->MoveNext()) {
        progress(std::min(++done, records));
        const QVariant number = marks->value(0);
        const QVariant name = marks->value(1);
        const QString mark = toets_null_text(marks->value(mark_field));
        const QString converted = convert_export_mark(mark, task_total, series_total);
        const QVariant value = converted.isEmpty() ? QVariant() : QVariant(converted);

        punte->AddNew();
        punte->set_value(0, plain_text(number));
        punte->set_value(1, name);
        punte->set_value(2, value);
        if (!punte->Update(&error)) return fail(error);
        obe->AddNew();
        obe->set_value(0, number);
        obe->set_value(1, name);
        obe->set_value("EO_PUNT", value);
        if (!obe->Update(&error)) return fail(error);
    }
    progress(-1);
    if (!punte->commit_batch(&error) || !obe->commit_batch(&error)) return fail(error);
    punte->Close();
    obe->Close();
    marks->Close();

    // A copy of the mark book goes to the root of the current drive.
    const QString from = QDir(folder).filePath(QFileInfo(path_ignoring_case(folder, marks_table_name(request.series))).fileName());
    const QString to = run.in_folder(QString(), marks_table_name(request.series));
    if (QFileInfo(to).absoluteFilePath() != QFileInfo(from).absoluteFilePath()) copy_file_atomic(from, to);

    say(run, run.tr("Punte vir " + series_key_text + " suksesvol uitgevoer ...",
                    "Marks for " + series_key_text + " exported sucessfully ..."),
        MsgIcon::Exclamation);
    return true;
}

}  // namespace veldo
