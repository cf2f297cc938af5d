// How the authoring window offers topics and subtopics, and takes over new ones.
#include "authoring/frmAddNewQuestion.h"

#include "store/catalogue.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"

namespace varnholt {

void frmAddNewQuestion::FillTopicCombo()
{
    topicChoices_ = TopicChoices(state_);
    cboTopics_->clear();
    for (const FilingChoice& choice : topicChoices_) {
        cboTopics_->addEntry(choice.text, choice.key);
    }
}

void frmAddNewQuestion::FillSubtopicCombo()
{
    subtopicChoices_ = SubtopicChoices(state_, CurrentTopicID_);
    cboSubtopics_->clear();
    for (const FilingChoice& choice : subtopicChoices_) {
        cboSubtopics_->addEntry(choice.text, choice.key);
    }
    if (preselection_.subtopicNum) {
        SelectSubtopicById(*preselection_.subtopicNum);
    } else {
        cboSubtopics_->setListIndex(0);
    }
}

void frmAddNewQuestion::SelectTopicById(std::int32_t topicId)
{
    cboTopics_->setListIndex(PositionOf(topicChoices_, topicId));
}

void frmAddNewQuestion::SelectSubtopicById(std::int32_t subtopicNum)
{
    cboSubtopics_->setListIndex(PositionOf(subtopicChoices_, subtopicNum));
}

void frmAddNewQuestion::cboTopics_Click()
{
    const int index = cboTopics_->listIndex();
    CurrentTopicID_ = index < 0 ? 0 : cboTopics_->entryData(index);
    FillSubtopicCombo();
}

bool frmAddNewQuestion::openNewInfo(bool subtopicOnly, std::optional<NamedTopic> chosen)
{
    state_.SubtopicOnly = subtopicOnly;
    openNewInfo_(this, std::move(chosen));
    return state_.NewInfoSaved;
}

void frmAddNewQuestion::cmdNewTopic_Click()
{
    if (!openNewInfo(false, std::nullopt)) {
        return;
    }
    cboTopics_->clear();
    cboSubtopics_->clear();
    LoadTopics(state_, connection_, *services_.messageBoxes);
    LoadSubTopics(state_, connection_, *services_.messageBoxes);
    FillTopicCombo();
    SelectTopicById(state_.NewTopicID);
    SelectSubtopicById(state_.NewSubtopicNum);
    state_.StructureChanged = true;
}

void frmAddNewQuestion::cmdNewSubtopic_Click()
{
    std::optional<NamedTopic> chosen;
    if (cboTopics_->listIndex() >= 0) {
        chosen =
            NamedTopic{cboTopics_->entryData(cboTopics_->listIndex()), cboTopics_->currentText()};
    }
    if (!openNewInfo(true, std::move(chosen))) {
        return;
    }
    cboSubtopics_->clear();
    LoadSubTopics(state_, connection_, *services_.messageBoxes);
    FillSubtopicCombo();
    SelectSubtopicById(state_.NewSubtopicNum);
    state_.StructureChanged = true;
}

} // namespace varnholt
