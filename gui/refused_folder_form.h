#pragma once
// The change-folder form as it stays open after a refused folder: its title,
// a line saying what to do, and EXIT.

#include <QDialog>

namespace veldo {

class ChangeFolder;

class RefusedFolderForm : public QDialog {
    Q_OBJECT
public:
    RefusedFolderForm(const ChangeFolder& folder, QWidget* parent = nullptr);
};

}  // namespace veldo
