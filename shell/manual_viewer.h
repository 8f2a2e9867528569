#pragma once
// acrobat_interface: opens the family's PDF manuals in the desktop's viewer.
// A menu's help button names one manual through `manual_file_name`, and the
// form opens it and goes away; opened without a name it lists the family's
// manuals in the user's language and offers a browse for any PDF file.

#include <QString>
#include <array>

#include "shell/screens.h"

namespace veldo {

class ManualViewer {
public:
    static constexpr int kOptionCount = 15;

    explicit ManualViewer(ShellContext& context);

    // Clears the options. With a name in `manual_file_name` it opens that
    // manual, empties the name and returns false: the form hides at once.
    // Without one it sets the captions of the user's language and returns
    // true: the form stays to show the list.
    bool load();

    // Option clicks, index 1 to 15; the options are exclusive.
    void um_opsie_click(int index);
    // Opens the marked manual from the leaflets folder; the form stays.
    void pdf_ok();
    // Asks for any PDF file and opens it; no date stamp.
    void pdf_soek();
    void pdf_exit();

    // Opens `path` when it, its upper-case or its title-case spelling exists,
    // and always writes the date stamp beside it (the path with ".pdf" turned
    // into ".dte"). A stamp that cannot be written is reported to the user.
    void open_manual(const QString& path);

    // The folder of the family's manuals: root_folder + "/veldo-leaflets/".
    QString leaflets_folder() const;
    // The path `load` gives a manual name.
    QString manual_path_for(const QString& name) const;

    // Option state, index 1 to 15.
    bool option_on(int index) const;
    QString caption(int index) const;

    // The table of manuals, index 1 to 15; file names without ".pdf".
    static QString caption_for(int index, bool afrikaans);
    static QString file_for(int index, bool afrikaans);
    // Where a manual's date stamp goes; empty when the path names no PDF.
    static QString stamp_path_for(const QString& manual_path);

private:
    void clear_options();

    ShellContext& ctx_;
    std::array<bool, kOptionCount> options_{};
    std::array<QString, kOptionCount> captions_;
};

}  // namespace veldo
