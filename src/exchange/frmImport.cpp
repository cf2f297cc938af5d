#include "exchange/frmImport.h"

#include "exchange/package_import.h"
#include "library/Library.h"
#include "store/services.h"
#include "toolkit/controls.h"

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace varnholt {

QString DraggedPackage(const QMimeData& dragged)
{
    const QList<QUrl> urls = dragged.urls();
    const QString path = urls.size() == 1 ? urls.first().toLocalFile() : QString();
    return QFileInfo(path).isFile() ? path : QString();
}

frmImport::frmImport(Services& services, Library& library, std::function<bool()> mayBegin)
    : ExchangeWindow("frmImport", tr("Import Assessment"))
    , services_(services)
    , library_(library)
    , mayBegin_(std::move(mayBegin))
{
    auto* lblHint = makeLabel(
        "lblHint", tr("Choose the zip file that another teacher exported, or drop it on this "
                      "window. It becomes a new assessment of yours; you are asked for its name, "
                      "which cannot hold an apostrophe (')."));
    lblHint->setWordWrap(true);
    auto* lblMessage = makeLabel("lblMessage", tr("Importing may take a couple of minutes."));
    auto* cmdImport = makeButton("cmdImport", tr("Im&port"));
    buildColumn({lblHint, lblMessage}, cmdImport);
    setFocusProxy(cmdImport);
    setAcceptDrops(true);
    connect(cmdImport, &QPushButton::clicked, this, &frmImport::cmdImport_Click);
}

void frmImport::importFile(const QString& path)
{
    runOnce([&] {
        try {
            importPackage(path);
        } catch (const std::exception& failure) {
            explain(failure);
            services_.messageBoxes->inform(tr("Import Error"),
                                           tr("There was an error importing the file."));
        }
    });
}

void frmImport::importPackage(QString archivePath)
{
    PackageImport import(library_, progress());
    if (archivePath.isEmpty()) {
        archivePath = services_.fileDialogs->openFile(tr("Zip Files (*.zip)")).value_or(QString());
    }
    if (archivePath.isEmpty()) {
        return;
    }
    const Package package = busily([&] { return import.read(archivePath); });
    hideBar();
    if (!package.AssessmentName) {
        services_.messageBoxes->inform(
            tr("Import Error"),
            tr("This file does not appear to be a compatiable export file.  Import "
               "will be aborted."));
    }
    QString name = package.AssessmentName.value_or(QString());
    if (!name.isEmpty()) {
        name = askForName(import, name);
    }
    if (!name.isEmpty() && (!mayBegin_ || mayBegin_())) {
        const ImportPlan plan = PlanImport(package, name);
        const ImportResult result = busily([&] { return import.apply(package, plan); });
        services_.messageBoxes->inform(tr("Import Complete"), tr("Import was successful.\r\n\r\n"
                                                                 "Topics Imported: %1\r\n"
                                                                 "Subtopics Imported: %2\r\n"
                                                                 "Questions Imported: %3")
                                                                  .arg(result.topics)
                                                                  .arg(result.subtopics)
                                                                  .arg(result.questions));
    }
    import.cleanUp();
}

QString frmImport::askForName(PackageImport& import, QString name)
{
    const auto ask = [&](const QString& prompt) {
        name = services_.messageBoxes->inputText(tr("Assessment Name"), prompt, name).trimmed();
    };
    ask(tr("What do you want to call the import assessment?"));
    while (!name.isEmpty() && !import.CheckAssessmentName(name)) {
        ask(tr("That assessment name already exists.  Please enter another "
               "assessment name."));
    }
    return name;
}

void frmImport::cmdImport_Click()
{
    importFile({});
}

void frmImport::dragEnterEvent(QDragEnterEvent* event)
{
    if (!DraggedPackage(*event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
    }
}

void frmImport::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    const QString path = DraggedPackage(*event->mimeData());
    // Afterwards, because the program that the file comes from waits for this to return.
    QMetaObject::invokeMethod(
        this, [this, path] { importFile(path); }, Qt::QueuedConnection);
}

} // namespace varnholt
