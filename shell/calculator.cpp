#include "shell/calculator.h"

#include <cmath>

#include "shell/screens.h"
#include "util/legacy_number.h"

namespace veldo {
namespace {

// Every figure the calculator shows is plain number text: no leading blank
// for positive numbers, so an emptied display turned round reads "0".
QString shown(double value) { return plain_number_text(value); }

// The number on the display. Val stops at an exponent, but the display shows
// very large and very small results as "1E+18" or "3.33333333333333E-05",
// and those must read back as themselves.
double shown_value(const QString& display) {
    double value = 0.0;
    if (parse_numeric(display, &value)) return value;
    return Val(display);
}

}  // namespace

MathCalc::MathCalc(Screens& screens) : screens_(screens) {}

QString MathCalc::caption(bool afrikaans) {
    return afrikaans ? QStringLiteral("SAKREKENAAR") : QStringLiteral("CALCULATOR");
}

void MathCalc::start_new_number() {
    if (!replace_display_) return;
    display_.clear();
    replace_display_ = false;
}

void MathCalc::digit(int value) {
    if (value < 0 || value > 9) return;
    start_new_number();
    display_.append(QChar(u'0' + value));
}

void MathCalc::DotBttn() {
    start_new_number();
    if (!display_.contains(QLatin1Char('.'))) display_.append(QLatin1Char('.'));
}

// An operator only takes what is shown: a pending sum is dropped, so
// 2 + 3 + 4 = gives 7, not 9.
void MathCalc::take_operator(const QString& sign) {
    first_operand_ = shown_value(display_);
    pending_operator_ = sign;
    display_.clear();
}

void MathCalc::Plus() { take_operator(QStringLiteral("+")); }
void MathCalc::Minus() { take_operator(QStringLiteral("-")); }
void MathCalc::Times() { take_operator(QStringLiteral("*")); }
void MathCalc::Div() { take_operator(QStringLiteral("/")); }

void MathCalc::Equals() {
    second_operand_ = shown_value(display_);
    double result = 0.0;
    if (pending_operator_ == QLatin1String("+")) {
        result = first_operand_ + second_operand_;
    } else if (pending_operator_ == QLatin1String("-")) {
        result = first_operand_ - second_operand_;
    } else if (pending_operator_ == QLatin1String("*")) {
        result = first_operand_ * second_operand_;
    } else if (pending_operator_ == QLatin1String("/")) {
        // Division by zero shows 0, without a word.
        if (second_operand_ != 0.0) result = first_operand_ / second_operand_;
    }
    // Errors are passed over here: an overflow leaves the result at its start.
    if (!std::isfinite(result)) result = 0.0;
    display_ = shown(result);
    replace_display_ = true;
    // The operator stays, so a second Equals repeats it on the shown number.
}

void MathCalc::Over() {
    const double value = shown_value(display_);
    if (value == 0.0) return;
    const double inverse = 1.0 / value;
    if (std::isfinite(inverse)) display_ = shown(inverse);
}

void MathCalc::PlusMinus() { display_ = shown(-shown_value(display_)); }

// The operands and the operator survive a clear.
void MathCalc::ClearBttn() { display_.clear(); }

void MathCalc::key_press(int key_code) {
    if (key_code >= 48 && key_code <= 57) {
        digit(key_code - 48);
        return;
    }
    switch (key_code) {
    case 27: screens_.unload(screen::MathCalc); break;
    case 187: Equals(); break;
    case 106: Times(); break;
    case 107: Plus(); break;
    case 109: Minus(); break;
    case 111: Div(); break;
    case 46: DotBttn(); break;
    case 67:
    case 99: ClearBttn(); break;
    default: break;
    }
}

}  // namespace veldo
