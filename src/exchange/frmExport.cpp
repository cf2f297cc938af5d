#include "exchange/frmExport.h"

#include "exchange/package_export.h"
#include "files/sync.h"
#include "library/Library.h"
#include "store/catalogue.h"
#include "store/modMain.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/controls.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace varnholt {

frmExport::frmExport(Services& services, ProgramState& state, Library& library)
    : ExchangeWindow("frmExport", tr("Export Assessment"))
    , services_(services)
    , state_(state)
    , library_(library)
{
    buildControls();
    Form_Load();
}

void frmExport::buildControls()
{
    auto* lblAssessment = makeLabel("lblAssessment", tr("&Assessment to Export:"));
    cboAssessment_ = named(new ComboBox, "cboAssessment", tr("Assessment to export"));
    lblAssessment->setBuddy(cboAssessment_);
    lblProblems_ = makeLabel("lblProblems");
    lblProblems_->setWordWrap(true);
    auto* lblMessage = makeLabel("lblMessage", tr("Exporting may take a couple of minutes."));
    cmdExport_ = makeButton("cmdExport", tr("&Export"));

    cmdAddZip_ = makeButton("cmdAddZip", tr("Add \".&zip\""));
    cmdAddZip_->hide();
    buildColumn({lblAssessment, cboAssessment_, lblProblems_, lblMessage}, cmdExport_, cmdAddZip_);
    setTabOrder(cboAssessment_, cmdExport_);
    setTabOrder(cmdExport_, cmdAddZip_);
    setFocusProxy(cboAssessment_);
    connect(cboAssessment_, &ComboBox::Click, this, &frmExport::cboAssessment_Click);
    connect(cmdExport_, &QPushButton::clicked, this, &frmExport::cmdExport_Click);
    connect(cmdAddZip_, &QPushButton::clicked, this, &frmExport::cmdAddZip_Click);
}

void frmExport::Form_Load()
{
    cboAssessment_->clear();
    lblProblems_->hide();
    LoadAssessmentInfo();
    if (state_.AssessmentList.isEmpty()) {
        cmdExport_->setEnabled(false);
    } else {
        FillAssessmentCombo();
    }
}

void frmExport::LoadAssessmentInfo()
{
    try {
        varnholt::LoadAssessmentInfo(state_, library_.connection());
    } catch (const DatabaseError& error) {
        services_.messageBoxes->inform(QStringLiteral("Varnholt"), error.message());
        services_.messageBoxes->inform(tr("Database Error"),
                                       tr("There was an error loading the assessments."));
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
        const LoadFailures failures = LoadStructure(state_, library_.connection());
        services_.messageBoxes->informEach(tr("Database Error"), failures);
        LoadQuestions(state_, library_.connection());
        cmdExport_->setEnabled(failures.isEmpty());
    } catch (const Error&) {
        services_.messageBoxes->inform(tr("Database Error"),
                                       tr("There was an error loading the questions."));
    }
    const QStringList problems = PackageProblems(state_);
    lblProblems_->setText(problems.join(QStringLiteral("\n\n")));
    lblProblems_->setVisible(!problems.isEmpty());
}

void frmExport::cmdExport_Click()
{
    bool closing = false;
    runOnce([&] {
        cmdAddZip_->hide();
        try {
            closing = !exportAssessment();
        } catch (const std::exception& failure) {
            explain(failure);
            services_.messageBoxes->inform(tr("Export Error"),
                                           tr("There was an error creating this export file."));
        }
    });
    if (closing) {
        close();
    }
}

bool frmExport::exportAssessment()
{
    PackageExport package(services_.programFolder, state_, cboAssessment_->currentText(),
                          progress());
    const bool collected = busily([&] { return package.collect(); });
    if (!collected) {
        explain(package.reason);
        services_.messageBoxes->inform(
            tr("File Missing"), tr("Export was aborted because one of the questions is missing a "
                                   "picture file.  Please go to Manage Assessments and delete that "
                                   "question."));
        return false;
    }
    hideBar();
    const std::optional<QString> path =
        services_.fileDialogs->saveFile(tr("Zip Files (*.zip)"), package.initialName());
    if (path) {
        if (pack(package, *path)) {
            showSaved(*path);
            services_.messageBoxes->inform(tr("Export Complete"), tr("Export was successful."));
        }
        package.cleanUp();
    }
    return true;
}

bool frmExport::pack(PackageExport& package, const QString& path)
{
    const auto failure = busily([&] {
        showBar();
        return package.pack(path);
    });
    if (!failure) {
        return true;
    }
    explain(failure->reason);
    if (failure->notOpened) {
        services_.messageBoxes->inform(
            QStringLiteral("Varnholt"),
            tr("Error %1 (%2) in procedure AddFilesToZip of Modulo di classe clsZip")
                .arg(failure->error)
                .arg(failure->description));
    } else {
        services_.messageBoxes->inform(
            tr("Export Error"),
            tr("There is a problem creating this export file.  Please try again."));
    }
    return false;
}

void frmExport::showSaved(const QString& path)
{
    savedAs_ = path;
    const QString shown = QDir::toNativeSeparators(path);
    const bool listed = path.endsWith(QStringLiteral(".zip"), Qt::CaseInsensitive);
    explain(listed ? tr("The package was saved as %1").arg(shown)
                   : tr("The package was saved as %1\nThe name does not end in "
                        "\".zip\", so that the import window will not list it.")
                         .arg(shown));
    cmdAddZip_->setVisible(!listed);
}

void frmExport::cmdAddZip_Click()
{
    const QString path = savedAs_ + QStringLiteral(".zip");
    QFile file(savedAs_);
    if (file.rename(path)) {
        // The package is whole under either name, should this not be on the disk yet.
        static_cast<void>(SyncFolder(QFileInfo(QFileInfo(path).path()).filesystemFilePath()));
        showSaved(path);
        cmdExport_->setFocus();
    } else {
        explain(tr("The package could not be renamed to %1 (%2). It is still at %3")
                    .arg(QDir::toNativeSeparators(path), file.errorString(),
                         QDir::toNativeSeparators(savedAs_)));
    }
}

} // namespace varnholt
