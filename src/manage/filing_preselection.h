#pragma once

#include <cstdint>
#include <optional>

namespace varnholt {

/// The topic and subtopic with which a dialog that files a question opens: the rows that are
/// current in the library manager's lists, or where the last question went.
struct FilingPreselection
{
    std::optional<std::int32_t> topicId;
    std::optional<std::int32_t> subtopicNum;

    bool operator==(const FilingPreselection&) const = default;
};

} // namespace varnholt
