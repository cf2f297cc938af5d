// The two windows of a show on screens that are not there.

#include "show/ShowPictures.h"
#include "show/show_fixture.h"
#include "support/test_files.h"

#include <QApplication>
#include <QFile>
#include <QLabel>

namespace varnholt::test {
namespace {

TEST_F(ShowWindows, NoPixelOfThePupilsWindowDependsOnTheAnswerBeforeItIsAskedFor)
{
    const auto film = [&](const QString& answer, const ShowWishes& wishes, const QString& keys) {
        std::vector<QImage> pictures;
        clock.now = 0;
        const auto work = [&](frmShow& window) {
            settle(window);
            for (const QChar key : u" "_s + keys) {
                type(window, key == u' ' ? QString() : QString(key));
                pictures.push_back(pupils(window).grab().toImage());
            }
            pictures.push_back(window.grab().toImage());
        };
        show(makeTest(5, answer), work, wishes);
        return pictures;
    };
    const QString keys = u"T+2BBWWSBB4"_s + QChar(Qt::Key_Space) + u"A"_s;
    const auto shortOne = film(u"B"_s, {}, keys);
    const auto longOne = film(u"quite another and much longer answer"_s, {}, keys);
    const std::size_t asked = shortOne.size() - 2;
    for (std::size_t i = 0; i < shortOne.size(); ++i) {
        EXPECT_EQ(shortOne[i] == longOne[i], i < asked) << i;
    }
    EXPECT_EQ(shortOne[0].size(), QSize(640, 360));
    EXPECT_NE(shortOne[0], shortOne[asked - 1]);
}

TEST_F(ShowWindows, TheLibraryKnowsOfEachUseAndOutcomeBeforeTheNextKey)
{
    removeFile(library.picturePath(3));
    show(makeTest(5), [&](frmShow& window) {
        settle(window);
        EXPECT_EQ(library.value(u"SELECT Kind || TestName FROM PlusTests"_s), u"2Test"_s);
        EXPECT_EQ(uses(), u"1:-"_s);
        type(window, u"2"_s);
        EXPECT_EQ(uses(), u"1:-"_s);
        clock.now += Show::outcomeWaitMs;
        QTest::qWait(250);
        EXPECT_EQ(uses(), u"1:2 2:-"_s);
        // The third has no picture: another one, which takes its place in the test as well.
        type(window, u"3 "_s);
        EXPECT_EQ(uses(), u"1:2 2:3"_s);
        auto* note = control<QLabel>(&window, "lblNote");
        EXPECT_TRUE(note->text().startsWith(
            u"The picture file is missing from this picture.  Please delete this question."_s));
        type(window, u"S"_s);
        EXPECT_EQ(uses(), u"1:2 2:3 6:-"_s);
        EXPECT_TRUE(note->text().isEmpty());
        // A key that is held runs through nothing.
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, {}, true);
        QApplication::sendEvent(&window, &held);
        settle(window);
        EXPECT_EQ(uses(), u"1:2 2:3 6:-"_s);
        // Back and once more is no other use, and she may think better of it.
        QTest::keyClick(&window, Qt::Key_Left);
        type(window, u"1 "_s);
        EXPECT_EQ(uses(), u"1:2 2:1 6:-"_s);
        // The last word before the end.
        QTest::keyClick(&window, Qt::Key_3);
        QTest::keyClick(&window, Qt::Key_Space);
    });
    EXPECT_EQ(uses(), u"1:2 2:1 6:3"_s);
    EXPECT_EQ(library.value(u"SELECT count(DISTINCT Step) FROM PlusChanges"_s), u"4"_s);
    EXPECT_EQ(library.sql(u"SELECT SOLIndex, length(PictureSha) FROM PlusTestItems"_s).join(u' '),
              u"1|32 2|32 6|32 4|32 5|32"_s);
}

TEST_F(ShowWindows, TheWindowsFollowTheScreens)
{
    const std::vector<ShowScreen> both = desktop.list;
    const auto places = [&](frmShow& window) {
        const auto place = [](QWidget& w) {
            return w.isVisible() ? QString::number(w.geometry().width()) : u"-"_s;
        };
        settle(window);
        return place(window) + u' ' + place(pupils(window));
    };
    const auto change = [&](const std::vector<ShowScreen>& screens) {
        desktop.list = screens;
        Q_EMIT desktop.screensChanged();
    };
    show(makeTest(3), [&](frmShow& window) {
        EXPECT_EQ(places(window), u"800 640"_s);
        type(window, u"F"_s);
        EXPECT_EQ(places(window), u"640 800"_s);
        change({both[0]});
        EXPECT_EQ(places(window), u"800 -"_s);
        type(window, u" "_s);
        change(both);
        EXPECT_EQ(places(window), u"640 800"_s);
        EXPECT_EQ(control<QLabel>(&window, "lblCount")->text(), u"2 of 3"_s);
        change({both[0]});
        click(&window, "cmdScreens");
        EXPECT_EQ(places(window), u"- 800"_s);
    });
    // Alone from the beginning; the teacher's view never comes, and the place is remembered.
    desktop.list = {both[0]};
    show(makeTest(3), [&](frmShow& window) {
        type(window, u"FAF"_s);
        EXPECT_EQ(places(window), u"- 800"_s);
        change(both);
        EXPECT_EQ(places(window), u"640 800"_s);
        type(window, u"F"_s);
    });
}

TEST_F(ShowWindows, WhereThePupilsWindowStandsAloneItSaysWhatTheTeacherMustKnow)
{
    QFile(library.picturePath(2)).resize(700);
    removeFile(library.picturePath(3));
    const QString first = u"Question 1. Topic"_s;
    const QString covered = u"The screen is covered."_s;
    struct Row
    {
        std::vector<int> keys;
        QString seen;
        QString said;
    };
    const Row rows[] = {
        {{Qt::Key_1}, first, u"Few knew it. (Enter goes to question 1 instead.)"_s},
        {{Qt::Key_2}, first, u"Enter goes to question 12."_s},
        {{Qt::Key_Return}, first, u"There is no question of that number."_s},
        {{Qt::Key_B}, covered, {}},
        {{Qt::Key_9}, covered, u"Enter goes to question 9."_s},
        {{Qt::Key_Home}, first, {}},
        {{Qt::Key_2, Qt::Key_Return},
         u"Question 2. Topic"_s,
         u"The picture file of this question is damaged or is not a picture. S puts another one in "
         "its place."_s},
        {{Qt::Key_B}, covered, {}},
        {{Qt::Key_End},
         u"Question 3. Topic"_s,
         u"The picture file is missing from this picture.  Please delete this question. S puts "
         "another one in its place."_s},
        {{Qt::Key_Space}, u"Question 3. Topic"_s, u"That was the last one. Esc ends the show."_s},
        {{Qt::Key_S}, u"Question 3. Topic"_s, {}}};
    const auto check = [&](frmShow& window) {
        settle(window);
        const bool alone = !window.isVisible();
        for (const auto& [keys, seen, said] : rows) {
            for (const int key : keys) {
                QTest::keyClick(&pupils(window), static_cast<Qt::Key>(key));
            }
            const QString all = alone ? seen + u' ' + said : seen;
            EXPECT_TRUE(QTest::qWaitFor([&] {
                return pupils(window).pictureDescription() == all.simplified();
            })) << qPrintable(pupils(window).pictureDescription() + u" is not "_s + all);
        }
        // The letters of other scripts are the keys that lie there.
        QKeyEvent greek(QEvent::KeyPress, 0x391, Qt::NoModifier, 38, 'A', 0, u"α"_s);
        QApplication::sendEvent(&pupils(window), &greek);
        EXPECT_TRUE(pupils(window).pictureDescription().endsWith(u" A"_s));
        QTest::keyClick(&pupils(window), Qt::Key_Home);
    };
    ShowTest test = makeTest(3);
    test.spares.resize(1);
    show(test, check);
    desktop.list.pop_back();
    show(test, check);
}

TEST_F(ShowWindows, AFrameOrTheWheelLooksCloserAndButtonsDoWhatTheirKeysDo)
{
    show(makeTest(3), [&](frmShow& window) {
        settle(window);
        auto& now = *control<ShowView>(&window, "viewNow");
        const QImage whole = pupils(window).grab().toImage();
        const QPoint middle(now.width() / 2, now.width() * 9 / 32);
        QTest::mousePress(&now, Qt::LeftButton, {}, middle - QPoint(60, 40));
        QTest::mouseMove(&now, middle);
        QTest::mouseRelease(&now, Qt::LeftButton, {}, middle);
        settle(window);
        const QImage closer = pupils(window).grab().toImage();
        EXPECT_NE(whole, closer);
        QTest::keyClick(&window, Qt::Key_Escape);
        EXPECT_EQ(pupils(window).grab().toImage(), whole);
        for (const auto& [button, key] : {std::pair("cmdAnswer", u"A"_s),
                                          {"cmdBlack", u"B"_s},
                                          {"cmdWhite", u"W"_s},
                                          {"cmdMore", u"+"_s},
                                          {"cmdClock", u"T"_s}}) {
            click(&window, button);
            settle(window);
            const QImage clicked = pupils(window).grab().toImage();
            EXPECT_NE(clicked, whole) << button;
            click(&window, button == std::string("cmdMore") ? "cmdClock" : button);
            type(window, key);
            EXPECT_EQ(pupils(window).grab().toImage(), clicked) << button;
            type(window, key == u"+"_s ? u"T"_s : key);
        }
    });
}

TEST_F(ShowWindows, NoMoreThanThreePicturesAreHeldAndThoseAreScaledAhead)
{
    ShowPictures pictures;
    pictures.setRoom({300, 200});
    const auto path = [&](int key) { return library.picturePath(key); };
    testPicture({12'000, 300}).save(path(2), "JPG");
    QFile::remove(path(3));
    int came = 0;
    QObject::connect(&pictures, &ShowPictures::came, [&] { ++came; });
    pictures.want({path(1), path(2), path(3), path(4)});
    ASSERT_TRUE(QTest::qWaitFor([&] { return came == 3; }, 20'000));
    EXPECT_EQ(pictures.find(path(1)).picture.fitted.size(), QSize(300, 200));
    EXPECT_LE(pictures.find(path(2)).picture.whole.width(), 4096);
    EXPECT_EQ(pictures.find(path(2)).picture.fitted.width(), 300);
    EXPECT_EQ(pictures.find(path(3)).fault, PictureFault::Missing);
    EXPECT_FALSE(pictures.find(path(4)).ready);
    pictures.want({path(2)});
    EXPECT_FALSE(pictures.find(path(1)).ready);
}

} // namespace
} // namespace varnholt::test
