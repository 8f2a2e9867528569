#pragma once
// The three menu screens on screen: entries as large buttons, the folder,
// backup, time-out, system menu, web, help and exit buttons, and the foot
// with date, time and version. Every event goes to MenuScreen.

#include <QLabel>
#include <QList>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include "shell/menus.h"

namespace veldo {

class MenuWidget : public QWidget {
    Q_OBJECT
public:
    MenuWidget(MenuScreen& menu, QWidget* parent = nullptr);
    void refresh();
    QPushButton* entry_button(int index) const { return entries_.value(index - 1); }
    QPushButton* exit_button() const { return exit_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QPushButton* small_button(const QString& text, const char* name);
    QLabel* centred_label(const char* name, int points, bool bold);

    MenuScreen& menu_;
    QLabel* title_;
    QLabel* school_;
    QLabel* folder_;
    QLabel* password_show_;
    QLabel* date_;
    QLabel* time_;
    QLabel* version_;
    QLabel* internet_;
    QList<QPushButton*> entries_;
    QPushButton* data_folder_;
    QPushButton* backup_;
    QPushButton* timeout_ = nullptr;
    QPushButton* system_menu_ = nullptr;
    QPushButton* www_;
    QPushButton* help_ = nullptr;
    QPushButton* exit_;
    QTimer clock_;
};

}  // namespace veldo
