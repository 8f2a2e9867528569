#include "gui/splash_widget.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "gui/colours.h"

namespace veldo {

SplashWidget::SplashWidget(Splash& splash, QWidget* parent) : QWidget(parent), splash_(splash) {
    setObjectName("marks_splash");
    setAutoFillBackground(true);
    setFixedSize(520, 300);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(30, 30, 30, 24);
    product_ = new QLabel(this);
    product_->setObjectName("lblProductName");
    product_->setAlignment(Qt::AlignCenter);
    QFont big = product_->font();
    big.setPointSize(28);
    big.setBold(true);
    product_->setFont(big);
    auto* subtitle = new QLabel(QStringLiteral("PUNTE / MARKS"), this);
    subtitle->setAlignment(Qt::AlignCenter);
    QFont mid = subtitle->font();
    mid.setPointSize(12);
    subtitle->setFont(mid);
    version_ = new QLabel(this);
    version_->setObjectName("lblVersion");
    version_->setAlignment(Qt::AlignCenter);
    layout->addStretch();
    layout->addWidget(product_);
    layout->addWidget(subtitle);
    layout->addWidget(version_);
    layout->addStretch();
    auto* row = new QHBoxLayout;
    afrikaans_ = new QPushButton(QStringLiteral("AFRIKAANS"), this);
    afrikaans_->setObjectName("chk_lang_1");
    english_ = new QPushButton(QStringLiteral("ENGLISH"), this);
    english_->setObjectName("chk_lang_2");
    for (QPushButton* b : {afrikaans_, english_}) {
        b->setCheckable(true);
        b->setMinimumHeight(36);
        row->addWidget(b);
    }
    layout->addLayout(row);
    connect(afrikaans_, &QPushButton::clicked, this, [this] {
        timer_.stop();
        splash_.chk_lang_click(1);
    });
    connect(english_, &QPushButton::clicked, this, [this] {
        timer_.stop();
        splash_.chk_lang_click(2);
    });
    timer_.setInterval(2000);
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { splash_.timer1_timer(); });
    refresh();
}

void SplashWidget::refresh() {
    QPalette pal = palette();
    pal.setColor(QPalette::Window, colour_of(splash_.skin_colour()));
    setPalette(pal);
    product_->setText(splash_.lblProductName.isEmpty() ? QStringLiteral("VELDO-TALLY") : splash_.lblProductName);
    version_->setText(splash_.lblVersion);
    afrikaans_->setChecked(splash_.chk_lang[1]);
    english_->setChecked(splash_.chk_lang[2]);
}

}  // namespace veldo
