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
        info = std::make_unique<frmNewInfo>(services, owner, 1, mode, chosen);
        dialog = info.get();
        info->open();
    }
    [[nodiscard]] QString rows() const
    {
        return library.sql(u"SELECT * FROM Topics; SELECT * FROM SubTopics"_s).join(u' ');
    }

    std::unique_ptr<frmNewInfo> info;
};

TEST_F(NewInfoDialog, EnterInTheSubtopicSavesTrimmedUnderANewOrTheChosenTopic)
{
    open(frmNewInfo::Mode::TopicAndSubtopic);
    typed(u"  Waves "_s);
    typed(Qt::Key_Return); // does nothing in the topic
    EXPECT_TRUE(info->isVisible());
    typed(Qt::Key_Tab);
    typed(u" Light  "_s);
    says(savedInfo);
    typed(Qt::Key_Return);
    EXPECT_FALSE(info->isVisible());
    ASSERT_TRUE(info->saved());
    EXPECT_EQ(info->saved()->NewTopicID, 2);
    EXPECT_EQ(info->saved()->NewSubtopicNum, 2);

    open(frmNewInfo::Mode::SubtopicOnly, NamedTopic{1, u"O'Topic"_s});
    EXPECT_EQ(field("txtNewTopic").text(), u"O'Topic"_s);
    EXPECT_FALSE(field("txtNewTopic").isEnabled());
    EXPECT_EQ(hint("lblTopicHint"), QString());
    typed(u"Sound"_s);
    says(savedInfo);
    typed(Qt::Key_Return);
    EXPECT_EQ(info->saved()->NewTopicID, 1);
    EXPECT_EQ(rows(), u"1|Old|1|1 2|Waves|1|1 1|1|Sub|1|1 2|2|Light|1|1 3|1|Sound|1|1"_s);
}

TEST_F(NewInfoDialog, FailuresKeepTheDialogOpenAndATopicThatIsIn)
{
    const struct
    {
        frmNewInfo::Mode mode;
        QString topic, subtopic;
        const Box& box;
        QString added;
    } table[] = {{frmNewInfo::Mode::SubtopicOnly, {}, u"S"_s, textsMissing, {}}, // none chosen
                 {frmNewInfo::Mode::TopicAndSubtopic, u"   "_s, u"S"_s, textsMissing, {}},
                 {frmNewInfo::Mode::TopicAndSubtopic, u"T"_s, u" "_s, textsMissing, {}},
                 {frmNewInfo::Mode::TopicAndSubtopic, u"O'B"_s, u"S"_s, addingFails[Topic], {}},
                 {frmNewInfo::Mode::TopicAndSubtopic, u"Fine"_s, u"Isn't"_s, addingFails[Topic],
                  u" 2|Fine|1|1"_s}};
    for (const auto& row : table) {
        open(row.mode);
        field("txtNewTopic").setText(row.topic);
        field("txtNewSubtopic").setText(row.subtopic);
        EXPECT_EQ(hint("lblTopicHint").isEmpty(), !row.topic.contains(u'\''));
        EXPECT_EQ(hint("lblSubtopicHint").isEmpty(), !row.subtopic.contains(u'\''));
        says(row.box);
        click(dialog, "cmdSave");
        EXPECT_TRUE(info->isVisible() && !info->saved());
        EXPECT_EQ(rows(), u"1|Old|1|1"_s + row.added + u" 1|1|Sub|1|1"_s);
    }
    typed(Qt::Key_Escape);
    EXPECT_FALSE(info->isVisible() || info->saved());
}

} // namespace
} // namespace varnholt::test
