#pragma once

#include <QRectF>
#include <QSizeF>

#include <vector>

namespace varnholt {

/// A frame on a page of a PDF file: what is in it becomes a question's picture.
struct PdfFrame
{
    int page = 0;
    /// In points from the page's top left corner.
    QRectF area;
    /// Goes below the frame before it into one picture, as what stands on the next page does.
    bool continues = false;

    bool operator==(const PdfFrame&) const = default;
};

/// No frame is smaller, in points.
inline constexpr double smallestFrame = 8;

/// The frames on the pages of a file in their order, one of them selected, and the steps back. All
/// frames lie on their pages.
class PdfFrames
{
public:
    explicit PdfFrames(std::vector<QSizeF> pages = {})
        : pages_(std::move(pages))
    {}

    [[nodiscard]] const std::vector<PdfFrame>& all() const { return now_.frames; }
    /// Index of the selected one; -1 when none is.
    [[nodiscard]] int selected() const { return now_.selected; }
    [[nodiscard]] const PdfFrame* current() const;
    /// Each picture's frames, from top to bottom.
    [[nodiscard]] std::vector<std::vector<PdfFrame>> pictures() const;

    void select(int index);
    /// A new frame, selected. One that is hardly larger than a point is left out.
    void add(int page, const QRectF& area);
    /// For the selected frame, if any.
    void setArea(const QRectF& area);
    void drop();
    /// With the frame before it: on one page both become one frame, on different pages one
    /// picture. A frame that is joined so is parted again.
    void join();
    /// Cuts the selected frame in two at a height on its page, where both are large enough.
    void split(double y);
    /// In place of all that are there.
    void replaceAll(std::vector<PdfFrame> frames);
    /// The frames of the first picture, which has been taken.
    void forgetFirstPicture();

    [[nodiscard]] bool canUndo() const { return !undo_.empty(); }
    void undo();
    void redo();

private:
    struct State
    {
        std::vector<PdfFrame> frames;
        int selected = -1;
    };

    void remember();
    [[nodiscard]] QRectF onPage(int page, const QRectF& area) const;
    /// Brings the frames in order; `chosen` stays the selected one.
    void order(const PdfFrame& chosen);

    std::vector<QSizeF> pages_;
    State now_;
    std::vector<State> undo_;
    std::vector<State> redo_;
};

} // namespace varnholt
