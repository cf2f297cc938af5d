#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace varnholt::test {

/// Runs a program to its end and gives back its output; a failure fails the test.
inline QByteArray output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(60'000)) << qPrintable(program);
    EXPECT_EQ(process.exitCode(), 0)
        << qPrintable(program) << ": " << process.readAllStandardError().constData();
    return process.readAllStandardOutput();
}

/// One element of a part, with its place among the others.
struct Element
{
    QString name;
    QXmlStreamAttributes attributes;
    QString text;

    [[nodiscard]] QString attribute(const char* key) const
    {
        return attributes.value(QLatin1String(key)).toString();
    }
};

/// A .pptx taken apart by unzip.
class PackageReader
{
public:
    explicit PackageReader(const QString& path)
        : path_(path)
    {
        output(QStringLiteral("unzip"),
               {QStringLiteral("-q"), path, QStringLiteral("-d"), folder_.path()});
    }

    [[nodiscard]] QStringList parts() const
    {
        QStringList names;
        QDirIterator files(folder_.path(), QDir::Files | QDir::Hidden,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            names.append(QDir(folder_.path()).relativeFilePath(files.next()));
        }
        names.sort();
        return names;
    }

    [[nodiscard]] QByteArray bytes(const QString& part) const
    {
        QFile file(folder_.filePath(part));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(part);
        return file.readAll();
    }

    /// All elements in document order; a part that is not well-formed fails the test.
    [[nodiscard]] QList<Element> elements(const QString& part) const
    {
        QList<Element> found;
        QXmlStreamReader reader(bytes(part));
        while (!reader.atEnd()) {
            reader.readNext();
            if (reader.isStartElement()) {
                found.append({reader.qualifiedName().toString(), reader.attributes(), {}});
            } else if (reader.isCharacters() && !found.isEmpty()) {
                found.last().text += reader.text();
            }
        }
        EXPECT_FALSE(reader.hasError())
            << qPrintable(part) << ": " << qPrintable(reader.errorString());
        return found;
    }

    [[nodiscard]] QList<Element> elements(const QString& part, const QString& name) const
    {
        QList<Element> found = elements(part);
        found.removeIf([&name](const Element& element) { return element.name != name; });
        return found;
    }

    /// Left, top, width and height in EMU of the shapes of a slide.
    [[nodiscard]] QList<QList<qint64>> boxes(int slide) const
    {
        QList<QList<qint64>> found;
        for (const Element& element : elements(slideName(slide))) {
            if (element.name == QStringLiteral("a:off")) {
                found.append(
                    {element.attribute("x").toLongLong(), element.attribute("y").toLongLong()});
            } else if (element.name == QStringLiteral("a:ext")) {
                found.last() +=
                    {element.attribute("cx").toLongLong(), element.attribute("cy").toLongLong()};
            }
        }
        found.removeFirst(); // the shape tree's own
        return found;
    }

    [[nodiscard]] QStringList texts(int slide) const
    {
        QStringList found;
        for (const Element& element : elements(slideName(slide), QStringLiteral("a:t"))) {
            found.append(element.text);
        }
        return found;
    }

    static QString slideName(int slide)
    {
        return QStringLiteral("ppt/slides/slide%1.xml").arg(slide);
    }

    [[nodiscard]] QByteArray listing() const
    {
        return output(QStringLiteral("unzip"), {QStringLiteral("-v"), path_});
    }

private:
    QString path_;
    QTemporaryDir folder_;
};

} // namespace varnholt::test
