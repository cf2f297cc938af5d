#include "manage/frmManage.h"

#include "library/Library.h"
#include "manage/PictureStrip.h"
#include "manage/structure_maintenance.h"
#include "store/catalogue.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/ListBox.h"
#include "toolkit/PictureView.h"
#include "toolkit/controls.h"

#include <QApplication>
#include <QCloseEvent>
#include <QSignalBlocker>

#include <algorithm>
#include <limits>

namespace varnholt {

namespace {

/// While a message is open.
constexpr int askAgainMs = 100;

std::optional<std::int32_t> currentData(const ListBox& list)
{
    return list.listIndex() < 0 ? std::nullopt : std::optional(list.itemData(list.listIndex()));
}

/// Makes the row of a key current without the reaction; false when there is none.
bool showRow(ListBox& list, std::optional<std::int32_t> key)
{
    for (int row = 0; row < list.listCount(); ++row) {
        if (list.itemData(row) == key) {
            const QSignalBlocker quiet(list);
            list.setListIndex(row);
            return true;
        }
    }
    return false;
}

/// Gives a list the texts of `rows` where it has rows of the same keys; false where it has others.
bool showTexts(ListBox& list, const std::vector<ListBox::Row>& rows)
{
    const auto sameKey = [](const ListBox::Row& one, const ListBox::Row& other) {
        return one.itemData == other.itemData;
    };
    if (!std::equal(rows.begin(), rows.end(), list.rows().begin(), list.rows().end(), sameKey)) {
        return false;
    }
    QStringList texts;
    for (const ListBox::Row& row : rows) {
        texts.append(row.text);
    }
    list.setItemTexts(texts);
    return true;
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
    setWindowTitle(tr("Manage Assessments"));
    buildControls();
    connectControls();
    buildMenus();
    refreshSoon_.setSingleShot(true);
    refreshSoon_.callOnTimeout(this, &frmManage::refreshUnasked);
    connect(&library_, &Library::changed, this, &frmManage::libraryChanged);
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
    FillAssessmentCombo(state_.LastAssessmentNum);
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

void frmManage::FillAssessmentCombo(std::int32_t wanted)
{
    cboAssessment_->clear();
    int chosen = 0;
    for (const AssessmentRecord& record : state_.AssessmentList) {
        if (record.AssessmentNum == wanted) {
            chosen = cboAssessment_->listCount();
        }
        cboAssessment_->addEntry(record.AssessmentName, record.AssessmentNum);
    }
    const std::int32_t highest = HighestAssessmentNum(library_.connection());
    const bool full = highest >= std::numeric_limits<std::int16_t>::max();
    lblAssessmentHint_->say(full ? tr("The assessments' numbers have reached %1, the largest "
                                      "possible: adding one ends in an error.")
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
        const BusyPointer busy;
        load();
    } catch (const Error&) {
        inform(tr("Database Error"), tr("There was an error loading the questions."));
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
        changed_.clear();
        refreshSoon_.stop();
        LoadCurrentAssessment();
        FillTopicList();
    }
}

void frmManage::libraryChanged(const LibraryChange& change)
{
    for (const Item& item : change.items) {
        changed_.insert(item.kind);
    }
    // Whoever makes a change here reads it as soon as it is made; this is for all others.
    refreshSoon_.start(0);
    tellChange();
}

void frmManage::reloadChanged()
{
    refreshSoon_.stop();
    const std::set<ItemKind> changed = std::exchange(changed_, {});
    LoadFailures failures;
    if (changed.contains(ItemKind::Assessment)) {
        failures += LoadAssessments(state_, library_.connection());
    }
    if (changed.contains(ItemKind::Topic)) {
        failures += LoadTopics(state_, library_.connection());
    }
    if (changed.contains(ItemKind::Subtopic)) {
        failures += LoadSubTopics(state_, library_.connection());
    }
    tellFailures(failures);
    if (changed.contains(ItemKind::Question)) {
        lstPictures_->forgetPictures();
        LoadQuestions(state_, library_.connection());
    }
}

void frmManage::refresh(const Place& place)
{
    const bool assessments = changed_.contains(ItemKind::Assessment);
    const bool questions = changed_.contains(ItemKind::Question);
    reloadChanged();
    if (assessments) {
        if (!isThere(state_.CurrentAssessmentNum)) {
            Form_Load();
            return;
        }
        FillAssessmentCombo(state_.CurrentAssessmentNum);
    }
    const bool sameRows =
        showTexts(*lstTopics_, topicRows()) && showTexts(*lstSubtopics_, subtopicRows());
    if (sameRows && !questions && place == currentPlace()) {
        return;
    }
    FillTopicList();
    lstSubtopics_->clear();
    sayIn(lblQuestions_, {});
    goTo(place);
}

void frmManage::refreshUnasked()
{
    // A message must not come up over another one, nor rows change under what asks about them.
    if (inDialog_ || QApplication::activeModalWidget() || QApplication::activePopupWidget()) {
        refreshSoon_.start(askAgainMs);
        return;
    }
    loadReporting([this] { refresh(currentPlace()); });
}

bool frmManage::isThere(std::int32_t assessmentNum) const
{
    const auto& all = state_.AssessmentList;
    return std::any_of(all.begin(), all.end(), [&](const AssessmentRecord& record) {
        return record.AssessmentNum == assessmentNum;
    });
}

frmManage::Place frmManage::currentPlace() const
{
    const std::int32_t position = browser_.QuestionPosition;
    return {currentRows(), position > 0 ? browser_.current().SOLIndex : 0, position};
}

void frmManage::goTo(const Place& place)
{
    if (!showRow(*lstTopics_, place.rows.topicId)) {
        return;
    }
    lstTopics_Click();
    if (showRow(*lstSubtopics_, place.rows.subtopicNum)) {
        browse(place.SOLIndex, std::max(1, place.position));
    }
}

void frmManage::focusAgain(QWidget* had)
{
    const bool can = had && had->isEnabled() && had->isVisibleTo(this);
    (can ? had : lstSubtopics_)->setFocus();
}

std::vector<ListBox::Row> frmManage::topicRows() const
{
    std::vector<ListBox::Row> rows;
    rows.reserve(static_cast<std::size_t>(state_.TopicList.upperBound()));
    for (const TopicRecord& topic : state_.TopicList) {
        rows.push_back({topic.Topic, topic.TopicID, false});
    }
    return rows;
}

std::vector<ListBox::Row> frmManage::subtopicRows() const
{
    const std::optional<std::int32_t> topicId = currentData(*lstTopics_);
    std::vector<ListBox::Row> rows;
    for (const SubTopicRecord& record : state_.SubTopicList) {
        if (record.TopicID == topicId) {
            rows.push_back({record.SubTopic, record.SubtopicNum, false});
        }
    }
    return rows;
}

void frmManage::FillTopicList()
{
    lstTopics_->setRows(topicRows());
    lblTopicHint_->say({});
    lblSubtopicHint_->say({});
    cmdDeleteTopic_->setEnabled(false);
    cmdDeleteSubtopic_->setEnabled(false);
    cmdNewSubtopic_->setEnabled(false);
    browser_.hide();
    showBrowser(false);
}

void frmManage::lstTopics_Click()
{
    sayIn(lblQuestions_, {});
    const std::optional<std::int32_t> topicId = currentData(*lstTopics_);
    sayBelow(*lstTopics_, *lblTopicHint_,
             LargeKeyHint(tr("Topic number %1 is above %2 and cannot be deleted or take new "
                             "subtopics."),
                          topicId.value_or(0)));
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
    browser_.hide();
    HandlePictureButtons();
    lstSubtopics_->setRows(subtopicRows());
}

void frmManage::sayBelow(ListBox& list, HintLabel& hint, const QString& sentence)
{
    hint.say(sentence);
    // Not before everything has been laid out anew.
    QTimer::singleShot(0, &list, [&list] { list.scrollTo(list.currentIndex()); });
}

void frmManage::attempt(const QString& failure, const std::function<void()>& work)
{
    try {
        const BusyPointer busy;
        work();
    } catch (const std::exception&) {
        inform(tr("Error"), failure);
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
