#pragma once
// What a scripted session left behind, one record a line, to compare with a
// golden file: messages, prompts and beeps, the screens shown, unloaded,
// started and opened, and the files below some folders of the drive with
// their bytes. The drive's own path reads as <drive>.

#include <QDirIterator>
#include <initializer_list>

#include "tests/support/fake_screens.h"
#include "tests/support/temp_drive.h"
#include "util/text_grid.h"

namespace veldo::testing {

// Printable ASCII as it is; CR and LF as \r and \n; any other byte as \xNN.
inline QString shown_bytes(const QByteArray& bytes) {
    QString out;
    for (const char c : bytes) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '\r' || c == '\n')
            out += c == '\r' ? "\\r" : "\\n";
        else if (u >= 32 && u < 127 && c != '\\')
            out += QChar(c);
        else
            out += QString("\\x%1").arg(u, 2, 16, QChar('0'));
    }
    return out;
}

inline QString transcript(const TempDrive& t, const FakeScreens& screens,
                          std::initializer_list<const char*> folders = {}) {
    static const char* icons[] = {"None", "Critical", "Question", "Exclamation", "Information"};
    static const char* buttons[] = {"Ok", "OkCancel", "YesNo", "YesNoCancel", "AbortRetryIgnore"};
    QStringList out;
    for (const auto& m : t.dialogs.messages)
        out << QString("message %1 %2 [%3]: %4").arg(icons[int(m.icon)], buttons[int(m.buttons)], m.title, m.text);
    for (const QString& p : t.dialogs.prompts) out << "prompt: " + p;
    if (t.dialogs.beeps) out << QString("beeps: %1").arg(t.dialogs.beeps);
    const std::pair<const char*, const QStringList*> lists[] = {{"shown", &screens.shown}, {"modal", &screens.modal},
        {"unloaded", &screens.unloaded}, {"started", &screens.started}, {"opened", &screens.documents}};
    for (const auto& [name, list] : lists)
        if (!list->isEmpty()) out << QString(name) + ": " + list->join(" | ");
    if (screens.ended) out << "ended";
    for (const char* folder : folders) {
        QStringList files;
        for (QDirIterator it(t.path(folder), QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
            files << it.next();
        files.sort();
        for (const QString& f : files) out << "file " + f + ": " + shown_bytes(read_bytes(f));
    }
    return out.join('\n').replace(t.dir.path(), "<drive>") + '\n';
}

// A grid one row a line, cells between bars up to the last that holds text;
// with `coloured` the back colour of that column ends each row, with
// `widths` a last line gives each column's width.
inline QString grid_text(const TextGrid& grid, int coloured = -1, bool widths = false) {
    QString out;
    for (int r = 0; r < grid.rows(); ++r) {
        QStringList cells = grid.row_texts(r);
        while (!cells.isEmpty() && cells.last().isEmpty()) cells.removeLast();
        out += cells.join('|');
        if (coloured >= 0) out += QString(" #%1").arg(grid.cell_back_colour(r, coloured), 6, 16, QChar('0'));
        out += '\n';
    }
    QStringList width_texts;
    for (int c = 0; widths && c < grid.cols(); ++c) width_texts << QString::number(grid.col_width(c));
    return widths ? out + "widths " + width_texts.join(' ') + '\n' : out;
}

}  // namespace veldo::testing
