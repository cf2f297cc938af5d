#include "files/placing.h"
#include "manage/PictureStrip.h"
#include "manage_test.h"
#include "support/test_files.h"
#include "toolkit/PictureView.h"

#include <QFile>
#include <QFileInfo>

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

    QImage picture() { return control<PictureView>(window.get(), "imgQuestion")->picture(); }
    QImage pictureOf(int key) { return QImage(library.picturePath(key)); }
};

TEST_F(Browser, QuestionsOfUnavailableSubtopicsShowUnderEverySubtopicOfTheirTopic)
{
    library.sql(u"UPDATE SubTopics SET Available=0 WHERE SubtopicNum=2"_s);
    open();
    browse(0, 0);
    EXPECT_EQ(place(), u"1 of 6 ->"_s);
    browse(1, 0);
    EXPECT_EQ(place(), u"1 of 3 ->"_s);
}

TEST_F(Browser, MissingPicturesAreToldAndSteppedPast)
{
    // Missing, garbage, and one that goes after it was decoded ahead.
    removeFile(library.picturePath(1));
    QFile garbage(library.picturePath(2));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray("\xff\xd8\xff\xe0 not a picture ").repeated(1000));
    garbage.close();
    says(fileMissing);
    browse(0, 0);
    EXPECT_EQ(place(), u"1 of 3 ->"_s);
    EXPECT_TRUE(picture().isNull());
    EXPECT_FALSE(shown("lblPictureHint"));
    says(fileMissing);
    press("cmdRight");
    press("cmdRight");
    EXPECT_EQ(picture(), pictureOf(3));
    // A button that has come to its end never makes its neighbour the next to be pressed.
    EXPECT_EQ(focus(), u"lstSubtopics"_s);
    says(fileMissing);
    press("cmdLeft");
    EXPECT_EQ(picture(), pictureOf(3)); // stays on screen
    EXPECT_TRUE(shown("lblPictureHint"));
    removeFile(library.picturePath(3));
    says(fileMissing);
    press("cmdRight");
    EXPECT_EQ(place(), u"3 of 3 <-"_s);
    browse(1, 1);
    EXPECT_EQ(picture(), pictureOf(10));
    EXPECT_FALSE(shown("lblPictureHint"));
}

TEST_F(Browser, TheStripOfPicturesShowsAndSteps)
{
    browse(0, 1);
    auto* strip = control<PictureStrip>(window.get(), "lstPictures");
    const auto thumbnail = [&] {
        return strip->currentIndex().data(Qt::DecorationRole).value<QPixmap>().toImage();
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return !thumbnail().allGray(); })) << "its picture comes";
    const QImage before = thumbnail();
    owner.replacePicture(4, [](const QString& path) {
        testPicture({60, 40}, 77).save(path, "JPG");
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return !thumbnail().allGray() && thumbnail() != before; }))
        << "and the new one";
    QTest::mouseClick(strip->viewport(), Qt::LeftButton, {},
                      strip->visualRect(strip->model()->index(2, 0)).center());
    EXPECT_EQ(place(), u"3 of 3 <-"_s);
    EXPECT_EQ(focus(), u"lstPictures"_s);
    key(Qt::Key_Left);
    EXPECT_EQ(place(), u"2 of 3 <>"_s);
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
        inDialog([this] { press("cmdEditQuestion"); }, work);
    }
    void saveFails()
    {
        asks(saves);
        says(savingFails);
        click(dialog, "cmdSave");
        EXPECT_TRUE(dialog->isVisible());
    }
    ComboBox& topicBox() { return *control<ComboBox>(dialog, "cboTopics"); }
    ComboBox& subtopicBox() { return *control<ComboBox>(dialog, "cboSubtopics"); }
    QLineEdit& answer() { return field("txtAnswer"); }
    /// Whatever the two hints say.
    QString hints() { return hint("lblFilingHint") + hint("lblAnswerHint"); }
    QString row() { return library.value(u"SELECT * FROM Questions WHERE SOLIndex=5"_s); }
};

TEST_F(Editor, RefilesAndSavesByKeyboard)
{
    edit([&] {
        EXPECT_EQ(topicBox().currentText(), u"Topic 1"_s);
        EXPECT_EQ(subtopicBox().currentText(), u"Subtopic 1.2"_s);
        EXPECT_EQ(answer().selectedText(), u"A5"_s);
        QTest::keyClick(&topicBox(), Qt::Key_Down);
        EXPECT_EQ(subtopicBox().listCount(), 2);
        EXPECT_EQ(subtopicBox().currentText(), u"Subtopic 2.1"_s);
        typed(u"  9.81 \"m\" "_s);
        asks(saves, false);
        typed(Qt::Key_Return);
        EXPECT_EQ(answer().text(), u"  9.81 \"m\" "_s);
        asks(saves);
        says(saved);
        typed(Qt::Key_Return);
        // The picture stays in sight.
        EXPECT_LT(dialog->geometry().right(),
                  control<QWidget>(window.get(), "imgQuestion")->mapToGlobal(QPoint()).x());
    });
    EXPECT_EQ(row(), u"5|2|3|9.81 \"m\"|1|1"_s);
    EXPECT_EQ(place(), u"2 of 2 <-"_s);
    EXPECT_EQ(focus(), u"cmdEditQuestion"_s);
    // Leaving by Escape changes nothing.
    edit([&] { typed(Qt::Key_Escape); });
    EXPECT_EQ(place(), u"2 of 2 <-"_s);
}

TEST_F(Editor, FailuresAreHintedAtAndKeepTheDialogOpen)
{
    library.sql(u"INSERT INTO Topics(TopicID,Topic,AssessmentNum) VALUES(3,'Bare',1),"
                "(40000,'Big',1); INSERT INTO SubTopics(SubtopicNum,TopicID,SubTopic,"
                "AssessmentNum) VALUES(40000,1,'Big',1),(40001,40000,'Bigger',1)"_s);
    open();
    struct Row
    {
        int topic, subtopic;
        QString answer, hint;
    };
    const Row table[] = {
        {0, 1, u"Newton's"_s, u"An apostrophe (') cannot be saved. Use ’ instead."_s},
        {2, -1, u"12 kg"_s, u"This topic has no subtopics; choose another topic."_s},
        {3, 0, u"12 kg"_s, u"Topic number 40000 is above 32767"_s},
        {0, 2, u"12 kg"_s, u"Subtopic number 40000 is above 32767"_s}};
    edit([&] {
        for (const Row& row : table) {
            topicBox().setListIndex(row.topic);
            subtopicBox().setListIndex(row.subtopic);
            answer().setText(row.answer);
            EXPECT_TRUE(hints().startsWith(row.hint)) << row.hint.toStdString();
            saveFails();
        }
        subtopicBox().setListIndex(0);
        EXPECT_EQ(hints(), QString());
        answer().setText(QString(200, u'M'));
        EXPECT_TRUE(hints().startsWith(u"This is too long for one line of the answer key"_s));
    });
    EXPECT_EQ(row(), u"5|1|2|A5|1|1"_s);

    library.sql(u"UPDATE Questions SET SOLIndex=32768 WHERE SOLIndex=5;"
                "UPDATE Questions SET Available=0 WHERE SOLIndex=4"_s);
    // The window may be reading it for its row of small pictures.
    EXPECT_FALSE(RenameFile(QFileInfo(library.picturePath(5)).filesystemFilePath(),
                            QFileInfo(library.picturePath(32768)).filesystemFilePath()));
    open();
    edit([&] {
        EXPECT_TRUE(hints().startsWith(u"Question number 32768 is above 32767"_s));
        saveFails();
    });
}

} // namespace
} // namespace varnholt::test
