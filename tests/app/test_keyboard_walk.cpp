#include "app/frmAssessment.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/desktop_services.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <deque>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The program as a user without a mouse has it, real message boxes included.
class KeyboardWalk : public testing::Test, protected TestWorld
{
protected:
    KeyboardWalk()
    {
        services.messageBoxes = &boxes;
        frame = std::make_unique<frmAssessment>(services, state, QString());
        frame->show();
        frame->activateWindow();
        watch();
    }
    ~KeyboardWalk() override { EXPECT_TRUE(answers.empty()); }

    /// Every box and dialog that comes up takes the next of the answers. A timer of its own
    /// each time: one that is still answering does not fire inside a second box.
    void watch()
    {
        QTimer::singleShot(5, frame.get(), [this] {
            watch();
            QWidget* modal = QApplication::activeModalWidget();
            if (!modal || modal == answered) {
                return;
            }
            if (!modal->isActiveWindow()) {
                modal->activateWindow();
            } else if (answers.empty()) {
                ADD_FAILURE() << "unexpected: " << modal->windowTitle().toStdString();
                modal->close();
            } else {
                answered = modal;
                const auto answer = answers.front();
                answers.pop_front();
                answer(modal);
                answered = nullptr;
            }
        });
    }

    static void press(QWidget* window, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QWidget* focus = window->focusWidget();
        QTest::keyClick(focus ? focus : window, key, modifiers);
    }
    /// Tab until the control has the focus, then Enter or another key.
    void reach(const char* name, Qt::Key key = Qt::Key_Return)
    {
        for (int i = 0; i < 30 && focus() != QLatin1String(name); ++i) {
            press(frame.get(), Qt::Key_Tab);
        }
        ASSERT_EQ(focus().toStdString(), name);
        press(frame.get(), key);
    }
    void menu(Qt::Key mnemonic)
    {
        frame->activateWindow(); // there is no window manager to do it
        ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
        QTest::keyClick(frame.get(), mnemonic, Qt::AltModifier);
    }
    QString focus()
    {
        return frame->focusWidget() ? frame->focusWidget()->objectName() : QString();
    }
    QString text(const char* label) { return control<QLabel>(frame.get(), label)->text(); }

    void answerOk(const QString& title)
    {
        answers.push_back([title](QWidget* box) {
            EXPECT_EQ(box->windowTitle().toStdString(), title.toStdString());
            press(box, Qt::Key_Return);
        });
    }
    void answerName(const QString& title, const QString& name)
    {
        answers.push_back([=](QWidget* prompt) {
            EXPECT_EQ(prompt->windowTitle().toStdString(), title.toStdString());
            auto* hint = control<QLabel>(prompt, "lblHint");
            QTest::keyClicks(prompt->focusWidget(), u"'"_s);
            EXPECT_TRUE(hint->isVisible());
            press(prompt, Qt::Key_Backspace);
            EXPECT_FALSE(hint->isVisible());
            QTest::keyClicks(prompt->focusWidget(), name);
            press(prompt, Qt::Key_Return);
        });
    }
    /// A stray Enter means No; Yes takes a deliberate key.
    void answerYes(const QString& title)
    {
        answers.push_back([title](QWidget* box) {
            EXPECT_EQ(box->windowTitle().toStdString(), title.toStdString());
            auto* focused = qobject_cast<QPushButton*>(box->focusWidget());
            ASSERT_NE(focused, nullptr);
            EXPECT_EQ(focused->text().remove(u'&').toStdString(), "No");
            press(box, Qt::Key_Left);
            press(box, Qt::Key_Space);
        });
    }

    DesktopMessageBoxes boxes;
    std::unique_ptr<frmAssessment> frame;
    std::deque<std::function<void(QWidget*)>> answers;
    QWidget* answered = nullptr;
};

TEST_F(KeyboardWalk, FromAnEmptyLibraryToSlides)
{
    menu(Qt::Key_M);
    ASSERT_EQ(focus().toStdString(), "cmdAddAssessment");
    answerName(u"New Assessment Name"_s, u"Physics"_s);
    answerOk(u"New Assessment Added"_s);
    reach("cmdAddAssessment");
    answerName(u"New Topic Name"_s, u"Waves"_s);
    answerOk(u"New Topic Added"_s);
    reach("cmdNewTopic");
    reach("lstTopics", Qt::Key_Down);
    answerName(u"New Topic Name"_s, u"Sound"_s);
    answerOk(u"New Topic Added"_s);
    reach("cmdNewSubtopic");
    EXPECT_EQ(library.value(u"SELECT * FROM SubTopics"_s), u"1|1|Sound|1|1"_s);

    for (int i = 1; i <= 4; ++i) {
        library.addQuestion(1, 1, 1, u"A%1"_s.arg(i));
    }
    menu(Qt::Key_M);
    reach("lstTopics", Qt::Key_Down);
    reach("lstSubtopics", Qt::Key_Down);
    EXPECT_EQ(text("lblQuestionCount"), u"1 of 4"_s);
    reach("cmdRight");
    reach("cmdRight", Qt::Key_Space);
    EXPECT_EQ(text("lblQuestionCount"), u"3 of 4"_s);
    reach("cmdLeft");
    answers.push_back([](QWidget* editor) {
        QTest::keyClicks(editor->focusWidget(), u"340 m/s"_s);
        press(editor, Qt::Key_Return);
    });
    answerYes(u"Save?"_s);
    answerOk(u"Question Saved"_s);
    reach("cmdEditQuestion");
    EXPECT_EQ(library.value(u"SELECT Answer FROM Questions WHERE SOLIndex=2"_s), u"340 m/s"_s);
    reach("lstSubtopics", Qt::Key_Down);
    answerYes(u"Delete Question?"_s);
    answerOk(u"Question Deleted"_s);
    reach("cmdDeleteQuestion", Qt::Key_Space);
    EXPECT_EQ(library.value(u"SELECT count(*) FROM Questions WHERE Available"_s), u"3"_s);

    menu(Qt::Key_C);
    reach("txtQuestions", Qt::Key_2);
    press(frame.get(), Qt::Key_Return);
    auto* review = frame->findChild<QWidget*>(u"frmSelect"_s);
    ASSERT_NE(review, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == review; }));
    press(review, Qt::Key_I);
    press(review, Qt::Key_E);
    press(review, Qt::Key_I);
    EXPECT_EQ(presentations.calls.filter(u"addPicture"_s).size(), 2);
    EXPECT_FALSE(review->isVisible());
}

} // namespace
} // namespace varnholt::test
