#include "gui/setup_widget.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "gui/screen_parts.h"
#include "markbook/mark_book_print.h"
#include "markbook/setup_screen.h"
#include "util/text_grid.h"

namespace veldo {

namespace {

QColor colour_of(int bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }

QPushButton* button(const QString& text, const QString& name, QWidget* parent, const QString& tip = QString()) {
    auto* b = new QPushButton(text, parent);
    b->setObjectName(name);
    if (!tip.isEmpty()) b->setToolTip(tip);
    return b;
}

QFrame* panel_frame(const QString& name, QWidget* parent) {
    auto* frame = new QFrame(parent);
    frame->setObjectName(name);
    frame->setFrameShape(QFrame::Box);
    frame->setAutoFillBackground(true);
    frame->hide();
    return frame;
}

}  // namespace

SetupWidget::SetupWidget(SetupScreen& screen, QWidget* parent) : QWidget(parent), screen_(screen) {
    setObjectName("pboek_opstel");
    paint_form(this);
    resize(1000, 700);
    const bool af = screen_.afrikaans();
    const QStringList captions = screen_.button_captions();
    auto* layout = new QVBoxLayout(this);
    add_screen_head(layout, this, screen_.school(), screen_.caption(), screen_.data_folder());
    vak_ops_ = screen_title(QString(), this);
    vak_ops_->setObjectName("vak_ops");
    layout->addWidget(vak_ops_);

    vak_grid_ = veldo::series_list(screen_.series(), this);
    auto choose = [this](int row, int) {
        if (!screen_.choose_subject(row)) return;
        fill_grid();
        refresh();
        pboek_grid_->setCurrentCell(0, 1);
        pboek_grid_->setFocus();
    };
    connect(vak_grid_, &QTableWidget::cellClicked, this, choose);
    connect(vak_grid_, &QTableWidget::cellActivated, this, choose);
    layout->addWidget(vak_grid_, 1);

    // The book: the grid with the edit panel beside it.
    book_ = new QWidget(this);
    auto* book = new QHBoxLayout(book_);
    book->setContentsMargins(0, 0, 0, 0);
    pboek_grid_ = new QTableWidget(book_);
    pboek_grid_->setObjectName("pboek_grid");
    pboek_grid_->verticalHeader()->hide();
    pboek_grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    pboek_grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    pboek_grid_->setContextMenuPolicy(Qt::CustomContextMenu);
    pboek_grid_->setToolTip(af ? " Regsklik om kolom-verduidelikings te vertoon "
                               : " Right click to display column explanations ");
    QFont fixed("Courier New");
    fixed.setStyleHint(QFont::Monospace);
    pboek_grid_->setFont(fixed);
    pboek_grid_->verticalHeader()->setDefaultSectionSize(20);
    pboek_grid_->installEventFilter(this);
    connect(pboek_grid_, &QTableWidget::cellClicked, this, [this](int row, int) {
        screen_.select_row(row + 1);
        load_panel();
        refresh();
    });
    connect(pboek_grid_, &QTableWidget::currentCellChanged, this, [this](int row, int, int previous, int) {
        if (row < 0 || row == previous) return;
        screen_.select_row(row + 1);
        load_panel();
        refresh();
    });
    connect(pboek_grid_, &QWidget::customContextMenuRequested, this, [this] {
        screen_.show_explanations();
        kolom_beskrywings_->setPlainText(screen_.explanations());
        refresh();
        kb_raam_->raise();
    });
    book->addWidget(pboek_grid_, 3);

    auto* panel = new QGridLayout;
    const QStringList headings = screen_.panel_headings();
    for (int i = 0; i < 6; ++i) {
        auto* label = new QLabel(headings.value(i), book_);
        label->setObjectName(QString("pboek_teks%1").arg(i));
        auto* box = new QLineEdit(book_);
        box->setObjectName(QString("pboek_data%1").arg(i));
        box->setReadOnly(i == 0);
        box->installEventFilter(this);
        connect(box, &QLineEdit::textEdited, this, [this, i, box](const QString& text) {
            const int at = box->cursorPosition();
            screen_.type_into(i, text);
            box->setText(screen_.panel()[std::size_t(i)]);
            box->setCursorPosition(at);
        });
        connect(box, &QLineEdit::returnPressed, this, [this, i] {
            if (i < 5) boxes_[std::size_t(i + 1)]->setFocus();
            else findChild<QPushButton*>("pboek_data_ok")->click();
        });
        boxes_[std::size_t(i)] = box;
        panel->addWidget(label, i, 0);
        panel->addWidget(box, i, 1);
    }
    auto* ok = button(captions.value(5), "pboek_data_ok", book_);
    connect(ok, &QPushButton::clicked, this, [this] {
        if (!screen_.pboek_data_ok()) return;
        fill_grid();
        pboek_grid_->setFocus();
    });
    auto* insert = button(captions.value(6), "pboek_data_ins", book_,
                          af ? " Voeg 'n nuwe TAAK/PROJEK in tussen bestaande TAKE/PROJEKTE "
                             : " Insert a new TASK/PROJECT between existing TASKS/PROJECTS ");
    connect(insert, &QPushButton::clicked, this, [this] {
        screen_.pboek_data_ins();
        fill_grid();
    });
    auto* remove = button(captions.value(7), "pboek_data_del", book_,
                          af ? " Verwyder TAAK/PROJEK uit bestaande TAAK-/PROJEKLYS "
                             : " Remove TASK/PROJECT from existing TASK/PROJECT list ");
    connect(remove, &QPushButton::clicked, this, [this] {
        screen_.pboek_data_del();
        fill_grid();
        load_panel();
    });
    panel->addWidget(ok, 6, 1);
    panel->addWidget(insert, 7, 1);
    panel->addWidget(remove, 8, 1);
    panel->setRowStretch(9, 1);
    book->addLayout(panel, 1);
    layout->addWidget(book_, 3);

    auto* buttons = new QHBoxLayout;
    auto* update = button(captions.value(0), "pboek_opstel_stoor", this);
    connect(update, &QPushButton::clicked, this, [this] { screen_.pboek_opstel_stoor(); });
    auto* save = button(captions.value(1), "pboek_opstel_save", this);
    connect(save, &QPushButton::clicked, this, [this] {
        screen_.pboek_opstel_save();
        refresh();
        vak_grid_->setFocus();
    });
    auto* example = button(captions.value(2), "pboek_opstel_help", this);
    connect(example, &QPushButton::clicked, this, [this] {
        screen_.pboek_opstel_help();
        fill_grid();
    });
    auto* print = button(captions.value(3), "pboek_opstel_print", this);
    connect(print, &QPushButton::clicked, this, [this] { screen_.pboek_opstel_print(); });
    auto* copy = button(captions.value(8), "pboek_copy", this,
                        af ? " Kopieer Punteboekopstellings tussen vakke/grade/klasse "
                           : " Copy mark book setup between subjects/grades/classes ");
    connect(copy, &QPushButton::clicked, this, [this] {
        screen_.pboek_copy();
        refresh();
        kopieer_raam_->raise();
    });
    auto* exit = button(captions.value(4), "pboek_opstel_exit", this);
    connect(exit, &QPushButton::clicked, this, [this] { screen_.pboek_opstel_exit(); });
    for (QPushButton* b : {update, save, example, print, copy}) buttons->addWidget(b);
    buttons->addStretch(1);
    buttons->addWidget(exit);
    layout->addLayout(buttons);

    // kb_raam: the column explanations, over the grid.
    kb_raam_ = panel_frame("kb_raam", this);
    auto* kb = new QVBoxLayout(kb_raam_);
    kolom_beskrywings_ = new QPlainTextEdit(kb_raam_);
    kolom_beskrywings_->setObjectName("kolom_beskrywings");
    kolom_beskrywings_->setFont(fixed);
    connect(kolom_beskrywings_, &QPlainTextEdit::textChanged, this,
            [this] { screen_.set_explanations(kolom_beskrywings_->toPlainText()); });
    kb->addWidget(kolom_beskrywings_);
    auto* kb_buttons = new QHBoxLayout;
    auto* kb_druk = button(captions.value(3), "kb_druk", kb_raam_);
    connect(kb_druk, &QPushButton::clicked, this, [this] { screen_.kb_druk(); });
    auto* kb_ok = button("OK", "kb_ok", kb_raam_);
    connect(kb_ok, &QPushButton::clicked, this, [this] {
        screen_.kb_ok();
        refresh();
        pboek_grid_->setFocus();
    });
    kb_buttons->addStretch(1);
    kb_buttons->addWidget(kb_druk);
    kb_buttons->addWidget(kb_ok);
    kb->addLayout(kb_buttons);
    kb_raam_->setGeometry(60, 120, 760, 480);

    // kopieer_raam: from one combination to those marked in the second list.
    kopieer_raam_ = panel_frame("kopieer_raam", this);
    auto* kr = new QGridLayout(kopieer_raam_);
    from_list_ = new QListWidget(kopieer_raam_);
    from_list_->setObjectName("kopieer_vaklys0");
    from_list_->setToolTip(af ? " Klik vakkombinasie waarvandaan gekopieer word " : " Click original subject combination ");
    to_list_ = new QListWidget(kopieer_raam_);
    to_list_->setObjectName("kopieer_vaklys1");
    to_list_->setSelectionMode(QAbstractItemView::MultiSelection);
    to_list_->setToolTip(af ? " Klik vakkombinasie waarheen gekopieer moet word "
                            : " Click destination subject combination ");
    from_list_->addItems(screen_.copy_items());
    to_list_->addItems(screen_.copy_items());
    // A setup is never copied onto itself.
    connect(from_list_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (auto* item = to_list_->item(row)) item->setSelected(false);
    });
    auto* copy_ok = button("OK", "copy_ok", kopieer_raam_);
    connect(copy_ok, &QPushButton::clicked, this, [this] {
        QList<int> marked;
        for (int r = 0; r < to_list_->count(); ++r)
            if (to_list_->item(r)->isSelected()) marked << r;
        screen_.copy_ok(from_list_->currentRow(), marked);
        refresh();
    });
    // The lists' tips stand above them too, so that it is plain which is which.
    kr->addWidget(new QLabel(from_list_->toolTip().trimmed(), kopieer_raam_), 0, 0);
    kr->addWidget(new QLabel(to_list_->toolTip().trimmed(), kopieer_raam_), 0, 1);
    kr->addWidget(from_list_, 1, 0);
    kr->addWidget(to_list_, 1, 1);
    kr->addWidget(copy_ok, 2, 1, Qt::AlignRight);
    kopieer_raam_->setGeometry(120, 160, 700, 400);

    setFocusProxy(vak_grid_);
    refresh();
}

void SetupWidget::fill_grid() {
    TextGrid grid;
    fill_setup_grid(grid, screen_.setup(), screen_.afrikaans());
    const int current = pboek_grid_->currentRow();
    const QSignalBlocker block(pboek_grid_);
    show_text_grid(pboek_grid_, grid);
    pboek_grid_->setColumnWidth(1, 300);
    for (int r = 1; r <= 40; ++r)
        if (auto* item = pboek_grid_->item(r - 1, 1)) item->setBackground(colour_of(screen_.name_colour(r)));
    if (current >= 0) pboek_grid_->setCurrentCell(current, 1);
}

void SetupWidget::load_panel() {
    for (int i = 0; i < 6; ++i) boxes_[std::size_t(i)]->setText(screen_.panel()[std::size_t(i)]);
}

void SetupWidget::refresh() {
    vak_ops_->setText(screen_.vak_ops());
    vak_grid_->setVisible(screen_.list_shown());
    book_->setVisible(!screen_.list_shown());
    kb_raam_->setVisible(screen_.explanations_shown());
    kopieer_raam_->setVisible(screen_.copy_shown());
    for (int r = 1; r <= 40; ++r)
        if (auto* item = pboek_grid_->item(r - 1, 1)) item->setBackground(colour_of(screen_.name_colour(r)));
}

bool SetupWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == pboek_grid_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Question) {
        keyPressEvent(static_cast<QKeyEvent*>(event));
        return true;
    }
    if (event->type() == QEvent::FocusOut) {
        for (int i = 2; i <= 4; ++i) {
            if (watched != boxes_[std::size_t(i)]) continue;
            // Neither blank nor a number: the beep, and the box keeps the focus.
            if (!screen_.leave_box(i)) QTimer::singleShot(0, boxes_[std::size_t(i)], [this, i] {
                    boxes_[std::size_t(i)]->setFocus();
                });
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SetupWidget::keyPressEvent(QKeyEvent* event) {
    // Shift with "/" (a "?") fills the example, as its button does.
    if (event->key() == Qt::Key_Question && !screen_.list_shown()) {
        screen_.pboek_opstel_help();
        fill_grid();
        return;
    }
    QWidget::keyPressEvent(event);
}

}  // namespace veldo
