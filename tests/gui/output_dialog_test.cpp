// kies_drukker's real window, offscreen: PRINT and CANCEL.
#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QPrinterInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "gui/desktop_printer.h"
#include "gui/output_dialog.h"
#include "markbook/mark_book_print.h"
#include "reports/output_target.h"
#include "reports/report_run.h"
#include "shell/demo_school.h"
#include "store/dbf_table.h"
#include "tests/support/temp_drive.h"

namespace veldo {
namespace {

// The window shows the target's captions and hands each button to it; what
// the target then does (the colour switch it writes) is OutputTargetTest's.
TEST(OutputDialogWidget, PrintAndCancelGoToTheTarget) {
    for (const bool print : {true, false}) {
        SCOPED_TRACE(print);
        testing::TempDrive t;
        t.run.shared_settings_folder = t.dir.path();
        OutputChoice choice;
        choice.printer_name = "Kantoor";
        OutputTarget target(t.run, choice);
        OutputTargetDialog dialog(target);
        auto* ok = dialog.findChild<QPushButton*>("druk_ok");
        auto* cancel = dialog.findChild<QPushButton*>("druk_stop");
        ASSERT_TRUE(ok && cancel);
        EXPECT_EQ((QStringList{ok->text(), ok->toolTip(), cancel->text()}),
                  (QStringList{"PRINT", " Print to Kantoor", "CANCEL"}));
        (print ? ok : cancel)->click();
        EXPECT_EQ(choice.print_chosen, print);
        EXPECT_TRUE(target.closed());
    }
}

// The PDF files the CUPS PDF printer has written for this user since `since`.
QStringList cups_pdf_files(const QDateTime& since) {
    QStringList found;
    const QDir out(QString::fromLocal8Bit(getpwuid(getuid())->pw_dir) + "/PDF");
    for (const QFileInfo& f : out.entryInfoList({"*.pdf"}, QDir::Files, QDir::Time))
        if (f.lastModified() >= since) found << f.filePath();
    return found;
}

QString pdf_info(const QString& pdf) {
    QProcess p;
    p.setStandardErrorFile(QProcess::nullDevice());
    p.start("pdfinfo", {pdf});
    p.waitForFinished(30000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

// A real printer through CUPS: the machine's printers are offered, the pages
// of a print go to the one chosen, and the next print offers it again.
TEST(DesktopPrinterCups, ThePagesGoToTheChosenPrinterWhichIsKept) {
    ASSERT_TRUE(QPrinterInfo::availablePrinterNames().contains("VELDO-PDF"))
        << "scripts/pdf-printer.sh adds the CUPS PDF printer VELDO-PDF";
    testing::TempDrive t;
    t.run.shared_settings_folder = t.dir.path();
    const QString data = t.dir.filePath("data");
    ASSERT_TRUE(write_demo_school(t.run, data).ok);
    auto marks = DbfTable::open(data + "/marks1.dbf");
    ASSERT_TRUE(marks);
    const QDateTime since = QDateTime::currentDateTime().addSecs(-1);

    QStringList offered;
    QTimer press;
    QObject::connect(&press, &QTimer::timeout, [&] {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* d = qobject_cast<OutputTargetDialog*>(w); d && d->isVisible()) {
                offered << d->findChild<QPushButton*>("druk_ok")->toolTip();
                d->findChild<QPushButton*>("druk_ok")->click();
            }
    });
    press.start(20);
    DesktopPrinter printer(t.run, nullptr);
    qputenv("PRINTER", "VELDO-PDF");  // the default printer, offered first
    const QString token = "CUPS" + QString::number(QDateTime::currentMSecsSinceEpoch());
    EXPECT_TRUE(printer.print([&](ReportRun& r) { return print_merit_list(r, *marks, "TAAK 1", 2, token); }));
    qunsetenv("PRINTER");
    // Without a default printer the dialog still names one of the machine's.
    EXPECT_TRUE(QPrinterInfo::availablePrinterNames().contains(OutputTargetDialog::default_printer_name()));
    EXPECT_TRUE(printer.print([&](ReportRun& r) { return print_merit_list(r, *marks, "TAAK 2", 3, token); }));
    EXPECT_EQ(offered, QStringList({" Print to VELDO-PDF", " Print to VELDO-PDF"}));

    // CUPS hands each job to its PDF backend, which writes a file named and
    // titled after the job (its text is redrawn as glyphs, so the title and
    // the page count are what can be read back).
    QStringList infos;
    for (int tries = 0; tries < 600 && infos.size() < 2; ++tries) {
        QTest::qWait(100);
        infos.clear();
        // A file still being written has no page count yet: wait for both.
        for (const QString& pdf : cups_pdf_files(since))
            if (QFileInfo(pdf).fileName().contains(token))
                if (const QString info = pdf_info(pdf); info.contains("Pages:")) infos << info;
    }
    ASSERT_EQ(infos.size(), 2) << "no PDF from VELDO-PDF in ~/PDF";
    infos.sort();
    EXPECT_TRUE(infos[0].contains("MERIT LIST " + token + " - TAAK 1")) << infos[0].toStdString();
    EXPECT_TRUE(infos[1].contains("MERIT LIST " + token + " - TAAK 2")) << infos[1].toStdString();
    for (const QString& info : infos) EXPECT_TRUE(info.contains(QRegularExpression("Pages:\\s+1\\n")));
}

}  // namespace
}  // namespace veldo
