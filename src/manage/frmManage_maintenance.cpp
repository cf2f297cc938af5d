// The library manager's seven handlers that change the library's structure.
#include "manage/frmManage.h"

#include "library/Library.h"
#include "manage/structure_maintenance.h"
#include "store/catalogue.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"
#include "toolkit/controls.h"

#include <QLabel>
#include <QPushButton>

namespace varnholt {

void frmManage::cmdAddAssessment_Click()
{
    attempt(tr("There was an error adding this assessment."), [this] {
        const QString name = services_.messageBoxes->inputText(
            tr("New Assessment Name"), tr("Please enter the name of the new assessment."));
        if (name.isEmpty()) {
            return;
        }
        const std::int32_t added = library_.addAssessment(name);
        cboAssessment_->clear();
        RememberAssessment(state_, library_, toInt16(added));
        Form_Load();
        inform(tr("New Assessment Added"), tr("%1 successfully added.").arg(name));
        cmdNewTopic_->setFocus();
    });
}

void frmManage::cmdDeleteAssessment_Click()
{
    attempt(tr("There was an error deleting this assessment."), [this] {
        if (!services_.messageBoxes->yesNo(
                tr("Delete Assessment?"),
                tr("Are you sure that you want to delete this assessment library.  "
                   "Selecting Yes will completely remove this assessment from the "
                   "system."))) {
            return;
        }
        library_.deleteAssessment(state_.CurrentAssessmentNum);
        cboAssessment_->clear();
        RememberAssessment(state_, library_, 0);
        Form_Load();
        inform(tr("Assessment Deleted"), tr("The assessment was successfully deleted."));
        (state_.CurrentAssessmentNum < 1 ? static_cast<QWidget*>(cmdAddAssessment_)
                                         : cboAssessment_)
            ->setFocus();
    });
}

void frmManage::cmdNewTopic_Click()
{
    attempt(tr("There was an error adding this topic."), [this] {
        if (state_.CurrentAssessmentNum == 0) {
            inform(tr("Error"), tr("Cannot add a Topic until an Assessment has been created."));
            return;
        }
        const QString name =
            services_.messageBoxes
                ->inputText(tr("New Topic Name"), tr("Please enter the name of the new topic."))
                .trimmed();
        if (name.isEmpty()) {
            return;
        }
        library_.addTopic(state_.CurrentAssessmentNum, name);
        reloadChanged();
        FillTopicList();
        lstSubtopics_->clear();
        sayIn(lblQuestions_, {});
        lstTopics_->reveal(lstTopics_->listCount() - 1);
        inform(tr("New Topic Added"), tr("%1 successfully added.").arg(name));
        lstTopics_->setFocus();
    });
}

void frmManage::cmdDeleteTopic_Click()
{
    if (lstSubtopics_->listCount() > 0) {
        inform(tr("Delete Error"),
               tr("Cannot delete a topic that has subtopics.  You must delete delete "
                  "all subtopics first."));
        return;
    }
    if (!services_.messageBoxes->yesNo(tr("Delete Topic?"),
                                       tr("Are you sure that you want to delete this topic?"))) {
        return;
    }
    attempt(tr("There was an error deleting this topic."), [this] {
        const int row = lstTopics_->listIndex();
        library_.deleteTopic(toInt16(lstTopics_->itemData(row)));
        reloadChanged();
        FillTopicList();
        lstTopics_->reveal(row);
        inform(tr("Topic Deleted"), tr("The topic was deleted successfully."));
        lstTopics_->setFocus();
    });
}

void frmManage::cmdNewSubtopic_Click()
{
    attempt(tr("There was an error adding this topic."), [this] {
        if (state_.CurrentAssessmentNum == 0) {
            inform(tr("Error"), tr("Cannot add a Subtopic until an Assessment has been created."));
            return;
        }
        const QString name =
            services_.messageBoxes
                ->inputText(tr("New Topic Name"), tr("Please enter the name of the new subtopic."))
                .trimmed();
        if (name.isEmpty()) {
            return;
        }
        const std::int32_t topic = lstTopics_->itemData(lstTopics_->listIndex());
        library_.addSubtopic(state_.CurrentAssessmentNum, toInt16(topic), name);
        reloadChanged();
        lstTopics_Click();
        lstSubtopics_->reveal(lstSubtopics_->listCount() - 1);
        inform(tr("New Topic Added"), tr("%1 successfully added.").arg(name));
    });
}

void frmManage::cmdDeleteSubtopic_Click()
{
    if (browser_.QuestionCount >= 1) {
        inform(tr("Delete Error"),
               tr("You cannot delete a subtopic that has questions associated with "
                  "it.  The questions for this subtopic need to be changed to another "
                  "subtopic or deleted."));
        return;
    }
    if (!services_.messageBoxes->yesNo(tr("Delete Subtopic?"),
                                       tr("Are you sure that you want to delete this subtopic?"))) {
        return;
    }
    attempt(tr("There was an error deleting this subtopic."), [this] {
        const int row = lstSubtopics_->listIndex();
        library_.deleteSubtopic(toInt16(lstSubtopics_->itemData(row)));
        reloadChanged();
        FillSubtopicList();
        lstSubtopics_->reveal(row);
        inform(tr("Subtopic Deleted"), tr("The Subtopic was deleted successfully."));
        lstSubtopics_->setFocus();
    });
}

void frmManage::cmdDeleteQuestion_Click()
{
    if (!services_.messageBoxes->yesNo(tr("Delete Question?"),
                                       tr("Are you sure that you want to delete this question?"))) {
        return;
    }
    attempt(tr("There was an error in deleting the question."), [this] {
        const Place place = currentPlace();
        QWidget* had = focusWidget();
        library_.deleteQuestion(browser_.current().SOLIndex);
        reloadChanged();
        lstTopics_Click();
        inform(tr("Question Deleted"), tr("Question deleted successfully."));
        goTo(place);
        focusAgain(had);
    });
}

} // namespace varnholt
