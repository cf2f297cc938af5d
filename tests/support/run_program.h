#pragma once

#include <QProcess>

#include <gtest/gtest.h>

namespace varnholt::test {

/// Runs a program to its end and gives back its output; a failure fails the test.
inline QByteArray output(const QString& program, const QStringList& arguments)
{
    constexpr int limitMs = 180'000;
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(limitMs)) << qPrintable(program);
    EXPECT_EQ(process.exitCode(), 0)
        << qPrintable(program) << ": " << process.readAllStandardError().constData();
    return process.readAllStandardOutput();
}

} // namespace varnholt::test
