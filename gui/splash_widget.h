#pragma once
// The splash on screen: a pastel panel with the product name, the version
// and the two language buttons; a two-second timer ends it.

#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include "shell/splash.h"

namespace veldo {

class SplashWidget : public QWidget {
    Q_OBJECT
public:
    SplashWidget(Splash& splash, QWidget* parent = nullptr);
    void refresh();
    void start_timer() { timer_.start(); }
    QPushButton* language_button(int index) const { return index == 1 ? afrikaans_ : english_; }

private:
    Splash& splash_;
    QLabel* product_;
    QLabel* version_;
    QPushButton* afrikaans_;
    QPushButton* english_;
    QTimer timer_;
};

}  // namespace veldo
