// The audit record every screen leaves, and the foot labels.
#include <gtest/gtest.h>

#include "shell/form_header.h"
#include "tests/support/shell_fixture.h"
#include "util/text_helpers.h"

namespace veldo {
namespace {

using testing::ShellFixture;
using testing::read_bytes;
using testing::write_bytes;

struct FormHeaderTest : ::testing::Test, ShellFixture {
    QString audit() const { return path("ProgramData/KESTRALIN/Audit_Trail.txt"); }
};

TEST_F(FormHeaderTest, AppendsA258ByteRecord) {
    ASSERT_TRUE(form_header(ctx, "PUNTEBOEK"));
    time = QTime(10, 16, 1);
    ASSERT_TRUE(form_header(ctx, "MARK BOOK"));
    const QByteArray raw = read_bytes(audit());
    ASSERT_EQ(raw.size(), 2 * 258);
    RecordBuffer rec(&audit_record_layout());
    rec.set_bytes(raw.mid(258));
    EXPECT_EQ(rec.text("user").trimmed(), get_login_name().left(50));
    EXPECT_DOUBLE_EQ(rec.date("date"), 46349.0);  // 2026-11-23
    EXPECT_EQ(rec.text("time"), "10:16:01  ");
    EXPECT_EQ(rec.text("form").trimmed(), "MARK BOOK");
    EXPECT_EQ(rec.text("reserved"), QString(50, ' '));
    EXPECT_EQ(raw.mid(258 + 168, 90), QByteArray(90, ' '));
}

TEST_F(FormHeaderTest, APartialLastRecordIsWrittenOverByTheRoundedCount) {
    write_bytes(audit(), QByteArray(258 * 2 + 129, 'x'));  // 2.5 records: 2, so record 3
    ASSERT_TRUE(form_header(ctx, "X"));
    EXPECT_EQ(read_bytes(audit()).size(), 3 * 258);
    write_bytes(audit(), QByteArray(258 + 200, 'x'));  // 1.78 records: 2, so record 3
    ASSERT_TRUE(form_header(ctx, "X"));
    EXPECT_EQ(read_bytes(audit()).size(), 3 * 258);
    EXPECT_EQ(read_bytes(audit()).mid(258, 200), QByteArray(200, 'x'));
}

TEST_F(FormHeaderTest, AnUnwritableFamilyFolderStopsTheLoad) {
    run.family_folder = path("missing/KESTRALIN");
    EXPECT_FALSE(form_header(ctx, "X"));
    EXPECT_EQ(dialogs.texts(), QStringList{"Path/File access error"});
}

TEST_F(FormHeaderTest, TheFootLabels) {
    run.os_product_name = "  Debian GNU/Linux 12 (bookworm) ";
    const FormHeader h = form_header_texts(ctx);
    EXPECT_EQ(h.ops_datum, "2026.11.23");
    EXPECT_EQ(h.ops_tyd, "10:15:30");
    EXPECT_EQ(h.prg_version, "DEBIAN GNU/LINUX 12 (BOOKWORM) ()");
    EXPECT_EQ(h.internet_version, " (www.kestralin.co.za)");
}

}  // namespace
}  // namespace veldo
