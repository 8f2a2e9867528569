#include "app/cli.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QTextStream>
#include <cstdio>
#include <functional>

#include "app/cli_dialogs.h"
#include "shell/demo_school.h"
#include "shell/startup.h"
#include "store/dbf_table.h"
#include "store/record_store.h"
#include "store/series.h"
#include "util/file_lookup.h"
#include "util/text_helpers.h"

namespace veldo {
namespace {

struct Context {
    RunState run;
    CliDialogs dialogs;
    RecordStore store{run};
    QMap<QString, QString> options;
    QStringList positional;
    QTextStream out{stdout};
};

struct Command {
    QString word;
    QString synopsis;
    QString description;
    QStringList options;       // options it takes besides --lang
    int positional = 0;        // positional arguments it needs
    std::function<int(Context&)> run;
};

void print_error(const QString& text) { std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData()); }

// A data folder given on the command line must exist; the system's own
// message says so.
bool check_data_folder(Context& c) {
    if (folder_exists(c.run.data_folder)) return true;
    print_error(folder_missing_message(c.run, c.run.data_folder));
    return false;
}

int cmd_demo(Context& c) {
    const DemoResult result = write_demo_school(c.run, c.run.data_folder);
    if (!result.ok) {
        print_error(result.message);
        return 1;
    }
    c.out << c.run.tr("Voorbeeldskool geskryf in ", "Demo school written to ") << c.run.data_folder << " ("
          << result.written.size() << c.run.tr(" lêers)", " files)") << "\n";
    for (const QString& f : result.written) c.out << "  " << f << "\n";
    return 0;
}

int cmd_series(Context& c) {
    if (!check_data_folder(c)) return 1;
    if (!has_marks_files(c.run.data_folder)) {
        print_error(c.run.tr("Bestaande gids (" + c.run.data_folder + ") bevat nie punteleêrs nie ...",
                             "Current folder (" + c.run.data_folder + ") does not contain marks files ..."));
        return 1;
    }
    for (const QStringList& row : series_rows(c.store)) c.out << row.join('\t') << "\n";
    return c.dialogs.refused ? 1 : 0;
}

int cmd_dump(Context& c) {
    DbfError error;
    auto table = DbfTable::open(QFileInfo(c.positional.first()).absoluteFilePath(), &error);
    if (!table) {
        print_error(dbf_error_message(error, c.run.language_afrikaans));
        return 1;
    }
    QStringList names;
    for (int i = 0; i < table->field_count(); ++i) names << table->field(i).name;
    c.out << names.join('\t') << "\n";
    QStringList cells;
    for (table->MoveFirst(); !table->Eof(); table->MoveNext()) {
        cells.clear();
        for (int i = 0; i < table->field_count(); ++i) {
            QString text = plain_text(table->value(i));
            while (!text.isEmpty() && text.back() == ' ') text.chop(1);
            cells << text;
        }
        c.out << cells.join('\t') << "\n";
    }
    return 0;
}

const QList<Command>& commands() {
    static const QList<Command> list = {
        {"demo", "demo --data DIR", "write a sample school's data folder to DIR", {"data"}, 0, cmd_demo},
        {"series", "series --data DIR", "list the mark series of a data folder, one line each", {"data"}, 0,
         cmd_series},
        {"dump", "dump FILE.dbf", "print a dBASE table: field names, then one line per record", {}, 1, cmd_dump},
    };
    return list;
}

}  // namespace

QString usage_text() {
    QString text = "usage: veldo-tally [COMMAND] [--lang af|en] [options]\n\n"
                   "Without a command the desktop program starts. Commands:\n";
    for (const Command& c : commands()) text += QString("  %1\n      %2\n").arg(c.synopsis, -28).arg(c.description);
    text += "\nEvery command takes --lang af|en (default: the language of the family's setup.txt,\n"
            "else English). KESTRALIN_DRIVE names the folder that stands for the root of the\n"
            "current drive. Exit status: 0 done, 1 refused with a message, 2 bad usage.\n";
    return text;
}

int run_command_line(const QStringList& arguments, const QString& application_folder) {
    if (arguments.contains("--help") || arguments.contains("-h") || arguments.first() == "help") {
        std::fputs(qPrintable(usage_text()), stdout);
        return 0;
    }
    const Command* command = nullptr;
    for (const Command& c : commands())
        if (c.word == arguments.first()) command = &c;
    const auto usage_error = [](const QString& why) {
        print_error("veldo-tally: " + why + "\n");
        std::fputs(qPrintable(usage_text()), stderr);
        return 2;
    };
    if (!command) return usage_error("unknown command '" + arguments.first() + "'");

    Context c;
    c.run.dialogs = &c.dialogs;
    c.run.drive_root = drive_root_from_environment();
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& a = arguments[i];
        if (a.startsWith("--")) {
            const QString name = a.mid(2);
            if (name != "lang" && !command->options.contains(name)) return usage_error("unknown option " + a);
            if (i + 1 >= arguments.size()) return usage_error(a + " needs a value");
            c.options[name] = arguments[++i];
        } else {
            c.positional << a;
        }
    }
    if (c.positional.size() != command->positional) return usage_error("wrong arguments for " + command->word);
    for (const QString& required : command->options)
        if (required == "data" && !c.options.contains("data")) return usage_error(command->word + " needs --data DIR");
    if (c.options.contains("lang") && c.options["lang"] != "af" && c.options["lang"] != "en")
        return usage_error("--lang takes af or en");
    // Folders given on the command line are taken from where the user stands,
    // before the start moves the current folder to the program folder.
    if (c.options.contains("data")) c.run.data_folder = QDir::cleanPath(QDir::current().absoluteFilePath(c.options["data"]));
    for (QString& p : c.positional) p = QDir::current().absoluteFilePath(p);

    try {
        run_startup(c.run, c.store, application_folder);
        if (c.options.contains("lang")) c.run.language_afrikaans = c.options["lang"] == "af";
        const int code = command->run(c);
        c.out.flush();
        return code;
    } catch (const ProgramEnd& end) {
        c.out.flush();
        return end.exit_code;
    }
}

}  // namespace veldo
