#include "exchange/frmImport.h"

#include "exchange/package_import.h"
#include "toolkit/controls.h"

namespace varnholt {

frmImport::frmImport(Services& services, Connection& connection)
    : ExchangeWindow("frmImport", QStringLiteral("Import Assessment"))
    , services_(services)
    , connection_(connection)
{
    auto* lblHint = makeLabel(
        "lblHint",
        QStringLiteral("Choose the zip file that another teacher exported. It becomes a new "
                       "assessment of yours; you are asked for its name, which cannot hold an "
                       "apostrophe (')."));
    lblHint->setWordWrap(true);
    auto* lblMessage =
        makeLabel("lblMessage", QStringLiteral("Importing may take a couple of minutes."));
    auto* cmdImport = makeButton("cmdImport", QStringLiteral("Im&port"));
    buildColumn({lblHint, lblMessage}, cmdImport);
    setFocusProxy(cmdImport);
    connect(cmdImport, &QPushButton::clicked, this, &frmImport::cmdImport_Click);
}

void frmImport::cmdImport_Click()
{
    runOnce([&](WorkView& view) { PackageImport(services_, connection_).run(view); });
}

} // namespace varnholt
