#pragma once
// kies_drukker's window: the printer's name, PRINT, CANCEL, SELECT, the
// colour and black toggles and the Excel and HTML buttons. Every click goes
// to OutputTarget; the window closes when the logic says so.

#include <QDialog>

#include "reports/page_engine.h"

class QLabel;
class QPushButton;

namespace veldo {

class OutputTarget;
struct RunState;

// The output choice of the desktop program, for ask_output_target: shows
// kies_drukker over `parent`, copies what the user chose into the job and
// lets the progress window follow the job.
OutputDialog desktop_output_dialog(RunState& run, QWidget* parent);

class OutputTargetDialog : public QDialog {
    Q_OBJECT
public:
    OutputTargetDialog(OutputTarget& target, QWidget* parent = nullptr);

    // The platform's printer choice, for OutputTarget's chooser: a print
    // dialog starting at `current`; "" on Cancel.
    static QString choose_printer(QWidget* parent, const QString& current);
    // The default printer's name, "" when the machine has none.
    static QString default_printer_name();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPushButton* add_button(const QString& name, void (OutputTarget::*handler)());
    void render();

    OutputTarget& target_;
    QLabel* drukker_naam_ = nullptr;
    QPushButton* druk_ok_ = nullptr;
    QPushButton* druk_stop_ = nullptr;
    QPushButton* druk_wysig_ = nullptr;
    QPushButton* kies_kleur_ = nullptr;
    QPushButton* kies_mono_ = nullptr;
    QPushButton* kies_excel_ = nullptr;
    QPushButton* kies_html_ = nullptr;
};

}  // namespace veldo
