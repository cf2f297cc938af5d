#include "presentation/office_host.h"

#include "presentation/impress/office_connection.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QThread>
#include <QUrl>

#include <com/sun/star/script/provider/XScriptProviderFactory.hpp>

#include <csignal>
#include <sys/prctl.h>

using namespace Qt::StringLiterals;

namespace varnholt::test {

namespace {

/// What they return is the answer.
const QString macros = uR"(
Function Presentation()
  Dim components, c
  components = StarDesktop.Components.createEnumeration()
  Do While components.hasMoreElements()
    c = components.nextElement()
    If HasUnoInterfaces(c, "com.sun.star.drawing.XDrawPagesSupplier") Then Presentation = c
  Loop
End Function

REM One line for the document, then one for each slide and each shape.
Function Dump
  Dim doc, page, s, i, k, text
  doc = Presentation()
  text = "document;" & doc.DrawPages.Count & ";" & doc.CurrentController.CurrentPage.Number & ";" & _
    doc.isModified() & ";" & doc.hasLocation() & ";" & _
    doc.CurrentController.Frame.ContainerWindow.isVisible() & Chr(10)
  For i = 0 To doc.DrawPages.Count - 1
    page = doc.DrawPages.getByIndex(i)
    text = text & "slide;" & page.Width & ";" & page.Height & ";" & page.Layout & ";" & _
      page.Change & ";" & page.Duration * page.Change & ";" & page.NotesPage.getByIndex(1).String & Chr(10)
    For k = 0 To page.Count - 1
      s = page.getByIndex(k)
      text = text & "shape;" & s.Position.X & ";" & s.Position.Y & ";" & s.Size.Width & ";" & _
        s.Size.Height & ";" & s.Description & ";" & Join(Split(s.String, Chr(10)), "|") & Chr(10)
    Next k
  Next i
  Dump = text
End Function

REM What the text of each shape looks like, and the names.
Function Looks
  Dim doc, page, s, c, i, k, text
  doc = Presentation()
  text = doc.Title & ";" & doc.DocumentProperties.Title & Chr(10)
  For i = 0 To doc.DrawPages.Count - 1
    page = doc.DrawPages.getByIndex(i)
    For k = 0 To page.Count - 1
      s = page.getByIndex(k)
      text = text & page.Name & ";" & s.Name
      If Not s.supportsService("com.sun.star.drawing.GraphicObjectShape") Then
        c = s.createTextCursor()
        c.gotoEnd(True)
        text = text & ";" & c.CharFontName & ";" & c.CharHeight & ";" & c.CharWeight & ";" & _
          c.CharLocale.Language & ";" & s.TextWordWrap & ";" & s.FillStyle & ";" & s.LineStyle & ";" & _
          s.TextLeftDistance & ";" & s.TextUpperDistance & ";" & s.TextVerticalAdjust & ";" & _
          s.TextHorizontalAdjust & ";" & s.FontIndependentLineSpacing
      End If
      text = text & Chr(10)
    Next k
  Next i
  Looks = text
End Function

Function OpenFile(path)
  OpenFile = StarDesktop.loadComponentFromURL(ConvertToURL(path), "_blank", 0, Array()).Title
End Function

Function StorePdf(path)
  Dim args(0) As New com.sun.star.beans.PropertyValue
  args(0).Name = "FilterName" : args(0).Value = "impress_pdf_Export"
  Presentation().storeToURL(ConvertToURL(path), args())
  StorePdf = path
End Function

Function CloseAll
  Dim doc
  doc = Presentation()
  Do Until IsNull(doc) Or IsEmpty(doc)
    doc.close(True)
    doc = Presentation()
  Loop
  CloseAll = "closed"
End Function
)"_s;

} // namespace

OfficeHost::OfficeHost(const QString& moreMacros)
{
    for (const char* program : {"soffice", "Xvfb"}) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty()) {
            problem_ = QLatin1String(program) + u" is not installed"_s;
            return;
        }
    }
    startDisplay();
    writeMacros(macros + moreMacros);
}

OfficeHost::~OfficeHost()
{
    signalOffice(SIGKILL);
    static_cast<void>(ends());
    display_.kill();
    display_.waitForFinished();
}

void OfficeHost::startDisplay()
{
    constexpr int limitMs = 120'000;
    // The office ends with its display, and the display with us, however that comes about.
    display_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    display_.start(u"Xvfb"_s,
                   u"-noreset -nolisten tcp -displayfd 1 -screen 0 1600x1000x24"_s.split(u' '));
    while (!display_.canReadLine()) {
        if (!display_.waitForReadyRead(limitMs)) {
            problem_ = u"Xvfb does not start"_s;
            return;
        }
    }
    displayName_ = u':' + QString::fromLatin1(display_.readLine().trimmed());
}

void OfficeHost::writeMacros(QString source)
{
    // A profile's first start writes over what is there, so that comes first.
    QProcess::execute(u"soffice"_s, settings().arguments +
                                        QStringList{u"--headless"_s, u"--terminate_after_init"_s});
    const QString module =
        u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<script:module xmlns:script=\"http://openoffice.org/2000/script\" "
        "script:name=\"Module1\" script:language=\"StarBasic\">%1</script:module>"_s;
    QFile file(folder_.filePath(u"profile/user/basic/Standard/Module1.xba"_s));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(module.arg(source.replace(u"%1"_s, folder_.path()).toHtmlEscaped()).toUtf8()) <=
            0) {
        problem_ = u"the profile of the office cannot be written"_s;
    }
}

ImpressSettings OfficeHost::settings() const
{
    ImpressSettings settings;
    settings.arguments = QStringList{u"-env:UserInstallation="_s +
                                     QUrl::fromLocalFile(filePath(u"profile"_s)).toString()};
    settings.startLimitMs = 240'000;
    settings.handOverMs = 20'000;
    settings.environment = QStringList{u"DISPLAY="_s + displayName_, u"SAL_USE_VCLPLUGIN=gen"_s};
    return settings;
}

QString OfficeHost::runMacro(const QString& name, const QStringList& arguments)
{
    OfficeConnection connection;
    connection.open(settings());
    const css::uno::Reference<css::script::provider::XScriptProviderFactory> factory(
        connection.context()->getValueByName(
            "/singletons/com.sun.star.script.provider.theMasterScriptProviderFactory"),
        css::uno::UNO_QUERY_THROW);
    const auto script = factory->createScriptProvider(css::uno::Any(rtl::OUString()))
                            ->getScript(toUno(u"vnd.sun.star.script:Standard.Module1.%1?"
                                              "language=Basic&location=application"_s.arg(name)));
    std::vector<css::uno::Any> values;
    for (const QString& argument : arguments) {
        values.emplace_back(toUno(argument));
    }
    css::uno::Sequence<sal_Int16> places;
    css::uno::Sequence<css::uno::Any> outputs;
    rtl::OUString result;
    script->invoke({values.data(), sal_Int32(values.size())}, places, outputs) >>= result;
    return fromUno(result);
}

bool OfficeHost::ends(const QString& program) const
{
    for (int i = 0; i < 5000; ++i) {
        if (processes(program).isEmpty()) {
            return true;
        }
        QThread::msleep(20);
    }
    return false;
}

QList<qint64> OfficeHost::processes(const QString& program) const
{
    QList<qint64> found;
    for (const QString& entry : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        bool isNumber = false;
        const qint64 pid = entry.toLongLong(&isNumber);
        QFile commandLine(u"/proc/%1/cmdline"_s.arg(entry));
        if (isNumber && commandLine.open(QIODevice::ReadOnly)) {
            const QByteArray text = commandLine.readAll();
            if (text.contains(folder_.path().toUtf8()) && text.contains(program.toUtf8())) {
                found.append(pid);
            }
        }
    }
    return found;
}

void OfficeHost::signalOffice(int signal) const
{
    for (const qint64 pid : processes()) {
        kill(pid_t(pid), signal);
    }
}

} // namespace varnholt::test
