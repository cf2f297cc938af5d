#include "authoring/PictureCanvas.h"
#include "authoring/filing.h"
#include "authoring/question_save.h"
#include "store/connection.h"
#include "support/test_library.h"

#include <QDir>
#include <QPainter>
#include <QProcess>

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>

#include <sys/resource.h>

namespace varnholt::test {

namespace {

QImage djpeg(const QString& path)
{
    QProcess decoder;
    decoder.start(QStringLiteral("djpeg"), {QStringLiteral("-bmp"), path});
    decoder.waitForFinished();
    return QImage::fromData(decoder.readAllStandardOutput()).convertToFormat(QImage::Format_RGB32);
}

double psnr(const QImage& a, const QImage& b)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < 4 * a.width(); ++x) {
            sum += std::pow(a.constScanLine(y)[x] - b.constScanLine(y)[x], 2);
        }
    }
    return 10 * std::log10(255.0 * 255 * 3 * a.width() * a.height() / sum);
}

const QStringList pictureOnly{QStringLiteral("1.jpg")};

struct Outcome
{
    SaveStep step;
    bool row;      ///< after a failure there, without an old picture
    bool rowByOld; ///< the same with an old picture under the new key
    bool aside;    ///< the old picture has been renamed
};

class QuestionSave : public testing::Test
{
protected:
    QuestionSave()
    {
        library.addAssessment(QStringLiteral("Maths"));
        QImage shot(1200, 400, QImage::Format_RGB32);
        shot.fill(0xFFF0F0FF);
        QPainter painter(&shot);
        painter.setFont(stampFont({QStringLiteral("Arial"), 20}));
        for (int y = 20; y < 400; y += 30) {
            painter.drawText(QPoint(10, y), QStringLiteral("Solve 3x + %1 = 7 for x. ").arg(y));
            painter.fillRect(500, y, 600, 12, QColor::fromHsv(y % 360, 200, 220));
        }
        painter.end();
        canvas.Paste(shot);
    }

    std::int32_t save(const SaveStepObserver& observer = {},
                      const QString& answer = QStringLiteral("x = 2"))
    {
        // A process started anew by a test is told where the library is.
        const QString folder = qEnvironmentVariable(folderVariable, library.folder());
        Connection connection;
        connection.open(folder + QStringLiteral("/Varnholt.mdb"));
        return SaveQuestion(connection, folder, {1, 7, 9, answer}, canvas, observer);
    }
    QStringList rows() const { return library.sql(QStringLiteral("SELECT * FROM Questions")); }
    QString filesFolder() const { return library.folder() + QStringLiteral("/Files"); }
    QStringList files() const
    {
        return QDir(filesFolder()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }
    /// A file that has the first question's name already.
    void leaveOldPicture(const char* name)
    {
        testPicture({60, 40}, 1).save(filesFolder() + u'/' + QLatin1String(name), "JPG");
    }

    static constexpr const char* folderVariable = "VARNHOLT_TEST_KILLED_SAVE";
    TestLibrary library;
    PictureCanvas canvas;
};

class FailingSave : public QuestionSave, public testing::WithParamInterface<Outcome>
{
protected:
    const Outcome& outcome = GetParam();
    const SaveStepObserver fail = [this](SaveStep step) {
        if (step == outcome.step) {
            throw Error(QStringLiteral("broken on purpose"));
        }
    };
};

} // namespace

TEST_F(QuestionSave, StoresWhatTheWindowShowed)
{
    EXPECT_EQ(save(), 1);
    EXPECT_EQ(rows(), QStringList(QStringLiteral("1|7|9|x = 2|1|1")));
    EXPECT_EQ(files(), pictureOnly);
    const QImage stored = djpeg(library.picturePath(1));
    ASSERT_EQ(stored.size(), questionPage);
    // The library's encoder at the same quality says what error and size are to be expected.
    QImage page(questionPage, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter(&page).drawImage(0, 0, canvas.picQuestion.image());
    const QString other = library.folder() + QStringLiteral("/other.jpg");
    page.save(other, "JPG", 75);
    EXPECT_GT(psnr(stored, page), psnr(djpeg(other), page) - 0.3);
    QFile file(library.picturePath(1));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_EQ(bytes.at(bytes.indexOf("\xFF\xC0") + 11), '\x22') << "luminance 2 x 2";
    EXPECT_LE(file.size(), QFileInfo(other).size());
    EXPECT_EQ(stored.pixel(400, 495), QRgb(0xFFFFFFFF)) << "white below the capture";

    EXPECT_THROW(save({}, QStringLiteral("it's")), DatabaseError);
    EXPECT_EQ(rows().size(), 1);
    EXPECT_EQ(files(), pictureOnly);
}

TEST_P(FailingSave, LeavesTheRowAtMostAndNeverAnOldPictureOnIt)
{
    EXPECT_THROW(save(fail), Error);
    EXPECT_EQ(rows().size(), outcome.row ? 1 : 0);
    EXPECT_TRUE(files().isEmpty());
}

TEST_P(FailingSave, WithAnOldPictureUnderTheNewKey)
{
    leaveOldPicture("1.JPG");
    EXPECT_THROW(save(fail), Error);
    EXPECT_EQ(rows().size(), outcome.rowByOld ? 1 : 0);
    EXPECT_EQ(files(),
              QStringList(outcome.aside ? QStringLiteral("1.JPG.bak") : QStringLiteral("1.JPG")));
}

/// A killed program: neither row nor half a picture; the next save goes well.
TEST_P(FailingSave, KilledThere)
{
    const auto die = [this](SaveStep step) {
        if (step == outcome.step) {
            std::_Exit(9);
        }
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    if (qEnvironmentVariableIsEmpty(folderVariable)) {
        qputenv(folderVariable, library.folder().toUtf8());
    }
    EXPECT_EXIT(save(die), testing::ExitedWithCode(9), "");
    qunsetenv(folderVariable);
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_EQ(files(), outcome.step == SaveStep::Commit ? pictureOnly : QStringList());
    EXPECT_EQ(save(), 1);
    EXPECT_EQ(djpeg(library.picturePath(1)).size(), questionPage);
}

INSTANTIATE_TEST_SUITE_P(Steps, FailingSave,
                         testing::Values(Outcome{SaveStep::InsertRow, false, false, false},
                                         Outcome{SaveStep::ReadKey, true, false, false},
                                         Outcome{SaveStep::SetOldPictureAside, true, false, false},
                                         Outcome{SaveStep::RenderPage, true, true, true},
                                         Outcome{SaveStep::FillBuffer, true, true, true},
                                         Outcome{SaveStep::Sample, true, true, true},
                                         Outcome{SaveStep::WritePicture, true, true, true},
                                         Outcome{SaveStep::Commit, false, false, true}));

TEST_F(QuestionSave, OldPicturesAreKeptUnderOtherNames)
{
    leaveOldPicture("1.JPG");
    leaveOldPicture("1.JPG.bak");
    leaveOldPicture("1.jpg");
    EXPECT_EQ(save(), 1);
    EXPECT_EQ(files(), QStringList({QStringLiteral("1.JPG.bak"), QStringLiteral("1.JPG.bak2"),
                                    QStringLiteral("1.jpg"), QStringLiteral("1.jpg.bak")}));
    EXPECT_EQ(djpeg(library.picturePath(1)).size(), questionPage);
}

TEST_F(QuestionSave, AFullDiskOrAFolderThatIsNoneLeavesARowWithoutPicture)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    // The database's files are small enough to grow on, the picture is not.
    const auto fill = [&](SaveStep step) {
        rlimit full = usual;
        full.rlim_cur = step == SaveStep::WritePicture ? 20'000 : usual.rlim_cur;
        setrlimit(RLIMIT_FSIZE, &full);
    };
    EXPECT_THROW(save(fill), Error);
    setrlimit(RLIMIT_FSIZE, &usual);
    EXPECT_TRUE(files().isEmpty());
    EXPECT_EQ(rows().size(), 1);

    const SaveReadiness ready{QStringLiteral("4"), true, true, false};
    EXPECT_TRUE(SaveObstacle(ready, library.folder()).isEmpty());
    EXPECT_FALSE(SaveObstacle({QStringLiteral("4"), true, true, true}, library.folder()).isEmpty());
    QDir().rmdir(filesFolder());
    QFile file(filesFolder());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_THROW(save(), Error);
    EXPECT_EQ(rows().size(), 2);
    EXPECT_TRUE(SaveObstacle(ready, library.folder()).contains(filesFolder()));
    file.remove();
    EXPECT_NO_THROW(save());
    EXPECT_EQ(files().size(), 1);
}

} // namespace varnholt::test
