// Clearing other users' locks, and the network switch file.
#include <gtest/gtest.h>

#include "store/locks.h"
#include "tests/support/temp_drive.h"
#include "util/text_helpers.h"

namespace veldo {
namespace {

using testing::TempDrive;
using testing::read_bytes;
using testing::write_bytes;

QByteArray lock_slot(const QString& user, const QString& type, const QString& folder, qint16 number = 7) {
    RecordBuffer rec(&lock_record_layout());
    rec.set_text("lock_user", user);
    rec.set_date("lock_date", 46000.5);
    rec.set_text("lock_table", "PPL");
    rec.set_text("lock_type", type);
    rec.set_int16("lock_number", number);
    rec.set_text("lock_folder", folder);
    return rec.bytes();
}

TEST(UserLocks, OtherUsersEntriesOfTheFolderAreBlankedAndOwnEntriesStay) {
    TempDrive t;
    const QString me = get_login_name(), folder = t.run.data_folder;
    const QByteArray mine = lock_slot(me, "L", folder);
    const QByteArray theirs = lock_slot(me + "x", "L", folder);
    const QByteArray elsewhere = lock_slot(me + "x", "L", folder + "2");
    const QByteArray untyped = lock_slot(me + "x", "", folder);
    write_bytes(t.path("user_lock_record.txt"), mine + theirs + elsewhere + untyped);

    EXPECT_TRUE(clear_user_locks(*t.store, folder));
    ASSERT_EQ(lock_record_layout().length(), 140);
    const QByteArray blank = RecordBuffer(&lock_record_layout()).bytes();
    EXPECT_EQ(read_bytes(t.path("user_lock_record.txt")), mine + blank + elsewhere + untyped);
    EXPECT_EQ(t.store->open_file_count(), 0);
}

TEST(UserLocks, AMissingFolderReturnsFalseAndAMissingFileIsMadeEmpty) {
    TempDrive t;
    EXPECT_FALSE(clear_user_locks(*t.store, t.path("gone")));
    EXPECT_FALSE(QFileInfo::exists(t.path("user_lock_record.txt")));
    EXPECT_TRUE(clear_user_locks(*t.store, t.run.data_folder));
    const QFileInfo made(t.path("user_lock_record.txt"));
    EXPECT_TRUE(made.exists() && made.size() == 0);
}

TEST(NetworkSwitch, IsCreatedFalseOnceAndReadAfterwards) {
    TempDrive t;
    EXPECT_FALSE(read_network_switch(t.run));
    EXPECT_EQ(read_bytes(t.path("ProgramData/KESTRALIN/networklock.txt")), QByteArray("#FALSE#\r\n"));
    write_bytes(t.path("ProgramData/KESTRALIN/networklock.txt"), "#TRUE#\r\n");
    EXPECT_TRUE(read_network_switch(t.run));
}

}  // namespace
}  // namespace veldo
