#pragma once

#include "pdf/pdf_messages.h"

#include <vector>

namespace varnholt::pdf {

/// A line of a page that begins a numbered question.
struct NumberedStart
{
    int page = 0;
    QRectF place;
};

/// Which of the lines of each page begin numbered questions: those that count up in one way of
/// writing, one below the other, and not the numbers of parts inside. None when there are no such.
[[nodiscard]] std::vector<NumberedStart>
FindQuestionNumbers(const std::vector<std::vector<LineStart>>& pages);

} // namespace varnholt::pdf
