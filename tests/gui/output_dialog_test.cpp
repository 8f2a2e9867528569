// kies_drukker's real window, offscreen: PRINT and CANCEL.
#include <gtest/gtest.h>

#include <QPushButton>

#include "gui/output_dialog.h"
#include "reports/output_target.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

TEST(OutputDialogWidget, PrintChoosesThePrinterAndRemembersBlack) {
    testing::TempDrive t;
    t.run.shared_settings_folder = t.dir.path();
    OutputChoice choice;
    choice.printer_name = "Kantoor";
    OutputTarget target(t.run, choice);
    OutputTargetDialog dialog(target);
    auto* print = dialog.findChild<QPushButton*>("druk_ok");
    ASSERT_TRUE(print);
    EXPECT_EQ(print->text(), "PRINT");
    EXPECT_EQ(print->toolTip(), " Print to Kantoor");
    print->click();
    EXPECT_TRUE(choice.print_chosen);
    EXPECT_TRUE(target.closed());
    EXPECT_EQ(testing::read_bytes(t.path("kleur_drukker.txt")), QByteArray("0\r\n"));
}

TEST(OutputDialogWidget, CancelPrintsNothing) {
    testing::TempDrive t;
    t.run.language_afrikaans = true;
    OutputChoice choice;
    OutputTarget target(t.run, choice);
    OutputTargetDialog dialog(target);
    auto* cancel = dialog.findChild<QPushButton*>("druk_stop");
    ASSERT_TRUE(cancel);
    EXPECT_EQ(cancel->text(), "KANSELLEER");
    cancel->click();
    EXPECT_FALSE(choice.print_chosen);
    EXPECT_FALSE(choice.output_to_excel);
}

}  // namespace
}  // namespace veldo
