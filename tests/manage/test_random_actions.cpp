#include "manage/frmEditQuestion.h"
#include "manage_test.h"

#include <QFile>
#include <QTimer>

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <random>

namespace varnholt {
namespace {

using test::click;
using test::control;

/// What the library must hold and the window must show, worked out from the actions alone.
struct Model
{
    struct Row
    {
        QString text;
        int parent = 0; // topic of a subtopic, subtopic of a question
        int assessment = 0;
        bool available = true;
        bool picture = true;
    };
    using Table = std::map<int, Row>;

    Table assessments, topics, subtopics, questions;
    int lastId = 0;
    // The window.
    int assessment = 0;
    int topic = 0;
    int subtopic = 0;
    std::vector<int> browsed;
    int position = 0;

    static std::vector<int> keys(const Table& table, const auto& wanted)
    {
        std::vector<int> found;
        for (const auto& [key, row] : table) {
            if (row.available && wanted(row)) {
                found.push_back(key);
            }
        }
        return found;
    }
    [[nodiscard]] std::vector<int> listedAssessments() const
    {
        return keys(assessments, [](const Row&) { return true; });
    }
    [[nodiscard]] std::vector<int> listedTopics() const
    {
        return keys(topics, [&](const Row& row) { return row.assessment == assessment; });
    }
    [[nodiscard]] std::vector<int> subtopicsOf(int key) const
    {
        return keys(subtopics, [&](const Row& row) { return key != 0 && row.parent == key; });
    }
    [[nodiscard]] std::vector<int> questionsOf(int key) const
    {
        return keys(questions, [&](const Row& row) { return row.parent == key; });
    }
    void open(int number)
    {
        assessment = number;
        chooseTopic(0);
    }
    void chooseTopic(int key)
    {
        topic = key;
        chooseSubtopic(0);
    }
    void chooseSubtopic(int key)
    {
        subtopic = key;
        browsed = key ? questionsOf(key) : std::vector<int>();
        position = browsed.empty() ? 0 : 1;
    }
    static int add(Table& table, const Row& row)
    {
        const int key = static_cast<int>(table.size()) + 1; // nothing is ever removed
        table[key] = row;
        return key;
    }
};

class RandomActions : public test::ManageTest, public testing::WithParamInterface<unsigned>
{
protected:
    RandomActions()
    {
        sqlite3_open(library.databasePath().toUtf8().constData(), &database);
        test::testPicture({8, 8}).save(library.folder() + QStringLiteral("/p.jpg"), "JPG");
        authoring = [this] { author(); };
    }
    ~RandomActions() override { sqlite3_close(database); }

    int pick(int n) { return std::uniform_int_distribution(0, n - 1)(generator); }
    template <typename T>
    T oneOf(const std::vector<T>& values)
    {
        return values[static_cast<std::size_t>(pick(static_cast<int>(values.size())))];
    }

    QString query(const char* sql)
    {
        QString result;
        const auto row = [](void* target, int count, char** values, char**) {
            for (int i = 0; i < count; ++i) {
                *static_cast<QString*>(target) += QString::fromUtf8(values[i]) + u'|';
            }
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(database, sql, row, &result, nullptr), SQLITE_OK);
        return result;
    }

    // --- Actions. Each predicts what is asked and changes the model, then acts.

    void add(const char* button, const char* title, const char* kind, Model::Table& table,
             const Model::Row& parents)
    {
        const QString typed = oneOf<QString>(
            {QString(), QStringLiteral("  "), QStringLiteral("O'k"), QStringLiteral(" Name "),
             QStringLiteral("Name %1").arg(pick(1000)), QStringLiteral("Ünïcode π")});
        const bool assessment = &table == &model.assessments;
        const QString name = assessment ? typed : typed.trimmed();
        messages.expectInput(
            QLatin1String(title),
            QStringLiteral("Please enter the name of the new %1.").arg(QLatin1String(kind)), typed);
        if (name.contains(u'\'') || (readOnly && !name.isEmpty())) {
            messages.expectInform(QStringLiteral("Error"),
                                  QStringLiteral("There was an error adding this %1.")
                                      .arg(assessment ? u"assessment" : u"topic"));
        } else if (!name.isEmpty()) {
            messages.expectInform(assessment ? QStringLiteral("New Assessment Added")
                                             : QStringLiteral("New Topic Added"),
                                  name + QStringLiteral(" successfully added."));
            Model::Row row = parents;
            row.text = name;
            const int key = Model::add(table, row);
            if (assessment) {
                model.lastId = key;
                model.open(key);
            } else {
                model.chooseTopic(&table == &model.topics ? 0 : model.topic);
            }
        }
        press(button);
    }

    /// True when the deletion goes through.
    bool confirm(const QString& what, const QString& question, const QString& failure)
    {
        const bool yes = pick(2) > 0;
        messages.expectYesNo(QStringLiteral("Delete %1?").arg(what), question, yes);
        if (yes && readOnly) {
            messages.expectInform(QStringLiteral("Error"), failure);
        }
        return yes && !readOnly;
    }

    void deleteAssessment()
    {
        if (confirm(QStringLiteral("Assessment"),
                    QStringLiteral("Are you sure that you want to delete this assessment library.  "
                                   "Selecting Yes will completely remove this assessment from the "
                                   "system."),
                    QStringLiteral("There was an error deleting this assessment."))) {
            messages.expectInform(QStringLiteral("Assessment Deleted"),
                                  QStringLiteral("The assessment was successfully deleted."));
            model.assessments[model.assessment].available = false;
            model.lastId = 0;
            const std::vector<int> left = model.listedAssessments();
            model.open(left.empty() ? 0 : left.front());
        }
        press("cmdDeleteAssessment");
    }

    void deleteTopic()
    {
        if (!model.subtopicsOf(model.topic).empty()) {
            messages.expectInform(QStringLiteral("Delete Error"),
                                  QStringLiteral("Cannot delete a topic that has subtopics.  You "
                                                 "must delete delete all subtopics first."));
        } else if (confirm(QStringLiteral("Topic"),
                           QStringLiteral("Are you sure that you want to delete this topic?"),
                           QStringLiteral("There was an error deleting this topic."))) {
            messages.expectInform(QStringLiteral("Topic Deleted"),
                                  QStringLiteral("The topic was deleted successfully."));
            model.topics[model.topic].available = false;
            model.chooseTopic(0);
        }
        press("cmdDeleteTopic");
    }

    void deleteSubtopic()
    {
        if (!model.browsed.empty()) {
            messages.expectInform(
                QStringLiteral("Delete Error"),
                QStringLiteral("You cannot delete a subtopic that has questions associated with "
                               "it.  The questions for this subtopic need to be changed to another "
                               "subtopic or deleted."));
        } else if (confirm(QStringLiteral("Subtopic"),
                           QStringLiteral("Are you sure that you want to delete this subtopic?"),
                           QStringLiteral("There was an error deleting this subtopic."))) {
            messages.expectInform(QStringLiteral("Subtopic Deleted"),
                                  QStringLiteral("The Subtopic was deleted successfully."));
            model.subtopics[model.subtopic].available = false;
            model.chooseTopic(model.topic);
        }
        press("cmdDeleteSubtopic");
    }

    void deleteQuestion()
    {
        if (confirm(QStringLiteral("Question"),
                    QStringLiteral("Are you sure that you want to delete this question?"),
                    QStringLiteral("There was an error in deleting the question."))) {
            messages.expectInform(QStringLiteral("Question Deleted"),
                                  QStringLiteral("Question deleted successfully."));
            model.questions[shownQuestion()].available = false;
            model.chooseTopic(model.topic);
        }
        press("cmdDeleteQuestion");
    }

    void addQuestion()
    {
        const auto inAssessment = [&](const Model::Row& row) {
            return row.assessment == model.assessment;
        };
        authored = 0;
        if (model.listedTopics().empty() || Model::keys(model.subtopics, inAssessment).empty()) {
            messages.expectInform(
                QStringLiteral("Add Error"),
                QStringLiteral(
                    "Cannot add a question until a topic and subtopic has been created."));
        } else if (!readOnly && pick(4) > 0) {
            authored = oneOf(Model::keys(model.subtopics, inAssessment));
            expectMissing(1); // the browser shows its first question once more
        }
        state.QuestionSaved = state.StructureChanged = false;
        press("cmdAddNewQuestion");
        if (authored) {
            model.chooseTopic(0);
        }
    }

    /// Stands in for the authoring window.
    void author()
    {
        if (!authored) {
            return;
        }
        const Model::Row row{QStringLiteral("Answer"), authored, model.assessment, true,
                             pick(6) > 0};
        const int key = Model::add(model.questions, row);
        query(QStringLiteral("INSERT INTO Questions(TopicID,SubTopicNum,Answer,AssessmentNum) "
                             "VALUES(%1,%2,'Answer',%3)")
                  .arg(model.subtopics[authored].parent)
                  .arg(authored)
                  .arg(model.assessment)
                  .toUtf8()
                  .constData());
        if (row.picture) {
            QFile::copy(library.folder() + QStringLiteral("/p.jpg"), library.picturePath(key));
        }
        state.QuestionSaved = true;
    }

    void editQuestion()
    {
        bool saved = false;
        QTimer::singleShot(0, window.get(), [&] {
            QWidget* dialog = QApplication::activeModalWidget();
            auto* topicBox = control<ComboBox>(dialog, "cboTopics");
            auto* subtopicBox = control<ComboBox>(dialog, "cboSubtopics");
            if (pick(2)) {
                topicBox->setListIndex(pick(topicBox->listCount()));
            }
            if (subtopicBox->listCount() > 0) {
                subtopicBox->setListIndex(pick(subtopicBox->listCount()));
            }
            const QString answer =
                oneOf<QString>({QString(), QStringLiteral("O'k"), QStringLiteral(" x "),
                                QStringLiteral("%1 m").arg(pick(99))});
            control<QLineEdit>(dialog, "txtAnswer")->setText(answer);
            const bool yes = pick(4) > 0;
            if (answer.isEmpty()) {
                messages.expectInform(
                    QStringLiteral("Save Error"),
                    QStringLiteral("Cannot save because Answer is a required field."));
            } else {
                messages.expectYesNo(
                    QStringLiteral("Save?"),
                    QStringLiteral("Are you sure you want to save these changes to this question?"),
                    yes);
                saved = yes && !readOnly && !answer.contains(u'\'') && subtopicBox->listCount() > 0;
                if (saved) {
                    Model::Row& row = model.questions[shownQuestion()];
                    row.text = answer.trimmed();
                    row.parent = subtopicBox->entryData(subtopicBox->listIndex());
                    messages.expectInform(QStringLiteral("Question Saved"),
                                          QStringLiteral("The question was saved successfully."));
                } else if (yes) {
                    messages.expectInform(
                        QStringLiteral("Save Error"),
                        QStringLiteral("There was an error saving the changes for this question."));
                }
            }
            click(dialog, "cmdSave");
            if (!saved) {
                click(dialog, "cmdCancel");
            }
        });
        press("cmdEditQuestion");
        if (saved) {
            model.chooseTopic(model.topic);
        }
    }

    void step(const char* button, int by)
    {
        model.position += by;
        expectMissing(model.position);
        press(button);
    }

    void choose(ListBox& list, const std::vector<int>& keys, void (Model::*reaction)(int))
    {
        if (!keys.empty()) {
            const int row = pick(static_cast<int>(keys.size()));
            (model.*reaction)(keys[static_cast<std::size_t>(row)]);
            expectMissing(model.position);
            list.setListIndex(row);
        }
    }

    void reopen()
    {
        if (!readOnly) {
            model.lastId = model.assessment;
        }
        const std::vector<int> listed = model.listedAssessments();
        const bool found = std::count(listed.begin(), listed.end(), model.lastId) > 0;
        model.open(found ? model.lastId : listed.empty() ? model.assessment : listed.front());
        open();
    }

    [[nodiscard]] int shownQuestion() const
    {
        return model.browsed[static_cast<std::size_t>(model.position) - 1];
    }
    void expectMissing(int position)
    {
        if (position > 0 && position <= static_cast<int>(model.browsed.size()) &&
            !model.questions[model.browsed[static_cast<std::size_t>(position) - 1]].picture) {
            messages.expectInform(QStringLiteral("File Missing"),
                                  QStringLiteral("The picture file is missing from this picture.  "
                                                 "Please delete this question."));
        }
    }

    /// One random action; false when it cannot be taken now.
    bool act()
    {
        readOnly = pick(12) == 0;
        connection.execute(QStringLiteral("PRAGMA query_only = %1").arg(readOnly));
        const bool some = model.assessment > 0;
        const int shownOnes = static_cast<int>(model.browsed.size());
        const std::vector<std::pair<bool, std::function<void()>>> actions{
            {pick(8) == 0,
             [&] {
                 add("cmdAddAssessment", "New Assessment Name", "assessment", model.assessments,
                     {});
             }},
            {some && pick(25) == 0, [&] { deleteAssessment(); }},
            {some,
             [&] {
                 add("cmdNewTopic", "New Topic Name", "topic", model.topics,
                     {{}, 0, model.assessment});
             }},
            {model.topic > 0,
             [&] {
                 add("cmdNewSubtopic", "New Topic Name", "subtopic", model.subtopics,
                     {{}, model.topic, model.assessment});
             }},
            {model.topic > 0, [&] { deleteTopic(); }},
            {model.subtopic > 0, [&] { deleteSubtopic(); }},
            {model.position > 0, [&] { deleteQuestion(); }},
            {model.position > 0, [&] { editQuestion(); }},
            {model.position > 1, [&] { step("cmdLeft", -1); }},
            {model.position < shownOnes, [&] { step("cmdRight", 1); }},
            {model.position < shownOnes, [&] { step("cmdRight", 1); }},
            {some, [&] { addQuestion(); }},
            {some, [&] { addQuestion(); }},
            {some, [&] { choose(topics(), model.listedTopics(), &Model::chooseTopic); }},
            {some, [&] { choose(topics(), model.listedTopics(), &Model::chooseTopic); }},
            {model.topic > 0,
             [&] { choose(subtopics(), model.subtopicsOf(model.topic), &Model::chooseSubtopic); }},
            {model.topic > 0,
             [&] { choose(subtopics(), model.subtopicsOf(model.topic), &Model::chooseSubtopic); }},
            {some && pick(3) == 0,
             [&] {
                 const std::vector<int> listed = model.listedAssessments();
                 const int row = pick(static_cast<int>(listed.size()));
                 model.open(listed[static_cast<std::size_t>(row)]);
                 assessments().setListIndex(row);
             }},
            {pick(6) == 0, [&] { reopen(); }},
        };
        const auto& [possible, action] =
            actions[static_cast<std::size_t>(pick(static_cast<int>(actions.size())))];
        if (possible) {
            action();
            messages.verify();
        }
        return possible;
    }

    // --- What must hold after each.

    static QStringList names(const Model::Table& table, const std::vector<int>& keys)
    {
        QStringList texts;
        for (const int key : keys) {
            texts.append(table.at(key).text);
        }
        return texts;
    }

    void checkWindow()
    {
        EXPECT_EQ(state.CurrentAssessmentNum, model.assessment);
        EXPECT_EQ(enabledButtons(),
                  QStringLiteral("A%1%2%3").arg(QLatin1String(model.assessment ? "DQt" : ""),
                                                QLatin1String(model.topic ? "Ts" : ""),
                                                QLatin1String(model.subtopic ? "S" : "")));
        EXPECT_EQ(assessments().listCount(), static_cast<int>(model.listedAssessments().size()));
        EXPECT_EQ(rows(topics()), names(model.topics, model.listedTopics()));
        EXPECT_EQ(rows(subtopics()), names(model.subtopics, model.subtopicsOf(model.topic)));
        EXPECT_EQ(topics().listIndex() >= 0, model.topic > 0);
        EXPECT_EQ(subtopics().listIndex() >= 0, model.subtopic > 0);
        EXPECT_EQ(text("lblQuestions"),
                  model.subtopic ? QStringLiteral("Questions: %1").arg(model.browsed.size())
                                 : QString());
        const int count = static_cast<int>(model.browsed.size());
        EXPECT_EQ(shown("fraQuestions"), count > 0);
        if (count > 0) {
            EXPECT_EQ(text("lblQuestionCount"),
                      QStringLiteral("%1 of %2").arg(model.position).arg(count));
            EXPECT_EQ(enabled("cmdLeft"), model.position > 1);
            EXPECT_EQ(enabled("cmdRight"), model.position < count);
        }
    }

    void checkLibrary()
    {
        EXPECT_EQ(query("SELECT LastID FROM History"), QStringLiteral("%1|").arg(model.lastId));
        QString expected;
        for (const auto* table :
             {&model.assessments, &model.topics, &model.subtopics, &model.questions}) {
            for (const auto& [key, row] : *table) {
                expected += QStringLiteral("%1,%2,%3,%4,%5|")
                                .arg(key)
                                .arg(row.text)
                                .arg(row.parent)
                                .arg(row.assessment)
                                .arg(row.available ? 1 : 0);
            }
        }
        EXPECT_EQ(query("SELECT AssessmentNum||','||AssessmentName||',0,0,'||Available FROM "
                        "Assessments; SELECT TopicID||','||Topic||',0,'||AssessmentNum||','||"
                        "Available FROM Topics; SELECT SubtopicNum||','||SubTopic||','||TopicID||"
                        "','||AssessmentNum||','||Available FROM SubTopics; SELECT SOLIndex||','||"
                        "Answer||','||SubTopicNum||','||AssessmentNum||','||Available FROM "
                        "Questions"),
                  expected);
        // Nothing available below something deleted, and topic and subtopic belong together.
        EXPECT_EQ(query("SELECT count(*) FROM SubTopics s JOIN Topics t USING(TopicID) WHERE "
                        "s.Available AND NOT t.Available; SELECT count(*) FROM Questions q JOIN "
                        "SubTopics s USING(SubtopicNum) WHERE (q.Available AND NOT s.Available) OR "
                        "q.TopicID<>s.TopicID OR q.AssessmentNum<>s.AssessmentNum"),
                  QStringLiteral("0|0|"));
    }

    sqlite3* database = nullptr;
    std::mt19937 generator{GetParam()};
    Model model;
    bool readOnly = false;
    /// The subtopic that the authoring window will file its question under, or 0.
    int authored = 0;
};

TEST_P(RandomActions, WindowAndLibraryAgreeWithTheModel)
{
    open();
    for (int done = 0; done < 1000 && !HasFailure();) {
        SCOPED_TRACE(done);
        if (act()) {
            ++done;
            checkWindow();
            checkLibrary();
        }
    }
    EXPECT_GT(model.questions.size(), 20U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomActions, testing::Values(1U, 2U, 3U, 4U));

} // namespace
} // namespace varnholt
