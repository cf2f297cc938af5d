#include "library/backup/BackupStore.h"

#include "files/NewFile.h"
#include "files/placing.h"
#include "library/backup/backup_files.h"

#include <QDir>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>

namespace varnholt {

namespace fs = std::filesystem;

namespace {

QString commonFolder(const QString& place)
{
    return place + QStringLiteral("/Varnholt Backups");
}

} // namespace

QString BackupStore::identity() const
{
    const Path file = path(QStringLiteral("identity"));
    std::optional<QByteArray> text = ReadWhole(file);
    if (!text || text->size() != 16) {
        std::error_code ignored;
        fs::create_directories(PathOf(folder_), ignored);
        fs::remove(file, ignored);
        text = QByteArray::number(QRandomGenerator::system()->generate64(), 16)
                   .rightJustified(16, '0');
        NewFile written(file);
        if (!written.isOpen() ||
            !written.write({reinterpret_cast<const std::uint8_t*>(text->constData()), 16}) ||
            written.finish() != NewFile::Outcome::Done) {
            ThrowFileError({errno != 0 ? errno : EIO, std::generic_category()}, file);
        }
    }
    return QString::fromLatin1(*text);
}

std::vector<BackupStore> BackupStore::storesAt(const QString& place)
{
    std::vector<BackupStore> result;
    const QDir folder(commonFolder(place));
    for (const QString& name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        result.emplace_back(folder.filePath(name));
    }
    return result;
}

BackupStore::CopyOutcome BackupStore::copyNewestTo(const QString& place, std::int64_t now,
                                                   std::int64_t utcOffset,
                                                   const BackupProgress& progress)
{
    if (!QFileInfo(place).isDir()) {
        return CopyOutcome::NotThere;
    }
    const std::vector<BackupInfo> all = list();
    BackupManifest manifest;
    if (all.empty() || all.front().state != BackupManifest::State::Whole ||
        read(all.front().id, manifest) != BackupManifest::State::Whole) {
        return CopyOutcome::NothingNew;
    }
    const QString& id = all.front().id;
    BackupStore there(commonFolder(place) + u'/' + identity());
    const Path library = there.begin();
    const std::vector<Sha> known = there.pooled();
    BackupManifest ofCopy;
    const BackupInfo copied = there.info(id, known, ofCopy);
    if (copied.state == BackupManifest::State::Whole) {
        return CopyOutcome::NothingNew;
    }
    // A damaged copy of the same backup gives way.
    std::error_code error;
    fs::remove(there.manifestOf(id), error);

    // Bytes of their own: what shares them with the original is no second copy.
    Written written;
    for (std::size_t i = 0; i < manifest.pictures.size(); ++i) {
        if (progress) {
            progress(i, manifest.pictures.size());
        }
        const BackedPicture& picture = manifest.pictures[i];
        if (!std::binary_search(known.begin(), known.end(), picture.sha)) {
            there.addToPool(pictureOf(picture.sha), picture, false, written);
        }
    }
    there.syncPool(written);
    Require(PlaceFile(libraryOf(id), library, Placing::Copy), library);
    there.publish(id, library, manifest);
    there.tidy(now, utcOffset);
    return CopyOutcome::Copied;
}

} // namespace varnholt
