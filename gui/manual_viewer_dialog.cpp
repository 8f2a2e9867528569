#include "gui/manual_viewer_dialog.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "shell/manual_viewer.h"

namespace veldo {

ManualViewerDialog::ManualViewerDialog(ManualViewer& viewer, bool afrikaans, QWidget* parent)
    : QDialog(parent), viewer_(viewer) {
    setObjectName(QStringLiteral("acrobat_interface"));
    setWindowTitle(afrikaans ? QStringLiteral("HANDLEIDINGS") : QStringLiteral("MANUALS"));

    auto* layout = new QVBoxLayout(this);
    options_ = new QButtonGroup(this);
    for (int i = 1; i <= ManualViewer::kOptionCount; ++i) {
        auto* option = new QRadioButton(this);
        option->setObjectName(QStringLiteral("um_opsie_%1").arg(i));
        options_->addButton(option, i);
        layout->addWidget(option);
    }
    connect(options_, &QButtonGroup::idClicked, this, [this](int index) {
        viewer_.um_opsie_click(index);
        render();
    });

    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("pdf_ok"));
    auto* browse = new QPushButton(afrikaans ? QStringLiteral("SOEK ...") : QStringLiteral("BROWSE ..."), this);
    browse->setObjectName(QStringLiteral("pdf_soek"));
    auto* exit = new QPushButton(QStringLiteral("EXIT"), this);
    exit->setObjectName(QStringLiteral("pdf_exit"));
    for (QPushButton* b : {ok, browse, exit}) b->setAutoDefault(false);

    connect(ok, &QPushButton::clicked, this, [this] {
        viewer_.pdf_ok();
        render();
    });
    connect(browse, &QPushButton::clicked, this, [this] { viewer_.pdf_soek(); });
    connect(exit, &QPushButton::clicked, this, [this] {
        viewer_.pdf_exit();
        // The screen service may not know this instance: close it here too.
        accept();
    });

    auto* commands = new QHBoxLayout;
    commands->addWidget(ok);
    commands->addWidget(browse);
    commands->addStretch();
    commands->addWidget(exit);
    layout->addLayout(commands);
    render();
}

void ManualViewerDialog::show_modal(ManualViewer& viewer, bool afrikaans, QWidget* parent) {
    if (!viewer.load()) return;
    ManualViewerDialog dialog(viewer, afrikaans, parent);
    dialog.exec();
}

void ManualViewerDialog::render() {
    // An exclusive group cannot show "none marked"; lift it while setting.
    options_->setExclusive(false);
    for (int i = 1; i <= ManualViewer::kOptionCount; ++i) {
        QAbstractButton* option = options_->button(i);
        option->setText(viewer_.caption(i));
        option->setChecked(viewer_.option_on(i));
    }
    options_->setExclusive(true);
}

}  // namespace veldo
