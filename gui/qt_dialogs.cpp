#include "gui/qt_dialogs.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>

namespace veldo {

MsgAnswer QtDialogs::message(const QString& text, MsgIcon icon, MsgButtons buttons, const QString& title) {
    QMessageBox box(parent_);
    box.setText(text);
    box.setWindowTitle(title.isEmpty() ? QStringLiteral("VELDO-TALLY") : title);
    switch (icon) {
        case MsgIcon::Critical: box.setIcon(QMessageBox::Critical); break;
        case MsgIcon::Question: box.setIcon(QMessageBox::Question); break;
        case MsgIcon::Exclamation: box.setIcon(QMessageBox::Warning); break;
        case MsgIcon::Information: box.setIcon(QMessageBox::Information); break;
        case MsgIcon::None: break;
    }
    switch (buttons) {
        case MsgButtons::Ok: box.setStandardButtons(QMessageBox::Ok); break;
        case MsgButtons::OkCancel: box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel); break;
        case MsgButtons::YesNo: box.setStandardButtons(QMessageBox::Yes | QMessageBox::No); break;
        case MsgButtons::YesNoCancel:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            break;
        case MsgButtons::AbortRetryIgnore:
            box.setStandardButtons(QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore);
            break;
    }
    switch (box.exec()) {
        case QMessageBox::Yes: return MsgAnswer::Yes;
        case QMessageBox::No: return MsgAnswer::No;
        case QMessageBox::Cancel: return MsgAnswer::Cancel;
        default: return MsgAnswer::Ok;
    }
}

QString QtDialogs::input(const QString& prompt, const QString& title, const QString& default_text) {
    bool ok = false;
    const QString text = QInputDialog::getText(parent_, title.isEmpty() ? QStringLiteral("VELDO-TALLY") : title,
                                               prompt, QLineEdit::Normal, default_text, &ok);
    return ok ? text : QString();
}

void QtDialogs::beep() { QApplication::beep(); }

QString QtDialogs::choose_folder(const QString& title, const QString& start_folder) {
    return QFileDialog::getExistingDirectory(parent_, title, start_folder);
}

QString QtDialogs::choose_open_file(const QString& title, const QString& start_folder, const QString& filter) {
    return QFileDialog::getOpenFileName(parent_, title, start_folder, filter);
}

QString QtDialogs::choose_save_file(const QString& title, const QString& start_folder, const QString& filter) {
    return QFileDialog::getSaveFileName(parent_, title, start_folder, filter);
}

QString QtDialogs::clipboard_text() { return QApplication::clipboard()->text(); }

void QtDialogs::set_clipboard_text(const QString& text) { QApplication::clipboard()->setText(text); }

}  // namespace veldo
