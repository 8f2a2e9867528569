#include "gui/calculator_dialog.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/calculator.h"

namespace veldo {

CalculatorDialog::CalculatorDialog(MathCalc& calc, bool afrikaans, QWidget* parent)
    : QDialog(parent), calc_(calc) {
    setObjectName(QStringLiteral("MathCalc"));
    setWindowTitle(MathCalc::caption(afrikaans));
    // The keys belong to the window, not to whichever button was clicked last.
    setFocusPolicy(Qt::StrongFocus);

    display_ = new QLabel(this);
    display_->setObjectName(QStringLiteral("Display"));
    display_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    display_->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    display_->setMinimumHeight(32);
    QFont font = display_->font();
    font.setPointSize(font.pointSize() + 4);
    display_->setFont(font);

    auto* keys = new QGridLayout;
    auto digit_button = [this](int d) {
        auto* b = new QPushButton(QString::number(d), this);
        b->setObjectName(QStringLiteral("Digits_%1").arg(d));
        b->setFocusPolicy(Qt::NoFocus);
        b->setAutoDefault(false);
        connect(b, &QPushButton::clicked, this, [this, d] {
            calc_.digit(d);
            render();
        });
        return b;
    };
    // Row by row, as on a pocket calculator.
    keys->addWidget(add_button(QStringLiteral("ClearBttn"), QStringLiteral("C"), &MathCalc::ClearBttn), 0, 0);
    keys->addWidget(add_button(QStringLiteral("PlusMinus"), QStringLiteral("+/-"), &MathCalc::PlusMinus), 0, 1);
    keys->addWidget(add_button(QStringLiteral("Over"), QStringLiteral("1/x"), &MathCalc::Over), 0, 2);
    keys->addWidget(add_button(QStringLiteral("Div"), QStringLiteral("/"), &MathCalc::Div), 0, 3);
    keys->addWidget(digit_button(7), 1, 0);
    keys->addWidget(digit_button(8), 1, 1);
    keys->addWidget(digit_button(9), 1, 2);
    keys->addWidget(add_button(QStringLiteral("Times"), QStringLiteral("*"), &MathCalc::Times), 1, 3);
    keys->addWidget(digit_button(4), 2, 0);
    keys->addWidget(digit_button(5), 2, 1);
    keys->addWidget(digit_button(6), 2, 2);
    keys->addWidget(add_button(QStringLiteral("Minus"), QStringLiteral("-"), &MathCalc::Minus), 2, 3);
    keys->addWidget(digit_button(1), 3, 0);
    keys->addWidget(digit_button(2), 3, 1);
    keys->addWidget(digit_button(3), 3, 2);
    keys->addWidget(add_button(QStringLiteral("Plus"), QStringLiteral("+"), &MathCalc::Plus), 3, 3);
    keys->addWidget(digit_button(0), 4, 0, 1, 2);
    keys->addWidget(add_button(QStringLiteral("DotBttn"), QStringLiteral("."), &MathCalc::DotBttn), 4, 2);
    keys->addWidget(add_button(QStringLiteral("Equals"), QStringLiteral("="), &MathCalc::Equals), 4, 3);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(display_);
    layout->addLayout(keys);
    setFixedSize(sizeHint());
    render();
}

QAbstractButton* CalculatorDialog::add_button(const QString& name, const QString& caption,
                                              void (MathCalc::*handler)()) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    b->setFocusPolicy(Qt::NoFocus);
    b->setAutoDefault(false);
    connect(b, &QPushButton::clicked, this, [this, handler] {
        (calc_.*handler)();
        render();
    });
    return b;
}

int CalculatorDialog::key_code_for(const QKeyEvent& event) {
    const int key = event.key();
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return 48 + (key - Qt::Key_0);
    switch (key) {
    case Qt::Key_Escape: return 27;
    case Qt::Key_Equal: return 187;
    case Qt::Key_Asterisk: return 106;
    case Qt::Key_Plus: return 107;
    case Qt::Key_Minus: return 109;
    case Qt::Key_Slash: return 111;
    case Qt::Key_Period: return 46;
    case Qt::Key_C: return event.text() == QLatin1String("c") ? 99 : 67;
    default: return 0;
    }
}

void CalculatorDialog::keyPressEvent(QKeyEvent* event) {
    const int code = key_code_for(*event);
    // Enter and the other keys do nothing here, not even the dialog's defaults.
    if (code == 0) {
        event->accept();
        return;
    }
    calc_.key_press(code);
    // The unload goes through the screen service; the window closes itself
    // too, since the service may not know this instance.
    if (code == 27) {
        reject();
        return;
    }
    render();
}

void CalculatorDialog::render() { display_->setText(calc_.display()); }

}  // namespace veldo
