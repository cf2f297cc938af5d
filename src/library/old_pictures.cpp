#include "library/old_pictures.h"

#include "files/placing.h"
#include "pictures/picture_files.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace varnholt {

namespace {

constexpr int markLength = 8;

[[noreturn]] void fail(const char* sentence, const QString& path)
{
    throw Error(
        QCoreApplication::translate("Library", sentence).arg(QDir::toNativeSeparators(path)));
}

QString markOf(const QString& path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
        fail(QT_TRANSLATE_NOOP("Library", "The picture cannot be read: %1"), path);
    }
    return MarkOfSha(hash.result());
}

void put(const QString& from, const QString& to, Placing placing)
{
    QDir().mkpath(QFileInfo(to).path());
    if (PlaceFile(QFileInfo(from).filesystemFilePath(), QFileInfo(to).filesystemFilePath(),
                  placing)) {
        fail(QT_TRANSLATE_NOOP("Library", "The picture cannot be put in its place: %1"), to);
    }
}

void keep(const QString& programFolder, std::int32_t key, const QString& present)
{
    const QString kept = OldPictureFile(programFolder, key, markOf(present));
    if (!QFileInfo::exists(kept)) {
        put(present, kept, Placing::MayShare);
    }
}

} // namespace

QString MarkOfSha(const QByteArray& sha)
{
    return QString::fromLatin1(sha.toHex().first(markLength));
}

QString OldPictureFile(const QString& programFolder, std::int32_t key, const QString& mark)
{
    const QFileInfo place(NewPictureFile(programFolder, key));
    return place.path() + QStringLiteral("/Old/") + place.completeBaseName() + u'-' + mark +
           QStringLiteral(".jpg");
}

QString PictureMark(const QString& programFolder, std::int32_t key)
{
    return markOf(FindPictureFile(programFolder, key));
}

QString NextPictureFile(const QString& programFolder, std::int32_t key)
{
    const QString next = OldPictureFile(programFolder, key, QStringLiteral("next"));
    QDir().mkpath(QFileInfo(next).path());
    // Left by a program that was killed.
    QFile::remove(next);
    return next;
}

void PutNextPicture(const QString& programFolder, std::int32_t key)
{
    const QString present = FindPictureFile(programFolder, key);
    const QString next = OldPictureFile(programFolder, key, QStringLiteral("next"));
    keep(programFolder, key, present);
    if (TakeFileTo(QFileInfo(next).filesystemFilePath(), QFileInfo(present).filesystemFilePath())) {
        fail(QT_TRANSLATE_NOOP("Library", "The picture cannot be put in its place: %1"), present);
    }
}

void PutOldPicture(const QString& programFolder, std::int32_t key, const QString& mark)
{
    const QString present = FindPictureFile(programFolder, key);
    const QString wanted = OldPictureFile(programFolder, key, mark);
    if (!QFileInfo::exists(wanted)) {
        fail(QT_TRANSLATE_NOOP("Library", "The old picture is no longer there: %1"), wanted);
    }
    keep(programFolder, key, present);
    // Of its own bytes and time, so that a backup sees that it is another one.
    put(wanted, present, Placing::Copy);
}

} // namespace varnholt
