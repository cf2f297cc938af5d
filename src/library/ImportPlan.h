#pragma once

#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace varnholt {

struct ImportedTopic
{
    QString Topic;
};

/// `topic` is a position in the plan's topics, counted from 0; none where the package names a topic
/// that it does not hold.
struct ImportedSubtopic
{
    std::optional<std::size_t> topic;
    QString SubTopic;
};

struct ImportedQuestion
{
    std::optional<std::size_t> topic;
    std::optional<std::size_t> subtopic;
    QString Answer;
};

/// What an import is going to do, before it does anything: a new assessment and its rows in the
/// order in which they are added.
struct ImportPlan
{
    QString AssessmentName;
    std::vector<ImportedTopic> topics;
    std::vector<ImportedSubtopic> subtopics;
    std::vector<ImportedQuestion> questions;
    /// Why the package could be read no further than to these rows, a sentence; empty when they are
    /// all. They are added, and then the import fails with it.
    QString defect = {};
};

/// The outside world during an import, all of it optional but `placePicture`.
struct ImportSteps
{
    /// Puts the picture of the plan's question (counted from 0) into the library under its new
    /// key. Throws `Error`.
    std::function<void(std::size_t question, std::int32_t SOLIndex)> placePicture;
    /// Called once, when all pictures are placed and before a row can be seen: they must be on the
    /// disk when it returns. Throws `Error`.
    std::function<void()> syncPictures;
    /// Rows done of all rows.
    std::function<void(std::size_t done, std::size_t all)> progress;
};

/// An import that came to its end.
struct ImportResult
{
    std::int32_t AssessmentNum = 0;
    std::size_t topics = 0;
    std::size_t subtopics = 0;
    std::size_t questions = 0;
};

} // namespace varnholt
