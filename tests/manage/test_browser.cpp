#include "manage_test.h"
#include "toolkit/PictureView.h"

#include <QDir>
#include <QFile>
#include <QTimer>

namespace varnholt::test {
namespace {

class Browser : public ManageTest
{
protected:
    Browser()
    {
        library.addGenerated(u"Mine"_s, 2, 2, 3, true);
        open();
    }

    /// Whether a question's picture is on show.
    bool shows(int key)
    {
        return control<PictureView>(window.get(), "imgQuestion")->picture() ==
               QImage(library.picturePath(key));
    }

    /// The position, and the enabled stepping buttons: "1 of 3 ->".
    QString place()
    {
        return text("lblQuestionCount") + QLatin1String(enabled("cmdLeft") ? " <" : " -") +
               QLatin1String(enabled("cmdRight") ? ">" : "-");
    }
};

TEST_F(Browser, QuestionsOfUnavailableSubtopicsShowUnderEverySubtopicOfTheirTopic)
{
    library.sql(u"UPDATE SubTopics SET Available=0 WHERE SubtopicNum=2"_s);
    open();
    browse(0, 0);
    EXPECT_EQ(text("lblQuestions"), u"Questions: 6"_s);
    browse(1, 0);
    EXPECT_EQ(text("lblQuestions"), u"Questions: 3"_s);
}

TEST_F(Browser, MissingPicturesAreToldAndSteppedPast)
{
    // Missing, garbage, and one that goes after it was decoded ahead.
    QFile::remove(library.picturePath(1));
    QFile garbage(library.picturePath(2));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray("\xff\xd8\xff\xe0 not a picture ").repeated(1000));
    garbage.close();
    saysMissing();
    browse(0, 0);
    EXPECT_EQ(place(), u"1 of 3 ->"_s);
    EXPECT_TRUE(control<PictureView>(window.get(), "imgQuestion")->picture().isNull());
    EXPECT_FALSE(shown("lblPictureHint"));
    saysMissing();
    press("cmdRight");
    EXPECT_EQ(place(), u"2 of 3 <>"_s);
    press("cmdRight");
    EXPECT_TRUE(shows(3));
    // The button that has come to its end hands the focus on.
    EXPECT_EQ(focus(), u"cmdLeft"_s);
    saysMissing();
    press("cmdLeft");
    EXPECT_TRUE(shows(3)); // stays on screen
    EXPECT_TRUE(shown("lblPictureHint"));
    QFile::remove(library.picturePath(3));
    saysMissing();
    press("cmdRight");
    EXPECT_EQ(place(), u"3 of 3 <-"_s);

    // Another spelling of the extension is found; a picture that has changed is shown anew.
    browse(1, 1);
    EXPECT_TRUE(shows(10));
    EXPECT_FALSE(shown("lblPictureHint"));
    QFile::rename(library.picturePath(11), library.picturePath(11).chopped(3) + u"JPG"_s);
    testPicture({30, 30}, 77).save(library.picturePath(12), "JPG");
    press("cmdRight");
    press("cmdRight");
    EXPECT_TRUE(shows(12));
}

TEST_F(Browser, AHundredThousandQuestionsOpenAndStep)
{
    library.addGenerated(u"Big"_s, 1, 1, 100'000);
    testPicture({9, 9}, 1).save(library.picturePath(13), "JPG");
    open();
    assessments().setListIndex(1);
    browse(0, 0);
    EXPECT_EQ(place(), u"1 of 100000 ->"_s);
    saysMissing();
    press("cmdRight");
    EXPECT_EQ(place(), u"2 of 100000 <>"_s);
}

TEST_F(Browser, AuthoringIsToldTheRowsAndReloadsWhatItChanged)
{
    browse(0, 1);
    press("cmdRight");
    press("cmdAddNewQuestion");
    EXPECT_EQ(preselection.topicId, 1);
    EXPECT_EQ(preselection.subtopicNum, 2);
    EXPECT_EQ(place(), u"2 of 3 <>"_s); // nothing saved: everything stays
    authoring = [&] {
        library.addTopic(1, u"New"_s);
        state.StructureChanged = true;
    };
    press("cmdAddNewQuestion");
    EXPECT_EQ(authoringOpened, 2);
    EXPECT_EQ(topics().itemText(2), u"New"_s);
    EXPECT_EQ(enabledButtons(), u"ADQt"_s);
    EXPECT_FALSE(shown("fraQuestions"));

    window = std::make_unique<frmManage>(services, state, connection, nullptr);
    EXPECT_FALSE(enabled("cmdAddNewQuestion"));
}

/// The editor as the library manager opens it, on the second question of the second subtopic
/// of the first topic. `work` runs while it is open and must close it.
class Editor : public Browser
{
protected:
    void edit(const std::function<void()>& work)
    {
        browse(0, 1);
        press("cmdRight");
        dialog = nullptr;
        QTimer::singleShot(0, window.get(), [&] {
            dialog = QApplication::activeModalWidget();
            work();
            EXPECT_FALSE(dialog->isVisible());
            dialog->close();
        });
        press("cmdEditQuestion");
        ASSERT_NE(dialog, nullptr);
    }
    void saveFails()
    {
        asksSave(true);
        saysSaveError();
        click(dialog, "cmdSave");
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_FALSE(state.QuestionSaved);
    }
    ComboBox& combo(const char* name) { return *control<ComboBox>(dialog, name); }
    QLineEdit& answer() { return *control<QLineEdit>(dialog, "txtAnswer"); }
    QString hint(const char* name)
    {
        auto* label = control<QLabel>(dialog, name);
        return label->isVisible() ? label->text() : QString();
    }
    QString row(int key)
    {
        return library.value(u"SELECT * FROM Questions WHERE SOLIndex=%1"_s.arg(key));
    }

    QWidget* dialog = nullptr;
};

TEST_F(Editor, RefilesAndSavesByKeyboard)
{
    edit([&] {
        EXPECT_EQ(dialog->windowTitle(), u"Edit Question"_s);
        EXPECT_EQ(combo("cboTopics").currentText(), u"Topic 1"_s);
        EXPECT_EQ(combo("cboSubtopics").currentText(), u"Subtopic 1.2"_s);
        EXPECT_EQ(answer().selectedText(), u"A5"_s);
        QTest::keyClick(&combo("cboTopics"), Qt::Key_Down);
        EXPECT_EQ(combo("cboSubtopics").listCount(), 2);
        EXPECT_EQ(combo("cboSubtopics").currentText(), u"Subtopic 2.1"_s);
        QTest::keyClicks(dialog->focusWidget(), u"  9.81 \"m\" "_s);
        asksSave(false);
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_EQ(answer().text(), u"  9.81 \"m\" "_s);
        asksSave(true);
        saysSaved();
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
    });
    EXPECT_TRUE(state.QuestionSaved);
    EXPECT_EQ(row(5), u"5|2|3|9.81 \"m\"|1|1"_s);
    EXPECT_EQ(topics().listIndex(), 0);
    EXPECT_EQ(focus(), u"lstSubtopics"_s);
    QTest::keyClick(&subtopics(), Qt::Key_Down);
    EXPECT_EQ(text("lblQuestions"), u"Questions: 2"_s);
    // Leaving by Escape changes nothing.
    edit([&] {
        EXPECT_FALSE(state.QuestionSaved);
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    EXPECT_EQ(place(), u"2 of 2 <-"_s);
}

TEST_F(Editor, FailuresAreHintedAtAndKeepTheDialogOpen)
{
    library.sql(u"INSERT INTO Topics(TopicID,Topic,AssessmentNum) VALUES(3,'Bare',1),"
                "(40000,'Big',1); INSERT INTO SubTopics(SubtopicNum,TopicID,SubTopic,"
                "AssessmentNum) VALUES(40000,1,'Big',1),(40001,40000,'Bigger',1)"_s);
    open();
    edit([&] {
        answer().setText(u"Newton's"_s);
        EXPECT_EQ(hint("lblAnswerHint"), u"An apostrophe (') cannot be saved. Use ’ instead."_s);
        saveFails();
        answer().setText(u"fine"_s);
        EXPECT_EQ(hint("lblAnswerHint") + hint("lblFilingHint"), QString());
        combo("cboTopics").setListIndex(2);
        EXPECT_EQ(hint("lblFilingHint"), u"This topic has no subtopics; choose another topic."_s);
        saveFails();
        combo("cboTopics").setListIndex(3);
        EXPECT_TRUE(hint("lblFilingHint").startsWith(u"Topic number 40000 is above 32767"_s));
        saveFails();
        combo("cboTopics").setListIndex(0);
        EXPECT_EQ(hint("lblFilingHint"), QString());
        combo("cboSubtopics").setListIndex(2);
        EXPECT_TRUE(hint("lblFilingHint").startsWith(u"Subtopic number 40000 is above 32767"_s));
        saveFails();
        click(dialog, "cmdCancel");
    });
    EXPECT_EQ(row(5), u"5|1|2|A5|1|1"_s);

    library.sql(u"UPDATE Questions SET SOLIndex=32768 WHERE SOLIndex=5;"
                "UPDATE Questions SET Available=0 WHERE SOLIndex=4"_s);
    QFile::rename(library.picturePath(5), library.picturePath(32768));
    open();
    edit([&] {
        EXPECT_TRUE(hint("lblFilingHint").startsWith(u"Question number 32768 is above 32767"_s));
        saveFails();
        click(dialog, "cmdCancel");
    });
}

} // namespace
} // namespace varnholt::test
