#include "selection/review.h"

#include <QCoreApplication>

#include <utility>

namespace varnholt {

Review::Review(Draw draw)
    : draw_(std::move(draw))
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
    return moveOn();
}

Review::Next Review::moveOn()
{
    ++ReviewPosition_;
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
    DrawnQuestion& question = draw_.DrawPool(--ReviewPosition_);
    AcceptedCount_ -= question.Selected ? 1 : 0;
    question.Selected = false;
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
