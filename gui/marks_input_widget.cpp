#include "gui/marks_input_widget.h"

#include <QAbstractItemDelegate>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QListWidget>
#include <QRadioButton>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "gui/marks_grid_model.h"
#include "gui/marks_grid_view.h"
#include "gui/screen_parts.h"
#include "input/assessment_input.h"
#include "input/marks_input.h"
#include "store/run_state.h"

namespace veldo {

namespace {

// The grid's widths are twips: 15 to a pixel on the family's screens.
constexpr int kTwipsPerPixel = 15;

QLabel* named_label(const QString& name, QWidget* parent) {
    auto* l = new QLabel(parent);
    l->setObjectName(name);
    return l;
}

}  // namespace

MarksInputWidget::MarksInputWidget(MarksInput& input, QWidget* parent)
    : QWidget(parent),
      input_(input),
      model_(new MarksGridModel(input, this)),
      assessment_(dynamic_cast<AssessmentInput*>(&input)) {
    setObjectName(assessment_ ? "obe_inlees" : "punte_inlees");
    paint_form(this);
    resize(900, 680);
    auto* layout = new QVBoxLayout(this);
    auto* school = named_label("ops_ops1", this);
    school->setText(input_.school_name());
    school->setAlignment(Qt::AlignCenter);
    layout->addWidget(school);
    vak_ops_ = screen_title(input_.caption(), this);
    vak_ops_->setObjectName("vak_ops");
    layout->addWidget(vak_ops_);
    auto* folder = named_label("dir_disp", this);
    folder->setText(input_.data_folder());
    folder->setAlignment(Qt::AlignCenter);
    layout->addWidget(folder);
    ops_totale_ = named_label("ops_totale", this);
    ops_totale_->setAlignment(Qt::AlignCenter);
    layout->addWidget(ops_totale_);

    vak_grid_ = veldo::series_list(input_.series(), this);
    connect(vak_grid_, &QTableWidget::cellClicked, this, [this](int row, int) { open_row(row); });
    vak_grid_->installEventFilter(this);
    layout->addWidget(vak_grid_, 1);

    grid_ = new MarksGridView(2, this);
    grid_->setObjectName("pnt_grid");
    grid_->setModel(model_);
    grid_->set_landing([this](int column, int from) { return input_.column_entered(column, from); });
    grid_->setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked |
                           QAbstractItemView::EditKeyPressed);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->verticalHeader()->setDefaultSectionSize(22);
    grid_->installEventFilter(this);
    connect(model_, &MarksGridModel::refused, this, [this](const QModelIndex& at) {
        refused_ = true;
        QTimer::singleShot(0, this, [this, at = QPersistentModelIndex(at)] {
            refused_ = false;
            if (at.isValid()) grid_->setCurrentIndex(at);
            grid_->setFocus();
        });
    });
    connect(grid_->itemDelegate(), &QAbstractItemDelegate::closeEditor, this,
            [this](QWidget*, QAbstractItemDelegate::EndEditHint hint) {
                if (hint != QAbstractItemDelegate::SubmitModelCache || refused_) return;
                move_on(grid_->currentIndex());
                total_->setText(input_.total_text());
                average_->setText(input_.average_text());
            });
    connect(grid_->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) {
        input_.heading_click(column);
        grid_->setFocus();
    });
    layout->addWidget(grid_, 1);
    if (assessment_) build_assessment_parts(layout);

    progress_ = new QProgressBar(this);
    progress_->setObjectName("ProgressBar1");
    progress_->hide();
    layout->addWidget(progress_);
    // The sort's progress, while a series opens.
    input_.set_progress([this](int done, int count) {
        progress_->setMaximum(std::max(count, 1));
        progress_->setValue(done);
        progress_->setVisible(done < count);
    });

    auto* figures = new QHBoxLayout;
    const QStringList figure_captions = input_.figure_captions();
    figures->addStretch(1);
    figures->addWidget(new QLabel(figure_captions.value(0), this));
    total_ = named_label("punte_inlees_tot", this);
    total_->setMinimumWidth(90);
    total_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    total_->setFrameShape(QFrame::Panel);
    total_->setFrameShadow(QFrame::Sunken);
    figures->addWidget(total_);
    figures->addSpacing(16);
    figures->addWidget(new QLabel(figure_captions.value(1), this));
    average_ = new QPushButton(this);
    average_->setObjectName("punte_inlees_gem");
    average_->setMinimumWidth(90);
    average_->setToolTip(input_.average_tool_tip());
    connect(average_, &QPushButton::clicked, this, [this] {
        input_.scale_marks();
        reload_at(0, 2);
    });
    figures->addWidget(average_);
    if (assessment_) {
        // The two check boxes that say whether the lookup lists appear.
        const QStringList info = assessment_->info_captions();
        const QStringList tips = assessment_->info_tips();
        for (int i = 0; i < 2; ++i) {
            auto* box = new QCheckBox(info[i], this);
            box->setObjectName(i == 0 ? "ps_info" : "fe_info");
            box->setToolTip(tips[i]);
            box->setChecked(i == 0 ? assessment_->ps_info() : assessment_->fe_info());
            connect(box, &QCheckBox::toggled, this, [this, i](bool on) {
                if (i == 0)
                    assessment_->set_ps_info(on);
                else
                    assessment_->set_fe_info(on);
                place_lookup();
            });
            figures->insertWidget(i, box);
        }
    }
    layout->addLayout(figures);

    const QStringList captions = input_.button_captions();
    const QStringList tips = input_.tool_tips();
    auto* buttons = new QHBoxLayout;
    const QStringList names = {"marks_calculator", "marks_undo", "marks_save", "marks_print", "paste_into_flex",
                               "marks_exit"};
    for (int i = 0; i < names.size(); ++i) {
        auto* b = new QPushButton(captions.value(i), this);
        b->setObjectName(names[i]);
        if (!tips.value(i).isEmpty()) b->setToolTip(tips.value(i));
        buttons->addWidget(b);
        if (i >= 1 && i <= 4) series_buttons_ << b;
    }
    connect(button("marks_calculator"), &QPushButton::clicked, this, [this] {
        input_.marks_calculator();
        if (input_.series_open()) grid_->setFocus();
    });
    connect(button("marks_undo"), &QPushButton::clicked, this, [this] {
        input_.marks_undo();
        reload_at(0, 2);
    });
    connect(button("marks_save"), &QPushButton::clicked, this, [this] {
        input_.marks_save();
        refresh();
    });
    connect(button("marks_print"), &QPushButton::clicked, this, [this] {
        input_.marks_print();
        if (input_.series_open()) grid_->setFocus();
    });
    connect(button("paste_into_flex"), &QPushButton::clicked, this, [this] {
        input_.paste_into_flex();
        if (assessment_ && assessment_->pasting()) {
            refresh();
            paste_targets_->button(0)->setFocus();
            return;
        }
        reload_at(0, 2);
    });
    connect(button("marks_exit"), &QPushButton::clicked, this, [this] {
        input_.marks_exit();
        refresh();
    });
    layout->addLayout(buttons);
    refresh();
}

QPushButton* MarksInputWidget::button(const QString& name) const { return findChild<QPushButton*>(name); }

QLabel* MarksInputWidget::label(const QString& name) const { return findChild<QLabel*>(name); }

void MarksInputWidget::refresh() {
    const bool open = input_.series_open();
    setFocusProxy(open ? static_cast<QWidget*>(grid_) : vak_grid_);
    vak_ops_->setText(input_.vak_ops());
    ops_totale_->setText(input_.ops_totale());
    total_->setText(input_.total_text());
    average_->setText(input_.average_text());
    average_->setEnabled(open);
    const bool choosing = assessment_ && assessment_->choosing_mode();
    vak_grid_->setVisible(!open && !choosing);
    grid_->setVisible(open);
    if (assessment_) {
        mode_panel_->setVisible(choosing);
        paste_panel_->setVisible(open && assessment_->pasting());
        if (!open) lookup_list_->hide();
    }
    button("marks_save")->setEnabled(open && input_.save_enabled());
    button("marks_undo")->setEnabled(open);
    button("paste_into_flex")->setEnabled(open);
    button("marks_print")->setEnabled(input_.learner_count() > 0 || !open);
    model_->reload();
    if (choosing) {
        setFocusProxy(modes_->buttons().first());
        return;
    }
    if (!open) {
        vak_grid_->setFocus();
        return;
    }
    const QList<int> widths = input_.column_widths();
    for (int c = 0; c < input_.column_count(); ++c) {
        grid_->setColumnWidth(c, widths.value(c, 800) / kTwipsPerPixel);
        grid_->setColumnHidden(c, !input_.column_shown(c));
    }
    grid_->refresh_frozen();
}

void MarksInputWidget::open_row(int row) {
    const bool opened = input_.open_subject(row);
    progress_->hide();
    refresh();
    if (assessment_ && assessment_->choosing_mode()) {
        modes_->buttons().first()->setFocus();
        return;
    }
    if (!opened) return;
    reload_at(0, 2);
}

void MarksInputWidget::reload_at(int row, int column) {
    refresh();
    if (!input_.series_open() || model_->rowCount() == 0) return;
    grid_->setCurrentIndex(
        model_->index(std::clamp(row, 0, model_->rowCount() - 1), input_.column_entered(column, column)));
    grid_->setFocus();
}

void MarksInputWidget::build_assessment_parts(QVBoxLayout* layout) {
    // inlees_opsie_raam: the mode, before the series' grid opens.
    mode_panel_ = new QGroupBox(this);
    mode_panel_->setObjectName("inlees_opsie_raam");
    auto* modes = new QVBoxLayout(mode_panel_);
    modes_ = new QButtonGroup(this);
    const QStringList captions = assessment_->mode_captions();
    for (int i = 0; i < captions.size(); ++i) {
        auto* option = new QRadioButton(captions[i], mode_panel_);
        option->setObjectName(QString("inlees_opsie%1").arg(i));
        modes_->addButton(option, i);
        modes->addWidget(option);
        option->installEventFilter(this);
    }
    auto* ok = new QPushButton("OK", mode_panel_);
    ok->setObjectName("io_ok");
    connect(ok, &QPushButton::clicked, this, [this] { start_with_mode(); });
    modes->addWidget(ok);
    mode_panel_->hide();
    layout->addWidget(mode_panel_, 0, Qt::AlignHCenter);

    // paste_raam: the column the clipboard goes into.
    paste_panel_ = new QGroupBox(assessment_->paste_heading(), this);
    paste_panel_->setObjectName("paste_raam");
    paste_panel_->setToolTip(assessment_->paste_tool_tip());
    auto* targets = new QHBoxLayout(paste_panel_);
    paste_targets_ = new QButtonGroup(this);
    const QStringList names = assessment_->paste_targets();
    for (int i = 0; i < names.size(); ++i) {
        auto* option = new QRadioButton(names[i], paste_panel_);
        option->setObjectName(QString("pr_teks%1").arg(i));
        paste_targets_->addButton(option, i);
        targets->addWidget(option);
    }
    auto* paste_ok = new QPushButton("OK", paste_panel_);
    paste_ok->setObjectName("pr_ok");
    connect(paste_ok, &QPushButton::clicked, this, [this] { paste_into(paste_targets_->checkedId()); });
    auto* cancel = new QPushButton(assessment_->cancel_caption(), paste_panel_);
    cancel->setObjectName("pr_cancel");
    connect(cancel, &QPushButton::clicked, this, [this] { paste_into(-1); });
    targets->addWidget(paste_ok);
    targets->addWidget(cancel);
    paste_panel_->hide();
    layout->addWidget(paste_panel_);

    // The lookup list floats beside the current cell.
    lookup_list_ = new QListWidget(grid_);
    lookup_list_->setObjectName("lookup_list");
    lookup_list_->hide();
    lookup_list_->installEventFilter(this);
    connect(lookup_list_, &QListWidget::itemDoubleClicked, this, [this] { choose_lookup(); });
    connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { place_lookup(); });
}

void MarksInputWidget::start_with_mode() {
    const bool opened = assessment_->io_ok(modes_->checkedId());
    progress_->hide();
    refresh();
    if (opened) reload_at(0, 2);
}

void MarksInputWidget::paste_into(int target) {
    assessment_->pr_ok(target);
    reload_at(0, 2);
}

void MarksInputWidget::place_lookup() {
    if (!assessment_) return;
    const QModelIndex at = grid_->currentIndex();
    const auto kind = at.isValid() && input_.series_open() ? assessment_->lookup_for(at.column())
                                                           : AssessmentInput::NoList;
    const QList<LookupItem>& items =
        kind == AssessmentInput::EffortKeyList ? assessment_->effort_keys() : assessment_->formative_list();
    if (kind == AssessmentInput::NoList || items.isEmpty()) {
        lookup_list_->hide();
        return;
    }
    if (lookup_kind_ != kind || lookup_list_->count() != items.size()) {
        lookup_list_->clear();
        for (const LookupItem& item : items) lookup_list_->addItem(item.display());
        lookup_kind_ = kind;
    }
    const int row_height = std::max(lookup_list_->sizeHintForRow(0), 16);
    const int rows = std::min(20, int(items.size()));
    const int height = std::min(rows * row_height + 4, 5000 / kTwipsPerPixel);
    const int width = std::min(std::max(lookup_list_->sizeHintForColumn(0) + 24, 120), 5895 / kTwipsPerPixel);
    const QRect cell = grid_->visualRect(at);
    const QPoint origin = grid_->viewport()->mapTo(grid_, cell.topLeft());
    int x = origin.x() + cell.width();
    if (x + width > grid_->width()) x = std::max(0, origin.x() - width);
    const int y = std::clamp(origin.y(), 0, std::max(0, grid_->height() - height));
    lookup_list_->setGeometry(x, y, width, height);
    lookup_list_->setCurrentRow(assessment_->lookup_row(AssessmentInput::Lookup(kind), input_.cell(at.row(), at.column())));
    lookup_list_->show();
    lookup_list_->raise();
}

void MarksInputWidget::choose_lookup() {
    const QModelIndex at = grid_->currentIndex();
    const int item = lookup_list_->currentRow();
    lookup_list_->hide();
    if (at.isValid() && item >= 0)
        assessment_->choose_lookup(AssessmentInput::Lookup(lookup_kind_), item, at.row(), at.column());
    model_->reload();
    grid_->setCurrentIndex(at);
    grid_->setFocus();
}

void MarksInputWidget::move_on(const QModelIndex& from) {
    if (!from.isValid()) return;
    const auto [row, column] = input_.next_cell(from.row(), from.column());
    grid_->setCurrentIndex(model_->index(row, column));
}

bool MarksInputWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress) input_.activity();
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (lookup_list_ && watched == lookup_list_ && enter) {
            choose_lookup();
            return true;
        }
        if (modes_ && modes_->buttons().contains(qobject_cast<QAbstractButton*>(watched)) && enter) {
            static_cast<QAbstractButton*>(watched)->setChecked(true);
            start_with_mode();
            return true;
        }
        if (watched == vak_grid_ && enter && vak_grid_->currentRow() >= 0) {
            open_row(vak_grid_->currentRow());
            return true;
        }
        if (watched == grid_ && enter) {
            if (grid_->editing()) return true;  // the editor hands its text in first
            move_on(grid_->currentIndex());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace veldo
