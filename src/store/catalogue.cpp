#include "store/catalogue.h"

#include "store/connection.h"
#include "store/statements.h"

#include <QCoreApplication>

#include <algorithm>

namespace varnholt {

namespace {

QString sentence(const char* text)
{
    return QCoreApplication::translate("Catalogue", text);
}

template <typename Load>
LoadFailures failuresOf(Load load, const char* failure)
{
    try {
        load();
        return {};
    } catch (const DatabaseError&) {
        return {sentence(failure)};
    }
}

} // namespace

LoadFailures LoadAssessments(ProgramState& state, Connection& connection)
{
    state.AssessmentList.clear();
    const auto load = [&] {
        Recordset rows = connection.read(statements::SelectAssessments());
        const int number = rows.field("AssessmentNum");
        const int name = rows.field("AssessmentName");
        while (rows.next()) {
            state.AssessmentList.append({rows.integer(number), rows.text(name)});
        }
        Recordset history = connection.read(statements::SelectHistory());
        const int lastId = history.field("LastID");
        if (history.next()) {
            state.LastAssessmentNum = history.integer(lastId);
        }
    };
    return failuresOf(
        load, QT_TRANSLATE_NOOP("Catalogue", "There was an error loading the assessments."));
}

LoadFailures LoadTopics(ProgramState& state, Connection& connection)
{
    state.TopicList.clear();
    const auto load = [&] {
        Recordset rows = connection.read(statements::SelectTopics(state.CurrentAssessmentNum));
        const int topicId = rows.field("TopicID");
        const int topic = rows.field("Topic");
        while (rows.next()) {
            state.TopicList.append({rows.integer(topicId), rows.text(topic)});
        }
    };
    return failuresOf(load,
                      QT_TRANSLATE_NOOP("Catalogue", "There was an error loading the topics."));
}

LoadFailures LoadSubTopics(ProgramState& state, Connection& connection)
{
    state.SubTopicList.clear();
    const auto load = [&] {
        Recordset rows = connection.read(statements::SelectSubTopics(state.CurrentAssessmentNum));
        const int topicId = rows.field("TopicID");
        const int subtopicNum = rows.field("SubtopicNum");
        const int subTopic = rows.field("SubTopic");
        while (rows.next()) {
            state.SubTopicList.append(
                {rows.integer(topicId), rows.integer(subtopicNum), rows.text(subTopic)});
        }
    };
    return failuresOf(load,
                      QT_TRANSLATE_NOOP("Catalogue", "There was an error loading the subtopics."));
}

LoadFailures LoadStructure(ProgramState& state, Connection& connection)
{
    LoadFailures failures = LoadTopics(state, connection);
    failures += LoadSubTopics(state, connection);
    return failures;
}

void LoadQuestions(ProgramState& state, Connection& connection)
{
    state.QuestionList.clear();
    state.QuestionsLoaded = false;
    Recordset rows = connection.read(statements::SelectQuestions(state.CurrentAssessmentNum));
    const int solIndex = rows.field("SOLIndex");
    const int topicId = rows.field("TopicID");
    const int subtopicNum = rows.field("SubtopicNum");
    const int answer = rows.field("Answer");
    while (rows.next()) {
        const std::int32_t key = rows.integer(solIndex);
        state.QuestionList.append(
            {key, key, rows.integer(topicId), rows.integer(subtopicNum), rows.text(answer)});
    }
    state.QuestionsLoaded = true;
}

QString GetTopicText(const ProgramState& state, const QuestionRecord& question)
{
    QString text;
    const auto& topics = state.TopicList;
    const auto topic = std::find_if(topics.begin(), topics.end(), [&](const TopicRecord& record) {
        return record.TopicID == question.TopicID;
    });
    if (topic != topics.end()) {
        text = topic->Topic;
    }
    const auto& subTopics = state.SubTopicList;
    const auto subTopic =
        std::find_if(subTopics.begin(), subTopics.end(), [&](const SubTopicRecord& record) {
            return record.TopicID == question.TopicID && record.SubtopicNum == question.SubtopicNum;
        });
    if (subTopic != subTopics.end()) {
        text += QStringLiteral(" - ") + subTopic->SubTopic;
    }
    return text;
}

} // namespace varnholt
