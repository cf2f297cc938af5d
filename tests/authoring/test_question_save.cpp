#include "authoring/PictureCanvas.h"
#include "authoring/hints.h"
#include "authoring/question_save.h"
#include "library/Library.h"
#include "support/fakes.h"
#include "support/test_files.h"
#include "support/test_library.h"

#include <QDir>
#include <QPainter>

#include <gtest/gtest.h>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

const QStringList pictureOnly{u"1.jpg"_s};

class QuestionSave : public testing::Test
{
protected:
    QuestionSave()
    {
        library.addAssessment(u"Maths"_s);
        QImage shot(1400, 400, QImage::Format_RGB32);
        shot.fill(0xFFF0F0FF);
        QPainter painter(&shot);
        painter.setFont(stampFont({u"Arial"_s, 20}));
        for (int y = 20; y < 400; y += 30) {
            painter.drawText(QPoint(10, y), u"Solve 3x + %1 = 7 for x. "_s.arg(y));
            painter.fillRect(500, y, 600, 12, QColor::fromHsv(y % 360, 200, 220));
        }
        painter.end();
        canvas.Paste(shot);
    }

    /// As one window saves: what an earlier try left is completed.
    std::int32_t save(const SaveStepObserver& observer = {}, const QString& answer = u"x = 2"_s)
    {
        Library owner(library.folder(), clock);
        owner.open();
        question = {{1, 7, 9}, answer, question.SOLIndex};
        SaveQuestion(owner, question, canvas.renderPage(), observer);
        return question.SOLIndex;
    }
    QStringList rows() const { return library.sql(u"SELECT * FROM Questions"_s); }
    QString filesFolder() const { return library.folder() + u"/Files"_s; }
    QStringList files() const
    {
        return QDir(filesFolder()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }

    TestLibrary library;
    FakeClock clock;
    PictureCanvas canvas;
    NewQuestion question;
};

class FailingSave : public QuestionSave, public testing::WithParamInterface<SaveStep>
{};

} // namespace

TEST_F(QuestionSave, StoresWhatTheWindowShowed)
{
    EXPECT_EQ(save(), 1);
    EXPECT_EQ(rows(), QStringList(u"1|7|9|x = 2|1|1"_s));
    EXPECT_EQ(files(), pictureOnly);
    const QImage stored = QImage(library.picturePath(1));
    ASSERT_EQ(stored.size(), questionPage);
    // Each patch of 10 x 10 pixels has its colour, white where the capture ends.
    QImage page(questionPage, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter(&page).drawImage(0, 0, canvas.image());
    const QSize patches = questionPage / 10;
    const QImage wanted = page.scaled(patches, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage found = stored.scaled(patches, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    for (int i = 0; i < patches.width() * patches.height(); ++i) {
        const QPoint at(i % patches.width(), i / patches.width());
        ASSERT_NEAR(qGray(found.pixel(at)), qGray(wanted.pixel(at)), 12) << at.x() << ' ' << at.y();
    }
    const QByteArray bytes = readFile(library.picturePath(1));
    EXPECT_EQ(bytes.at(bytes.indexOf("\xFF\xC0") + 11), '\x22') << "luminance 2 x 2";
    EXPECT_EQ(bytes.at(bytes.indexOf("\xFF\xDB") + 5), 8) << "quality 75";

    question = {};
    EXPECT_THROW(save({}, u"it's"_s), DatabaseError);
    EXPECT_EQ(rows().size(), 1);
    EXPECT_EQ(files(), pictureOnly);
}

TEST_F(QuestionSave, AReplacedPictureIsKeptAndComesBackByUndo)
{
    const std::int32_t key = save();
    Library owner(library.folder(), clock);
    owner.open();
    const auto bytes = [&] { return readFile(library.picturePath(key)); };
    const auto replace = [&](QRgb colour) {
        QImage picture(60, 40, QImage::Format_RGB32);
        picture.fill(colour);
        owner.replacePicture(key,
                             [&](const QString& path) { WriteQuestionPicture(path, picture, 90); });
    };
    const auto turn = [&](bool undo, const QByteArray& expected) {
        const UndoOutcome outcome = undo ? owner.undo() : owner.redo();
        EXPECT_EQ(outcome.result, UndoOutcome::Result::Done);
        EXPECT_EQ(outcome.step->kind, StepKind::Edit);
        EXPECT_EQ(outcome.changed, std::vector<Item>({{ItemKind::Question, key}}));
        EXPECT_EQ(bytes(), expected);
    };
    QList<QByteArray> versions{bytes()};
    for (const QRgb colour : {qRgb(255, 0, 0), qRgb(0, 0, 255)}) {
        replace(colour);
        versions.append(bytes());
    }
    EXPECT_NE(versions[1], versions[2]);
    turn(true, versions[1]);
    turn(true, versions[0]);
    turn(false, versions[1]);
    turn(false, versions[2]);
    EXPECT_EQ(files(), pictureOnly) << "something beside the pictures";
    const QDir old(filesFolder() + u"/Old"_s);
    EXPECT_EQ(old.entryList(QDir::Files).size(), 3);

    // What fails leaves everything as it was.
    EXPECT_THROW(owner.replacePicture(key, [](const QString&) { throw Error(u"broken"_s); }),
                 Error);
    library.sql(u"CREATE TRIGGER t BEFORE INSERT ON PlusChanges BEGIN "
                "SELECT RAISE(ABORT, 'broken'); END"_s);
    EXPECT_THROW(replace(qRgb(0, 255, 0)), Error);
    EXPECT_EQ(bytes(), versions[2]);
    library.sql(u"DROP TRIGGER t"_s);
    for (const QString& name : old.entryList(QDir::Files)) {
        QFile::remove(old.filePath(name));
    }
    EXPECT_THROW(owner.undo(), Error);
    EXPECT_EQ(bytes(), versions[2]);
    EXPECT_EQ(owner.undoStep()->kind, StepKind::Edit);
}

TEST_P(FailingSave, LeavesARowThatAnotherTryCompletes)
{
    const auto fail = [this](SaveStep step) {
        if (step == GetParam()) {
            throw Error(u"broken on purpose"_s);
        }
    };
    EXPECT_THROW(save(fail), PictureMissing);
    EXPECT_EQ(rows().size(), 1);
    EXPECT_TRUE(files().isEmpty());
    EXPECT_THROW(save(fail), PictureMissing); // once more, on the row
    // With what is said now.
    EXPECT_EQ(save({}, u"x = 3"_s), 1);
    EXPECT_EQ(rows(), QStringList(u"1|7|9|x = 3|1|1"_s));
    EXPECT_EQ(files(), pictureOnly);
}

INSTANTIATE_TEST_SUITE_P(Steps, FailingSave,
                         testing::Values(SaveStep::FillBuffer, SaveStep::Sample,
                                         SaveStep::WritePicture));

TEST_F(QuestionSave, AFolderThatIsNoneIsSaidBeforeAndLeavesARowWithoutPicture)
{
    const SaveReadiness ready{u"4"_s, true, true, false};
    EXPECT_TRUE(SaveObstacle(ready, library.folder()).isEmpty());
    EXPECT_FALSE(SaveObstacle({u"4"_s, true, true, true}, library.folder()).isEmpty());
    QDir().rmdir(filesFolder());
    writeFile(filesFolder(), {});
    EXPECT_THROW(save(), Error);
    EXPECT_EQ(rows().size(), 1);
    EXPECT_TRUE(
        SaveObstacle(ready, library.folder()).contains(QDir::toNativeSeparators(filesFolder())));
    QFile::remove(filesFolder());
    EXPECT_NO_THROW(save());
    EXPECT_EQ(files().size(), 1);
}

} // namespace varnholt::test
