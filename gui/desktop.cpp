#include "gui/desktop.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QDesktopServices>
#include <QDialog>
#include <QLinearGradient>
#include <QPainter>
#include <QProcess>
#include <QProcessEnvironment>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>

#include "gui/calculator_dialog.h"
#include "gui/closing_message_widget.h"
#include "gui/floating_menu_widget.h"
#include "gui/manual_viewer_dialog.h"
#include "gui/mark_book_input_widget.h"
#include "gui/mark_book_print_widget.h"
#include "gui/mark_lists_widget.h"
#include "gui/marks_input_widget.h"
#include "input/assessment_input.h"
#include "input/mark_lists.h"
#include "gui/menu_widget.h"
#include "input/marks_input.h"
#include "markbook/mark_book_input.h"
#include "markbook/mark_book_print_screen.h"
#include "exchange/export_screen.h"
#include "exchange/symbol_screen.h"
#include "gui/export_widget.h"
#include "gui/symbol_print_widget.h"
#include "gui/setup_widget.h"
#include "markbook/setup_screen.h"
#include "gui/password_prompt_dialog.h"
#include "gui/refused_folder_form.h"
#include "gui/splash_widget.h"
#include "shell/calculator.h"
#include "shell/change_folder.h"
#include "shell/floating_menu.h"
#include "shell/manual_viewer.h"
#include "shell/inactivity.h"
#include "shell/menus.h"

namespace veldo {

Desktop::Desktop(const QString& application_folder, std::function<bool()> another_copy_running)
    : application_folder_(application_folder),
      store_(std::make_unique<RecordStore>(run_)),
      dialogs_(this),
      ctx_{run_, *store_, dialogs_, *this, Clock{}},
      frame_(ctx_),
      another_copy_running_(std::move(another_copy_running)) {
    setObjectName(screen::startup);
    setWindowTitle(QStringLiteral("VELDO-TALLY"));
    run_.dialogs = &dialogs_;
    run_.drive_root = drive_root_from_environment();
    order_ << screen::startup;
}

Desktop::~Desktop() {
    for (QWidget* w : widgets_) delete w;
}

bool Desktop::start() {
    frame_.load(application_folder_);
    if (const QScreen* s = QGuiApplication::primaryScreen()) resize(s->availableGeometry().size());
    QMainWindow::show();
    watcher_ = std::make_unique<InactivityWatcher>(ctx_, [this](const QString& message, const QString& title,
                                                                int duration_ms) {
        order_ << screen::frmMessage;
        show_closing_message(run_, this, message, title, duration_ms);
        order_.removeAll(screen::frmMessage);
    });
    mouse_timer_.setInterval(100);
    connect(&mouse_timer_, &QTimer::timeout, this, [this] { watcher_->tick(QCursor::pos()); });
    mouse_timer_.start();

    splash_ = std::make_unique<Splash>(ctx_, application_folder_, another_copy_running_,
                                       [] { return QRandomGenerator::global()->generateDouble(); });
    auto* widget = new SplashWidget(*splash_, centralWidget() ? centralWidget() : this);
    widgets_.insert(screen::marks_splash, widget);
    order_ << screen::marks_splash;
    place(widget);
    widget->show();
    if (!splash_->load()) return false;
    widget->refresh();
    widget->start_timer();
    return !ended_;
}

void Desktop::place(QWidget* w) {
    w->move((width() - w->width()) / 2, std::max(0, (height() - w->height()) / 2 - 32));
    w->raise();
}

QWidget* Desktop::make(const QString& name) {
    if (name == screen::punte_mnu || name == screen::punte_menu1 || name == screen::punte_menu2) {
        const MenuKind kind = name == screen::punte_mnu     ? MenuKind::Top
                              : name == screen::punte_menu1 ? MenuKind::Marks1
                                                            : MenuKind::Marks2;
        auto menu = std::make_shared<MenuScreen>(ctx_, passwords_, kind);
        if (!menu->load()) return nullptr;
        // The top menu puts the program in the tray where the desktop has one.
        if (kind == MenuKind::Top && !tray_ && QSystemTrayIcon::isSystemTrayAvailable()) {
            tray_ = new QSystemTrayIcon(windowIcon(), this);
            tray_->setToolTip(QStringLiteral("VELDO-TALLY"));
            tray_->show();
        }
        logic_.insert(name, menu);
        return new MenuWidget(*menu, this);
    }
    if (name == screen::sk0_floating) {
        auto menu = std::make_shared<FloatingMenu>(ctx_);
        logic_.insert(name, menu);
        auto* w = new FloatingMenuWidget(*menu, this);
        return w;
    }
    if (name == screen::pboek_inlees) {
        auto input = std::make_shared<MarkBookInput>(ctx_, printer_);
        if (!input->load()) return nullptr;
        logic_.insert(name, input);
        return new MarkBookInputWidget(*input, this);
    }
    if (name == screen::punte_inlees) {
        auto input = std::make_shared<MarksInput>(ctx_, printer_);
        if (!input->load()) return nullptr;
        logic_.insert(name, input);
        return new MarksInputWidget(*input, this);
    }
    if (name == screen::obe_inlees) {
        auto input = std::make_shared<AssessmentInput>(ctx_, printer_);
        if (!input->load()) return nullptr;
        logic_.insert(name, input);
        return new MarksInputWidget(*input, this);
    }
    if (name == screen::punte_druk) {
        auto lists = std::make_shared<MarkLists>(ctx_, printer_);
        lists->load();
        logic_.insert(name, lists);
        return new MarkListsWidget(*lists, this);
    }
    if (name == screen::pboek_opstel) {
        auto setup = std::make_shared<SetupScreen>(ctx_, printer_);
        if (!setup->load()) return nullptr;
        logic_.insert(name, setup);
        return new SetupWidget(*setup, this);
    }
    if (name == screen::simbole_druk) {
        auto symbols = std::make_shared<SymbolPrintScreen>(ctx_, printer_);
        if (!symbols->load()) return nullptr;
        logic_.insert(name, symbols);
        return new SymbolPrintWidget(*symbols, this);
    }
    if (name == screen::pboek_uitvoer) {
        auto exporter = std::make_shared<MarkBookExport>(ctx_);
        if (!exporter->load()) return nullptr;
        logic_.insert(name, exporter);
        return new ExportWidget(*exporter, this);
    }
    return nullptr;
}

void Desktop::show(const QString& name) {
    // The print screen is a dialog over whatever opened it, from the menu as
    // from the input screen.
    if (name == screen::pboek_druk) {
        show_modal(name);
        return;
    }
    QWidget* w = widgets_.value(name);
    if (!w) {
        w = make(name);
        if (!w) return;
        widgets_.insert(name, w);
        order_ << name;
    }
    place(w);
    w->show();
    w->raise();
    w->setFocus();
}

void Desktop::run_modal(const QString& name) {
    if (name == screen::sk1_wagwoord) {
        PasswordPromptDialog prompt(ctx_, this);
        prompt.exec();
        return;
    }
    if (name == screen::acrobat_interface) {
        ManualViewer viewer(ctx_);
        ManualViewerDialog::show_modal(viewer, run_.language_afrikaans, this);
        return;
    }
    if (name == screen::MathCalc) {
        MathCalc calc(*this);
        CalculatorDialog dialog(calc, run_.language_afrikaans, this);
        dialog.exec();
        return;
    }
    if (name == screen::pboek_druk) {
        MarkBookPrintScreen print(ctx_, printer_);
        QDialog dialog(this);
        dialog.setObjectName(name);
        modal_name_ = name;
        modal_dialog_ = &dialog;
        if (print.load() && modal_dialog_) {
            dialog.setWindowTitle(print.caption());
            auto* layout = new QVBoxLayout(&dialog);
            layout->setContentsMargins(0, 0, 0, 0);
            auto* widget = new MarkBookPrintWidget(print, &dialog);
            const QSize size = widget->size();  // the form's own size, not the layout's least
            layout->addWidget(widget);
            dialog.resize(size);
            dialog.exec();
        }
        modal_dialog_ = nullptr;
        modal_name_.clear();
        return;
    }
    if (name == screen::change_folder) {
        ChangeFolder folder(ctx_);
        folder.load();
        if (!folder.is_loaded()) return;
        // A refused folder leaves the screen open until it is closed.
        RefusedFolderForm form(folder, this);
        form.exec();
        folder.unload();
        return;
    }
}

void Desktop::show_modal(const QString& name) {
    order_ << name;
    run_modal(name);
    order_.removeAll(name);
    for (QWidget* w : widgets_)
        if (auto* menu = qobject_cast<MenuWidget*>(w)) menu->refresh();
}

void Desktop::unload(const QString& name) {
    if (name == modal_name_ && modal_dialog_) {
        // A modal screen that unloads itself closes its dialog.
        modal_dialog_->done(QDialog::Accepted);
        modal_dialog_ = nullptr;
        return;
    }
    if (name == screen::punte_mnu && tray_) {
        tray_->hide();
        tray_->deleteLater();
        tray_ = nullptr;
    }
    order_.removeAll(name);
    // A screen often unloads itself from one of its own handlers, which goes
    // on running afterwards: its logic lives as long as its widget, and the
    // widget goes when control is back in the event loop.
    auto logic = logic_.take(name);
    if (QWidget* w = widgets_.take(name)) {
        w->hide();
        if (logic) connect(w, &QObject::destroyed, [logic] {});
        w->deleteLater();
    }
    // The keyboard goes back to the screen now on top, whichever order the
    // closing screen's handler unloads and shows in.
    for (auto it = order_.crbegin(); it != order_.crend(); ++it)
        if (QWidget* top = widgets_.value(*it); top && top->isVisible()) {
            top->setFocus();
            break;
        }
}

void Desktop::close_dialogs() {
    // Each close ends that dialog's event loop once control returns to it.
    for (QWidget* modal = QApplication::activeModalWidget(); modal; modal = QApplication::activeModalWidget()) {
        modal->close();
        if (QApplication::activeModalWidget() == modal) break;  // it refused
    }
}

bool Desktop::is_loaded(const QString& name) const { return order_.contains(name); }

QStringList Desktop::loaded() const { return order_; }

void Desktop::end_program() {
    ended_ = true;
    mouse_timer_.stop();
    QCoreApplication::exit(0);
}

bool Desktop::start_process(const QString& program) { return QProcess::startDetached(program, {}); }

bool Desktop::open_document(const QString& path) { return QDesktopServices::openUrl(QUrl::fromLocalFile(path)); }

QStringList Desktop::process_environment() const { return QProcessEnvironment::systemEnvironment().toStringList(); }

void Desktop::closeEvent(QCloseEvent* event) {
    if (!ended_ && frame_.query_unload()) {
        event->ignore();
        return;
    }
    event->accept();
}

void Desktop::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    for (QWidget* w : widgets_)
        if (w->isVisible()) place(w);
}

void Desktop::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event);
    // The family's backdrop: a gradient from the base colour.
    QPainter p(this);
    QLinearGradient g(0, 0, 0, height());
    const QColor base(int(run_.backdrop_red ? run_.backdrop_red : 255), int(run_.backdrop_green ? run_.backdrop_green : 192),
                      int(run_.backdrop_blue ? run_.backdrop_blue : 158));
    g.setColorAt(0, base.lighter(130));
    g.setColorAt(1, base);
    p.fillRect(rect(), g);
}

}  // namespace veldo
