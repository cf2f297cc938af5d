#include "authoring/PictureCanvas.h"
#include "support/test_library.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QPainter>
#include <QProcess>
#include <QThread>

#include <gtest/gtest.h>

#include <stdexcept>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QRgb markerColour = 0xFFFF00FF;
constexpr QRgb questionColour = 0xFF1428A0;
constexpr QRgb white = 0xFFFFFFFF;
constexpr QRgb frameOnWhite = 0xFF000000;
constexpr QRect questionArea(60, 90, 240, 60);

/// The program itself on a display of its own, used from outside: other processes own the
/// clipboard, and press keys and buttons. The display server takes what they send in order,
/// and so does the program; so it is waited only for what the program does by itself, never
/// for a time.
class X11Run : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char* tool : {"Xvfb", "xclip", "xdotool", "import"}) {
            if (!QFile::exists(u"/usr/bin/"_s + QLatin1String(tool))) {
                GTEST_SKIP() << "not installed: " << tool;
            }
        }
        display.start(u"Xvfb"_s, words("-displayfd 1 -noreset -screen 0 1800x1000x24"));
        ASSERT_TRUE(display.waitForReadyRead(60'000)) << "no virtual display";
        const QString folder = library.folder();
        environment.insert(u"DISPLAY"_s, u':' + QString::fromLatin1(display.readAll().trimmed()));
        environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
        for (const char* name : {"HOME", "XDG_CONFIG_HOME"}) {
            environment.insert(QLatin1String(name), folder);
        }
        const std::int32_t maths = library.addAssessment(u"Maths"_s);
        const std::int32_t algebra = library.addTopic(maths, u"Algebra"_s);
        library.addSubTopic(maths, algebra, u"Linear"_s);
        const QString own = folder + u"/varnholt"_s;
        ASSERT_TRUE(QFile::copy(QStringLiteral(VARNHOLT_PROGRAM), own));
        start(program, own, {});
    }

    void TearDown() override
    {
        for (QProcess* process : {&program, &clipboard, &display}) {
            process->terminate();
            if (process->state() != QProcess::NotRunning && !process->waitForFinished(5000)) {
                process->kill();
                process->waitForFinished();
            }
        }
        if (HasFailure()) {
            std::fputs(program.readAllStandardError().constData(), stderr);
        }
    }

    static QStringList words(const char* text) { return QString::fromLatin1(text).split(u' '); }

    void start(QProcess& process, const QString& command, const QStringList& arguments)
    {
        process.setProcessEnvironment(environment);
        process.start(command, arguments);
    }

    QByteArray run(const QString& command, const QStringList& arguments)
    {
        QProcess process;
        start(process, command, arguments);
        EXPECT_TRUE(process.waitForFinished(60'000)) << command.toStdString();
        return process.readAllStandardOutput();
    }

    void xdo(const QStringList& arguments) { run(u"xdotool"_s, arguments); }
    void keys(const char* pressed) { xdo(QStringList(u"key"_s) + words(pressed)); }

    static void waitFor(const std::string& what, const std::function<bool()>& there)
    {
        const QDeadlineTimer limit(60'000);
        while (!there()) {
            if (limit.hasExpired()) {
                throw std::runtime_error("waited in vain for " + what);
            }
            QThread::msleep(50);
        }
    }

    /// The newest visible window with this title (a pattern), or nothing.
    QString window(const QString& title)
    {
        return QString::fromLatin1(
            run(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--name"_s, u'^' + title + u'$'})
                .trimmed()
                .split('\n')
                .last());
    }
    /// Without a window manager nobody hands the keyboard to a new window but we.
    void toWindow(const QString& title)
    {
        QString found;
        waitFor("window " + title.toStdString(),
                [&] { return !(found = window(title)).isEmpty(); });
        xdo({u"windowfocus"_s, u"--sync"_s, found});
    }
    void gone(const QString& title)
    {
        waitFor("end of " + title.toStdString(), [&] { return window(title).isEmpty(); });
    }

    /// The screen as soon as it shows what it should.
    QImage shown(const std::function<bool(const QImage&)>& asItShould)
    {
        const QString path = library.folder() + u"/screen.png"_s;
        QImage image;
        waitFor("the screen", [&] {
            run(u"import"_s, words("-window root") + QStringList(path));
            image = QImage(path).convertToFormat(QImage::Format_RGB32);
            return !image.isNull() && asItShould(image);
        });
        return image;
    }
    QImage canvas(const QImage& screen) const { return screen.copy(QRect(origin, questionPage)); }

    void put(const QImage& image)
    {
        const QString path = library.folder() + u"/capture.png"_s;
        ASSERT_TRUE(image.save(path));
        const QStringList target = words("-selection clipboard -t");
        start(clipboard, u"xclip"_s,
              QStringList(u"-quiet"_s) + target + QStringList({u"image/png"_s, u"-i"_s, path}));
        waitFor("the clipboard", [&] {
            return run(u"xclip"_s, target + words("TARGETS -o")).contains("image/png");
        });
    }

    void frame(QRect area)
    {
        const auto point = [&](QPoint at) {
            return u"mousemove %1 %2"_s.arg(origin.x() + at.x()).arg(origin.y() + at.y());
        };
        xdo(QStringList{point(area.topLeft()), u"mousedown 1"_s, point(area.center()),
                        point(area.bottomRight() + QPoint(1, 1)), u"mouseup 1"_s}
                .join(u' ')
                .split(u' '));
    }

    TestLibrary library;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QProcess display, program, clipboard;
    /// Of the canvas on the screen.
    QPoint origin;
};

/// A page as found somewhere on the web, with a question on it.
QImage capture()
{
    QImage image(1500, 900, QImage::Format_RGB32);
    image.fill(0xFFE8F0E8);
    QPainter painter(&image);
    painter.fillRect(0, 0, 24, 24, QColor(markerColour));
    painter.fillRect(questionArea, Qt::white);
    painter.fillRect(questionArea.adjusted(60, 15, -20, -15), QColor(questionColour));
    return image;
}

/// The first point from the top for which this holds; (-1, -1) without one.
QPoint find(const QImage& image, const std::function<bool(QPoint)>& holds)
{
    for (QPoint at; at.y() < image.height(); at = {0, at.y() + 1}) {
        for (; at.x() < image.width(); ++at.rx()) {
            if (holds(at)) {
                return at;
            }
        }
    }
    return {-1, -1};
}

/// Alike up to a limit.
bool alike(const QImage& a, const QImage& b, int limit)
{
    return find(a, [&](QPoint at) {
               const QColor one = a.pixel(at);
               const QColor other = b.pixel(at);
               return std::abs(one.red() - other.red()) + std::abs(one.green() - other.green()) +
                          std::abs(one.blue() - other.blue()) >
                      limit;
           }).x() < 0;
}

} // namespace

TEST_F(X11Run, FromACaptureToAPicture)
{
    put(capture());
    toWindow(u"Varnholt"_s);
    keys("alt+m alt+q");
    toWindow(u"Add New Question"_s);
    keys("ctrl+1 ctrl+v");
    shown([&](const QImage& screen) {
        origin = find(screen, [&](QPoint at) { return screen.pixel(at) == markerColour; });
        return screen.rect().contains(origin);
    });
    frame(questionArea);
    keys("alt+r");
    const QPoint corner((questionPage.width() - questionArea.width()) / 2,
                        (questionPage.height() - questionArea.height()) / 2);
    // A button's key presses it a moment later.
    shown([&](const QImage& screen) { return canvas(screen).pixel(corner) == frameOnWhite; });
    // The question lies in the middle of the page, selected.
    keys("Escape alt+a x equal 4");

    // What the mouse was told to do is what is on the screen, and that is what gets stored.
    QImage expected(questionPage, QImage::Format_RGB32);
    expected.fill(white);
    QPainter(&expected).drawImage(corner, capture(), questionArea);
    const QImage ready =
        canvas(shown([&](const QImage& screen) { return alike(canvas(screen), expected, 0); }));
    keys("ctrl+s");
    toWindow(u"Save[?]"_s);
    keys("Return"); // Yes
    toWindow(u"Question Saved"_s);
    keys("Return");
    gone(u"Add New Question"_s);
    EXPECT_EQ(library.value(u"SELECT * FROM Questions"_s), u"1|1|1|x=4|1|1"_s);
    const QImage stored = QImage(library.picturePath(1)).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(stored.size(), questionPage);
    EXPECT_TRUE(alike(stored, ready, 150));
}

} // namespace varnholt::test
