// A hundred questions on fifty pages as a PDF, against img2pdf putting the same pictures into one.

#include "paper/paper_pdf.h"
#include "support/program_cost.h"
#include "support/report.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>

using namespace varnholt;

namespace {

constexpr int questions = 100;
constexpr int rounds = 7;

/// Text-like strokes on white, about as large as a question's picture.
void drawPicture(const QString& path, QRandomGenerator& random)
{
    QImage image(600, 350, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < 450; ++i) {
        const QPointF at(20 + random.bounded(540), 20 + random.bounded(300));
        painter.drawEllipse(at, 2 + random.bounded(9), 2 + random.bounded(12));
    }
    painter.end();
    if (!image.save(path, "JPG", 90)) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QTemporaryDir folder;
    QRandomGenerator random(1);
    PaperTest test;
    test.title = QStringLiteral("Algebra");
    QStringList pictures;
    qint64 bytes = 0;
    for (int i = 1; i <= questions; ++i) {
        pictures.append(folder.filePath(QStringLiteral("%1.jpg").arg(i)));
        drawPicture(pictures.back(), random);
        bytes += QFileInfo(pictures.back()).size();
        test.questions.push_back({QString::number(i), QStringLiteral("Roots"), pictures.back()});
    }
    test.versions.emplace_back();
    for (std::size_t i = 0; i < test.questions.size(); ++i) {
        test.versions.back().push_back(i);
    }
    PaperOptions options;
    options.questionsPerPage = 2;
    options.key = PaperOptions::Key::None;
    const QString path = folder.filePath(QStringLiteral("test.pdf"));
    const QStringList arguments =
        pictures + QStringList{QStringLiteral("-o"), folder.filePath(QStringLiteral("peer.pdf"))};
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        const double own = bench::cpuOf([&] {
            const PaperFont font = PaperFont::forTest(test);
            SavePaperPdf(path, test,
                         LayOutPaper(test, options, ReadPaperPictureSizes(test), font.widths()),
                         font);
        });
        ratios.push_back(own / bench::cpuOfProgram(QStringLiteral("img2pdf"), arguments));
    }
    return bench::report(
        {{"pdf.100", bench::median(ratios), 0.5, 0.15, "x", "img2pdf, CPU"},
         {"pdf.bytes", static_cast<double>(QFileInfo(path).size()) / static_cast<double>(bytes),
          1.03, -1, "x", "the pictures"}},
        argc, argv);
}
