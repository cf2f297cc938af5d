#pragma once

#include <QByteArray>
#include <QFile>

#include <gtest/gtest.h>

namespace varnholt::test {

/// A file of these bytes, made anew.
inline void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile::remove(path);
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
