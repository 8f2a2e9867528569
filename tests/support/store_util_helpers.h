#pragma once
// Shared by the store's and the helpers' tests: a comma locale for the C
// number conversions.

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <clocale>
#include <cstdio>
#include <cstring>

namespace veldo::testing {

// A Qt program calls setlocale(LC_ALL, ""); under a comma locale the C
// conversions write "12,5". Builds a comma locale with localedef when the
// machine has none; `active` says whether one is set.
struct CommaLocale {
    CommaLocale() {
        for (const char* name : {"af_ZA.UTF-8", "de_DE.UTF-8", "nl_NL.UTF-8", "fr_FR.UTF-8"})
            if (try_locale(name)) return;
        const QString localedef = QStandardPaths::findExecutable(QStringLiteral("localedef"));
        if (localedef.isEmpty() || !scratch.isValid()) return;
        QProcess::execute(localedef, {"-i", "de_DE", "-f", "UTF-8", scratch.filePath(QStringLiteral("de_DE.UTF-8"))});
        qputenv("LOCPATH", QFile::encodeName(scratch.path()));
        try_locale("de_DE.UTF-8");
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        qunsetenv("LOCPATH");
    }
    bool try_locale(const char* name) {
        char text[16] = "";
        if (std::setlocale(LC_ALL, name)) std::snprintf(text, sizeof text, "%.1f", 12.5);
        active = std::strcmp(text, "12,5") == 0;
        return active;
    }
    QTemporaryDir scratch;
    bool active = false;
};

}  // namespace veldo::testing
