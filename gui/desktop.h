#pragma once
// The main frame `startup`: a window as large as the screen that holds every
// other screen as a child, and the Qt side of `Screens`. Screens are made on
// first use from a table of factories and destroyed when they are unloaded.

#include <QDialog>
#include <QHash>
#include <QMainWindow>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QTimer>
#include <functional>
#include <memory>

#include "gui/desktop_printer.h"
#include "gui/qt_dialogs.h"
#include "shell/passwords.h"
#include "shell/screens.h"
#include "shell/splash.h"
#include "store/record_store.h"
#include "store/run_state.h"

namespace veldo {

class InactivityWatcher;

class Desktop : public QMainWindow, public Screens {
    Q_OBJECT
public:
    Desktop(const QString& application_folder, std::function<bool()> another_copy_running);
    ~Desktop() override;

    // Loads the frame and shows the splash. False when the run must end.
    bool start();
    bool ended() const { return ended_; }
    ShellContext& context() { return ctx_; }
    QWidget* screen_widget(const QString& name) const { return widgets_.value(name); }

    // Screens
    void show(const QString& name) override;
    void show_modal(const QString& name) override;
    void unload(const QString& name) override;
    bool is_loaded(const QString& name) const override;
    QStringList loaded() const override;
    void end_program() override;
    bool start_process(const QString& program) override;
    bool open_document(const QString& path) override;
    QStringList process_environment() const override;
    void close_dialogs() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Loaded {
        QPointer<QWidget> widget;
        std::shared_ptr<void> logic;  // the screen class behind the widget
    };
    QWidget* make(const QString& name);
    void place(QWidget* w);
    void run_modal(const QString& name);

    QString application_folder_;
    RunState run_;
    std::unique_ptr<RecordStore> store_;
    QtDialogs dialogs_;
    DesktopPrinter printer_{run_, this};
    ShellContext ctx_;
    PasswordLists passwords_;
    MainFrame frame_;
    std::unique_ptr<Splash> splash_;
    std::function<bool()> another_copy_running_;
    std::unique_ptr<InactivityWatcher> watcher_;
    QTimer mouse_timer_;
    QSystemTrayIcon* tray_ = nullptr;
    QHash<QString, QWidget*> widgets_;
    QHash<QString, std::shared_ptr<void>> logic_;
    QStringList order_;
    QString modal_name_;
    QPointer<QDialog> modal_dialog_;
    bool ended_ = false;
};

}  // namespace veldo
