// From where a show begins, and what the library and the settings remember of it.

#include "library/test_pictures.h"
#include "selection/frmMain.h"
#include "selection/past_build.h"
#include "show/ShowGroup.h"
#include "show/show_fixture.h"
#include "show/show_run.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

namespace varnholt::test {
namespace {

TEST_F(ShowWindows, TheSelectionWindowShowsWhatWasDrawnAndReviewed)
{
    state.CurrentAssessmentNum = 1;
    frmMain window(services, state, owner);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    control<QRadioButton>(&window, "optSelectYes")->setChecked(true);
    control<QLineEdit>(&window, "txtQuestions")->setText(u"3"_s);
    QTest::keyClick(&window, Qt::Key_F5);
    QWidget* review = nullptr;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        review = top->objectName() == u"frmSelect"_s ? top : review;
    }
    ASSERT_TRUE(review);
    const auto judge = [&](const char* button) {
        QTest::qWait(80);
        static_cast<void>(review->grab());
        click(review, button);
    };
    // Nothing included: there is nothing to show, and the review goes on.
    messages.expectInform(u"No Questions"_s, u"There are no questions selected."_s);
    click(review, "cmdCreate");
    EXPECT_TRUE(review->isVisible());
    QTest::qWait(80);
    const QString excluded = control<QLabel>(review, "lblAnswer")->text().section(u' ', 1);
    judge("cmdExclude");
    judge("cmdInclude");
    QString shown;
    QTimer::singleShot(300, qApp, [&] {
        QWidget* pupilsWindow = QApplication::activeModalWidget();
        ASSERT_TRUE(pupilsWindow);
        shown = pupilsWindow->objectName();
        untilUsed();
        const auto used = [&] { return library.value(u"SELECT count(*) FROM PlusUses"_s).toInt(); };
        for (int i = 1; i <= 8; ++i) {
            static_cast<void>(QTest::qWaitFor([&] { return used() == i; }, i < 8 ? 20'000 : 100));
            QTest::keyClick(pupilsWindow, Qt::Key_S);
        }
        QTest::keyClick(pupilsWindow, Qt::Key_Escape);
    });
    click(review, "cmdCreate");
    EXPECT_EQ(shown, u"frmShowPupils"_s);
    EXPECT_TRUE(window.isEnabled());
    // Whatever came in its place, what the review left out did not.
    EXPECT_EQ(library.value(u"SELECT count(DISTINCT SOLIndex) || total(Answer = '%1') FROM "
                            "PlusUses JOIN Questions USING (SOLIndex)"_s.arg(excluded)),
              u"70.0"_s);
}

TEST_F(ShowWindows, ADrawThatWasKeptIsShownAndIsATestFromThenOn)
{
    NewTest record = recordOf(makeTest(3));
    for (TestItem& item : record.items) {
        item.pictureSha = PictureSha(library.picturePath(item.SOLIndex));
    }
    const std::int32_t kept = owner.keepTest(record);
    library.sql(u"UPDATE Questions SET Answer = 'new' WHERE SOLIndex = 2"_s);
    messages.expectYesNo(u"Past Tests"_s, u"3 answers have changed since. Use the new ones?"_s,
                         true, MessageBoxes::Answer::Yes);
    messages.expectYesNo(u"Show in Class"_s, u"End the show?"_s, true, MessageBoxes::Answer::Yes);
    QTimer::singleShot(400, qApp, [this] {
        untilUsed();
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
    });
    ShowTestAgain(nullptr, services, owner, owner.pastTests().list().front());
    EXPECT_EQ(library
                  .sql(u"SELECT TestID || Kind || total(i.Answer = q.Answer) FROM PlusTests "
                       "JOIN PlusTestItems i USING (TestID) JOIN Questions q USING (SOLIndex)"_s)
                  .join(u','),
              QString::number(kept) + u"23.0"_s);
    EXPECT_EQ(uses(), u"1:-"_s);
}

TEST_F(ShowWindows, WhatIsAskedOfAShowIsKeptForEachLibraryAndNonsenseIsNoClock)
{
    EXPECT_EQ(LoadShowWishes(library.folder()), ShowWishes());
    const ShowWishes wishes{45, ShowAnswers::AtTheEnd, true};
    ShowGroup group;
    group.setWishes(wishes);
    SaveShowWishes(library.folder(), group.wishes());
    EXPECT_EQ(LoadShowWishes(library.folder()), wishes);
    EXPECT_EQ(LoadShowWishes(u"/elsewhere"_s), ShowWishes());
    for (const auto& [text, seconds] :
         {std::pair(u""_s, 0), {u"0"_s, 0}, {u"5000"_s, 0}, {u"30"_s, 30}}) {
        control<QLineEdit>(&group, "txtShowSeconds")->setText(text);
        EXPECT_EQ(group.wishes().seconds, seconds);
    }
}

TEST_F(ShowWindows, ALibraryThatRemembersNothingIsShownFromAndSaidOnce)
{
    owner.close();
    owner.open(Connection::Access::ReadOnly);
    messages.expectInform(u"Show in Class"_s,
                          u"The question library can only be read: changes cannot be saved. The "
                          "test can be shown, but it will not be remembered."_s);
    QTimer::singleShot(300, qApp, [] {
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Space);
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
    });
    const ShowTest test = makeTest(2);
    EXPECT_TRUE(RunShow(nullptr, services, owner, test, recordOf(test)));
    EXPECT_EQ(library.value(u"SELECT count(*) FROM sqlite_master WHERE name = 'PlusUses'"_s),
              u"0"_s);
}

} // namespace
} // namespace varnholt::test
