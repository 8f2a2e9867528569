#include "reports/output_target.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include "reports/page_engine.h"
#include "tests/support/golden.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using namespace testing;

// Also keeps where each save dialog started.
struct StartRecordingDialogs : ScriptedDialogs {
    QString choose_save_file(const QString& title, const QString& start, const QString& filter) override {
        starts << start;
        return ScriptedDialogs::choose_save_file(title, start, filter);
    }
    QStringList starts;
};

class OutputTargetTest : public ::testing::Test {
protected:
    TempDrive drive;
    StartRecordingDialogs dialogs;
    OutputChoice choice;
    QString asked_from;
    QString next_printer;
    OutputTarget target{drive.run, choice, [this](const QString& current) {
                            asked_from = current;
                            return next_printer;
                        }};

    void SetUp() override {
        drive.run.dialogs = &dialogs;
        drive.run.program_folder = drive.path("prog");
        QDir().mkpath(drive.run.program_folder);
        QDir().mkpath(drive.path("uitvoer"));
        choice.printer_name = "HP LaserJet";
    }
    QString colour_file() const { return drive.path("kleur_drukker.txt"); }
    QString excel_gids() const { return drive.run.family_folder + "/excel_uitvoer_gids"; }
    QString html_gids() const { return drive.run.family_folder + "/html_uitvoer_gids"; }
    static QByteArray remembered(const QString& folder) { return ("\"" + folder + "\"\r\n").toUtf8(); }
    // The targets chosen, whether the dialog closed and the colour switch (with
    // COLOUR pressed or not): "print excel html closed colour -1 pressed".
    QString state() const {
        QStringList on;
        const bool flags[] = {choice.print_chosen, choice.output_to_excel, choice.output_to_html, target.closed()};
        const char* names[] = {"print", "excel", "html", "closed"};
        for (int i = 0; i < 4; ++i)
            if (flags[i]) on << names[i];
        on << QString("colour %1").arg(choice.print_colour) + (target.colour_pressed() ? " pressed" : "");
        return on.join(' ');
    }
    // Files anywhere under the temporary drive, by relative path.
    QStringList all_files() const {
        QStringList out;
        for (QDirIterator it(drive.dir.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); it.hasNext();)
            out << QDir(drive.dir.path()).relativeFilePath(it.next());
        out.sort();
        return out;
    }
};

TEST_F(OutputTargetTest, LoadClearsTheFileTargetsAndReadsTheColourSwitch) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"kleur_drukker.txt", "-1\r\n", "colour -1 pressed", "colour as the family writes True"},
        {"kleur_drukker.txt", "#TRUE#\r\n", "colour -1 pressed", "or as a True of its own"},
        {"Kleur_Drukker.TXT", "1\r\n", "colour 1 pressed", "the switch is found in any case"},
        {"kleur_drukker.txt", "\"kleur\"\r\n", "colour 0", "an unreadable switch is black"},
        {"kleur_drukker.txt", "", "colour 0", "an empty switch is black"},
        {nullptr, nullptr, "colour 0", "no switch is black"},
    };
    for (const auto& [file, bytes, expected, why] : cases) {
        SCOPED_TRACE(why);
        QFile::remove(colour_file());
        QFile::remove(drive.path("Kleur_Drukker.TXT"));
        if (file) write_bytes(drive.path(file), bytes);
        choice.output_to_excel = choice.output_to_html = true;
        choice.print_colour = 7;
        target.load();
        EXPECT_EQ(state(), expected);
    }
}

TEST_F(OutputTargetTest, PrintChoosesThePrinterAndWritesTheColourSwitchAndCancelClearsIt) {
    // Without a settings folder there is nowhere to keep the switch.
    target.load();
    target.kies_kleur();
    target.druk_ok();
    EXPECT_EQ(state(), "print closed colour -1 pressed");
    EXPECT_FALSE(QFileInfo::exists(colour_file()));
    drive.run.shared_settings_folder = drive.path("gedeel");
    EXPECT_EQ(target.colour_file_path(), drive.path("gedeel") + "/kleur_drukker.txt");
    target.druk_ok();
    EXPECT_FALSE(QFileInfo::exists(target.colour_file_path()));  // not there as a folder

    // In the settings folder, where it is read from too.
    drive.run.shared_settings_folder = drive.dir.path();
    target.load();
    target.kies_kleur();
    EXPECT_EQ(state(), "print colour -1 pressed");  // colour and black leave the dialog open
    target.druk_ok();
    EXPECT_EQ(state(), "print closed colour -1 pressed");
    EXPECT_EQ(read_bytes(colour_file()), QByteArray("-1\r\n"));
    target.load();
    target.kies_mono();
    EXPECT_EQ(state(), "print colour 0");
    target.druk_ok();
    EXPECT_EQ(read_bytes(colour_file()), QByteArray("0\r\n"));

    QFile::remove(colour_file());
    target.load();
    target.druk_stop();
    EXPECT_EQ(state(), "closed colour 0");
    EXPECT_FALSE(QFileInfo::exists(colour_file()));
}

TEST_F(OutputTargetTest, SelectKeepsTheNewPrinter) {
    target.load();
    next_printer = "Brother HL";
    target.druk_wysig();
    EXPECT_EQ((QStringList{asked_from, choice.printer_name, target.druk_ok_tooltip()}),
              (QStringList{"HP LaserJet", "Brother HL", " Print to Brother HL"}));
    next_printer.clear();  // cancelled
    target.drukker_naam_dblclick();
    EXPECT_EQ(choice.printer_name, "Brother HL");
    EXPECT_FALSE(target.closed());
    // The printer chosen stays for the next job.
    PrintJob job;
    apply_output_choice(choice, job);
    EXPECT_EQ(output_choice_of(job).printer_name, "Brother HL");
}

// Each caption and tooltip in the golden file as "English" "Afrikaans", in this order.
TEST_F(OutputTargetTest, CaptionsInBothLanguages) {
    using Text = QString (OutputTarget::*)() const;
    const Text texts[] = {&OutputTarget::druk_ok_caption,     &OutputTarget::druk_ok_tooltip,
                          &OutputTarget::druk_stop_caption,   &OutputTarget::druk_stop_tooltip,
                          &OutputTarget::druk_wysig_caption,  &OutputTarget::druk_wysig_tooltip,
                          &OutputTarget::kies_kleur_caption,  &OutputTarget::kies_kleur_tooltip,
                          &OutputTarget::kies_mono_caption,   &OutputTarget::kies_mono_tooltip,
                          &OutputTarget::excel_folder_title,  &OutputTarget::excel_file_title,
                          &OutputTarget::html_folder_title,   &OutputTarget::html_file_title};
    QString out;
    for (const Text text : texts) {
        drive.run.language_afrikaans = false;
        out += "\"" + (target.*text)() + "\" ";
        drive.run.language_afrikaans = true;
        out += "\"" + (target.*text)() + "\"\n";
    }
    EXPECT_TRUE(matches_golden(out, "reports/output_target_captions.txt"));
}

// The save dialogs for a workbook and a web page, step by step: what was
// asked and where the dialog started, the state, the job title, the workbook's
// folder and stem, the page's folder and name, the remembered folders' bytes
// and every file on the drive (the workbook itself comes at the end of the job).
TEST_F(OutputTargetTest, ExcelAndHtmlAskTheFileFromTheRememberedFolderAndRememberIt) {
    QString out;
    const auto step = [&](const QString& what) {
        const auto bytes = [](const QString& path) {
            return QString::fromUtf8(read_bytes(path)).replace("\r\n", "\\r\\n");
        };
        out += QStringList{"== " + what, "asked " + dialogs.prompts.join(" | ") + " from " + dialogs.starts.join(" | "),
                           state(),
                           "chosen " + QStringList{choice.print_job_title, choice.export_folder, choice.export_stem,
                                                   choice.html_folder, choice.html_file_name}
                                           .join(" | "),
                           "remembered excel " + bytes(excel_gids()) + " html " + bytes(html_gids()),
                           "files " + all_files().join(' ')}
                   .join('\n')
                   .replace(drive.dir.path(), "<drive>") +
               '\n';
        dialogs.prompts.clear();
        dialogs.starts.clear();
    };
    drive.run.language_afrikaans = true;
    target.load();
    target.kies_excel();
    step("a workbook, cancelled in Afrikaans: the dialog stays open");

    drive.run.language_afrikaans = false;
    choice.export_stem = "PUNTE GR8/A";
    choice.print_chosen = true;
    target.load();
    dialogs.files.enqueue(drive.path("uitvoer") + "/Punte 8A.xlsx");
    target.kies_excel();
    step("a workbook: from the program's folder, the stem without its slash");
    EXPECT_EQ(dialogs.file_filter, "");
    PrintJob job;
    apply_output_choice(choice, job);  // the page engine and its worksheet hooks take it on
    EXPECT_EQ(std::tuple(job.print_chosen, job.output_to_excel, job.export_folder, job.export_stem),
              std::tuple(false, true, drive.path("uitvoer") + "/", QString("Punte 8A")));

    choice.export_stem = "lys";
    target.load();
    dialogs.files.enqueue(drive.path("uitvoer") + "/lys");
    target.kies_excel();
    step("from the remembered folder");
    dialogs.files.enqueue(drive.path("uitvoer") + "/ou lys.XLS");
    target.kies_excel();
    step("a typed .XLS is dropped");
    write_bytes(excel_gids(), remembered(drive.path("weg")));
    choice.export_stem.clear();
    target.load();
    target.kies_excel();
    step("a remembered folder that is gone: from the program's folder; cancelled");

    choice.print_chosen = true;
    target.load();
    dialogs.files.enqueue(drive.path("uitvoer") + "/lys.htm");
    target.kies_html();
    step("a web page: only recorded, the page engine goes no further");
    apply_output_choice(choice, job);
    EXPECT_EQ(std::pair(job.print_chosen, job.output_to_excel), std::pair(false, false));
    QDir().mkpath(drive.path("web"));
    write_bytes(html_gids(), remembered(drive.path("web")));
    drive.run.language_afrikaans = true;
    target.load();
    target.kies_html();
    step("a web page from its own remembered folder, cancelled in Afrikaans");
    EXPECT_TRUE(matches_golden(out, "reports/output_target_files.txt"));
}

}  // namespace
}  // namespace veldo
