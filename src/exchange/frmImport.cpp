#include "exchange/frmImport.h"

#include "exchange/package_import.h"
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

frmImport::frmImport(Services& services, Connection& connection)
    : ExchangeWindow("frmImport", QStringLiteral("Import Assessment"))
    , services_(services)
    , connection_(connection)
{
    auto* lblHint = makeLabel(
        "lblHint",
        QStringLiteral("Choose the zip file that another teacher exported, or drop it on this "
                       "window. It becomes a new assessment of yours; you are asked for its name, "
                       "which cannot hold an apostrophe (')."));
    lblHint->setWordWrap(true);
    auto* lblMessage =
        makeLabel("lblMessage", QStringLiteral("Importing may take a couple of minutes."));
    auto* cmdImport = makeButton("cmdImport", QStringLiteral("Im&port"));
    buildColumn({lblHint, lblMessage}, cmdImport);
    setFocusProxy(cmdImport);
    setAcceptDrops(true);
    connect(cmdImport, &QPushButton::clicked, this, &frmImport::cmdImport_Click);
}

void frmImport::importFile(const QString& path)
{
    runOnce([&](WorkView& view) { PackageImport(services_, connection_).run(view, path); });
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
