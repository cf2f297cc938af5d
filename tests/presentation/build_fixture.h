#pragma once

#include "presentation/slide_builder.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace varnholt::test {

using namespace Qt::StringLiterals;

using End = BuildOutcome::End;

/// A JPEG of 8 by 8 pixels that is the same wherever a test runs.
inline constexpr char smallPicture[] =
    "/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDABALDA4MChAODQ4SERATGCgaGBYWGDEjJR0oOjM9PDkzODdASFxOQERX"
    "RTc4UG1RV19iZ2hnPk1xeXBkeFxlZ2P/wAALCAAIAAgBAREA/8QAFAABAAAAAAAAAAAAAAAAAAAABv/EABQQAQAA"
    "AAAAAAAAAAAAAAAAAAD/2gAIAQEAAD8ATP/Z";

/// A picture; no density is written when `dotsPerInch` is 0.
inline QString writePicture(const QString& path, QSize size, double dotsPerInch,
                            const char* format = "jpeg")
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(235, 240, 250));
    QPainter(&image).drawLine(0, 0, size.width(), size.height());
    const int dotsPerMetre = qRound(dotsPerInch / 0.0254);
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    EXPECT_TRUE(image.save(path, format));
    if (dotsPerInch == 0 && qstrcmp(format, "jpeg") == 0) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        constexpr qint64 jfifUnit = 13;
        file.seek(jfifUnit);
        file.write(QByteArray("\0\0\1\0\1", 5));
    }
    return path;
}

/// A program folder with pictures 1.jpg, 2.jpg, ... and a pool of questions that show them.
class BuildFixture : public testing::Test
{
protected:
    QString picture(int index) const { return folder_.filePath(u"%1.jpg"_s.arg(index)); }

    void addQuestion(const QString& answer, const QString& topic = u"Algebra - Roots"_s)
    {
        const int key = pool_.upperBound() + 1;
        pool_.append({{key, key, 1, 1, answer}, true});
        topics_.append(topic);
    }

    BuildOutcome build(PresentationProgram& program, bool topicLine, bool answerKey,
                       const BuildProgress& progress = {})
    {
        const BuildInput input{
            pool_,
            topicLine,
            answerKey,
            [this](const QuestionRecord& q) { return topics_.at(q.SOLIndex - 1); },
            [this](const QuestionRecord& q) { return picture(q.PictureIndex); },
            wishes_,
            name_};
        return BuildPresentation(program, input, progress);
    }

    QTemporaryDir folder_;
    List1<DrawnQuestion> pool_;
    QStringList topics_;
    SlideWishes wishes_;
    QString name_;
};

} // namespace varnholt::test
