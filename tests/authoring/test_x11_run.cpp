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

namespace {

constexpr QRgb markerColour = 0xFFFF00FF;
constexpr QRgb questionColour = 0xFF1428A0;
constexpr QRgb white = 0xFFFFFFFF;
constexpr QRgb frameOnWhite = 0xFF000000;
constexpr QRect questionArea(60, 90, 240, 60);
constexpr QRect numberArea(60, 90, 30, 60); // the part of it that is to go

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
            if (!QFile::exists(QStringLiteral("/usr/bin/") + QLatin1String(tool))) {
                GTEST_SKIP() << "not installed: " << tool;
            }
        }
        display.start(QStringLiteral("Xvfb"), words("-displayfd 1 -noreset -screen 0 1280x900x24"));
        ASSERT_TRUE(display.waitForReadyRead(60'000)) << "no virtual display";
        const QString folder = library.folder();
        environment.insert(QStringLiteral("DISPLAY"),
                           u':' + QString::fromLatin1(display.readAll().trimmed()));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("VARNHOLT_PRESENTATION"), QStringLiteral("pptx"));
        // The last one leaves the desktop without a program that would show the slides.
        for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_DIRS"}) {
            environment.insert(QLatin1String(name), folder);
        }
        const std::int32_t maths = library.addAssessment(QStringLiteral("Maths"));
        const std::int32_t algebra = library.addTopic(maths, QStringLiteral("Algebra"));
        library.addSubTopic(maths, algebra, QStringLiteral("Linear"));
        const QString own = folder + QStringLiteral("/varnholt");
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

    void xdo(const QStringList& arguments) { run(QStringLiteral("xdotool"), arguments); }
    void keys(const char* pressed) { xdo(QStringList(QStringLiteral("key")) + words(pressed)); }
    void type(const char* text) { xdo({QStringLiteral("type"), QLatin1String(text)}); }

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
        return QString::fromLatin1(run(QStringLiteral("xdotool"),
                                       {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                        QStringLiteral("--name"), u'^' + title + u'$'})
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
        xdo({QStringLiteral("windowfocus"), QStringLiteral("--sync"), found});
    }
    void gone(const QString& title)
    {
        waitFor("end of " + title.toStdString(), [&] { return window(title).isEmpty(); });
    }

    /// The screen as soon as it shows what it should; kept when asked for.
    QImage screen(const char* name, const std::function<bool(const QImage&)>& shows)
    {
        const QString folder = qEnvironmentVariable("VARNHOLT_TEST_SHOTS", library.folder());
        const QString path = folder + u'/' + QLatin1String(name) + QStringLiteral(".png");
        QImage image;
        waitFor(name, [&] {
            run(QStringLiteral("import"), words("-window root") + QStringList(path));
            image = QImage(path).convertToFormat(QImage::Format_RGB32);
            return !image.isNull() && shows(image);
        });
        return image;
    }
    QImage canvas(const QImage& screen) const { return screen.copy(QRect(origin, questionPage)); }

    void put(const QImage& image)
    {
        const QString path = library.folder() + QStringLiteral("/capture.png");
        ASSERT_TRUE(image.save(path));
        const QStringList target = words("-selection clipboard -t");
        start(clipboard, QStringLiteral("xclip"),
              QStringList(QStringLiteral("-quiet")) + target +
                  QStringList({QStringLiteral("image/png"), QStringLiteral("-i"), path}));
        waitFor("the clipboard", [&] {
            return run(QStringLiteral("xclip"), target + words("TARGETS -o")).contains("image/png");
        });
    }

    void frame(QRect area) { drag(area.topLeft(), area.bottomRight() + QPoint(1, 1)); }
    void drag(QPoint from, QPoint to)
    {
        const auto point = [&](QPoint at) {
            return QStringLiteral("mousemove %1 %2")
                .arg(origin.x() + at.x())
                .arg(origin.y() + at.y());
        };
        xdo(QStringList{point(from), QStringLiteral("mousedown 1"), point((from + to) / 2),
                        point(to), QStringLiteral("mouseup 1")}
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
    QImage image(1400, 900, QImage::Format_RGB32);
    image.fill(0xFFE8F0E8);
    QPainter painter(&image);
    painter.fillRect(0, 0, 24, 24, QColor(markerColour));
    painter.fillRect(questionArea, Qt::white);
    painter.fillRect(numberArea.adjusted(8, 20, -8, -20), Qt::red);
    painter.fillRect(questionArea.adjusted(60, 15, -20, -15), QColor(questionColour));
    return image;
}

int difference(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
           std::abs(qBlue(a) - qBlue(b));
}

/// Where the colour comes first, from the top.
std::optional<QPoint> find(const QImage& image, QRgb colour, int tolerance = 0)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (difference(image.pixel(x, y), colour) <= tolerance) {
                return QPoint(x, y);
            }
        }
    }
    return std::nullopt;
}

std::function<bool(const QImage&)> shows(QRgb colour, int tolerance = 0)
{
    return [=](const QImage& screen) { return find(screen, colour, tolerance).has_value(); };
}

int largestDifference(const QImage& a, const QImage& b, QRect but = {})
{
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (!but.contains(x, y)) {
                largest = std::max(largest, difference(a.pixel(x, y), b.pixel(x, y)));
            }
        }
    }
    return largest;
}

} // namespace

TEST_F(X11Run, FromACaptureToASlide)
{
    put(capture());
    toWindow(QStringLiteral("Varnholt"));
    keys("alt+m alt+q");
    toWindow(QStringLiteral("Add New Question"));
    keys("ctrl+v");
    origin = *find(screen("1-pasted", shows(markerColour)), markerColour);
    frame(questionArea);
    screen("2-framed", [&](const QImage& seen) {
        return canvas(seen).pixel(questionArea.topLeft()) == frameOnWhite;
    });
    keys("alt+r");
    const QSize size = questionArea.size();
    const QPoint middle((questionPage.width() - size.width()) / 2,
                        (questionPage.height() - size.height()) / 2);
    // A button's key presses it a moment later.
    screen("3-cropped",
           [&](const QImage& seen) { return canvas(seen).pixel(middle) == frameOnWhite; });
    // The question now lies in the middle of the page, selected; it is dragged to the left
    // and nudged, its number erased, a letter written there.
    drag(middle + QPoint(100, 30), middle + QPoint(40, -20));
    keys("shift+Right Down");
    const QRect block(middle + QPoint(-50, -49), size);
    const QRect erased = numberArea.translated(block.topLeft() - questionArea.topLeft());
    // A press inside the selection would take hold of it.
    keys("Escape");
    frame(erased);
    keys("Delete");
    screen("4-erased", [&](const QImage& seen) {
        return canvas(seen).pixel(erased.topLeft()) == frameOnWhite &&
               canvas(seen).pixel(erased.center()) == white;
    });
    keys("alt+x");
    toWindow(QStringLiteral("Create Text"));
    type("a)");
    keys("Return");
    gone(QStringLiteral("Create Text"));
    toWindow(QStringLiteral("Add New Question"));
    keys("alt+a");
    type("x = 4");

    // What the mouse was told to do is what is on the screen, and that is what gets stored.
    QImage expected(questionPage, QImage::Format_RGB32);
    expected.fill(white);
    QPainter painter(&expected);
    painter.drawImage(block.topLeft(), capture(), questionArea);
    painter.fillRect(erased, Qt::white);
    painter.end();
    const QRect text(erased.topLeft(), QSize(32, 24));
    const QImage shown = canvas(screen("5-ready", [&](const QImage& seen) {
        return largestDifference(canvas(seen), expected, text) == 0 &&
               largestDifference(canvas(seen), expected) > 600;
    }));
    keys("ctrl+s");
    toWindow(QStringLiteral("Save[?]"));
    keys("alt+y");
    toWindow(QStringLiteral("Question Saved"));
    keys("Return");
    gone(QStringLiteral("Add New Question"));
    EXPECT_EQ(library.value(QStringLiteral("SELECT * FROM Questions")),
              QStringLiteral("1|1|1|x = 4|1|1"));
    const QImage stored = QImage(library.picturePath(1)).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(stored.size(), questionPage);
    EXPECT_LT(largestDifference(stored, shown), 150);

    // The manager browses it, and a draw of one question puts this very file on a slide.
    toWindow(QStringLiteral("Varnholt"));
    keys("alt+t Down Home alt+s Down Home");
    screen("6-browser", shows(questionColour, 12));
    keys("alt+c alt+p");
    toWindow(QStringLiteral("Select Questions"));
    screen("7-review", shows(questionColour, 12));
    keys("i");
    QStringList slides;
    waitFor("the slides", [&] {
        const QDir folder(library.folder() + QStringLiteral("/Presentations"));
        slides = folder.entryList({QStringLiteral("*.pptx")});
        return !slides.isEmpty();
    });
    QFile picture(library.picturePath(1));
    ASSERT_TRUE(picture.open(QIODevice::ReadOnly));
    const QString pptx = library.folder() + QStringLiteral("/Presentations/") + slides.first();
    EXPECT_TRUE(run(QStringLiteral("unzip"), {QStringLiteral("-p"), pptx,
                                              QStringLiteral("ppt/media/*")}) == picture.readAll());
}

} // namespace varnholt::test
