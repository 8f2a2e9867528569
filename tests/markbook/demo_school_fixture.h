#pragma once
// The demo school in a data folder "school" on a temporary drive, with a
// shell round it and prints going to numbered PDF files; its tables are
// read and changed by admission number.

#include <QDir>
#include <utility>

#include "shell/demo_school.h"
#include "store/dbf_table.h"
#include "tests/support/mark_book_fixture.h"
#include "tests/support/pdf_printer.h"
#include "tests/support/shell_fixture.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"

namespace veldo::testing {

struct DemoSchool : ShellFixture {
    PdfPrinter printer{run, dir.path()};

    DemoSchool() {
        run.data_folder = path("school");
        EXPECT_TRUE(write_demo_school(run, run.data_folder).ok);
    }
    // A table of the data folder, whatever the case of its name.
    QString table(const QString& name) const { return find_ignoring_case(run.data_folder, name); }
    // Every record of a table, each field right-trimmed.
    QList<QStringList> records(const QString& name) const {
        QList<QStringList> out;
        auto t = DbfTable::open(table(name));
        for (int r = 0; r < t->RecordCount(); ++r) out << stored_row(*t, r);
        return out;
    }
    // The record of learner `number`; empty when there is none.
    QStringList learner(const QString& name, int number) const {
        for (const QStringList& r : records(name))
            if (Val(r[0]) == number) return r;
        return {};
    }
    // Field `field` of the learners named, in the order named.
    QStringList fields(const QString& name, const QList<int>& numbers, int field = 2) const {
        QStringList out;
        for (int n : numbers) out << learner(name, n).value(field, "(none)");
        return out;
    }
    // Writes `value` into field `field` of each learner named.
    void set_fields(const QString& name, const QList<std::pair<int, QString>>& values, int field = 2) {
        auto t = DbfTable::open(table(name));
        for (t->MoveFirst(); !t->Eof(); t->MoveNext())
            for (const auto& [number, value] : values)
                if (Val(t->value(0).toString()) == number) {
                    t->Edit();
                    t->set_value(field, value);
                    t->Update();
                }
    }
    QString shown(const QString& file) const { return QDir::toNativeSeparators(file); }
    // A session written down a step at a time, for a golden file: the step,
    // the messages, prompts, beeps and screens it brought, then the lines the
    // test adds; dialogs and screens start afresh for the next step.
    QString session;
    void step(const QString& name, const QStringList& state = {}) {
        static const char* icons[] = {"None", "Critical", "Question", "Exclamation", "Information"};
        static const char* buttons[] = {"Ok", "OkCancel", "YesNo", "YesNoCancel", "AbortRetryIgnore"};
        QStringList lines{"== " + name};
        for (const ShownMessage& m : dialogs.messages)
            lines << QString("message %1 %2: %3").arg(icons[int(m.icon)], buttons[int(m.buttons)], m.text);
        for (const QString& p : dialogs.prompts) lines << "prompt: " + p;
        if (dialogs.beeps) lines << QString("beeps: %1").arg(dialogs.beeps);
        const std::pair<const char*, QStringList*> shown_screens[] = {
            {"shown", &screens.shown}, {"modal", &screens.modal}, {"unloaded", &screens.unloaded}};
        for (const auto& [what, list] : shown_screens)
            if (!list->isEmpty()) lines << QString(what) + ": " + list->join('|');
        lines += state;
        for (QString& line : lines) session += line.replace("\r", "\\r").replace("\n", "\\n") + '\n';
        dialogs.messages.clear();
        dialogs.prompts.clear();
        dialogs.beeps = 0;
        for (const auto& [what, list] : shown_screens) list->clear();
    }
    // The grid row of learner `number` on an input screen; -1 when not there.
    template <class Input>
    static int row_of(Input& input, int number) {
        for (int r = 0; r < input.learner_count(); ++r)
            if (Val(input.cell(r, 0)) == number) return r;
        return -1;
    }
};

}  // namespace veldo::testing
