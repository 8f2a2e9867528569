#include "reports/qt_print_surface.h"

#include <QFileInfo>
#include <QFontDatabase>
#include <QFontInfo>
#include <QImage>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "reports/grid_report.h"
#include "reports/page_engine.h"
#include "tests/support/pdf_printer.h"
#include "tests/support/temp_drive.h"

using namespace veldo;
using namespace veldo::testing;

TEST(QtPrintSurfaceFonts, MissingFamiliesFallBack) {
    const QString mono = QtPrintSurface::resolve_family(QStringLiteral("Lucida Console"));
    EXPECT_FALSE(mono.isEmpty());
    EXPECT_TRUE(QFontInfo(QFont(mono)).fixedPitch()) << mono.toStdString();
    const QString arial = QtPrintSurface::resolve_family(QStringLiteral("ARIAL"));
    EXPECT_FALSE(arial.isEmpty());
    if (QFontDatabase::families().contains(QStringLiteral("Liberation Sans")) &&
        !QFontDatabase::families().contains(QStringLiteral("Arial"), Qt::CaseInsensitive)) {
        EXPECT_EQ(arial, QStringLiteral("Liberation Sans"));
    }
    EXPECT_EQ(QtPrintSurface::resolve_family(QStringLiteral("DejaVu Sans")), QStringLiteral("DejaVu Sans"));
}

TEST(QtPrintSurfaceScale, A4InCharactersOfTheMonospacedCell) {
    QTemporaryDir dir;
    QtPrintSurface s(dir.filePath(QStringLiteral("scale.pdf")));
    s.set_font_name(QStringLiteral("Lucida Console"));
    s.set_font_size(10);
    // 523 points across; a 10-point monospaced cell is about 6 points wide.
    EXPECT_TRUE(s.ScaleWidth() > 80.0f && s.ScaleWidth() < 95.0f) << s.ScaleWidth();
    EXPECT_TRUE(s.ScaleHeight() > 55.0f && s.ScaleHeight() < 70.0f) << s.ScaleHeight();
    EXPECT_NEAR(s.TextWidth(QStringLiteral("ABCDEFGHIJ")), 10.0f, 0.05f);
    s.set_orientation(PageOrientation::Landscape);
    EXPECT_EQ(s.orientation(), PageOrientation::Landscape);
    EXPECT_GT(s.ScaleWidth(), 120.0f);
    s.set_CurrentY(6);
    s.set_font_size(20);
    EXPECT_NEAR(s.CurrentY(), 3.0f, 0.05f);  // the pen stays; the lines grew
}

TEST(QtPrintSurfacePdf, PageWithHeadAndLinesReadsBack) {
    TempDrive drive;
    drive.run.school_name = QStringLiteral("Hoerskool Rivierpark");
    drive.run.os_product_name = QStringLiteral("Debian GNU/Linux 12");
    const QString pdf = drive.path("lys.pdf");
    {
        QtPrintSurface surface(pdf);
        PrintJob job;
        job.fixed_time = QTime(9, 15, 0);
        job.new_print_job = true;
        QString title = QStringLiteral("PUNTELYS GRAAD 10");
        QString subtitle;
        EXPECT_EQ(page_head(surface, job, drive.run, title, subtitle), std::optional<float>(6.0f));
        surface.print_text(QStringLiteral("Jan Botha        75.5"));
        surface.print_text(QStringLiteral("Marie du Toit     81.0"));
        // A grid with an upright heading: the one text this surface turns.
        TextGrid grid(1, 1);
        grid.set_font_size(10);
        grid.set_format_string(QStringLiteral("<Naam|>Punt|^~~R~~Gemiddeld"));
        for (int c = 0; c < 3; ++c) grid.set_col_width(c, 1800);
        grid.add_item(QStringLiteral("Piet Pompies\t64.0\t60"));
        EXPECT_EQ(print_grid_report(surface, job, grid), GridReportResult::Finished);
        surface.set_CurrentY(20);
        end_of_print(surface, job, drive.run);
        EXPECT_EQ(drive.dialogs.texts(), QStringList{QStringLiteral("PRINTING COMPLETE (1 pages)")});
    }
    ASSERT_TRUE(QFileInfo::exists(pdf));
    const QString text = pdf_text(pdf);
    for (const char* part : {"2026.11.23", "VELDO-TALLY", "09:15:00", "Hoerskool Rivierpark", "PAGE : 1",
                             "PUNTELYS GRAAD 10", "Jan Botha", "Marie du Toit", "Piet Pompies", "Gemiddeld",
                             "KESTRALIN (Debian GNU/Linux 12)"})
        EXPECT_TRUE(text.contains(QLatin1String(part))) << part << "\n" << text.toStdString();
    // The date and the program's title share the first line of the head.
    for (const QString& line : text.split(QLatin1Char('\n')))
        EXPECT_TRUE(!line.contains(QStringLiteral("2026.11.23")) || line.contains(QStringLiteral("VELDO-TALLY")));
}

TEST(QtPrintSurfacePdf, KillDocLeavesNoFileAndAMissingPictureIsRefused) {
    QTemporaryDir dir;
    const QString gone = dir.filePath(QStringLiteral("weg.pdf"));
    QtPrintSurface killed(gone);
    killed.print_text(QStringLiteral("x"));
    killed.KillDoc();
    EXPECT_FALSE(QFileInfo::exists(gone));

    QtPrintSurface s(dir.filePath(QStringLiteral("p.pdf")));
    EXPECT_FALSE(s.paint_picture(dir.filePath(QStringLiteral("geen.png")), 1, 1, 4, 2));
    QImage crest(40, 20, QImage::Format_RGB32);
    crest.fill(Qt::darkGreen);
    const QString path = dir.filePath(QStringLiteral("wapen.png"));
    ASSERT_TRUE(crest.save(path));
    EXPECT_TRUE(s.paint_picture(path, 1, 1, 4, 2));
    EXPECT_TRUE(s.page_has_ink());
    s.EndDoc();
}

TEST(QtPrintSurfacePdf, PagesCountAndLandscapeTakesHold) {
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("twee.pdf"));
    {
        QtPrintSurface s(pdf);
        s.set_orientation(PageOrientation::Landscape);
        s.print_text(QStringLiteral("eerste"));
        s.NewPage();
        EXPECT_EQ(s.Page(), 2);
        s.print_text(QStringLiteral("tweede"));
        s.EndDoc();
    }
    const QString info = poppler(QStringLiteral("pdfinfo"), pdf);
    EXPECT_TRUE(info.contains(QRegularExpression(QStringLiteral("Pages:\\s+2")))) << info.toStdString();
    EXPECT_TRUE(info.contains(QRegularExpression(QStringLiteral("Page size:\\s+84[12]")))) << info.toStdString();
    EXPECT_EQ(pdf_text(pdf, QStringLiteral("-raw")).simplified(), QStringLiteral("eerste tweede"));
}

TEST(QtPrintSurfacePrinter, DrawsOnTheChosenPrinter) {
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("printer.pdf"));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(pdf);
    printer.setPageSize(QPageSize(QPageSize::A4));
    {
        QtPrintSurface s(printer);
        s.set_font_name(QStringLiteral("Lucida Console"));
        s.set_font_size(10);
        EXPECT_GT(s.ScaleWidth(), 70.0f);
        s.set_CurrentX(5);
        s.set_CurrentY(3);
        s.print_text(QStringLiteral("Uit die drukker"));
        s.box(1, 1, 40, 6, 0xC0C0C0);
        EXPECT_TRUE(s.page_has_ink());
        s.EndDoc();
        EXPECT_FALSE(s.page_has_ink());
    }
    EXPECT_TRUE(pdf_text(pdf).contains(QStringLiteral("Uit die drukker")));
}
