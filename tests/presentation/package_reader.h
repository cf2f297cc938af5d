#pragma once

#include "support/run_program.h"

#include <QMap>
#include <QXmlStreamReader>

#include <gtest/gtest.h>
#include <zip.h>

namespace varnholt::test {

using namespace Qt::StringLiterals;

/// Windows has no unzip.
inline void expectWholeForUnzip([[maybe_unused]] const QString& path)
{
#ifndef _WIN32
    output(u"unzip"_s, {u"-tqq"_s, path});
#endif
}

/// A .pptx taken apart by libzip, which also compares the checksums.
class PackageReader
{
public:
    explicit PackageReader(const QString& path)
    {
        zip_t* archive = zip_open(path.toUtf8().constData(), ZIP_RDONLY | ZIP_CHECKCONS, nullptr);
        EXPECT_NE(archive, nullptr) << qPrintable(path);
        const zip_int64_t count = archive ? zip_get_num_entries(archive, 0) : 0;
        for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(count); ++i) {
            zip_stat_t entry;
            zip_stat_index(archive, i, 0, &entry);
            QByteArray content(static_cast<qsizetype>(entry.size), 0);
            zip_file_t* part = zip_fopen_index(archive, i, 0);
            EXPECT_EQ(part ? zip_fread(part, content.data(), entry.size) : -1, content.size());
            // Only who reads beyond the end is told of a wrong checksum.
            char beyond = 0;
            EXPECT_EQ(part ? zip_fread(part, &beyond, 1) : -1, 0) << entry.name;
            if (part) {
                zip_fclose(part);
            }
            names_.append(QString::fromUtf8(entry.name));
            contents_[names_.last()] = content;
            isStored_ = isStored_ && entry.comp_method == ZIP_CM_STORE;
        }
        zip_discard(archive);
        expectWholeForUnzip(path);
    }

    /// The names of all parts, in their order.
    [[nodiscard]] const QStringList& parts() const { return names_; }

    /// Whether no part is compressed.
    [[nodiscard]] bool isStored() const { return isStored_; }

    [[nodiscard]] QByteArray bytes(const QString& part) const
    {
        EXPECT_TRUE(contents_.contains(part)) << qPrintable(part);
        return contents_[part];
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
    QStringList names_;
    QMap<QString, QByteArray> contents_;
    bool isStored_ = true;
};

} // namespace varnholt::test
