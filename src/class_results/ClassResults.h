#pragma once

#include "library/PastTests.h"
#include "library/UseBook.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace varnholt {

class Library;

/// A question with what became of it.
struct QuestionResult
{
    std::int32_t SOLIndex = 0;
    QString answer;
    QString topic;
    QString subtopic;
    /// With anybody, and then with each class; empty for a question that was never used.
    std::vector<UseSummary> uses;
    /// Few knew it in every class that it is known of.
    bool hardForAll = false;
};

/// A subtopic with how much of it was ever used.
struct SubtopicCoverage
{
    QString topic;
    /// Empty for questions whose subtopic is no longer there.
    QString subtopic;
    int questions = 0;
    /// Of them with anybody, and then with each class.
    std::vector<int> used;
};

/// How the classes did with the questions of an assessment. A snapshot.
struct ClassResults
{
    std::int32_t AssessmentNum = 0;
    std::vector<ClassRecord> classes;
    /// In the order of the catalogue.
    std::vector<QuestionResult> questions;
    std::vector<SubtopicCoverage> subtopics;

    /// `now` in seconds of UTC. Throws `DatabaseError`.
    [[nodiscard]] static ClassResults read(Library& library, std::int32_t assessmentNum,
                                           std::int64_t now);

    /// Questions used with a class, by its place in `uses` (0 for anybody), and its last use.
    [[nodiscard]] int usedBy(std::size_t place) const;
    [[nodiscard]] std::int64_t lastUse(std::size_t place) const;
    [[nodiscard]] int hardForAll() const;
};

} // namespace varnholt
