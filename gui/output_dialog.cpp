#include "gui/output_dialog.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QVBoxLayout>

#include "gui/print_progress_widget.h"
#include "reports/output_target.h"

namespace veldo {

OutputTargetDialog::OutputTargetDialog(OutputTarget& target, QWidget* parent)
    : QDialog(parent), target_(target) {
    setObjectName(QStringLiteral("kies_drukker"));
    setModal(true);

    drukker_naam_ = new QLabel(this);
    drukker_naam_->setObjectName(QStringLiteral("drukker_naam"));
    drukker_naam_->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    drukker_naam_->setMinimumWidth(260);
    drukker_naam_->installEventFilter(this);

    druk_ok_ = add_button(QStringLiteral("druk_ok"), &OutputTarget::druk_ok);
    druk_stop_ = add_button(QStringLiteral("druk_stop"), &OutputTarget::druk_stop);
    druk_wysig_ = add_button(QStringLiteral("druk_wysig"), &OutputTarget::druk_wysig);
    kies_kleur_ = add_button(QStringLiteral("kies_kleur"), &OutputTarget::kies_kleur);
    kies_mono_ = add_button(QStringLiteral("kies_mono"), &OutputTarget::kies_mono);
    kies_excel_ = add_button(QStringLiteral("kies_excel"), &OutputTarget::kies_excel);
    kies_html_ = add_button(QStringLiteral("kies_html"), &OutputTarget::kies_html);
    kies_kleur_->setCheckable(true);
    kies_mono_->setCheckable(true);
    // The file buttons carry a picture in the family's dialog; plain words
    // stand in for it.
    kies_excel_->setText(QStringLiteral("EXCEL"));
    kies_html_->setText(QStringLiteral("HTML"));
    druk_ok_->setDefault(true);

    auto* grid = new QGridLayout;
    grid->addWidget(druk_ok_, 0, 0);
    grid->addWidget(druk_stop_, 0, 1);
    grid->addWidget(druk_wysig_, 0, 2);
    grid->addWidget(kies_kleur_, 1, 0);
    grid->addWidget(kies_mono_, 1, 1);
    grid->addWidget(kies_excel_, 2, 0);
    grid->addWidget(kies_html_, 2, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(drukker_naam_);
    layout->addLayout(grid);

    target_.load();
    render();
}

QPushButton* OutputTargetDialog::add_button(const QString& name, void (OutputTarget::*handler)()) {
    auto* b = new QPushButton(this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    connect(b, &QPushButton::clicked, this, [this, handler] {
        (target_.*handler)();
        if (target_.closed()) {
            accept();
            return;
        }
        render();
    });
    return b;
}

bool OutputTargetDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == drukker_naam_ && event->type() == QEvent::MouseButtonDblClick) {
        target_.drukker_naam_dblclick();
        render();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void OutputTargetDialog::render() {
    const OutputChoice& c = target_.choice();
    setWindowTitle(c.print_job_title);
    drukker_naam_->setText(c.printer_name);
    drukker_naam_->setToolTip(target_.druk_ok_tooltip());
    druk_ok_->setText(target_.druk_ok_caption());
    druk_ok_->setToolTip(target_.druk_ok_tooltip());
    druk_stop_->setText(target_.druk_stop_caption());
    druk_stop_->setToolTip(target_.druk_stop_tooltip());
    druk_wysig_->setText(target_.druk_wysig_caption());
    druk_wysig_->setToolTip(target_.druk_wysig_tooltip());
    kies_kleur_->setText(target_.kies_kleur_caption());
    kies_kleur_->setToolTip(target_.kies_kleur_tooltip());
    kies_mono_->setText(target_.kies_mono_caption());
    kies_mono_->setToolTip(target_.kies_mono_tooltip());
    kies_kleur_->setChecked(target_.colour_pressed());
    kies_mono_->setChecked(!target_.colour_pressed());
    kies_excel_->setToolTip(target_.excel_file_title());
    kies_html_->setToolTip(target_.html_file_title());
}

QString OutputTargetDialog::choose_printer(QWidget* parent, const QString& current) {
    QPrinter printer;
    if (!current.isEmpty()) printer.setPrinterName(current);
    QPrintDialog dialog(&printer, parent);
    if (dialog.exec() != QDialog::Accepted) return QString();
    return printer.printerName();
}

// The machine's default printer; a machine with printers but no default
// (a fresh CUPS install) offers its first, as the printer dialog would.
QString OutputTargetDialog::default_printer_name() {
    const QString chosen = QPrinterInfo::defaultPrinterName();
    return chosen.isEmpty() ? QPrinterInfo::availablePrinterNames().value(0) : chosen;
}

OutputDialog desktop_output_dialog(RunState& run, QWidget* parent) {
    return [&run, parent](PrintJob& job) {
        OutputChoice choice = output_choice_of(job);
        if (choice.printer_name.isEmpty()) choice.printer_name = OutputTargetDialog::default_printer_name();
        OutputTarget target(run, choice, [parent](const QString& current) {
            return OutputTargetDialog::choose_printer(parent, current);
        });
        OutputTargetDialog dialog(target, parent);
        dialog.exec();
        apply_output_choice(choice, job);
        if (job.print_chosen) {
            // One progress window for the frame, kept for later jobs.
            auto* window = parent ? parent->findChild<PrintProgressWidget*>() : nullptr;
            if (!window) window = new PrintProgressWidget(parent);
            window->follow(job.progress);
        }
    };
}

}  // namespace veldo
