// Building a hundred question slides in Impress, against the office's own macro language
// doing the same in the same office; and a thousand, against that office opening our .pptx of them.

#include "presentation/build_fixture.h"
#include "presentation/impress/impress_plugin.h"
#include "presentation/office_host.h"
#include "presentation/pptx/pptx_program.h"
#include "presentation/slide_builder.h"
#include "support/fakes.h"
#include "support/report.h"

#include <QElapsedTimer>
#include <QGuiApplication>

#include <cstdio>

using namespace varnholt;
using namespace varnholt::test;

namespace {

const QString macros = QStringLiteral(R"(
Sub Place(s, x, y, w, h)
  Dim p As New com.sun.star.awt.Point, z As New com.sun.star.awt.Size
  p.X = x : p.Y = y : z.Width = w : z.Height = h
  s.Position = p
  s.Size = z
End Sub

Sub TextBox(doc, page, x, y, w, h, text)
  Dim s
  s = doc.createInstance("com.sun.star.drawing.TextShape")
  page.add(s)
  s.TextAutoGrowHeight = False
  s.TextLeftDistance = 254 : s.TextRightDistance = 254
  s.TextUpperDistance = 127 : s.TextLowerDistance = 127
  Place(s, x, y, w, h)
  s.String = text
End Sub

REM The same hundred slides as the benchmark builds, in the office's own language.
Function Build
  Dim started, doc, pages, page, graphics, i, s, source(0) As New com.sun.star.beans.PropertyValue
  started = GetSystemTicks()
  doc = StarDesktop.loadComponentFromURL("private:factory/simpress", "_blank", 0, Array())
  graphics = createUnoService("com.sun.star.graphic.GraphicProvider")
  pages = doc.DrawPages
  pages.getByIndex(0).Width = 33867 : pages.getByIndex(0).Height = 19050
  For i = 1 To 100
    page = pages.insertNewByIndex(pages.Count)
    page.Layout = 20
    If i = 1 Then pages.remove(pages.getByIndex(0))
    TextBox(doc, page, 0, 0, 35278, 3528, "Algebra - Roots")
    TextBox(doc, page, 0, 1411, 3528, 3528, "#" & i)
    source(0).Name = "URL" : source(0).Value = ConvertToURL("%1/" & i & ".jpg")
    s = doc.createInstance("com.sun.star.drawing.GraphicObjectShape")
    page.add(s)
    s.Graphic = graphics.queryGraphic(source())
    s.Description = "Question " & i
    Place(s, 71, 2469, 21167, 15875)
  Next i
  doc.CurrentController.setCurrentPage(pages.getByIndex(0))
  Build = CStr(GetSystemTicks() - started)
End Function

Function OpenPptx(path)
  Dim started
  started = GetSystemTicks()
  StarDesktop.loadComponentFromURL(ConvertToURL(path), "_blank", 0, Array())
  OpenPptx = CStr(GetSystemTicks() - started)
End Function
)");

constexpr int slides = 100;
constexpr int manySlides = 1000;
constexpr int runs = 5;
constexpr int manyRuns = 3;

List1<DrawnQuestion> poolOf(int questions)
{
    List1<DrawnQuestion> pool;
    for (int i = 1; i <= questions; ++i) {
        pool.append({{i, i, 1, 1, QStringLiteral("A")}, true});
    }
    return pool;
}

double build(PresentationProgram& program, const OfficeHost& host, const List1<DrawnQuestion>& pool)
{
    const BuildInput input{
        pool, true, false, [](const QuestionRecord&) { return QStringLiteral("Algebra - Roots"); },
        [&host](const QuestionRecord& question) {
            return host.filePath(QStringLiteral("%1.jpg").arg(question.SOLIndex));
        }};
    QElapsedTimer timer;
    timer.start();
    if (BuildPresentation(program, input).end != BuildOutcome::End::Complete) {
        qFatal("the build failed");
    }
    return double(timer.nsecsElapsed()) / 1e6;
}

double ours(const OfficeHost& host, const List1<DrawnQuestion>& pool)
{
    return build(*ImpressPlugin::instance().start(host.settings()), host, pool);
}

double againstPptx(OfficeHost& host)
{
    const List1<DrawnQuestion> pool = poolOf(manySlides);
    PptxSettings settings;
    settings.programFolder = host.filePath(QString());
    PptxProgram pptx(settings);
    build(pptx, host, pool);
    std::vector<double> ratios;
    for (int run = 0; run < manyRuns; ++run) {
        host.runMacro(QStringLiteral("CloseAll"));
        const double peer =
            host.runMacro(QStringLiteral("OpenPptx"), {pptx.writtenPath()}).toDouble();
        host.runMacro(QStringLiteral("CloseAll"));
        const double own = ours(host, pool);
        std::printf("Impress, %d slides: %.0f ms; opening the .pptx %.0f ms\n", manySlides, own,
                    peer);
        ratios.push_back(own / peer);
    }
    return bench::median(ratios);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    OfficeHost host(macros);
    if (!host.problem().isEmpty() || ImpressPlugin::instance().entry() == nullptr) {
        std::fprintf(stderr, "no Impress to measure: %s %s\n", qPrintable(host.problem()),
                     qPrintable(ImpressPlugin::instance().reason()));
        return 1;
    }
    const List1<DrawnQuestion> pool = poolOf(slides);
    for (int i = 1; i <= manySlides; ++i) {
        writePicture(host.filePath(QStringLiteral("%1.jpg").arg(i)), {800, 600}, 96);
    }
    std::vector<double> own;
    std::vector<double> peer;
    ours(host, pool);
    for (int run = 0; run <= runs; ++run) {
        host.runMacro(QStringLiteral("CloseAll"));
        const double macro = host.runMacro(QStringLiteral("Build")).toDouble();
        host.runMacro(QStringLiteral("CloseAll"));
        const double built = ours(host, pool);
        if (run > 0) { // the first round warms up
            own.push_back(built);
            peer.push_back(macro);
        }
    }
    const double a = bench::median(own);
    const double b = bench::median(peer);
    std::printf("Impress, %d slides of 800 x 600 pictures, office running: %.0f ms (%.1f a slide); "
                "its own macro %.0f ms (%.1f a slide)\n",
                slides, a, a / slides, b, b / slides);
    return bench::report({{"impress.100", a / b, 2.0, 1.2, "x", "the office's own macro language"},
                          {"impress.1000", againstPptx(host), 1.5, 1.1, "x",
                           "that office opening our .pptx of the same slides"}},
                         argc, argv);
}
