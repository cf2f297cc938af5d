#pragma once

#include "manage/filing_preselection.h"
#include "store/modMain.h"

#include <QDialog>

class QLineEdit;

namespace varnholt {

class ComboBox;
class HintLabel;
class Library;
struct Services;

/// Files a question elsewhere in its assessment and changes its answer. Accepted when it has
/// saved.
class frmEditQuestion : public QDialog
{
    Q_OBJECT

public:
    /// `catalogue` has the topics and subtopics to choose from.
    frmEditQuestion(Services& services, const ProgramState& catalogue, Library& library,
                    QuestionRecord question, const FilingPreselection& preselection,
                    QWidget* parent = nullptr);

private:
    void buildControls();
    void Form_Load();
    void FillTopicCombo();
    void FillSubtopicCombo();
    void cboTopics_Click();
    void cmdSave_Click();
    void updateFilingHint();

    Services& services_;
    const ProgramState& catalogue_;
    Library& library_;
    QuestionRecord question_;
    FilingPreselection preselection_;
    /// The topic whose subtopics `cboSubtopics` lists.
    std::int32_t SelectedTopicID_ = 0;

    ComboBox* cboTopics_ = nullptr;
    ComboBox* cboSubtopics_ = nullptr;
    QLineEdit* txtAnswer_ = nullptr;
    HintLabel* lblFilingHint_ = nullptr;
};

} // namespace varnholt
