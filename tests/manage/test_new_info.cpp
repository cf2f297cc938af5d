#include "manage/frmNewInfo.h"
#include "manage_test.h"

namespace varnholt::test {
namespace {

const Box textsMissing{u"Save Error"_s, u"You need to enter a topic and subtopic before saving."_s};
const Box savedInfo{u"New Info Added"_s, u"Saved successfully."_s};

class NewInfo : public ManageTest
{
protected:
    NewInfo()
    {
        library.addAssessment(u"A"_s);
        library.addTopic(1, u"Old"_s);
        library.addSubTopic(1, 1, u"Sub"_s);
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
    void typed(Qt::Key which) { QTest::keyClick(dialog->focusWidget(), which); }
    void typed(const QString& text) { QTest::keyClicks(dialog->focusWidget(), text); }
    /// Presses Save, which is refused or fails; these rows are there then.
    void saveFails(const QString& topic, const QString& subtopic, const Box& box,
                   const QString& expectedRows)
    {
        control<QLineEdit>(dialog.get(), "txtNewTopic")->setText(topic);
        control<QLineEdit>(dialog.get(), "txtNewSubtopic")->setText(subtopic);
        EXPECT_EQ(hinted("lblTopicHint"), topic.contains(u'\''));
        EXPECT_EQ(hinted("lblSubtopicHint"), subtopic.contains(u'\''));
        says(box);
        click(dialog.get(), "cmdSave");
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_FALSE(state.NewInfoSaved);
        EXPECT_EQ(rows(), expectedRows);
    }
    bool hinted(const char* name) { return control<QLabel>(dialog.get(), name)->isVisible(); }
    [[nodiscard]] QString rows() const
    {
        return library.sql(u"SELECT * FROM Topics; SELECT * FROM SubTopics"_s).join(u' ');
    }

    std::unique_ptr<frmNewInfo> dialog;
    const QString before = u"1|Old|1|1 1|1|Sub|1|1"_s;
};

TEST_F(NewInfo, EnterInTheSubtopicSavesBothTrimmed)
{
    open(false);
    EXPECT_EQ(dialog->windowTitle(), u"New Topic and Subtopic"_s);
    typed(u"  Waves "_s);
    typed(Qt::Key_Return); // does nothing in the topic
    EXPECT_TRUE(dialog->isVisible());
    typed(Qt::Key_Tab);
    typed(u" Light  "_s);
    says(savedInfo);
    typed(Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(state.NewInfoSaved);
    EXPECT_EQ(state.NewTopicID, 2);
    EXPECT_EQ(state.NewSubtopicNum, 2);
    EXPECT_EQ(rows(), u"1|Old|1|1 2|Waves|1|1 1|1|Sub|1|1 2|2|Light|1|1"_s);
}

TEST_F(NewInfo, SubtopicOnlyUsesTheChosenTopic)
{
    open(true, NamedTopic{1, u"O'Topic"_s});
    auto* field = control<QLineEdit>(dialog.get(), "txtNewTopic");
    EXPECT_EQ(field->text(), u"O'Topic"_s);
    EXPECT_FALSE(field->isEnabled() || hinted("lblTopicHint"));
    typed(u"Sound"_s);
    typed(Qt::Key_Tab);
    says(savedInfo);
    typed(Qt::Key_Return);
    EXPECT_EQ(state.NewTopicID, 1);
    EXPECT_EQ(rows(), before + u" 2|1|Sound|1|1"_s);

    open(true); // no topic chosen
    saveFails(QString(), u"S"_s, textsMissing, rows());
}

TEST_F(NewInfo, FailuresKeepTheDialogOpenAndATopicThatIsIn)
{
    open(false);
    saveFails(u"   "_s, u"S"_s, textsMissing, before);
    saveFails(u"T"_s, u" "_s, textsMissing, before);
    saveFails(u"O'Brien"_s, u"S"_s, addingFails[Topic], before);
    saveFails(u"Fine"_s, u"Isn't"_s, addingFails[Topic], u"1|Old|1|1 2|Fine|1|1 1|1|Sub|1|1"_s);
    // What is inserted is gone at once, so that nothing is read back.
    library.sql(u"UPDATE Topics SET Available=0; CREATE TRIGGER Hide AFTER INSERT ON Topics BEGIN "
                "UPDATE Topics SET Available=0; END"_s);
    saveFails(u"T"_s, u"S"_s, addingFails[Topic], u"1|Old|1|0 2|Fine|1|0 3|T|1|0 1|1|Sub|1|1"_s);

    const QString last = rows();
    click(dialog.get(), "cmdCancel");
    EXPECT_FALSE(dialog->isVisible());
    open(false);
    typed(u"T"_s);
    typed(Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible() || state.NewInfoSaved);
    EXPECT_EQ(rows(), last);
}

} // namespace
} // namespace varnholt::test
