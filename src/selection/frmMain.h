#pragma once

#include "selection/question_selection.h"
#include "store/catalogue.h"

#include <QPointer>
#include <QWidget>

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace varnholt {

class ComboBox;
class Connection;
class HintLabel;
class ListBox;
class frmSelect;
struct Services;
struct SlideOptions;

/// The selection window: an assessment, its topics and subtopics, the options of the
/// presentation and the number of questions. Opening it loads the catalogue; closing it
/// remembers the assessment. Names of controls and handlers are those a user of the program
/// knows from its windows.
class frmMain : public QWidget, private SelectionCaptions
{
    Q_OBJECT

public:
    frmMain(Services& services, ProgramState& state, Connection& connection,
            QWidget* parent = nullptr);
    ~frmMain() override;

protected:
    /// Hands the focus to the control where work starts. Not a focus proxy: Tab would stop at
    /// it each time round and never reach the controls before it.
    void focusInEvent(QFocusEvent* event) override;
    /// Enter opens the list of assessments or presses the button that has the focus, else
    /// "Create PowerPoint".
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void buildControls();
    void connectControls();
    void Form_Load();
    void cboAssessment_Click();
    void lstTopics_Click();
    void lstSubTopics_Click();
    void cmdSelectAllTopics_Click();
    void cmdClearAllTopics_Click();
    void cmdSelectAllSub_Click();
    void selectShownSubTopics(bool selected);
    void cmdCreate_Click();
    /// Opens the review window; this window is switched off until it closes.
    void openReview(const SlideOptions& options);

    void FillAssessmentCombo();
    void FillTopicList();
    void FillSubTopicList();
    void RefreshQuestionSelection();
    void loadCatalogue();
    /// Says beforehand why there is nothing to choose.
    void showObstacle(bool loaded);
    /// Says which number she asked for when a change of the selection has replaced it.
    void showAsked();
    /// What closing does, once.
    void unload();

    void setQuestionCount(const QString& caption) override;
    void setTopicRows(const QStringList& texts) override;

    Services& services_;
    ProgramState& state_;
    Connection& connection_;
    /// False while the subtopic list is being refilled.
    bool SubTopicEventsEnabled_ = true;
    bool unloaded_ = false;
    /// The number she typed last; 0 when none.
    std::int64_t asked_ = 0;
    /// Closed along with this window.
    QPointer<frmSelect> review_;

    ComboBox* cboAssessment_ = nullptr;
    ListBox* lstTopics_ = nullptr;
    ListBox* lstSubTopics_ = nullptr;
    QPushButton* cmdSelectAllTopics_ = nullptr;
    QPushButton* cmdClearAllTopics_ = nullptr;
    QPushButton* cmdSelectAllSub_ = nullptr;
    QPushButton* cmdSelectAllSubTopics_ = nullptr;
    QPushButton* cmdClearAllSubTopics_ = nullptr;
    QRadioButton* optSelectYes_ = nullptr;
    QRadioButton* optTopicYes_ = nullptr;
    QRadioButton* optKeyYes_ = nullptr;
    QLineEdit* txtQuestions_ = nullptr;
    QWidget* askedRow_ = nullptr;
    QLabel* lblAsked_ = nullptr;
    QPushButton* cmdAskAgain_ = nullptr;
    HintLabel* lblObstacle_ = nullptr;
    QPushButton* cmdCreate_ = nullptr;
    QLabel* lblQuestionCount_ = nullptr;
};

} // namespace varnholt
