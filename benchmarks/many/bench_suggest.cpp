// How many of the frames that are suggested for exam papers hold one whole question and nothing
// else: of ten papers made by LibreOffice, with the numbers of their text and without them, as for
// scanned paper; and what drawing their pages costs, against poppler's program. With a folder as
// argument the papers in it are judged one by one.
#include "pdf/PdfReader.h"
#include "pdf/suggest_frames.h"
#include "support/program_cost.h"
#include "support/report.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>

namespace {

using namespace varnholt;

constexpr double scale = 100.0 / 72;
constexpr int questions = 12;
/// Fewer pixels of a colour are the blur of an edge.
constexpr int blur = 12;

bool goOn()
{
    return true;
}

/// Which question a pixel's ink is of, 1 to 12; 0 for black, -1 for none.
int questionOf(QRgb pixel)
{
    const QColor colour(pixel);
    if (colour.lightness() > 160) {
        return -1;
    }
    if (colour.hslSaturation() < 120) {
        return colour.lightness() < 90 ? 0 : -1;
    }
    const int hue = static_cast<int>(std::lround(colour.hslHue() / 30.0)) % questions;
    return hue == 0 ? questions : hue;
}

/// Pixels of each question in a part of a page; those of none come first.
std::array<int, questions + 1> inkIn(const QImage& page, const QRect& area)
{
    std::array<int, questions + 1> ink{};
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (const int question = questionOf(page.pixel(x, y)); question >= 0) {
                ++ink[static_cast<std::size_t>(question)];
            }
        }
    }
    return ink;
}

struct Judgement
{
    int frames = 0;
    int right = 0;
    int across = 0;
    int questionsThere = 0;
};

Judgement judge(const std::vector<QImage>& pages, const std::vector<PdfFrame>& frames)
{
    std::array<int, questions + 1> all{};
    for (const QImage& page : pages) {
        const auto ink = inkIn(page, page.rect());
        for (std::size_t i = 0; i < all.size(); ++i) {
            all[i] += ink[i];
        }
    }
    PdfFrames value(std::vector<QSizeF>(pages.size(), QSizeF(10000, 10000)));
    value.replaceAll(frames);
    Judgement result;
    for (int question = 1; question <= questions; ++question) {
        result.questionsThere += all[static_cast<std::size_t>(question)] > blur ? 1 : 0;
    }
    for (const std::vector<PdfFrame>& picture : value.pictures()) {
        std::array<int, questions + 1> ink{};
        for (const PdfFrame& frame : picture) {
            const QImage& page = pages[static_cast<std::size_t>(frame.page)];
            const QRect area =
                QRectF(frame.area.topLeft() * scale, frame.area.size() * scale).toAlignedRect();
            const auto part = inkIn(page, area & page.rect());
            for (std::size_t i = 0; i < ink.size(); ++i) {
                ink[i] += part[i];
            }
        }
        std::set<int> inside;
        for (int question = 0; question <= questions; ++question) {
            if (ink[static_cast<std::size_t>(question)] > blur) {
                inside.insert(question);
            }
        }
        const auto only = static_cast<std::size_t>(inside.empty() ? 0 : *inside.begin());
        const bool whole = inside.size() == 1 && only > 0 && all[only] - ink[only] <= blur;
        ++result.frames;
        result.right += whole ? 1 : 0;
        result.across += inside.size() > 1 && *inside.rbegin() > 0 &&
                                 !(inside.size() == 2 && *inside.begin() == 0)
                             ? 1
                             : 0;
    }
    return result;
}

/// CPU time of all processes for drawing a paper's pages at 200 dots to the inch, as a share of
/// what the other program takes.
double costOfPages(const QString& paper)
{
    constexpr double sharp = 200.0 / 72;
    const double children = bench::childSeconds();
    const double own = bench::cpuOf([&] {
        PdfReader reader(QString::fromLocal8Bit(VARNHOLT_PDF_READER));
        reader.open(paper, {}, goOn);
        for (std::size_t page = 0; page < reader.pages().size(); ++page) {
            (void)reader.render(static_cast<int>(page), (reader.pages()[page] * sharp).toSize(),
                                PdfReader::Colours::All, goOn);
        }
    });
    const double all = own + bench::childSeconds() - children;
    const QTemporaryDir folder;
    return all / bench::cpuOfProgram(QStringLiteral("pdftoppm"),
                                     {QStringLiteral("-r"), QStringLiteral("200"), paper,
                                      folder.filePath(QStringLiteral("page"))});
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const bool shows = argc == 2;
    const QTemporaryDir made;
    QString folder = made.path();
    if (shows) {
        folder = QString::fromLocal8Bit(argv[1]);
    } else if (QProcess::execute(QStringLiteral(VARNHOLT_MAKE_PAPERS), {folder}) != 0) {
        return 1;
    }
    std::map<bool, Judgement> sums;
    std::vector<double> costs;
    for (const QString& name : QDir(folder).entryList({QStringLiteral("*.pdf")})) {
        costs.push_back(costOfPages(folder + u'/' + name));
        PdfReader reader(QString::fromLocal8Bit(VARNHOLT_PDF_READER));
        reader.open(folder + u'/' + name, {}, goOn);
        std::vector<pdf::SeenPage> seen;
        std::vector<QImage> pages;
        for (std::size_t page = 0; page < reader.pages().size(); ++page) {
            const QSize size = (reader.pages()[page] * scale).toSize();
            const auto at = static_cast<int>(page);
            pages.push_back(reader.render(at, size, PdfReader::Colours::All, goOn));
            seen.push_back(
                {pdf::LookAtPage(reader.render(at, size, PdfReader::Colours::Grey, goOn), scale),
                 reader.lineStarts(at, goOn)});
        }
        for (const bool scanned : {false, true}) {
            if (scanned) {
                for (pdf::SeenPage& page : seen) {
                    page.starts.clear();
                }
            }
            const Judgement one = judge(pages, pdf::SuggestFrames(seen));
            Judgement& sum = sums[scanned];
            sum.frames += std::max(one.frames, one.questionsThere);
            sum.right += one.right;
            sum.across += one.across;
            if (shows) {
                std::printf("%-14s %-8s pages %zu questions %d frames %d right %d across %d\n",
                            qPrintable(name), scanned ? "scanned" : "text", pages.size(),
                            one.questionsThere, one.frames, one.right, one.across);
            }
        }
    }
    std::vector<bench::Row> rows;
    for (const auto& [scanned, sum] : sums) {
        const char* id = scanned ? "suggest.scanned" : "suggest.text";
        rows.push_back({id, 1 - static_cast<double>(sum.right) / sum.frames, scanned ? -1 : 0.1,
                        scanned ? -1 : 0.05, "share", "frames that are not one whole question"});
        std::printf("%s: %d frames across two questions\n", id, sum.across);
    }
    rows.push_back({"pdf.page", bench::median(costs), 1.1, 1, "x", "pdftoppm -r 200"});
    return bench::report(rows, argc, argv);
}
