#pragma once
// Tests of read-only files and folders mean nothing as root, who may write
// anywhere, and CI runs as root. Such a test calls rerun_unprivileged()
// first: as root it runs itself again in a child process as the nobody
// account, checks that the child passed, and returns true (the caller then
// returns); otherwise it returns false and the test goes on.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <unistd.h>

namespace veldo::testing {

inline bool rerun_unprivileged() {
    if (geteuid() != 0) return false;
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    const QString filter = QString("--gtest_filter=%1.%2").arg(info->test_suite_name(), info->name());
    QProcess child;
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start("setpriv", {"--reuid=65534", "--regid=65534", "--clear-groups", QCoreApplication::applicationFilePath(),
                            filter});
    const bool finished = child.waitForFinished(60000);
    const QString output = QString::fromLocal8Bit(child.readAll());
    EXPECT_TRUE(finished) << "the unprivileged run did not finish";
    EXPECT_EQ(child.exitCode(), 0) << "as the nobody account:\n" << output.toStdString();
    EXPECT_TRUE(output.contains("[  PASSED  ] 1 test")) << output.toStdString();
    return true;
}

}  // namespace veldo::testing
