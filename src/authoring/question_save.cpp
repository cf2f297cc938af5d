#include "authoring/question_save.h"

#include "imaging/cImage.h"
#include "imaging/cJpeg.h"
#include "library/Library.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace varnholt {

namespace {

constexpr int pictureQuality = 75;

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(SaveQuestion)
};

/// The page as a bitmap picture: rows bottom-up, blue-green-red, padded to 4 bytes.
Picture bitmapPicture(const QImage& page)
{
    const QImage rows = page.convertToFormat(QImage::Format_BGR888).mirrored();
    Picture picture;
    picture.width = rows.width();
    picture.height = rows.height();
    picture.bitCount = 24;
    picture.pixels.assign(rows.constBits(), rows.constBits() + rows.sizeInBytes());
    return picture;
}

void check(bool done, const QString& sentence)
{
    if (!done) {
        throw Error(sentence);
    }
}

QString writeFailure(cJpeg::SaveResult result, const QString& path)
{
    const QString shown = QDir::toNativeSeparators(path);
    switch (result) {
    case cJpeg::CannotCreate:
        return Words::tr("The picture cannot be written: the folder takes no files (%1).")
            .arg(shown);
    case cJpeg::NotWritten:
        return Words::tr("The picture could not be written: the disk is full or has failed "
                         "(%1).")
            .arg(shown);
    default:
        return Words::tr("The picture could not be written (%1).").arg(shown);
    }
}

} // namespace

void WriteQuestionPicture(const QString& path, const QImage& image, int quality,
                          const SaveStepObserver& observer)
{
    const SaveStepObserver step = observer ? observer : [](SaveStep) {};
    step(SaveStep::FillBuffer);
    const Picture page = bitmapPicture(image);
    cImage buffer;
    check(buffer.CopyStdPicture(page), Words::tr("There is not enough memory to save."));
    step(SaveStep::Sample);
    cJpeg jpeg;
    jpeg.SetSamplingFrequencies(2, 2, 1, 1, 1, 1);
    jpeg.Quality(quality);
    check(jpeg.SampleHDC(buffer.hDC(), buffer.Width(), buffer.Height(), 0, 0) == cJpeg::Sampled,
          Words::tr("There is not enough memory to save."));
    step(SaveStep::WritePicture);
    QDir().mkpath(QFileInfo(path).path());
    const cJpeg::SaveResult result = jpeg.SaveFile(QFileInfo(path).filesystemFilePath());
    check(result == cJpeg::Written, writeFailure(result, path));
}

void SaveQuestion(Library& library, NewQuestion& question, const QImage& picture,
                  const SaveStepObserver& observer)
{
    const auto write = [&](const QString& path) {
        WriteQuestionPicture(path, picture, pictureQuality, observer);
    };
    try {
        if (question.SOLIndex == 0) {
            question.SOLIndex = library.addQuestion(question.filing, question.Answer, write);
        } else {
            library.completeQuestion(question.SOLIndex, question.filing, question.Answer, write);
        }
    } catch (const PictureMissing& failure) {
        question.SOLIndex = failure.SOLIndex;
        throw;
    }
}

} // namespace varnholt
