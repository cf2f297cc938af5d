#include "manage/frmNewInfo.h"
#include "manage_test.h"

namespace varnholt::test {
namespace {

const Box textsMissing{u"Save Error"_s, u"You need to enter a topic and subtopic before saving."_s};
const Box savedInfo{u"New Info Added"_s, u"Saved successfully."_s};

class NewInfoDialog : public ManageTest
{
protected:
    NewInfoDialog()
    {
        library.addAssessment(u"A"_s);
        library.addTopic(1, u"Old"_s);
        library.addSubTopic(1, 1, u"Sub"_s);
    }

    void open(frmNewInfo::Mode mode, std::optional<NamedTopic> chosen = std::nullopt)
    {
        dialog = std::make_unique<frmNewInfo>(services, owner, 1, mode, chosen);
        dialog->open();
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
        EXPECT_FALSE(dialog->saved());
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

TEST_F(NewInfoDialog, EnterInTheSubtopicSavesTrimmedUnderANewOrTheChosenTopic)
{
    open(frmNewInfo::Mode::TopicAndSubtopic);
    typed(u"  Waves "_s);
    typed(Qt::Key_Return); // does nothing in the topic
    EXPECT_TRUE(dialog->isVisible());
    typed(Qt::Key_Tab);
    typed(u" Light  "_s);
    says(savedInfo);
    typed(Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    ASSERT_TRUE(dialog->saved());
    EXPECT_EQ(dialog->saved()->NewTopicID, 2);
    EXPECT_EQ(dialog->saved()->NewSubtopicNum, 2);
    EXPECT_EQ(rows(), u"1|Old|1|1 2|Waves|1|1 1|1|Sub|1|1 2|2|Light|1|1"_s);

    open(frmNewInfo::Mode::SubtopicOnly, NamedTopic{1, u"O'Topic"_s});
    auto* field = control<QLineEdit>(dialog.get(), "txtNewTopic");
    EXPECT_EQ(field->text(), u"O'Topic"_s);
    EXPECT_FALSE(field->isEnabled() || hinted("lblTopicHint"));
    typed(u"Sound"_s);
    says(savedInfo);
    typed(Qt::Key_Return);
    EXPECT_EQ(dialog->saved()->NewTopicID, 1);
    EXPECT_TRUE(rows().endsWith(u" 3|1|Sound|1|1"_s));
}

TEST_F(NewInfoDialog, FailuresKeepTheDialogOpenAndATopicThatIsIn)
{
    open(frmNewInfo::Mode::SubtopicOnly); // no topic chosen
    saveFails(QString(), u"S"_s, textsMissing, before);
    open(frmNewInfo::Mode::TopicAndSubtopic);
    saveFails(u"   "_s, u"S"_s, textsMissing, before);
    saveFails(u"T"_s, u" "_s, textsMissing, before);
    saveFails(u"O'Brien"_s, u"S"_s, addingFails[Topic], before);
    saveFails(u"Fine"_s, u"Isn't"_s, addingFails[Topic], u"1|Old|1|1 2|Fine|1|1 1|1|Sub|1|1"_s);
    typed(Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible() || dialog->saved());
}

} // namespace
} // namespace varnholt::test
