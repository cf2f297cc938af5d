#pragma once

#include "manage/filing_preselection.h"

#include <QDialog>

class QLineEdit;

namespace varnholt {

class ComboBox;
class HintLabel;
class Library;
struct ProgramState;
struct Services;

/// Refiles the question that the browser shows and changes its answer. Accepted when it has
/// saved.
class frmEditQuestion : public QDialog
{
    Q_OBJECT

public:
    /// A question must be on show in the browser.
    frmEditQuestion(Services& services, ProgramState& state, Library& library,
                    const FilingPreselection& preselection, QWidget* parent = nullptr);

private:
    void buildControls();
    void Form_Load();
    void FillTopicCombo();
    void FillSubtopicCombo();
    void cboTopics_Click();
    void cmdSave_Click();
    void updateFilingHint();

    Services& services_;
    ProgramState& state_;
    Library& library_;
    FilingPreselection preselection_;
    /// The topic whose subtopics `cboSubtopics` lists.
    std::int32_t SelectedTopicID_ = 0;

    ComboBox* cboTopics_ = nullptr;
    ComboBox* cboSubtopics_ = nullptr;
    QLineEdit* txtAnswer_ = nullptr;
    HintLabel* lblFilingHint_ = nullptr;
};

} // namespace varnholt
