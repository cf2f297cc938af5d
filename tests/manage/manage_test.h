#pragma once

#include "manage/frmManage.h"
#include "store/catalogue.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

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

/// A library, the library manager on it, and what its handlers are to ask and say.
class ManageTest : public testing::Test, protected TestWorld
{
protected:
    ManageTest() { connection.open(library.databasePath()); }

    void open()
    {
        window.reset();
        window = std::make_unique<frmManage>(services, state, connection,
                                             [this](QWidget*, const FilingPreselection& rows) {
                                                 ++authoringOpened;
                                                 preselection = rows;
                                                 authoring();
                                             });
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->setFocus();
    }
    void browse(int topic, int subtopic)
    {
        topics().setListIndex(topic);
        subtopics().setListIndex(subtopic);
    }

    void says(const QString& title, const QString& text) { messages.expectInform(title, text); }
    void asksName(Kind kind, const QString& answer)
    {
        const QString kinds[] = {u"assessment"_s, u"topic"_s, u"subtopic"_s};
        messages.expectInput(kind == Assessment ? u"New Assessment Name"_s : u"New Topic Name"_s,
                             u"Please enter the name of the new %1."_s.arg(kinds[kind]), answer);
    }
    void saysAdded(Kind kind, const QString& name)
    {
        says(kind == Assessment ? u"New Assessment Added"_s : u"New Topic Added"_s,
             name + u" successfully added."_s);
    }
    void saysAddError(Kind kind)
    {
        says(u"Error"_s, kind == Assessment ? u"There was an error adding this assessment."_s
                                            : u"There was an error adding this topic."_s);
    }
    void refusesDeletion(Kind kind)
    {
        says(u"Delete Error"_s,
             kind == Topic ? u"Cannot delete a topic that has subtopics.  You must delete delete "
                             "all subtopics first."_s
                           : u"You cannot delete a subtopic that has questions associated with it. "
                             " The questions for this subtopic need to be changed to another "
                             "subtopic or deleted."_s);
    }
    void asksDelete(Kind kind, bool answer = true)
    {
        const std::pair<QString, QString> texts[] = {
            {u"Delete Assessment?"_s,
             u"Are you sure that you want to delete this assessment library.  Selecting Yes will "
             "completely remove this assessment from the system."_s},
            {u"Delete Topic?"_s, u"Are you sure that you want to delete this topic?"_s},
            {u"Delete Subtopic?"_s, u"Are you sure that you want to delete this subtopic?"_s},
            {u"Delete Question?"_s, u"Are you sure that you want to delete this question?"_s}};
        messages.expectYesNo(texts[kind].first, texts[kind].second, answer);
    }
    void saysDeleted(Kind kind)
    {
        const std::pair<QString, QString> texts[] = {
            {u"Assessment Deleted"_s, u"The assessment was successfully deleted."_s},
            {u"Topic Deleted"_s, u"The topic was deleted successfully."_s},
            {u"Subtopic Deleted"_s, u"The Subtopic was deleted successfully."_s},
            {u"Question Deleted"_s, u"Question deleted successfully."_s}};
        says(texts[kind].first, texts[kind].second);
    }
    void saysDeleteError(Kind kind)
    {
        const QString texts[] = {u"There was an error deleting this assessment."_s,
                                 u"There was an error deleting this topic."_s,
                                 u"There was an error deleting this subtopic."_s,
                                 u"There was an error in deleting the question."_s};
        says(u"Error"_s, texts[kind]);
    }
    void saysMissing()
    {
        says(u"File Missing"_s,
             u"The picture file is missing from this picture.  Please delete this question."_s);
    }
    void refusesAdding()
    {
        says(u"Add Error"_s,
             u"Cannot add a question until a topic and subtopic has been created."_s);
    }
    void asksSave(bool answer)
    {
        messages.expectYesNo(
            u"Save?"_s, u"Are you sure you want to save these changes to this question?"_s, answer);
    }
    void saysSaved() { says(u"Question Saved"_s, u"The question was saved successfully."_s); }
    void saysSaveError()
    {
        says(u"Save Error"_s, u"There was an error saving the changes for this question."_s);
    }
    void refusesEmptyAnswer()
    {
        says(u"Save Error"_s, u"Cannot save because Answer is a required field."_s);
    }

    void press(const char* button) { click(window.get(), button); }
    ListBox& topics() { return *control<ListBox>(window.get(), "lstTopics"); }
    ListBox& subtopics() { return *control<ListBox>(window.get(), "lstSubtopics"); }
    ComboBox& assessments() { return *control<ComboBox>(window.get(), "cboAssessment"); }
    QString text(const char* label) { return control<QLabel>(window.get(), label)->text(); }
    bool enabled(const char* name) { return control<QWidget>(window.get(), name)->isEnabled(); }
    bool shown(const char* name) { return control<QWidget>(window.get(), name)->isVisible(); }
    /// The control that has the focus whenever the window is active.
    QString focus() { return window->focusWidget()->objectName(); }

    /// The enabled ones of the seven buttons that the selection governs, by their initials:
    /// (A)dd and (D)elete assessment, add (Q)uestion, topic and subtopic: new in lower case
    /// and delete in upper case.
    QString enabledButtons()
    {
        QString letters;
        for (const auto& [name, letter] : {std::pair("cmdAddAssessment", u'A'),
                                           {"cmdDeleteAssessment", u'D'},
                                           {"cmdAddNewQuestion", u'Q'},
                                           {"cmdNewTopic", u't'},
                                           {"cmdDeleteTopic", u'T'},
                                           {"cmdNewSubtopic", u's'},
                                           {"cmdDeleteSubtopic", u'S'}}) {
            letters += enabled(name) ? QString(QChar(letter)) : QString();
        }
        return letters;
    }

    std::unique_ptr<frmManage> window;
    int authoringOpened = 0;
    FilingPreselection preselection;
    /// What the authoring window does when it is opened.
    std::function<void()> authoring = [] {};
};

} // namespace varnholt::test
