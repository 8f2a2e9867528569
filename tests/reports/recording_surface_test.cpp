// The recording surface's scale, pen and page arithmetic, a picture's corners
// and an orientation that holds only on an empty sheet are pinned by the page
// engine's and grid report's golden prints, which give every position both in
// characters and in points; here what those prints never reach.
#include "reports/recording_surface.h"

#include <gtest/gtest.h>

using namespace veldo;
using Kind = PrintRecord::Kind;

TEST(RecordingSurfaceMetrics, TheWidestLineCountsWithoutItsCarriageReturn) {
    RecordingSurface s;
    EXPECT_FLOAT_EQ(s.TextWidth(QStringLiteral("ABCD\r\nAB")), 4.0f);
    EXPECT_FLOAT_EQ(s.TextHeight(QStringLiteral("AB\nCD\nEF")), 3.0f);
    EXPECT_FLOAT_EQ(s.lines_to_columns(1), 2.0f);  // a cell is half as wide as high
}

TEST(RecordingSurfacePages, PagesCountUntilTheDocumentEndsAndAKilledOneSendsNothing) {
    RecordingSurface s;
    EXPECT_FALSE(s.page_has_ink());
    s.print_text(QStringLiteral("x"));
    EXPECT_TRUE(s.page_has_ink());
    s.NewPage();
    EXPECT_EQ(s.Page(), 2);
    EXPECT_FALSE(s.page_has_ink());
    EXPECT_FLOAT_EQ(s.CurrentY(), 0.0f);
    s.EndDoc();
    EXPECT_EQ(s.pages_ended(), 2);
    EXPECT_EQ(s.Page(), 1);
    s.EndDoc();  // a document that never got ink sends no sheet
    EXPECT_EQ(s.pages_ended(), 2);
    s.print_text(QStringLiteral("y"));
    s.EndDoc();
    EXPECT_EQ(s.pages_ended(), 3);
    s.print_text(QStringLiteral("z"));
    s.KillDoc();
    EXPECT_EQ(s.pages_ended(), 3);
    EXPECT_EQ(s.records_of(Kind::KillDoc).size(), 1);
}

TEST(RecordingSurfacePages, UnknownPicturesFail) {
    RecordingSurface s;
    EXPECT_FALSE(s.paint_picture(QStringLiteral("/nowhere.png"), 0, 0, 1, 1));
    s.add_picture(QStringLiteral("/crest.png"));
    EXPECT_TRUE(s.paint_picture(QStringLiteral("/crest.png"), 1, 2, 4, 2));
    EXPECT_EQ(s.records_of(Kind::Picture).size(), 1);
}
