#pragma once

#include "selection/draw_order.h"
#include "store/slide_wishes.h"

#include <QStringList>

namespace varnholt {

class Library;

/// What the group "More" of the selection window says. Empty at first, and then a draw is what
/// chance makes it.
struct DrawWishes
{
    /// As typed, without blanks around it; empty for no class.
    QString className;
    DrawRule rule = DrawRule::Any;
    /// The class of that name, which she has chosen whatever it is called one day; 0 for none or
    /// one that is still to be made.
    std::int32_t classId = 0;
};

/// They are kept in the user's settings, for each program folder. Numbers of topics are kept for
/// each assessment.
[[nodiscard]] DrawWishes LoadWishes(const QString& programFolder);
void SaveWishes(const QString& programFolder, const DrawWishes& wishes);
[[nodiscard]] SlideWishes LoadSlideWishes(const QString& programFolder);
void SaveSlideWishes(const QString& programFolder, const SlideWishes& wishes);
[[nodiscard]] Quotas LoadQuotas(const QString& programFolder, std::int32_t assessmentNum);
void SaveQuotas(const QString& programFolder, std::int32_t assessmentNum, const Quotas& quotas);

/// "Used twice, last on 3 March with 10A." `className` is that of the last use, empty for none.
[[nodiscard]] QString UseInWords(const UseSummary& use, const QString& className, std::int64_t now);

/// The same of a question, with the names of the library; empty where nothing is remembered yet or
/// can be read.
[[nodiscard]] QString UseInWords(Library& library, const UseBook& book, std::int32_t solIndex,
                                 std::int64_t now);

/// "Algebra has only 3: one place is free." for each of them.
[[nodiscard]] QStringList ShortTopicsInWords(const std::vector<ShortTopic>& shortTopics,
                                             const List1<TopicRecord>& topics);

/// "few knew it"; empty for what is not known.
[[nodiscard]] QString OutcomeInWords(Outcome outcome);

} // namespace varnholt
