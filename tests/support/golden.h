#pragma once

// A long expected text kept as a file under tests/data instead of in the test.
// VELDO_UPDATE_GOLDEN=1 (scripts/update-golden.sh) writes the file from what the
// program gives now; read the diff before committing it.

#include <algorithm>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

namespace veldo::testing {

inline ::testing::AssertionResult matches_golden(const QString& text, const QString& name) {
    const QString path = QStringLiteral(VELDO_SOURCE_DIR "/tests/data/") + name;
    if (qEnvironmentVariableIsSet("VELDO_UPDATE_GOLDEN")) {
        QDir().mkpath(QFileInfo(path).path());
        QFile out(path);
        if (!out.open(QIODevice::WriteOnly) || out.write(text.toUtf8()) != text.toUtf8().size())
            return ::testing::AssertionFailure() << "cannot write " << path.toStdString();
        return ::testing::AssertionSuccess();
    }
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly)) return ::testing::AssertionFailure() << "no golden file " << path.toStdString();
    const QStringList want = QString::fromUtf8(in.readAll()).split(QLatin1Char('\n'));
    const QStringList got = text.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < std::max(want.size(), got.size()); ++i) {
        const QString w = want.value(i, QStringLiteral("<end>")), g = got.value(i, QStringLiteral("<end>"));
        if (w != g)
            return ::testing::AssertionFailure() << name.toStdString() << " line " << i + 1 << "\n  expected: "
                                                 << w.toStdString() << "\n  actual:   " << g.toStdString();
    }
    return ::testing::AssertionSuccess();
}

}  // namespace veldo::testing
