// A hundred screenshots of 1280 x 960 pixels, PNG files, to saved questions: taken in, trimmed,
// encoded and filed, against ImageMagick's trimming and encoding alone. CPU time of all processes.

#include "library/Library.h"
#include "many/PendingPictures.h"
#include "store/services.h"
#include "support/big_library.h"
#include "support/program_cost.h"
#include "support/report.h"

#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>

namespace {

using namespace varnholt;

constexpr int pictures = 100;

class Now : public Clock
{
public:
    [[nodiscard]] std::int64_t millisecondsSinceEpoch() const override { return 1'700'000'000'000; }
};

/// A page of text with a coloured figure, in a white margin.
QImage screenshot(int number)
{
    QImage image(1280, 960, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (int line = 0; line < 28; ++line) {
        painter.drawText(60, 60 + 24 * line,
                         QStringLiteral("%1.%2 Solve for x, and say how many solutions there are: "
                                        "%1x + %2 = %3; show every step of your work below.")
                             .arg(number)
                             .arg(line)
                             .arg(number * line));
    }
    for (int bar = 0; bar < 40; ++bar) {
        painter.fillRect(700 + 12 * bar, 900, 11, -20 - (number * 7 + bar * 13) % 180,
                         QColor::fromHsv((number * 3 + bar * 9) % 360, 180, 220));
    }
    return image;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    std::vector<double> ratios;
    for (int round = 0; round < 3; ++round) {
        QTemporaryDir folder;
        bench::makeBigLibrary(folder.filePath(QStringLiteral("Varnholt.mdb")), 100);
        QStringList files;
        for (int i = 0; i < pictures; ++i) {
            files.append(folder.filePath(QStringLiteral("shot%1.png").arg(i)));
            screenshot(i).save(files.back());
        }
        const Now clock;
        Library library(folder.path(), clock);
        library.open();
        const double own = bench::cpuOf([&] {
            PendingPictures pending(library);
            for (const QString& file : files) {
                pending.save(pending.add(file, Margins::Trim), {1, 1, 1}, QStringLiteral("4"));
            }
        });
        double peer = 0;
        for (const QString& file : files) {
            peer += bench::cpuOfProgram(QStringLiteral("convert"),
                                        {file, QStringLiteral("-trim"), QStringLiteral("-quality"),
                                         QStringLiteral("75"), file + QStringLiteral(".jpg")});
        }
        ratios.push_back(own / peer);
    }
    return bench::report({{"many.100", bench::median(ratios), 0.8, 0.5, "x",
                           "ImageMagick's convert -trim -quality 75"}},
                         argc, argv);
}
