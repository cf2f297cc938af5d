#pragma once

#include "exchange/ExchangeWindow.h"

namespace varnholt {

class ComboBox;
class Connection;
struct ProgramState;
struct Services;

/// Writes one assessment into an exchange package. Choosing an assessment here makes it the
/// program's current one.
class frmExport : public ExchangeWindow
{
    Q_OBJECT

public:
    frmExport(Services& services, ProgramState& state, Connection& connection);

public Q_SLOTS:
    void cboAssessment_Click();
    void cmdExport_Click();

private:
    void buildControls();
    void Form_Load();
    void FillAssessmentCombo();

    Services& services_;
    ProgramState& state_;
    Connection& connection_;
    ComboBox* cboAssessment_ = nullptr;
    QLabel* lblQuoteHint_ = nullptr;
    QPushButton* cmdExport_ = nullptr;
};

} // namespace varnholt
