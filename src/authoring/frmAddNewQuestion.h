#pragma once

#include "authoring/filing.h"
#include "authoring/question_save.h"
#include "manage/filing_preselection.h"
#include "manage/frmNewInfo.h"

#include <QDialog>

#include <functional>
#include <optional>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;

namespace varnholt {

class CanvasPanel;
class ComboBox;
class HintLabel;
class Library;
class PictureCanvas;
struct Services;

/// The window that makes new questions: a picture pasted and arranged on the canvas, an answer, a
/// topic and a subtopic. Modal; closes itself after "Save" has succeeded, and goes on with the next
/// question after "Save and Add Another". On a screen that is too small for it, it scrolls.
class frmAddNewQuestion : public QDialog
{
    Q_OBJECT

public:
    /// Shows the dialog for a new topic and subtopic, and returns what it added.
    using OpenNewInfo = std::function<std::optional<NewInfo>(QWidget* parent, frmNewInfo::Mode mode,
                                                             std::optional<NamedTopic> chosen)>;

    /// Without `openNewInfo` the program's own dialog is shown.
    frmAddNewQuestion(Services& services, ProgramState& state, Library& library,
                      const FilingPreselection& preselection, QWidget* parent = nullptr,
                      OpenNewInfo openNewInfo = {});
    ~frmAddNewQuestion() override;

    /// A question was saved from here.
    [[nodiscard]] bool questionSaved() const { return questionSaved_; }
    /// Where the last question saved was filed.
    [[nodiscard]] const Filing& lastFiling() const { return lastFiling_; }
    /// Topics or subtopics were added from here.
    [[nodiscard]] bool structureChanged() const { return structureChanged_; }

    [[nodiscard]] const PictureCanvas& canvas() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    QLayout* buildFiling();
    QLayout* buildSaving();
    void connectControls();
    void Form_Load();

    void cboTopics_Click();
    void cmdNewTopic_Click();
    void cmdNewSubtopic_Click();
    void cmdSave_Click();
    void cmdSaveAnother_Click();
    /// Says in a box what is missing; ends the selection when nothing is.
    [[nodiscard]] bool readyToSave();
    /// Says beside the buttons why it failed.
    [[nodiscard]] bool save();

    void FillTopicCombo();
    void FillSubtopicCombo();
    void SelectTopicById(std::int32_t topicId);
    void SelectSubtopicById(std::int32_t subtopicNum);

    void showObstacle();
    [[nodiscard]] QString saveObstacle() const;
    [[nodiscard]] bool answerKeyPress(QKeyEvent* event);

    Services& services_;
    ProgramState& state_;
    Library& library_;
    FilingPreselection preselection_;
    OpenNewInfo openNewInfo_;
    /// As last tried to save; has a key while its row waits for its picture.
    NewQuestion question_;
    Filing lastFiling_;
    int savedCount_ = 0;
    bool questionSaved_ = false;
    bool structureChanged_ = false;
    std::int32_t CurrentTopicID_ = 0;
    std::vector<FilingChoice> topicChoices_;
    std::vector<FilingChoice> subtopicChoices_;

    CanvasPanel* panel_ = nullptr;
    ComboBox* cboTopics_ = nullptr;
    ComboBox* cboSubtopics_ = nullptr;
    QPushButton* cmdNewTopic_ = nullptr;
    QPushButton* cmdNewSubtopic_ = nullptr;
    QLineEdit* txtAnswer_ = nullptr;
    HintLabel* lblAnswerHint_ = nullptr;
    HintLabel* lblSaveHint_ = nullptr;
    QPushButton* cmdFitHint_ = nullptr;
    QLabel* lblSaved_ = nullptr;
    QPushButton* cmdSave_ = nullptr;
    QPushButton* cmdSaveAnother_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};

} // namespace varnholt
