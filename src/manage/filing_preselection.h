#pragma once

#include <cstdint>
#include <optional>

namespace varnholt {

/// The rows that are current in the library manager's topic and subtopic lists when it opens
/// a dialog that files a question.
struct FilingPreselection
{
    std::optional<std::int32_t> topicId;
    std::optional<std::int32_t> subtopicNum;
};

} // namespace varnholt
