#pragma once

#include "library/PastTests.h"
#include "store/modMain.h"

#include <QPointer>
#include <QWidget>

#include <vector>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace varnholt {

class HintLabel;
class Library;
class QuestionStrip;
class frmSelect;
struct Services;

/// The tests that were made: what each was made of, and ways to make it again, in another order or
/// with other questions. F2 renames.
class frmTests : public QWidget
{
    Q_OBJECT

public:
    frmTests(Services& services, Library& library, QWidget* parent = nullptr);
    ~frmTests() override;

protected:
    void focusInEvent(QFocusEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    enum Column
    {
        Date,
        Class,
        Name,
        Number,
        Kind
    };

    void buildControls();
    void connectControls();
    void cmdOpenAgain_Click();
    void cmdNewVersion_Click();
    void cmdChange_Click();
    void cmdShow_Click();
    void cmdPaper_Click();
    void cmdUnused_Click();
    void cmdDelete_Click();
    void undo();
    void rename(int row);

    void reload();
    /// Null when no test is chosen.
    [[nodiscard]] const PastTest* current() const;
    void showTest();
    void showButtons();
    /// Runs what may fail, and tells of the failure.
    template <typename Work>
    void tryTo(Work work);

    Services& services_;
    Library& library_;
    std::vector<PastTest> tests_;
    /// The rows are being filled, so that their changes are not hers.
    bool filling_ = false;
    /// The assessment of the test whose questions are being changed.
    ProgramState state_;
    QPointer<frmSelect> review_;

    QTreeWidget* lstTests_ = nullptr;
    QuestionStrip* lstQuestions_ = nullptr;
    QLabel* lblEmpty_ = nullptr;
    HintLabel* lblNote_ = nullptr;
    QPushButton* cmdOpenAgain_ = nullptr;
    QPushButton* cmdNewVersion_ = nullptr;
    QPushButton* cmdChange_ = nullptr;
    QPushButton* cmdShow_ = nullptr;
    QPushButton* cmdPaper_ = nullptr;
    QPushButton* cmdUnused_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
};

} // namespace varnholt
