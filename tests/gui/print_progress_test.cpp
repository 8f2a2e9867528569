// The progress window follows the page engine's progress.
#include <gtest/gtest.h>

#include <QLabel>

#include "gui/print_progress_widget.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

TEST(PrintProgressWindow, ShowsTheJobThePrinterAndThePage) {
    testing::TempDrive t;
    t.run.language_afrikaans = true;
    PrintProgress progress;
    PrintProgressWidget window;
    window.follow(progress);
    progress.show(t.run, QString(), "Kantoor", 3);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.findChild<QLabel*>("wdv_opskrif")->text(), " BESIG MET DRUKWERK ... ");
    EXPECT_EQ(window.findChild<QLabel*>("wdv_drukker")->text(), "Kantoor");
    EXPECT_EQ(window.findChild<QLabel*>("wdv_bladsy")->text(), "3");
    progress.hide();
    EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace veldo
