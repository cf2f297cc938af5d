// How the selection window is filled from the catalogue and follows changes of the library.
#include "selection/frmMain.h"

#include "library/Library.h"
#include "store/catalogue.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/ListBox.h"

#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace varnholt {

namespace {

/// Fills a list anew. Its current row stays so, or the row that has come in its place; nothing
/// clicks.
template <typename Fill>
void refill(ListBox& list, Fill fill)
{
    const QSignalBlocker quiet(&list);
    const int place = list.listIndex();
    const std::int32_t current = place < 0 ? 0 : list.itemData(place);
    fill();
    if (place < 0) {
        return;
    }
    const auto& rows = list.rows();
    const auto found = std::find_if(
        rows.begin(), rows.end(), [&](const ListBox::Row& row) { return row.itemData == current; });
    list.setListIndex(found != rows.end() ? static_cast<int>(found - rows.begin())
                                          : std::min(place, list.listCount() - 1));
}

} // namespace

void frmMain::Form_Load()
{
    services_.random->seedOnce(
        static_cast<std::uint64_t>(services_.clock->millisecondsSinceEpoch()));
    lblQuestionCount_->setText(QStringLiteral("0"));
    services_.messageBoxes->informEach(tr("Database Error"),
                                       LoadAssessments(state_, library_.connection()));
    FillAssessmentCombo();
    optKeyYes_->setChecked(true);
    optTopicYes_->setChecked(true);
    optSelectYes_->setChecked(true);
}

int frmMain::fillAssessmentEntries(std::int32_t wanted)
{
    cboAssessment_->clear();
    int found = -1;
    for (const AssessmentRecord& record : state_.AssessmentList) {
        cboAssessment_->addEntry(record.AssessmentName, record.AssessmentNum);
        if (record.AssessmentNum == wanted) {
            found = cboAssessment_->listCount() - 1;
        }
    }
    return found;
}

void frmMain::FillAssessmentCombo()
{
    const int last = fillAssessmentEntries(state_.LastAssessmentNum);
    if (state_.AssessmentList.isEmpty()) {
        loadCatalogue();
        return;
    }
    cboAssessment_->setListIndex(state_.LastAssessmentNum < 1 || last < 0 ? 0 : last);
}

void frmMain::cboAssessment_Click()
{
    if (cboAssessment_->listIndex() >= 0) {
        state_.CurrentAssessmentNum = cboAssessment_->entryData(cboAssessment_->listIndex());
    }
    loadCatalogue();
}

bool frmMain::load(bool topics, bool subTopics, bool questions)
{
    LoadFailures failures;
    if (topics) {
        failures += LoadTopics(state_, library_.connection());
    }
    if (subTopics) {
        failures += LoadSubTopics(state_, library_.connection());
    }
    try {
        if (questions) {
            LoadQuestions(state_, library_.connection());
        }
    } catch (const Error&) {
        failures.append(tr("There was an error loading the questions."));
    }
    services_.messageBoxes->informEach(tr("Database Error"), failures);
    return failures.isEmpty();
}

void frmMain::loadCatalogue()
{
    lstTopics_->clear();
    lstSubTopics_->clear();
    selection_ = {};
    bool loaded = true;
    if (state_.CurrentAssessmentNum > 0) {
        loaded = load(true, true, true);
    } else {
        state_.TopicList.clear();
        state_.SubTopicList.clear();
        state_.QuestionList.clear();
    }
    forgetUses();
    loadQuotas();
    FillTopicList();
    showObstacle(loaded);
}

void frmMain::libraryChanged(const LibraryChange& change)
{
    if (change.touches(ItemKind::Assessment) && !refreshAssessments()) {
        return;
    }
    const bool topics = change.touches(ItemKind::Topic);
    const bool subTopics = change.touches(ItemKind::Subtopic);
    const bool questions = change.touches(ItemKind::Question);
    if (state_.CurrentAssessmentNum < 1 || !(topics || subTopics || questions)) {
        return;
    }
    const bool loaded = load(topics, subTopics, questions);
    if (topics) {
        refill(*lstTopics_, [this] {
            QHash<std::int32_t, bool> ticks;
            for (const ListBox::Row& row : lstTopics_->rows()) {
                ticks.insert(row.itemData, row.selected);
            }
            setTopicRows([&](std::int32_t topicId) { return ticks.value(topicId, true); });
        });
    }
    if (topics || subTopics) {
        refill(*lstSubTopics_, [this] { FillSubTopicList(); });
    }
    // A number typed by hand stays: she has not changed what is ticked.
    if (txtQuestions_->isModified()) {
        recount();
    } else {
        RefreshQuestionSelection();
    }
    showObstacle(loaded);
}

bool frmMain::refreshAssessments()
{
    const LoadFailures failures = LoadAssessments(state_, library_.connection());
    if (!failures.isEmpty()) {
        services_.messageBoxes->informEach(tr("Database Error"), failures);
        return true;
    }
    const int current = fillAssessmentEntries(state_.CurrentAssessmentNum);
    if (current < 0) {
        state_.CurrentAssessmentNum = 0;
        FillAssessmentCombo();
        return false;
    }
    cboAssessment_->showEntry(current);
    return true;
}

void frmMain::showObstacle(bool loaded)
{
    if (state_.AssessmentList.isEmpty()) {
        lblObstacle_->say(
            tr("There is no assessment to choose. Add one with \"Manage Assessments\" "
               "in the menu above, or take one over with \"Import Assessment\"."));
    } else if (loaded && state_.QuestionList.isEmpty()) {
        lblObstacle_->say(tr("This assessment has no questions yet. Add some with \"Manage "
                             "Assessments\" in the menu above."));
    } else {
        lblObstacle_->say({});
    }
}

void frmMain::setTopicRows(const std::function<bool(std::int32_t topicId)>& selected)
{
    std::vector<ListBox::Row> rows;
    rows.reserve(static_cast<std::size_t>(state_.TopicList.upperBound()));
    for (const TopicRecord& topic : state_.TopicList) {
        rows.push_back({topic.Topic, topic.TopicID, selected(topic.TopicID)});
    }
    lstTopics_->setRows(std::move(rows));
}

void frmMain::FillTopicList()
{
    setTopicRows([](std::int32_t) { return false; });
    cmdSelectAllTopics_Click();
    if (state_.TopicList.isEmpty()) {
        RefreshQuestionSelection();
    }
}

void frmMain::FillSubTopicList()
{
    std::vector<ListBox::Row> rows;
    const int focused = lstTopics_->listIndex();
    if (focused >= 0) {
        const std::int32_t topicId = lstTopics_->itemData(focused);
        for (const SubTopicRecord& record : state_.SubTopicList) {
            if (record.TopicID == topicId) {
                rows.push_back({record.SubTopic, record.SubtopicNum,
                                selection_.subTopicSelected(topicId, record.SubtopicNum)});
            }
        }
    }
    lstSubTopics_->setRows(std::move(rows));
}

} // namespace varnholt
