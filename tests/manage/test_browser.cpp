#include "manage/frmEditQuestion.h"
#include "manage_test.h"
#include "toolkit/PictureView.h"

#include <QDir>
#include <QFile>
#include <QTimer>

namespace varnholt {
namespace {

using test::click;
using test::control;

class Browser : public test::ManageTest
{
protected:
    Browser()
    {
        mine = library.addGenerated(QStringLiteral("Mine"), 2, 2, 3, true);
        open();
    }

    void browse(int topic, int subtopic)
    {
        topics().setListIndex(topic);
        subtopics().setListIndex(subtopic);
    }

    /// Which question's picture is on show, by its colour; 0 for none.
    int picture()
    {
        const QImage shownPicture = control<PictureView>(window.get(), "imgQuestion")->picture();
        for (int key = 1; key <= 20 && !shownPicture.isNull(); ++key) {
            if (shownPicture == QImage(library.picturePath(key))) {
                return key;
            }
        }
        return 0;
    }

    /// "1 of 3" and the enabled stepping buttons.
    QString place()
    {
        return text("lblQuestionCount") + QChar(u' ') + QChar(enabled("cmdLeft") ? u'<' : u'-') +
               QChar(enabled("cmdRight") ? u'>' : u'-');
    }

    void expectMissing()
    {
        messages.expectInform(
            QStringLiteral("File Missing"),
            QStringLiteral(
                "The picture file is missing from this picture.  Please delete this question."));
    }

    std::int32_t mine = 0;
};

TEST_F(Browser, ShowsTheDepthThatIsChosen)
{
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQt"));
    EXPECT_FALSE(shown("fraQuestions"));
    topics().setListIndex(1);
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQtTs"));
    EXPECT_EQ(rows(subtopics()),
              (QStringList{QStringLiteral("Subtopic 2.1"), QStringLiteral("Subtopic 2.2")}));
    subtopics().setListIndex(0);
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQtTsS"));
    EXPECT_EQ(text("lblQuestions"), QStringLiteral("Questions: 3"));
    EXPECT_TRUE(shown("fraQuestions"));
    EXPECT_EQ(picture(), 7);

    EXPECT_EQ(place(), QStringLiteral("1 of 3 ->"));
    press("cmdRight");
    EXPECT_EQ(place(), QStringLiteral("2 of 3 <>"));
    press("cmdRight");
    EXPECT_EQ(place(), QStringLiteral("3 of 3 <-"));
    // The button that has come to its end hands the focus on.
    EXPECT_EQ(focus(), QStringLiteral("cmdLeft"));
    EXPECT_EQ(picture(), 9);
    press("cmdLeft");
    EXPECT_EQ(picture(), 8);

    topics().setListIndex(1);
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQtTs"));
    EXPECT_FALSE(shown("fraQuestions"));
    EXPECT_EQ(text("lblQuestions"), QString());
    EXPECT_EQ(state.QuestionPosition, 0);
    subtopics().setListIndex(1);
    assessments().setListIndex(0);
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQt"));
    EXPECT_EQ(subtopics().listCount(), 0);
    EXPECT_FALSE(shown("fraQuestions"));
}

TEST_F(Browser, OneOrNoQuestionLeavesBothButtonsDisabled)
{
    library.sql(QStringLiteral("UPDATE Questions SET Available=0 WHERE SOLIndex IN (1,2,4,5,6)"));
    open();
    browse(0, 0);
    EXPECT_EQ(place(), QStringLiteral("1 of 1 --"));
    subtopics().setListIndex(1);
    EXPECT_EQ(text("lblQuestions"), QStringLiteral("Questions: 0"));
    EXPECT_FALSE(shown("fraQuestions"));
    EXPECT_TRUE(enabled("cmdDeleteSubtopic"));
    EXPECT_EQ(state.QuestionPosition, 0);
}

TEST_F(Browser, QuestionsOfUnavailableSubtopicsShowUnderEverySubtopicOfTheirTopic)
{
    library.sql(QStringLiteral("UPDATE SubTopics SET Available=0 WHERE SubtopicNum=2"));
    open();
    browse(0, 0);
    EXPECT_EQ(text("lblQuestions"), QStringLiteral("Questions: 6"));
    browse(1, 0);
    EXPECT_EQ(text("lblQuestions"), QStringLiteral("Questions: 3"));
}

TEST_F(Browser, MissingPicturesAreToldAndSteppedPast)
{
    // Missing, garbage, a folder, and one that goes after it was decoded ahead.
    QFile::remove(library.picturePath(1));
    QFile garbage(library.picturePath(2));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray("\xff\xd8\xff\xe0 not a picture ").repeated(1000));
    garbage.close();
    expectMissing();
    browse(0, 0);
    EXPECT_EQ(place(), QStringLiteral("1 of 3 ->"));
    EXPECT_TRUE(control<PictureView>(window.get(), "imgQuestion")->picture().isNull());
    EXPECT_FALSE(shown("lblPictureHint"));
    expectMissing();
    press("cmdRight");
    EXPECT_EQ(place(), QStringLiteral("2 of 3 <>"));
    press("cmdRight");
    EXPECT_EQ(picture(), 3);
    expectMissing();
    press("cmdLeft");
    EXPECT_EQ(picture(), 3); // stays on screen
    EXPECT_TRUE(shown("lblPictureHint"));
    EXPECT_EQ(place(), QStringLiteral("2 of 3 <>"));
    QFile::remove(library.picturePath(3));
    QDir().mkdir(library.picturePath(3));
    expectMissing();
    press("cmdRight");
    EXPECT_EQ(place(), QStringLiteral("3 of 3 <-"));

    // Another spelling of the extension is found; a picture that has come back is shown.
    browse(1, 1);
    EXPECT_EQ(picture(), 10);
    EXPECT_FALSE(shown("lblPictureHint"));
    QFile::rename(library.picturePath(11),
                  library.picturePath(11).chopped(3) + QStringLiteral("JPG"));
    test::testPicture({30, 30}, 77).save(library.picturePath(12), "JPG");
    press("cmdRight");
    press("cmdRight");
    EXPECT_EQ(picture(), 12);
}

TEST_F(Browser, AHundredThousandQuestionsOpenAndStep)
{
    library.addGenerated(QStringLiteral("Big"), 1, 1, 100'000);
    test::testPicture({9, 9}, 1).save(library.picturePath(13), "JPG");
    test::testPicture({9, 9}, 2).save(library.picturePath(14), "JPG");
    open();
    assessments().setListIndex(1);
    browse(0, 0);
    EXPECT_EQ(place(), QStringLiteral("1 of 100000 ->"));
    press("cmdRight");
    EXPECT_EQ(place(), QStringLiteral("2 of 100000 <>"));
}

TEST_F(Browser, AddNewQuestionNeedsATopicAndASubtopic)
{
    const auto refuse = [this] {
        messages.expectInform(
            QStringLiteral("Add Error"),
            QStringLiteral("Cannot add a question until a topic and subtopic has been created."));
        press("cmdAddNewQuestion");
    };
    const auto bare = library.addAssessment(QStringLiteral("Bare"));
    open();
    assessments().setListIndex(1);
    refuse();
    library.addTopic(bare, QStringLiteral("T"));
    assessments().setListIndex(1);
    refuse();
    EXPECT_EQ(authoringOpened, 0);

    // One subtopic anywhere is enough. Nothing saved: everything stays.
    assessments().setListIndex(0);
    browse(0, 1);
    press("cmdRight");
    press("cmdAddNewQuestion");
    EXPECT_EQ(authoringOpened, 1);
    EXPECT_EQ(preselection.topicId, 1);
    EXPECT_EQ(preselection.subtopicNum, 2);
    EXPECT_EQ(place(), QStringLiteral("2 of 3 <>"));

    for (const bool structure : {false, true}) {
        browse(0, 1);
        authoring = [&] {
            (structure ? state.StructureChanged : state.QuestionSaved) = true;
            library.addQuestion(mine, 1, 2, QStringLiteral("new"));
        };
        press("cmdAddNewQuestion");
        state.QuestionSaved = state.StructureChanged = false;
        EXPECT_EQ(topics().listIndex(), -1);
        EXPECT_EQ(subtopics().listCount(), 0);
        EXPECT_FALSE(shown("fraQuestions"));
        EXPECT_EQ(enabledButtons(), QStringLiteral("ADQt"));
        EXPECT_EQ(state.QuestionList.upperBound(), structure ? 14 : 13);
    }
}

TEST_F(Browser, WithoutAnAuthoringWindowNoQuestionsAreAdded)
{
    window = std::make_unique<frmManage>(services, state, connection, nullptr);
    EXPECT_FALSE(enabled("cmdAddNewQuestion"));
}

/// The editor as the library manager opens it: modal, on the second question of the second
/// subtopic of the first topic. `work` runs while it is open.
class Editor : public Browser
{
protected:
    void edit(const std::function<void()>& work)
    {
        QTimer::singleShot(0, window.get(), [&] {
            dialog = qobject_cast<frmEditQuestion*>(QApplication::activeModalWidget());
            if (dialog) {
                work();
                EXPECT_FALSE(dialog->isVisible());
                dialog->close();
            }
        });
        dialog = nullptr;
        press("cmdEditQuestion");
        ASSERT_NE(dialog, nullptr);
    }

    void open2nd()
    {
        browse(0, 1);
        press("cmdRight");
    }

    void expectConfirm(bool answer)
    {
        messages.expectYesNo(
            QStringLiteral("Save?"),
            QStringLiteral("Are you sure you want to save these changes to this question?"),
            answer);
    }
    void expectSaveError()
    {
        expectConfirm(true);
        messages.expectInform(
            QStringLiteral("Save Error"),
            QStringLiteral("There was an error saving the changes for this question."));
    }
    void expectSaved()
    {
        expectConfirm(true);
        messages.expectInform(QStringLiteral("Question Saved"),
                              QStringLiteral("The question was saved successfully."));
    }

    ComboBox& combo(const char* name) { return *control<ComboBox>(dialog, name); }
    QLineEdit& answer() { return *control<QLineEdit>(dialog, "txtAnswer"); }
    QString row(int key)
    {
        return library.value(QStringLiteral("SELECT * FROM Questions WHERE SOLIndex=%1").arg(key));
    }

    frmEditQuestion* dialog = nullptr;
};

TEST_F(Editor, RefilesAndSavesByKeyboard)
{
    open2nd();
    edit([&] {
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Edit Question"));
        EXPECT_EQ(combo("cboTopics").currentText(), QStringLiteral("Topic 1"));
        EXPECT_EQ(combo("cboSubtopics").currentText(), QStringLiteral("Subtopic 1.2"));
        EXPECT_EQ(answer().selectedText(), QStringLiteral("A5"));
        QTest::keyClick(&combo("cboTopics"), Qt::Key_Down);
        EXPECT_EQ(combo("cboSubtopics").listCount(), 2);
        EXPECT_EQ(combo("cboSubtopics").currentText(), QStringLiteral("Subtopic 2.1"));
        QTest::keyClicks(dialog->focusWidget(), QStringLiteral("  9.81 \"m\" "));
        expectConfirm(false);
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_EQ(answer().text(), QStringLiteral("  9.81 \"m\" "));
        EXPECT_FALSE(state.QuestionSaved);
        expectSaved();
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
        EXPECT_TRUE(state.QuestionSaved);
    });
    EXPECT_EQ(row(5), QStringLiteral("5|2|3|9.81 \"m\"|1|1"));
    EXPECT_FALSE(shown("fraQuestions"));
    EXPECT_EQ(topics().listIndex(), 0);
    EXPECT_EQ(subtopics().listIndex(), -1);
    EXPECT_EQ(focus(), QStringLiteral("lstSubtopics"));
    QTest::keyClick(&subtopics(), Qt::Key_Down);
    EXPECT_EQ(text("lblQuestions"), QStringLiteral("Questions: 2"));
}

TEST_F(Editor, EmptyAnswersAreRefusedAndBlankOnesSavedEmpty)
{
    open2nd();
    edit([&] {
        answer().clear();
        messages.expectInform(QStringLiteral("Save Error"),
                              QStringLiteral("Cannot save because Answer is a required field."));
        click(dialog, "cmdSave");
        answer().setText(QStringLiteral("   "));
        expectSaved();
        click(dialog, "cmdSave");
    });
    EXPECT_EQ(row(5), QStringLiteral("5|1|2||1|1"));
}

TEST_F(Editor, CancelAndEscapeLeaveTheQuestionAndTheBrowser)
{
    state.QuestionSaved = true;
    open2nd();
    for (const bool escape : {true, false}) {
        edit([&] {
            EXPECT_FALSE(state.QuestionSaved);
            answer().setText(QStringLiteral("changed"));
            if (escape) {
                QTest::keyClick(dialog, Qt::Key_Escape);
            } else {
                click(dialog, "cmdCancel");
            }
        });
        EXPECT_EQ(place(), QStringLiteral("2 of 3 <>"));
    }
    EXPECT_EQ(row(5), QStringLiteral("5|1|2|A5|1|1"));
}

TEST_F(Editor, FailuresAreHintedAtAndKeepTheDialogOpen)
{
    library.sql(QStringLiteral(
        "INSERT INTO Topics(TopicID,Topic,AssessmentNum) VALUES(3,'Bare',1),(40000,'Big',1);"
        "INSERT INTO SubTopics(SubtopicNum,TopicID,SubTopic,AssessmentNum) VALUES"
        "(40000,1,'Big',1),(40001,40000,'Bigger',1)"));
    open();
    open2nd();
    edit([&] {
        QLabel& filing = *control<QLabel>(dialog, "lblFilingHint");
        answer().setText(QStringLiteral("Newton's"));
        EXPECT_TRUE(control<QLabel>(dialog, "lblAnswerHint")->isVisible());
        expectSaveError();
        click(dialog, "cmdSave");
        answer().setText(QStringLiteral("fine"));
        EXPECT_FALSE(control<QLabel>(dialog, "lblAnswerHint")->isVisible());
        EXPECT_FALSE(filing.isVisible());

        combo("cboTopics").setListIndex(2); // no subtopics
        EXPECT_EQ(combo("cboSubtopics").listCount(), 0);
        EXPECT_TRUE(filing.isVisible());
        expectSaveError();
        click(dialog, "cmdSave");
        combo("cboTopics").setListIndex(3);
        EXPECT_TRUE(filing.text().contains(QStringLiteral("40000")));
        expectSaveError();
        click(dialog, "cmdSave");
        combo("cboTopics").setListIndex(0);
        EXPECT_FALSE(filing.isVisible());
        combo("cboSubtopics").setListIndex(2);
        EXPECT_TRUE(filing.isVisible());
        expectSaveError();
        click(dialog, "cmdSave");
        combo("cboSubtopics").setListIndex(0);
        breakTable(QStringLiteral("Questions"));
        expectSaveError();
        click(dialog, "cmdSave");
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_FALSE(state.QuestionSaved);
        click(dialog, "cmdCancel");
    });
    EXPECT_EQ(row(5), QStringLiteral("5|1|2|A5|1|1"));

    library.sql(QStringLiteral("DROP TRIGGER BreakQuestionsUPDATE; "
                               "DROP TRIGGER BreakQuestionsINSERT; "
                               "UPDATE Questions SET SOLIndex=32768 WHERE SOLIndex=5"));
    library.addQuestion(mine, 1, 2, QStringLiteral("x"), {});
    QFile::rename(library.picturePath(5), library.picturePath(32768));
    open();
    browse(0, 1);
    press("cmdRight");
    press("cmdRight");
    edit([&] {
        EXPECT_TRUE(control<QLabel>(dialog, "lblFilingHint")->isVisible());
        expectSaveError();
        click(dialog, "cmdSave");
        click(dialog, "cmdCancel");
    });
    EXPECT_EQ(row(32768), QStringLiteral("32768|1|2|A5|1|1"));
}

} // namespace
} // namespace varnholt
