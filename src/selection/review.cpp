#include "selection/review.h"

#include <QCoreApplication>

#include <algorithm>
#include <optional>
#include <utility>

namespace varnholt {

Review::Review(Draw draw, QuotaOrder order)
    : draw_(std::move(draw))
    , order_(std::move(order))
{}

Review::Next Review::include()
{
    draw_.DrawPool(ReviewPosition_).Selected = true;
    ++AcceptedCount_;
    return moveOn();
}

Review::Next Review::exclude()
{
    draw_.DrawPool(ReviewPosition_).Selected = false;
    const Next next = moveOn();
    order_.arrange(draw_.DrawPool, ReviewPosition_, draw_.RequestedQuestionCount);
    return next;
}

void Review::swap()
{
    List1<DrawnQuestion>& pool = draw_.DrawPool;
    const int nearest = *NearestAfter(pool, ReviewPosition_, ReviewPosition_ + 1);
    pool(ReviewPosition_).Selected = false;
    setPosition(ReviewPosition_ + 1);
    const auto next = pool.begin() + (ReviewPosition_ - 1);
    std::rotate(next, pool.begin() + (nearest - 1), pool.begin() + nearest);
    arrangeBehind();
}

void Review::arrangeBehind()
{
    draw_.DrawPool(ReviewPosition_).Selected = true;
    order_.arrange(draw_.DrawPool, ReviewPosition_ + 1, draw_.RequestedQuestionCount);
    draw_.DrawPool(ReviewPosition_).Selected = false;
}

void Review::reorder(const std::vector<int>& positions)
{
    std::vector<int> places = positions;
    std::sort(places.begin(), places.end());
    std::vector<DrawnQuestion> questions;
    for (const int position : positions) {
        questions.push_back(draw_.DrawPool(position));
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        draw_.DrawPool(places[i]) = std::move(questions[i]);
    }
}

bool Review::swapIncluded(int position)
{
    const std::optional<int> nearest = NearestAfter(draw_.DrawPool, position, ReviewPosition_);
    if (!nearest) {
        return false;
    }
    // What goes out comes to where the other one was: it is still to be judged, at the very end.
    List1<DrawnQuestion>& pool = draw_.DrawPool;
    std::swap(pool(position), pool(*nearest));
    pool(position).Selected = true;
    pool(*nearest).Selected = false;
    std::rotate(pool.begin() + (*nearest - 1), pool.begin() + *nearest, pool.end());
    order_.putLast(pool(pool.upperBound()).SOLIndex);
    order_.arrange(pool, ReviewPosition_, draw_.RequestedQuestionCount);
    return true;
}

void Review::setPosition(std::int32_t position)
{
    ReviewPosition_ = position;
    draw_.judged = position - 1;
}

Review::Next Review::moveOn()
{
    setPosition(ReviewPosition_ + 1);
    if (ReviewPosition_ <= draw_.DrawPool.upperBound() &&
        AcceptedCount_ < draw_.RequestedQuestionCount) {
        return Next::Show;
    }
    return AcceptedCount_ > 0 ? Next::Build : Next::Close;
}

void Review::excludeRest()
{
    for (int i = ReviewPosition_; i <= draw_.DrawPool.upperBound(); ++i) {
        draw_.DrawPool(i).Selected = false;
    }
}

void Review::reopenLast()
{
    setPosition(ReviewPosition_ - 1);
    AcceptedCount_ -= draw_.DrawPool(ReviewPosition_).Selected ? 1 : 0;
    arrangeBehind();
}

QString Review::selectedText() const
{
    return QCoreApplication::translate("Review", "Questions Selected: %1").arg(AcceptedCount_);
}

QString Review::leftText() const
{
    return QCoreApplication::translate("Review", "Questions Left to View: %1")
        .arg(draw_.DrawPool.upperBound() - ReviewPosition_ + 1);
}

} // namespace varnholt
