#include "gui/print_progress_widget.h"

#include <QVBoxLayout>

namespace veldo {

PrintProgressWidget::PrintProgressWidget(QWidget* parent) : QWidget(parent, Qt::Tool) {
    setObjectName(QStringLiteral("wys_druk_vordering"));
    setWindowTitle(QStringLiteral("VELDO-TALLY"));
    auto* layout = new QVBoxLayout(this);
    wdv_opskrif_ = new QLabel(this);
    wdv_opskrif_->setObjectName(QStringLiteral("wdv_opskrif"));
    QFont f = wdv_opskrif_->font();
    f.setBold(true);
    wdv_opskrif_->setFont(f);
    wdv_drukker_ = new QLabel(this);
    wdv_drukker_->setObjectName(QStringLiteral("wdv_drukker"));
    wdv_bladsy_ = new QLabel(this);
    wdv_bladsy_->setObjectName(QStringLiteral("wdv_bladsy"));
    layout->addWidget(wdv_opskrif_);
    layout->addWidget(wdv_drukker_);
    layout->addWidget(wdv_bladsy_);
    setMinimumWidth(320);
}

void PrintProgressWidget::follow(PrintProgress& progress) {
    progress.changed = [this](const PrintProgress& p) { render(p); };
}

void PrintProgressWidget::render(const PrintProgress& progress) {
    wdv_opskrif_->setText(progress.heading());
    wdv_drukker_->setText(progress.device());
    wdv_bladsy_->setText(QString::number(progress.page()));
    setVisible(progress.visible());
    if (progress.visible()) repaint();
}

}  // namespace veldo
