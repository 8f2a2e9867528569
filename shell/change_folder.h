#pragma once
// The screen `change_folder`: the user picks the data folder, and a pick
// counts only when the folder holds `Exp_Mrk_control.txt`. The last accepted
// folder is remembered in `user_info.txt` and its drive in `last_drive.txt`,
// both in the program folder.

#include <QString>

namespace veldo {

struct RunState;
struct ShellContext;

// `user_info.txt` in `folder` (any case) with the data folder as its first
// line and the old second and third lines behind it. A missing file is made
// only when `create` is true. False when it could not be written.
bool remember_data_folder(const RunState& run, const QString& folder, bool create);

class ChangeFolder {
public:
    explicit ChangeFolder(ShellContext& ctx) : ctx_(ctx) {}

    QString caption() const;  // "WYSIG DATA GIDS" / "CHANGE DATA FOLDER"
    // The line the form shows while it stays open after a refused folder.
    QString refused_hint() const;
    // Asks for the folder, starting on the remembered one. Unloads the screen
    // on a cancel or an accepted folder; a refused folder leaves it open and
    // empty until the user closes it.
    void load();
    // Closing counts as activity.
    void unload();

    bool is_loaded() const { return loaded_; }

private:
    ShellContext& ctx_;
    bool loaded_ = false;
};

}  // namespace veldo
