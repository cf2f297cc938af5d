#include "pdf/PdfFrames.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace varnholt {

namespace {

constexpr std::size_t mostSteps = 200;

bool isBefore(const PdfFrame& a, const PdfFrame& b)
{
    return std::tuple(a.page, a.area.top(), a.area.left()) <
           std::tuple(b.page, b.area.top(), b.area.left());
}

} // namespace

const PdfFrame* PdfFrames::current() const
{
    return now_.selected < 0 ? nullptr : &now_.frames[static_cast<std::size_t>(now_.selected)];
}

std::vector<std::vector<PdfFrame>> PdfFrames::pictures() const
{
    std::vector<std::vector<PdfFrame>> pictures;
    for (const PdfFrame& frame : now_.frames) {
        if (!frame.continues || pictures.empty()) {
            pictures.emplace_back();
        }
        pictures.back().push_back(frame);
    }
    return pictures;
}

void PdfFrames::remember()
{
    undo_.push_back(now_);
    redo_.clear();
    if (undo_.size() > mostSteps) {
        undo_.erase(undo_.begin());
    }
}

QRectF PdfFrames::onPage(int page, const QRectF& area) const
{
    const QSizeF size = pages_.at(static_cast<std::size_t>(page));
    const QRectF wanted = area.normalized();
    const double width = std::clamp(wanted.width(), smallestFrame, size.width());
    const double height = std::clamp(wanted.height(), smallestFrame, size.height());
    return {std::clamp(wanted.left(), 0.0, size.width() - width),
            std::clamp(wanted.top(), 0.0, size.height() - height), width, height};
}

void PdfFrames::order(const PdfFrame& chosen)
{
    std::stable_sort(now_.frames.begin(), now_.frames.end(), isBefore);
    now_.selected = static_cast<int>(std::find(now_.frames.begin(), now_.frames.end(), chosen) -
                                     now_.frames.begin());
}

void PdfFrames::select(int index)
{
    now_.selected = std::clamp(index, -1, static_cast<int>(now_.frames.size()) - 1);
}

void PdfFrames::add(int page, const QRectF& area)
{
    const QRectF wanted = area.normalized();
    if (wanted.width() < smallestFrame || wanted.height() < smallestFrame) {
        return;
    }
    remember();
    const PdfFrame frame{page, onPage(page, wanted)};
    now_.frames.push_back(frame);
    order(frame);
}

void PdfFrames::setArea(const QRectF& area)
{
    if (!current() || onPage(current()->page, area) == current()->area) {
        return;
    }
    remember();
    PdfFrame& frame = now_.frames[static_cast<std::size_t>(now_.selected)];
    frame.area = onPage(frame.page, area);
    order(PdfFrame(frame));
}

void PdfFrames::drop()
{
    if (!current()) {
        return;
    }
    remember();
    const auto at = now_.frames.begin() + now_.selected;
    // What continued a picture begins it once its beginning has gone.
    if (at + 1 != now_.frames.end() && (at + 1)->continues) {
        (at + 1)->continues = at->continues;
    }
    now_.frames.erase(at);
    select(now_.selected);
}

void PdfFrames::join()
{
    if (now_.selected < 1) {
        return;
    }
    remember();
    const auto at = now_.frames.begin() + now_.selected;
    const auto before = at - 1;
    if (before->page != at->page) {
        at->continues = !at->continues;
        return;
    }
    before->area = before->area.united(at->area);
    const PdfFrame joined = *before;
    now_.frames.erase(at);
    order(joined);
}

void PdfFrames::split(double y)
{
    const PdfFrame* frame = current();
    if (!frame || y < frame->area.top() + smallestFrame ||
        y > frame->area.bottom() - smallestFrame) {
        return;
    }
    remember();
    PdfFrame& upper = now_.frames[static_cast<std::size_t>(now_.selected)];
    PdfFrame lower = upper;
    lower.continues = false;
    lower.area.setTop(y);
    upper.area.setBottom(y);
    now_.frames.push_back(lower);
    order(lower);
}

void PdfFrames::replaceAll(std::vector<PdfFrame> frames)
{
    remember();
    now_ = {std::move(frames), -1};
    for (PdfFrame& frame : now_.frames) {
        frame.area = onPage(frame.page, frame.area);
    }
    std::stable_sort(now_.frames.begin(), now_.frames.end(), isBefore);
}

void PdfFrames::forgetFirstPicture()
{
    auto end = now_.frames.begin();
    while (end != now_.frames.end() && (end == now_.frames.begin() || end->continues)) {
        ++end;
    }
    now_.frames.erase(now_.frames.begin(), end);
    now_.selected = -1;
    undo_.clear();
    redo_.clear();
}

void PdfFrames::undo()
{
    if (canUndo()) {
        redo_.push_back(std::exchange(now_, undo_.back()));
        undo_.pop_back();
    }
}

void PdfFrames::redo()
{
    if (!redo_.empty()) {
        undo_.push_back(std::exchange(now_, redo_.back()));
        redo_.pop_back();
    }
}

} // namespace varnholt
