#include "check/frmCheck.h"
#include "library/Library.h"
#include "support/gui.h"
#include "support/test_services.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace varnholt::test {
namespace {

using namespace Qt::StringLiterals;

constexpr int patienceMs = 60'000;

class CheckWindow : public testing::Test, protected TestWorld
{
protected:
    CheckWindow()
        : owner(library.folder(), clock)
    {
        library.addGenerated(u"Maths"_s, 2, 2, 2, true);
        owner.open();
    }
    void open()
    {
        window = std::make_unique<frmCheck>(services, owner, [this] { return ++asked > 0; });
        window->resize(1000, 600);
        present(*window);
        auto* again = control<QPushButton>(window.get(), "cmdCheckAgain");
        ASSERT_TRUE(QTest::qWaitFor([&] { return again->text() == u"Check &Again"; }, patienceMs));
        list = control<QTreeWidget>(window.get(), "lstFindings");
    }
    std::string found() const
    {
        QStringList lines;
        for (int row = 0; row < list->topLevelItemCount(); ++row) {
            const QTreeWidgetItem* line = list->topLevelItem(row);
            lines.append(line->text(0) + u" | "_s + line->text(1) + u" | "_s + line->text(2));
        }
        return lines.join(u'\n').toStdString();
    }
    QStringList rows()
    {
        return library.sql(u"SELECT * FROM Questions NOT INDEXED; SELECT * FROM SubTopics NOT "
                           "INDEXED; SELECT * FROM Topics NOT INDEXED"_s);
    }

    Library owner;
    std::unique_ptr<frmCheck> window;
    QTreeWidget* list = nullptr;
    int asked = 0;
};

TEST_F(CheckWindow, FindsEachFaultAndEveryRemedyCanBeUndone)
{
    library.sql(u"UPDATE SubTopics SET Available = 0 WHERE SubtopicNum = 2;UPDATE Questions SET "
                "SubTopicNum = 99 WHERE SOLIndex = 5;UPDATE Questions SET Answer = 'it''s' WHERE "
                "SOLIndex = 6;UPDATE Topics SET Topic = 'O''Neill' WHERE TopicID = 2;INSERT INTO "
                "Questions (SOLIndex, TopicID, SubTopicNum, Answer, AssessmentNum) VALUES (32768, "
                "1, 1, 'far', 1)"_s);
    QFile::remove(library.picturePath(1));
    QFile::resize(library.picturePath(2), 300);
    QFile::rename(library.picturePath(8), library.picturePath(32768));
    QFile::copy(library.picturePath(7), library.picturePath(77));
    open();
    EXPECT_EQ(
        found(),
        "The question with the answer A3 cannot be seen: its topic or subtopic is deleted. | "
        "Maths > Topic 1 > Subtopic 1.2 | Restore Its Place\n"
        "The question with the answer A4 cannot be seen: its topic or subtopic is deleted. | "
        "Maths > Topic 1 > Subtopic 1.2 | Restore Its Place\n"
        "The question with the answer A5 cannot be seen: the library does not have the place "
        "where it is filed. | Maths > O'Neill | To the Trash\n"
        "O'Neill holds an apostrophe ('), with which it cannot be saved again. | Maths | "
        "Replace by ’\n"
        "it's holds an apostrophe ('), with which it cannot be saved again. | Maths > O'Neill "
        "> Subtopic 2.1 | Replace by ’\n"
        "1 question has a number above 32,767: editing it fails. |  | \n"
        "The picture 77.jpg belongs to no question. |  | Show Folder\n"
        "The question with the answer A1 has no picture. | Maths > Topic 1 > Subtopic 1.1 | "
        "To the Trash\n"
        "The picture of the question with the answer A2 cannot be shown. | Maths > Topic 1 > "
        "Subtopic 1.1 | To the Trash\n"
        "The question with the answer A8 has no picture. | Maths > O'Neill > Subtopic 2.2 | "
        "To the Trash");
    const std::string before = found();
    const QStringList start = rows();
    // Shown, and all of one remedy in one step.
    QSignalSpy shown(window.get(), &frmCheck::showWanted);
    list->setCurrentItem(list->topLevelItem(8));
    click(window.get(), "cmdShow");
    EXPECT_EQ(shown.value(0).value(0).value<Item>(), (Item{ItemKind::Question, 2}));
    list->selectAll();
    EXPECT_EQ(control<QPushButton>(window.get(), "cmdRemedy")->text(), u"To the Tra&sh (4)");
    click(window.get(), "cmdRemedy");
    EXPECT_EQ(list->topLevelItemCount(), 6);
    QTest::keyClick(list, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(rows(), start);
    EXPECT_EQ(found(), before);
    // Each alone and undone, then all of them.
    for (const bool undo : {true, false}) {
        for (const int row : {9, 8, 7, 4, 3, 2, 0}) {
            list->setCurrentItem(list->topLevelItem(row));
            control<QPushButton>(window.get(), "cmdRemedy")->setFocus();
            click(window.get(), "cmdRemedy");
            const auto* button = control<QPushButton>(window.get(), "cmdRemedy");
            EXPECT_TRUE(button->isVisible() ? button->hasFocus() : list->hasFocus()) << row;
            EXPECT_NE(rows(), start);
            if (undo) {
                QTest::keyClick(list, Qt::Key_Z, Qt::ControlModifier);
                EXPECT_EQ(rows(), start);
                EXPECT_EQ(found(), before);
            }
        }
    }
    EXPECT_EQ(list->topLevelItemCount(), 2) << found();
    EXPECT_EQ(asked, 1) << "for a backup first";
    EXPECT_TRUE(QFile::exists(library.picturePath(77)));
    open();
    EXPECT_EQ(list->topLevelItemCount(), 2) << found();
    EXPECT_EQ(library.value(u"SELECT Answer FROM Questions WHERE SOLIndex = 6"_s), u"it’s"_s);
}

TEST_F(CheckWindow, AsksForAnotherNameForAPlaceWhoseNameIsTaken)
{
    library.sql(u"UPDATE Topics SET Available = 0 WHERE TopicID = 1"_s);
    open();
    owner.deleteAssessment(1);
    owner.addAssessment(u"Maths"_s);
    for (const QString& name : {QString(), u"Old Maths"_s}) {
        messages.expectInput(
            u"Name Taken"_s,
            u"Another assessment is called Maths now. Name for the one that comes back:"_s, name,
            u"Maths"_s);
        click(window.get(), "cmdRemedy");
    }
    EXPECT_EQ(library.value(u"SELECT AssessmentName FROM Assessments WHERE AssessmentNum = 1"_s),
              u"Old Maths"_s);
    EXPECT_EQ(list->topLevelItemCount(), 0) << found();
}

TEST_F(CheckWindow, SaysThatAllIsWellAndEndsWhenItsWindowCloses)
{
    open();
    EXPECT_EQ(control<QLabel>(window.get(), "lblState")->text().toStdString(),
              "Everything is in order.");
    click(window.get(), "cmdCheckAgain");
    window.reset();
    library.sql(u"PRAGMA writable_schema = ON; UPDATE sqlite_schema SET rootpage = (SELECT rootpage"
                " FROM sqlite_schema WHERE name = 'SubTopicsByAssessment')"
                " WHERE name = 'TopicsByAssessment'"_s);
    open();
    EXPECT_TRUE(found().starts_with("The file Varnholt.mdb is damaged")) << found();
    QSignalSpy wanted(window.get(), &frmCheck::backupsWanted);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(0, 2)).center());
    EXPECT_EQ(wanted.size(), 1);
}

} // namespace
} // namespace varnholt::test
