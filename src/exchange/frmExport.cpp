#include "exchange/frmExport.h"

#include "exchange/package_export.h"
#include "store/catalogue.h"
#include "store/connection.h"
#include "store/modMain.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/controls.h"

namespace varnholt {

frmExport::frmExport(Services& services, ProgramState& state, Connection& connection)
    : ExchangeWindow("frmExport", QStringLiteral("Export Assessment"))
    , services_(services)
    , state_(state)
    , connection_(connection)
{
    buildControls();
    Form_Load();
}

void frmExport::buildControls()
{
    auto* lblAssessment = makeLabel("lblAssessment", QStringLiteral("&Assessment to Export:"));
    cboAssessment_ = named(new ComboBox, "cboAssessment", QStringLiteral("Assessment to export"));
    lblAssessment->setBuddy(cboAssessment_);
    lblQuoteHint_ = makeLabel(
        "lblQuoteHint",
        QStringLiteral("Some names or answers of this assessment hold a double quote (\"). A "
                       "package cannot carry it: whoever imports it gets such a text cut short. "
                       "Change those texts first."));
    lblQuoteHint_->setWordWrap(true);
    auto* lblMessage =
        makeLabel("lblMessage", QStringLiteral("Exporting may take a couple of minutes."));
    cmdExport_ = makeButton("cmdExport", QStringLiteral("&Export"));

    buildColumn({lblAssessment, cboAssessment_, lblQuoteHint_, lblMessage}, cmdExport_);
    setTabOrder(cboAssessment_, cmdExport_);
    setFocusProxy(cboAssessment_);
    connect(cboAssessment_, &ComboBox::Click, this, &frmExport::cboAssessment_Click);
    connect(cmdExport_, &QPushButton::clicked, this, &frmExport::cmdExport_Click);
}

void frmExport::Form_Load()
{
    cboAssessment_->clear();
    lblQuoteHint_->hide();
    LoadAssessmentInfo(state_, connection_, *services_.messageBoxes);
    if (state_.AssessmentList.isEmpty()) {
        cmdExport_->setEnabled(false);
    } else {
        FillAssessmentCombo();
    }
}

void frmExport::FillAssessmentCombo()
{
    cboAssessment_->clear();
    for (const AssessmentRecord& record : state_.AssessmentList) {
        cboAssessment_->addEntry(record.AssessmentName, record.AssessmentNum);
    }
    cboAssessment_->setListIndex(0);
}

void frmExport::cboAssessment_Click()
{
    if (cboAssessment_->listIndex() < 0) {
        return;
    }
    state_.CurrentAssessmentNum = cboAssessment_->entryData(cboAssessment_->listIndex());
    if (state_.CurrentAssessmentNum <= 0) {
        return;
    }
    // What was read in part must not pass for the whole assessment.
    cmdExport_->setEnabled(false);
    try {
        cmdExport_->setEnabled(LoadCurrentAssessment(state_, connection_, *services_.messageBoxes));
    } catch (const Error&) {
        services_.messageBoxes->inform(QStringLiteral("Database Error"),
                                       QStringLiteral("There was an error loading the questions."));
    }
    lblQuoteHint_->setVisible(holdsDoubleQuote(state_));
}

void frmExport::cmdExport_Click()
{
    auto end = PackageExport::End::WindowStays;
    runOnce([&](WorkView& view) {
        end = PackageExport(services_, state_, cboAssessment_->currentText()).run(view);
    });
    if (end == PackageExport::End::WindowCloses) {
        close();
    }
}

} // namespace varnholt
