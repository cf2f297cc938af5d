#pragma once

#include <functional>

namespace varnholt {

/// Calls `open` until it no longer throws `LibraryBusy`, with a window that says what is waited
/// for. False when the user no longer wants to wait. Other errors pass.
[[nodiscard]] bool OpenWhenFree(const std::function<void()>& open);

} // namespace varnholt
