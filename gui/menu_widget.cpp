#include "gui/menu_widget.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "store/run_state.h"

namespace veldo {

MenuWidget::MenuWidget(MenuScreen& menu, QWidget* parent) : QWidget(parent), menu_(menu) {
    setObjectName(menu_screen_name(menu.kind()));
    setAutoFillBackground(true);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, QColor(0xF4, 0xEE, 0xE2));
    setPalette(pal);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 16, 24, 12);
    title_ = centred_label("ops_stelsel", 16, true);
    school_ = centred_label("ops_ops1", 12, true);
    folder_ = centred_label("dir_disp", 0, false);
    layout->addWidget(title_);
    layout->addWidget(school_);
    layout->addWidget(folder_);
    layout->addSpacing(10);

    const auto& entries = menu_entries(menu.kind());
    for (const MenuEntry& e : entries) {
        auto* button = new QPushButton(this);
        button->setObjectName(QString("punte_menu_%1").arg(e.index));
        button->setMinimumHeight(52);
        QFont f = button->font();
        f.setPointSize(13);
        f.setBold(true);
        button->setFont(f);
        button->installEventFilter(this);
        button->setMouseTracking(true);
        const int index = e.index;
        connect(button, &QPushButton::clicked, this, [this, index] {
            menu_.punte_menu_click(index);
            refresh();
        });
        layout->addWidget(button);
        entries_.append(button);
    }
    password_show_ = new QLabel(this);
    password_show_->setObjectName("password_show");
    password_show_->setStyleSheet("color: rgb(200, 0, 0); font-weight: bold;");
    password_show_->setAlignment(Qt::AlignCenter);
    layout->addWidget(password_show_);
    layout->addSpacing(8);

    auto* row = new QHBoxLayout;
    data_folder_ = small_button(QString(), "data_folder");
    connect(data_folder_, &QPushButton::clicked, this, [this] { menu_.data_folder_click(); refresh(); });
    backup_ = small_button(QString(), "backup");
    connect(backup_, &QPushButton::clicked, this, [this] { menu_.backup_click(); });
    row->addWidget(data_folder_);
    row->addWidget(backup_);
    if (menu.kind() == MenuKind::Top) {
        timeout_ = small_button(QString(), "timeout");
        connect(timeout_, &QPushButton::clicked, this, [this] { menu_.timeout_click(); });
        system_menu_ = small_button(QString(), "system_menu");
        connect(system_menu_, &QPushButton::clicked, this, [this] { menu_.system_menu_click(); });
        row->addWidget(timeout_);
        row->addWidget(system_menu_);
    } else {
        help_ = small_button(QString(), "help_pdf");
        connect(help_, &QPushButton::clicked, this, [this] { menu_.help_pdf_click(); });
        row->addWidget(help_);
    }
    www_ = small_button("www", "www_call");
    connect(www_, &QPushButton::clicked, this, [this] { menu_.www_call_click(); });
    row->addWidget(www_);
    exit_ = small_button("EXIT", "punte_exit");
    connect(exit_, &QPushButton::clicked, this, [this] { menu_.punte_exit_click(); });
    row->addWidget(exit_);
    layout->addLayout(row);

    auto* foot = new QHBoxLayout;
    date_ = new QLabel(this);
    date_->setObjectName("ops_datum");
    time_ = new QLabel(this);
    time_->setObjectName("ops_tyd");
    version_ = new QLabel(this);
    version_->setObjectName("prg_version");
    internet_ = new QLabel(this);
    internet_->setObjectName("internet_version");
    for (QLabel* l : {date_, time_, version_, internet_}) {
        QFont f = l->font();
        f.setPointSize(8);
        l->setFont(f);
        foot->addWidget(l);
    }
    foot->addStretch();
    layout->addLayout(foot);

    clock_.setInterval(1000);
    connect(&clock_, &QTimer::timeout, this, [this] {
        menu_.timer1_tick();
        time_->setText(menu_.header.ops_tyd);
    });
    clock_.start();
    setFixedSize(680, 250 + 60 * int(entries.size()));
    refresh();
}

QLabel* MenuWidget::centred_label(const char* name, int points, bool bold) {
    auto* label = new QLabel(this);
    label->setObjectName(name);
    label->setAlignment(Qt::AlignCenter);
    QFont f = label->font();
    if (points > 0) f.setPointSize(points);
    f.setBold(bold);
    label->setFont(f);
    return label;
}

QPushButton* MenuWidget::small_button(const QString& text, const char* name) {
    auto* b = new QPushButton(text, this);
    b->setObjectName(name);
    b->setMinimumHeight(30);
    return b;
}

void MenuWidget::refresh() {
    title_->setText(menu_.ops_stelsel);
    school_->setText(menu_.ops_ops1);
    folder_->setText(menu_.dir_disp());
    for (int i = 0; i < entries_.size(); ++i) {
        QPushButton* b = entries_[i];
        b->setText(menu_.caption(i + 1));
        b->setToolTip(menu_.tooltip(i + 1));
        b->setStyleSheet(menu_.fore_colour(i + 1) == 255 ? "color: rgb(255, 0, 0);" : QString());
    }
    password_show_->setText(menu_.password_show_text());
    data_folder_->setText(menu_.data_folder_caption());
    data_folder_->setToolTip(menu_.data_folder_tooltip());
    backup_->setText(menu_.backup_caption());
    if (timeout_) timeout_->setText(menu_.timeout_caption());
    if (system_menu_) {
        system_menu_->setText(menu_.system_menu_caption());
        system_menu_->setToolTip(menu_.system_menu_tooltip());
    }
    if (help_) help_->setText(menu_.help_caption());
    date_->setText(menu_.header.ops_datum);
    time_->setText(menu_.header.ops_tyd);
    version_->setText(menu_.header.prg_version);
    internet_->setText(menu_.header.internet_version);
}

void MenuWidget::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    if (text.size() == 1 && text[0].isDigit()) {
        menu_.key_press(text[0]);
        refresh();
        return;
    }
    // Escape on a second-level menu is its EXIT: back to the top menu.
    if (event->key() == Qt::Key_Escape && menu_.kind() != MenuKind::Top) {
        menu_.punte_exit_click();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool MenuWidget::eventFilter(QObject* watched, QEvent* event) {
    const int index = int(entries_.indexOf(qobject_cast<QPushButton*>(watched))) + 1;
    if (index > 0) {
        if (event->type() == QEvent::MouseButtonPress &&
            static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
            menu_.punte_menu_right_click(index);
            refresh();
            return true;
        }
        if (event->type() == QEvent::Enter || event->type() == QEvent::MouseMove) {
            menu_.punte_menu_mouse_move(index);
            password_show_->setText(menu_.password_show_text());
        }
        if (event->type() == QEvent::KeyPress) {
            auto* key = static_cast<QKeyEvent*>(event);
            // Enter presses the focused entry as on any desktop; Space and
            // the arrows are the button's own.
            if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
                static_cast<QPushButton*>(watched)->click();
                return true;
            }
            const QString text = key->text();
            if ((text.size() == 1 && text[0].isDigit()) || key->key() == Qt::Key_Escape) {
                keyPressEvent(key);
                return true;
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}

void MenuWidget::mouseMoveEvent(QMouseEvent* event) {
    menu_.form_mouse_move();
    password_show_->setText(QString());
    QWidget::mouseMoveEvent(event);
}

void MenuWidget::showEvent(QShowEvent* event) {
    refresh();
    setFocus();
    QWidget::showEvent(event);
}

}  // namespace veldo
