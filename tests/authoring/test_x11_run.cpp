#include "authoring/PictureCanvas.h"
#include "support/test_library.h"

#include <QColor>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QProcess>
#include <QThread>

#include <gtest/gtest.h>

namespace varnholt::test {

namespace {

constexpr QRgb markerColour = 0xFFFF00FF;
constexpr QRect markerArea(0, 0, 24, 24);
constexpr QRect questionArea(60, 90, 240, 60);
constexpr QRect numberArea(60, 90, 30, 60); // the part of it that is to go

/// The program itself on a display of its own, used from outside: other processes own the
/// clipboard, and press keys and buttons.
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
        startDisplay();
        const std::int32_t maths = library.addAssessment(QStringLiteral("Maths"));
        const std::int32_t algebra = library.addTopic(maths, QStringLiteral("Algebra"));
        library.addSubTopic(maths, algebra, QStringLiteral("Linear"));
        const QString own = library.folder() + QStringLiteral("/varnholt");
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

    void startDisplay()
    {
        display.start(QStringLiteral("Xvfb"),
                      {QStringLiteral("-displayfd"), QStringLiteral("1"),
                       QStringLiteral("-noreset"), QStringLiteral("-screen"), QStringLiteral("0"),
                       QStringLiteral("1280x900x24")});
        ASSERT_TRUE(display.waitForReadyRead(15'000)) << "no virtual display";
        environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"),
                           u':' + QString::fromLatin1(display.readAll().trimmed()));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("HOME"), library.folder());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), library.folder());
        environment.insert(QStringLiteral("VARNHOLT_PRESENTATION"), QStringLiteral("pptx"));
    }

    void start(QProcess& process, const QString& command, const QStringList& arguments)
    {
        process.setProcessEnvironment(environment);
        process.start(command, arguments);
        ASSERT_TRUE(process.waitForStarted());
    }

    QByteArray run(const QString& command, const QStringList& arguments)
    {
        QProcess process;
        start(process, command, arguments);
        process.waitForFinished(15'000);
        return process.readAllStandardOutput();
    }

    void xdo(const QString& words)
    {
        run(QStringLiteral("xdotool"), words.split(u' '));
        QThread::msleep(60);
    }
    void key(const char* keys) { xdo(QStringLiteral("key ") + QLatin1String(keys)); }
    void type(const char* text)
    {
        run(QStringLiteral("xdotool"), {QStringLiteral("type"), QLatin1String(text)});
        QThread::msleep(150);
    }

    static bool waitFor(const std::function<bool()>& done)
    {
        const QDeadlineTimer limit(10'000);
        while (!limit.hasExpired()) {
            if (done()) {
                return true;
            }
            QThread::msleep(50);
        }
        return false;
    }

    /// Without a window manager nobody hands the keyboard to a new window but we. `title` is a
    /// pattern.
    void toWindow(const char* title)
    {
        const QString pattern = u'^' + QLatin1String(title) + u'$';
        QByteArray found;
        ASSERT_TRUE(waitFor([&] {
            found = run(QStringLiteral("xdotool"),
                        {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                         QStringLiteral("--name"), pattern});
            return !found.trimmed().isEmpty();
        })) << "no window "
            << title;
        xdo(QStringLiteral("windowfocus ") +
            QString::fromLatin1(found.trimmed().split('\n').last()));
        QThread::msleep(200);
    }

    /// The screen once it keeps still.
    QImage screen(const char* name)
    {
        const QString path = shots() + u'/' + QLatin1String(name) + QStringLiteral(".png");
        QImage last;
        QImage now;
        for (int i = 0; i < 10 && (now.isNull() || now != last); ++i) {
            last = now;
            run(QStringLiteral("import"),
                {QStringLiteral("-window"), QStringLiteral("root"), path});
            now = QImage(path).convertToFormat(QImage::Format_RGB32);
        }
        return now;
    }

    /// Where pictures of the screen go: kept when asked for.
    QString shots() const
    {
        const QString kept = qEnvironmentVariable("VARNHOLT_TEST_SHOTS");
        return kept.isEmpty() ? library.folder() : kept;
    }

    void put(const QImage& image)
    {
        const QString path = library.folder() + QStringLiteral("/capture.png");
        ASSERT_TRUE(image.save(path));
        start(clipboard, QStringLiteral("xclip"),
              {QStringLiteral("-quiet"), QStringLiteral("-selection"), QStringLiteral("clipboard"),
               QStringLiteral("-t"), QStringLiteral("image/png"), QStringLiteral("-i"), path});
        QThread::msleep(200);
    }

    void drag(QPoint from, QPoint to)
    {
        const auto at = [&](QPoint point) {
            return QStringLiteral("mousemove %1 %2")
                .arg(origin.x() + point.x())
                .arg(origin.y() + point.y());
        };
        xdo(at(from));
        xdo(QStringLiteral("mousedown 1"));
        xdo(at((from + to) / 2));
        xdo(at(to));
        xdo(QStringLiteral("mouseup 1"));
    }
    void frame(QRect area)
    {
        drag(area.topLeft(), area.topLeft() + QPoint(area.width(), area.height()));
    }

    TestLibrary library;
    QProcessEnvironment environment;
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
    painter.fillRect(markerArea, QColor(markerColour));
    painter.fillRect(questionArea, Qt::white);
    painter.fillRect(numberArea.adjusted(8, 20, -8, -20), Qt::red);
    painter.fillRect(questionArea.adjusted(60, 15, -20, -15), QColor(20, 40, 160));
    return image;
}

std::optional<QPoint> findMarker(const QImage& screen)
{
    for (int y = 0; y < screen.height(); ++y) {
        for (int x = 0; x < screen.width(); ++x) {
            if (screen.pixel(x, y) == markerColour) {
                return QPoint(x, y);
            }
        }
    }
    return std::nullopt;
}

int largestError(const QImage& a, const QImage& b, QRect area)
{
    int largest = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            largest = std::max(largest, std::abs(qGreen(a.pixel(x, y)) - qGreen(b.pixel(x, y))));
        }
    }
    return largest;
}

} // namespace

TEST_F(X11Run, FromACaptureToASlide)
{
    put(capture());
    toWindow("Varnholt");
    key("alt+m");
    key("alt+q");
    toWindow("Add New Question");
    key("ctrl+v");
    std::optional<QPoint> marker;
    ASSERT_TRUE(waitFor([&] { return (marker = findMarker(screen("1-pasted"))).has_value(); }));
    origin = *marker;

    frame(questionArea);
    screen("2-framed");
    key("alt+r");
    // The question now lies in the middle of the page, selected; it is dragged to the left
    // and nudged, its number erased, a letter written there.
    const QSize size = questionArea.size();
    const QPoint middle((questionPage.width() - size.width()) / 2,
                        (questionPage.height() - size.height()) / 2);
    drag(middle + QPoint(100, 30), middle + QPoint(40, -20));
    key("shift+Right");
    key("Down");
    const QRect block(middle + QPoint(-50, -49), size);
    // A press inside the selection would take hold of it.
    key("Escape");
    frame(numberArea.translated(block.topLeft() - questionArea.topLeft()));
    key("Delete");
    screen("3-erased");
    key("alt+x");
    toWindow("Create Text");
    type("a)");
    screen("4-text");
    key("Return");
    toWindow("Add New Question");
    key("alt+a");
    type("x = 4");
    const QImage shown = screen("5-ready").copy(QRect(origin, questionPage));
    key("ctrl+s");
    toWindow("Save[?]");
    key("alt+y");
    toWindow("Question Saved");
    key("Return");
    ASSERT_TRUE(waitFor([&] { return QFile::exists(library.picturePath(1)); }));
    EXPECT_EQ(library.value(QStringLiteral("SELECT * FROM Questions")),
              QStringLiteral("1|1|1|x = 4|1|1"));

    // What is stored is what was on the screen, and that is what the mouse was told to do.
    const QImage stored = QImage(library.picturePath(1)).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(stored.size(), questionPage);
    QImage expected(questionPage, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter painter(&expected);
    painter.drawImage(block.topLeft(), capture(), questionArea);
    const QRect erased = numberArea.translated(block.topLeft() - questionArea.topLeft());
    painter.fillRect(erased, Qt::white);
    painter.end();
    const QRect text(erased.topLeft(), QSize(32, 24));
    EXPECT_LT(largestError(stored, shown, stored.rect()), 48);
    for (const QRect& clear : {QRect(0, 0, 800, text.top()), QRect(0, text.bottom(), 800, 100),
                               QRect(text.right() + 1, text.top(), 400, 100)}) {
        EXPECT_LT(largestError(shown, expected, clear), 1);
    }
    EXPECT_GT(largestError(shown, expected, text), 200) << "no text";

    // The manager browses it, and a draw of one question puts this very file on a slide.
    toWindow("Varnholt");
    key("alt+t");
    key("Down");
    key("Home");
    key("alt+s");
    key("Down");
    key("Home");
    screen("6-browser");
    key("alt+c");
    key("alt+p");
    toWindow("Select Questions");
    screen("7-review");
    key("i");
    QDir slides(library.folder() + QStringLiteral("/Presentations"));
    ASSERT_TRUE(waitFor([&] {
        slides.refresh();
        return !slides.entryList({QStringLiteral("*.pptx")}).isEmpty();
    }));
    screen("8-slides");
    const QString pptx = slides.filePath(slides.entryList({QStringLiteral("*.pptx")}).first());
    QFile picture(library.picturePath(1));
    ASSERT_TRUE(picture.open(QIODevice::ReadOnly));
    EXPECT_TRUE(run(QStringLiteral("unzip"), {QStringLiteral("-p"), pptx,
                                              QStringLiteral("ppt/media/*")}) == picture.readAll());
}

} // namespace varnholt::test
