#pragma once

#include "exchange/ExchangeWindow.h"

namespace varnholt {

class ComboBox;
class Library;
struct ProgramState;
struct Services;

/// Writes one assessment into an exchange package. Choosing an assessment here makes it the
/// program's current one.
class frmExport : public ExchangeWindow
{
    Q_OBJECT

public:
    frmExport(Services& services, ProgramState& state, Library& library);

public Q_SLOTS:
    void cboAssessment_Click();
    void cmdExport_Click();
    /// Gives the package just saved the ending by which the import window lists it.
    void cmdAddZip_Click();

private:
    void buildControls();
    void Form_Load();
    void FillAssessmentCombo();
    void LoadAssessmentInfo();
    /// False when the window has nothing to stay open for.
    [[nodiscard]] bool exportAssessment();
    /// True when the package was saved.
    [[nodiscard]] bool pack(class PackageExport& package, const QString& path);
    void showSaved(const QString& path);

    Services& services_;
    ProgramState& state_;
    Library& library_;
    ComboBox* cboAssessment_ = nullptr;
    QLabel* lblProblems_ = nullptr;
    QPushButton* cmdExport_ = nullptr;
    QPushButton* cmdAddZip_ = nullptr;
    /// Where the last package was saved.
    QString savedAs_;
};

} // namespace varnholt
