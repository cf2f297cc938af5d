#pragma once

namespace varnholt {

/// The place of the back end that drives PowerPoint through its automation object model
/// (Windows only, late-bound). Not written yet: `DefaultPresentationPrograms` asks here first,
/// and no machine has it.
[[nodiscard]] constexpr bool powerPointAvailable()
{
    return false;
}

} // namespace varnholt
