// What happens in a show, key by key.

#include "show/Show.h"
#include "show/show_keys.h"
#include "show/show_screens.h"
#include "support/fakes.h"

#include <QHash>

#include <gtest/gtest.h>

#include <random>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;
using Cover = PupilsView::Cover;

/// Questions of two topics; the key of question n is n, its subtopic n / 2.
ShowTest makeTest(int questions, int spares = 0)
{
    const auto record = [](int n) {
        return QuestionRecord{n, n, n % 4 < 2 ? 1 : 2, n / 2, u"answer %1"_s.arg(n)};
    };
    ShowTest test;
    test.take = [](const QuestionRecord& question) {
        return ShowItem{question, u"topic"_s, u"%1.jpg"_s.arg(question.SOLIndex)};
    };
    for (int n = 1; n <= questions + spares; ++n) {
        if (n <= questions) {
            test.items.push_back(test.take(record(n)));
        } else {
            test.spares.push_back(record(n));
        }
    }
    return test;
}

/// What stands on the screens: "#2 42s answer black [1-] typed 12 note".
QString described(const Show& show)
{
    const PupilsView view = show.pupilsView();
    QStringList parts{
        view.number > 0
            ? u"#%1"_s.arg(view.picture.chopped(4))
            : u"page %1/%2:%3"_s.arg(show.page()).arg(show.pages()).arg(view.answers.size())};
    if (view.clock) {
        parts += u"%1s%2"_s.arg(view.clock->seconds)
                     .arg(view.clock->isOver()   ? u"."_s
                          : view.clock->isLast() ? u"!"_s
                                                 : u""_s);
    }
    if (!view.answer.isEmpty()) {
        parts += view.answer;
    }
    if (view.cover != Cover::None) {
        parts += view.cover == Cover::Black ? u"black"_s : u"white"_s;
    }
    if (!view.zoom.isNull()) {
        parts += u"zoom %1"_s.arg(view.zoom.width(), 0, 'g', 2);
    }
    QString outcomes;
    for (int i = 1; i <= show.questions(); ++i) {
        outcomes += u"-123"_s.at(static_cast<int>(show.outcome(i)));
    }
    if (outcomes.count(u'-') < outcomes.size()) {
        parts += outcomes;
    }
    if (!show.typed().isEmpty()) {
        parts += u"typed "_s + show.typed();
    }
    if (show.note() != Show::Note::None) {
        parts += QStringList{u"no such"_s, u"no other"_s, u"end"_s, u"start"_s}.at(
            static_cast<int>(show.note()) - 1);
    }
    return parts.join(u' ');
}

/// Presses keys: one character each; ">" next, "<" back, "^" Enter, "~" Esc, "H" Home, "E" End,
/// "_" a second goes by, "h" less than one, "j" an hour in which the computer sleeps, "z" zooms.
/// "F" and an Esc that ends are written down behind.
QString press(Show& show, FakeClock& clock, const QString& keys)
{
    const QHash<QChar, int> special{{u'>', Qt::Key_PageDown}, {u'<', Qt::Key_Left},
                                    {u'^', Qt::Key_Return},   {u'~', Qt::Key_Escape},
                                    {u'H', Qt::Key_Home},     {u'E', Qt::Key_End}};
    QString asked;
    for (const QChar key : keys) {
        if (key == u'_') {
            for (int i = 0; i < 5; ++i) {
                clock.now += 200;
                show.pass();
            }
        } else if (key == u'j' || key == u'h') {
            clock.now += key == u'j' ? 3'600'000 : 200;
            show.pass();
        } else if (key == u'z') {
            show.zoomAt({0.25, 0.25}, 2);
        } else {
            const int code = special.value(key, key.unicode());
            switch (PressShowKey(show, code, Qt::NoModifier)) {
            case ShowKey::SwapScreens:
                asked += u" swap"_s;
                break;
            case ShowKey::End:
                asked += u" end?"_s;
                break;
            case ShowKey::Unknown:
                ADD_FAILURE() << "no such key";
                break;
            default:
                break;
            }
        }
    }
    return described(show) + asked;
}

TEST(Show, KeysDoWhatATeacherExpects)
{
    struct Row
    {
        ShowWishes wishes;
        const char* keys;
        const char* seen;
    };
    using enum ShowAnswers;
    const Row rows[] = {
        // Steps.
        {{}, "", "#1"},
        {{}, "> >", "#4"},
        {{}, ">><", "#2"},
        {{}, "<", "#1 start"},
        {{}, "E>", "#23 end"},
        {{}, "EH^", "#2"},
        {{}, "12^", "#12"},
        {{}, "2^", "#2"},
        {{}, "44^", "#1 no such"},
        {{}, "4_", "#1 typed 4"},
        {{}, "4_____", "#1"},
        {{}, "0", "#1"},
        {{}, "12~", "#1"},
        {{}, "123456", "#1 typed 1234"},
        // Answers.
        {{}, "A", "#1 answer 1"},
        {{}, "AA", "#1"},
        {{}, "A>", "#2"},
        {{}, "A><", "#1"},
        {{0, AfterEach}, ">", "#1 answer 1"},
        {{0, AfterEach}, ">>", "#2"},
        {{0, AfterEach}, ">>>A", "#2"},
        {{0, AfterEach}, ">>>,<<", "#2"},
        {{0, AfterEach}, ">>><<", "#1"},
        {{0, AfterEach}, "E>", "#23 answer 23"},
        {{0, AtTheEnd}, "23^>", "page 1/2:20"},
        {{0, AtTheEnd}, "E>>A1_____", "page 2/2:3"},
        {{0, AtTheEnd}, "E>>>", "page 2/2:3 end"},
        {{0, AtTheEnd}, "E>><<", "#23"},
        {{9, AtTheEnd}, "E>>T+", "page 2/2:3"},
        // How many knew it.
        {{}, "2_", "#2 2----------------------"},
        {{}, "2", "#1 typed 2"},
        {{}, "2>", "#2 2----------------------"},
        {{}, "2<", "#1 2---------------------- start"},
        {{}, "2A", "#1 answer 1 2----------------------"},
        {{}, "2~", "#1"},
        {{0, AfterEach}, "3_", "#2 3----------------------"},
        {{}, "3_<1_", "#2 1----------------------"},
        {{}, "E1_", "#23 ----------------------1 end"},
        // Colours.
        {{}, "B", "#1 black"},
        {{}, ".", "#1 black"},
        {{}, "B,", "#1 white"},
        {{}, "WW", "#1"},
        {{}, "B>", "#1"},
        {{}, "B5^", "#5"},
        {{}, "WA", "#1 answer 1"},
        {{}, "2B", "#1 black 2----------------------"},
        // The zoom.
        {{}, "z", "#1 zoom 0.5"},
        {{}, "zB~~~", "#1 end?"},
        {{}, "z>", "#2"},
        {{}, "zzzzzzz", "#1 zoom 0.13"},
        // The clock.
        {{}, "T", "#1 60s"},
        {{}, "T_>_", "#2 59s"},
        {{}, "TT", "#1"},
        {{}, "TT>", "#2"},
        {{}, "+_", "#1 14s"},
        {{}, "+>", "#2"},
        {{}, "-", "#1"},
        {{20}, "", "#1 20s"},
        {{20}, "+__", "#1 33s"},
        {{20}, "-", "#1 5s!"},
        {{20}, "--", "#1 0s."},
        {{6}, "_", "#1 5s!"},
        {{20}, "j", "#1 18s"},
        {{6}, "h", "#1 6s"},
        {{6}, "________", "#1 0s."},
        {{6}, "________+", "#1 15s"},
        {{6}, "________T", "#1 6s"},
        {{6}, "A", "#1 answer 1"},
        {{6}, "AA", "#1"},
        {{6}, "AA>", "#2 6s"},
        {{6}, "B_", "#1 5s! black"},
        {{6, WhenAsked, true}, "______", "#2 6s"},
        {{6, WhenAsked, true}, "B______", "#2 6s"},
        {{6, WhenAsked, true}, "A______", "#1 answer 1"},
        {{6, WhenAsked, true}, "_____2_", "#2 6s 2----------------------"},
        {{6, AfterEach, true}, "______", "#1 answer 1"},
        {{6, AfterEach, true}, "E______", "#23 answer 23"},
        {{6, WhenAsked, true}, "E_______", "#23 0s."},
        // Another question: of the subtopic, of the topic, any; what went does not come again.
        {{}, "S", "#24"},
        {{}, "22^S", "#26"},
        {{}, "2_<SS", "#25"},
        {{}, "22^SS", "#24"},
        {{}, "SSSS", "#26 no other"},
        {{8}, "_S", "#24 8s"},
        {{}, "AS", "#24"},
        // What is for the windows.
        {{}, "F", "#1 swap"},
        {{}, "~", "#1 end?"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.keys);
        FakeClock clock;
        Show show(makeTest(23, 3), row.wishes, clock);
        EXPECT_EQ(press(show, clock, QString::fromLatin1(row.keys)).toStdString(), row.seen);
    }
}

TEST(Show, NoAnswerIsShownUnaskedWhateverKeysArePressed)
{
    std::mt19937 engine(20261122);
    const QString keys = u"><^~HE_zAT+-B.W,S0123456789F"_s;
    for (int round = 0; round < 300; ++round) {
        FakeClock clock;
        const ShowWishes wishes{round % 4 * 3, static_cast<ShowAnswers>(round / 4 % 3),
                                round % 2 == 1};
        Show show(makeTest(5, round % 3), wishes, clock);
        for (int i = 0; i < 60; ++i) {
            const QChar key = keys.at(static_cast<qsizetype>(engine() % keys.size()));
            const bool shown = show.isAnswerShown();
            const auto before = show.position();
            press(show, clock, key);
            const PupilsView view = show.pupilsView();
            ASSERT_TRUE(view.answer.isEmpty() || show.isAnswerShown());
            if (show.isAnswerShown() && (!shown || before != show.position())) {
                // Asked for by A, or by going on where that is what shows it.
                const bool onward =
                    wishes.answers == ShowAnswers::AfterEach && (u"> ^_"_s.contains(key));
                ASSERT_TRUE(key == u'A' || onward) << key.toLatin1();
                ASSERT_EQ(before, show.position());
            }
            ASSERT_TRUE(view.answers.empty() || wishes.answers == ShowAnswers::AtTheEnd);
            ASSERT_TRUE(show.position() || !view.answers.empty());
            ASSERT_TRUE(view.zoom.isNull() || QRectF(0, 0, 1, 1).contains(view.zoom));
            if (wishes.seconds == 0 && show.position() != before) {
                ASSERT_TRUE(!view.clock || view.clock->seconds == ShowClock::usualSeconds);
            }
        }
    }
}

TEST(Show, ThePupilsWindowGoesToAnyScreenButTheTeachersAndBackToWhereItWas)
{
    const ShowScreen laptop{u"eDP-1"_s, {}, {0, 0, 1280, 800}, true};
    const ShowScreen projector{u"HDMI-1"_s, u"X7"_s, {1280, 0, 1024, 768}, false};
    const ShowScreen mirror{u"HDMI-1"_s, u"X7"_s, {0, 0, 1024, 768}, false};
    const ShowScreen other{u"DP-2"_s, u"Q1"_s, {2304, 0, 1920, 1080}, false};
    struct Row
    {
        std::vector<ShowScreen> screens;
        QString remembered;
        ShowPlaces places;
    };
    const Row rows[] = {{{laptop}, {}, {0, {}}},
                        {{laptop, mirror}, projector.id(), {0, {}}},
                        {{laptop, projector}, {}, {1, 0}},
                        {{projector, laptop}, {}, {0, 1}},
                        {{laptop, projector}, laptop.id(), {0, 1}},
                        {{laptop, projector, other}, other.id(), {2, 0}},
                        {{laptop, mirror, other}, {}, {2, 0}},
                        {{laptop, projector, other}, laptop.id(), {0, 1}},
                        {{laptop, projector}, other.id(), {1, 0}},
                        {{other, projector, laptop}, {}, {0, 2}}};
    for (const Row& row : rows) {
        EXPECT_EQ(PlaceShow(row.screens, row.remembered), row.places) << &row - rows;
    }
}

} // namespace
} // namespace varnholt::test
