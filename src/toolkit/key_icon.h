#pragma once

#include <QIcon>
#include <QString>

namespace varnholt {

/// The picture of a key cap with a letter, in the colours of the palette: shows on a button
/// which single key presses it.
[[nodiscard]] QIcon keyIcon(const QString& letter);

} // namespace varnholt
