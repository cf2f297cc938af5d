#pragma once

#include <filesystem>
#include <string>

namespace varnholt {

/// A file with a lock of the operating system on it, held by one of all the programs that share
/// the file system, and a text of its holder that the others can read and add to. The system
/// frees the lock when its holder ends, however it ends. No exceptions, no Qt.
class LockFile
{
public:
    enum class Outcome
    {
        Taken,
        HeldByAnother,
        NotPossible ///< the folder takes no file, or the file system knows no locks
    };

    LockFile() = default;
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;
    /// Frees the lock; the file goes with it.
    ~LockFile();

    /// Does not wait. Once only. Whoever may write the file `like` may write the lock, too.
    [[nodiscard]] Outcome take(const std::filesystem::path& path,
                               const std::filesystem::path& like);

    /// Replaces the text; for the holder. Some other may be unable to read it; no matter.
    void setText(const std::string& text);

private:
    std::filesystem::path path_;
#ifdef _WIN32
    void* handle_ = nullptr;
#else
    int handle_ = -1;
#endif
};

} // namespace varnholt
