// How the authoring window offers topics and subtopics, and takes over new ones.
#include "authoring/frmAddNewQuestion.h"

#include "library/Library.h"
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

void frmAddNewQuestion::cmdNewTopic_Click()
{
    const std::optional<NewInfo> added =
        openNewInfo_(this, frmNewInfo::Mode::TopicAndSubtopic, std::nullopt);
    if (!added) {
        return;
    }
    cboTopics_->clear();
    cboSubtopics_->clear();
    services_.messageBoxes->informEach(tr("Database Error"),
                                       LoadStructure(state_, library_.connection()));
    FillTopicCombo();
    SelectTopicById(added->NewTopicID);
    SelectSubtopicById(added->NewSubtopicNum);
    structureChanged_ = true;
}

void frmAddNewQuestion::cmdNewSubtopic_Click()
{
    std::optional<NamedTopic> chosen;
    if (cboTopics_->listIndex() >= 0) {
        chosen =
            NamedTopic{cboTopics_->entryData(cboTopics_->listIndex()), cboTopics_->currentText()};
    }
    const std::optional<NewInfo> added =
        openNewInfo_(this, frmNewInfo::Mode::SubtopicOnly, std::move(chosen));
    if (!added) {
        return;
    }
    cboSubtopics_->clear();
    services_.messageBoxes->informEach(tr("Database Error"),
                                       LoadSubTopics(state_, library_.connection()));
    FillSubtopicCombo();
    SelectSubtopicById(added->NewSubtopicNum);
    structureChanged_ = true;
}

} // namespace varnholt
