#include "gui/refused_folder_form.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/change_folder.h"
#include "shell/screens.h"

namespace veldo {

RefusedFolderForm::RefusedFolderForm(const ChangeFolder& folder, QWidget* parent) : QDialog(parent) {
    setObjectName(screen::change_folder);
    setWindowTitle(folder.caption());
    setMinimumWidth(480);
    auto* layout = new QVBoxLayout(this);
    auto* title = new QLabel(folder.caption(), this);
    QFont f = title->font();
    f.setPointSize(13);
    f.setBold(true);
    title->setFont(f);
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);
    auto* hint = new QLabel(folder.refused_hint(), this);
    hint->setObjectName("hint");
    hint->setWordWrap(true);
    layout->addWidget(hint);
    auto* close = new QPushButton(QStringLiteral("EXIT"), this);
    close->setObjectName("exit");
    close->setDefault(true);
    layout->addWidget(close);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
}

}  // namespace veldo
