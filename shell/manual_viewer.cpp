#include "shell/manual_viewer.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include "store/run_state.h"
#include "util/quoted_values.h"
#include "util/safe_file.h"
#include "util/text_helpers.h"
#include "util/user_dialogs.h"

namespace veldo {
namespace {

struct Manual {
    const char* caption_af;
    const char* caption_en;
    const char* file_af;
    const char* file_en;
};

// In list order; option N is row N - 1.
constexpr Manual kManuals[ManualViewer::kOptionCount] = {
    {"SKOOLBESONDERHEDE", "SCHOOL DETAILS", "skool_besonderhede", "school_details"},
    {"GESINSTELSEL (VELDO-KINDREDS)", "FAMILY SYSTEM (VELDO-KINDREDS)", "gesinne", "families"},
    {"ASSESSERINGSTANDAARDE", "ASSESSMENT STANDARDS", "assessering", "assessment"},
    {"SKOOLBYWONING", "ATTENDANCE", "bywoning", "attendance"},
    {"GEDRAGSTELSEL", "MERITS/DEMERITS", "gedrag", "code_conduct"},
    {"BUITEMUURSE INLIGTING", "EXTRA-MURAL INFORMATION", "buitemuurs", "extra_mural"},
    {"VOORRAADSTELSEL (VELDO-SHELF)", "STOCK SYSTEM (VELDO-SHELF)", "voorraad", "stock"},
    {"PERSONEELSTELSEL (VELDO-CREWS)", "STAFF SYSTEM (VELDO-CREWS)", "personeel", "staff"},
    {"MEDIASTELSEL (VELDO-SCROL)", "MEDIA SYSTEM (VELDO-SCROL)", "media_afr", "media_eng"},
    {"KYKSTELSEL (VELDO-VIEWER)", "BROWSE SYSTEM (VELDO-VIEWER)", "browse_afr", "browse_eng"},
    {"RUGSTEUNSTELSEL (VELDO-VAULTS)", "BACKUP SYSTEM (VELDO-VAULTS)", "backup_afr", "backup_eng"},
    {"PUNTE/PUNTEBOEKE (VELDO-TALLY)", "MARKS/MARK BOOKS (VELDO-TALLY)", "m_marks_afr", "m_marks_eng"},
    {"LEERDERS - ADMINISTRATIEF", "LEARNERS - ADMINISTRATIVE", "leerder_adm", "learner_adm"},
    {"LEERDERS - AKADEMIES", "LEARNERS - ACADEMIC", "leerder_akd", "learner_acd"},
    {"ANA REGISTRASIES EN PUNTE", "ANA REGISTRATIONS AND MARKS", "ana inskrywings", "ana registrations"},
};

bool valid_index(int index) { return index >= 1 && index <= ManualViewer::kOptionCount; }

// A name with a drive stands for a full path; here that is an absolute path,
// or a name that still carries a drive letter from another machine.
bool has_drive(const QString& name) {
    static const QRegularExpression drive_letter(QStringLiteral("^[A-Za-z]:"));
    return QDir::isAbsolutePath(name) || drive_letter.match(name).hasMatch();
}

// Exists as a file; a folder is not a manual.
bool is_file(const QString& path) { return !path.isEmpty() && QFileInfo(path).isFile(); }

// The date as the quoted-values format writes a date value: between hashes,
// year first.
QByteArray stamp_bytes(const QDate& today) {
    const QString value = QLatin1Char('#') + today.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char('#');
    return write_quoted_lines({{QuotedValue::bare(value)}});
}

}  // namespace

ManualViewer::ManualViewer(ShellContext& context) : ctx_(context) {}

QString ManualViewer::caption_for(int index, bool afrikaans) {
    if (!valid_index(index)) return QString();
    const Manual& m = kManuals[index - 1];
    return QString::fromLatin1(afrikaans ? m.caption_af : m.caption_en);
}

QString ManualViewer::file_for(int index, bool afrikaans) {
    if (!valid_index(index)) return QString();
    const Manual& m = kManuals[index - 1];
    return QString::fromLatin1(afrikaans ? m.file_af : m.file_en);
}

QString ManualViewer::stamp_path_for(const QString& manual_path) {
    // Without ".pdf" the stamp would land on the manual itself (or on the
    // folder): no stamp then.
    if (!manual_path.contains(QLatin1String(".pdf"), Qt::CaseInsensitive)) return QString();
    QString stamp = manual_path;
    stamp.replace(QLatin1String(".pdf"), QLatin1String(".dte"), Qt::CaseInsensitive);
    return stamp;
}

QString ManualViewer::leaflets_folder() const {
    return ctx_.run.root_folder + QStringLiteral("/veldo-leaflets/");
}

QString ManualViewer::manual_path_for(const QString& name) const {
    if (has_drive(name)) return name;
    // A name that already holds the root folder is a path of its own.
    if (upper_afrikaans_text(name).contains(ctx_.run.root_folder)) return name;
    // The news sheets lie beside the program, not with the manuals.
    if (name.startsWith(QLatin1String("news")) || name.startsWith(QLatin1String("nuus")))
        return ctx_.run.program_folder + QLatin1Char('/') + name;
    return leaflets_folder() + name;
}

bool ManualViewer::option_on(int index) const { return valid_index(index) && options_[index - 1]; }

QString ManualViewer::caption(int index) const {
    return valid_index(index) ? captions_[index - 1] : QString();
}

void ManualViewer::clear_options() { options_.fill(false); }

bool ManualViewer::load() {
    clear_options();
    const QString name = ctx_.run.manual_file_name.trimmed();
    if (!name.isEmpty()) {
        open_manual(manual_path_for(name));
        ctx_.run.manual_file_name.clear();
        return false;
    }
    for (int i = 1; i <= kOptionCount; ++i)
        captions_[i - 1] = caption_for(i, ctx_.run.language_afrikaans);
    return true;
}

void ManualViewer::um_opsie_click(int index) {
    if (!valid_index(index)) return;
    clear_options();
    options_[index - 1] = true;
}

void ManualViewer::pdf_ok() {
    QString name;
    for (int i = 1; i <= kOptionCount; ++i) {
        if (options_[i - 1]) {
            name = file_for(i, ctx_.run.language_afrikaans) + QStringLiteral(".pdf");
            break;
        }
    }
    clear_options();
    // With nothing marked the path is the bare folder: nothing opens.
    open_manual(leaflets_folder() + name);
}

void ManualViewer::pdf_soek() {
    const QString chosen =
        ctx_.dialogs.choose_open_file(QString(), leaflets_folder(), QStringLiteral("*.pdf"));
    if (is_file(chosen)) ctx_.screens.open_document(chosen);
}

void ManualViewer::pdf_exit() { ctx_.screens.unload(screen::acrobat_interface); }

void ManualViewer::open_manual(const QString& path) {
    // Manuals come in several spellings from the family's installers; any of
    // them will do, but the viewer gets the path as it was asked for.
    if (is_file(path) || is_file(upper_afrikaans_text(path)) ||
        is_file(title_case_name(path).toString()))
        ctx_.screens.open_document(path);

    // Each use leaves the date of the last opening beside the manual, found or not.
    const QString stamp = stamp_path_for(path);
    if (stamp.isEmpty()) return;
    QString error;
    if (!write_file_atomic(stamp, stamp_bytes(ctx_.run.today), &error))
        ctx_.dialogs.message(error, MsgIcon::Critical);
}

}  // namespace veldo
