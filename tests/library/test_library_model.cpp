// Somebody who does anything in any order, with undo and redo, restarts and kills, held against
// a model in memory. VARNHOLT_MODEL_COMMANDS says how many commands.

#include "library/library_model.h"
#include "support/fakes.h"
#include "support/test_library.h"

#include <QFile>

#include <gtest/gtest.h>

#include <csignal>
#include <random>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

namespace varnholt::test {
namespace {

using namespace Qt::StringLiterals;

/// One command for both: what is done to the library and what the model makes of it.
struct Command
{
    std::function<void(Library&)> real;
    std::function<void(LibraryModel&)> model;
};

class RandomCommands : public testing::Test
{
protected:
    RandomCommands()
    {
        files.addGenerated(u"Old"_s, 3, 2, 4);
        files.addGenerated(u"Gone"_s, 2, 2, 2);
        files.sql(u"UPDATE Questions SET Available = 0 WHERE SOLIndex % 5 = 0;"
                  "UPDATE Assessments SET Available = 0 WHERE AssessmentNum = 2"_s);
        open();
        model.rows = readRows(library->connection());
    }

    void open()
    {
        library.reset();
        library = std::make_unique<Library>(files.folder(), clock);
        library->open();
    }

    int pick(std::size_t n)
    {
        return std::uniform_int_distribution(0, static_cast<int>(n) - 1)(generator);
    }
    std::optional<Item> anyOf(const std::vector<Item>& items)
    {
        return items.empty() ? std::nullopt
                             : std::optional(items[static_cast<std::size_t>(pick(items.size()))]);
    }
    /// From a few, so that names meet again; one with quotes that are no apostrophe.
    QString someName()
    {
        return pick(9) == 0 ? u"\"π\\\" %1"_s.arg(pick(3)) : QString::number(pick(40));
    }
    ItemKind someKind() { return static_cast<ItemKind>(1 + pick(4)); }

    static void writePicture(const QString& path) { QFile(path).open(QIODevice::WriteOnly); }

    std::optional<Command> addCommand(ItemKind kind)
    {
        const QString name = someName();
        std::optional<Item> parent;
        Filing place;
        if (kind != ItemKind::Assessment) {
            parent = anyOf(model.items(static_cast<ItemKind>(static_cast<int>(kind) - 1)));
            if (!parent) {
                return std::nullopt;
            }
            place = model.rows.at(*parent).place;
            (kind == ItemKind::Topic      ? place.AssessmentNum
             : kind == ItemKind::Subtopic ? place.TopicID
                                          : place.SubtopicNum) = parent->key;
        }
        const auto real = [kind, name, place](Library& l) {
            switch (kind) {
            case ItemKind::Assessment:
                l.addAssessment(name);
                break;
            case ItemKind::Topic:
                l.addTopic(place.AssessmentNum, name);
                break;
            case ItemKind::Subtopic:
                l.addSubtopic(place.AssessmentNum, place.TopicID, name);
                break;
            default:
                l.addQuestion(place, name, writePicture);
            }
        };
        return Command{real, [=](LibraryModel& m) { m.add(kind, name, place); }};
    }

    std::optional<Command> deleteCommand(ItemKind kind)
    {
        const std::optional<Item> item = anyOf(model.items(kind));
        if (!item || (kind != ItemKind::Assessment && !model.isBare(*item))) {
            return std::nullopt;
        }
        const std::int32_t key = item->key;
        const auto real = [kind, key](Library& l) {
            switch (kind) {
            case ItemKind::Assessment:
                return l.deleteAssessment(key);
            case ItemKind::Topic:
                return l.deleteTopic(key);
            case ItemKind::Subtopic:
                return l.deleteSubtopic(key);
            default:
                return l.deleteQuestion(key);
            }
        };
        return Command{real, [item](LibraryModel& m) { m.rows[*item].available = false; }};
    }

    std::optional<Command> editCommand(ItemKind kind)
    {
        const std::optional<Item> item = anyOf(model.items(kind));
        if (!item) {
            return std::nullopt;
        }
        const QString name = someName();
        if (kind != ItemKind::Question) {
            return Command{[=](Library& l) { l.rename(*item, name); },
                           [=](LibraryModel& m) { m.rows[*item].name = name; }};
        }
        Filing place = model.rows.at(*item).place;
        const Item target = *anyOf(model.items(ItemKind::Subtopic));
        if (const LibraryModel::Row& row = model.rows.at(target);
            row.place.AssessmentNum == place.AssessmentNum) {
            place = row.place;
            place.SubtopicNum = target.key;
        }
        return Command{
            [=](Library& l) { l.editQuestion(item->key, place.TopicID, place.SubtopicNum, name); },
            [=](LibraryModel& m) {
                m.rows[*item].name = name;
                m.rows[*item].place = place;
            }};
    }

    std::optional<Command> restoreCommand(ItemKind kind)
    {
        const std::optional<Item> item = anyOf(model.items(kind, false));
        if (!item) {
            return std::nullopt;
        }
        const RestorePlan plan = library->planRestore(*item);
        std::vector<Item> back = LibraryModel::above(*item, model.rows.at(*item).place);
        back.push_back(*item);
        // Whose name another one has by now.
        const Item assessment = back.front();
        bool taken = false;
        for (const Item other : model.items(ItemKind::Assessment)) {
            taken = taken || (!model.rows.at(assessment).available &&
                              model.rows.at(other).name == model.rows.at(assessment).name);
        }
        EXPECT_EQ(plan.nameTaken.has_value(), taken);
        const QString newName = taken ? u"free %1"_s.arg(pick(1'000'000)) : QString();
        if (taken) {
            EXPECT_EQ(library->restore(*item), RestoreOutcome::NameTaken);
        }
        return Command{[=](Library& l) { l.restore(*item, newName); },
                       [=](LibraryModel& m) {
                           for (const Item row : back) {
                               m.rows[row].available = true;
                           }
                           if (taken) {
                               m.rows[assessment].name = newName;
                           }
                       }};
    }

    Command importCommand()
    {
        ImportPlan plan{someName(), {{someName()}, {someName()}}, {}, {}};
        plan.subtopics = {{1, someName()}, {0, someName()}};
        plan.questions.resize(static_cast<std::size_t>(pick(6)), {1, 0, u"imported"_s});
        return {
            [this, plan](Library& l) {
                l.apply(plan, {[this](std::size_t, std::int32_t key) {
                                   writePicture(files.picturePath(key));
                               },
                               {},
                               {}});
            },
            [plan](LibraryModel& m) {
                const std::int32_t a = m.add(ItemKind::Assessment, plan.AssessmentName, {}).key;
                std::vector<std::int32_t> t;
                for (const ImportedTopic& topic : plan.topics) {
                    t.push_back(m.add(ItemKind::Topic, topic.Topic, {a}).key);
                }
                std::vector<std::int32_t> s;
                for (const ImportedSubtopic& sub : plan.subtopics) {
                    s.push_back(m.add(ItemKind::Subtopic, sub.SubTopic, {a, t[*sub.topic]}).key);
                }
                for (const ImportedQuestion& q : plan.questions) {
                    m.add(ItemKind::Question, q.Answer, {a, t[*q.topic], s[*q.subtopic]});
                }
            }};
    }

    std::optional<Command> someCommand()
    {
        const int which = pick(100);
        return which < 40   ? addCommand(someKind())
               : which < 62 ? deleteCommand(someKind())
               : which < 80 ? editCommand(someKind())
               : which < 97 ? restoreCommand(someKind())
                            : std::optional(importCommand());
    }

    void act()
    {
        const int which = pick(100);
        if (which < 3) {
            open();
        } else if (which < 35) {
            const bool back = pick(5) < 3;
            const UndoOutcome outcome = back ? library->undo() : library->redo();
            ASSERT_EQ(outcome.result == UndoOutcome::Result::Done,
                      back ? model.undo() : model.redo());
            ASSERT_TRUE(outcome.inTheWay.empty());
        } else if (const std::optional<Command> command = someCommand()) {
            if (which < 45) {
                killedIn(*command);
            } else {
                command->real(*library);
                model.change([&] { command->model(model); });
            }
        }
    }

    /// Another program does it and is killed in the middle: it has been done or it has not.
    void killedIn(const Command& command)
    {
        library.reset();
        const int statements = pick(12);
        const pid_t child = fork();
        if (child == 0) {
            static int left;
            left = statements;
            sqlite3_auto_extension(reinterpret_cast<void (*)()>(&attachKiller));
            killAt = &left;
            Library other(files.folder(), clock);
            other.open();
            armed = true;
            command.real(other);
            raise(SIGKILL);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
        open();
        for (const auto& [item, row] : readRows(library->connection())) {
            EXPECT_TRUE(item.kind != ItemKind::Question || item.key <= withoutPicture ||
                        QFile::exists(files.picturePath(item.key)));
        }
        if (differences().isEmpty()) {
            ++undoneByKill;
            return;
        }
        ++doneBeforeKill;
        model.change([&] { command.model(model); });
        EXPECT_EQ(differences().join(u'\n').toStdString(), "");
    }
    static int attachKiller(sqlite3* database, char**, const void*)
    {
        return sqlite3_trace_v2(
            database, SQLITE_TRACE_STMT,
            [](unsigned, void*, void*, void*) {
                if (armed && (*killAt)-- == 0) {
                    raise(SIGKILL);
                }
                return 0;
            },
            nullptr);
    }

    QStringList differences()
    {
        LibraryModel real;
        real.rows = readRows(library->connection());
        const QStringList expected = model.dump();
        const QStringList seen = real.dump();
        QStringList lines;
        for (qsizetype i = 0; i < std::max(expected.size(), seen.size()); ++i) {
            if (expected.value(i) != seen.value(i)) {
                lines.append(u"expected %1, seen %2"_s.arg(expected.value(i), seen.value(i)));
            }
        }
        return lines;
    }

    /// The questions there are at first have no pictures.
    static constexpr std::int32_t withoutPicture = 32;
    static inline int* killAt = nullptr;
    static inline bool armed = false;

    TestLibrary files;
    FakeClock clock;
    std::unique_ptr<Library> library;
    LibraryModel model;
    std::mt19937 generator{7};
    int undoneByKill = 0;
    int doneBeforeKill = 0;
};

TEST_F(RandomCommands, LeaveTheRowsOfTheModelAndCanAllBeUndone)
{
    const LibraryModel::Rows start = model.rows;
    const int given = qEnvironmentVariableIntValue("VARNHOLT_MODEL_COMMANDS");
    const int commands = given > 0 ? given : 300;
    for (int i = 1; i <= commands; ++i) {
        SCOPED_TRACE(i);
        clock.now += 1000;
        act();
        if (i % 10 == 0) {
            ASSERT_EQ(differences().join(u'\n').toStdString(), "");
        }
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_GT(undoneByKill, 0);
    EXPECT_GT(doneBeforeKill, 0);

    // A name with an apostrophe is refused and leaves nothing.
    EXPECT_THROW(library->addAssessment(u"it's"_s), DatabaseError);
    EXPECT_THROW(library->rename({ItemKind::Assessment, 1}, u"it's"_s), Error);
    EXPECT_EQ(differences().join(u'\n').toStdString(), "");

    open();
    while (library->undo().result == UndoOutcome::Result::Done) {
        model.undo();
    }
    EXPECT_EQ(differences().join(u'\n').toStdString(), "");
    for (const auto& entry : readRows(library->connection())) {
        const auto old = start.find(entry.first);
        if (old != start.end()) {
            EXPECT_EQ(LibraryModel::describe(entry), LibraryModel::describe(*old));
        } else {
            EXPECT_FALSE(entry.second.available) << "only what was added since is left, as gone";
        }
    }
    while (library->redo().result == UndoOutcome::Result::Done) {
        model.redo();
    }
    EXPECT_TRUE(model.future.empty());
    EXPECT_EQ(differences().join(u'\n').toStdString(), "");
}

} // namespace
} // namespace varnholt::test
