#include "support/test_library.h"
#include "library/Library.h"
#include "support/fakes.h"
#include "support/file_size_limit.h"
#include "support/unprivileged.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

/// Failures show texts, not bytes.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace varnholt::test {
namespace {

using namespace Qt::StringLiterals;
using Result = UndoOutcome::Result;

constexpr Item question(std::int32_t key)
{
    return {ItemKind::Question, key};
}

/// Maths > Algebra > Linear with the questions 1 to 4.
class LibraryTest : public testing::Test
{
protected:
    LibraryTest() { files.addGenerated(u"Maths"_s, 1, 1, 4); }

    void open(std::vector<QString> scripts = PlusTables::ownScripts())
    {
        library.reset();
        library = std::make_unique<Library>(files.folder(), clock, std::move(scripts));
        library->open();
        QObject::connect(library.get(), &Library::changed, library.get(),
                         [this](const LibraryChange& change) { told = change.items; });
    }
    QString tables()
    {
        return files.value(u"SELECT count(*) FROM sqlite_master WHERE name LIKE 'Plus%'"_s);
    }
    QString steps() { return files.value(u"SELECT count(*) FROM PlusChanges"_s); }
    QString available(const char* table = "Questions")
    {
        return files.sql(u"SELECT Available FROM %1 ORDER BY rowid"_s.arg(QLatin1String(table)))
            .join(QString());
    }

    TestLibrary files;
    FakeClock clock;
    std::unique_ptr<Library> library;
    std::vector<Item> told;
};

TEST_F(LibraryTest, GetsItsTablesByTheFirstChangeOnly)
{
    open();
    EXPECT_TRUE(library->trash().entries().empty());
    EXPECT_FALSE(library->undoStep());
    EXPECT_EQ(library->undo().result, Result::NothingToDo);
    library->rememberAssessment(1);
    EXPECT_EQ(tables(), u"0"_s);

    // Also when that change fails in the end.
    EXPECT_THROW(library->editQuestion(1, 1, 1, u"it's"_s), DatabaseError);
    EXPECT_EQ(tables(), u"0"_s);
    library->editQuestion(1, 1, 1, u"x"_s);
    EXPECT_EQ(told, std::vector{question(1)});
    EXPECT_EQ(tables(), u"7"_s) << "six and an index";
    EXPECT_EQ(files.value(u"PRAGMA user_version"_s), u"1"_s);
    library->editQuestion(1, 1, 1, u"x"_s);
    EXPECT_EQ(steps(), u"1"_s) << "nothing changed, nothing to undo";
    EXPECT_EQ(library->undoStep()->kind, StepKind::Edit);
    EXPECT_EQ(library->undoStep()->subject, (NamedItem{question(1), u"x"_s}));
}

TEST_F(LibraryTest, BringsOlderTablesUpAndLeavesNewerOnesAlone)
{
    const QString second = u"CREATE TABLE PlusMore (A)"_s;
    open();
    library->deleteQuestion(1);
    auto scripts = PlusTables::ownScripts();
    const auto version = [this] { return files.value(u"SELECT Version FROM PlusInfo"_s); };
    scripts.push_back(second + u"; no statement"_s);
    open(scripts);
    EXPECT_THROW(library->deleteQuestion(2), DatabaseError);
    EXPECT_EQ(version(), u"1"_s);
    EXPECT_EQ(available(), u"0111"_s);
    scripts.back() = second;
    open(scripts);
    EXPECT_EQ(library->trash().entries().size(), 1U);
    int backups = 0;
    library->tables().beforeUpgrade = [&] { ++backups; };
    library->deleteQuestion(2);
    library->deleteQuestion(3);
    EXPECT_EQ(backups, 1);
    EXPECT_EQ(version(), u"2"_s);
    EXPECT_EQ(library->undo().result, Result::Done);

    // Without the second script this is the older program.
    open();
    EXPECT_TRUE(library->features().reason.startsWith(u"A newer version of Varnholt"_s));
    const QString before = steps();
    library->deleteQuestion(4);
    EXPECT_EQ(available(), u"0010"_s);
    EXPECT_EQ(steps(), before);
    EXPECT_EQ(library->undo().result, Result::Off);
    EXPECT_FALSE(library->undoStep());
    EXPECT_THROW(library->restore(question(4)), Error);
    EXPECT_THROW(library->rename({ItemKind::Topic, 1}, u"x"_s), Error);
    EXPECT_FALSE(library->trash().entries().front().deletedAt);
}

TEST_F(LibraryTest, ReadOnlyShowsItsTrashAndChangesNothing)
{
    VARNHOLT_SKIP_ON_WINDOWS("a folder cannot be closed to its owner");
    open();
    library->deleteQuestion(2);
    library->close();
    const QFile::Permissions read = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    QFile::setPermissions(files.databasePath(), read);
    QFile::setPermissions(files.folder(),
                          read | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther);
    {
        const Unprivileged nobody(files.folder());
        open();
        EXPECT_FALSE(library->features().on);
        EXPECT_EQ(library->trash().entries().front().item, question(2));
        EXPECT_TRUE(library->trash().entries().front().deletedAt);
        EXPECT_EQ(library->undo().result, Result::Off);
        EXPECT_THROW(library->deleteQuestion(1), DatabaseError);
        library.reset();
    }
    EXPECT_EQ(available(), u"1011"_s);
}

TEST_F(LibraryTest, UndoTellsWhatHasChangedSinceAndLeavesIt)
{
    open();
    const std::int32_t topic = library->addTopic(1, u"New"_s);
    const std::int32_t subtopic = library->addSubtopic(1, topic, u"Sub"_s);
    const auto inTheWay = [this](UndoOutcome outcome) {
        EXPECT_EQ(outcome.result, Result::ChangedSince);
        return outcome.inTheWay.empty() ? NamedItem{} : outcome.inTheWay.front();
    };
    // What another program has put there meanwhile would be lost from sight.
    const std::int32_t other = files.addQuestion(1, topic, subtopic, u"other's"_s, {});
    EXPECT_EQ(inTheWay(library->undo()), (NamedItem{question(other), u"other's"_s}));
    EXPECT_EQ(available("SubTopics"), u"11"_s);
    files.sql(u"UPDATE Questions SET Available = 0 WHERE SOLIndex = %1"_s.arg(other));
    EXPECT_EQ(library->undo().result, Result::Done);
    EXPECT_EQ(told, (std::vector<Item>{{ItemKind::Subtopic, subtopic}}));
    // And doing it again must not bring anything back under what has gone.
    files.sql(u"UPDATE Topics SET Available = 0 WHERE TopicID = %1"_s.arg(topic));
    EXPECT_EQ(inTheWay(library->redo()), (NamedItem{{ItemKind::Topic, topic}, u"New"_s}));
    EXPECT_EQ(inTheWay(library->undo()).item, (Item{ItemKind::Topic, topic}));
    files.sql(u"UPDATE Topics SET Available = 1 WHERE TopicID = %1"_s.arg(topic));

    library->editQuestion(1, 1, 1, u"mine"_s);
    files.sql(u"UPDATE Questions SET Answer = 'theirs' WHERE SOLIndex = 1"_s);
    EXPECT_EQ(inTheWay(library->undo()), (NamedItem{question(1), u"theirs"_s}));
    EXPECT_EQ(files.value(u"SELECT Answer FROM Questions WHERE SOLIndex = 1"_s), u"theirs"_s);
    EXPECT_FALSE(library->redoStep()) << "a new step ends what could be done again";
}

TEST_F(LibraryTest, TrashShowsPlacesAndDatesTheNewestFirst)
{
    files.sql(u"UPDATE Questions SET Available = 0, Answer = 'Old' WHERE SOLIndex = 3"_s);
    files.addGenerated(u"Physics"_s, 1, 1, 2);
    open();
    library->deleteQuestion(1);
    clock.now += 5000;
    library->deleteAssessment(2);
    const Trash trash = library->trash();
    QStringList seen;
    for (const TrashEntry& entry : trash.entries()) {
        const TrashTexts texts = trash.texts(entry.item);
        seen.append(u"%1 in %2 at %3"_s.arg(texts.name, texts.placeText())
                        .arg(entry.deletedAt.value_or(0)) +
                    (entry.goneWithAssessment ? u" with it"_s : QString()));
    }
    EXPECT_EQ(seen.join(u'\n').toStdString(),
              "A2 in Physics > Topic 1 > Subtopic 1.1 at 1700000005 with it\n"
              "A1 in Physics > Topic 1 > Subtopic 1.1 at 1700000005 with it\n"
              "Physics in  at 1700000005\n"
              "A1 in Maths > Topic 1 > Subtopic 1.1 at 1700000000\n"
              "Old in Maths > Topic 1 > Subtopic 1.1 at 0");
    EXPECT_EQ(trash.matching({}).size(), 5U);
    EXPECT_EQ(trash.matching(u" a1  PHYS"_s), std::vector<std::size_t>{1});
    EXPECT_EQ(trash.matching(u"old 1.1"_s), std::vector<std::size_t>{4});
}

TEST_F(LibraryTest, RestoreSaysWhatComesBackAndWhatCannot)
{
    open();
    library->deleteQuestion(1);
    library->deleteAssessment(1);
    const std::int32_t second = library->addAssessment(u"Maths"_s);
    const RestorePlan plan = library->planRestore(question(1));
    const NamedItem maths{{ItemKind::Assessment, 1}, u"Maths"_s};
    EXPECT_EQ(plan.alsoBack, std::vector{maths});
    EXPECT_EQ(plan.nameTaken, maths);
    for (const QString& name : {QString(), u"Maths"_s}) {
        EXPECT_EQ(library->restore(question(1), name), RestoreOutcome::NameTaken);
    }
    EXPECT_THROW(library->restore(question(1), u"it's"_s), Error);
    EXPECT_EQ(library->restore(question(1), u"Maths 1"_s), RestoreOutcome::Done);
    EXPECT_EQ(files.sql(u"SELECT AssessmentName, Available FROM Assessments"_s).join(u' '),
              u"Maths 1|1 Maths|1"_s);
    EXPECT_EQ(library->undoStep()->subject.item, question(1));
    EXPECT_EQ(library->undo().result, Result::Done);
    EXPECT_EQ(available("Assessments"), u"01"_s);

    EXPECT_EQ(library->restore({ItemKind::Assessment, second}), RestoreOutcome::NothingToDo);
    EXPECT_EQ(library->restore(question(99)), RestoreOutcome::NothingToDo);
    files.sql(u"UPDATE Questions SET SubTopicNum = 77 WHERE SOLIndex = 1"_s);
    EXPECT_EQ(library->restore(question(1), u"n"_s), RestoreOutcome::PlaceMissing);
}

TEST_F(LibraryTest, AFailedPictureLeavesTheRowAndAnOldOneIsSetAside)
{
    open();
    const auto write = [](const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) << path.toStdString();
    };
    QFile old(files.folder() + u"/Files/5.JPG"_s);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.close();
    EXPECT_EQ(library->addQuestion({1, 1, 1}, u"a"_s, write), 5);
    EXPECT_EQ(QDir(files.folder() + u"/Files"_s)
                  .entryList(QDir::Files, QDir::Name | QDir::IgnoreCase)
                  .join(u' ')
                  .toLower(),
              u"5.jpg 5.jpg.bak"_s);
    EXPECT_THROW(
        library->addQuestion({1, 1, 1}, u"b"_s, [](const QString&) { throw Error(u"full."_s); }),
        Error);
    EXPECT_EQ(told, std::vector{question(6)});
    EXPECT_THROW(library->addQuestion({1, 1, 1}, u"c"_s,
                                      [&](const QString& path) {
                                          write(path);
                                          throw Error(u"late."_s);
                                      }),
                 Error);
    EXPECT_EQ(available(), u"111111"_s) << "the row goes where a picture of unknown content stays";
    files.sql(u"CREATE TRIGGER t BEFORE INSERT ON PlusChanges BEGIN SELECT RAISE(ABORT, 'full');"
              "END"_s);
    EXPECT_THROW(library->addQuestion({1, 1, 1}, u"d"_s, write), Error);
    EXPECT_FALSE(QFile::exists(files.picturePath(7))) << "nor does the picture without its row";
    files.sql(u"DROP TRIGGER t"_s);
    EXPECT_EQ(library->undo().result, Result::Done);
    EXPECT_EQ(available(), u"111110"_s);
}

TEST_F(LibraryTest, AFailedImportKeepsItsRowsUnderADeletedAssessment)
{
    open();
    ImportPlan plan{
        u"In"_s, {{u"T"_s}}, {{0, u"S"_s}}, {{0, 0, u"1"_s}, {std::nullopt, 0, u"2"_s}}};
    std::vector<std::int32_t> placed;
    ImportSteps steps;
    steps.placePicture = [&](std::size_t, std::int32_t key) { placed.push_back(key); };
    EXPECT_EQ(library->apply(plan, steps).questions, 2U);
    EXPECT_EQ(placed, (std::vector{5, 6}));
    EXPECT_EQ(files.sql(u"SELECT * FROM Questions WHERE SOLIndex > 4"_s).join(u' '),
              u"5|2|2|1|2|1 6|0|2|2|2|1"_s);
    EXPECT_EQ(library->undoStep()->kind, StepKind::Import);
    EXPECT_EQ(told.size(), 5U);

    steps.progress = [](std::size_t done, std::size_t) {
        if (done == 4) {
            throw Cancelled();
        }
    };
    EXPECT_THROW(library->apply(plan, steps), Cancelled);
    EXPECT_EQ(available("Assessments"), u"11"_s);
    steps.progress = nullptr;
    steps.syncPictures = [] { throw Error(u"The disk is full."_s); };
    try {
        library->apply(plan, steps);
        ADD_FAILURE() << "no failure";
    } catch (const ImportFailure& failure) {
        EXPECT_TRUE(failure.rowsStay);
        EXPECT_EQ(failure.message(), u"The disk is full."_s);
    }
    EXPECT_EQ(available("Assessments") + available(), u"11011111111"_s);
    EXPECT_EQ(library->undoStep()->subject.item, (Item{ItemKind::Assessment, 2}));
}

} // namespace
} // namespace varnholt::test
