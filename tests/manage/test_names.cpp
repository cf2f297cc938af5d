#include "manage/PictureStrip.h"
#include "manage_test.h"

#include <QMenu>
#include <QPlainTextEdit>

namespace varnholt::test {
namespace {

class Names : public ManageTest
{
protected:
    Names()
    {
        library.addGenerated(u"Mine"_s, 2, 2, 3, true);
        library.addAssessment(u"Other"_s);
        open();
        browse(0, 1);
        press("cmdRight");
    }

    /// What is said beside the field.
    QString hint()
    {
        auto* label = control<QLabel>(dialog, "lblHint");
        return label->isVisible() ? label->text() : QString();
    }
    QAction* entry(const char* more, int index)
    {
        QMenu* menu = control<QPushButton>(window.get(), more)->menu();
        Q_EMIT menu->aboutToShow();
        return menu->actions()[index];
    }
};

TEST_F(Names, AreChangedByF2WithTheRulesOfNewOnesAndComeBack)
{
    struct Row
    {
        QWidget& control;
        QString old, taken, query;
        std::function<QString()> shown;
    };
    const Row table[] = {{assessments(), u"Mine"_s, u"Other"_s,
                          u"SELECT AssessmentName FROM Assessments WHERE AssessmentNum=1"_s,
                          [this] { return assessments().itemText(0); }},
                         {topics(), u"Topic 1"_s, u"Topic 2"_s,
                          u"SELECT Topic FROM Topics WHERE TopicID=1"_s,
                          [this] { return topics().itemText(0); }},
                         {subtopics(), u"Subtopic 1.2"_s, u"Subtopic 1.1"_s,
                          u"SELECT SubTopic FROM SubTopics WHERE SubtopicNum=2"_s,
                          [this] { return subtopics().itemText(1); }}};
    for (const Row& row : table) {
        row.control.setFocus();
        inDialog([&] { key(Qt::Key_F2); },
                 [&] {
                     EXPECT_EQ(control<QLineEdit>(dialog, "txtName")->selectedText(), row.old);
                     typed(Qt::Key_Backspace);
                     EXPECT_EQ(hint(), u"A name is needed."_s);
                     typed(Qt::Key_Return);
                     typed(u"O'k"_s);
                     EXPECT_EQ(hint(), u"An apostrophe (') cannot be saved. Use ’ instead."_s);
                     typed(Qt::Key_Return);
                     EXPECT_TRUE(dialog->isVisible());
                     control<QLineEdit>(dialog, "txtName")->setText(row.taken);
                     EXPECT_TRUE(hint().endsWith(u"has this name already. Both may have it."_s));
                     control<QLineEdit>(dialog, "txtName")->clear();
                     typed(u"Better"_s);
                     EXPECT_EQ(hint(), QString());
                     typed(Qt::Key_Return);
                     EXPECT_FALSE(dialog->isVisible());
                 });
        EXPECT_EQ(library.value(row.query), u"Better"_s);
        EXPECT_EQ(row.shown(), u"Better"_s);
        EXPECT_EQ(text("lblUndo"), u"The new name is “Better”."_s);
        EXPECT_EQ(focus(), row.control.objectName());
        QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(row.shown(), row.old);
        EXPECT_EQ(place(), u"2 of 3 <>"_s); // all the while
        // The same name is no change, and Esc leaves.
        inDialog([&] { key(Qt::Key_F2); }, [&] { typed(Qt::Key_Return); });
        inDialog([&] { key(Qt::Key_F2); }, [&] { typed(Qt::Key_Escape); });
        EXPECT_TRUE(shown("cmdRedo"));
    }
    subtopics().setListIndex(-1);
    EXPECT_FALSE(entry("cmdSubtopicMore", 0)->isEnabled());
    EXPECT_TRUE(entry("cmdTopicMore", 0)->isEnabled());
}

TEST_F(Names, SeveralAreAddedAtOnceOrNone)
{
    const auto open = [this] { entry("cmdSubtopicMore", 1)->trigger(); };
    auto names = [this] { return control<QPlainTextEdit>(dialog, "txtNames"); };
    const auto add = [this] { click(dialog, "cmdAdd"); };
    const QString question = u"Close without adding the names that you have typed?"_s;
    inDialog(open, [&] {
        EXPECT_FALSE(control<QPushButton>(dialog, "cmdAdd")->isEnabled());
        names()->setPlainText(u"One\n\n O'k \nit's\na'\nb'\tc"_s);
        const QString refusal = u" An apostrophe (') cannot be saved. Use ’ instead.\n"_s;
        EXPECT_EQ(hint(), u"Line 3:"_s + refusal + u"Line 4:"_s + refusal + u"Line 5:"_s + refusal +
                              u"One more line cannot be saved either."_s);
        EXPECT_FALSE(control<QPushButton>(dialog, "cmdAdd")->isEnabled());
        messages.expectYesNo(dialog->windowTitle(), question, false);
        typed(Qt::Key_Escape);
        EXPECT_TRUE(dialog->isVisible());
        names()->setPlainText(u"One\n\n Two\t2 \n"_s);
        add();
    });
    EXPECT_EQ(library.sql(u"SELECT * FROM SubTopics WHERE SubtopicNum>4"_s),
              QStringList({u"5|1|One|1|1"_s, u"6|1|Two 2|1|1"_s}));
    EXPECT_EQ(text("lblUndo"), u"“One” and one more added."_s);
    EXPECT_EQ(place(), u"2 of 3 <>"_s);
    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(subtopics().listCount(), 2);
    EXPECT_EQ(text("lblUndo"), u"Undone: “One” and one more are no longer there."_s);
    EXPECT_TRUE(entry("cmdTopicMore", 1)->isEnabled());

    // One that fails takes the others with it, and is told.
    library.sql(u"CREATE TRIGGER Bad BEFORE INSERT ON SubTopics WHEN NEW.SubTopic='Bad' BEGIN "
                "SELECT RAISE(ABORT,'no'); END"_s);
    inDialog(open, [&] {
        names()->setPlainText(u"Good\nBad"_s);
        add();
        EXPECT_TRUE(hint().startsWith(u"Nothing was added. "_s));
        messages.expectYesNo(dialog->windowTitle(), question, true);
        typed(Qt::Key_Escape);
    });
    EXPECT_EQ(library.value(u"SELECT count(*) FROM SubTopics"_s), u"6"_s);
}

TEST_F(Names, TheStripOfPicturesShowsAndSteps)
{
    auto* strip = control<PictureStrip>(window.get(), "lstPictures");
    EXPECT_EQ(strip->currentIndex().row(), 1);
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return !strip->currentIndex().data(Qt::DecorationRole).value<QPixmap>().toImage().allGray();
    })) << "its picture comes";
    QTest::mouseClick(strip->viewport(), Qt::LeftButton, {},
                      strip->visualRect(strip->model()->index(2, 0)).center());
    EXPECT_EQ(place(), u"3 of 3 <-"_s);
    EXPECT_EQ(focus(), u"lstPictures"_s);
    key(Qt::Key_Left);
    EXPECT_EQ(place(), u"2 of 3 <>"_s);
    EXPECT_EQ(text("lblAnswer"), u"Answer: A5"_s);
}

} // namespace
} // namespace varnholt::test
