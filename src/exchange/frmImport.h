#pragma once

#include "exchange/ExchangeWindow.h"

class QMimeData;

namespace varnholt {

class Connection;
struct Services;

/// The package that is being dragged over a window: one local file; empty for anything else.
[[nodiscard]] QString DraggedPackage(const QMimeData& dragged);

/// Reads an exchange package into the library as a new assessment: one that the user chooses, or
/// drops on the window.
class frmImport : public ExchangeWindow
{
    Q_OBJECT

public:
    frmImport(Services& services, Connection& connection);

    /// Imports the package at that path without asking for one.
    void importFile(const QString& path);

public Q_SLOTS:
    void cmdImport_Click();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    Services& services_;
    Connection& connection_;
};

} // namespace varnholt
