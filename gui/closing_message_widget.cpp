#include "gui/closing_message_widget.h"

#include <QApplication>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QPointer>
#include <QStyle>
#include <QVBoxLayout>

namespace veldo {
namespace {

// frmMessage windows whose time has not run out yet.
int g_counting = 0;

void wait_ms(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

}  // namespace

ClosingMessageWidget::ClosingMessageWidget(RunState& run, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::WindowStaysOnTopHint), logic_(run) {
    setObjectName(QStringLiteral("frmMessage"));
    auto* layout = new QVBoxLayout(this);
    image_ = new QLabel(this);
    image_->setObjectName(QStringLiteral("Image1"));
    image_->setAlignment(Qt::AlignCenter);
    image_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(48, 48));
    auto* row = new QHBoxLayout;
    message0_ = new QLabel(this);
    message0_->setObjectName(QStringLiteral("lblMessage_0"));
    close_ = new QLabel(this);
    close_->setObjectName(QStringLiteral("lblClose"));
    close_->setMinimumWidth(close_->fontMetrics().horizontalAdvance(QStringLiteral("00.0")));
    close_->setAlignment(Qt::AlignCenter);
    QFont bold = close_->font();
    bold.setBold(true);
    close_->setFont(bold);
    message1_ = new QLabel(this);
    message1_->setObjectName(QStringLiteral("lblMessage_1"));
    row->addWidget(message0_);
    row->addWidget(close_);
    row->addWidget(message1_);
    layout->addWidget(image_);
    layout->addLayout(row);

    tmr_label_.setInterval(ClosingMessage::kLabelIntervalMs);
    timer1_.setSingleShot(true);
    connect(&tmr_label_, &QTimer::timeout, this, &ClosingMessageWidget::tmr_label_tick);
    connect(&timer1_, &QTimer::timeout, this, &ClosingMessageWidget::timer1_tick);
}

void ClosingMessageWidget::start(const QString& message, const QString& title, int duration_ms, bool keep_image) {
    logic_.load(message, title, duration_ms, keep_image);
    refresh();
    timer1_.start(duration_ms);
    tmr_label_.start();
    show();
    raise();
}

void ClosingMessageWidget::tmr_label_tick() {
    logic_.tmr_label_tick();
    refresh();
}

void ClosingMessageWidget::timer1_tick() {
    timer1_.stop();
    emit finished();
}

void ClosingMessageWidget::refresh() {
    setWindowTitle(logic_.caption());
    message0_->setText(logic_.lblMessage(0));
    message1_->setText(logic_.lblMessage(1));
    close_->setText(logic_.lblClose());
    image_->setVisible(logic_.image_visible());
}

void show_closing_message(RunState& run, QWidget* parent_form, const QString& message, const QString& title,
                          int duration_ms, bool keep_image) {
    while (g_counting > 0) wait_ms(200);

    // A window of its own, so that disabling the parent leaves it alone.
    ClosingMessageWidget window(run);
    QPointer<QWidget> parent(parent_form);
    if (parent) {
        window.adjustSize();
        window.move(parent->mapToGlobal(parent->rect().center()) - window.rect().center());
        parent->setEnabled(false);
    }
    QEventLoop loop;
    QObject::connect(&window, &ClosingMessageWidget::finished, &loop, &QEventLoop::quit);
    ++g_counting;
    window.start(message, title, duration_ms, keep_image);
    if (window.running()) loop.exec();
    --g_counting;
    window.close();
    if (parent) {
        parent->setEnabled(true);
        parent->setFocus();
    }
}

}  // namespace veldo
