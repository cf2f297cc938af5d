#include "library/backup/library_pictures.h"

#include "library/backup/backup_files.h"
#include "pictures/picture_files.h"

#include <QFileInfo>

#include <algorithm>
#include <charconv>
#include <optional>

namespace varnholt {

namespace fs = std::filesystem;

namespace {

/// Of "12.jpg" in any case of the ending; a name that is not written as a key is none.
std::optional<std::int32_t> keyOf(const std::u8string& name)
{
    constexpr std::size_t ending = 4;
    if (name.size() <= ending) {
        return std::nullopt;
    }
    const auto* text = reinterpret_cast<const char*>(name.data());
    const char* stop = text + name.size() - ending;
    std::int32_t key = 0;
    const auto [end, error] = std::from_chars(text, stop, key);
    const bool isJpg = stop[0] == '.' && (stop[1] | 0x20) == 'j' && (stop[2] | 0x20) == 'p' &&
                       (stop[3] | 0x20) == 'g';
    if (error != std::errc() || end != stop || !isJpg ||
        std::to_string(key) != std::string_view(text, stop)) {
        return std::nullopt;
    }
    return key;
}

} // namespace

std::vector<LibraryPicture> LibraryPictures(const QString& programFolder)
{
    std::vector<LibraryPicture> result;
    const fs::path folder = PathOf(QFileInfo(NewPictureFile(programFolder, 0)).path());
    std::error_code error;
    if (!fs::exists(folder, error)) {
        return result;
    }
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::optional<std::int32_t> key = keyOf(entry->path().filename().u8string());
        std::error_code ofFile;
        if (!key || !entry->is_regular_file(ofFile)) {
            continue;
        }
        LibraryPicture& picture = result.emplace_back();
        picture.path = entry->path();
        picture.facts.key = *key;
        picture.facts.size = static_cast<std::int64_t>(entry->file_size(ofFile));
        picture.facts.modified = ModifiedAt(picture.path, ofFile);
    }
    Require(error, folder);
    std::sort(result.begin(), result.end(), [&](const LibraryPicture& a, const LibraryPicture& b) {
        if (a.facts.key != b.facts.key) {
            return a.facts.key < b.facts.key;
        }
        const fs::path shown = PathOf(FindPictureFile(programFolder, a.facts.key));
        return a.path.filename() == shown.filename() && b.path.filename() != shown.filename();
    });
    const auto sameKey = [](const LibraryPicture& a, const LibraryPicture& b) {
        return a.facts.key == b.facts.key;
    };
    result.erase(std::unique(result.begin(), result.end(), sameKey), result.end());
    return result;
}

} // namespace varnholt
