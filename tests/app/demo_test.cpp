// The README's demo without a display: every file it names is there and is
// what it says it is.
#include <gtest/gtest.h>

#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "markbook/workbook_reader.h"
#include "store/dbf_table.h"

namespace veldo {
namespace {

TEST(Demo, TheHeadlessDemoMakesEveryFileItNames) {
    QTemporaryDir drive;
    QProcess demo;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    demo.setProcessEnvironment(env);
    demo.setProcessChannelMode(QProcess::MergedChannels);
    demo.start("bash", {QString(VELDO_SOURCE_DIR) + "/scripts/run_demo.sh", VELDO_PROGRAM, drive.path()});
    ASSERT_TRUE(demo.waitForFinished(120000));
    const QString out = QString::fromLocal8Bit(demo.readAll());
    ASSERT_EQ(demo.exitCode(), 0) << out.toStdString();
    EXPECT_FALSE(out.contains("QStandardPaths")) << out.toStdString();
    for (const char* said : {"Mark book 1 (setup_8  AFR__8A.txt): 32 learners, 21 columns",
                             "Totals recalculated for 32 learners.", "22\tTOTAAL\t", "PRINTING COMPLETE",
                             "Marks for 8  AFR__8A exported sucessfully ..."})
        EXPECT_TRUE(out.contains(QString::fromUtf8(said))) << said;

    const QStringList files = out.section("-- Files made:\n", 1).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(files.size(), 6) << out.toStdString();
    for (QString file : files) {
        file = file.trimmed();
        SCOPED_TRACE(file.toStdString());
        ASSERT_TRUE(QFileInfo(file).isFile());
        if (file.endsWith(".pdf")) {
            QProcess info;
            info.start("pdfinfo", {file});
            ASSERT_TRUE(info.waitForFinished(30000));
            EXPECT_EQ(info.exitCode(), 0);
            EXPECT_TRUE(info.readAllStandardOutput().contains("Pages:"));
        } else if (file.endsWith(".xlsx")) {
            SheetReadError error;
            const auto sheet = read_first_sheet(file, &error);
            ASSERT_TRUE(sheet) << error.detail.toStdString();
            EXPECT_GT(sheet->size(), 32);
        } else {
            DbfError error;
            auto table = DbfTable::open(file, &error);
            ASSERT_TRUE(table) << dbf_error_message(error, false).toStdString();
            EXPECT_GE(table->RecordCount(), 32);
        }
    }
}

// A step that fails stops the demo with its message and a non-zero exit.
TEST(Demo, AFailingStepStopsTheDemo) {
    QTemporaryDir drive;
    QProcess demo;
    demo.setProcessChannelMode(QProcess::MergedChannels);
    demo.start("bash", {QString(VELDO_SOURCE_DIR) + "/scripts/run_demo.sh", "/bin/false", drive.path()});
    ASSERT_TRUE(demo.waitForFinished(60000));
    EXPECT_NE(demo.exitCode(), 0);
    EXPECT_TRUE(demo.readAll().contains("The demo stopped: Writing the demo school failed."));
}

}  // namespace
}  // namespace veldo
