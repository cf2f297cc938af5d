#include "selection/frmMain.h"

#include "library/Library.h"
#include "selection/build_run.h"
#include "selection/draw_wishes.h"
#include "selection/frmSelect.h"
#include "selection/paper_run.h"
#include "selection/show_draw.h"
#include "selection/test_record.h"
#include "show/show_run.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <utility>

namespace varnholt {

frmMain::frmMain(Services& services, ProgramState& state, Library& library, QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , state_(state)
    , library_(library)
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(tr("Create PowerPoints"));
    buildControls();
    connectControls();
    connectMore();
    Form_Load();
    loadMemory();
    connect(&library_, &Library::changed, this, &frmMain::libraryChanged);
    connect(&library_, &Library::changed, this, &frmMain::memoryChanged);
}

frmMain::~frmMain()
{
    if (review_) {
        review_->abandon();
    }
    SaveLastAssessment();
}

void frmMain::showAsked()
{
    const bool possible = asked_ <= SelectedQuestionCount_;
    const bool replaced = asked_ > 0 && txtQuestions_->text() != QString::number(asked_) &&
                          !txtQuestions_->isModified();
    lblAsked_->setText(possible ? tr("You asked for %1.").arg(asked_)
                                : tr("You asked for %1; fewer are selected now.").arg(asked_));
    cmdAskAgain_->setText(tr("Ask for %1 A&gain").arg(asked_));
    cmdAskAgain_->setVisible(possible);
    askedRow_->setVisible(replaced);
}

void frmMain::lstTopics_Click()
{
    FillSubTopicList();
    RefreshQuestionSelection();
}

void frmMain::lstSubTopics_Click()
{
    const int topic = lstTopics_->listIndex();
    const int subTopic = lstSubTopics_->listIndex();
    if (topic >= 0 && subTopic >= 0) {
        selection_.SetSubTopicSelected(lstTopics_->itemData(topic),
                                       lstSubTopics_->itemData(subTopic),
                                       lstSubTopics_->selected(subTopic));
    }
    RefreshQuestionSelection();
}

void frmMain::cmdSelectAllTopics_Click()
{
    lstTopics_->setAllSelected(true, 0);
}

void frmMain::cmdClearAllTopics_Click()
{
    lstTopics_->setAllSelected(false);
}

void frmMain::selectShownSubTopics(bool selected)
{
    const int topic = lstTopics_->listIndex();
    if (topic < 0) {
        return;
    }
    for (const ListBox::Row& row : lstSubTopics_->rows()) {
        selection_.SetSubTopicSelected(lstTopics_->itemData(topic), row.itemData, selected);
    }
    lstSubTopics_->setAllSelected(selected, selected ? 0 : -1);
}

void frmMain::cmdSelectAllSub_Click()
{
    selection_.selectAllSubTopics();
    FillSubTopicList();
    if (lstTopics_->listCount() > 0) {
        lstTopics_->setListIndex(0);
    }
}

void frmMain::recount()
{
    std::vector<TopicChoice> choices;
    choices.reserve(lstTopics_->rows().size());
    for (const ListBox::Row& row : lstTopics_->rows()) {
        choices.push_back({row.itemData, row.selected});
    }
    selection_.setTopics(choices);
    UpdateSelectionCounts();
    showFresh();
    showQuotas();
}

void frmMain::RefreshQuestionSelection()
{
    recount();
    txtQuestions_->setText(QString::number(SelectedQuestionCount_));
    showAsked();
}

void frmMain::UpdateSelectionCounts()
{
    const SelectionCounts counts = CountSelection(state_, selection_);
    SelectedQuestionCount_ = counts.SelectedQuestionCount;
    lblQuestionCount_->setText(QString::number(SelectedQuestionCount_));
    lstTopics_->setItemTexts(counts.topicTexts);
}

void frmMain::cmdCreate_Click()
{
    const SlideOptions options{optTopicYes_->isChecked(), optKeyYes_->isChecked(),
                               LoadSlideWishes(services_.programFolder)};
    drawFor([this, options](QWidget* over, const Draw& draw) {
        return buildSlides(over, draw, options);
    });
}

void frmMain::cmdShow_Click()
{
    drawFor([this](QWidget* over, const Draw& draw) {
        BuildOutcome outcome;
        outcome.end = BuildOutcome::End::Cancelled;
        if (RunShow(over, services_, library_,
                    ShowTestOf(draw, state_, services_.programFolder, optTopicYes_->isChecked()),
                    testOf(draw))) {
            outcome.end = BuildOutcome::End::Complete;
            Q_EMIT testMade(drawnTest(draw));
        }
        return outcome;
    });
}

void frmMain::cmdPaper_Click()
{
    if (!isEnabled()) {
        return; // a review is open
    }
    const auto toPaper = [this](QWidget* over, const Draw& draw) {
        const DrawnTest test = drawnTest(draw);
        Q_EMIT testMade(test);
        RunPaper(over, services_, library_, test);
        return BuildOutcome();
    };
    drawFor(toPaper, Slides::No);
}

void frmMain::drawFor(const DrawUse& use, Slides slides)
{
    std::variant<Draw, DrawObstacle> drawn =
        DrawQuestions(state_.QuestionList, selection_, txtQuestions_->text(), *services_.random);
    if (const auto* obstacle = std::get_if<DrawObstacle>(&drawn)) {
        tell(*obstacle);
        return;
    }
    Draw draw = std::get<Draw>(std::move(drawn));
    QuotaOrder order = shape(draw);
    if (optSelectYes_->isChecked()) {
        openReview(std::move(draw), std::move(order), use, slides);
        return;
    }
    MarkFirst(draw.DrawPool, draw.RequestedQuestionCount);
    use(window(), draw);
}

void frmMain::tell(DrawObstacle obstacle)
{
    MessageBoxes& messages = *services_.messageBoxes;
    switch (obstacle) {
    case DrawObstacle::NoQuestions:
        messages.inform(tr("No Questions"), tr("There are no questions selected."));
        return;
    case DrawObstacle::NotANumber:
        messages.inform(tr("Error"), tr("Please enter a number for the number of questions."));
        break;
    case DrawObstacle::NumberOutOfRange:
        messages.inform(tr("Error"), tr("Invalid number of questions."));
        break;
    }
    txtQuestions_->setFocus();
    txtQuestions_->selectAll();
}

void frmMain::openReview(Draw draw, QuotaOrder order, const DrawUse& use, Slides slides)
{
    setEnabled(false);
    std::function<std::shared_ptr<void>()> prepare;
    if (slides == Slides::Yes) {
        prepare = [this] { return services_.presentationPrograms->prepare(); };
    }
    review_ = new frmSelect(
        services_, state_, Review(std::move(draw), std::move(order)),
        {use, [this](const QuestionRecord& question) { return usesInWords(question.SOLIndex); },
         [this](const Draw& judged) { return keepForLater(judged); }, prepare},
        window());
    connect(review_, &frmSelect::unloaded, this, [this] {
        setEnabled(true);
        txtQuestions_->setFocus();
    });
    review_->Form_Load();
}

void frmMain::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    lstTopics_->setFocus();
}

void frmMain::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (focusWidget() == cboAssessment_) {
        cboAssessment_->showPopup();
        return;
    }
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    (button ? button : cmdCreate_)->click();
}

void frmMain::closeEvent(QCloseEvent* event)
{
    event->setAccepted(!review_ || review_->close());
    if (event->isAccepted()) {
        SaveLastAssessment();
    }
}

void frmMain::SaveLastAssessment()
{
    if (saved_) {
        return;
    }
    saved_ = true;
    try {
        library_.rememberAssessment(state_.CurrentAssessmentNum);
    } catch (const DatabaseError&) {
        // A library that takes no changes still opens; it only forgets where we were.
    }
}

} // namespace varnholt
