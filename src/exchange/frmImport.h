#pragma once

#include "exchange/ExchangeWindow.h"

namespace varnholt {

class Connection;
struct Services;

/// Reads an exchange package into the library as a new assessment.
class frmImport : public ExchangeWindow
{
    Q_OBJECT

public:
    frmImport(Services& services, Connection& connection);

public Q_SLOTS:
    void cmdImport_Click();

private:
    Services& services_;
    Connection& connection_;
};

} // namespace varnholt
