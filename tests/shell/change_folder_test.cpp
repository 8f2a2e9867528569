// Choosing the data folder and the files that remember it.
#include <gtest/gtest.h>

#include "shell/change_folder.h"
#include "tests/support/shell_fixture.h"
#include "tests/support/shell_transcript.h"

namespace veldo {
namespace {

using testing::ShellFixture;
using testing::write_bytes;

struct ChangeFolderTest : ::testing::Test, ShellFixture {
    QString transcript() const { return testing::transcript(*this, screens, {"Apps"}); }
};

TEST_F(ChangeFolderTest, AnAcceptedFolderIsRememberedWithTheOtherValuesKept) {
    write_bytes(run.program_folder + "/user_info.txt", "\"/old/folder\"\r\n\"PS\"\r\n\"FE\"\r\n");
    dialogs.folders << run.data_folder + "/";
    ChangeFolder f(ctx);
    f.load();
    EXPECT_EQ(run.data_folder, path("data"));  // the trailing separator goes
    EXPECT_FALSE(f.is_loaded());
    EXPECT_EQ(transcript(), "prompt: CHANGE DATA FOLDER\nunloaded: change_folder\n"
                            "file <drive>/Apps/VELDO-TALLY/last_drive.txt: \"<drive>\"\\r\\n\n"
                            "file <drive>/Apps/VELDO-TALLY/user_info.txt: "
                            "\"<drive>/data\"\\r\\n\"PS\"\\r\\n\"FE\"\\r\\n\n");
}

// The picker starts on the remembered folder, trimmed.
TEST_F(ChangeFolderTest, ACancelEmptiesTheDataFolderAndWritesNothing) {
    write_bytes(run.program_folder + "/user_info.txt", "\"  /skool/data  \"\r\n");
    ChangeFolder f(ctx);
    f.load();
    EXPECT_EQ(dialogs.folder_start, "/skool/data");
    EXPECT_EQ(run.data_folder, "");
    EXPECT_FALSE(f.is_loaded());
    EXPECT_EQ(transcript(), "prompt: CHANGE DATA FOLDER\nunloaded: change_folder\n"
                            "file <drive>/Apps/VELDO-TALLY/user_info.txt: \"  /skool/data  \"\\r\\n\n");
}

TEST_F(ChangeFolderTest, AFolderWithOnlyTheOlderTableIsRefusedButStaysPicked) {
    const QString old = path("old");
    write_bytes(old + "/Exp_Control.dbf", "x");
    dialogs.folders << old;
    run.language_afrikaans = true;
    ChangeFolder f(ctx);
    f.load();
    EXPECT_EQ(dialogs.texts(), QStringList{"Gekose gids (" + old + ") bevat nie punteleêrs nie ..."});
    EXPECT_FALSE(transcript().contains("last_drive.txt"));
    EXPECT_EQ(run.data_folder, old);
    EXPECT_TRUE(f.is_loaded());
    EXPECT_EQ(f.caption(), "WYSIG DATA GIDS");
    EXPECT_EQ(f.refused_hint(), "Die gids " + old +
                                    " bevat nie punteleêrs nie.\nSluit hierdie venster en kies 'n ander gids met DATA GIDS op die menu.");
    run.language_afrikaans = false;
    EXPECT_EQ(f.refused_hint(), "The folder " + old +
                                    " does not contain marks files.\nClose this window and choose another folder with DATA FOLDER on the menu.");
    // Closing the form is activity, to the millisecond.
    time = QTime(11, 0, 0, 500);
    f.unload();
    EXPECT_EQ(run.last_activity, 11 * 3600 + 0.5);
}

}  // namespace
}  // namespace veldo
