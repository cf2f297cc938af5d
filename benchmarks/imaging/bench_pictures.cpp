#include "imaging/bench_pictures.h"

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>

#include <cstring>
#include <stdexcept>

namespace varnholt::bench {

namespace {

constexpr const char* kPhotoPackage = "lomiri-wallpapers-16.04";
constexpr const char* kPhotoFolder = "/usr/share/backgrounds/";
constexpr const char* kScreenPackage = "geany-common";
constexpr const char* kScreenFolder = "/usr/share/doc/geany/html/images/";

DeviceContext toContext(const QImage& image)
{
    const QImage pixels = image.convertToFormat(QImage::Format_BGR888);
    DeviceContext context;
    if (!context.Create(pixels.width(), pixels.height(), 24))
        throw std::runtime_error("no memory for a picture");
    for (int y = 0; y < pixels.height(); ++y) {
        std::uint8_t* row =
            context.DIBits() +
            context.BytesPerScanLine() * static_cast<std::size_t>(pixels.height() - 1 - y);
        std::memcpy(row, pixels.constScanLine(y), static_cast<std::size_t>(pixels.width()) * 3);
    }
    return context;
}

QImage load(const std::string& folder, const std::string& file, const char* package)
{
    QImage image(QString::fromStdString(folder + file));
    if (image.isNull())
        throw std::runtime_error("cannot read " + folder + file + ": install the package " +
                                 package);
    return image;
}

BenchPicture photo(const std::string& name, const std::string& file, int width, int height)
{
    return {name, [=] {
                const QImage image = load(kPhotoFolder, file, kPhotoPackage);
                return toContext(image
                                     .scaled(width, height, Qt::KeepAspectRatioByExpanding,
                                             Qt::SmoothTransformation)
                                     .copy(0, 0, width, height));
            }};
}

BenchPicture screen(const std::string& name, const std::string& file)
{
    return {name, [=] {
                const QImage image = load(kScreenFolder, file, kScreenPackage);
                QImage page(image.size(), QImage::Format_RGB32);
                page.fill(Qt::white); // figures have transparent corners
                QPainter(&page).drawImage(0, 0, image);
                return toContext(page);
            }};
}

DeviceContext textPage(int width, int height, int pixelSize, bool diagram)
{
    QImage page(width, height, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font(QStringLiteral("Liberation Serif"));
    font.setPixelSize(pixelSize);
    painter.setFont(font);
    const QString sentence = QStringLiteral(
        "A body of mass m slides without friction down a plane inclined at 30 degrees; find the "
        "time it takes to cover 4.5 m, and the speed it has then. Which of the forces do work? ");
    const int margin = width / 12;
    const QRect area = page.rect().adjusted(margin, margin, -margin, -margin);
    const QRect textArea = diagram ? area.adjusted(0, area.height() / 2, 0, 0) : area;
    painter.drawText(textArea, Qt::TextWordWrap, sentence.repeated(diagram ? 3 : 40));
    if (diagram) {
        painter.setPen(QPen(Qt::darkBlue, 3));
        const QPoint corner(margin, area.top() + area.height() * 2 / 5);
        const QPoint foot(margin + area.width() * 2 / 3, corner.y());
        const QPoint top(foot.x(), area.top());
        painter.drawPolygon(QPolygon({corner, foot, top}));
        painter.setBrush(QColor(200, 60, 40));
        painter.drawEllipse((corner + top) / 2, width / 20, width / 20);
    }
    painter.end();
    return toContext(page);
}

DeviceContext noise(int width, int height)
{
    DeviceContext context;
    context.Create(width, height, 24);
    QRandomGenerator random(20240229);
    const std::size_t size = context.BytesPerScanLine() * static_cast<std::size_t>(height);
    for (std::size_t i = 0; i < size; ++i)
        context.DIBits()[i] = static_cast<std::uint8_t>(random.bounded(256));
    return context;
}

DeviceContext flat(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(QColor(90, 140, 200));
    return toContext(image);
}

} // namespace

std::vector<BenchPicture> benchPictures()
{
    return {
        photo("photo 3000x2000", "aitzgorri_by_Aitzol_Berasategi.jpg", 3000, 2000),
        photo("photo 2048x1536", "picosdeeuropa_by_Aitzol_Berasategi.jpg", 2048, 1536),
        photo("photo 1920x1080", "Bridge_by_Sander_Klootwijk.jpg", 1920, 1080),
        photo("photo 1365x1023", "seeding_by_Clements_Engelhardt.jpg", 1365, 1023),
        photo("photo 1024x768", "Dragonfly_by_Bolly.jpg", 1024, 768),
        photo("photo 801x601", "life_by_Aitzol_Berasategi.jpg", 801, 601),
        photo("photo 640x480", "Wine_by_Jakkub_Mede.jpg", 640, 480),
        screen("screenshot 904x679", "main_window.png"),
        screen("screenshot 625x603", "pref_dialog_edit_completions.png"),
        {"text page 1240x1754", [] { return textPage(1240, 1754, 26, false); }},
        {"text page 2480x3508", [] { return textPage(2480, 3508, 52, false); }},
        {"question 800x600", [] { return textPage(800, 600, 24, true); }},
        {"noise 1024x768", [] { return noise(1024, 768); }},
        {"flat 1600x1200", [] { return flat(1600, 1200); }},
    };
}

} // namespace varnholt::bench
