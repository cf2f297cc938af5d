#pragma once

#include <QString>

#include <cstddef>
#include <vector>

namespace varnholt {

class RandomGenerator;

/// A test as it goes on paper. No window and no library stands behind it: a draw and a past test
/// both become one.
struct PaperTest
{
    struct Question
    {
        QString answer;
        /// What the question is about, "Topic - Subtopic"; may be empty.
        QString topicText;
        /// Where the picture is or ought to be.
        QString picturePath;
    };

    QString title;
    QString className;
    QString date;
    std::vector<Question> questions;
    /// For each version the positions in `questions`, from 0, in the order of that version; one
    /// entry for a test without versions.
    std::vector<std::vector<std::size_t>> versions;
};

inline constexpr int mostPaperVersions = 6;

/// Orders for so many versions, 1 to `mostPaperVersions`: the questions' own first, then shuffled
/// ones.
[[nodiscard]] std::vector<std::vector<std::size_t>>
MakePaperVersions(std::size_t questions, int versions, RandomGenerator& random);

/// What is printed, and how.
struct PaperOptions
{
    enum class Paper
    {
        A4,
        Letter
    };
    enum class AnswerSpace
    {
        None,
        Line,
        Box,
        /// Boxes to tick, A to E.
        Choices
    };
    enum class Key
    {
        None,
        /// Behind all versions, a column for each.
        OwnPage,
        AfterEach
    };

    Paper paper = Paper::A4;
    /// 1, 2 or 4; 0 for as many as fit.
    int questionsPerPage = 0;
    AnswerSpace answerSpace = AnswerSpace::Line;
    Key key = Key::OwnPage;
    /// The topic above each picture.
    bool topicLines = false;
    /// One question a page and all text at 150 %.
    bool largePrint = false;
};

} // namespace varnholt
