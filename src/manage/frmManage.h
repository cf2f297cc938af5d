#pragma once

#include "library/Journal.h"
#include "manage/filing_preselection.h"
#include "store/catalogue.h"

#include <QWidget>

#include <functional>

class QGroupBox;
class QLabel;
class QPushButton;

namespace varnholt {

class ComboBox;
class HintLabel;
class Library;
class ListBox;
class PictureView;
enum class PictureFault;
struct ProgramState;
struct Services;

/// The library manager: browses the questions of a subtopic, and adds, refiles and deletes
/// assessments, topics, subtopics and questions. Opening it loads the catalogue; closing it
/// remembers the assessment.
class frmManage : public QWidget
{
    Q_OBJECT

public:
    /// Shows the window that makes new questions, modal to `parent`, and returns when it
    /// closes: whether a question was saved or topics or subtopics were added.
    using OpenAuthoring = std::function<bool(QWidget* parent, const FilingPreselection&)>;

    /// Without `openAuthoring` no questions can be added.
    frmManage(Services& services, ProgramState& state, Library& library,
              OpenAuthoring openAuthoring, QWidget* parent = nullptr);
    ~frmManage() override;

protected:
    /// Hands the focus to the control where work starts. Not a focus proxy: Tab would stop at
    /// it each time round and never reach the controls before it.
    void focusInEvent(QFocusEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void buildControls();
    QWidget* buildAssessments();
    QWidget* buildTopics();
    QWidget* buildSubtopics();
    QWidget* buildBrowser();
    void connectControls();
    void Form_Load();
    void Form_Unload();

    void cboAssessment_Click();
    void lstTopics_Click();
    void lstSubtopics_Click();
    void cmdAddAssessment_Click();
    void cmdDeleteAssessment_Click();
    void cmdAddNewQuestion_Click();
    void cmdNewTopic_Click();
    void cmdDeleteTopic_Click();
    void cmdNewSubtopic_Click();
    void cmdDeleteSubtopic_Click();
    void cmdLeft_Click();
    void cmdRight_Click();
    void cmdEditQuestion_Click();
    void cmdDeleteQuestion_Click();

    void FillAssessmentCombo();
    void FillTopicList();
    void FillSubtopicList();
    /// Reads the questions again if that failed before; false, after a message, when it fails.
    bool questionsAreThere();
    void ShowSubtopicQuestions();
    void HandlePictureButtons();

    void tellFailures(const LoadFailures& failures);
    /// Tells what of the structure could not be loaded, and throws where the questions could not.
    void LoadCurrentAssessment();
    /// Throws where the questions cannot be loaded.
    void openAssessment();
    /// Runs a reload outside the handlers that report a failure in words of their own.
    void loadReporting(const std::function<void()>& load);
    void showPicture();
    /// Tells that the shown question's picture cannot be shown, and beside it why.
    void reportPicture(PictureFault fault);
    void showBrowser(bool shown);
    /// What stands in the browser's place while it is hidden.
    [[nodiscard]] QString whyNoQuestions() const;
    /// Runs a handler's work; any failure in it is reported with this text.
    void attempt(const QString& failure, const std::function<void()>& work);
    void inform(const QString& title, const QString& text);
    [[nodiscard]] FilingPreselection currentRows() const;

    // Undo and redo. The bar under the browser says what the last change was; it comes with the
    // first one.
    QWidget* buildUndoBar();
    void cmdUndo_Click();
    void cmdRedo_Click();
    void turn(bool undo);
    /// The step that can be undone next; none also when it cannot be read.
    [[nodiscard]] std::optional<StepInfo> newestStep();
    /// Says what has just been changed, if that is a step of its own.
    void tellChange();
    void say(const QString& sentence);
    /// Loads the assessment of a row that has changed, and makes the row current, or the nearest
    /// one above it that is there. Throws where the questions cannot be loaded.
    void showItem(Item item);

    Services& services_;
    ProgramState& state_;
    Library& library_;
    OpenAuthoring openAuthoring_;
    bool unloaded_ = false;
    /// A change is being undone or made again.
    bool turning_ = false;
    std::int64_t toldStep_ = 0;
    /// The question to begin with when a subtopic's are shown; 0 for the first.
    std::int32_t questionToShow_ = 0;

    ComboBox* cboAssessment_ = nullptr;
    HintLabel* lblAssessmentHint_ = nullptr;
    QPushButton* cmdAddAssessment_ = nullptr;
    QPushButton* cmdDeleteAssessment_ = nullptr;
    QPushButton* cmdAddNewQuestion_ = nullptr;
    ListBox* lstTopics_ = nullptr;
    HintLabel* lblTopicHint_ = nullptr;
    QPushButton* cmdNewTopic_ = nullptr;
    QPushButton* cmdDeleteTopic_ = nullptr;
    ListBox* lstSubtopics_ = nullptr;
    HintLabel* lblSubtopicHint_ = nullptr;
    QLabel* lblQuestions_ = nullptr;
    QPushButton* cmdNewSubtopic_ = nullptr;
    QPushButton* cmdDeleteSubtopic_ = nullptr;
    QLabel* lblNoQuestions_ = nullptr;
    QGroupBox* fraQuestions_ = nullptr;
    PictureView* imgQuestion_ = nullptr;
    HintLabel* lblPictureHint_ = nullptr;
    QLabel* lblQuestionCount_ = nullptr;
    QPushButton* cmdLeft_ = nullptr;
    QPushButton* cmdRight_ = nullptr;
    QPushButton* cmdEditQuestion_ = nullptr;
    QPushButton* cmdDeleteQuestion_ = nullptr;
    QWidget* undoBar_ = nullptr;
    QLabel* lblUndo_ = nullptr;
    QPushButton* cmdUndo_ = nullptr;
    QPushButton* cmdRedo_ = nullptr;
};

} // namespace varnholt
