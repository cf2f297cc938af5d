#pragma once

#include "store/slide_wishes.h"

#include <QString>

#include <vector>

namespace varnholt {

struct BuildInput;

/// A line of the answer key and its place in points.
struct KeyLine
{
    QString text;
    double left = 0;
    double top = 0;
    double width = 100;
    double height = 100;
    /// Longer lines are broken, and there is room for that.
    bool wraps = false;
};

/// What stands on one slide.
struct DeckSlide
{
    enum class Kind
    {
        Question,
        /// Its question once more, with the answer.
        Answer,
        Key
    };
    Kind kind = Kind::Question;
    /// Of the question in the presentation, and of its record in the draw pool; 0 on a key slide.
    int number = 0;
    int poolIndex = 0;
    /// Topic and subtopic; empty where nobody asks for them.
    QString topic;
    QString answer;
    QString picturePath;
    /// What stands above the lines of a key slide, if anything.
    QString heading;
    std::vector<KeyLine> lines;
};

/// A presentation as a value: what goes on which slide, in their order. How it is shown is up to
/// the builders.
struct Deck
{
    QString name;
    bool topicLine = false;
    SlideWishes wishes;
    std::vector<DeckSlide> slides;
};

/// The slides of the selected records. Reads no pictures.
///
/// The answer key breaks after each selected record whose position in the pool is a multiple of
/// 25, which may leave a key slide without answers at the end; in columns it breaks where a slide
/// is full.
[[nodiscard]] Deck MakeDeck(const BuildInput& input);

} // namespace varnholt
