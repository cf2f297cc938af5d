#pragma once

namespace varnholt::test {

/// What happens at a step of this process that changes the file system. Counts from the call.
enum class AtStep
{
    Nothing,
    Kill,     ///< SIGKILL just before the step `number`
    DiskFull, ///< the step `number` and every later one that writes bytes fails
    NoLinks   ///< the file system knows no hard links
};

#ifdef _WIN32
// Nothing can stand before the calls of a Windows program.
inline void setFileSteps(AtStep /*what*/, int /*number*/ = 0) {}
#else
void setFileSteps(AtStep what, int number = 0);
/// Steps so far.
[[nodiscard]] int fileSteps();
#endif

} // namespace varnholt::test
