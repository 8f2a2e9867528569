#include "reports/output_target.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include "reports/page_engine.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

using testing::read_bytes;
using testing::ScriptedDialogs;
using testing::TempDrive;
using testing::write_bytes;

// Also keeps where each save dialog started.
struct StartRecordingDialogs : ScriptedDialogs {
    QString choose_save_file(const QString& title, const QString& start, const QString& filter) override {
        starts << start;
        filters << filter;
        return ScriptedDialogs::choose_save_file(title, start, filter);
    }
    QStringList starts, filters;
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
    // The targets chosen and whether the dialog closed, by name: "print excel html closed".
    QString state() const {
        QStringList on;
        const bool flags[] = {choice.print_chosen, choice.output_to_excel, choice.output_to_html, target.closed()};
        const char* names[] = {"print", "excel", "html", "closed"};
        for (int i = 0; i < 4; ++i)
            if (flags[i]) on << names[i];
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
    struct Case {
        const char* file;
        const char* bytes;
        int colour;
        const char* why;
    };
    const Case cases[] = {
        {"kleur_drukker.txt", "-1\r\n", -1, "colour as the family writes True"},
        {"kleur_drukker.txt", "#TRUE#\r\n", -1, "or as a True of its own"},
        {"Kleur_Drukker.TXT", "1\r\n", 1, "the switch is found in any case"},
        {"kleur_drukker.txt", "\"kleur\"\r\n", 0, "an unreadable switch is black"},
        {"kleur_drukker.txt", "", 0, "an empty switch is black"},
        {nullptr, nullptr, 0, "no switch is black"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        QFile::remove(colour_file());
        QFile::remove(drive.path("Kleur_Drukker.TXT"));
        if (c.file) write_bytes(drive.path(c.file), c.bytes);
        choice.output_to_excel = choice.output_to_html = true;
        choice.print_colour = 7;
        target.load();
        EXPECT_EQ(choice.print_colour, c.colour);
        EXPECT_EQ(target.colour_pressed(), c.colour != 0);
        EXPECT_EQ(state(), "");
    }
}

TEST_F(OutputTargetTest, PrintChoosesThePrinterAndWritesTheColourSwitch) {
    // Without a settings folder there is nowhere to keep the switch.
    target.load();
    target.kies_kleur();
    target.druk_ok();
    EXPECT_TRUE(choice.print_chosen);
    EXPECT_FALSE(QFileInfo::exists(colour_file()));
    drive.run.shared_settings_folder = drive.path("gedeel");
    EXPECT_EQ(target.colour_file_path(), drive.path("gedeel") + "/kleur_drukker.txt");
    target.druk_ok();
    EXPECT_FALSE(QFileInfo::exists(target.colour_file_path()));  // not there as a folder

    // In the settings folder, where it is read from too.
    drive.run.shared_settings_folder = drive.dir.path();
    target.load();
    target.kies_kleur();
    EXPECT_TRUE(target.colour_pressed());
    EXPECT_EQ(state(), "print");  // colour and black leave the dialog open
    target.druk_ok();
    EXPECT_EQ(state(), "print closed");
    EXPECT_EQ(read_bytes(colour_file()), QByteArray("-1\r\n"));

    target.load();
    target.kies_mono();
    EXPECT_FALSE(target.colour_pressed());
    EXPECT_EQ(state(), "print");
    target.druk_ok();
    EXPECT_EQ(read_bytes(colour_file()), QByteArray("0\r\n"));
}

TEST_F(OutputTargetTest, CancelClearsThePrint) {
    choice.print_chosen = true;
    target.load();
    target.druk_stop();
    EXPECT_EQ(state(), "closed");
    EXPECT_FALSE(QFileInfo::exists(colour_file()));
}

TEST_F(OutputTargetTest, SelectKeepsTheNewPrinter) {
    target.load();
    next_printer = "Brother HL";
    target.druk_wysig();
    EXPECT_EQ(asked_from, "HP LaserJet");
    EXPECT_EQ(choice.printer_name, "Brother HL");
    EXPECT_EQ(target.druk_ok_tooltip(), " Print to Brother HL");
    next_printer.clear();  // cancelled
    target.drukker_naam_dblclick();
    EXPECT_EQ(choice.printer_name, "Brother HL");
    EXPECT_FALSE(target.closed());
    // The printer chosen stays for the next job.
    PrintJob job;
    apply_output_choice(choice, job);
    EXPECT_EQ(output_choice_of(job).printer_name, "Brother HL");
}

TEST_F(OutputTargetTest, CaptionsInBothLanguages) {
    using Text = QString (OutputTarget::*)() const;
    const std::tuple<Text, const char*, const char*> texts[] = {
        {&OutputTarget::druk_ok_caption, "PRINT", "DRUK"},
        {&OutputTarget::druk_ok_tooltip, " Print to HP LaserJet", " Druk na HP LaserJet"},
        {&OutputTarget::druk_stop_caption, "CANCEL", "KANSELLEER"},
        {&OutputTarget::druk_stop_tooltip, " Cancel printing ", " Kanselleer drukwerk "},
        {&OutputTarget::druk_wysig_caption, "SELECT", "VERANDER"},
        {&OutputTarget::druk_wysig_tooltip, " Select a different printer ", " Kies 'n ander drukker "},
        {&OutputTarget::kies_kleur_caption, "COLOUR", "KLEUR"},
        {&OutputTarget::kies_kleur_tooltip, " Do printing in colour ", " Doen drukwerk in kleur "},
        {&OutputTarget::kies_mono_tooltip, " Do printing in black ", " Doen drukwerk in swart "},
        {&OutputTarget::kies_mono_caption, "BLACK", "SWART"},
        {&OutputTarget::excel_folder_title, "FOLDER ADDRESS FOR EXCEL EXPORT", "GIDSADRES VIR EXCEL-UITVOER"},
        {&OutputTarget::excel_file_title, "EXCEL EXPORT FILE NAME", "EXCEL UITVOER LE\u00eaRNAAM"},
        {&OutputTarget::html_folder_title, "FOLDER ADDRESS FOR HTML EXPORT", "GIDSADRES VIR HTML-UITVOER"},
        {&OutputTarget::html_file_title, "HTML EXPORT FILE NAME", "HTML UITVOER LE\u00eaRNAAM"},
    };
    for (const auto& [text, english, afrikaans] : texts) {
        drive.run.language_afrikaans = false;
        EXPECT_EQ((target.*text)(), QString::fromUtf8(english));
        drive.run.language_afrikaans = true;
        EXPECT_EQ((target.*text)(), QString::fromUtf8(afrikaans));
    }
}

TEST_F(OutputTargetTest, ExcelOkSetsTheFileAndRemembersTheFolder) {
    choice.export_stem = "PUNTE GR8/A";
    choice.print_chosen = true;
    target.load();
    dialogs.files.enqueue(drive.path("uitvoer") + "/Punte 8A.xlsx");
    target.kies_excel();
    EXPECT_EQ(dialogs.prompts, QStringList{"EXCEL EXPORT FILE NAME"});
    EXPECT_EQ(dialogs.filters, QStringList{""});
    EXPECT_EQ(dialogs.starts, QStringList{drive.run.program_folder + "/PUNTE GR8A"});
    EXPECT_EQ(state(), "excel closed");
    EXPECT_NE(choice.print_colour, 0);
    EXPECT_EQ(choice.print_job_title, "REPORTING TO EXCEL");
    EXPECT_EQ(choice.export_folder, drive.path("uitvoer") + "/");
    EXPECT_EQ(choice.export_stem, "Punte 8A");
    EXPECT_EQ(read_bytes(excel_gids()), remembered(drive.path("uitvoer")));
    // Only the remembered folder was written: the workbook comes at the end of the job.
    EXPECT_EQ(all_files(), QStringList{"ProgramData/KESTRALIN/excel_uitvoer_gids"});
    // The job takes the choice to the page engine and its worksheet hooks.
    PrintJob job;
    apply_output_choice(choice, job);
    EXPECT_EQ(std::tuple(job.print_chosen, job.output_to_excel, job.export_folder, job.export_stem),
              std::tuple(false, true, drive.path("uitvoer") + "/", QString("Punte 8A")));
}

// The save dialog starts in the remembered folder, or in the program's
// folder when that is gone; a typed ".XLS" is dropped from the name.
TEST_F(OutputTargetTest, ExcelStartsFromTheRememberedFolderWhileItIsThere) {
    write_bytes(excel_gids(), remembered(drive.path("uitvoer")));
    choice.export_stem = "lys";
    target.load();
    dialogs.files.enqueue(drive.path("uitvoer") + "/lys");
    target.kies_excel();
    EXPECT_EQ(choice.export_stem, "lys");
    dialogs.files.enqueue(drive.path("uitvoer") + "/ou lys.XLS");
    target.kies_excel();
    EXPECT_EQ(choice.export_stem, "ou lys");

    write_bytes(excel_gids(), remembered(drive.path("weg")));
    choice.export_stem.clear();
    target.kies_excel();  // cancelled
    const QString lys = drive.path("uitvoer") + "/lys";
    EXPECT_EQ(dialogs.starts, (QStringList{lys, lys, drive.run.program_folder}));
}

TEST_F(OutputTargetTest, ExcelCancelKeepsTheDialogOpen) {
    drive.run.language_afrikaans = true;
    target.load();
    target.kies_excel();
    EXPECT_EQ(dialogs.prompts, QStringList{"EXCEL UITVOER LE\u00eaRNAAM"});
    EXPECT_EQ(choice.print_job_title, "DRUKWERK NA EXCEL");
    EXPECT_EQ(state(), "");
    EXPECT_FALSE(QFileInfo::exists(excel_gids()));
}

TEST_F(OutputTargetTest, HtmlRecordsItsTargetAndNothingElse) {
    choice.print_chosen = true;
    target.load();
    dialogs.files.enqueue(drive.path("uitvoer") + "/lys.htm");
    target.kies_html();
    EXPECT_EQ(dialogs.prompts, QStringList{"HTML EXPORT FILE NAME"});
    EXPECT_EQ(choice.html_folder, drive.path("uitvoer") + "/");
    EXPECT_EQ(choice.html_file_name, "lys.htm");
    EXPECT_EQ(state(), "html closed");
    EXPECT_EQ(read_bytes(html_gids()), remembered(drive.path("uitvoer")));
    EXPECT_EQ(all_files(), QStringList{"ProgramData/KESTRALIN/html_uitvoer_gids"});

    // The page engine goes no further with such a choice.
    PrintJob job;
    apply_output_choice(choice, job);
    EXPECT_FALSE(job.print_chosen);
    EXPECT_FALSE(job.output_to_excel);
}

TEST_F(OutputTargetTest, HtmlCancelKeepsTheDialogOpenAndStartsFromItsOwnRememberedFolder) {
    QDir().mkpath(drive.path("web"));
    write_bytes(html_gids(), remembered(drive.path("web")));
    write_bytes(excel_gids(), remembered(drive.path("uitvoer")));
    drive.run.language_afrikaans = true;
    target.load();
    target.kies_html();
    EXPECT_EQ(dialogs.starts, QStringList{drive.path("web")});
    EXPECT_EQ(dialogs.prompts, QStringList{"HTML UITVOER LE\u00eaRNAAM"});
    EXPECT_EQ(state(), "");
    EXPECT_EQ(read_bytes(html_gids()), remembered(drive.path("web")));
}

}  // namespace
}  // namespace veldo
