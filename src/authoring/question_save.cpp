#include "authoring/question_save.h"

#include "authoring/PictureCanvas.h"
#include "imaging/cImage.h"
#include "imaging/cJpeg.h"
#include "pictures/picture_files.h"
#include "store/connection.h"
#include "store/statements.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace varnholt {

namespace {

constexpr int pictureQuality = 75;

std::int32_t readNewestKey(Connection& connection, std::int32_t assessmentNum)
{
    Recordset rows = connection.read(statements::SelectQuestionsNewestFirst(assessmentNum));
    if (!rows.next()) {
        throw DatabaseError(QStringLiteral("The new question was not found in the library."));
    }
    return rows.integer(rows.field("SOLIndex"));
}

bool isTaken(const QString& path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

bool hasPictureFile(const QString& programFolder, std::int32_t key)
{
    return isTaken(FindPictureFile(programFolder, key));
}

void setOldPictureAside(const QString& programFolder, std::int32_t key)
{
    // More than one when the extension is there in several spellings.
    while (hasPictureFile(programFolder, key)) {
        const QString path = FindPictureFile(programFolder, key);
        QString aside = path + QStringLiteral(".bak");
        for (int i = 2; isTaken(aside); ++i) {
            aside = path + QStringLiteral(".bak%1").arg(i);
        }
        if (!QFile::rename(path, aside)) {
            throw Error(QStringLiteral("An old picture is in the way and cannot be renamed: %1")
                            .arg(QDir::toNativeSeparators(path)));
        }
    }
}

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
        return QStringLiteral("The picture cannot be written: the folder takes no files (%1).")
            .arg(shown);
    case cJpeg::NotWritten:
        return QStringLiteral("The picture could not be written: the disk is full or has failed "
                              "(%1).")
            .arg(shown);
    default:
        return QStringLiteral("The picture could not be written (%1).").arg(shown);
    }
}

void writePicture(const QString& programFolder, std::int32_t key, PictureCanvas& canvas,
                  const SaveStepObserver& step)
{
    step(SaveStep::RenderPage);
    const Picture page = bitmapPicture(canvas.renderPage());
    step(SaveStep::FillBuffer);
    cImage buffer;
    check(buffer.CopyStdPicture(page), QStringLiteral("There is not enough memory to save."));
    step(SaveStep::Sample);
    cJpeg jpeg;
    jpeg.SetSamplingFrequencies(2, 2, 1, 1, 1, 1);
    jpeg.Quality(pictureQuality);
    check(jpeg.SampleHDC(buffer.hDC(), buffer.Width(), buffer.Height(), 0, 0) == cJpeg::Sampled,
          QStringLiteral("There is not enough memory to save."));
    step(SaveStep::WritePicture);
    const QString path = NewPictureFile(programFolder, key);
    QDir().mkpath(QFileInfo(path).path());
    const cJpeg::SaveResult result = jpeg.SaveFile(QFileInfo(path).filesystemFilePath());
    check(result == cJpeg::Written, writeFailure(result, path));
}

} // namespace

void SaveQuestion(Connection& connection, const QString& programFolder, NewQuestion& question,
                  PictureCanvas& canvas, const SaveStepObserver& observer)
{
    const SaveStepObserver step = observer ? observer : [](SaveStep) {};
    Transaction transaction(connection);
    step(SaveStep::InsertRow);
    std::int32_t key = question.SOLIndex;
    connection.execute(
        key == 0 ? statements::InsertQuestion(question.TopicID, question.Answer,
                                              question.AssessmentNum, question.SubtopicNum)
                 : statements::UpdateQuestion(key, question.TopicID, question.SubtopicNum,
                                              question.Answer));
    try {
        step(SaveStep::ReadKey);
        key = key == 0 ? readNewestKey(connection, question.AssessmentNum) : key;
        step(SaveStep::SetOldPictureAside);
        setOldPictureAside(programFolder, key);
        writePicture(programFolder, key, canvas, step);
    } catch (const std::exception& failure) {
        if (key == 0) {
            key = readNewestKey(connection, question.AssessmentNum);
        }
        if (hasPictureFile(programFolder, key)) {
            throw;
        }
        transaction.commit();
        question.SOLIndex = key;
        const auto* known = dynamic_cast<const Error*>(&failure);
        throw Error((known ? known->message() + u' ' : QString()) +
                    QStringLiteral("The question is in the library without its picture: save "
                                   "again to add it."));
    }
    try {
        step(SaveStep::Commit);
        transaction.commit();
    } catch (...) {
        QFile::remove(NewPictureFile(programFolder, key));
        throw;
    }
    question.SOLIndex = key;
}

} // namespace varnholt
