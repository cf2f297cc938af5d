#include "manage/frmManage.h"

#include "library/Library.h"
#include "manage/frmEditQuestion.h"
#include "manage/question_browser.h"
#include "manage/structure_maintenance.h"
#include "pictures/picture_files.h"
#include "store/catalogue.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/ListBox.h"
#include "toolkit/PictureView.h"
#include "toolkit/controls.h"

#include <QApplication>
#include <QCloseEvent>
#include <QTimer>

#include <limits>

namespace varnholt {

namespace {

std::optional<std::int32_t> currentData(const ListBox& list)
{
    return list.listIndex() < 0 ? std::nullopt : std::optional(list.itemData(list.listIndex()));
}

/// Shows a hint about a list's current row, which stays in view although the list gets shorter.
void sayBelow(ListBox& list, HintLabel& hint, const QString& sentence)
{
    hint.say(sentence);
    // Not before everything has been laid out anew.
    QTimer::singleShot(0, &list, [&list] { list.scrollTo(list.currentIndex()); });
}

class BusyPointer
{
public:
    BusyPointer() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
    ~BusyPointer() { QApplication::restoreOverrideCursor(); }
};

} // namespace

frmManage::frmManage(Services& services, ProgramState& state, Library& library,
                     OpenAuthoring openAuthoring, QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , state_(state)
    , library_(library)
    , openAuthoring_(std::move(openAuthoring))
{
    setObjectName(QStringLiteral("frmManage"));
    setWindowTitle(QStringLiteral("Manage Assessments"));
    buildControls();
    connectControls();
    loadReporting([this] { Form_Load(); });
}

frmManage::~frmManage()
{
    if (!unloaded_) {
        close();
    }
}

void frmManage::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    if (state_.CurrentAssessmentNum < 1) {
        cmdAddAssessment_->setFocus();
    } else if (state_.TopicList.isEmpty()) {
        cmdNewTopic_->setFocus();
    } else {
        lstTopics_->setFocus();
    }
}

void frmManage::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    if (!unloaded_ && event->isAccepted()) {
        unloaded_ = true;
        imgQuestion_->forget();
        Form_Unload();
    }
}

void frmManage::Form_Load()
{
    lstTopics_->clear();
    lstSubtopics_->clear();
    lblTopicHint_->say({});
    lblSubtopicHint_->say({});
    showBrowser(false);
    cmdDeleteAssessment_->setEnabled(true);
    cmdAddNewQuestion_->setEnabled(openAuthoring_ != nullptr);
    cmdNewTopic_->setEnabled(true);
    cmdNewSubtopic_->setEnabled(false);
    cmdDeleteTopic_->setEnabled(false);
    cmdDeleteSubtopic_->setEnabled(false);
    HandlePictureButtons();
    sayIn(lblQuestions_, {});
    tellFailures(LoadAssessments(state_, library_.connection()));
    FillAssessmentCombo();
    if (state_.CurrentAssessmentNum < 1) {
        cmdDeleteAssessment_->setEnabled(false);
        cmdAddNewQuestion_->setEnabled(false);
        cmdNewTopic_->setEnabled(false);
        cmdNewSubtopic_->setEnabled(false);
        showBrowser(false);
        return;
    }
    openAssessment();
}

void frmManage::Form_Unload()
{
    try {
        library_.rememberAssessment(state_.CurrentAssessmentNum);
    } catch (const DatabaseError&) {
        // A library that takes no changes still opens; it only forgets where we were.
    }
}

void frmManage::FillAssessmentCombo()
{
    cboAssessment_->clear();
    int chosen = 0;
    for (const AssessmentRecord& record : state_.AssessmentList) {
        if (record.AssessmentNum == state_.LastAssessmentNum && state_.LastAssessmentNum > 0) {
            chosen = cboAssessment_->listCount();
        }
        cboAssessment_->addEntry(record.AssessmentName, record.AssessmentNum);
    }
    const std::int32_t highest = HighestAssessmentNum(library_.connection());
    const bool full = highest >= std::numeric_limits<std::int16_t>::max();
    lblAssessmentHint_->say(full ? QStringLiteral("The assessments' numbers have reached %1, the "
                                                  "largest possible: adding one ends in an error.")
                                       .arg(highest)
                                 : QString());
    if (!state_.AssessmentList.isEmpty()) {
        // Without the reaction: the caller opens the assessment, once.
        cboAssessment_->showEntry(chosen);
        state_.CurrentAssessmentNum = cboAssessment_->entryData(chosen);
    }
}

void frmManage::cboAssessment_Click()
{
    loadReporting([this] { openAssessment(); });
}

void frmManage::loadReporting(const std::function<void()>& load)
{
    try {
        load();
    } catch (const Error&) {
        inform(QStringLiteral("Database Error"),
               QStringLiteral("There was an error loading the questions."));
        FillTopicList();
        lstSubtopics_->clear();
        sayIn(lblQuestions_, {});
    }
}

void frmManage::tellFailures(const LoadFailures& failures)
{
    services_.messageBoxes->informEach(tr("Database Error"), failures);
}

void frmManage::LoadCurrentAssessment()
{
    tellFailures(LoadStructure(state_, library_.connection()));
    LoadQuestions(state_, library_.connection());
}

void frmManage::openAssessment()
{
    if (cboAssessment_->listIndex() >= 0) {
        state_.CurrentAssessmentNum = cboAssessment_->entryData(cboAssessment_->listIndex());
    }
    lstTopics_->clear();
    lstSubtopics_->clear();
    sayIn(lblQuestions_, {});
    if (state_.CurrentAssessmentNum > 0) {
        const BusyPointer busy;
        LoadCurrentAssessment();
        FillTopicList();
    }
}

void frmManage::FillTopicList()
{
    std::vector<ListBox::Row> rows;
    rows.reserve(static_cast<std::size_t>(state_.TopicList.upperBound()));
    for (const TopicRecord& topic : state_.TopicList) {
        rows.push_back({topic.Topic, topic.TopicID, false});
    }
    lstTopics_->setRows(std::move(rows));
    lblTopicHint_->say({});
    lblSubtopicHint_->say({});
    cmdDeleteTopic_->setEnabled(false);
    cmdDeleteSubtopic_->setEnabled(false);
    cmdNewSubtopic_->setEnabled(false);
    state_.QuestionPosition = 0;
    showBrowser(false);
}

void frmManage::lstTopics_Click()
{
    sayIn(lblQuestions_, {});
    const std::optional<std::int32_t> topicId = currentData(*lstTopics_);
    sayBelow(*lstTopics_, *lblTopicHint_,
             LargeKeyHint(QStringLiteral("Topic"), topicId.value_or(0),
                          QStringLiteral("cannot be deleted or take new subtopics")));
    cmdDeleteTopic_->setEnabled(topicId.has_value());
    cmdNewSubtopic_->setEnabled(topicId.has_value());
    FillSubtopicList();
}

void frmManage::FillSubtopicList()
{
    lstSubtopics_->clear();
    cmdDeleteSubtopic_->setEnabled(false);
    sayIn(lblQuestions_, {});
    lblSubtopicHint_->say({});
    showBrowser(false);
    state_.QuestionPosition = 0;
    HandlePictureButtons();
    const std::optional<std::int32_t> topicId = currentData(*lstTopics_);
    std::vector<ListBox::Row> rows;
    for (const SubTopicRecord& record : state_.SubTopicList) {
        if (record.TopicID == topicId) {
            rows.push_back({record.SubTopic, record.SubtopicNum, false});
        }
    }
    lstSubtopics_->setRows(std::move(rows));
}

void frmManage::lstSubtopics_Click()
{
    const auto [topicId, subtopicNum] = currentRows();
    if (!topicId || !subtopicNum || !questionsAreThere()) {
        return;
    }
    sayBelow(*lstSubtopics_, *lblSubtopicHint_,
             LargeKeyHint(QStringLiteral("Subtopic"), *subtopicNum,
                          QStringLiteral("cannot be deleted")));
    ShowSubtopicQuestions();
    cmdDeleteSubtopic_->setEnabled(true);
}

bool frmManage::questionsAreThere()
{
    // A subtopic must not pass for empty, and be deleted, because its questions were not read.
    if (!state_.QuestionsLoaded) {
        loadReporting([this] { LoadQuestions(state_, library_.connection()); });
    }
    return state_.QuestionsLoaded;
}

void frmManage::ShowSubtopicQuestions()
{
    CollectBrowseQuestions(state_, currentData(*lstTopics_), currentData(*lstSubtopics_));
    sayIn(lblQuestions_, QStringLiteral("Questions: ") + QString::number(state_.QuestionCount));
    showBrowser(state_.QuestionCount > 0);
    if (state_.QuestionCount > 0) {
        state_.QuestionPosition = std::max(1, PositionOf(state_.BrowseQuestions, questionToShow_));
        showPicture();
    } else {
        HandlePictureButtons();
    }
}

void frmManage::showPicture()
{
    const auto path = [this](int position) {
        return FindPictureFile(services_.programFolder, state_.BrowseQuestions(position).SOLIndex);
    };
    const QuestionRecord& question = state_.BrowseQuestions(state_.QuestionPosition);
    imgQuestion_->setSubject(
        tr("Question %1: %2.").arg(PositionText(state_), GetTopicText(state_, question)));
    lblPictureHint_->say({});
    imgQuestion_->load(path(state_.QuestionPosition),
                       [this](PictureFault fault) { reportPicture(fault); });
    lblQuestionCount_->setText(PositionText(state_));
    HandlePictureButtons();
    for (const int next : {state_.QuestionPosition - 1, state_.QuestionPosition + 1}) {
        if (next >= 1 && next <= state_.QuestionCount) {
            imgQuestion_->prefetch(path(next));
        }
    }
}

void frmManage::reportPicture(PictureFault fault)
{
    if (fault == PictureFault::None) {
        return;
    }
    // The picture of the question before it stays.
    const bool borrowed = !imgQuestion_->picture().isNull();
    lblPictureHint_->say(PictureHint(fault, borrowed));
    inform(QStringLiteral("File Missing"),
           QStringLiteral(
               "The picture file is missing from this picture.  Please delete this question."));
}

void frmManage::HandlePictureButtons()
{
    const PictureButtons enabled =
        EnabledPictureButtons(state_.QuestionPosition, state_.QuestionCount);
    // A button that comes to its end gives the focus to the list of subtopics, from where work
    // goes on. From its neighbour one key press too many would step backwards.
    if ((cmdLeft_->hasFocus() && !enabled.left) || (cmdRight_->hasFocus() && !enabled.right)) {
        lstSubtopics_->setFocus();
    }
    cmdLeft_->setEnabled(enabled.left);
    cmdRight_->setEnabled(enabled.right);
}

void frmManage::showBrowser(bool shown)
{
    if (!shown) {
        imgQuestion_->forget();
        lblNoQuestions_->setText(whyNoQuestions());
    }
    fraQuestions_->setVisible(shown);
    lblNoQuestions_->setVisible(!shown);
}

QString frmManage::whyNoQuestions() const
{
    if (state_.CurrentAssessmentNum < 1) {
        return QStringLiteral("There is no assessment yet. Create one to begin.");
    }
    if (state_.TopicList.isEmpty()) {
        return QStringLiteral("This assessment has no topics yet. Create one to go on.");
    }
    if (lstTopics_->listIndex() >= 0 && lstSubtopics_->listIndex() >= 0) {
        return QStringLiteral("This subtopic has no questions yet.");
    }
    return QStringLiteral("Choose a topic and a subtopic to see its questions.");
}

void frmManage::cmdLeft_Click()
{
    StepLeft(state_);
    showPicture();
}

void frmManage::cmdRight_Click()
{
    StepRight(state_);
    showPicture();
}

void frmManage::cmdAddNewQuestion_Click()
{
    if (state_.TopicList.isEmpty() || state_.SubTopicList.isEmpty()) {
        inform(
            QStringLiteral("Add Error"),
            QStringLiteral("Cannot add a question until a topic and subtopic has been created."));
        return;
    }
    const int row = lstTopics_->listIndex();
    if (openAuthoring_(window(), currentRows())) {
        ShowSubtopicQuestions();
        cboAssessment_Click();
        lstTopics_->reveal(row);
    }
}

void frmManage::cmdEditQuestion_Click()
{
    if (state_.QuestionPosition == 0 ||
        frmEditQuestion(services_, state_, library_, currentRows(), window()).exec() !=
            QDialog::Accepted) {
        return;
    }
    loadReporting([&] {
        const BusyPointer busy;
        const int row = lstSubtopics_->listIndex();
        LoadQuestions(state_, library_.connection());
        lstTopics_Click();
        lstSubtopics_->reveal(row);
        lstSubtopics_->setFocus();
    });
}

void frmManage::attempt(const QString& failure, const std::function<void()>& work)
{
    try {
        const BusyPointer busy;
        work();
    } catch (const std::exception&) {
        inform(QStringLiteral("Error"), failure);
    }
}

void frmManage::inform(const QString& title, const QString& text)
{
    services_.messageBoxes->inform(title, text);
}

FilingPreselection frmManage::currentRows() const
{
    return {currentData(*lstTopics_), currentData(*lstSubtopics_)};
}

} // namespace varnholt
