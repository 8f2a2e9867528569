#pragma once
// The calculator's window: a display over a pocket-calculator keypad. Every
// click and key goes to MathCalc; the window shows its display.

#include <QDialog>

class QAbstractButton;
class QKeyEvent;
class QLabel;

namespace veldo {

class MathCalc;

class CalculatorDialog : public QDialog {
    Q_OBJECT
public:
    CalculatorDialog(MathCalc& calc, bool afrikaans, QWidget* parent = nullptr);

    // The code the calculator's key handler expects for a key, or 0 for a
    // key it does not know: digits 48-57, Escape 27, '=' 187, '*' 106,
    // '+' 107, '-' 109, '/' 111, '.' 46, 'C' 67 and 'c' 99.
    static int key_code_for(const QKeyEvent& event);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QAbstractButton* add_button(const QString& name, const QString& caption, void (MathCalc::*handler)());
    void render();

    MathCalc& calc_;
    QLabel* display_ = nullptr;
};

}  // namespace veldo
