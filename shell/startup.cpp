#include "shell/startup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include "store/record_store.h"
#include "util/file_lookup.h"
#include "util/legacy_number.h"
#include "util/quoted_values.h"
#include "util/safe_file.h"
#include "util/text_helpers.h"

namespace veldo {

QString program_version() {
    return QString("%1.%2.%3").arg(VELDO_VERSION_MAJOR).arg(VELDO_VERSION_MINOR).arg(VELDO_VERSION_PATCH);
}

namespace {

QByteArray read_all(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QString parent_of(const QString& folder) {
    return folder.isEmpty() ? QString() : QFileInfo(folder).path();
}

// The family's programs and the folders they live in, for the version stamp.
struct FamilyProgram {
    const char* name;
    const char* folder;
};
constexpr FamilyProgram kFamilyPrograms[] = {
    {"VELDO-HOUSE", "VELDO-HOUSE"},   {"VELDO-CAMPUS", "VELDO-HOUSE"}, {"VELDO-CONDUCTOR", "VELDO-HOUSE"},
    {"VELDO-CREWS", "VELDO-CREWS"},   {"VELDO-VAULTS", "VELDO-VAULTS"}, {"VELDO-PURSE", "VELDO-PURSE"},
    {"VELDO-CENSUS", "VELDO-HOUSE"},  {"VELDO-TIMER", "VELDO-HOUSE"},  {"PATH-SETUP", "VELDO-INSTAL"},
    {"VELDO-SCROL", "VELDO-SCROL"},   {"VELDO-SHELF", "VELDO-SHELF"},  {"VELDO-SHIFT", "VELDO-SHIFT"},
    {"VELDO-TALLY", "VELDO-TALLY"},   {"VELDO-VIEWER", "VELDO-VIEWER"}};

constexpr const char* kSiblings[] = {"VELDO-HOUSE", "VELDO-PURSE", "VELDO-SHELF", "VELDO-CREWS", "VELDO-DIARY",
                                     "VELDO-SHIFT", "VELDO-SCROL", "VELDO-VIEWER", "VELDO-QUIZ"};

}  // namespace

float read_timeout_seconds(const QString& program_folder) {
    const QString path = find_ignoring_case(program_folder, "time_out.txt");
    if (path.isEmpty()) return 300;
    const auto values = read_quoted_values(read_all(path));
    const float seconds = values.isEmpty() ? 0.0f : float(Val(values.first().text));
    // A negative limit would bring the warning back for ever: the default.
    return seconds < 0 ? 300.0f : seconds;
}

void copy_family_files(RunState& run, const QString& name) {
    const QString target = name.isEmpty() ? run.family_folder : QDir(run.family_folder).filePath(name);
    const QString source = QDir(run.root_folder).filePath(name.isEmpty() ? QStringLiteral("VELDO-INSTAL") : name);
    if (!name.isEmpty() && QFileInfo::exists(target)) return;
    QDir().mkpath(target);
    const auto files = QDir(source).entryInfoList(QDir::Files | QDir::Hidden, QDir::Name);
    for (const QFileInfo& file : files) {
        const QString upper = file.fileName().toUpper();
        if (upper.contains(".EXE")) continue;
        if (!upper.contains(".TXT") && !upper.contains("NETWORK")) continue;
        if (file_exists_ignoring_case(target, file.fileName())) continue;
        QFile::copy(file.filePath(), QDir(target).filePath(file.fileName()));
    }
}

void stamp_versions(RunState& run) {
    const QString stamp = find_ignoring_case(run.family_folder, "Version_Numbers.dte");
    if (!stamp.isEmpty()) {
        const QString line = QString::fromLatin1(read_all(stamp)).section('\n', 0, 0).trimmed();
        const OleDate today = ole_date_from(run.today);
        if (!line.isEmpty() && ctod(line, today) == today) return;
    }
    QList<QuotedLine> lines;
    for (const FamilyProgram& p : kFamilyPrograms) {
        const QString folder = QDir(run.root_folder).filePath(p.folder);
        const QString exe = QString(p.name) + ".exe";
        QString found = find_ignoring_case(folder, exe);
        if (found.isEmpty()) found = find_ignoring_case(folder, p.name);
        if (found.isEmpty() || !QFileInfo(found).isFile()) continue;
        const QString version = QString(p.name) == kProgramName ? program_version() : QString();
        lines.append({QuotedValue::of_text(QDir(folder).filePath(exe).toUpper()), QuotedValue::of_text(version)});
    }
    write_file_atomic(run.in_folder(run.family_folder, "Version_Numbers.txt"), write_quoted_lines(lines));
    write_file_atomic(run.in_folder(run.family_folder, "Version_Numbers.dte"),
                      (short_date_text(run.today) + "\r\n").toLatin1());
}

void refresh_machine_paths(RunState& run, const QString& application_folder) {
    // The executable's folder and its parent stand for the program folder and
    // the folder that holds the family's programs.
    run.program_folder = QDir::cleanPath(application_folder);
    run.root_folder = parent_of(run.program_folder);
    run.drive_name = run.drive_root;

    run.family_folder = run.in_folder(QString(), "ProgramData");
    QDir().mkpath(run.family_folder);
    run.family_folder += "/KESTRALIN";
    QDir().mkpath(run.family_folder);

    for (const char* sibling : kSiblings)
        if (QFileInfo::exists(QDir(run.root_folder).filePath(sibling))) copy_family_files(run, sibling);
    if (QFileInfo::exists(QDir(run.root_folder).filePath("VELDO-INSTAL"))) copy_family_files(run, QString());
    if (QFileInfo::exists(QDir(run.root_folder).filePath("VELDO-VAULTS"))) copy_family_files(run, "VELDO-VAULTS");

    const QString vaults = QDir(run.family_folder).filePath("VELDO-VAULTS");
    if (QFileInfo(vaults).isDir()) {
        const QStringList items = {run.admin_folder,
                                   run.admin_folder,
                                   parent_of(run.sibling_folder_2),
                                   parent_of(run.sibling_folder_4),
                                   parent_of(run.sibling_folder_3),
                                   QString(),
                                   parent_of(run.sibling_folder_5),
                                   QString(),
                                   parent_of(run.sibling_folder_6),
                                   parent_of(run.shared_settings_folder),
                                   run.admin_folder};
        write_file_atomic(QDir(vaults).filePath("path_names.txt"), write_one_per_line(items));
    }

    run.product_folder = run.family_folder + "/" + QString(kProgramName).replace('_', '-');
    QDir().mkpath(run.product_folder);

    stamp_versions(run);

    const QString own = QDir(run.root_folder).filePath(kProgramName);
    if (QFileInfo(own).isDir()) run.program_folder = own;

    run.drive_name = run.drive_root;
    QDir().mkpath(run.in_folder(QString(), "KESTRALIN"));
}

void read_setup_language(RunState& run) {
    QString path = find_ignoring_case(run.family_folder, "setup.txt");
    if (path.isEmpty()) {
        const QString beside = find_ignoring_case(run.program_folder, "setup.txt");
        if (beside.isEmpty()) return;
        path = QDir(run.family_folder).filePath("setup.txt");
        if (!QFile::copy(beside, path)) return;
    }
    const auto lines = read_quoted_lines(read_all(path));
    if (lines.size() >= 2 && !lines[1].isEmpty()) run.language_afrikaans = lines[1].first().as_bool();
}

bool save_setup_language(RunState& run) {
    const QString found = find_ignoring_case(run.family_folder, "setup.txt");
    const QString path = found.isEmpty() ? run.in_folder(run.family_folder, "setup.txt") : found;
    QList<QuotedLine> lines = found.isEmpty() ? QList<QuotedLine>() : read_quoted_lines(read_all(found));
    while (lines.size() < 2) lines.append(QuotedLine{QuotedValue::of_text(QString())});
    if (lines[1].isEmpty()) lines[1].append(QuotedValue());
    lines[1][0] = QuotedValue::of_bool(run.language_afrikaans);
    return write_file_atomic(path, write_quoted_lines(lines));
}

void read_school_name(RunState& run, RecordStore& store) {
    // The record is looked for at the school folder, which is the drive root
    // until something sets it; it is read where it was found.
    const QString folder = run.school_folder.trimmed().isEmpty() ? run.drive_root : run.school_folder;
    if (!file_exists_ignoring_case(folder, "skl_dta_random.txt")) return;
    store.open_table("SKL", folder);
    TableVar& skl = store.table("SKL");
    if (skl.record_count > 0) {
        const RecordBuffer& rec = store.buffer("SKL");
        run.school_name = rec.text("SD_SKOOL").trimmed();
        [[maybe_unused]] const QString province = rec.text("SD_PROV").trimmed();
    }
    store.close_table_file(skl.file_number);
}

void run_startup(RunState& run, RecordStore& store, const QString& application_folder) {
    run.os_product_name = QSysInfo::prettyProductName().trimmed();
    refresh_machine_paths(run, application_folder);
    // Read where the TIME-OUT button writes it.
    run.timeout_seconds = read_timeout_seconds(run.program_folder);
    run.start_folder = run.program_folder;
    QDir::setCurrent(run.program_folder);
    run.backdrop_red = 255;
    run.backdrop_green = 192;
    run.backdrop_blue = 158;
    run.current_year = QString::number(run.today.year());
    read_setup_language(run);
    read_school_name(run, store);
}

}  // namespace veldo
