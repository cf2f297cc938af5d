#pragma once

#include "paper/PaperFont.h"
#include "paper/paper_pictures.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QPrinter;
class QPushButton;
class QSpinBox;

namespace varnholt {

class HintLabel;
class LineEdit;
class LongWork;
class PaperPreview;
struct Services;

/// A test on paper: settings on the left, its pages on the right as they will be; saved as a PDF
/// file or printed. What was set is remembered for the next time.
class frmPaper : public QDialog
{
    Q_OBJECT

public:
    /// `test` may come without a date and versions, which are made here.
    frmPaper(Services& services, PaperTest test, QWidget* parent = nullptr);
    ~frmPaper() override;

    /// Prints on this printer, without asking for one.
    void printOn(QPrinter& printer);

    /// Called with what was printed or saved, once a PDF is on the disk or a printer has all pages.
    std::function<void(const PaperTest& test)> onDone;

public Q_SLOTS:
    void cmdSavePdf_Click();
    void cmdPrint_Click();

private:
    void buildControls();
    [[nodiscard]] QWidget* buildSettings();
    void restoreSettings();
    void saveSettings() const;
    [[nodiscard]] PaperOptions options() const;
    /// Lays the test out anew as the settings say.
    void layOut();
    void makeVersions();
    void showPage();
    /// Tells of a failure of saving or printing.
    void tell(const QString& title, const QString& reason);
    /// Runs under a progress bar; false when it was cancelled or failed, which has been told.
    [[nodiscard]] bool perform(const QString& what,
                               const std::function<void(LongWork& work)>& work);

    Services& services_;
    PaperTest test_;
    std::vector<PaperPictureSize> sizes_;
    PaperFont font_;
    TextWidth widthOf_;

    LineEdit* txtTitle_ = nullptr;
    LineEdit* txtClass_ = nullptr;
    LineEdit* txtDate_ = nullptr;
    QComboBox* cboPerPage_ = nullptr;
    QComboBox* cboPaper_ = nullptr;
    QComboBox* cboAnswerSpace_ = nullptr;
    QComboBox* cboKey_ = nullptr;
    QSpinBox* txtVersions_ = nullptr;
    QCheckBox* chkTopics_ = nullptr;
    QCheckBox* chkLargePrint_ = nullptr;
    QPushButton* cmdSavePdf_ = nullptr;
    QPushButton* cmdPrint_ = nullptr;
    HintLabel* lblHint_ = nullptr;
    QLabel* lblPage_ = nullptr;
    PaperPreview* preview_ = nullptr;
};

} // namespace varnholt
