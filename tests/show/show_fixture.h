#pragma once

#include "library/Library.h"
#include "show/ShowDesktop.h"
#include "show/ShowMemory.h"
#include "show/ShowView.h"
#include "show/frmShow.h"
#include "support/gui.h"
#include "support/test_services.h"

#include <QTimer>

#include <functional>
#include <vector>

#include <gtest/gtest.h>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

/// Screens as a test says.
class FakeDesktop : public ShowDesktop
{
public:
    std::vector<ShowScreen> list{{u"LVDS"_s, u"1"_s, {0, 0, 800, 600}, true},
                                 {u"HDMI"_s, u"2"_s, {800, 0, 640, 360}, false}};

    [[nodiscard]] std::vector<ShowScreen> screens() const override { return list; }
    void cover(QWidget& window, const ShowScreen& screen) override
    {
        window.setGeometry(screen.geometry);
        window.show();
    }
    void fill(QWidget& window, const ShowScreen& screen) override { cover(window, screen); }
};

class ShowWindows : public testing::Test, protected TestWorld
{
protected:
    ShowWindows()
    {
        library.addGenerated(u"Maths"_s, 2, 2, 2, true);
        owner.open();
    }

    ShowTest makeTest(int questions, const QString& answer = u"A"_s)
    {
        ShowTest test;
        test.take = [this, answer](const QuestionRecord& question) {
            ShowItem item{question, u"Topic"_s, library.picturePath(question.SOLIndex)};
            item.question.Answer = answer;
            return item;
        };
        for (int key = 1; key <= 8; ++key) {
            const QuestionRecord question{key, key, 1, 1, u"A"_s};
            if (key <= questions) {
                test.items.push_back(test.take(question));
            } else {
                test.spares.push_back(question);
            }
        }
        return test;
    }
    static NewTest recordOf(const ShowTest& test)
    {
        NewTest record{u"Test"_s, 1, u"10B"_s, 7, {}, {}};
        for (const ShowItem& item : test.items) {
            record.items.push_back({static_cast<std::int32_t>(record.items.size() + 1),
                                    item.question.SOLIndex,
                                    item.question.Answer,
                                    item.topicText,
                                    {}});
        }
        return record;
    }

    /// Opens a show, does things with it, and ends it.
    void show(const ShowTest& test, const std::function<void(frmShow&)>& work,
              const ShowWishes& wishes = {})
    {
        ShowMemory memory(owner, recordOf(test));
        frmShow window(services, test, wishes, memory, desktop, nullptr);
        QTimer::singleShot(0, &window, [&] {
            work(window);
            messages.expectYesNo(u"Show in Class"_s, u"End the show?"_s, true,
                                 MessageBoxes::Answer::Yes);
            window.close();
        });
        window.exec();
    }
    static ShowView& pupils(frmShow& window)
    {
        return *control<ShowView>(&window, "frmShowPupils");
    }
    /// Until pictures, the teacher's window and the library have followed. A picture that is
    /// missing is waited for in vain.
    static void settle(frmShow& window)
    {
        static_cast<void>(
            QTest::qWaitFor([&] { return !pupils(window).pictureSize().isEmpty(); }, 1000));
        QTest::qWait(60);
    }
    static void type(frmShow& window, const QString& keys)
    {
        for (const QChar key : keys) {
            QTest::keyClick(&pupils(window), static_cast<Qt::Key>(key.toUpper().unicode()));
        }
        settle(window);
    }
    /// Until the library knows that the first question was on the screen.
    void untilUsed()
    {
        static_cast<void>(QTest::qWaitFor(
            [this] {
                return library.value(
                           u"SELECT count(*) FROM sqlite_master WHERE name = 'PlusUses'"_s) ==
                       u"1"_s;
            },
            20'000));
    }
    QString uses()
    {
        return library
            .sql(u"SELECT SOLIndex || ':' || ifnull(Outcome, '-') FROM PlusUses ORDER BY UseID"_s)
            .join(u' ');
    }

    Library owner{library.folder(), clock};
    FakeDesktop desktop;
};

} // namespace varnholt::test
