#pragma once
// The manual viewer's window: the family's manuals as 15 options, open,
// browse and exit. Clicks go to ManualViewer; the options show its state.

#include <QDialog>

class QButtonGroup;

namespace veldo {

class ManualViewer;

class ManualViewerDialog : public QDialog {
    Q_OBJECT
public:
    ManualViewerDialog(ManualViewer& viewer, bool afrikaans, QWidget* parent = nullptr);

    // Runs the form's load; when it offers the list, shows the window modal.
    // A named manual is opened without a window.
    static void show_modal(ManualViewer& viewer, bool afrikaans, QWidget* parent = nullptr);

private:
    void render();

    ManualViewer& viewer_;
    QButtonGroup* options_ = nullptr;
};

}  // namespace veldo
