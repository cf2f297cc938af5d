#include "selection/question_draw.h"

#include "store/services.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace varnholt {

namespace {

/// The records are moved in random order; asking for them ahead hides the memory's delay.
void prefetch([[maybe_unused]] const List1<DrawnQuestion>& pool, [[maybe_unused]] int position)
{
#if defined(__GNUC__)
    __builtin_prefetch(&pool(position), 1);
#endif
}

} // namespace

std::optional<double> ParseNumber(const QString& text)
{
    const QString trimmed = text.trimmed();
    bool numeric = false;
    double value = QLocale().toDouble(trimmed, &numeric);
    if (!numeric) {
        value = QLocale::c().toDouble(trimmed, &numeric);
    }
    return numeric && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::variant<Draw, DrawObstacle> DrawQuestions(const List1<QuestionRecord>& questionList,
                                               const Selection& selection,
                                               const QString& numberText, RandomGenerator& random)
{
    const std::int32_t SelectedQuestionCount = CountSelected(questionList, selection);
    if (SelectedQuestionCount == 0) {
        return DrawObstacle::NoQuestions;
    }
    const std::optional<double> number = ParseNumber(numberText);
    if (!number) {
        return DrawObstacle::NotANumber;
    }
    // Halves go to the even neighbour, as in the number conversions of office programs.
    const double wanted = std::nearbyint(*number);
    if (wanted < 1 || wanted > SelectedQuestionCount) {
        return DrawObstacle::NumberOutOfRange;
    }

    Draw draw;
    draw.RequestedQuestionCount = static_cast<std::int32_t>(wanted);
    draw.seed = random.state();
    draw.DrawPool.reserve(static_cast<std::size_t>(SelectedQuestionCount));
    for (const QuestionRecord& question : questionList) {
        if (selection.IsQuestionInSelection(question.TopicID, question.SubtopicNum)) {
            draw.DrawPool.append({question});
        }
    }
    ShuffleDrawPool(draw.DrawPool, random);
    return draw;
}

void ShuffleDrawPool(List1<DrawnQuestion>& pool, RandomGenerator& random)
{
    const auto n = static_cast<std::size_t>(pool.upperBound());
    // Every position drawn is written down, and stays written only if it had not been taken:
    // there is no branch to mispredict in the n ln n draws. Numbers left over in the last
    // block are not used; the spare place takes what they would have drawn.
    std::vector<std::int32_t> order(n + 1);
    std::vector<std::uint64_t> taken(n / 64 + 1, 0);
    std::array<double, 256> numbers{};
    for (std::size_t count = 0; count < n;) {
        random.fill(numbers);
        for (const double number : numbers) {
            const auto k = static_cast<std::int32_t>(number * static_cast<double>(n) + 1);
            order[count] = k;
            std::uint64_t& word = taken[static_cast<std::size_t>(k) / 64];
            const std::uint64_t bit = std::uint64_t{1} << (k % 64);
            count += (word & bit) == 0 ? 1 : 0;
            word |= bit;
        }
    }
    List1<DrawnQuestion> shuffled;
    shuffled.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        prefetch(pool, order[std::min(i + 16, n - 1)]);
        shuffled.append(std::move(pool(order[i]))).Selected = false;
    }
    pool = std::move(shuffled);
}

void MarkFirst(List1<DrawnQuestion>& pool, std::int32_t count)
{
    for (int i = 1; i <= count; ++i) {
        pool(i).Selected = true;
    }
}

} // namespace varnholt
