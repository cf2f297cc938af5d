#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace varnholt::test {

using namespace Qt::StringLiterals;

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

/// A .pptx taken apart by unzip, which also compares the checksums.
class PackageReader
{
public:
    explicit PackageReader(const QString& path)
    {
        output(u"unzip"_s, {u"-q"_s, path, u"-d"_s, folder_.path()});
    }

    [[nodiscard]] QByteArray bytes(const QString& part) const
    {
        QFile file(folder_.filePath(part));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(part);
        return file.readAll();
    }

    /// What every element of that name has as the attribute, or as its text; a part that is
    /// not well-formed fails the test.
    [[nodiscard]] QStringList values(const QString& part, QLatin1String element,
                                     QLatin1String attribute = {}) const
    {
        QStringList found;
        QXmlStreamReader xml(bytes(part));
        while (!xml.atEnd()) {
            if (xml.readNext() == QXmlStreamReader::StartElement &&
                xml.qualifiedName() == element) {
                found.append(attribute.isEmpty() ? xml.readElementText()
                                                 : xml.attributes().value(attribute).toString());
            }
        }
        EXPECT_FALSE(xml.hasError()) << qPrintable(part) << ": " << qPrintable(xml.errorString());
        return found;
    }

    static QString slideName(int slide) { return u"ppt/slides/slide%1.xml"_s.arg(slide); }

private:
    QTemporaryDir folder_;
};

} // namespace varnholt::test
