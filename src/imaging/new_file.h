#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace varnholt {

/// A file that appears under its name only when it is complete. Until then it stands in the
/// same folder under a name of its own, which goes when it is not finished. What is there
/// under the name already is never overwritten.
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
    bool isOpen() const { return m_handle >= 0; }
    bool write(std::span<const std::uint8_t> bytes);
    /// Puts everything on the disk and gives the file its name.
    Outcome finish();

private:
    bool flush();
    Outcome giveName();

    std::filesystem::path m_path;
    std::filesystem::path m_temporary;
    int m_handle = -1;
    bool m_failed = false;
};

} // namespace varnholt
