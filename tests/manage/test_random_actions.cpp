#include "manage/PictureStrip.h"
#include "manage_test.h"

#include <QFile>
#include <QMenu>
#include <QPlainTextEdit>

#include <sqlite3.h>

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
        const char* buttons[] = {"cmdAddAssessment", "cmdNewTopic", "cmdNewSubtopic"};
        const QString name = someText();
        const QString stored = kind == Assessment ? name : name.trimmed();
        asksName(kind, name);
        if (!stored.isEmpty() && (frozen || stored.contains(u'\''))) {
            says(addingFails[kind]);
        } else if (!stored.isEmpty()) {
            saysAdded(kind, stored);
            come = {stored};
        }
        press(buttons[kind]);
    }
    void addQuestion()
    {
        if (rows(u"SELECT 1 FROM SubTopics WHERE Available AND AssessmentNum=%1"_s.arg(
                     state.CurrentAssessmentNum))
                .isEmpty()) {
            says(addingFails[Question]);
        }
        press("cmdAddNewQuestion");
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
                         messages.expectYesNo(dialog->windowTitle(),
                                              u"Close without adding the names that you have "
                                              "typed?"_s,
                                              true);
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

    /// One of the things that can be done now; what it must come to is in `come` and `changed`.
    void act()
    {
        const auto can = [this](const char* name) { return enabled(name) && shown(name); };
        const auto choose = [this](ListBox& list) {
            if (list.listCount() > 0) {
                list.setListIndex(pick(list.listCount()));
            }
        };
        const QList<int> before{chosen(topics()), chosen(subtopics())};
        int i = pick(330);
        const auto one = [&i](int weight) { return i >= 0 && (i -= weight) < 0; };
        if (one(70)) {
            choose(topics());
        } else if (one(90)) {
            choose(subtopics());
        } else if (one(4) && assessments().listCount() > 0) {
            assessments().setListIndex(pick(assessments().listCount()));
        } else if (one(4)) {
            open();
        } else if (one(4)) {
            add(Assessment);
        } else if (one(10) && can("cmdNewTopic")) {
            add(Topic);
        } else if (one(18) && can("cmdNewSubtopic")) {
            add(Subtopic);
        } else if (one(40) && can("cmdAddNewQuestion")) {
            addQuestion();
        } else if (one(1) && can("cmdDeleteAssessment")) {
            removeSome(Assessment);
        } else if (one(6) && can("cmdDeleteTopic")) {
            removeSome(Topic);
        } else if (one(8) && can("cmdDeleteSubtopic")) {
            removeSome(Subtopic);
        } else if (one(6) && can("cmdUndo")) {
            press("cmdUndo");
            turned = true;
        } else if (one(4) && can("cmdRedo")) {
            press("cmdRedo");
            turned = true;
        } else {
            // What leaves the place as it is.
            if (one(4) && can("cmdNewTopic")) {
                addSeveral(Topic);
            } else if (one(6) && can("cmdNewSubtopic")) {
                addSeveral(Subtopic);
            } else if (one(3) && assessments().listIndex() >= 0) {
                rename(assessments());
            } else if (one(5) && before[0] != 0) {
                rename(topics());
            } else if (one(5) && before[1] != 0) {
                rename(subtopics());
            } else if (can("cmdEditQuestion")) {
                const int count = text("lblQuestionCount").section(u' ', -1).toInt();
                const char* step = pick(2) ? "cmdLeft" : "cmdRight";
                if (one(12)) {
                    edit();
                } else if (one(5)) {
                    removeSome(Question);
                } else if (one(8) && count > 1) {
                    auto* strip = control<PictureStrip>(window.get(), "lstPictures");
                    strip->setCurrentIndex(strip->model()->index(pick(count), 0));
                } else if (can(step)) {
                    press(step);
                }
            }
            EXPECT_EQ(QList<int>({chosen(topics()), chosen(subtopics())}), before);
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
        const QString buttons =
            u"AddAssessment DeleteAssessment AddNewQuestion NewTopic DeleteTopic NewSubtopic "
            "DeleteSubtopic"_s;
        const int depth = !state.CurrentAssessmentNum ? 1 : !topic ? 4 : !subtopic ? 6 : 7;
        EXPECT_EQ(enabledButtons(), buttons.section(u' ', 0, depth - 1));

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
