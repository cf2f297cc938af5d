#include "manage_test.h"

#include <QFile>
#include <QTimer>

#include <sqlite3.h>

#include <random>

namespace varnholt::test {
namespace {

/// Somebody who presses and types anything anywhere. What comes of it is held against the
/// database, which is read through a connection of the test's own.
class RandomActions : public ManageTest,
                      public testing::WithParamInterface<unsigned>,
                      private MessageBoxes
{
protected:
    RandomActions()
    {
        services.messageBoxes = this;
        sqlite3_open(library.databasePath().toUtf8().constData(), &database);
        authoring = [this] { return author(); };
    }
    ~RandomActions() override { sqlite3_close(database); }

    int pick(int n) { return std::uniform_int_distribution(0, n - 1)(generator); }
    QString someText()
    {
        const QString texts[] = {{}, u"  "_s, u"O'k"_s, u" Name "_s, u"%1 π"_s.arg(pick(1000))};
        return texts[pick(5)];
    }
    void inform(const QString& title, const QString&) override { told = title; }
    bool yesNo(const QString&, const QString&, Answer) override { return pick(3) > 0; }
    QString inputText(const QString&, const QString&, const QString&) override
    {
        return someText();
    }

    /// The rows of a result, their values joined with '|'.
    QStringList rows(const QString& sql)
    {
        QStringList result;
        const auto take = [](void* target, int count, char** values, char**) {
            QStringList row;
            for (int i = 0; i < count; ++i) {
                row.append(QString::fromUtf8(values[i]));
            }
            static_cast<QStringList*>(target)->append(row.join(u'|'));
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(database, sql.toUtf8().constData(), take, &result, nullptr),
                  SQLITE_OK);
        return result;
    }
    /// Every row of the library: kind, key, contents, and whether it is available.
    QStringList everything()
    {
        return rows(u"SELECT 'A',* FROM Assessments; SELECT 'T',* FROM Topics; SELECT 'S',* FROM "
                    "SubTopics; SELECT 'Q',* FROM Questions"_s);
    }

    /// Stands in for the authoring window: files a question under any subtopic.
    void author()
    {
        const QStringList places =
            rows(u"SELECT TopicID,SubtopicNum,AssessmentNum FROM SubTopics WHERE Available AND "
                 "AssessmentNum=%1"_s.arg(state.CurrentAssessmentNum));
        if (frozen) {
            return;
        }
        const QString place = places[pick(static_cast<int>(places.size()))];
        owner.addQuestion({place.section(u'|', 2, 2).toInt(), place.section(u'|', 0, 0).toInt(),
                           place.section(u'|', 1, 1).toInt()},
                          u"A"_s, [](const QString& path) {
                              testPicture({8, 8}).save(path, "JPG");
                          });
        told = u"Question Added"_s;
    }

    /// What is done in the editor when it opens.
    void edit()
    {
        QTimer::singleShot(0, window.get(), [this] {
            QWidget* dialog = QApplication::activeModalWidget();
            auto* topicBox = control<ComboBox>(dialog, "cboTopics");
            topicBox->setListIndex(pick(topicBox->listCount()));
            control<QLineEdit>(dialog, "txtAnswer")->setText(someText());
            click(dialog, "cmdSave");
            if (dialog->isVisible()) {
                click(dialog, "cmdCancel");
            }
        });
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

    void act()
    {
        static const std::vector<std::pair<const char*, int>> weights{{"cmdAddAssessment", 4},
                                                                      {"cmdDeleteAssessment", 1},
                                                                      {"cmdNewTopic", 12},
                                                                      {"cmdDeleteTopic", 6},
                                                                      {"cmdNewSubtopic", 24},
                                                                      {"cmdDeleteSubtopic", 8},
                                                                      {"cmdAddNewQuestion", 48},
                                                                      {"cmdLeft", 12},
                                                                      {"cmdRight", 24},
                                                                      {"cmdEditQuestion", 24},
                                                                      {"cmdDeleteQuestion", 8},
                                                                      {"cmdUndo", 5},
                                                                      {"cmdRedo", 3},
                                                                      {"lstTopics", 60},
                                                                      {"lstSubtopics", 80},
                                                                      {"cboAssessment", 4},
                                                                      {"frmManage", 4}};
        static const std::vector<QByteArray> names = [] {
            std::vector<QByteArray> all;
            for (const auto& [name, weight] : weights) {
                all.insert(all.end(), static_cast<std::size_t>(weight), name);
            }
            return all;
        }();
        const QByteArray name =
            names[static_cast<std::size_t>(pick(static_cast<int>(names.size())))];
        SCOPED_TRACE(name.toStdString());
        if (name == "frmManage") {
            open();
        } else if (name == "cboAssessment" && assessments().listCount() > 0) {
            assessments().setListIndex(pick(assessments().listCount()));
        } else if (name.startsWith("lst")) {
            ListBox& list = name == "lstTopics" ? topics() : subtopics();
            if (list.listCount() > 0) {
                list.setListIndex(pick(list.listCount()));
            }
        } else if (name.startsWith("cmd") && enabled(name) && shown(name)) {
            if (name == "cmdEditQuestion") {
                edit();
            }
            press(name);
            turned = name == "cmdUndo" || name == "cmdRedo";
        }
    }

    void checkWindow()
    {
        const auto chosen = [](const ListBox& list) {
            return list.listIndex() < 0 ? 0 : list.itemData(list.listIndex());
        };
        const auto shownRows = [](const ListBox& list) {
            QStringList texts;
            for (const ListBox::Row& row : list.rows()) {
                texts.append(u"%1|%2"_s.arg(row.itemData).arg(row.text));
            }
            return texts;
        };
        const int topic = chosen(topics());
        const int subtopic = chosen(subtopics());
        const QString buttons =
            u"AddAssessment DeleteAssessment AddNewQuestion NewTopic DeleteTopic NewSubtopic "
            "DeleteSubtopic"_s;
        const int depth = !state.CurrentAssessmentNum ? 1 : !topic ? 4 : !subtopic ? 6 : 7;
        EXPECT_EQ(enabledButtons(), buttons.section(u' ', 0, depth - 1));

        EXPECT_EQ(assessments().listCount(),
                  rows(u"SELECT * FROM Assessments WHERE Available"_s).size());
        EXPECT_EQ(
            shownRows(topics()),
            rows(u"SELECT TopicID,Topic FROM Topics WHERE Available AND AssessmentNum=%1"_s.arg(
                state.CurrentAssessmentNum)));
        EXPECT_EQ(shownRows(subtopics()),
                  rows(u"SELECT SubtopicNum,SubTopic FROM SubTopics WHERE Available AND "
                       "TopicID=%1"_s.arg(topic)));
        const qsizetype count =
            rows(u"SELECT 1 FROM Questions WHERE Available AND SubTopicNum=%1"_s.arg(subtopic))
                .size();
        EXPECT_EQ(text("lblQuestions"), subtopic ? u"Questions: %1"_s.arg(count) : QString());
        EXPECT_EQ(shown("fraQuestions"), count > 0);
        if (count > 0) {
            const int position = text("lblQuestionCount").section(u' ', 0, 0).toInt();
            EXPECT_EQ(place(), u"%1 of %2 %3%4"_s.arg(position)
                                   .arg(count)
                                   .arg(position > 1 ? u"<"_s : u"-"_s)
                                   .arg(position < count ? u">"_s : u"-"_s));
        }
    }

    /// Nothing but what was told has changed: one row, which is still there if it was before
    /// and was available if it was.
    void checkLibrary(const QStringList& before)
    {
        QStringList gone = before;
        QStringList come = everything();
        for (const QString& row : before) {
            if (come.removeOne(row)) {
                gone.removeOne(row);
            }
        }
        if (turned) {
            EXPECT_LE(come.size(), 1);
            ASSERT_EQ(come.size(), gone.size());
        }
        const bool added = told.endsWith(u"Added"_s);
        const bool removed = told.endsWith(u"Deleted"_s);
        EXPECT_EQ(come.size(), added || removed ? 1 : gone.size());
        EXPECT_EQ(gone.size(), turned    ? come.size()
                               : added   ? 0
                               : removed ? 1
                                         : told == u"Question Saved"_s && !gone.isEmpty());
        if (!gone.isEmpty() && !come.isEmpty()) {
            EXPECT_EQ(gone[0].section(u'|', 0, 1), come[0].section(u'|', 0, 1));
            EXPECT_TRUE(turned || gone[0].back() == u'1');
            EXPECT_TRUE(turned || come[0].back() == (removed ? u'0' : u'1'));
        }
        EXPECT_FALSE(frozen && !come.isEmpty());
        // Nothing available below something deleted; topic and subtopic belong together.
        EXPECT_EQ(
            rows(u"SELECT s.SubtopicNum FROM SubTopics s JOIN Topics t USING(TopicID) WHERE "
                 "s.Available AND NOT t.Available UNION ALL SELECT SOLIndex FROM Questions q "
                 "JOIN SubTopics s USING(SubtopicNum) WHERE (q.Available AND NOT s.Available) "
                 "OR q.TopicID<>s.TopicID OR q.AssessmentNum<>s.AssessmentNum"_s),
            QStringList());
    }

    sqlite3* database = nullptr;
    std::mt19937 generator{GetParam()};
    bool frozen = false; // the library takes no changes
    bool turned = false; // a change was undone or made again
    QString told;        // title of the last message
};

TEST_P(RandomActions, WindowAndLibraryAgree)
{
    open();
    for (int i = 0; i < 1500 && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        const QStringList before = everything();
        freeze(pick(12) == 0);
        told.clear();
        turned = false;
        act();
        checkWindow();
        checkLibrary(before);
    }
    EXPECT_GT(everything().filter(u"Q|"_s).size(), 30);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomActions, testing::Values(1U, 2U, 3U, 4U));

} // namespace
} // namespace varnholt::test
