#pragma once
// A scenario's transcript for the store's tests: the lines a test records as
// it goes, compared at its end with tests/data/<folder>/<suite>.<test>.txt,
// its temporary folder shown as <dir>. VELDO_UPDATE_GOLDEN=1 writes the file.

#include <QStringList>
#include <gtest/gtest.h>

#include "tests/support/golden.h"

namespace veldo::testing {

inline ::testing::AssertionResult matches_test_golden(const QStringList& lines, const QString& folder,
                                                      const QString& dir) {
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    const QString name = QString("%1/%2.%3.txt").arg(folder, info->test_suite_name(), info->name());
    return matches_golden(lines.join('\n').replace(dir, "<dir>") + '\n', name);
}

}  // namespace veldo::testing
