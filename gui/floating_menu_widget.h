#pragma once
// The floating system menu's window: a grid of the family's programs, the
// process environment and an exit. Clicks go to FloatingMenu.

#include <QWidget>

class QPlainTextEdit;

namespace veldo {

class FloatingMenu;

class FloatingMenuWidget : public QWidget {
    Q_OBJECT
public:
    // Runs the form's load and shows what it filled in.
    explicit FloatingMenuWidget(FloatingMenu& menu, QWidget* parent = nullptr);

private:
    FloatingMenu& menu_;
    QPlainTextEdit* environment_ = nullptr;
};

}  // namespace veldo
