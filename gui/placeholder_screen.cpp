#include "gui/placeholder_screen.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/screens.h"

namespace veldo {

PlaceholderScreen::PlaceholderScreen(const QString& name, const QString& caption, const QString& menu,
                                     Screens& screens, QWidget* parent)
    : QWidget(parent) {
    setObjectName(name);
    setAutoFillBackground(true);
    setFixedSize(520, 220);
    auto* layout = new QVBoxLayout(this);
    auto* title = new QLabel(caption, this);
    QFont f = title->font();
    f.setPointSize(14);
    f.setBold(true);
    title->setFont(f);
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);
    auto* exit = new QPushButton(QStringLiteral("EXIT"), this);
    exit->setObjectName("exit");
    layout->addWidget(exit);
    connect(exit, &QPushButton::clicked, this, [&screens, name, menu] {
        screens.unload(name);
        if (!menu.isEmpty()) screens.show(menu);
    });
}

}  // namespace veldo
