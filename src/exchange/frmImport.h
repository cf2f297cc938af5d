#pragma once

#include "exchange/ExchangeWindow.h"

#include <functional>

class QMimeData;

namespace varnholt {

class Library;
class PackageImport;
struct Services;

/// The package that is being dragged over a window: one local file; empty for anything else.
[[nodiscard]] QString DraggedPackage(const QMimeData& dragged);

/// Reads an exchange package into the library as a new assessment: one that the user chooses, or
/// drops on the window.
class frmImport : public ExchangeWindow
{
    Q_OBJECT

public:
    /// `mayBegin` is asked before the library is changed; not when it is empty.
    frmImport(Services& services, Library& library, std::function<bool()> mayBegin = {});

    /// Imports the package at that path without asking for one.
    void importFile(const QString& path);

public Q_SLOTS:
    void cmdImport_Click();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    /// Asks for the archive when there is no path.
    void importPackage(QString archivePath);
    /// Empty when she gave up.
    [[nodiscard]] QString askForName(PackageImport& import, QString name);

    Services& services_;
    Library& library_;
    std::function<bool()> mayBegin_;
};

} // namespace varnholt
