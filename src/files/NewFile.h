#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace varnholt {

/// A file that appears under its name only when it is complete. Until then it stands in the
/// same folder under a name of its own, which goes when it is not finished. What is there
/// under the name already is never overwritten. No exceptions, no Qt.
class NewFile
{
public:
    enum class Outcome
    {
        Done,
        NameTaken,
        NotWritten, ///< the disk is full, or has failed
    };

    explicit NewFile(const std::filesystem::path& path);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// False when the folder does not take a new file.
    [[nodiscard]] bool isOpen() const { return handle_ >= 0; }
    /// False when the disk takes no more; so is `finish` then.
    bool write(std::span<const std::uint8_t> bytes);
    /// Puts everything on the disk and gives the file its name, on the disk as well.
    [[nodiscard]] Outcome finish();

private:
    Outcome giveName();

    std::filesystem::path path_;
    std::filesystem::path temporary_;
    int handle_ = -1;
    bool failed_ = false;
};

} // namespace varnholt
