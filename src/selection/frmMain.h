#pragma once

#include "presentation/slide_builder.h"
#include "selection/Selection.h"
#include "selection/draw_order.h"
#include "selection/paper_draw.h"
#include "selection/question_draw.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace varnholt {

class ComboBox;
class HintLabel;
class Library;
class ListBox;
class MoreFrame;
class QuotaColumn;
class RecentTests;
class frmSelect;
struct PastTest;
struct LibraryChange;
struct Services;
struct SlideOptions;

/// The selection window: an assessment, its topics and subtopics, the options of the
/// presentation and the number of questions. Opening it loads the catalogue, a change of the
/// library reads again what has changed, and closing it remembers the assessment. Names of controls
/// and handlers are those a user of the program knows from its windows.
class frmMain : public QWidget
{
    Q_OBJECT

public:
    frmMain(Services& services, ProgramState& state, Library& library, QWidget* parent = nullptr);
    ~frmMain() override;

    /// Draws as for slides, with the review when that is on, and puts the questions on paper.
    void cmdPaper_Click();

Q_SIGNALS:
    /// The marked questions of a draw have become slides, been shown or gone to the paper window.
    void testMade(const DrawnTest& test);

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
    void cmdShow_Click();
    void tell(DrawObstacle obstacle);
    /// What a draw is for; `over` is the window that it happens over.
    using DrawUse = std::function<BuildOutcome(QWidget* over, const Draw& draw)>;
    /// Whether the presentation program may be wanted for it.
    enum class Slides
    {
        No,
        Yes
    };
    /// Checks and draws, has the questions reviewed when that is on, and hands them on.
    void drawFor(const DrawUse& use, Slides slides = Slides::Yes);
    /// Opens the review window; this window is switched off until it closes.
    void openReview(Draw draw, QuotaOrder order, const DrawUse& use, Slides slides);
    /// Builds the marked questions of a draw with its progress over `window`. The one place that
    /// learns of every build, with and without a review, and of what came of it.
    BuildOutcome buildSlides(QWidget* window, const Draw& draw, const SlideOptions& options);

    // What goes beyond the classic window: see frmMain_more.cpp.

    void connectMore();
    void cmdEvenShare_Click();
    void cmdSlides_Click();
    void makeAgain(const PastTest& test);
    /// Reads the classes and the last tests.
    void loadMemory();
    void forgetUses();
    /// Of the open assessment, read when first asked for. Throws `DatabaseError`.
    const UseBook& useBook();
    /// For the class chosen.
    const FreshRanks& freshRanks();
    void showFresh();
    void loadQuotas();
    /// What of the memory a change of the library makes old.
    void memoryChanged(const LibraryChange& change);
    void quotasChanged();
    void showQuotas();
    /// The numbers of those topics that are ticked.
    [[nodiscard]] Quotas activeQuotas() const;
    /// How many of the selected questions each ticked topic has.
    [[nodiscard]] Quotas questionsOfTopics() const;
    /// Puts a draw in the order that is wished for.
    QuotaOrder shape(Draw& draw);
    /// Remembers a draw unbuilt; false, after it was told, when that is not possible.
    bool keepForLater(const Draw& draw);
    [[nodiscard]] NewTest testOf(const Draw& draw) const;
    [[nodiscard]] DrawnTest drawnTest(const Draw& draw) const;
    /// When a question was used; empty in a library that remembers nothing yet.
    [[nodiscard]] QString usesInWords(std::int32_t solIndex);
    [[nodiscard]] std::int64_t now() const;

    void FillAssessmentCombo();
    void FillTopicList();
    void FillSubTopicList();
    /// Recounts and asks for all that is selected.
    void RefreshQuestionSelection();
    /// Takes over the ticked topics and rewrites the captions.
    void recount();
    void UpdateSelectionCounts();
    void loadCatalogue();
    /// Reads lists of the catalogue anew; false, after messages, when one of them is not whole.
    bool load(bool topics, bool subTopics, bool questions);
    /// Reads again what has changed. Ticks stay where their rows do; new rows come ticked.
    void libraryChanged(const LibraryChange& change);
    /// False when another assessment has been opened, since the one that was open has gone.
    bool refreshAssessments();
    /// The entry of the assessment `wanted`, or -1. No entry becomes current.
    int fillAssessmentEntries(std::int32_t wanted);
    void setTopicRows(const std::function<bool(std::int32_t topicId)>& selected);
    /// Says beforehand why there is nothing to choose.
    void showObstacle(bool loaded);
    /// Says which number she asked for when a change of the selection has replaced it.
    void showAsked();
    /// Remembers the open assessment in the library; done once, on closing.
    void SaveLastAssessment();

    Services& services_;
    ProgramState& state_;
    Library& library_;
    /// The ticks of the open assessment.
    Selection selection_;
    std::int32_t SelectedQuestionCount_ = 0;
    bool saved_ = false;
    /// The number she typed last; 0 when none.
    std::int64_t asked_ = 0;
    std::optional<UseBook> book_;
    std::optional<FreshRanks> ranks_;
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
    QPushButton* cmdShow_ = nullptr;
    QPushButton* cmdPaper_ = nullptr;
    QLabel* lblQuestionCount_ = nullptr;
    QLabel* lblQuotas_ = nullptr;
    QuotaColumn* quotaColumn_ = nullptr;
    QPushButton* cmdEvenShare_ = nullptr;
    MoreFrame* fraMore_ = nullptr;
    RecentTests* fraRecent_ = nullptr;
};

} // namespace varnholt
