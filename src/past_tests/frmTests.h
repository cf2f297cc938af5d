#pragma once

#include "library/PastTests.h"
#include "store/errors.h"
#include "store/modMain.h"
#include "store/services.h"

#include <QPointer>
#include <QWidget>

#include <map>
#include <vector>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace varnholt {

class HintLabel;
class Library;
class OutcomeRow;
class QuestionStrip;
class frmSelect;

/// The tests that were made: what each was made of, how its questions went, and ways to make it
/// again, in another order or with other questions. F2 renames.
class frmTests : public QWidget
{
    Q_OBJECT

public:
    frmTests(Services& services, Library& library, QWidget* parent = nullptr);
    ~frmTests() override;

    /// A test is chosen, and nothing else is going on with it.
    [[nodiscard]] bool hasTest() const { return isEnabled() && current(); }
    void cmdPaper_Click();

Q_SIGNALS:
    /// She wants to see how classes did; 0 for no assessment in particular.
    void resultsWanted(std::int32_t assessmentNum);

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
    void cmdUnused_Click();
    void cmdDelete_Click();
    void noteOutcome(Outcome outcome);
    void undo();
    void rename(int row);

    void reload();
    /// Null when no test is chosen.
    [[nodiscard]] const PastTest* current() const;
    void showTest();
    void showButtons();
    /// Runs what may fail, and tells of the failure; false then.
    template <typename Work>
    bool tryTo(Work work)
    {
        try {
            work();
            return true;
        } catch (const Error& error) {
            services_.messageBoxes->inform(tr("Past Tests"), error.message());
            return false;
        }
    }

    Services& services_;
    Library& library_;
    std::vector<PastTest> tests_;
    /// Of the test on show.
    std::map<std::int32_t, TestUse> uses_;
    std::int32_t shownTest_ = 0;
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
    QPushButton* cmdResults_ = nullptr;
    OutcomeRow* outcomes_ = nullptr;
};

} // namespace varnholt
