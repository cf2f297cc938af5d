#include "presentation/office_host.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QThread>
#include <QUrl>

#include <csignal>

using namespace Qt::StringLiterals;

namespace varnholt::test {

namespace {

/// %1 is the folder for what the macros write.
const QString macros = uR"(
Sub Finish(text)
  Open "%1/part.txt" For Output As #1
  Print #1, text
  Close #1
  Name "%1/part.txt" As "%1/result.txt"
End Sub

Function Presentation()
  Dim components, c
  components = StarDesktop.Components.createEnumeration()
  Do While components.hasMoreElements()
    c = components.nextElement()
    If HasUnoInterfaces(c, "com.sun.star.lang.XServiceInfo") Then
      If c.supportsService("com.sun.star.presentation.PresentationDocument") Then
        Presentation = c
        Exit Function
      End If
    End If
  Loop
End Function

REM One line for the document, then one for each slide and each shape.
Sub Dump
  Dim doc, page, s, i, k, text
  doc = Presentation()
  text = "document;" & doc.DrawPages.Count & ";" & doc.CurrentController.CurrentPage.Number & ";" & _
    doc.isModified() & ";" & doc.hasLocation() & ";" & _
    doc.CurrentController.Frame.ContainerWindow.isVisible() & Chr(10)
  For i = 0 To doc.DrawPages.Count - 1
    page = doc.DrawPages.getByIndex(i)
    text = text & "slide;" & page.Width & ";" & page.Height & ";" & page.Layout & Chr(10)
    For k = 0 To page.Count - 1
      s = page.getByIndex(k)
      text = text & s.ShapeType & ";" & s.Position.X & ";" & s.Position.Y & ";" & s.Size.Width & ";" & _
        s.Size.Height & ";" & s.Description & ";" & Join(Split(s.String, Chr(10)), "|") & Chr(10)
    Next k
  Next i
  Finish(text)
End Sub

Sub StorePdf
  Dim args(0) As New com.sun.star.beans.PropertyValue
  args(0).Name = "FilterName" : args(0).Value = "impress_pdf_Export"
  Presentation().storeToURL(ConvertToURL("%1/held.pdf"), args())
  Finish("stored")
End Sub

Sub CloseAll
  Dim doc
  doc = Presentation()
  Do While Not IsEmpty(doc)
    doc.close(True)
    doc = Presentation()
  Loop
  Finish("closed")
End Sub

Function Box(doc, page, service, x, y, w, h)
  Dim s, p As New com.sun.star.awt.Point, z As New com.sun.star.awt.Size
  s = doc.createInstance(service)
  p.X = x : p.Y = y : z.Width = w : z.Height = h
  s.Position = p
  s.Size = z
  page.add(s)
  Box = s
End Function

Sub TextBox(doc, page, x, y, w, h, text)
  Dim s
  s = Box(doc, page, "com.sun.star.drawing.TextShape", x, y, w, h)
  s.TextAutoGrowHeight = False
  s.TextLeftDistance = 254 : s.TextRightDistance = 254
  s.TextUpperDistance = 127 : s.TextLowerDistance = 127
  s.String = text
End Sub

REM The same hundred slides as the benchmark builds, in the office's own language.
Sub Build
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
    s = Box(doc, page, "com.sun.star.drawing.GraphicObjectShape", 71, 2469, 21167, 15875)
    s.Graphic = graphics.queryGraphic(source())
    s.Description = "Question " & i
  Next i
  doc.CurrentController.setCurrentPage(pages.getByIndex(0))
  Finish(GetSystemTicks() - started)
End Sub
)"_s;

bool write(const QString& path, const QString& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

} // namespace

OfficeHost::OfficeHost()
{
    for (const char* program : {"soffice", "Xvfb"}) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty()) {
            problem_ = QLatin1String(program) + u" is not installed"_s;
            return;
        }
    }
    startDisplay();
    writeMacros();
}

OfficeHost::~OfficeHost()
{
    signalOffice(SIGKILL);
    for (int i = 0; i < 100 && !processes().isEmpty(); ++i) {
        QThread::msleep(20);
    }
    display_.kill();
    display_.waitForFinished();
}

void OfficeHost::startDisplay()
{
    display_.start(u"Xvfb"_s, {u"-noreset"_s, u"-nolisten"_s, u"tcp"_s, u"-displayfd"_s, u"1"_s,
                               u"-screen"_s, u"0"_s, u"1600x1000x24"_s});
    while (!display_.canReadLine()) {
        if (!display_.waitForReadyRead(20'000)) {
            problem_ = u"Xvfb does not start"_s;
            return;
        }
    }
    displayName_ = u':' + QString::fromLatin1(display_.readLine().trimmed());
}

QString OfficeHost::profileArgument(const QString& name) const
{
    return u"-env:UserInstallation="_s +
           QUrl::fromLocalFile(folder_.filePath(name)).toString(QUrl::FullyEncoded);
}

void OfficeHost::writeMacros()
{
    const QString library = u"library:library"_s;
    const QString head =
        u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE %1 PUBLIC \"-//OpenOffice.org//DTD "
        "OfficeDocument 1.0//EN\" \"%2.dtd\">\n"_s;
    const QString libraries =
        head.arg(u"library:libraries"_s, u"libraries"_s) +
        u"<library:libraries xmlns:library=\"http://openoffice.org/2000/library\" "
        "xmlns:xlink=\"http://www.w3.org/1999/xlink\"><library:library "
        "library:name=\"Standard\" library:link=\"false\"/></library:libraries>"_s;
    const QString standard =
        head.arg(library, u"library"_s) +
        u"<library:library xmlns:library=\"http://openoffice.org/2000/library\" "
        "library:name=\"Standard\" library:readonly=\"false\" "
        "library:passwordprotected=\"false\">%1</library:library>"_s;
    const QString module = head.arg(u"script:module"_s, u"module"_s) +
                           u"<script:module xmlns:script=\"http://openoffice.org/2000/script\" "
                           "script:name=\"Varnholt\" script:language=\"StarBasic\">%1"
                           "</script:module>"_s;
    const QString basic = folder_.filePath(u"profile/user/basic/"_s);
    const bool written =
        QDir().mkpath(basic + u"Standard"_s) && write(basic + u"script.xlc"_s, libraries) &&
        write(basic + u"dialog.xlc"_s, libraries) &&
        write(basic + u"Standard/script.xlb"_s,
              standard.arg(u"<library:element library:name=\"Varnholt\"/>"_s)) &&
        write(basic + u"Standard/dialog.xlb"_s, standard.arg(QString())) &&
        write(basic + u"Standard/Varnholt.xba"_s,
              module.arg(QString(macros).replace(u"%1"_s, folder_.path()).toHtmlEscaped()));
    if (!written) {
        problem_ = u"the profile cannot be written"_s;
    }
}

ImpressSettings OfficeHost::settings() const
{
    ImpressSettings settings;
    settings.arguments = QStringList{profileArgument(u"profile"_s)};
    settings.environment = QStringList{u"DISPLAY="_s + displayName_, u"SAL_USE_VCLPLUGIN=gen"_s};
    return settings;
}

QString OfficeHost::runMacro(const QString& name)
{
    const QString result = folder_.filePath(u"result.txt"_s);
    QFile::remove(result);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DISPLAY"_s, displayName_);
    process.setProcessEnvironment(environment);
    process.start(u"soffice"_s,
                  {profileArgument(u"profile"_s), u"macro:///Standard.Varnholt."_s + name});
    QElapsedTimer waiting;
    waiting.start();
    constexpr int limitMs = 30'000;
    while (!QFile::exists(result) && !waiting.hasExpired(limitMs)) {
        QThread::msleep(10);
    }
    process.waitForFinished(5000);
    QFile file(result);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void OfficeHost::convertToPdf(const QString& file)
{
    QProcess process;
    process.start(u"soffice"_s, {profileArgument(u"second"_s), u"--headless"_s, u"--convert-to"_s,
                                 u"pdf"_s, u"--outdir"_s, folder_.path(), file});
    process.waitForFinished(60'000);
}

QList<qint64> OfficeHost::processes() const
{
    QList<qint64> found;
    for (const QString& entry : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        bool isNumber = false;
        const qint64 pid = entry.toLongLong(&isNumber);
        QFile commandLine(u"/proc/%1/cmdline"_s.arg(entry));
        if (isNumber && commandLine.open(QIODevice::ReadOnly) &&
            commandLine.readAll().contains(folder_.path().toUtf8())) {
            found.append(pid);
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
