#include "authoring/PictureCanvas.h"
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
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            sum += std::pow(qRed(p) - qRed(q), 2) + std::pow(qGreen(p) - qGreen(q), 2) +
                   std::pow(qBlue(p) - qBlue(q), 2);
        }
    }
    return 10 * std::log10(255.0 * 255 * 3 * a.width() * a.height() / sum);
}

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

    std::int32_t saveIn(const QString& folder, const SaveStepObserver& observer,
                        const QString& answer = QStringLiteral("x = 2"))
    {
        Connection connection;
        connection.open(folder + QStringLiteral("/Varnholt.mdb"));
        return SaveQuestion(connection, folder, {1, 7, 9, answer}, canvas, observer);
    }
    std::int32_t save(const SaveStepObserver& observer = {},
                      const QString& answer = QStringLiteral("x = 2"))
    {
        return saveIn(library.folder(), observer, answer);
    }
    QStringList rows() const { return library.sql(QStringLiteral("SELECT * FROM Questions")); }
    QStringList files() const
    {
        return QDir(library.folder() + QStringLiteral("/Files"))
            .entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }
    /// A file that has the first question's name already.
    void leaveOldPicture(const QString& name)
    {
        testPicture({60, 40}, 1).save(library.folder() + QStringLiteral("/Files/") + name, "JPG");
    }

    TestLibrary library;
    PictureCanvas canvas;
};

const QStringList pictureOnly{QStringLiteral("1.jpg")};
const QString oldName = QStringLiteral("1.JPG");
const QString asideName = QStringLiteral("1.JPG.bak");

SaveStepObserver failAt(SaveStep failing)
{
    return [failing](SaveStep step) {
        if (step == failing) {
            throw Error(QStringLiteral("broken on purpose"));
        }
    };
}

struct Outcome
{
    SaveStep step;
    bool row;      ///< after a failure there, without an old picture
    bool rowByOld; ///< the same with an old picture under the new key
    bool aside;    ///< the old picture has been renamed
};

class FailingSave : public QuestionSave, public testing::WithParamInterface<Outcome>
{};

} // namespace

TEST_F(QuestionSave, StoresWhatTheWindowShowed)
{
    EXPECT_EQ(save(), 1);
    EXPECT_EQ(rows(), QStringList(QStringLiteral("1|7|9|x = 2|1|1")));
    EXPECT_EQ(files(), pictureOnly);
    const QImage shown = canvas.picQuestion.image();
    const QImage stored = djpeg(library.picturePath(1));
    ASSERT_EQ(stored.size(), questionPage);
    // The library's encoder at the same quality says what error is to be expected.
    QImage page(questionPage, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter(&page).drawImage(0, 0, shown);
    const QString other = library.folder() + QStringLiteral("/other.jpg");
    page.save(other, "JPG", 75);
    EXPECT_GT(psnr(stored, page), psnr(djpeg(other), page) - 0.3);
    // Below the capture the page is white.
    EXPECT_EQ(stored.pixel(400, 495), QRgb(0xFFFFFFFF));
}

TEST_F(QuestionSave, AnApostropheWritesNothing)
{
    EXPECT_THROW(save({}, QStringLiteral("it's")), DatabaseError);
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_TRUE(files().isEmpty());
}

TEST_P(FailingSave, LeavesTheRowAtMostAndNeverAnOldPictureOnIt)
{
    const Outcome& outcome = GetParam();
    EXPECT_THROW(save(failAt(outcome.step)), Error);
    EXPECT_EQ(rows().size(), outcome.row ? 1 : 0);
    EXPECT_TRUE(files().isEmpty());
}

TEST_P(FailingSave, WithAnOldPictureUnderTheNewKey)
{
    const Outcome& outcome = GetParam();
    leaveOldPicture(oldName);
    EXPECT_THROW(save(failAt(outcome.step)), Error);
    EXPECT_EQ(rows().size(), outcome.rowByOld ? 1 : 0);
    EXPECT_EQ(files(), QStringList(outcome.aside ? asideName : oldName));
}

/// A killed program: neither row nor half a picture; the next save goes well.
TEST_P(FailingSave, KilledThere)
{
    const auto die = [](SaveStep step) {
        if (step == GetParam().step) {
            std::_Exit(9);
        }
    };
    // The process that dies starts this test anew, and is told where the library is.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const char* variable = "VARNHOLT_TEST_KILLED_SAVE";
    if (qEnvironmentVariableIsEmpty(variable)) {
        qputenv(variable, library.folder().toUtf8());
    }
    EXPECT_EXIT(saveIn(qEnvironmentVariable(variable), die), testing::ExitedWithCode(9), "");
    qunsetenv(variable);
    EXPECT_TRUE(rows().isEmpty());
    const bool written = GetParam().step == SaveStep::Commit;
    EXPECT_EQ(files(), written ? pictureOnly : QStringList());
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

TEST_F(QuestionSave, AnOldPictureIsKeptUnderAnotherName)
{
    leaveOldPicture(oldName);
    leaveOldPicture(asideName);
    leaveOldPicture(QStringLiteral("1.jpg"));
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
        if (step == SaveStep::WritePicture || step == SaveStep::Commit) {
            setrlimit(RLIMIT_FSIZE, &full);
        }
    };
    EXPECT_THROW(save(fill), Error);
    setrlimit(RLIMIT_FSIZE, &usual);
    EXPECT_TRUE(files().isEmpty());
    EXPECT_EQ(rows().size(), 1);

    QDir().rmdir(library.folder() + QStringLiteral("/Files"));
    QFile file(library.folder() + QStringLiteral("/Files"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_THROW(save(), Error);
    EXPECT_EQ(rows().size(), 2);
    file.remove();
    EXPECT_NO_THROW(save());
    EXPECT_EQ(files().size(), 1);
}

} // namespace varnholt::test
