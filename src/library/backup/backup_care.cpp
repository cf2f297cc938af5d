#include "files/placing.h"
#include "files/sync.h"
#include "library/backup/BackupStore.h"
#include "library/backup/backup_files.h"
#include "library/backup/retention.h"

#include <QDir>

#include <algorithm>

namespace varnholt {

namespace fs = std::filesystem;

void BackupStore::removeUnnamed() const
{
    std::vector<Sha> named;
    for (const QString& id : ids()) {
        const std::optional<QByteArray> text = ReadWhole(manifestOf(id));
        if (!text) {
            return;
        }
        // Of a damaged manifest, too: what it names may be all that is left.
        const char* word = text->constData();
        for (const char* at = word; at != text->constData() + text->size(); ++at) {
            if (*at == ' ' || *at == '\n') {
                Sha sha;
                if (at - word == std::ptrdiff_t(sha.size())) {
                    std::copy(word, at, sha.begin());
                    named.push_back(sha);
                }
                word = at + 1;
            }
        }
    }
    std::sort(named.begin(), named.end());
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(pool(), error)) {
        const std::string name = entry.path().filename().string();
        Sha sha{};
        std::copy_n(name.begin(), std::min(name.size(), sha.size()), sha.begin());
        if (!std::binary_search(named.begin(), named.end(), sha)) {
            fs::remove(entry.path(), error);
        }
    }
}

void BackupStore::tidy(std::int64_t now, std::int64_t utcOffset)
{
    const auto gone = [&](const std::vector<QString>& among) {
        std::vector<std::int64_t> times;
        std::transform(among.begin(), among.end(), std::back_inserter(times), timeOf);
        const std::vector<bool> kept = KeptBackups(times, now, utcOffset);
        std::vector<QString> result;
        for (std::size_t i = 0; i < among.size(); ++i) {
            if (!kept[i]) {
                result.push_back(among[i]);
            }
        }
        return result;
    };
    std::error_code error;
    // Fewer backups among themselves lose no more than all together: mostly nothing, then.
    if (!gone(ids()).empty()) {
        std::vector<QString> whole;
        std::vector<QString> other;
        for (const BackupInfo& backup : list()) {
            (backup.state == BackupManifest::State::Damaged ? other : whole).push_back(backup.id);
        }
        for (const std::vector<QString>& among : {gone(whole), gone(other)}) {
            for (const QString& id : among) {
                fs::remove(manifestOf(id), error);
                Require(error, manifestOf(id));
            }
        }
        (void)SyncFolder(PathOf(folder_));
        removeUnnamed();
    }
    // Without their manifest these are nothing.
    for (const QString& name :
         QDir(folder_).entryList({QStringLiteral("*-*-*.mdb*")}, QDir::Files)) {
        const QString id = name.left(name.indexOf(u'.'));
        if (!fs::exists(manifestOf(id), error) && !error) {
            fs::remove(path(name), error);
        }
    }
}

BackupCheck BackupStore::verify(const QString& id, const BackupProgress& progress)
{
    BackupCheck check;
    const auto damaged = [&](const Path& file) {
        check.whole = false;
        check.damagedFiles.push_back(Shown(file));
    };
    const auto look = [&](const Path& file, const Sha& expected) {
        const std::optional<Sha> found = ShaOfFile(file);
        if (found == expected) {
            return;
        }
        damaged(file);
        if (found) {
            Path aside = file;
            aside += ".damaged";
            static_cast<void>(RenameFile(file, aside));
        }
    };
    BackupManifest manifest;
    const BackupManifest::State state = read(id, manifest);
    if (state != BackupManifest::State::Whole) {
        damaged(manifestOf(id));
        return check;
    }
    look(libraryOf(id), manifest.librarySha);
    for (std::size_t i = 0; i < manifest.pictures.size(); ++i) {
        if (progress) {
            progress(i, manifest.pictures.size());
        }
        look(pictureOf(manifest.pictures[i].sha), manifest.pictures[i].sha);
    }
    return check;
}

} // namespace varnholt
