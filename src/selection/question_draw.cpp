#include "selection/question_draw.h"

#include "store/services.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace varnholt {

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

bool DrawQuestions(ProgramState& state, const QString& numberText, RandomGenerator& random,
                   MessageBoxes& messages)
{
    if (state.SelectedQuestionCount == 0) {
        messages.inform(QStringLiteral("No Questions"),
                        QStringLiteral("There are no questions selected."));
        return false;
    }
    const std::optional<double> number = ParseNumber(numberText);
    if (!number) {
        messages.inform(QStringLiteral("Error"),
                        QStringLiteral("Please enter a number for the number of questions."));
        return false;
    }
    // Halves go to the even neighbour, as in the number conversions of office programs.
    const double wanted = std::nearbyint(*number);
    if (wanted < 1 || wanted > state.SelectedQuestionCount) {
        messages.inform(QStringLiteral("Error"), QStringLiteral("Invalid number of questions."));
        return false;
    }
    state.RequestedQuestionCount = static_cast<std::int32_t>(wanted);

    List1<QuestionRecord> pool;
    pool.reserve(static_cast<std::size_t>(state.SelectedQuestionCount));
    for (const QuestionRecord& question : state.QuestionList) {
        if (question.Selected) {
            pool.append(question);
        }
    }
    ShuffleDrawPool(pool, random);
    state.DrawPool = std::move(pool);
    return true;
}

void ShuffleDrawPool(List1<QuestionRecord>& pool, RandomGenerator& random)
{
    const int n = pool.upperBound();
    // One byte a record: most of the work is finding out that a position has gone.
    std::vector<char> taken(static_cast<std::size_t>(n) + 1, 0);
    List1<QuestionRecord> shuffled;
    shuffled.reserve(static_cast<std::size_t>(n));
    for (int i = 1; i <= n; ++i) {
        int k = 0;
        do {
            k = static_cast<int>(random.next() * n + 1);
        } while (taken[static_cast<std::size_t>(k)]);
        taken[static_cast<std::size_t>(k)] = 1;
        shuffled.append(std::move(pool(k))).Selected = false;
    }
    pool = std::move(shuffled);
}

void MarkFirst(List1<QuestionRecord>& pool, std::int32_t count)
{
    for (int i = 1; i <= count; ++i) {
        pool(i).Selected = true;
    }
}

} // namespace varnholt
