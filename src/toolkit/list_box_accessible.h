#pragma once

namespace varnholt {

/// Lets assistive programs read the rows of a multi-selection `ListBox` as check boxes and tick
/// them. What Qt has of its own for lists toggles the highlight of a row and not its check box.
void installListBoxAccessible();

} // namespace varnholt
