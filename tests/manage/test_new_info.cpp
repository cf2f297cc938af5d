#include "manage/frmNewInfo.h"
#include "manage_test.h"

namespace varnholt {
namespace {

using test::click;
using test::control;

class NewInfo : public test::ManageTest
{
protected:
    NewInfo()
    {
        assessment = library.addAssessment(QStringLiteral("A"));
        topic = library.addTopic(assessment, QStringLiteral("Old topic"));
        library.addSubTopic(assessment, topic, QStringLiteral("Old subtopic"));
        state.CurrentAssessmentNum = assessment;
        state.NewInfoSaved = true;
    }

    void open(bool subtopicOnly, std::optional<NamedTopic> chosen = std::nullopt)
    {
        state.SubtopicOnly = subtopicOnly;
        dialog = std::make_unique<frmNewInfo>(services, state, connection, chosen);
        dialog->open();
        EXPECT_FALSE(state.NewInfoSaved);
    }

    void type(const char* field, const QString& text)
    {
        auto* edit = control<QLineEdit>(dialog.get(), field);
        edit->clear();
        QTest::keyClicks(edit, text);
    }

    /// All subtopic rows as "key|topic|name", and the topics.
    [[nodiscard]] QString rows() const
    {
        return library.value(
            QStringLiteral("SELECT group_concat(TopicID||'='||Topic||'/'||AssessmentNum||'/'||"
                           "Available,';') FROM Topics; SELECT group_concat(SubtopicNum||'='||"
                           "TopicID||'/'||SubTopic||'/'||AssessmentNum||'/'||Available,';') "
                           "FROM SubTopics"));
    }

    std::int32_t assessment = 0;
    std::int32_t topic = 0;
    std::unique_ptr<frmNewInfo> dialog;
    const QString before = QStringLiteral("1=Old topic/1/1\n1=1/Old subtopic/1/1");
    const QString error = QStringLiteral("There was an error adding this topic.");
};

TEST_F(NewInfo, EnterInTheSubtopicSavesBothTrimmed)
{
    open(false);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("New Topic and Subtopic"));
    EXPECT_EQ(dialog->focusWidget()->objectName(), QStringLiteral("txtNewTopic"));
    type("txtNewTopic", QStringLiteral("  Waves "));
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Return); // does nothing in the topic
    EXPECT_TRUE(dialog->isVisible());
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    QTest::keyClicks(dialog->focusWidget(), QStringLiteral(" Light  "));
    messages.expectInform(QStringLiteral("New Info Added"), QStringLiteral("Saved successfully."));
    messages.beforeAnswer = [this] { EXPECT_TRUE(state.NewInfoSaved && dialog->isVisible()); };
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(state.NewTopicID, 2);
    EXPECT_EQ(state.NewSubtopicNum, 2);
    EXPECT_EQ(rows(), QStringLiteral("1=Old topic/1/1;2=Waves/1/1\n"
                                     "1=1/Old subtopic/1/1;2=2/Light/1/1"));
}

TEST_F(NewInfo, SubtopicOnlyUsesTheChosenTopic)
{
    open(true, NamedTopic{topic, QStringLiteral("O'Topic")});
    auto* field = control<QLineEdit>(dialog.get(), "txtNewTopic");
    EXPECT_EQ(field->text(), QStringLiteral("O'Topic"));
    EXPECT_FALSE(field->isEnabled());
    EXPECT_FALSE(control<QLabel>(dialog.get(), "lblTopicHint")->isVisible());
    EXPECT_EQ(dialog->focusWidget()->objectName(), QStringLiteral("txtNewSubtopic"));
    type("txtNewSubtopic", QStringLiteral("Sound"));
    messages.expectInform(QStringLiteral("New Info Added"), QStringLiteral("Saved successfully."));
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(state.NewInfoSaved);
    EXPECT_EQ(state.NewTopicID, topic);
    EXPECT_EQ(rows(), QStringLiteral("1=Old topic/1/1\n1=1/Old subtopic/1/1;2=1/Sound/1/1"));
}

TEST_F(NewInfo, EmptyOrBlankTextsAreRefused)
{
    const QString refusal = QStringLiteral("You need to enter a topic and subtopic before saving.");
    open(false);
    for (const auto& [topicText, subtopicText] :
         {std::pair("", ""), {"   ", "S"}, {"T", " "}, {"T", ""}}) {
        type("txtNewTopic", QLatin1String(topicText));
        type("txtNewSubtopic", QLatin1String(subtopicText));
        messages.expectInform(QStringLiteral("Save Error"), refusal);
        click(dialog.get(), "cmdSave");
    }
    open(true);
    type("txtNewSubtopic", QStringLiteral("S"));
    messages.expectInform(QStringLiteral("Save Error"), refusal);
    click(dialog.get(), "cmdSave");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(state.NewInfoSaved);
    EXPECT_EQ(rows(), before);
}

TEST_F(NewInfo, ApostrophesAreHintedAtAndFail)
{
    open(false);
    type("txtNewTopic", QStringLiteral("O'Brien"));
    type("txtNewSubtopic", QStringLiteral("S"));
    EXPECT_TRUE(control<QLabel>(dialog.get(), "lblTopicHint")->isVisible());
    EXPECT_FALSE(control<QLabel>(dialog.get(), "lblSubtopicHint")->isVisible());
    messages.expectInform(QStringLiteral("Error"), error);
    click(dialog.get(), "cmdSave");
    EXPECT_EQ(rows(), before);

    // The topic is in when the subtopic fails, and stays.
    type("txtNewTopic", QStringLiteral("Fine"));
    type("txtNewSubtopic", QStringLiteral("Isn't"));
    EXPECT_FALSE(control<QLabel>(dialog.get(), "lblTopicHint")->isVisible());
    EXPECT_TRUE(control<QLabel>(dialog.get(), "lblSubtopicHint")->isVisible());
    messages.expectInform(QStringLiteral("Error"), error);
    click(dialog.get(), "cmdSave");
    EXPECT_EQ(rows(), QStringLiteral("1=Old topic/1/1;2=Fine/1/1\n1=1/Old subtopic/1/1"));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(state.NewInfoSaved);
}

TEST_F(NewInfo, FailedStatementsAndEmptyReadBacksAreReported)
{
    for (const char* table : {"Topics", "SubTopics"}) {
        // What is inserted is gone at once, so that nothing is read back.
        library.sql(QStringLiteral("CREATE TRIGGER Hide%1 AFTER INSERT ON %1 BEGIN UPDATE %1 SET "
                                   "Available=0; END")
                        .arg(QLatin1String(table)));
        open(false);
        type("txtNewTopic", QStringLiteral("T"));
        type("txtNewSubtopic", QStringLiteral("S"));
        messages.expectInform(QStringLiteral("Error"), error);
        click(dialog.get(), "cmdSave");
        library.sql(QStringLiteral("DROP TRIGGER Hide%1").arg(QLatin1String(table)));
    }
    breakTable(QStringLiteral("SubTopics"));
    messages.expectInform(QStringLiteral("Error"), error);
    click(dialog.get(), "cmdSave");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(state.NewInfoSaved);
}

TEST_F(NewInfo, CancelAndEscapeSaveNothing)
{
    for (const bool escape : {false, true}) {
        open(false);
        type("txtNewTopic", QStringLiteral("T"));
        type("txtNewSubtopic", QStringLiteral("S"));
        if (escape) {
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Escape);
        } else {
            click(dialog.get(), "cmdCancel");
        }
        EXPECT_FALSE(dialog->isVisible());
    }
    EXPECT_FALSE(state.NewInfoSaved);
    EXPECT_EQ(rows(), before);
}

} // namespace
} // namespace varnholt
