#pragma once
// The family's user locks: `user_lock_record.txt` at the shared settings
// folder (the drive root here), 140-byte slots. This program takes no lock of
// its own; closing everything clears the entries other users left in the
// data folder.

#include <QString>

#include "store/record_layout.h"

namespace veldo {

class RecordStore;
struct RunState;

const RecordLayout& lock_record_layout();

// Blanks every "L" entry of `folder` held by another user; this user's own
// entries stay. False only when the folder is missing.
bool clear_user_locks(RecordStore& store, const QString& folder);
bool folder_is_present(const QString& folder);
// Reads `networklock.txt` in the family folder, creating it with False when
// it is missing. Errors are passed over.
bool read_network_switch(RunState& run);

}  // namespace veldo
