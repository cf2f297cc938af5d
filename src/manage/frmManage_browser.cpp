// How the library manager shows the questions of a subtopic, and opens the windows that make or
// change one.
#include "manage/frmManage.h"

#include "library/Library.h"
#include "manage/PictureStrip.h"
#include "manage/frmEditQuestion.h"
#include "manage/structure_maintenance.h"
#include "pictures/picture_files.h"
#include "store/catalogue.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/ListBox.h"
#include "toolkit/PictureView.h"
#include "toolkit/controls.h"
#include "toolkit/short_text.h"

#include <QScopedValueRollback>

#include <algorithm>

namespace varnholt {

namespace {

/// More would leave no room for the picture.
constexpr qsizetype longestAnswer = 200;

/// Puts a dialog on the left of what it is about, so that both can be seen, as far as the screen
/// has room.
void placeBeside(QDialog& dialog, const QWidget& subject)
{
    dialog.adjustSize();
    const QRect room = subject.screen()->availableGeometry();
    const QPoint corner = subject.mapToGlobal(QPoint());
    const int gap = dialog.fontMetrics().height();
    dialog.move(
        std::max(room.left(), corner.x() - dialog.width() - gap),
        std::clamp(corner.y(), room.top(), std::max(room.top(), room.bottom() - dialog.height())));
}

} // namespace

void frmManage::lstSubtopics_Click()
{
    browse(0, 1);
}

void frmManage::browse(std::int32_t wanted, std::int32_t orAt)
{
    const auto [topicId, subtopicNum] = currentRows();
    if (!topicId || !subtopicNum || !questionsAreThere()) {
        return;
    }
    sayBelow(
        *lstSubtopics_, *lblSubtopicHint_,
        LargeKeyHint(tr("Subtopic number %1 is above %2 and cannot be deleted."), *subtopicNum));
    ShowSubtopicQuestions(wanted, orAt);
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

void frmManage::ShowSubtopicQuestions(std::int32_t wanted, std::int32_t orAt)
{
    const FilingPreselection rows = currentRows();
    browser_.show(state_, rows.topicId, rows.subtopicNum, wanted, orAt);
    sayIn(lblQuestions_, tr("Questions: %1").arg(browser_.QuestionCount));
    lstPictures_->setQuestions(browser_.BrowseQuestions);
    lstPictures_->setVisible(browser_.QuestionCount > 1);
    showBrowser(browser_.QuestionCount > 0);
    if (browser_.QuestionCount > 0) {
        showPicture();
    } else {
        HandlePictureButtons();
    }
}

void frmManage::showPicture()
{
    const auto path = [this](int position) {
        return FindPictureFile(services_.programFolder,
                               browser_.BrowseQuestions(position).SOLIndex);
    };
    const int position = browser_.QuestionPosition;
    const QString place = browser_.positionText();
    imgQuestion_->setSubject(
        tr("Question %1: %2.").arg(place, GetTopicText(state_, browser_.current())));
    lblPictureHint_->say({});
    lblQuestionCount_->setText(place);
    const QString& answer = browser_.current().Answer;
    lblAnswer_->setText(answer.isEmpty() ? tr("This question has no answer.")
                                         : tr("Answer: %1").arg(Wrappable(answer, longestAnswer)));
    lstPictures_->setPosition(position);
    imgQuestion_->load(path(position), [this](PictureFault fault) { reportPicture(fault); });
    HandlePictureButtons();
    for (const int next : {position - 1, position + 1}) {
        if (next >= 1 && next <= browser_.QuestionCount) {
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
    inform(tr("File Missing"),
           tr("The picture file is missing from this picture.  Please delete this question."));
}

void frmManage::HandlePictureButtons()
{
    const PictureButtons enabled =
        EnabledPictureButtons(browser_.QuestionPosition, browser_.QuestionCount);
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
        return tr("There is no assessment yet. Create one to begin.");
    }
    if (state_.TopicList.isEmpty()) {
        return tr("This assessment has no topics yet. Create one to go on.");
    }
    if (lstTopics_->listIndex() >= 0 && lstSubtopics_->listIndex() >= 0) {
        return tr("This subtopic has no questions yet.");
    }
    return tr("Choose a topic and a subtopic to see its questions.");
}

void frmManage::cmdLeft_Click()
{
    browser_.stepLeft();
    showPicture();
}

void frmManage::cmdRight_Click()
{
    browser_.stepRight();
    showPicture();
}

void frmManage::lstPictures_Chosen(int position)
{
    browser_.stepTo(position);
    showPicture();
}

void frmManage::cmdAddNewQuestion_Click()
{
    if (state_.TopicList.isEmpty() || state_.SubTopicList.isEmpty()) {
        inform(tr("Add Error"),
               tr("Cannot add a question until a topic and subtopic has been created."));
        return;
    }
    const int row = lstTopics_->listIndex();
    {
        const QScopedValueRollback open(inDialog_, true);
        openAuthoring_(window(), currentRows());
    }
    if (!changed_.empty()) {
        loadReporting([this] { reloadChanged(); });
        FillTopicList();
        lstSubtopics_->clear();
        sayIn(lblQuestions_, {});
        lstTopics_->reveal(row);
    }
}

void frmManage::cmdEditQuestion_Click()
{
    changeShown([this](const Place& place) {
        frmEditQuestion dialog(services_, state_, library_, browser_.current(), place.rows,
                               window());
        placeBeside(dialog, *imgQuestion_);
        dialog.exec();
    });
}

void frmManage::setPictureEditor(OpenPicture openPicture)
{
    openPicture_ = std::move(openPicture);
    cmdEditPicture_->setVisible(openPicture_ != nullptr);
}

void frmManage::cmdEditPicture_Click()
{
    changeShown([this](const Place&) { openPicture_(window(), browser_.current().SOLIndex); });
}

void frmManage::changeShown(const std::function<void(const Place&)>& runDialog)
{
    if (browser_.QuestionPosition == 0) {
        return;
    }
    const Place place = currentPlace();
    QWidget* had = focusWidget();
    const QScopedValueRollback open(inDialog_, true);
    runDialog(place);
    if (changed_.empty()) {
        return;
    }
    loadReporting([&] {
        reloadChanged();
        lstTopics_Click();
        goTo(place);
        focusAgain(had);
    });
}

} // namespace varnholt
