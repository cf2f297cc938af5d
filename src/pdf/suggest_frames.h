#pragma once

#include "pdf/PdfFrames.h"
#include "pdf/page_rows.h"
#include "pdf/pdf_messages.h"

#include <vector>

namespace varnholt::pdf {

/// What is known of a page.
struct SeenPage
{
    PageRows rows;
    /// Lines of its text that may begin with a number; none where it was scanned.
    std::vector<LineStart> starts;
};

/// Proposes frames round the questions of a paper, without what stands at the top or bottom of its
/// pages. Where questions have numbers that can be read, each begins at its number, and what stands
/// before the first is left out. Else a question begins where, below a white band of at least 1.2
/// line heights, the first ink is at the left edge of the text; and at each line there if most are
/// indented. What continues on the next page is joined to its beginning.
[[nodiscard]] std::vector<PdfFrame> SuggestFrames(const std::vector<SeenPage>& pages);

} // namespace varnholt::pdf
