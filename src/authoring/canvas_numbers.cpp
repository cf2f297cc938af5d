#include "authoring/canvas_numbers.h"

#include "store/errors.h"

#include <QCoreApplication>

#include <cmath>
#include <limits>
#include <utility>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(PictureCanvas)
};

std::int32_t checked(std::int64_t value)
{
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
        throw OverflowError(Words::tr("The position %1 is too far away.").arg(value));
    }
    return static_cast<std::int32_t>(value);
}

} // namespace

std::int32_t sum(std::int32_t a, std::int32_t b)
{
    return checked(std::int64_t{a} + b);
}

std::int32_t difference(std::int32_t a, std::int32_t b)
{
    return checked(std::int64_t{a} - b);
}

std::int32_t rounded(double value)
{
    // Written so that a value that is no number fails as well.
    if (!(std::abs(value) < 4e18)) {
        throw OverflowError(Words::tr("The position is too far away."));
    }
    return checked(std::llrint(value));
}

void orderCorners(CanvasState& state)
{
    if (state.SelX1 > state.SelX2) {
        std::swap(state.SelX1, state.SelX2);
    }
    if (state.SelY1 > state.SelY2) {
        std::swap(state.SelY1, state.SelY2);
    }
}

void place(CanvasState& state, QPoint corner, std::int32_t w, std::int32_t h)
{
    state.SelX1 = corner.x();
    state.SelY1 = corner.y();
    state.SelX2 = sum(corner.x(), w);
    state.SelY2 = sum(corner.y(), h);
}

} // namespace varnholt
