// The verbs of `Library` that are about pictures alone.
#include "library/Library.h"
#include "library/library_change.h"
#include "library/old_pictures.h"
#include "library/question_picture.h"
#include "pictures/picture_files.h"

#include <QFile>

namespace varnholt {

std::int32_t Library::addWholeQuestion(const Filing& filing, const QString& answer,
                                       const PictureWriter& writePicture)
{
    Change change(*this);
    const std::int32_t key = addRow(change, filing, answer);
    const QString path = NewPictureFile(programFolder_, key);
    SetOldPictureAside(programFolder_, key);
    try {
        writePicture(path);
        change.commit();
    } catch (...) {
        QFile::remove(path);
        throw;
    }
    return key;
}

void Library::replacePicture(std::int32_t solIndex, const PictureWriter& writePicture)
{
    requireFeatures();
    const QString before = PictureMark(programFolder_, solIndex);
    const QString next = NextPictureFile(programFolder_, solIndex);
    Change change(*this);
    writePicture(next);
    PutNextPicture(programFolder_, solIndex);
    try {
        change.touch({ItemKind::Question, solIndex});
        change.picture(solIndex, before, PictureMark(programFolder_, solIndex));
        change.commit();
    } catch (const Error&) {
        PutOldPicture(programFolder_, solIndex, before);
        throw;
    }
}

void Library::putPictures(const std::vector<TurnedPicture>& pictures, Transaction& transaction)
{
    std::vector<TurnedPicture> done;
    try {
        for (const TurnedPicture& picture : pictures) {
            PutOldPicture(programFolder_, picture.SOLIndex, picture.to);
            done.push_back(picture);
        }
        transaction.commit();
    } catch (const Error&) {
        for (const TurnedPicture& picture : done) {
            PutOldPicture(programFolder_, picture.SOLIndex, picture.from);
        }
        throw;
    }
}

} // namespace varnholt
