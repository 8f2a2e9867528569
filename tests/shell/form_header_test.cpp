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
    EXPECT_DOUBLE_EQ(rec.date("date"), 46349.0);  // 2026-11-23
    EXPECT_EQ(QStringList({rec.text("user").trimmed(), rec.text("time"), rec.text("form").trimmed(),
                           rec.text("reserved")}),
              QStringList({get_login_name().left(50), "10:16:01  ", "MARK BOOK", QString(50, ' ')}));
    EXPECT_EQ(raw.mid(258 + 168, 90), QByteArray(90, ' '));
}

TEST_F(FormHeaderTest, APartialLastRecordIsWrittenOverByTheRoundedCount) {
    // 2.5 records round to 2 and 1.78 to 2: either way the new one is record 3.
    for (const int before : {258 * 2 + 129, 258 + 200}) {
        write_bytes(audit(), QByteArray(before, 'x'));
        ASSERT_TRUE(form_header(ctx, "X"));
        EXPECT_EQ(read_bytes(audit()).size(), 3 * 258) << before;
    }
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
    EXPECT_EQ(QStringList({h.ops_datum, h.ops_tyd, h.prg_version, h.internet_version}),
              QStringList({"2026.11.23", "10:15:30", "DEBIAN GNU/LINUX 12 (BOOKWORM) ()", " (www.kestralin.co.za)"}));
}

}  // namespace
}  // namespace veldo
