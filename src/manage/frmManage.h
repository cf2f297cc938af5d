#pragma once

#include "library/Journal.h"
#include "manage/filing_preselection.h"
#include "manage/question_browser.h"
#include "store/catalogue.h"
#include "toolkit/ListBox.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <set>

class QGroupBox;
class QLabel;
class QPushButton;

namespace varnholt {

class ComboBox;
class HintLabel;
class Library;
class PictureStrip;
class PictureView;
enum class PictureFault;
struct ProgramState;
struct Services;

/// The library manager: browses the questions of a subtopic, and adds, refiles and deletes
/// assessments, topics, subtopics and questions. Opening it loads the catalogue; closing it
/// remembers the assessment. It reads again what the library's notices name, whoever made the
/// change.
class frmManage : public QWidget
{
    Q_OBJECT

public:
    /// Shows the window that makes new questions, modal to `parent`, and returns when it closes.
    using OpenAuthoring = std::function<void(QWidget* parent, const FilingPreselection&)>;

    /// Without `openAuthoring` no questions can be added.
    frmManage(Services& services, ProgramState& state, Library& library,
              OpenAuthoring openAuthoring, QWidget* parent = nullptr);
    ~frmManage() override;

    /// Makes a row current, whichever assessment it is in, or the nearest one above it.
    void bringUp(Item item);

    /// Shows a window, modal to `parent`, in which the question's picture can be changed.
    using OpenPicture = std::function<void(QWidget* parent, std::int32_t solIndex)>;
    /// Without it no picture can be edited.
    void setPictureEditor(OpenPicture openPicture);

    /// The rows that are chosen.
    [[nodiscard]] FilingPreselection currentRows() const;

protected:
    /// Hands the focus to the control where work starts. Not a focus proxy: Tab would stop at
    /// it each time round and never reach the controls before it.
    void focusInEvent(QFocusEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    /// What is chosen in the lists and the question on show there.
    struct Place
    {
        FilingPreselection rows;
        /// 0 for none.
        std::int32_t SOLIndex = 0;
        std::int32_t position = 1;

        bool operator==(const Place&) const = default;
    };

    void buildControls();
    QWidget* buildAssessments();
    QWidget* buildTopics();
    QWidget* buildSubtopics();
    QWidget* buildBrowser();
    void connectControls();
    // What is offered beside the buttons: by a right click, by "More" and by F2.
    void buildMenus();
    void addMenu(QWidget* control, QPushButton* more, ItemKind kind,
                 const std::vector<QPushButton*>& buttons);
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
    void lstPictures_Chosen(int position);
    void cmdEditQuestion_Click();
    void cmdEditPicture_Click();
    /// Runs a dialog about the question on show, and shows it again as it is then.
    void changeShown(const std::function<void(const Place&)>& runDialog);
    void cmdDeleteQuestion_Click();

    /// Chooses the wanted assessment or, where it is not there, the first.
    void FillAssessmentCombo(std::int32_t wanted);
    [[nodiscard]] std::vector<ListBox::Row> topicRows() const;
    [[nodiscard]] std::vector<ListBox::Row> subtopicRows() const;
    void FillTopicList();
    void FillSubtopicList();
    /// Reads the questions again if that failed before; false, after a message, when it fails.
    bool questionsAreThere();
    /// Shows the chosen subtopic with the question of the key `wanted`, or with the one at `orAt`.
    void browse(std::int32_t wanted, std::int32_t orAt);
    void ShowSubtopicQuestions(std::int32_t wanted, std::int32_t orAt);
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
    /// Shows a hint about a list's current row, which stays in view although the list gets shorter.
    static void sayBelow(ListBox& list, HintLabel& hint, const QString& sentence);
    [[nodiscard]] Place currentPlace() const;
    /// Chooses as much of a place as is there.
    void goTo(const Place& place);
    /// Hands the keyboard back to who had it or, where that cannot take it, to the subtopics.
    void focusAgain(QWidget* had);

    [[nodiscard]] std::optional<NamedItem> currentItem(ItemKind kind) const;
    [[nodiscard]] QStringList namesBeside(const NamedItem& item) const;
    void rename(ItemKind kind);
    void addSeveral(ItemKind kind);

    // What has changed.
    void libraryChanged(const LibraryChange& change);
    /// Reads the lists that have changed, and no others, and leaves the controls alone. Throws
    /// where the questions cannot be loaded.
    void reloadChanged();
    /// Does so and shows the new rows, with as much of a place chosen as is there.
    void refresh(const Place& place);
    /// The same for a change that nobody here waits for.
    void refreshUnasked();
    [[nodiscard]] bool isThere(std::int32_t assessmentNum) const;

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
    /// Shows the assessment of a row that has changed, and makes the row current, or the nearest
    /// one above it that is there. Throws where the questions cannot be loaded.
    void showItem(Item item);

    Services& services_;
    ProgramState& state_;
    Library& library_;
    OpenAuthoring openAuthoring_;
    OpenPicture openPicture_;
    QuestionBrowser browser_;
    /// What has been changed since it was read.
    std::set<ItemKind> changed_;
    QTimer refreshSoon_;
    /// A dialog of this window is open, after which it refreshes itself.
    bool inDialog_ = false;
    bool unloaded_ = false;
    /// A change is being undone or made again.
    bool turning_ = false;
    std::int64_t toldStep_ = 0;

    ComboBox* cboAssessment_ = nullptr;
    HintLabel* lblAssessmentHint_ = nullptr;
    QPushButton* cmdAddAssessment_ = nullptr;
    QPushButton* cmdDeleteAssessment_ = nullptr;
    QPushButton* cmdAssessmentMore_ = nullptr;
    QPushButton* cmdAddNewQuestion_ = nullptr;
    ListBox* lstTopics_ = nullptr;
    HintLabel* lblTopicHint_ = nullptr;
    QPushButton* cmdNewTopic_ = nullptr;
    QPushButton* cmdDeleteTopic_ = nullptr;
    QPushButton* cmdTopicMore_ = nullptr;
    ListBox* lstSubtopics_ = nullptr;
    HintLabel* lblSubtopicHint_ = nullptr;
    QLabel* lblQuestions_ = nullptr;
    QPushButton* cmdNewSubtopic_ = nullptr;
    QPushButton* cmdDeleteSubtopic_ = nullptr;
    QPushButton* cmdSubtopicMore_ = nullptr;
    QLabel* lblNoQuestions_ = nullptr;
    QGroupBox* fraQuestions_ = nullptr;
    PictureView* imgQuestion_ = nullptr;
    HintLabel* lblPictureHint_ = nullptr;
    QLabel* lblAnswer_ = nullptr;
    PictureStrip* lstPictures_ = nullptr;
    QLabel* lblQuestionCount_ = nullptr;
    QPushButton* cmdLeft_ = nullptr;
    QPushButton* cmdRight_ = nullptr;
    QPushButton* cmdEditQuestion_ = nullptr;
    QPushButton* cmdEditPicture_ = nullptr;
    QPushButton* cmdDeleteQuestion_ = nullptr;
    QWidget* undoBar_ = nullptr;
    QLabel* lblUndo_ = nullptr;
    QPushButton* cmdUndo_ = nullptr;
    QPushButton* cmdRedo_ = nullptr;
};

} // namespace varnholt
