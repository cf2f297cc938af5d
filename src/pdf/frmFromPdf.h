#pragma once

#include "pdf/PdfReader.h"
#include "pdf/page_rows.h"

#include <QDialog>

#include <functional>
#include <map>

class QLabel;
class QPushButton;
class QSpinBox;

namespace varnholt {

class HintLabel;
class LongWork;
class PdfPagesView;

/// Questions out of a PDF file: frames are drawn on its pages or suggested, and what is in them is
/// handed on as pictures. Modal.
class frmFromPdf : public QDialog
{
    Q_OBJECT

public:
    /// Takes one picture after the other; may throw `Error`, and the window stays with the rest.
    using Take = std::function<void(const QImage& picture)>;

    frmFromPdf(Services& services, Take take, QWidget* parent = nullptr);
    ~frmFromPdf() override;

    /// Opens a file, asking for its password if it has one. False when the user gave up; throws
    /// `Error` when it cannot be read.
    bool open(const QString& path);

    [[nodiscard]] int takenCount() const { return takenCount_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void connectControls();
    void cmdSuggest_Click();
    void cmdSplit_Click(double y);
    void cmdAdd_Click();
    void showState();
    /// Runs work under a progress bar and tells its failure.
    void perform(const QString& label, const std::function<void(LongWork& work)>& work);
    [[nodiscard]] const pdf::PageRows& rowsOf(int page, const KeepGoing& goOn);
    [[nodiscard]] QImage pictureOf(const std::vector<struct PdfFrame>& frames,
                                   const KeepGoing& goOn);

    Services& services_;
    Take take_;
    PdfReader reader_;
    int takenCount_ = 0;
    std::map<int, pdf::PageRows> rows_;
    /// The page drawn last at the resolution of pictures.
    int sharpPage_ = -1;
    QImage sharp_;

    PdfPagesView* pages_ = nullptr;
    QLabel* lblPage_ = nullptr;
    QLabel* lblState_ = nullptr;
    QLabel* lblKeys_ = nullptr;
    HintLabel* lblHint_ = nullptr;
    QSpinBox* txtResolution_ = nullptr;
    QPushButton* cmdSuggest_ = nullptr;
    QPushButton* cmdJoin_ = nullptr;
    QPushButton* cmdSplit_ = nullptr;
    QPushButton* cmdDrop_ = nullptr;
    QPushButton* cmdUndo_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};

} // namespace varnholt
