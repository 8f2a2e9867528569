#include "markbook/marks_table.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

#include "markbook/setup_file.h"
#include "markbook/workbook_reader.h"
#include "store/dbf_open.h"
#include "store/record_store.h"
#include "store/series.h"
#include "store/table_layouts.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/text_grid.h"
#include "util/text_helpers.h"

namespace veldo {

QString marks_table_name(int series) { return QString("marks%1.dbf").arg(series); }

QString find_group_table(const QString& folder, const QString& stem, int series) {
    const QString text_name = find_ignoring_case(folder, QString("%1%2.txt").arg(stem).arg(series));
    return text_name.isEmpty() ? find_ignoring_case(folder, QString("%1%2.dbf").arg(stem).arg(series)) : text_name;
}
QString class_list_table_name(int series) { return QString("punte%1.dbf").arg(series); }
QString assessment_table_name(int series) { return QString("obe_p%1.dbf").arg(series); }

QString no_mark_book_message(const RunState& run) {
    return run.tr("3 Sien 'PUNTEBOEK OPSTEL' om punteboek te skep", "3 See 'MARK BOOK SETUP' to create mark book");
}

QString old_export_message(const RunState& run) {
    return run.tr("Laai die nuutste kopie van VELDO-CLERK en herskep die \r\nuitvoerskyf om vir 40 reekse voorsiening te maak ...",
                  "Load the latest copy of VELDO-CLERK and recreate the \r\nexport disk to allow for 40 mark sets ...");
}

QString no_setup_message(const RunState& run, int digit) {
    return run.tr(QString::number(digit) + " Geen reekse opgestel nie ... sien 'PUNTEBOEK OPSTEL'",
                  QString::number(digit) + " No ranges available ... see 'MARK BOOK SETUP'");
}

namespace {

void show(RunState& run, const QString& text, MsgIcon icon = MsgIcon::Exclamation) {
    if (run.dialogs) run.dialogs->message(text, icon);
}

// A field's value as the list boxes hold it: its text.
QString field_text(const DbfTable& t, int f) { return plain_text(t.value(f)).trimmed(); }

std::unique_ptr<DbfTable> open_or_say(RunState& run, const QString& path) {
    DbfError error;
    auto table = open_table_to_write(run, path, &error);
    if (!table) show(run, dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
    return table;
}

// The sorted list box of the update: learner numbers as text, each with its
// item data.
struct NumberList {
    std::map<QString, int> items;  // ordered as the sorted list shows them
    static QString key(const QString& text) { return text.trimmed().toUpper(); }
    bool contains(const QString& text) const { return items.count(key(text)) != 0; }
    void add(const QString& text, int data) { items.emplace(key(text), data); }
};

// The template's bytes as the new table's start. Read and written here
// rather than by QFile::copy, whose temporary file, rename and change of
// permissions cost more than the header itself. The new table takes the
// folder's usual permissions: a template installed read-only still gives a
// table the teacher can write.
bool start_from_template(const QString& tmpl, const QString& fresh) {
    QFile in(tmpl);
    if (!in.open(QIODevice::ReadOnly)) return false;
    const QByteArray bytes = in.readAll();
    if (in.error() != QFileDevice::NoError) return false;
    QFile out(fresh);
    return out.open(QIODevice::WriteOnly | QIODevice::Truncate) && out.write(bytes) == bytes.size() && out.flush();
}

// A whole-number field (no decimals) of blanks then digits, the first not
// a nought: its value written back through its text gives these same bytes,
// so the copied record needs nothing more for it. A learner's number is
// always such a field.
bool written_as_stored(const char* p, int width) {
    int i = 0;
    while (i < width && p[i] == ' ') ++i;
    if (i == width || p[i] == '0') return false;
    for (; i < width; ++i)
        if (p[i] < '0' || p[i] > '9') return false;
    return true;
}

}  // namespace

bool update_marks_table(RecordStore& store, int series) {
    RunState& run = store.run();
    const QString folder = run.data_folder;
    const QString marks_path = path_ignoring_case(folder, marks_table_name(series));
    const QString tmpl = find_ignoring_case(run.start_folder, "mrk_book.org");
    if (!tmpl.isEmpty() && !QFileInfo::exists(marks_path)) copy_template_over(tmpl, marks_path);

    auto pnt = open_or_say(run, path_ignoring_case(folder, class_list_table_name(series)));
    if (!pnt) return false;
    auto marks = open_or_say(run, marks_path);
    if (!marks) return false;

    // Both tables are taken, worked in memory and written once each at the end.
    if (!pnt->begin_batch() || !marks->begin_batch()) {
        const DbfError& error = pnt->last_error().code != DbfError::None ? pnt->last_error() : marks->last_error();
        show(run, dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
        return false;
    }

    // Later records of a learner number are neutralised in the class list.
    NumberList t_nr_data;
    for (pnt->MoveFirst(); !pnt->Eof(); pnt->MoveNext()) {
        const QString number = field_text(*pnt, 0);
        if (!t_nr_data.contains(number)) {
            t_nr_data.add(number, 0);
        } else {
            pnt->Edit();
            pnt->set_value(0, "0");
            pnt->Update();
        }
    }

    // A learner's second row in the mark book is emptied.
    t_nr_data = NumberList();
    int position = 0;
    for (marks->MoveFirst(); !marks->Eof(); marks->MoveNext(), ++position) {
        const QVariant number = marks->value(0);
        if (Val(plain_text(number)) <= 0) continue;
        const QString text = field_text(*marks, 0);
        if (!t_nr_data.contains(text)) {
            t_nr_data.add(text, position);
        } else {
            marks->Edit();
            marks->set_value(0, 0);
            marks->set_value(1, QString());
            marks->Update();
        }
    }

    // New learners are added; the ones still there are marked.
    for (pnt->MoveFirst(); !pnt->Eof(); pnt->MoveNext()) {
        const QString number = field_text(*pnt, 0);
        auto it = t_nr_data.items.find(NumberList::key(number));
        if (it == t_nr_data.items.end()) {
            marks->AddNew();
            marks->set_value(0, Val(number));
            marks->set_value(1, toets_null(pnt->value(1)));
            marks->Update();
        } else {
            it->second = 99999;
        }
    }

    // Learners no longer in the class list are deleted, found by their
    // number; every other row keeps its marks.
    QSet<QString> departed;
    for (const auto& [number, stored] : t_nr_data.items)
        if (stored < 99999) departed.insert(number);
    for (marks->MoveFirst(); !departed.isEmpty() && !marks->Eof(); marks->MoveNext()) {
        if (Val(plain_text(marks->value(0))) <= 0) continue;
        if (departed.remove(NumberList::key(field_text(*marks, 0)))) marks->Delete();
    }
    DbfError error;
    const bool written = pnt->commit_batch(&error) && marks->commit_batch(&error);
    if (!written) show(run, dbf_error_message(error, run.language_afrikaans), MsgIcon::Critical);
    pnt->Close();
    marks->Close();
    return written;
}

namespace {

// Whether a row holds a learner: its number reads as more than nought. A
// number field's value is that number, except at the far ends, where its
// text decides as it always did.
bool holds_learner(const QVariant& number) {
    if (number.typeId() == QMetaType::Double) {
        const double n = number.toDouble();
        if (std::isfinite(n) && (n <= 0 || n >= 1e-300)) return n > 0;
    }
    return Val(plain_text(number)) > 0;
}

// The rebuild of an open table; the new table's handle, open at the path,
// or none when the old table stays as it was.
std::unique_ptr<DbfTable> rebuild_open_table(RunState& run, const QString& path, std::unique_ptr<DbfTable> old,
                                             QString* error) {
    const QString tmpl = find_ignoring_case(run.start_folder, "mrk_book.org");
    if (tmpl.isEmpty()) {
        if (error) *error = "template missing";
        return nullptr;
    }
    // The rebuild holds the whole table until the new one stands in its place.
    if (!old || !old->begin_batch()) return nullptr;
    // Rows of learners only; the sort needs no more than each row's place
    // and its name, and puts them in the order a grid of every field would.
    std::vector<int> places;
    places.reserve(std::size_t(old->RecordCount()));
    // A character field's names are taken as their stored bytes, held in the
    // table while it is rebuilt.
    const bool name_bytes = old->field_count() > 1 && old->field(1).type == DbfType::Character;
    std::vector<QLatin1StringView> name_views;
    std::vector<QString> names;
    int place = 0;
    for (old->MoveFirst(); !old->Eof(); old->MoveNext(), ++place) {
        if (!holds_learner(old->value(0))) continue;
        places.push_back(place);
        if (name_bytes) {
            const char* p = old->record_bytes().data() + old->field_offset(1);
            name_views.emplace_back(p, std::max(stored_text_length(p, old->field(1).width, true), 0));
        } else {
            const QVariant name = old->value(1);
            names.push_back(name.typeId() == QMetaType::QString ? name.toString() : plain_text(name));
        }
    }
    const std::vector<int> order = name_bytes ? sorted_order(name_views, GridSort::GenericAscending)
                                              : sorted_order(names, GridSort::GenericAscending);

    // The new table is filled beside the old one and then takes its place.
    const QString fresh = QFileInfo(path).dir().filePath("." + QFileInfo(path).fileName() + ".rebuild");
    QFile::remove(fresh);
    if (!start_from_template(tmpl, fresh)) {
        if (error) *error = "copy failed";
        return nullptr;
    }
    auto table = DbfTable::open(fresh);
    if (!table) {
        QFile::remove(fresh);
        return nullptr;
    }
    {
        if (!table->begin_batch()) {
            table->Close();
            QFile::remove(fresh);
            return nullptr;
        }
        const int fields = std::min(table->field_count(), old->field_count());
        // With the template's own layout a record is copied as it stands,
        // and only the fields whose text would not come back byte for byte
        // (numbers, dates, text with a NUL) are written through their value.
        bool same_layout = table->field_count() == old->field_count() && table->record_length() == old->record_length();
        for (int f = 0; same_layout && f < fields; ++f)
            same_layout = table->field(f).type == old->field(f).type && table->field(f).width == old->field(f).width &&
                          table->field(f).decimals == old->field(f).decimals;
        std::vector<bool> is_char(std::size_t(fields), false), is_whole(std::size_t(fields), false);
        for (int f = 0; f < fields; ++f) {
            const DbfField& field = old->field(f);
            is_char[std::size_t(f)] = field.type == DbfType::Character;
            is_whole[std::size_t(f)] = field.type == DbfType::Numeric && field.decimals == 0 && field.width <= 15;
        }
        for (int r : order) {
            old->MoveFirst();
            old->Move(places[std::size_t(r)]);
            table->AddNew();
            const QByteArrayView record = old->record_bytes();
            if (same_layout) table->set_record_bytes(record);
            // Most records hold no NUL at all: then no character field needs
            // a look of its own.
            const bool any_nul = same_layout && record.contains('\0');
            for (int f = 0; f < fields; ++f) {
                if (same_layout && is_char[std::size_t(f)] &&
                    (!any_nul ||
                     !QByteArrayView(record.data() + old->field_offset(f), old->field(f).width).contains('\0')))
                    continue;
                if (same_layout && is_whole[std::size_t(f)] &&
                    written_as_stored(record.data() + old->field_offset(f), old->field(f).width))
                    continue;
                QString text = plain_text(old->value(f));
                while (text.endsWith(' ')) text.chop(1);
                table->set_value(f, text.isEmpty() ? QVariant() : QVariant(text));
            }
            if (!table->Update()) {
                table->Close();
                QFile::remove(fresh);
                return nullptr;
            }
        }
        if (!table->commit_batch()) {
            table->Close();
            QFile::remove(fresh);
            return nullptr;
        }
    }
    // The new table takes the old one's place before the old one is let go:
    // a workstation waiting for it then finds it replaced.
    const bool placed = table->rename_to(path);
    if (!placed) {
        table->Close();
        QFile::remove(fresh);
    }
    old->Close();
    return placed ? std::move(table) : nullptr;
}

}  // namespace

bool rebuild_marks_table(RunState& run, const QString& path, QString* error) {
    return rebuild_open_table(run, path, open_table_to_write(run, path), error) != nullptr;
}

std::unique_ptr<OpenMarkBook> open_mark_book(RecordStore& store, const QStringList& row, int series) {
    RunState& run = store.run();
    const QString folder = run.data_folder;
    const QString path = find_ignoring_case(folder, marks_table_name(series));
    if (path.isEmpty()) {
        show(run, no_mark_book_message(run));
        return nullptr;
    }
    std::unique_ptr<DbfTable> checked;
    {
        auto table = open_or_say(run, path);
        if (!table) return nullptr;
        if (table->field_count() < kMarkBookFieldCount) {
            show(run, old_export_message(run));
            return nullptr;
        }
        if (table->RecordCount() == 0) {
            // A new book takes its learners from a workbook the teacher left
            // in the data folder: <subject>_<group>.
            QString group = row.value(3).trimmed();
            if (group.isEmpty()) group = row.value(5).trimmed();
            const QString workbook = find_first_fill_workbook(folder, row.value(1).trimmed() + "_" + group);
            if (!workbook.isEmpty()) {
                SheetReadError read_error;
                const auto sheet = read_first_sheet(workbook, &read_error);
                if (!sheet) {
                    show(run, sheet_error_message(read_error, run.language_afrikaans), MsgIcon::Critical);
                    return nullptr;
                }
                for (const ClassListEntry& learner : class_list_from_sheet(*sheet)) {
                    table->AddNew();
                    table->set_value(0, learner.number);
                    table->set_value(1, learner.name);
                    table->Update();
                }
                table->Refresh();
            }
            if (table->RecordCount() == 0) return nullptr;
        }
        checked = std::move(table);
    }
    auto book = std::make_unique<OpenMarkBook>();
    book->series = series;
    // The rebuilt table stays open for the book; a table that could not be
    // rebuilt is opened as it stands.
    book->table = rebuild_open_table(run, path, std::move(checked), nullptr);
    if (!book->table) book->table = open_or_say(run, path);
    if (!book->table) return nullptr;
    const auto key = find_setup_key(folder, series_key(row), SetupSearch::Readers);
    if (!key) {
        show(run, no_setup_message(run, 1));
        return nullptr;
    }
    book->key = *key;
    book->setup = read_setup_file(QDir(folder).filePath(setup_file_name(*key))).value_or(MarkBookSetup());
    if (book->setup.is_empty()) {
        show(run, no_setup_message(run, 2));
        return nullptr;
    }
    book->lists = ColumnLists::from_setup(book->setup);
    return book;
}

}  // namespace veldo
