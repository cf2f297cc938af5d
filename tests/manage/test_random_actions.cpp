#include "manage_test.h"

#include <QFile>
#include <QTimer>

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <random>

namespace varnholt::test {
namespace {

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
    using Keys = std::vector<int>;

    /// By kind and key. Nothing is ever removed, so keys run without gaps.
    std::map<int, Row> tables[4];
    int lastId = 0;
    // The window: the rows chosen (0 for none), and the browser.
    int assessment = 0, topic = 0, subtopic = 0;
    Keys browsed;
    int position = 0;

    [[nodiscard]] Keys keys(Kind kind, const auto& wanted) const
    {
        Keys found;
        for (const auto& [key, row] : tables[kind]) {
            if (row.available && wanted(row)) {
                found.push_back(key);
            }
        }
        return found;
    }
    [[nodiscard]] Keys in(Kind kind) const
    {
        return keys(kind, [&](const Row& row) { return row.assessment == assessment; });
    }
    [[nodiscard]] Keys below(Kind kind, int parent) const
    {
        return keys(kind, [&](const Row& row) { return parent && row.parent == parent; });
    }
    [[nodiscard]] Keys all() const
    {
        return keys(Assessment, [](const Row&) { return true; });
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
        browsed = below(Question, key);
        position = browsed.empty() ? 0 : 1;
    }
    [[nodiscard]] int question() const
    {
        return browsed.at(static_cast<std::size_t>(position) - 1);
    }
    int add(Kind kind, const Row& row)
    {
        const int key = static_cast<int>(tables[kind].size()) + 1;
        tables[kind][key] = row;
        return key;
    }
};

class RandomActions : public ManageTest, public testing::WithParamInterface<unsigned>
{
protected:
    RandomActions()
    {
        sqlite3_open(library.databasePath().toUtf8().constData(), &database);
        testPicture({8, 8}).save(library.folder() + u"/p.jpg"_s, "JPG");
        authoring = [this] { author(); };
    }
    ~RandomActions() override { sqlite3_close(database); }

    int pick(std::size_t n)
    {
        return static_cast<int>(std::uniform_int_distribution<std::size_t>(0, n - 1)(generator));
    }
    template <typename T>
    T oneOf(const std::vector<T>& values)
    {
        return values[static_cast<std::size_t>(pick(values.size()))];
    }

    /// All values of the results, through a connection of the test's own.
    QString query(const QString& sql)
    {
        QString result;
        const auto row = [](void* target, int count, char** values, char**) {
            for (int i = 0; i < count; ++i) {
                *static_cast<QString*>(target) += QString::fromUtf8(values[i]) + u'|';
            }
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(database, sql.toUtf8().constData(), row, &result, nullptr),
                  SQLITE_OK);
        return result;
    }

    // Each action predicts what is asked, changes the model and acts on the window.

    void add(Kind kind)
    {
        const QString typed = oneOf<QString>({QString(), u"  "_s, u"O'k"_s, u" Name "_s,
                                              u"Name %1"_s.arg(pick(1000)), u"Ünïcode π"_s});
        const QString name = kind == Assessment ? typed : typed.trimmed();
        asksName(kind, typed);
        if (name.contains(u'\'') || (frozen && !name.isEmpty())) {
            saysAddError(kind);
        } else if (!name.isEmpty()) {
            saysAdded(kind, name);
            const int key = model.add(kind, {name, kind == Subtopic ? model.topic : 0,
                                             kind == Assessment ? 0 : model.assessment});
            if (kind == Assessment) {
                model.lastId = key;
                model.open(key);
            } else {
                model.chooseTopic(kind == Topic ? 0 : model.topic);
            }
        }
        const char* buttons[] = {"cmdAddAssessment", "cmdNewTopic", "cmdNewSubtopic"};
        press(buttons[kind]);
    }

    void remove(Kind kind, int key)
    {
        const bool yes = pick(2);
        if ((kind == Topic && !model.below(Subtopic, key).empty()) ||
            (kind == Subtopic && !model.browsed.empty())) {
            refusesDeletion(kind);
        } else {
            asksDelete(kind, yes);
            if (yes && frozen) {
                saysDeleteError(kind);
            } else if (yes) {
                saysDeleted(kind);
                model.tables[kind][key].available = false;
                if (kind == Assessment) {
                    model.lastId = 0;
                    model.open(model.all().empty() ? 0 : model.all().front());
                } else {
                    model.chooseTopic(kind == Topic ? 0 : model.topic);
                }
            }
        }
        const char* buttons[] = {"cmdDeleteAssessment", "cmdDeleteTopic", "cmdDeleteSubtopic",
                                 "cmdDeleteQuestion"};
        press(buttons[kind]);
    }

    void addQuestion()
    {
        authored = 0;
        if (model.in(Topic).empty() || model.in(Subtopic).empty()) {
            refusesAdding();
        } else if (!frozen && pick(4)) {
            authored = oneOf(model.in(Subtopic));
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
        const Model::Row row{u"Answer"_s, authored, model.assessment, true, pick(6) > 0};
        const int key = model.add(Question, row);
        query(u"INSERT INTO Questions(TopicID,SubTopicNum,Answer,AssessmentNum) VALUES(%1,%2,"
              "'Answer',%3)"_s.arg(model.tables[Subtopic][authored].parent)
                  .arg(authored)
                  .arg(model.assessment));
        if (row.picture) {
            QFile::copy(library.folder() + u"/p.jpg"_s, library.picturePath(key));
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
            topicBox->setListIndex(pick(static_cast<std::size_t>(topicBox->listCount())));
            const bool fileable = subtopicBox->listCount() > 0;
            const QString answer =
                oneOf<QString>({QString(), u"   "_s, u"O'k"_s, u" x "_s, u"%1 m"_s.arg(pick(99))});
            control<QLineEdit>(dialog, "txtAnswer")->setText(answer);
            const bool yes = pick(4) > 0;
            if (answer.isEmpty()) {
                refusesEmptyAnswer();
            } else {
                asksSave(yes);
                saved = yes && !frozen && !answer.contains(u'\'') && fileable;
                if (saved) {
                    Model::Row& row = model.tables[Question][model.question()];
                    row.text = answer.trimmed();
                    row.parent = subtopicBox->entryData(subtopicBox->listIndex());
                    saysSaved();
                } else if (yes) {
                    saysSaveError();
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
        expectMissing(model.position += by);
        press(button);
    }

    void choose(ListBox& list, const Model::Keys& keys, void (Model::*reaction)(int))
    {
        if (!keys.empty()) {
            const int row = pick(keys.size());
            (model.*reaction)(keys[static_cast<std::size_t>(row)]);
            expectMissing(model.position);
            list.setListIndex(row);
        }
    }

    void chooseAssessment()
    {
        const int row = pick(model.all().size());
        model.open(model.all()[static_cast<std::size_t>(row)]);
        assessments().setListIndex(row);
    }

    void reopen()
    {
        model.lastId = frozen ? model.lastId : model.assessment;
        const Model::Keys all = model.all();
        const bool found = std::count(all.begin(), all.end(), model.lastId) > 0;
        model.open(found ? model.lastId : all.empty() ? model.assessment : all.front());
        open();
    }

    void expectMissing(int position)
    {
        if (position > 0 && position <= static_cast<int>(model.browsed.size()) &&
            !model.tables[Question][model.browsed[static_cast<std::size_t>(position) - 1]]
                 .picture) {
            saysMissing();
        }
    }

    /// The library takes no changes: its file can only be read, or has been moved away.
    void freeze(bool on)
    {
        const QString path = library.databasePath();
        QFile::rename(path + u'x', path);
        frozen = on;
        const bool moved = on && pick(2);
        connection.execute(u"PRAGMA query_only = %1"_s.arg(on && !moved));
        if (moved) {
            QFile::rename(path, path + u'x');
        }
    }

    /// One random action; false when it cannot be taken now.
    bool act()
    {
        freeze(pick(12) == 0);
        const bool some = model.assessment > 0;
        const bool right = model.position < static_cast<int>(model.browsed.size());
        const std::vector<std::pair<bool, std::function<void()>>> actions{
            {pick(8) == 0, [&] { add(Assessment); }},
            {some, [&] { add(Topic); }},
            {model.topic, [&] { add(Subtopic); }},
            {some && pick(25) == 0, [&] { remove(Assessment, model.assessment); }},
            {model.topic, [&] { remove(Topic, model.topic); }},
            {model.subtopic, [&] { remove(Subtopic, model.subtopic); }},
            {model.position, [&] { remove(Question, model.question()); }},
            {model.position, [&] { editQuestion(); }},
            {model.position > 1, [&] { step("cmdLeft", -1); }},
            {right, [&] { step("cmdRight", 1); }},
            {some && pick(3), [&] { addQuestion(); }},
            {some, [&] { addQuestion(); }},
            {some, [&] { choose(topics(), model.in(Topic), &Model::chooseTopic); }},
            {model.topic,
             [&] {
                 choose(subtopics(), model.below(Subtopic, model.topic), &Model::chooseSubtopic);
             }},
            {model.topic,
             [&] {
                 choose(subtopics(), model.below(Subtopic, model.topic), &Model::chooseSubtopic);
             }},
            {some && pick(3) == 0, [&] { chooseAssessment(); }},
            {pick(6) == 0, [&] { reopen(); }},
        };
        const auto& [possible, action] = actions[static_cast<std::size_t>(pick(actions.size()))];
        if (possible) {
            action();
            messages.verify();
        }
        return possible;
    }

    void expectRows(const ListBox& list, Kind kind, const Model::Keys& keys, int current)
    {
        ASSERT_EQ(list.listCount(), static_cast<int>(keys.size()));
        for (int i = 0; i < list.listCount(); ++i) {
            EXPECT_EQ(list.itemData(i), keys[static_cast<std::size_t>(i)]);
            EXPECT_EQ(list.itemText(i), model.tables[kind][list.itemData(i)].text);
            EXPECT_EQ(list.listIndex() == i, list.itemData(i) == current);
        }
    }

    void checkWindow()
    {
        EXPECT_EQ(state.CurrentAssessmentNum, model.assessment);
        EXPECT_EQ(enabledButtons(), QLatin1String(!model.assessment ? "A"
                                                  : model.subtopic  ? "ADQtTsS"
                                                  : model.topic     ? "ADQtTs"
                                                                    : "ADQt"));
        EXPECT_EQ(assessments().listCount(), static_cast<int>(model.all().size()));
        expectRows(topics(), Topic, model.in(Topic), model.topic);
        expectRows(subtopics(), Subtopic, model.below(Subtopic, model.topic), model.subtopic);
        const int count = static_cast<int>(model.browsed.size());
        EXPECT_EQ(text("lblQuestions"), model.subtopic ? u"Questions: %1"_s.arg(count) : QString());
        EXPECT_EQ(shown("fraQuestions"), count > 0);
        if (count > 0) {
            EXPECT_EQ(text("lblQuestionCount"), u"%1 of %2"_s.arg(model.position).arg(count));
            EXPECT_EQ(enabled("cmdLeft"), model.position > 1);
            EXPECT_EQ(enabled("cmdRight"), model.position < count);
        }
    }

    void checkLibrary()
    {
        QString expected = u"%1|"_s.arg(model.lastId);
        for (const auto& table : model.tables) {
            for (const auto& [key, row] : table) {
                expected += u"%1,%2,%3,%4,%5|"_s.arg(key)
                                .arg(row.text)
                                .arg(row.parent)
                                .arg(row.assessment)
                                .arg(row.available ? 1 : 0);
            }
        }
        EXPECT_EQ(query(u"SELECT LastID FROM History; SELECT AssessmentNum||','||AssessmentName||"
                        "',0,0,'||Available FROM Assessments; SELECT TopicID||','||Topic||',0,'||"
                        "AssessmentNum||','||Available FROM Topics; SELECT SubtopicNum||','||"
                        "SubTopic||','||TopicID||','||AssessmentNum||','||Available FROM SubTopics;"
                        "SELECT SOLIndex||','||Answer||','||SubTopicNum||','||AssessmentNum||','||"
                        "Available FROM Questions"_s),
                  expected);
        // Nothing available below something deleted; topic and subtopic belong together.
        EXPECT_EQ(query(u"SELECT count(*) FROM SubTopics s JOIN Topics t USING(TopicID) WHERE "
                        "s.Available AND NOT t.Available; SELECT count(*) FROM Questions q JOIN "
                        "SubTopics s USING(SubtopicNum) WHERE (q.Available AND NOT s.Available) OR "
                        "q.TopicID<>s.TopicID OR q.AssessmentNum<>s.AssessmentNum"_s),
                  u"0|0|"_s);
    }

    sqlite3* database = nullptr;
    std::mt19937 generator{GetParam()};
    Model model;
    bool frozen = false; // the library takes no changes
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
    EXPECT_GT(model.tables[Question].size(), 30U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomActions, testing::Values(1U, 2U, 3U, 4U));

} // namespace
} // namespace varnholt::test
