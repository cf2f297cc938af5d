#pragma once

#include "paper/paper_test.h"

#include <functional>

namespace varnholt {

/// A test on pages: what stands where. All lengths are points (1/72 inch), counted from the upper
/// left corner of the page.
struct PaperLayout
{
    struct Text
    {
        double left = 0;
        double baseline = 0;
        double size = 0;
        bool bold = false;
        /// Read out by assistive programs and found by searching, but not seen.
        bool hidden = false;
        QString text;
    };
    struct Rectangle
    {
        double left = 0;
        double top = 0;
        double width = 0;
        /// 0 for a horizontal line.
        double height = 0;
    };
    struct Picture
    {
        /// Position in the test's questions, from 0.
        std::size_t question = 0;
        Rectangle place;
    };
    struct Page
    {
        std::vector<Text> texts;
        /// Drawn as thin lines, not filled.
        std::vector<Rectangle> outlines;
        std::vector<Picture> pictures;
    };

    double width = 0;
    double height = 0;
    std::vector<Page> pages;
};

/// The width of a text at a size, in points, in the font that it is printed in.
using TextWidth = std::function<double(const QString& text, double size, bool bold)>;

/// A picture's own size in points; 0 where it is missing or cannot be read.
struct PaperPictureSize
{
    double width = 0;
    double height = 0;
};

/// Puts the test on pages: each version with its heading, then the key. A picture keeps its
/// proportions, is never larger than its place nor than 150 % of its own size, and stands on one
/// page. `sizes` has an entry for each question of the test.
[[nodiscard]] PaperLayout LayOutPaper(const PaperTest& test, const PaperOptions& options,
                                      const std::vector<PaperPictureSize>& sizes,
                                      const TextWidth& widthOf);

} // namespace varnholt
