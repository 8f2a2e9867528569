#include "util/cp1252.h"

#include <gtest/gtest.h>

using namespace veldo;

TEST(Cp1252Codec, AfrikaansLettersAndTheHighBlockAreSingleBytes) {
    EXPECT_EQ(cp1252::encode(QStringLiteral(u"\u00EB\u00EA\u00F4\u00E9")), QByteArray("\xEB\xEA\xF4\xE9"));
    EXPECT_EQ(cp1252::decode(QByteArray("Ho\xEBrskool")), QStringLiteral(u"Ho\u00EBrskool"));
    EXPECT_EQ(cp1252::decode(QByteArray("\x80\x85\x93\x94\x96")),
              QStringLiteral(u"\u20AC\u2026\u201C\u201D\u2013"));
    EXPECT_EQ(cp1252::encode(QStringLiteral(u"\u20AC\u0160\u0178")), QByteArray("\x80\x8A\x9F"));
}

TEST(Cp1252Codec, UnassignedCodesStayTheirC1Controls) {
    for (unsigned char code : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
        const QChar c = cp1252::char_of(code);
        EXPECT_EQ(c.unicode(), code);
        EXPECT_EQ(cp1252::code_of(c), code);
    }
}

// NUL included: a text holds every byte, and nothing is lost on the way back.
TEST(Cp1252Codec, EveryByteRoundTrips) {
    QByteArray all(256, Qt::Uninitialized);
    for (int i = 0; i < 256; ++i) all[i] = char(i);
    EXPECT_EQ(cp1252::decode(all).size(), 256);
    EXPECT_EQ(cp1252::encode(cp1252::decode(all)), all);
}

TEST(Cp1252Codec, CharactersOutsideThePageBecomeQuestionMarks) {
    EXPECT_EQ(cp1252::code_of(QChar(0x0394)), -1);
    EXPECT_EQ(cp1252::encode(QStringLiteral(u"a\u0394\u4E2Db")), QByteArray("a??b"));
    // The C1 codes that the page gives to other signs are not in it.
    EXPECT_EQ(cp1252::code_of(QChar(0x0080)), -1);
}
