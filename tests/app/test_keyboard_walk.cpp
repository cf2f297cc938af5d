#include "app/frmAssessment.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ListBox.h"
#include "toolkit/desktop_services.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <utility>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int patienceMs = 60'000;

/// The program as a user without a mouse or without eyes has it, real message boxes included.
class KeyboardWalk : public testing::Test, protected TestWorld
{
protected:
    using Reaction = std::function<void(QWidget*)>;

    KeyboardWalk()
    {
        services.messageBoxes = &boxes;
        frame = std::make_unique<frmAssessment>(services, state, QString());
        frame->show();
        frame->activateWindow();
        watch();
    }
    ~KeyboardWalk() override { EXPECT_TRUE(answers.empty()); }

    /// What an assistive program is told of a part of a window, and what is wrong with it.
    static void hear(QAccessibleInterface* item, const QString& path)
    {
        const QAccessible::State is = item->state();
        if (is.invisible) {
            return;
        }
        const QString name = item->text(QAccessible::Name);
        const QString place =
            u"%1 > %2"_s.arg(path, item->object() ? item->object()->objectName() : QString());
        const auto* label = qobject_cast<QLabel*>(item->object());
        // "Yes" alone says nothing to who cannot see the frame it stands in.
        if ((name.isEmpty() && (is.focusable || item->role() == QAccessible::Graphic)) ||
            (item->role() == QAccessible::RadioButton && (name == u"Yes" || name == u"No")) ||
            name.contains(u'&') || (label && label->text().isEmpty() && !name.isEmpty())) {
            ADD_FAILURE() << place.toStdString() << " is called: " << name.toStdString();
        }
        for (int i = 0; i < item->childCount(); ++i) {
            if (QAccessibleInterface* child = item->child(i)) {
                hear(child, place);
            }
        }
    }
    static void hear(QWidget* window)
    {
        QAccessibleInterface* item = QAccessible::queryAccessibleInterface(window);
        EXPECT_EQ(item->role() == QAccessible::Dialog || item->role() == QAccessible::AlertMessage,
                  qobject_cast<QDialog*>(window) != nullptr)
            << item->role();
        hear(item, QString());
    }

    /// Every box and dialog that comes up is heard and takes the next of the answers. A timer of
    /// its own each time: one that is still answering does not fire inside a second box.
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
                QWidget* const outer = std::exchange(answered, modal);
                const auto [title, react] = answers.front();
                answers.pop_front();
                EXPECT_EQ(modal->windowTitle().toStdString(), title.toStdString());
                hear(modal);
                react(modal);
                answered = outer;
            }
        });
    }

    static void press(QWidget* window, Qt::Key key)
    {
        QWidget* focus = window->focusWidget();
        QTest::keyClick(focus ? focus : window, key);
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
        ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get(), patienceMs));
        QTest::keyClick(frame.get(), mnemonic, Qt::AltModifier);
    }
    QString focus()
    {
        return frame->focusWidget() ? frame->focusWidget()->objectName() : QString();
    }
    QString count() { return control<QLabel>(frame.get(), "lblQuestionCount")->text(); }

    /// The next box has that title and is dealt with like that.
    void answer(const QString& title, const Reaction& react = pressEnter)
    {
        answers.emplace_back(title, react);
    }
    static void pressEnter(QWidget* box) { press(box, Qt::Key_Return); }
    /// A stray Enter means No; Yes takes a deliberate key.
    static void sayYes(QWidget* box)
    {
        auto* focused = qobject_cast<QPushButton*>(box->focusWidget());
        ASSERT_NE(focused, nullptr);
        EXPECT_EQ(focused->text().remove(u'&').toStdString(), "No");
        press(box, Qt::Key_Left);
        press(box, Qt::Key_Space);
    }
    /// A name, after an apostrophe that the prompt warns of while it stands there.
    static Reaction typeName(const QString& name)
    {
        return [name](QWidget* prompt) {
            auto* hint = control<QLabel>(prompt, "lblHint");
            QTest::keyClicks(prompt->focusWidget(), u"'"_s);
            EXPECT_TRUE(hint->isVisible());
            press(prompt, Qt::Key_Backspace);
            EXPECT_FALSE(hint->isVisible());
            QTest::keyClicks(prompt->focusWidget(), name);
            pressEnter(prompt);
        };
    }

    DesktopMessageBoxes boxes;
    std::unique_ptr<frmAssessment> frame;
    std::deque<std::pair<QString, Reaction>> answers;
    QWidget* answered = nullptr;
};

TEST_F(KeyboardWalk, FromAnEmptyLibraryToSlides)
{
    menu(Qt::Key_M);
    ASSERT_EQ(focus().toStdString(), "cmdAddAssessment");
    answer(u"New Assessment Name"_s, typeName(u"Physics"_s));
    answer(u"New Assessment Added"_s);
    reach("cmdAddAssessment");
    answer(u"New Topic Name"_s, typeName(u"Waves"_s));
    answer(u"New Topic Added"_s);
    reach("cmdNewTopic");
    reach("lstTopics", Qt::Key_Down);
    answer(u"New Topic Name"_s, typeName(u"Sound"_s));
    answer(u"New Topic Added"_s);
    reach("cmdNewSubtopic");
    EXPECT_EQ(library.value(u"SELECT * FROM SubTopics"_s), u"1|1|Sound|1|1"_s);

    for (int i = 1; i <= 4; ++i) {
        library.addQuestion(1, 1, 1, u"A%1"_s.arg(i));
    }
    menu(Qt::Key_M);
    reach("lstTopics", Qt::Key_Down);
    reach("lstSubtopics", Qt::Key_Down);
    reach("cmdRight");
    reach("cmdRight", Qt::Key_Space);
    EXPECT_EQ(count(), u"3 of 4"_s);
    reach("cmdLeft");
    answer(u"Delete Question?"_s, sayYes);
    answer(u"Question Deleted"_s);
    reach("cmdDeleteQuestion", Qt::Key_Space);
    EXPECT_EQ(library.value(u"SELECT SOLIndex FROM Questions WHERE NOT Available"_s), u"2"_s);

    menu(Qt::Key_C);
    reach("txtQuestions", Qt::Key_2);
    press(frame.get(), Qt::Key_Return);
    auto* review = control<QWidget>(frame.get(), "frmSelect");
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return QApplication::activeWindow() == review; }, patienceMs));
    for (const Qt::Key key : {Qt::Key_I, Qt::Key_E, Qt::Key_I}) {
        QApplication::processEvents();
        press(review, key);
    }
    EXPECT_EQ(presentations.calls.filter(u"addPicture"_s).size(), 2);
    EXPECT_FALSE(review->isVisible());
}

TEST_F(KeyboardWalk, EveryWindowCanBeHeard)
{
    library.addGenerated(u"Physics"_s, 2, 2, 3, true);
    clipboard.picture = testPicture({400, 300}, 5);
    const auto hearDialog = [this](
                                QWidget* owner, const char* button, const char* title,
                                const Reaction& inside = [](QWidget*) {}) {
        answer(QLatin1String(title), [inside](QWidget* dialog) {
            inside(dialog);
            static_cast<QDialog*>(dialog)->reject();
        });
        control<QPushButton>(owner, button)->click();
    };
    for (const char* entry : {"mnuCreate", "mnuExport", "mnuImport", "mnuTutorial", "mnAbout",
                              "mnuManageAssessments"}) {
        control<QAction>(frame.get(), entry)->trigger();
        hear(frame.get());
    }
    control<ListBox>(frame.get(), "lstTopics")->setListIndex(0);
    control<ListBox>(frame.get(), "lstSubtopics")->setListIndex(0);
    hear(frame.get());
    hearDialog(frame.get(), "cmdEditQuestion", "Edit Question");
    hearDialog(frame.get(), "cmdAddNewQuestion", "Add New Question", [&](QWidget* authoring) {
        hearDialog(authoring, "cmdNewTopic", "New Topic and Subtopic");
        click(authoring, "cmdPaste");
        QWidget* canvas = control<QWidget>(authoring, "picQuestion");
        QTest::mousePress(canvas, Qt::LeftButton, {}, {20, 20});
        QTest::mouseMove(canvas, {200, 120});
        QTest::mouseRelease(canvas, Qt::LeftButton, {}, {200, 120});
        hear(authoring);
        hearDialog(authoring, "cmdText", "Create Text");
    });
    control<QAction>(frame.get(), "mnuCreate")->trigger();
    click(frame.get(), "cmdCreate");
    hear(control<QWidget>(frame.get(), "frmSelect"));
    auto* topics =
        QAccessible::queryAccessibleInterface(control<QWidget>(frame.get(), "lstTopics"));
    EXPECT_EQ(topics->child(0)->role(), QAccessible::CheckBox);
}

} // namespace
} // namespace varnholt::test
