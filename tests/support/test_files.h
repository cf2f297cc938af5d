#pragma once

#include <QByteArray>
#include <QFile>
#include <QThread>

#include <gtest/gtest.h>

namespace varnholt::test {

/// Windows removes no file while somebody reads it, as who shows pictures does for a moment.
inline void removeFile(const QString& path)
{
    for (int i = 0; i < 200 && QFile::exists(path) && !QFile::remove(path); ++i) {
        QThread::msleep(20);
    }
    EXPECT_FALSE(QFile::exists(path)) << path.toStdString();
}

/// A file of these bytes, made anew.
inline void writeFile(const QString& path, const QByteArray& bytes)
{
    removeFile(path);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size())
        << "cannot write " << path.toStdString();
}

/// All bytes of a file; "cannot read " without one.
[[nodiscard]] inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot read ");
}

} // namespace varnholt::test
