#pragma once

#include "class_results/ClassResults.h"
#include "store/errors.h"
#include "store/services.h"

#include <QWidget>

class QCheckBox;
class QLabel;
class QPushButton;
class QTabWidget;
class QTableView;
class QTreeWidget;

namespace varnholt {

class ComboBox;
class HintLabel;
class Library;
class OutcomeRow;
class ResultsModel;

/// How the classes did with the questions of an assessment: which were used when and how many knew
/// them, how much of each subtopic was ever used, and the classes themselves, to be renamed and
/// deleted. What a tab shows can be saved for a spreadsheet.
class frmResults : public QWidget
{
    Q_OBJECT

public:
    /// Begins with an assessment; the first one where there is none of that key.
    frmResults(Services& services, Library& library, std::int32_t assessmentNum,
               QWidget* parent = nullptr);

protected:
    void focusInEvent(QFocusEvent* event) override;

private:
    void buildControls();
    [[nodiscard]] QWidget* buildQuestions();
    [[nodiscard]] QWidget* buildSubtopics();
    [[nodiscard]] QWidget* buildClasses();
    [[nodiscard]] QTableView* makeTable(const char* name, const QString& accessibleName,
                                        ResultsModel* model);
    void connectControls();

    void cboAssessment_Click();
    void cmdCsv_Click();
    void cmdRename_Click();
    void cmdDelete_Click();
    /// How many knew the questions of the chosen cells when they were used last.
    void noteOutcome(Outcome outcome);
    void renameClass(int row);
    void undo();

    /// Reads everything anew; rows stay where they are.
    void reload();
    /// Says what came of something that she did, until the next.
    void tell(const QString& sentence);
    void read(bool keepOrder);
    void showClasses();
    void showButtons();
    /// Null when no class is chosen.
    [[nodiscard]] const ClassRecord* currentClass() const;
    /// Runs what may fail, and tells of the failure; false then.
    template <typename Work>
    bool tryTo(Work work)
    {
        try {
            work();
            return true;
        } catch (const Error& error) {
            services_.messageBoxes->inform(tr("How Classes Did"), error.message());
            return false;
        }
    }

    Services& services_;
    Library& library_;
    std::int32_t assessmentNum_;
    ClassResults results_;
    ResultsModel* questions_ = nullptr;
    ResultsModel* subtopics_ = nullptr;
    /// The rows are being filled, so that their changes are not hers.
    bool filling_ = false;
    QString told_;

    ComboBox* cboAssessment_ = nullptr;
    QPushButton* cmdCsv_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    QCheckBox* chkHard_ = nullptr;
    QTableView* tblQuestions_ = nullptr;
    QTableView* tblSubtopics_ = nullptr;
    QTreeWidget* lstClasses_ = nullptr;
    QPushButton* cmdRename_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
    OutcomeRow* outcomes_ = nullptr;
    HintLabel* lblNote_ = nullptr;
};

} // namespace varnholt
