#pragma once

#include "authoring/PictureCanvas.h"
#include "authoring/filing.h"
#include "authoring/question_save.h"
#include "manage/filing_preselection.h"
#include "manage/frmNewInfo.h"

#include <QDialog>

#include <functional>
#include <optional>
#include <vector>

class QFrame;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollBar;

namespace varnholt {

class ComboBox;
class HintLabel;
class Library;
class PictureBox;
struct Services;

/// The window that makes one new question: a picture pasted and arranged on the canvas, an
/// answer, a topic and a subtopic. Modal; closes itself after a successful save.
///
/// The opening for the canvas always has the size of the page, so that what is seen is what
/// is saved; in a larger window it stays as it is, in a smaller one the window scrolls.
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

    /// The window was left by a save that succeeded.
    [[nodiscard]] bool questionSaved() const { return questionSaved_; }
    /// Where the question saved was filed.
    [[nodiscard]] const Filing& lastFiling() const { return question_.filing; }
    /// Topics or subtopics were added from here.
    [[nodiscard]] bool structureChanged() const { return structureChanged_; }

    [[nodiscard]] const PictureCanvas& canvas() const { return canvas_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    QWidget* buildCanvas();
    QWidget* buildPictureControls();
    QLayout* buildFiling();
    void connectControls();
    void Form_Load();

    void cboTopics_Click();
    void cmdNewTopic_Click();
    void cmdNewSubtopic_Click();
    void cmdPaste_Click();
    void cmdText_Click();
    void cmdSave_Click();
    void HScroll_Change(int value);
    void VScroll_Change(int value);

    void FillTopicCombo();
    void FillSubtopicCombo();
    void SelectTopicById(std::int32_t topicId);
    void SelectSubtopicById(std::int32_t subtopicNum);

    /// Runs work on the canvas, shows the outcome and reports a failure in a box.
    void onCanvas(const QString& title, const std::function<void()>& work);
    void showCanvas();
    void showPointer(double X, double Y);
    void showObstacle();
    [[nodiscard]] QString saveObstacle() const;
    /// Tells the user when it does not.
    [[nodiscard]] bool clipboardAnswers();
    [[nodiscard]] bool answerKeyPress(QKeyEvent* event);
    [[nodiscard]] bool canvasKeyPress(QKeyEvent* event);

    Services& services_;
    ProgramState& state_;
    Library& library_;
    FilingPreselection preselection_;
    OpenNewInfo openNewInfo_;
    PictureCanvas canvas_;
    /// As last tried to save; has a key while its row waits for its picture.
    NewQuestion question_;
    bool questionSaved_ = false;
    bool structureChanged_ = false;
    std::int32_t CurrentTopicID_ = 0;
    std::vector<FilingChoice> topicChoices_;
    std::vector<FilingChoice> subtopicChoices_;

    ComboBox* cboTopics_ = nullptr;
    ComboBox* cboSubtopics_ = nullptr;
    QPushButton* cmdNewTopic_ = nullptr;
    QPushButton* cmdNewSubtopic_ = nullptr;
    QLineEdit* txtAnswer_ = nullptr;
    HintLabel* lblAnswerHint_ = nullptr;
    QPushButton* cmdPaste_ = nullptr;
    QFrame* fraCanvas_ = nullptr;
    QWidget* picCropped_ = nullptr;
    PictureBox* picQuestion_ = nullptr;
    QScrollBar* HScroll_ = nullptr;
    QScrollBar* VScroll_ = nullptr;
    QGroupBox* fraPictureControls_ = nullptr;
    QPushButton* cmdCrop_ = nullptr;
    QPushButton* cmdUp_ = nullptr;
    QPushButton* cmdDown_ = nullptr;
    QPushButton* cmdMoveLeft_ = nullptr;
    QPushButton* cmdRight_ = nullptr;
    QPushButton* cmdCenter_ = nullptr;
    QPushButton* cmdErase_ = nullptr;
    QPushButton* cmdText_ = nullptr;
    HintLabel* lblSaveHint_ = nullptr;
    QPushButton* cmdSave_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};

} // namespace varnholt
