#pragma once
// MathCalc: the small four-function calculator that the mark screens show
// beside their grids. It reads nothing of the run state and hands nothing
// back; the teacher reads the figure off the display.

#include <QString>

namespace veldo {

class Screens;

class MathCalc {
public:
    explicit MathCalc(Screens& screens);

    // One handler per button.
    void digit(int value);  // 0 to 9; anything else is passed over
    void DotBttn();
    void Plus();
    void Minus();
    void Times();
    void Div();
    void Equals();
    void Over();
    void PlusMinus();
    void ClearBttn();

    // The form's key handler, by the key code the form receives: 27 unloads
    // the form, 48-57 digits, 187 Equals, 106 Times, 107 Plus, 109 Minus,
    // 111 Div, 46 DotBttn, 67 and 99 ClearBttn. Other codes do nothing.
    void key_press(int key_code);

    const QString& display() const { return display_; }
    double first_operand() const { return first_operand_; }
    double second_operand() const { return second_operand_; }
    const QString& pending_operator() const { return pending_operator_; }
    bool replace_display() const { return replace_display_; }

    // The form's caption in the user's language.
    static QString caption(bool afrikaans);

private:
    void start_new_number();
    void take_operator(const QString& sign);

    Screens& screens_;
    QString display_;
    double first_operand_ = 0.0;
    double second_operand_ = 0.0;
    QString pending_operator_;
    bool replace_display_ = false;
};

}  // namespace veldo
