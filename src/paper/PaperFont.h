#pragma once

#include "paper/PaperLayout.h"

namespace varnholt {

/// The typeface that a test is printed in: Liberation Sans, or DejaVu Sans where the test holds a
/// character that the first lacks.
struct PaperFont
{
    /// As desktop fonts are called.
    QString family;
    QString regularFile;
    QString boldFile;

    /// Throws `Error` when neither is installed.
    [[nodiscard]] static PaperFont forTest(const PaperTest& test);

    /// Widths as they will be printed.
    [[nodiscard]] TextWidth widths() const;
};

} // namespace varnholt
