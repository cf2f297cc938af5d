#pragma once

#include "library/Library.h"
#include "manage/frmManage.h"
#include "store/catalogue.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <memory>

/// Failures show texts, not bytes.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

enum Kind
{
    Assessment,
    Topic,
    Subtopic,
    Question
};

inline const char* const addButtons[] = {"cmdAddAssessment", "cmdNewTopic", "cmdNewSubtopic"};
inline const char* const deleteButtons[] = {"cmdDeleteAssessment", "cmdDeleteTopic",
                                            "cmdDeleteSubtopic", "cmdDeleteQuestion"};

/// Title and text of a message box. Those with an index have one for each kind.
using Box = std::pair<QString, QString>;

inline Box failsTo(const char* what)
{
    return {u"Error"_s, u"There was an error %1."_s.arg(QLatin1String(what))};
}
inline const Box addingFails[] = {
    failsTo("adding this assessment"),
    failsTo("adding this topic"),
    failsTo("adding this topic"),
    {u"Add Error"_s, u"Cannot add a question until a topic and subtopic has been created."_s}};
inline const Box deletingFails[] = {
    failsTo("deleting this assessment"), failsTo("deleting this topic"),
    failsTo("deleting this subtopic"), failsTo("in deleting the question")};
inline const QString sure = u"Are you sure that you want to delete this "_s;
inline const Box deletes[] = {
    {u"Delete Assessment?"_s, sure + u"assessment library.  Selecting Yes will completely remove "
                                     "this assessment from the system."_s},
    {u"Delete Topic?"_s, sure + u"topic?"_s},
    {u"Delete Subtopic?"_s, sure + u"subtopic?"_s},
    {u"Delete Question?"_s, sure + u"question?"_s}};
inline const Box deleted[] = {
    {u"Assessment Deleted"_s, u"The assessment was successfully deleted."_s},
    {u"Topic Deleted"_s, u"The topic was deleted successfully."_s},
    {u"Subtopic Deleted"_s, u"The Subtopic was deleted successfully."_s},
    {u"Question Deleted"_s, u"Question deleted successfully."_s}};
inline const Box topicInUse{u"Delete Error"_s,
                            u"Cannot delete a topic that has subtopics.  You must delete delete "
                            "all subtopics first."_s};
inline const Box subtopicInUse{
    u"Delete Error"_s,
    u"You cannot delete a subtopic that has questions associated with it.  The questions for "
    "this subtopic need to be changed to another subtopic or deleted."_s};
inline const Box fileMissing{
    u"File Missing"_s,
    u"The picture file is missing from this picture.  Please delete this question."_s};
inline const Box answerMissing{u"Save Error"_s,
                               u"Cannot save because Answer is a required field."_s};
inline const Box saves{u"Save?"_s,
                       u"Are you sure you want to save these changes to this question?"_s};
inline const Box saved{u"Question Saved"_s, u"The question was saved successfully."_s};
inline const Box savingFails{u"Save Error"_s,
                             u"There was an error saving the changes for this question."_s};

inline const QString dropsNames = u"Close without adding the names that you have typed?"_s;

/// A library, the library manager on it, and what its handlers are to ask and say.
class ManageTest : public testing::Test, protected TestWorld
{
protected:
    ManageTest() { owner.open(); }

    void open()
    {
        window.reset();
        window = std::make_unique<frmManage>(services, state, owner,
                                             [this](QWidget*, const FilingPreselection& rows) {
                                                 preselection = rows;
                                                 authoring();
                                             });
        present(*window);
        window->setFocus();
    }
    void browse(int topic, int subtopic)
    {
        topics().setListIndex(topic);
        subtopics().setListIndex(subtopic);
    }

    void says(const Box& box) { messages.expectInform(box.first, box.second); }
    void asks(const Box& box, bool answer = true)
    {
        // Enter saves, but it never deletes.
        messages.expectYesNo(box.first, box.second, answer,
                             box == saves ? MessageBoxes::Answer::Yes : MessageBoxes::Answer::No);
    }
    void asksName(Kind kind, const QString& answer)
    {
        const QString kinds[] = {u"assessment"_s, u"topic"_s, u"subtopic"_s};
        messages.expectInput(kind == Assessment ? u"New Assessment Name"_s : u"New Topic Name"_s,
                             u"Please enter the name of the new %1."_s.arg(kinds[kind]), answer);
    }
    static Box added(Kind kind, const QString& name)
    {
        return {kind == Assessment ? u"New Assessment Added"_s : u"New Topic Added"_s,
                name + u" successfully added."_s};
    }
    void add(Kind kind, const QString& name, const Box& result)
    {
        asksName(kind, name);
        says(result);
        press(addButtons[kind]);
    }
    /// Presses a delete button and says Yes.
    void remove(Kind kind, const Box& result)
    {
        asks(deletes[kind]);
        says(result);
        press(deleteButtons[kind]);
    }

    /// Does what opens a dialog, and runs `work` in that. It is closed afterwards.
    void inDialog(const std::function<void()>& openIt, const std::function<void()>& work)
    {
        dialog = nullptr;
        present(*window);
        QTimer::singleShot(0, window.get(), [&] {
            dialog = QApplication::activeModalWidget();
            present(*dialog);
            work();
            static_cast<QDialog*>(dialog)->done(QDialog::Rejected);
        });
        openIt();
        ASSERT_NE(dialog, nullptr);
        present(*window);
    }
    /// In the control of the dialog that has the focus.
    void typed(Qt::Key which, Qt::KeyboardModifiers with = {})
    {
        QTest::keyClick(dialog->focusWidget(), which, with);
    }
    void typed(const QString& text) { QTest::keyClicks(dialog->focusWidget(), text); }

    QLineEdit& field(const char* name) { return *control<QLineEdit>(dialog, name); }
    /// What is said beside a field of the dialog.
    QString hint(const char* name = "lblHint")
    {
        auto* label = control<QLabel>(dialog, name);
        return label->isVisible() ? label->text() : QString();
    }

    void press(const char* button) { click(window.get(), button); }
    /// In whatever control has the focus.
    void key(Qt::Key which) { QTest::keyClick(window->focusWidget(), which); }
    void undo() { QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier); }
    void redo()
    {
        QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    }
    ListBox& topics() { return *control<ListBox>(window.get(), "lstTopics"); }
    ListBox& subtopics() { return *control<ListBox>(window.get(), "lstSubtopics"); }
    ComboBox& assessments() { return *control<ComboBox>(window.get(), "cboAssessment"); }
    QString text(const char* label) { return control<QLabel>(window.get(), label)->text(); }
    bool enabled(const char* name) { return control<QWidget>(window.get(), name)->isEnabled(); }
    bool shown(const char* name) { return control<QWidget>(window.get(), name)->isVisible(); }
    QString focus() { return window->focusWidget()->objectName(); }
    /// The position, and the enabled stepping buttons: "1 of 3 ->".
    QString place()
    {
        return text("lblQuestionCount") + QLatin1String(enabled("cmdLeft") ? " <" : " -") +
               QLatin1String(enabled("cmdRight") ? ">" : "-");
    }

    Library owner{library.folder(), clock};
    Connection& connection = owner.connection();
    std::unique_ptr<frmManage> window;
    QWidget* dialog = nullptr;
    FilingPreselection preselection;
    /// What the authoring window does when it is opened.
    std::function<void()> authoring = [] {};
};

} // namespace varnholt::test
