#include "manage/frmNewInfo.h"
#include "manage_test.h"

namespace varnholt::test {
namespace {

class NewInfo : public ManageTest
{
protected:
    NewInfo()
    {
        library.addAssessment(u"A"_s);
        library.addTopic(1, u"Old topic"_s);
        library.addSubTopic(1, 1, u"Old subtopic"_s);
        state.CurrentAssessmentNum = 1;
    }

    void open(bool subtopicOnly, std::optional<NamedTopic> chosen = std::nullopt)
    {
        state.NewInfoSaved = true;
        state.SubtopicOnly = subtopicOnly;
        dialog = std::make_unique<frmNewInfo>(services, state, connection, chosen);
        dialog->open();
        EXPECT_FALSE(state.NewInfoSaved);
    }
    void key(Qt::Key which) { QTest::keyClick(dialog->focusWidget(), which); }
    void type(const QString& topic, const QString& subtopic)
    {
        control<QLineEdit>(dialog.get(), "txtNewTopic")->setText(topic);
        control<QLineEdit>(dialog.get(), "txtNewSubtopic")->setText(subtopic);
    }
    void save() { click(dialog.get(), "cmdSave"); }
    bool hinted(const char* name) { return control<QLabel>(dialog.get(), name)->isVisible(); }
    void saysSavedInfo() { says(u"New Info Added"_s, u"Saved successfully."_s); }
    void saysError() { says(u"Error"_s, u"There was an error adding this topic."_s); }
    void expectOpen(const QString& expectedRows)
    {
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_FALSE(state.NewInfoSaved);
        EXPECT_EQ(rows(), expectedRows);
    }

    /// "key=topic" of all topics and "key=topic/subtopic" of all subtopics.
    [[nodiscard]] QString rows() const
    {
        return library.value(
            u"SELECT group_concat(TopicID||'='||Topic||'/'||AssessmentNum) FROM Topics; SELECT "
            "group_concat(SubtopicNum||'='||TopicID||'/'||SubTopic||'/'||AssessmentNum) FROM "
            "SubTopics"_s);
    }

    std::unique_ptr<frmNewInfo> dialog;
    const QString before = u"1=Old topic/1\n1=1/Old subtopic/1"_s;
};

TEST_F(NewInfo, EnterInTheSubtopicSavesBothTrimmed)
{
    open(false);
    EXPECT_EQ(dialog->windowTitle(), u"New Topic and Subtopic"_s);
    QTest::keyClicks(dialog->focusWidget(), u"  Waves "_s);
    key(Qt::Key_Return); // does nothing in the topic
    expectOpen(before);
    key(Qt::Key_Tab);
    QTest::keyClicks(dialog->focusWidget(), u" Light  "_s);
    saysSavedInfo();
    key(Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(state.NewInfoSaved);
    EXPECT_EQ(state.NewTopicID, 2);
    EXPECT_EQ(state.NewSubtopicNum, 2);
    EXPECT_EQ(rows(), u"1=Old topic/1,2=Waves/1\n1=1/Old subtopic/1,2=2/Light/1"_s);
}

TEST_F(NewInfo, SubtopicOnlyUsesTheChosenTopic)
{
    open(true, NamedTopic{1, u"O'Topic"_s});
    auto* field = control<QLineEdit>(dialog.get(), "txtNewTopic");
    EXPECT_EQ(field->text(), u"O'Topic"_s);
    EXPECT_FALSE(field->isEnabled() || hinted("lblTopicHint"));
    QTest::keyClicks(dialog->focusWidget(), u"Sound"_s);
    key(Qt::Key_Tab);
    saysSavedInfo();
    key(Qt::Key_Return);
    EXPECT_EQ(state.NewTopicID, 1);
    EXPECT_EQ(rows(), u"1=Old topic/1\n1=1/Old subtopic/1,2=1/Sound/1"_s);
}

TEST_F(NewInfo, EmptyOrBlankTextsAreRefusedAndCancelSavesNothing)
{
    open(false);
    for (const auto& [topic, subtopic] :
         {std::pair(u""_s, u""_s), {u"   "_s, u"S"_s}, {u"T"_s, u" "_s}}) {
        type(topic, subtopic);
        says(u"Save Error"_s, u"You need to enter a topic and subtopic before saving."_s);
        save();
        expectOpen(before);
    }
    type(u"T"_s, u"S"_s);
    key(Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    open(true); // no topic chosen
    control<QLineEdit>(dialog.get(), "txtNewSubtopic")->setText(u"S"_s);
    says(u"Save Error"_s, u"You need to enter a topic and subtopic before saving."_s);
    save();
    expectOpen(before);
    click(dialog.get(), "cmdCancel");
    EXPECT_FALSE(dialog->isVisible() || state.NewInfoSaved);
}

TEST_F(NewInfo, FailuresKeepTheDialogOpenAndATopicThatIsIn)
{
    open(false);
    type(u"O'Brien"_s, u"S"_s);
    EXPECT_TRUE(hinted("lblTopicHint") && !hinted("lblSubtopicHint"));
    saysError();
    save();
    expectOpen(before);
    type(u"Fine"_s, u"Isn't"_s);
    EXPECT_TRUE(!hinted("lblTopicHint") && hinted("lblSubtopicHint"));
    saysError();
    save();
    expectOpen(u"1=Old topic/1,2=Fine/1\n1=1/Old subtopic/1"_s);

    // What is inserted is gone at once, so that nothing is read back.
    library.sql(u"UPDATE Topics SET Available=0; CREATE TRIGGER Hide AFTER INSERT ON Topics BEGIN "
                "UPDATE Topics SET Available=0; END"_s);
    type(u"T"_s, u"S"_s);
    saysError();
    save();
    expectOpen(u"1=Old topic/1,2=Fine/1,3=T/1\n1=1/Old subtopic/1"_s);
}

} // namespace
} // namespace varnholt::test
