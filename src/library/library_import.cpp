// The last step of an import: a plan becomes rows and pictures.

#include "library/library_change.h"
#include "store/plus_statements.h"
#include "store/statements.h"

#include <QCoreApplication>

#include <limits>

namespace varnholt {

namespace {

/// The largest key of a table, asked again and again: the newest row's. Making the statement ready
/// costs more than running it, so it is kept.
class LargestKey
{
public:
    LargestKey(Connection& connection, const QString& statement)
        : statement_(connection, statement.toUtf8().constData())
    {}

    [[nodiscard]] std::int32_t now()
    {
        std::int64_t key = 0;
        while (statement_.next()) {
            key = statement_.integer(0);
        }
        if (key > std::numeric_limits<std::int32_t>::max()) {
            throw DatabaseError(
                QCoreApplication::translate("Library", "The number %1 is too large for a key.")
                    .arg(key));
        }
        return static_cast<std::int32_t>(key);
    }

private:
    Statement statement_;
};

/// The key of the row that a reference of the plan is about; 0 when there is none.
std::int32_t keyOf(const std::vector<std::int32_t>& keys, std::optional<std::size_t> position)
{
    return position ? keys.at(*position) : 0;
}

} // namespace

void Library::addImportedRows(const ImportPlan& plan, const ImportSteps& steps,
                              std::int32_t assessmentNum)
{
    std::size_t done = 0;
    const std::size_t all = plan.topics.size() + plan.subtopics.size() + plan.questions.size();
    const auto goOn = [&] {
        ++done;
        if (steps.progress) {
            steps.progress(done, all);
        }
    };

    std::vector<std::int32_t> topics;
    LargestKey topicKey(connection_, statements::SelectMaxTopicID());
    for (const ImportedTopic& topic : plan.topics) {
        connection_.execute(statements::InsertTopic(topic.Topic, assessmentNum));
        topics.push_back(topicKey.now());
        goOn();
    }
    std::vector<std::int32_t> subtopics;
    LargestKey subtopicKey(connection_, statements::SelectMaxSubTopicNum());
    for (const ImportedSubtopic& subtopic : plan.subtopics) {
        connection_.execute(statements::InsertSubtopic(keyOf(topics, subtopic.topic),
                                                       subtopic.SubTopic, assessmentNum));
        subtopics.push_back(subtopicKey.now());
        goOn();
    }
    LargestKey questionKey(connection_, statements::SelectMaxSOLIndex());
    for (std::size_t i = 0; i < plan.questions.size(); ++i) {
        const ImportedQuestion& question = plan.questions[i];
        connection_.execute(statements::InsertQuestion(keyOf(topics, question.topic),
                                                       question.Answer, assessmentNum,
                                                       keyOf(subtopics, question.subtopic)));
        steps.placePicture(i, questionKey.now());
        goOn();
    }
    if (!plan.defect.isEmpty()) {
        throw Error(plan.defect);
    }
    if (steps.syncPictures) {
        steps.syncPictures();
    }
}

ImportResult Library::apply(const ImportPlan& plan, const ImportSteps& steps)
{
    Change change(*this);
    for (const ItemKind kind : {ItemKind::Topic, ItemKind::Subtopic, ItemKind::Question}) {
        change.expect(kind);
    }
    connection_.execute(statements::InsertAssessment(plan.AssessmentName));
    std::int32_t assessmentNum = 0;
    try {
        assessmentNum = LargestKey(connection_, statements::SelectMaxAssessmentNum()).now();
    } catch (const Error& failure) {
        // Without a key it cannot be deleted again.
        change.commitUnrecorded();
        throw ImportFailure(failure.message(), true);
    }
    change.add({ItemKind::Assessment, assessmentNum});
    try {
        addImportedRows(plan, steps, assessmentNum);
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception& failure) {
        const auto* known = dynamic_cast<const Error*>(&failure);
        const QString reason = known ? known->message() : tr("The import could not be finished.");
        bool rowsStay = false;
        try {
            connection_.execute(statements::DeleteAssessment(assessmentNum));
            change.commitUnrecorded();
            rowsStay = true;
        } catch (const Error&) {
            // The rows go with the transaction.
        }
        throw ImportFailure(reason, rowsStay);
    }
    change.commit();
    return {assessmentNum, plan.topics.size(), plan.subtopics.size(), plan.questions.size()};
}

} // namespace varnholt
