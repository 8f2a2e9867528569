#include "reports/recording_surface.h"

#include <gtest/gtest.h>

using namespace veldo;
using Kind = PrintRecord::Kind;

TEST(RecordingSurfaceMetrics, ThePageInCharactersOfTheFontByOrientationAndZoom) {
    struct Case {
        PageOrientation orientation;
        float size, zoom, width, height;
    };
    const Case cases[] = {
        {PageOrientation::Portrait, 10, 1, 523.0f / 6.0f, 770.0f / 12.0f},
        {PageOrientation::Portrait, 8, 1, 523.0f / 4.8f, 770.0f / 9.6f},
        {PageOrientation::Landscape, 10, 1, 770.0f / 6.0f, 523.0f / 12.0f},  // the sides swap
        {PageOrientation::Portrait, 10, 2, 523.0f / 6.0f, 2 * 770.0f / 12.0f},  // zoom stretches the lines
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.size << " zoom " << c.zoom);
        RecordingSurface s;
        s.set_orientation(c.orientation);
        s.set_font_size(c.size);
        s.set_character_scale(c.zoom);
        EXPECT_EQ(s.orientation(), c.orientation);
        EXPECT_FLOAT_EQ(s.ScaleWidth(), c.width);
        EXPECT_FLOAT_EQ(s.ScaleHeight(), c.height);
        s.set_character_scale();
        EXPECT_FLOAT_EQ(s.ScaleHeight(), c.height / c.zoom);
    }
}

TEST(RecordingSurfaceMetrics, TextIsMeasuredInCharactersAndLines) {
    RecordingSurface s;
    EXPECT_FLOAT_EQ(s.TextWidth(QStringLiteral("ABCDE")), 5.0f);
    EXPECT_FLOAT_EQ(s.TextWidth(QStringLiteral("AB\r\nABCD")), 4.0f);
    EXPECT_FLOAT_EQ(s.TextHeight(QStringLiteral("AB\nCD\nEF")), 3.0f);
    EXPECT_FLOAT_EQ(s.columns_to_lines(2), 1.0f);  // a cell is half as wide as high
    EXPECT_FLOAT_EQ(s.lines_to_columns(1), 2.0f);
}

TEST(RecordingSurfacePosition, AChangeOfFontKeepsThePenWhereItWas) {
    RecordingSurface s;
    s.set_font_size(10);
    s.set_CurrentY(6);
    s.set_CurrentX(10);
    s.set_font_size(12);
    EXPECT_FLOAT_EQ(s.CurrentY(), 5.0f);  // 72 points down, lines of 14.4
    EXPECT_FLOAT_EQ(s.CurrentX(), 60.0f / 7.2f);
}

TEST(RecordingSurfacePosition, PrintMovesAlongTheLineOrDown) {
    RecordingSurface s;
    s.set_CurrentX(3);
    s.set_CurrentY(2);
    s.print_text(QStringLiteral("abc"), true);
    EXPECT_FLOAT_EQ(s.CurrentX(), 6.0f);
    EXPECT_FLOAT_EQ(s.CurrentY(), 2.0f);
    s.print_text(QStringLiteral("de"));
    EXPECT_FLOAT_EQ(s.CurrentX(), 0.0f);
    EXPECT_FLOAT_EQ(s.CurrentY(), 3.0f);
    const PrintRecord* r = s.find_text(QStringLiteral("de"));
    ASSERT_NE(r, nullptr);
    EXPECT_FLOAT_EQ(r->x, 6.0f);
    EXPECT_DOUBLE_EQ(r->px, 36.0);
    EXPECT_DOUBLE_EQ(r->py, 24.0);
}

TEST(RecordingSurfacePages, NewPageCountsAndStartsAtTheTop) {
    RecordingSurface s;
    EXPECT_EQ(s.Page(), 1);
    EXPECT_FALSE(s.page_has_ink());
    s.print_text(QStringLiteral("x"));
    EXPECT_TRUE(s.page_has_ink());
    s.NewPage();
    EXPECT_EQ(s.Page(), 2);
    EXPECT_FALSE(s.page_has_ink());
    EXPECT_FLOAT_EQ(s.CurrentY(), 0.0f);
    s.print_text(QStringLiteral("y"));
    EXPECT_EQ(s.find_text(QStringLiteral("y"))->page, 2);
    s.EndDoc();
    EXPECT_EQ(s.pages_ended(), 2);
    EXPECT_EQ(s.Page(), 1);
}

TEST(RecordingSurfacePages, OrientationHoldsOnlyOnAnEmptySheet) {
    RecordingSurface s;
    s.line(0, 0, 1, 1);
    s.set_orientation(PageOrientation::Landscape);
    EXPECT_EQ(s.orientation(), PageOrientation::Portrait);
    s.NewPage();
    s.set_orientation(PageOrientation::Landscape);
    EXPECT_EQ(s.orientation(), PageOrientation::Landscape);
}

TEST(RecordingSurfacePages, KillDocSendsNothing) {
    RecordingSurface s;
    s.print_text(QStringLiteral("x"));
    s.KillDoc();
    EXPECT_EQ(s.pages_ended(), 0);
    EXPECT_EQ(s.records_of(Kind::KillDoc).size(), 1);
}

TEST(RecordingSurfacePages, UnknownPicturesFail) {
    RecordingSurface s;
    EXPECT_FALSE(s.paint_picture(QStringLiteral("/nowhere.png"), 0, 0, 1, 1));
    s.add_picture(QStringLiteral("/crest.png"));
    EXPECT_TRUE(s.paint_picture(QStringLiteral("/crest.png"), 1, 2, 4, 2));
    const auto pics = s.records_of(Kind::Picture);
    ASSERT_EQ(pics.size(), 1);
    EXPECT_FLOAT_EQ(pics[0].x2, 5.0f);
    EXPECT_FLOAT_EQ(pics[0].y2, 4.0f);
}
