#pragma once

#include <QImage>

#include <vector>

namespace varnholt::pdf {

/// The ink in a row of pixels: its first and last column, and how many there are.
struct Row
{
    int first = -1;
    int last = -1;
    int ink = 0;

    [[nodiscard]] bool isWhite() const { return ink == 0; }
};

/// Where there is ink on a page.
struct PageRows
{
    /// Pixels to the point; rows and columns alike.
    double scale = 1;
    int width = 0;
    std::vector<Row> rows;
};

/// Looks at a page in 8-bit grey. What is clearly darker than the paper is ink, but for specks of
/// a scanner and lines down the whole page.
[[nodiscard]] PageRows LookAtPage(const QImage& grey, double scale);

/// Something between two white rows, in points from the page's top left corner: a line of text, or
/// what has no white row, like a picture.
struct Strip
{
    double top = 0;
    double bottom = 0;
    double left = 0;
    double right = 0;

    [[nodiscard]] double height() const { return bottom - top; }
};

/// The strips from row `from` up to and without `to`, from top to bottom.
[[nodiscard]] std::vector<Strip> StripsOf(const PageRows& page, int from, int to);

/// The middle of the highest white band inside an area, in points: where it is best cut in two.
/// Negative where it has none.
[[nodiscard]] double WidestGap(const PageRows& page, double top, double bottom);

} // namespace varnholt::pdf
