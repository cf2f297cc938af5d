#include "manage/PictureStrip.h"
#include "manage_test.h"

#include <QFile>
#include <QMenu>
#include <QPlainTextEdit>

#include <sqlite3.h>

#include <algorithm>
#include <random>

namespace varnholt::test {
namespace {

/// Somebody who presses and types anything anywhere. What is asked and said, what the window shows
/// and what becomes of the rows is held against the database, which is read through a connection
/// of the test's own.
class RandomActions : public ManageTest, public testing::WithParamInterface<unsigned>
{
protected:
    RandomActions()
    {
        sqlite3_open(library.databasePath().toUtf8().constData(), &database);
        authoring = [this] { author(); };
    }
    ~RandomActions() override { sqlite3_close(database); }

    int pick(int n) { return std::uniform_int_distribution(0, n - 1)(generator); }
    QString someText()
    {
        const QString texts[] = {{}, u"  "_s, u"O'k"_s, u" Name "_s, u"%1 π"_s.arg(pick(1000))};
        return texts[pick(5)];
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
    /// The row of the question on show.
    QString shownQuestion()
    {
        const int position = text("lblQuestionCount").section(u' ', 0, 0).toInt();
        return rows(u"SELECT SOLIndex,Answer FROM Questions WHERE Available AND SubTopicNum=%1"_s
                        .arg(chosen(subtopics())))
            .value(position - 1);
    }
    /// What is chosen, and the question on show.
    QString spot()
    {
        return u"%1 %2 %3"_s.arg(chosen(topics()))
            .arg(chosen(subtopics()))
            .arg(shown("fraQuestions") ? shownQuestion().section(u'|', 0, 0) : QString());
    }
    static int chosen(const ListBox& list)
    {
        return list.listIndex() < 0 ? 0 : list.itemData(list.listIndex());
    }

    /// Stands in for the authoring window: files a question under any subtopic.
    void author()
    {
        const QStringList places =
            rows(u"SELECT AssessmentNum,TopicID,SubtopicNum FROM SubTopics WHERE Available AND "
                 "AssessmentNum=%1"_s.arg(state.CurrentAssessmentNum));
        const QStringList place = places[pick(static_cast<int>(places.size()))].split(u'|');
        EXPECT_EQ(preselection.topicId.value_or(0), chosen(topics()));
        EXPECT_EQ(preselection.subtopicNum.value_or(0), chosen(subtopics()));
        if (!frozen) {
            owner.addQuestion({place[0].toInt(), place[1].toInt(), place[2].toInt()}, u"A"_s,
                              [](const QString& path) {
                                  testPicture({8, 8}).save(path, "JPG");
                              });
            come = {u"A"_s};
        }
    }

    void add(Kind kind)
    {
        const QString name = someText();
        const QString stored = kind == Assessment ? name : name.trimmed();
        asksName(kind, name);
        if (!stored.isEmpty() && (frozen || stored.contains(u'\''))) {
            says(addingFails[kind]);
        } else if (!stored.isEmpty()) {
            says(added(kind, stored));
            come = {stored};
        }
        press(addButtons[kind]);
    }
    void addQuestion()
    {
        if (rows(u"SELECT 1 FROM SubTopics WHERE Available AND AssessmentNum=%1"_s.arg(
                     state.CurrentAssessmentNum))
                .isEmpty()) {
            says(addingFails[Question]);
        }
        const QString before = spot();
        press("cmdAddNewQuestion");
        EXPECT_EQ(spot(), come.isEmpty() ? before : u"0 0 "_s);
    }
    /// Changes that no button of the window makes.
    void elsewhere()
    {
        const QString topic = rows(u"SELECT TopicID FROM Topics WHERE Available"_s).value(0);
        const QString question =
            rows(u"SELECT SOLIndex FROM Questions WHERE Available ORDER BY random()"_s).value(0);
        const QString before = spot();
        if (pick(2) && !topic.isEmpty()) {
            owner.rename({ItemKind::Topic, topic.toInt()}, u"E%1"_s.arg(pick(1000)));
            changed = 1;
        } else if (pick(2) && !question.isEmpty()) {
            owner.deleteQuestion(question.toInt());
            changed = 1;
        } else if (state.CurrentAssessmentNum) {
            owner.addTopics(state.CurrentAssessmentNum, {u"E"_s, u"F"_s});
            come = {u"E"_s, u"F"_s};
        }
        QApplication::processEvents();
        EXPECT_TRUE(spot() == before || before.section(u' ', 2) == question);
    }
    void removeSome(Kind kind)
    {
        if (kind == Topic && subtopics().listCount() > 0) {
            says(topicInUse);
        } else if (kind == Subtopic && shown("fraQuestions")) {
            says(subtopicInUse);
        } else {
            const bool yes = pick(3) > 0;
            asks(deletes[kind], yes);
            if (yes) {
                says(frozen ? deletingFails[kind] : deleted[kind]);
                changed = frozen ? 0 : 1;
            }
        }
        press(deleteButtons[kind]);
    }
    void edit()
    {
        const QString name = someText();
        inDialog([this] { press("cmdEditQuestion"); },
                 [&] {
                     auto* topicBox = control<ComboBox>(dialog, "cboTopics");
                     topicBox->setListIndex(pick(topicBox->listCount()));
                     control<QLineEdit>(dialog, "txtAnswer")->setText(name);
                     const bool filed = control<ComboBox>(dialog, "cboSubtopics")->listCount() > 0;
                     const bool yes = pick(3) > 0;
                     if (name.isEmpty()) {
                         says(answerMissing);
                     } else {
                         asks(saves, yes);
                         if (yes && (frozen || name.contains(u'\'') || !filed)) {
                             says(savingFails);
                         } else if (yes) {
                             says(saved);
                             changed = 1;
                         }
                     }
                     click(dialog, "cmdSave");
                 });
    }
    void rename(QWidget& list)
    {
        const QString name = someText();
        list.setFocus();
        inDialog([&] { QTest::keyClick(&list, Qt::Key_F2); },
                 [&] {
                     control<QLineEdit>(dialog, "txtName")->setText(name);
                     const QString stored = &list == &assessments() ? name : name.trimmed();
                     auto* save = control<QPushButton>(dialog, "cmdRename");
                     EXPECT_EQ(save->isEnabled(), !stored.isEmpty() && !stored.contains(u'\''));
                     save->click();
                     changed = save->isEnabled() && !frozen ? 1 : 0;
                 });
    }
    void addSeveral(Kind kind)
    {
        const QStringList lines{someText(), u" B "_s, QString(), someText()};
        QStringList stored;
        for (const QString& line : lines) {
            if (!line.trimmed().isEmpty()) {
                stored.append(line.trimmed());
            }
        }
        auto* more =
            control<QPushButton>(window.get(), kind == Topic ? "cmdTopicMore" : "cmdSubtopicMore");
        inDialog([&] { more->menu()->actions()[1]->trigger(); },
                 [&] {
                     auto* names = control<QPlainTextEdit>(dialog, "txtNames");
                     names->setPlainText(lines.join(u'\n'));
                     auto* save = control<QPushButton>(dialog, "cmdAdd");
                     EXPECT_EQ(save->isEnabled(), !stored.contains(u"O'k"_s));
                     save->click();
                     if (dialog->isVisible()) {
                         EXPECT_EQ(hint().startsWith(u"Nothing was added. "_s), save->isEnabled());
                         messages.expectYesNo(dialog->windowTitle(), dropsNames, true);
                         click(dialog, "cmdCancel");
                     } else {
                         come = stored;
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
        if (moved && !QFile::rename(path, path + u'x')) {
            // Windows lets nobody move a file that is open.
            connection.execute(u"PRAGMA query_only = 1"_s);
        }
    }

    void turn(const char* button)
    {
        press(button);
        turned = true;
    }
    /// One of the things that can be done now; what it must come to is in `come` and `changed`.
    void act()
    {
        const auto can = [this](const char* name) { return enabled(name) && shown(name); };
        const auto choose = [this](auto& list) { list.setListIndex(pick(list.listCount())); };
        const bool question = can("cmdEditQuestion");
        auto& strip = *control<PictureStrip>(window.get(), "lstPictures");
        const int count = question ? strip.model()->rowCount() : 0;
        const QList<int> before{chosen(topics()), chosen(subtopics())};
        const struct
        {
            int weight;
            bool can;
            std::function<void()> act;
            bool stays = false; // the place is left as it is
        } table[] = {{70, topics().listCount() > 0, [&] { choose(topics()); }},
                     {90, subtopics().listCount() > 0, [&] { choose(subtopics()); }},
                     {4, assessments().listCount() > 0, [&] { choose(assessments()); }},
                     {4, true, [&] { open(); }},
                     {4, true, [&] { add(Assessment); }},
                     {10, can("cmdNewTopic"), [&] { add(Topic); }},
                     {18, can("cmdNewSubtopic"), [&] { add(Subtopic); }},
                     {40, can("cmdAddNewQuestion"), [&] { addQuestion(); }},
                     {1, can("cmdDeleteAssessment"), [&] { removeSome(Assessment); }},
                     {6, can("cmdDeleteTopic"), [&] { removeSome(Topic); }},
                     {8, can("cmdDeleteSubtopic"), [&] { removeSome(Subtopic); }},
                     {6, can("cmdUndo"), [&] { turn("cmdUndo"); }},
                     {4, can("cmdRedo"), [&] { turn("cmdRedo"); }},
                     {4, can("cmdNewTopic"), [&] { addSeveral(Topic); }, true},
                     {6, can("cmdNewSubtopic"), [&] { addSeveral(Subtopic); }, true},
                     {3, assessments().listIndex() >= 0, [&] { rename(assessments()); }, true},
                     {5, before[0] != 0, [&] { rename(topics()); }, true},
                     {5, before[1] != 0, [&] { rename(subtopics()); }, true},
                     {8, !frozen, [&] { elsewhere(); }, true},
                     {12, question, [&] { edit(); }, true},
                     {5, question, [&] { removeSome(Question); }, true},
                     {8, count > 1,
                      [&] { strip.setCurrentIndex(strip.model()->index(pick(count), 0)); }, true},
                     {9, can("cmdLeft"), [&] { press("cmdLeft"); }, true},
                     {9, can("cmdRight"), [&] { press("cmdRight"); }, true}};
        int at = pick(339);
        const auto& action = *std::ranges::find_if(
            table, [&](const auto& entry) { return (at -= entry.weight) < 0; });
        if (action.can) {
            action.act();
            EXPECT_TRUE(!action.stays ||
                        before == QList<int>({chosen(topics()), chosen(subtopics())}));
        }
    }

    void checkWindow()
    {
        const auto shownRows = [](const ListBox& list) {
            QStringList texts;
            for (const ListBox::Row& row : list.rows()) {
                texts.append(u"%1|%2"_s.arg(row.itemData).arg(row.text));
            }
            return texts;
        };
        const int topic = chosen(topics());
        const int subtopic = chosen(subtopics());
        const int depth = !state.CurrentAssessmentNum ? 1 : !topic ? 4 : !subtopic ? 6 : 7;
        int governed = 0;
        for (const char* button :
             {"cmdAddAssessment", "cmdDeleteAssessment", "cmdAddNewQuestion", "cmdNewTopic",
              "cmdDeleteTopic", "cmdNewSubtopic", "cmdDeleteSubtopic"}) {
            EXPECT_EQ(enabled(button), governed++ < depth) << button;
        }

        QStringList names;
        for (int i = 0; i < assessments().listCount(); ++i) {
            names.append(assessments().itemText(i));
        }
        EXPECT_EQ(names, rows(u"SELECT AssessmentName FROM Assessments WHERE Available"_s));
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
            const QString answer = shownQuestion().section(u'|', 1);
            EXPECT_EQ(text("lblAnswer"), answer.isEmpty() ? u"This question has no answer."_s
                                                          : u"Answer: "_s + answer);
            auto* strip = control<PictureStrip>(window.get(), "lstPictures");
            EXPECT_EQ(strip->model()->rowCount(), count);
            EXPECT_EQ(strip->currentIndex().row(), position - 1);
            EXPECT_EQ(strip->isVisible(), count > 1);
        }
    }

    /// Nothing but what was to be has changed: no row has gone, and a changed one was available.
    void checkLibrary(const QStringList& before)
    {
        QStringList old = before;
        QStringList now = everything();
        for (const QString& row : before) {
            if (now.removeOne(row)) {
                old.removeOne(row);
            }
        }
        messages.verify();
        if (turned) {
            EXPECT_EQ(now.size(), old.size());
            EXPECT_LE(now.size(), 4);
        } else {
            EXPECT_EQ(now.size(), old.size() + come.size());
            EXPECT_LE(old.size(), changed);
        }
        for (qsizetype i = 0; i < old.size() && !turned; ++i) {
            EXPECT_EQ(old[i].section(u'|', 0, 1), now[i].section(u'|', 0, 1));
            EXPECT_EQ(old[i].back(), u'1');
        }
        for (const QString& name : come) {
            EXPECT_EQ(now.filter(u'|' + name + u'|').size(), come.count(name));
        }
        EXPECT_FALSE(frozen && !now.isEmpty());
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
    // What the last action must have done.
    QStringList come;    // names or answers of new rows
    int changed = 0;     // rows that may have changed
    bool turned = false; // a change was undone or made again
};

TEST_P(RandomActions, WindowAndLibraryAgree)
{
    open();
    for (int i = 0; i < 1500 && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        const QStringList before = everything();
        freeze(pick(12) == 0);
        come.clear();
        changed = 0;
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
