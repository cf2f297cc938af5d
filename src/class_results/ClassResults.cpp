#include "class_results/ClassResults.h"

#include "library/Library.h"
#include "store/catalogue.h"

#include <algorithm>
#include <map>
#include <utility>

namespace varnholt {

namespace {

bool isHard(const std::vector<UseSummary>& uses)
{
    bool known = false;
    for (std::size_t i = 1; i < uses.size(); ++i) {
        if (uses[i].outcome == Outcome::Half || uses[i].outcome == Outcome::Most) {
            return false;
        }
        known = known || uses[i].outcome == Outcome::Few;
    }
    return known;
}

std::vector<UseSummary> usesOf(const UseBook& book, std::int32_t solIndex,
                               const std::vector<ClassRecord>& classes, std::int64_t now)
{
    std::vector<UseSummary> uses{book.of(solIndex, UseBook::anybody, now)};
    if (uses.front().uses == 0) {
        return {};
    }
    for (const ClassRecord& record : classes) {
        uses.push_back(book.of(solIndex, record.ClassID, now));
    }
    return uses;
}

using Place = std::pair<std::int32_t, std::int32_t>;

} // namespace

ClassResults ClassResults::read(Library& library, std::int32_t assessmentNum, std::int64_t now)
{
    ProgramState state;
    state.CurrentAssessmentNum = assessmentNum;
    if (const LoadFailures failures = LoadStructure(state, library.connection());
        !failures.isEmpty()) {
        throw DatabaseError(failures.front());
    }
    LoadQuestions(state, library.connection());
    ClassResults results;
    results.AssessmentNum = assessmentNum;
    results.classes = library.pastTests().classes();
    const UseBook book = library.useBook(assessmentNum);

    std::map<std::int32_t, QString> topics;
    for (const TopicRecord& topic : state.TopicList) {
        topics.emplace(topic.TopicID, topic.Topic);
    }
    std::map<Place, std::size_t> rows;
    const auto rowOf = [&](Place place, const QString& subtopic) -> SubtopicCoverage& {
        const auto [found, added] = rows.emplace(place, results.subtopics.size());
        if (added) {
            results.subtopics.push_back({topics[place.first], subtopic, 0,
                                         std::vector<int>(results.classes.size() + 1, 0)});
        }
        return results.subtopics[found->second];
    };
    for (const SubTopicRecord& record : state.SubTopicList) {
        rowOf({record.TopicID, record.SubtopicNum}, record.SubTopic);
    }
    for (const QuestionRecord& question : state.QuestionList) {
        const Place filed{question.TopicID, question.SubtopicNum};
        SubtopicCoverage& row =
            rowOf(rows.contains(filed) ? filed : Place{question.TopicID, 0}, {});
        QuestionResult result{question.SOLIndex, question.Answer, row.topic, row.subtopic,
                              usesOf(book, question.SOLIndex, results.classes, now)};
        result.hardForAll = isHard(result.uses);
        ++row.questions;
        for (std::size_t i = 0; i < result.uses.size(); ++i) {
            row.used[i] += result.uses[i].uses > 0 ? 1 : 0;
        }
        results.questions.push_back(std::move(result));
    }
    return results;
}

int ClassResults::usedBy(std::size_t place) const
{
    int used = 0;
    for (const SubtopicCoverage& row : subtopics) {
        used += row.used.at(place);
    }
    return used;
}

std::int64_t ClassResults::lastUse(std::size_t place) const
{
    std::int64_t last = 0;
    for (const QuestionResult& question : questions) {
        last = question.uses.empty() ? last : std::max(last, question.uses.at(place).lastUsed);
    }
    return last;
}

int ClassResults::hardForAll() const
{
    return static_cast<int>(std::count_if(questions.begin(), questions.end(),
                                          [](const auto& q) { return q.hardForAll; }));
}

} // namespace varnholt
