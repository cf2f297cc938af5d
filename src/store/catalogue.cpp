#include "store/catalogue.h"

#include "store/connection.h"
#include "store/services.h"
#include "store/statements.h"

#include <QHash>
#include <QStringList>

#include <algorithm>

namespace varnholt {

namespace {

template <typename Load>
bool reportFailure(MessageBoxes& messages, const QString& text, Load load)
{
    try {
        load();
        return true;
    } catch (const DatabaseError&) {
        messages.inform(QStringLiteral("Database Error"), text);
        return false;
    }
}

} // namespace

void LoadAssessments(ProgramState& state, Connection& connection, MessageBoxes& messages)
{
    state.AssessmentList.clear();
    reportFailure(messages, QStringLiteral("There was an error loading the assessments."), [&] {
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
    });
}

bool LoadTopics(ProgramState& state, Connection& connection, MessageBoxes& messages)
{
    state.TopicList.clear();
    return reportFailure(messages, QStringLiteral("There was an error loading the topics."), [&] {
        Recordset rows = connection.read(statements::SelectTopics(state.CurrentAssessmentNum));
        const int topicId = rows.field("TopicID");
        const int topic = rows.field("Topic");
        while (rows.next()) {
            TopicRecord& record = state.TopicList.append({});
            record.TopicID = rows.integer(topicId);
            record.Topic = rows.text(topic);
        }
    });
}

bool LoadSubTopics(ProgramState& state, Connection& connection, MessageBoxes& messages)
{
    state.SubTopicList.clear();
    return reportFailure(
        messages, QStringLiteral("There was an error loading the subtopics."), [&] {
            Recordset rows =
                connection.read(statements::SelectSubTopics(state.CurrentAssessmentNum));
            const int topicId = rows.field("TopicID");
            const int subtopicNum = rows.field("SubtopicNum");
            const int subTopic = rows.field("SubTopic");
            while (rows.next()) {
                state.SubTopicList.append(
                    {rows.integer(topicId), rows.integer(subtopicNum), rows.text(subTopic), true});
            }
        });
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
            {key, key, rows.integer(topicId), rows.integer(subtopicNum), rows.text(answer), true});
    }
    state.QuestionsLoaded = true;
}

bool LoadCurrentAssessment(ProgramState& state, Connection& connection, MessageBoxes& messages)
{
    const bool topics = LoadTopics(state, connection, messages);
    const bool subTopics = LoadSubTopics(state, connection, messages);
    LoadQuestions(state, connection);
    return topics && subTopics;
}

void SetSubTopicSelected(List1<SubTopicRecord>& subTopicList, std::int32_t topicId,
                         std::int32_t subtopicNum, bool selected)
{
    for (SubTopicRecord& record : subTopicList) {
        if (record.TopicID == topicId && record.SubtopicNum == subtopicNum) {
            record.Selected = selected;
        }
    }
}

void UpdateSelectionCounts(ProgramState& state, SelectionCaptions& captions)
{
    state.SelectedQuestionCount = static_cast<std::int32_t>(
        std::count_if(state.QuestionList.begin(), state.QuestionList.end(),
                      [](const QuestionRecord& question) { return question.Selected; }));
    captions.setQuestionCount(QString::number(state.SelectedQuestionCount));

    struct Count
    {
        std::int32_t all = 0;
        std::int32_t selected = 0;
    };
    QHash<std::int32_t, Count> counts;
    counts.reserve(state.TopicList.upperBound());
    for (const SubTopicRecord& record : state.SubTopicList) {
        Count& count = counts[record.TopicID];
        ++count.all;
        count.selected += record.Selected ? 1 : 0;
    }

    QStringList texts;
    texts.reserve(state.TopicList.upperBound());
    for (TopicRecord& topic : state.TopicList) {
        const Count count = counts.value(topic.TopicID);
        topic.SelectedSubTopicText = QString::number(count.selected);
        topic.SubTopicCount = count.all;
        texts.append(topic.Topic + QStringLiteral(" (") + topic.SelectedSubTopicText +
                     QStringLiteral(" of ") + QString::number(topic.SubTopicCount) +
                     QStringLiteral(" topics)"));
    }
    state.TopicEventsEnabled = false;
    captions.setTopicRows(texts);
    state.TopicEventsEnabled = true;
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

void SaveLastAssessment(const ProgramState& state, Connection& connection)
{
    connection.execute(statements::UpdateHistory(state.CurrentAssessmentNum));
}

} // namespace varnholt
