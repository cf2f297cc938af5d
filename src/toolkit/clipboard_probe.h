#pragma once

#include <QString>

namespace varnholt {

/// Whether the program that holds the clipboard answers within a second and a half. Asking for
/// the contents themselves stands still for five seconds with a program that hangs. True where
/// nobody holds it, where this program does, and on platforms on which it cannot be asked.
[[nodiscard]] bool ClipboardAnswers();

/// For the user when it does not.
[[nodiscard]] QString ClipboardSilentSentence();

} // namespace varnholt
