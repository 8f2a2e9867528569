// Choosing the data folder and the files that remember it.
#include <gtest/gtest.h>

#include "shell/change_folder.h"
#include "tests/support/golden.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

// Reply by reply: the data folder after, where the picker started, whether
// the form stays (with its caption and hint) and the activity its close
// leaves, to the millisecond; then what the user saw and the files beside the
// program. "old" holds only the older control table.
TEST(ChangeFolder, APickedFolderIsRememberedOrRefusedButStaysPicked) {
    const struct {
        const char* why;
        QByteArray user_info;  // beside the program; empty: none
        const char* reply;     // below the drive; nullptr: a cancel
        bool afrikaans = false;
    } rows[] = {
        {"accepted and remembered with the other values kept; the trailing separator goes",
         "\"/old/folder\"\r\n\"PS\"\r\n\"FE\"\r\n", "data/"},
        {"a cancel empties the data folder and writes nothing; the picker starts on the remembered folder, trimmed",
         "\"  /skool/data  \"\r\n", nullptr},
        {"the older table alone is refused, in Afrikaans", "", "old", true},
        {"and in English", "", "old"},
    };
    QString outcome;
    for (const auto& r : rows) {
        testing::ShellFixture t;
        t.run.language_afrikaans = r.afrikaans;
        if (!r.user_info.isEmpty()) testing::write_bytes(t.run.program_folder + "/user_info.txt", r.user_info);
        testing::write_bytes(t.path("old/Exp_Control.dbf"), "x");
        if (r.reply) t.dialogs.folders << t.path(r.reply);
        ChangeFolder f(t.ctx);
        f.load();
        const QString form = f.is_loaded() ? "stays: " + f.caption() + ": " + f.refused_hint() : "goes";
        t.time = QTime(11, 0, 0, 500);
        if (f.is_loaded()) f.unload();
        outcome += QString("== %1\nfolder '%2', start '%3', activity %4, form %5\n")
                       .arg(r.why, t.run.data_folder, t.dialogs.folder_start)
                       .arg(t.run.last_activity, 0, 'f', 3)
                       .arg(form)
                       .replace(t.dir.path(), "<drive>") +
                   testing::transcript(t, t.screens, {"Apps"});
    }
    EXPECT_TRUE(testing::matches_golden(outcome, "shell/folder_choices.txt"));
}

}  // namespace
}  // namespace veldo
