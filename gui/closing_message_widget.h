#pragma once
// frmMessage on screen: a small window with the text before and after the
// count, the count itself and a picture. tmrLabel (100 ms) drives
// ClosingMessage; Timer1 ends the window after its duration.

#include <QLabel>
#include <QTimer>
#include <QWidget>

#include "shell/inactivity.h"

namespace veldo {

class ClosingMessageWidget : public QWidget {
    Q_OBJECT
public:
    explicit ClosingMessageWidget(RunState& run, QWidget* parent = nullptr);

    // Loads the texts, starts both timers and shows the window.
    void start(const QString& message, const QString& title, int duration_ms, bool keep_image = false);
    // True while Timer1 has not yet run out.
    bool running() const { return timer1_.isActive(); }
    const ClosingMessage& logic() const { return logic_; }

public slots:
    void tmr_label_tick();
    void timer1_tick();

signals:
    void finished();

private:
    void refresh();

    ClosingMessage logic_;
    QLabel* message0_;
    QLabel* close_;
    QLabel* message1_;
    QLabel* image_;
    QTimer tmr_label_;
    QTimer timer1_;
};

// The general timed message: waits while another one is still counting,
// shows frmMessage over `parent_form` (disabled meanwhile) for `duration_ms`
// and lets events run until it is over; then gives the parent the focus.
void show_closing_message(RunState& run, QWidget* parent_form, const QString& message, const QString& title,
                          int duration_ms, bool keep_image = false);

}  // namespace veldo
