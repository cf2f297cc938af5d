#pragma once

#include <QString>

class QLineEdit;

namespace varnholt {

class HintLabel;

/// What to say about an answer while it is typed: that it cannot be saved, or that it is
/// longer than its line on the answer key. Empty when there is nothing to say. Needs the
/// application's fonts.
[[nodiscard]] QString AnswerHint(const QString& answer);

/// Lets `hint` say so from now on. `field` must outlive `hint` or be gone with its window.
void WatchAnswer(HintLabel* hint, QLineEdit* field);

} // namespace varnholt
