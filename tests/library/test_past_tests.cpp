#include "library/Library.h"
#include "library/old_pictures.h"
#include "library/test_pictures.h"
#include "library/test_versions.h"
#include "support/fakes.h"
#include "support/test_library.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <set>

namespace varnholt::test {
namespace {

using namespace Qt::StringLiterals;

class PastTestsTest : public testing::Test
{
protected:
    PastTestsTest()
    {
        files.addGenerated(u"Maths"_s, 1, 1, 4, true);
        library.open();
    }

    NewTest test(const QString& name, const QString& className, std::vector<std::int32_t> keys)
    {
        NewTest result{name, 1, className, 77, {}, {}};
        for (const std::int32_t key : keys) {
            result.items.push_back({static_cast<std::int32_t>(2 * result.items.size() + 1), key,
                                    u"A%1"_s.arg(key), u"Topic"_s,
                                    PictureSha(files.picturePath(key))});
        }
        return result;
    }
    std::int32_t made(const NewTest& test)
    {
        clock.now += 1000;
        return library.recordTest(test, TestKind::Slides);
    }
    QString names()
    {
        QStringList result;
        for (const PastTest& test : library.pastTests().list()) {
            result.append(test.name);
        }
        return result.join(u',');
    }
    /// How often each question was used with a class.
    QString uses(std::int32_t classId)
    {
        QString result;
        for (int key = 1; key <= 4; ++key) {
            result += QString::number(library.useBook(1).of(key, classId, clock.now).uses);
        }
        return result;
    }

    TestLibrary files;
    FakeClock clock;
    Library library{files.folder(), clock};
};

TEST_F(PastTestsTest, OnlyWhatIsCompleteIsListedAndCountsAsUsed)
{
    EXPECT_TRUE(library.pastTests().list().empty() && library.pastTests().classes().empty());
    EXPECT_EQ(library.pastTests().classNamed(u"10B"_s), 0);
    NewTest first = test(u"Rosa's test"_s, u" 10B "_s, {3, 1});
    first.options = {false, true, 2, 9, true, 5, {true, true, false, true, 30, true}};
    const std::int32_t key = made(first);
    EXPECT_EQ(library.pastTests().items(key), first.items);
    const PastTest listed = library.pastTests().list().front();
    EXPECT_EQ(listed.options, first.options);
    EXPECT_EQ(listed.name + listed.className, u"Rosa's test10B"_s);
    EXPECT_EQ(std::tuple(listed.madeAt, listed.seed, listed.questions, listed.AssessmentNum),
              std::tuple(clock.now / 1000, 77U, 2, 1));
    EXPECT_EQ(uses(0), u"0000"_s) << "it says that it was not used";
    library.setTestUsed(key, true);

    clock.now += 5000;
    NewTest keptTest = test(u"kept"_s, u"10b"_s, {2});
    const std::int32_t kept = library.keepTest(keptTest);
    EXPECT_EQ(names(), u"kept,Rosa's test"_s);
    EXPECT_EQ(library.pastTests().classes().size(), 1U) << "the same class in any case";
    EXPECT_EQ(uses(1), u"1010"_s);
    keptTest.items.front().answer = u"corrected"_s;
    library.recordTest(kept, TestKind::Paper, keptTest.items);
    EXPECT_EQ(library.pastTests().items(kept), keptTest.items);
    EXPECT_EQ(library.pastTests().list(1).front().kind, TestKind::Paper);
    made(test(u"nobody"_s, {}, {1}));
    EXPECT_EQ(uses(1) + u'/' + uses(0), u"1110/2110"_s);
    EXPECT_EQ(library.pastTests().list(1).front().name, u"nobody"_s);
    EXPECT_EQ(library.useBook(1).of(1, 0, clock.now).lastClass, 0);
    EXPECT_EQ(library.undoStep()->subject.name, u"Rosa's test"_s) << "no use is a step";

    const std::int32_t show = library.beginShow(test(u"shown"_s, u"10B"_s, {4, 3}));
    EXPECT_TRUE(names().startsWith(u"shown,"_s) && library.pastTests().uses(show).empty());
    const std::int64_t use = library.recordUse(show, 4);
    EXPECT_EQ(library.pastTests().uses(show), (std::map{std::pair(4, TestUse{use, 4, {}})}));
    EXPECT_EQ(uses(1), u"1111"_s);
    EXPECT_THROW(library.recordUse(99, 4), Error);
}

TEST_F(PastTestsTest, AreRecordedWholeOrNotAtAll)
{
    const std::int32_t kept = library.keepTest(test(u"kept"_s, {}, {1}));
    files.sql(
        u"CREATE TRIGGER a BEFORE INSERT ON PlusUses BEGIN SELECT RAISE(ABORT, 'full'); END"_s);
    EXPECT_THROW(library.recordTest(test(u"new"_s, u"10A"_s, {1}), TestKind::Slides), Error);
    EXPECT_THROW(library.recordTest(kept, TestKind::Slides, test({}, {}, {1}).items), Error);
    EXPECT_EQ(names() + files.value(u"SELECT count(*) FROM PlusTestItems"_s), u"kept1"_s);
    EXPECT_EQ(library.pastTests().list().front().kind, TestKind::Kept);
    EXPECT_TRUE(library.pastTests().classes().empty());
}

TEST_F(PastTestsTest, WhatATeacherDoesToThemCanBeUndone)
{
    const Item first{ItemKind::Test, made(test(u"first"_s, u"10A"_s, {1, 2}))};
    const Item tenA{ItemKind::Class, 1};
    const struct
    {
        std::function<void()> change;
        StepKind kind;
        QString after;
    } steps[] = {
        {[&] { library.rename(first, u" Rosa's "_s); }, StepKind::Rename, u"Rosa's 10A 1100"_s},
        {[&] { library.setTestUsed(first.key, false); }, StepKind::Edit, u"Rosa's 10A 0000"_s},
        {[&] { library.rename(tenA, u"11A"_s); }, StepKind::Rename, u"Rosa's 11A 0000"_s},
        {[&] { library.deleteClass(1); }, StepKind::Delete, u"Rosa's  0000"_s},
        {[&] { library.deleteTest(first.key); }, StepKind::Delete, u"  0000"_s},
        {[&] { library.restore(first); }, StepKind::Restore, u"Rosa's  0000"_s},
    };
    const auto state = [&] {
        const auto classes = library.pastTests().classes();
        return names() + u' ' + (classes.empty() ? QString() : classes.front().ClassName) + u' ' +
               uses(1);
    };
    QStringList states{state()};
    for (const auto& step : steps) {
        step.change();
        EXPECT_EQ(state(), step.after);
        EXPECT_EQ(library.undoStep()->kind, step.kind);
        states.append(state());
    }
    EXPECT_EQ(library.trash().entries().size(), 1U) << "the class";
    for (const auto& wanted : {states, QStringList(states.rbegin(), states.rend())}) {
        const bool undo = &wanted != &states && wanted.front() == states.back();
        for (qsizetype i = 1; undo && i < wanted.size(); ++i) {
            EXPECT_EQ(library.undo().result, UndoOutcome::Result::Done);
            EXPECT_EQ(state(), wanted[i]);
        }
    }
    EXPECT_EQ(states.front(), state());
    EXPECT_THROW(library.rename(tenA, u"  "_s), Error);
    EXPECT_THROW(library.addClass({}), Error);
    library.deleteClass(tenA.key);
    const Item other{ItemKind::Class, library.addClass(u"10a"_s)};
    EXPECT_THROW(library.restore(tenA), Error);
    library.rename(other, u"10B"_s);
    library.restore(tenA);
    EXPECT_THROW(library.rename(other, u" 10A"_s), Error);
    library.rename(tenA, u"10a"_s);
    // Somebody types the name of a class that has just been deleted.
    library.deleteClass(other.key);
    library.deleteTest(library.beginShow(test({}, u"10b"_s, {})));
    library.undo();
    const UndoOutcome refused = library.undo();
    EXPECT_EQ(refused.result, UndoOutcome::Result::NameTaken);
    EXPECT_EQ(refused.inTheWay.front().name, u"10b"_s);
    EXPECT_EQ(library.pastTests().classes().size(), 2U);
    library.deleteTest(first.key);
    EXPECT_EQ(library.trash().texts(first).placeText(), u"Maths"_s);
    EXPECT_EQ(library.trash().matching(u"first maths"_s).size(), 1U);
    EXPECT_EQ(uses(0), u"1100"_s) << "a test in the trash was used all the same";

    library.close();
    library.open(Connection::Access::ReadOnly);
    EXPECT_EQ(library.pastTests().classes().size(), 2U);
    EXPECT_EQ(uses(1), u"1100"_s);
    EXPECT_THROW(library.keepTest(test(u"x"_s, {}, {1})), Error);
}

TEST_F(PastTestsTest, OutcomesAreReplacedClearedAndUndone)
{
    const std::int32_t key = made(test(u"first"_s, u"10A"_s, {1, 2, 3}));
    auto noted = library.pastTests().uses(key);
    const auto outcomes = [&] {
        QString result;
        for (int i = 1; i <= 3; ++i) {
            const UseSummary use = library.useBook(1).of(i, 1, clock.now);
            EXPECT_EQ(use.outcome, library.pastTests().uses(key).at(i).outcome);
            result += QString::number(static_cast<int>(use.outcome)) + (use.dueAt ? u"!"_s : u""_s);
        }
        return result;
    };
    library.recordOutcome({noted[1].UseID, noted[2].UseID}, Outcome::Few);
    library.recordOutcome({noted[2].UseID}, Outcome::Most);
    library.recordOutcome({noted[3].UseID, noted[1].UseID}, Outcome::Half);
    EXPECT_EQ(outcomes(), u"2!32!"_s);
    EXPECT_EQ(library.undoStep()->subject.name, u"A3"_s) << "the answer of question 3";
    library.recordOutcome({noted[1].UseID}, Outcome::Unknown);
    EXPECT_EQ(outcomes(), u"032!"_s);
    for (const auto& before : {u"2!32!"_s, u"1!30"_s, u"1!1!0"_s, u"000"_s}) {
        EXPECT_EQ(library.undo().result, UndoOutcome::Result::Done);
        EXPECT_EQ(outcomes(), before);
    }
    library.redo();
    EXPECT_EQ(outcomes(), u"1!1!0"_s);
    library.setTestUsed(made(test(u"not used"_s, u"10A"_s, {1})), false);
    EXPECT_EQ(library.pastTests().newestUse(1, 1), noted[1].UseID);
}

TEST_F(PastTestsTest, FindsThePictureThatTheClassSaw)
{
    const TestItem item = test({}, {}, {2}).items.front();
    const QString own = files.picturePath(2);
    EXPECT_EQ(FindTestPicture(files.folder(), item), own);
    const QString kept = OldPictureFile(files.folder(), 2, MarkOfSha(item.pictureSha));
    EXPECT_EQ(kept, files.folder() + u"/Files/Old/2-"_s +
                        QString::fromLatin1(item.pictureSha.toHex().left(8)) + u".jpg"_s);
    const QString backup = files.folder() + u"/Backups/Pictures/"_s +
                           QString::fromLatin1(item.pictureSha.toHex()) + u".jpg"_s;
    QDir(files.folder()).mkpath(u"Backups/Pictures"_s);
    QDir(files.folder()).mkpath(u"Files/Old"_s);
    QFile::copy(own, backup);
    QFile::rename(own, kept);
    QFile::copy(files.picturePath(1), own);
    EXPECT_EQ(FindTestPicture(files.folder(), item), kept);
    QFile::remove(kept);
    QFile::copy(files.picturePath(1), kept); // of that name, but another picture
    EXPECT_EQ(FindTestPicture(files.folder(), item), backup);
    QFile::remove(backup);
    EXPECT_FALSE(QFile::exists(FindTestPicture(files.folder(), item)));
    TestItem unknown = item;
    unknown.pictureSha.clear();
    EXPECT_EQ(FindTestPicture(files.folder(), unknown), own);

    std::vector<TestItem> items = test({}, {}, {1, 2, 3}).items;
    library.editQuestion(2, 1, 1, u"new"_s);
    items.push_back({9, 99, u"gone"_s, {}, {}});
    ASSERT_EQ(ChangedAnswers(library.connection(), items).size(), 1U);
    EXPECT_EQ(ChangedAnswers(library.connection(), items).front().position, 3);
    EXPECT_EQ(ChangedAnswers(library.connection(), items).front().answer, u"new"_s);
}

TEST(TestVersions, AreDistinctOrdersAndTheSameEverywhere)
{
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        const int questions = static_cast<int>(seed % 30);
        std::set<std::vector<int>> seen;
        int versions = 1;
        for (int version = 0; version <= mostVersions + 1; ++version) {
            std::vector<int> drawn(static_cast<std::size_t>(questions));
            std::iota(drawn.begin(), drawn.end(), 0);
            const auto order = version == 0 ? drawn : VersionOrder(seed, version, questions);
            if (!order) {
                versions = version;
                break;
            }
            EXPECT_TRUE(std::is_permutation(order->begin(), order->end(), drawn.begin()));
            EXPECT_TRUE(seen.insert(*order).second);
        }
        EXPECT_EQ(versions, questions < 2 ? 1 : questions == 2 ? 2 : 1 + mostVersions);
    }
    QStringList lines;
    for (const std::uint64_t seed : {std::uint64_t{0}, std::uint64_t{1}, ~std::uint64_t{0}}) {
        for (int version = 1; version <= mostVersions; ++version) {
            QStringList line;
            const auto order = VersionOrder(seed, version, 12);
            for (const int place : order.value()) {
                line.append(QString::number(place));
            }
            lines.append(line.join(u' '));
        }
    }
    QFile golden(QStringLiteral(VARNHOLT_GOLDEN_VERSIONS));
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(golden.readAll()).trimmed(), lines.join(u'\n'));
}

} // namespace
} // namespace varnholt::test
