// The README's demo without a display: every file it names is there and is
// what it says it is.
#include <gtest/gtest.h>

#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "markbook/workbook_reader.h"
#include "tests/support/pdf_printer.h"
#include "tests/support/reports_app_helpers.h"

namespace veldo {
namespace {

// Runs scripts/run_demo.sh with `program` on a fresh drive, without a display;
// gives its exit code and what it printed.
std::pair<int, QString> run_demo(const QString& program, const QString& drive) {
    QProcess demo;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    demo.setProcessEnvironment(env);
    demo.setProcessChannelMode(QProcess::MergedChannels);
    demo.start("bash", {QString(VELDO_SOURCE_DIR) + "/scripts/run_demo.sh", program, drive});
    return {demo.waitForFinished(120000) ? demo.exitCode() : -1, QString::fromLocal8Bit(demo.readAll())};
}

TEST(Demo, TheHeadlessDemoMakesEveryFileItNames) {
    QTemporaryDir drive;
    const auto [exit_code, out] = run_demo(VELDO_PROGRAM, drive.path());
    ASSERT_EQ(exit_code, 0) << out.toStdString();
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
        if (file.endsWith(".pdf"))
            EXPECT_TRUE(testing::poppler("pdfinfo", file).contains("Pages:"));
        else if (file.endsWith(".xlsx"))
            EXPECT_GT(read_first_sheet(file).value_or(QList<QStringList>()).size(), 32);
        else  // an unreadable table is one row saying why
            EXPECT_GE(testing::table_rows(file).size(), 32) << testing::table_rows(file)[0].join(' ').toStdString();
    }
}

// A step that fails stops the demo with its message and a non-zero exit.
TEST(Demo, AFailingStepStopsTheDemo) {
    QTemporaryDir drive;
    const auto [exit_code, out] = run_demo("/bin/false", drive.path());
    EXPECT_NE(exit_code, 0);
    EXPECT_TRUE(out.contains("The demo stopped: Writing the demo school failed."));
}

}  // namespace
}  // namespace veldo
