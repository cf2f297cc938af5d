#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace varnholt {

/// A SHA-256 in lower-case hexadecimal digits.
using Sha = std::array<char, 64>;

[[nodiscard]] inline std::string_view View(const Sha& sha)
{
    return {sha.data(), sha.size()};
}

/// A picture of a backup. Size and time are those of the file in `Files` when it was read: while
/// they are the same it need not be read again.
struct BackedPicture
{
    std::int32_t key = 0;
    Sha sha{};
    std::int64_t size = 0;
    /// In nanoseconds of the file system's clock.
    std::int64_t modified = 0;
};

/// What a backup consists of. Its text ends in a checksum of itself, so that a change of any byte
/// shows.
struct BackupManifest
{
    /// Seconds of UTC.
    std::int64_t madeAt = 0;
    /// When the pictures began to be looked at, as `BackedPicture::modified`.
    std::int64_t looked = 0;
    /// The version of the program that made it, and of the tables beside the classic ones.
    QString program;
    int tables = 0;
    std::int64_t questions = 0;
    std::int64_t librarySize = 0;
    Sha librarySha{};
    /// By rising key.
    std::vector<BackedPicture> pictures;

    [[nodiscard]] const BackedPicture* find(std::int32_t key) const;
    [[nodiscard]] QByteArray text() const;

    enum class State
    {
        Whole,
        Damaged,
        /// Of a newer program: of the content only `program` is known.
        Newer
    };
    [[nodiscard]] static State read(const QByteArray& text, BackupManifest& manifest);
};

} // namespace varnholt
