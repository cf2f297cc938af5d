#include "selection/review.h"

namespace varnholt {

Review::Review(List1<QuestionRecord>& drawPool, std::int32_t requestedQuestionCount)
    : DrawPool_(drawPool)
    , RequestedQuestionCount_(requestedQuestionCount)
{}

Review::Next Review::include()
{
    DrawPool_(ReviewPosition_).Selected = true;
    ++AcceptedCount_;
    return moveOn();
}

Review::Next Review::exclude()
{
    DrawPool_(ReviewPosition_).Selected = false;
    return moveOn();
}

Review::Next Review::moveOn()
{
    ++ReviewPosition_;
    if (ReviewPosition_ <= DrawPool_.upperBound() && AcceptedCount_ < RequestedQuestionCount_) {
        return Next::Show;
    }
    return AcceptedCount_ > 0 ? Next::Build : Next::Close;
}

void Review::excludeRest()
{
    for (int i = ReviewPosition_; i <= DrawPool_.upperBound(); ++i) {
        DrawPool_(i).Selected = false;
    }
}

void Review::reopenLast()
{
    QuestionRecord& question = DrawPool_(--ReviewPosition_);
    AcceptedCount_ -= question.Selected ? 1 : 0;
    question.Selected = false;
}

QString Review::selectedText() const
{
    return QStringLiteral("Questions Selected: ") + QString::number(AcceptedCount_);
}

QString Review::leftText() const
{
    return QStringLiteral("Questions Left to View: ") +
           QString::number(DrawPool_.upperBound() - ReviewPosition_ + 1);
}

} // namespace varnholt
