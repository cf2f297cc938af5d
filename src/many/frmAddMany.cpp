#include "many/frmAddMany.h"

#include "authoring/frmEditPicture.h"
#include "library/Library.h"
#include "pictures/picture_info.h"
#include "store/catalogue.h"
#include "store/services.h"
#include "store/statements.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LongWork.h"
#include "toolkit/PictureView.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace varnholt {

namespace {

constexpr int numberRole = Qt::UserRole;
constexpr int answerRole = Qt::UserRole + 1;
constexpr int thumbnailSide = 320;
constexpr int keepTypedMs = 600;

} // namespace

frmAddMany::frmAddMany(Services& services, ProgramState& state, Library& library,
                       const FilingPreselection& preselection, QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , state_(state)
    , library_(library)
    , pending_(library)
    , thumbnails_(thumbnailSide)
{
    setObjectName(QStringLiteral("frmAddMany"));
    setWindowTitle(tr("Add Many Questions"));
    buildControls();
    connectControls();
    typed_.setSingleShot(true);
    typed_.setInterval(keepTypedMs);
    connect(&typed_, &QTimer::timeout, this, &frmAddMany::keepTyped);
    Form_Load(preselection);
}

frmAddMany::~frmAddMany()
{
    keepTyped();
    pending_.forgetTakenOut();
}

void frmAddMany::Form_Load(const FilingPreselection& preselection)
{
    // The catalogue may be another window's, of long ago.
    const LoadFailures failures = LoadStructure(state_, library_.connection());
    lblHint_->say(failures.join(u' '));
    topicChoices_ = TopicChoices(state_);
    for (const FilingChoice& choice : topicChoices_) {
        cboTopics_->addEntry(choice.text, choice.key);
    }
    cboTopics_->setListIndex(PositionOf(topicChoices_, preselection.topicId.value_or(0)));
    cboSubtopics_->setListIndex(PositionOf(subtopicChoices_, preselection.subtopicNum.value_or(0)));
    attempt([this] {
        for (const int number : pending_.resume()) {
            addRow(number);
        }
    });
    lstPictures_->setCurrentRow(0);
    showState();
}

void frmAddMany::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    current() < 0 ? cmdPaste_->setFocus() : txtAnswer_->setFocus();
}

void frmAddMany::cboTopics_Click()
{
    const int index = cboTopics_->listIndex();
    subtopicChoices_ = SubtopicChoices(state_, index < 0 ? 0 : cboTopics_->entryData(index));
    cboSubtopics_->clear();
    for (const FilingChoice& choice : subtopicChoices_) {
        cboSubtopics_->addEntry(choice.text, choice.key);
    }
    cboSubtopics_->setListIndex(0);
}

int frmAddMany::current() const
{
    return lstPictures_->currentRow();
}

QString frmAddMany::answerOf(int row) const
{
    return lstPictures_->item(row)->data(answerRole).toString();
}

Margins frmAddMany::margins() const
{
    return chkTrim_->isChecked() ? Margins::Trim : Margins::Keep;
}

int frmAddMany::quality() const
{
    return chkFine_->isChecked() ? fineQuality : usualQuality;
}

void frmAddMany::txtAnswer_Change(const QString& answer)
{
    if (QListWidgetItem* item = lstPictures_->currentItem()) {
        item->setData(answerRole, answer);
        item->setText(answer);
        typedFor_ = item->data(numberRole).toInt();
        typed_.start();
    }
    lblHint_->say({});
}

void frmAddMany::keepTyped()
{
    typed_.stop();
    for (int row = 0; row < lstPictures_->count(); ++row) {
        if (lstPictures_->item(row)->data(numberRole).toInt() == typedFor_) {
            pending_.keepAnswer(std::exchange(typedFor_, 0), answerOf(row));
        }
    }
}

bool frmAddMany::attempt(const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const Error& error) {
        lblHint_->say(error.message());
    } catch (const std::bad_alloc&) {
        lblHint_->say(tr("There is not enough memory for this picture."));
    }
    return false;
}

void frmAddMany::addRow(int number)
{
    auto* item = new QListWidgetItem;
    item->setData(numberRole, number);
    item->setData(Qt::AccessibleTextRole, tr("Picture %1").arg(number));
    const QString answer = pending_.keptAnswer(number);
    item->setData(answerRole, answer);
    item->setText(answer);
    item->setSizeHint(lstPictures_->iconSize() + QSize(0, fontMetrics().height()));
    lstPictures_->addItem(item);
    loadThumbnail(number);
}

void frmAddMany::loadThumbnail(int number)
{
    thumbnails_.load(number, pending_.path(number));
}

void frmAddMany::lstPictures_Click()
{
    const int row = current();
    keepTyped();
    imgPicture_->setVisible(row >= 0);
    lblNone_->setVisible(row < 0);
    lblHint_->say({});
    if (row < 0) {
        imgPicture_->forget();
        txtAnswer_->clear();
    } else {
        const int number = lstPictures_->item(row)->data(numberRole).toInt();
        imgPicture_->setSubject(tr("Picture %1 of %2.").arg(row + 1).arg(lstPictures_->count()));
        imgPicture_->load(pending_.path(number), [this](PictureFault fault) {
            if (fault != PictureFault::None) {
                lblHint_->say(tr("This picture cannot be shown."));
            }
        });
        if (row + 1 < lstPictures_->count()) {
            imgPicture_->prefetch(
                pending_.path(lstPictures_->item(row + 1)->data(numberRole).toInt()));
        }
        txtAnswer_->setText(answerOf(row));
    }
    showState();
}

void frmAddMany::showState()
{
    const int count = lstPictures_->count();
    QStringList sentences;
    if (count > 0) {
        sentences.append(tr("%n picture(s) to be saved", nullptr, count));
    }
    if (savedCount_ > 0) {
        sentences.append(tr("%n saved", nullptr, savedCount_));
    }
    lblState_->setText(sentences.join(QStringLiteral(" – ")));
    const bool may = count > 0 && !library_.connection().isReadOnly();
    for (QPushButton* button : {cmdSaveNext_, cmdSaveAll_}) {
        button->setEnabled(may);
    }
    for (QPushButton* button : {cmdEditPicture_, cmdTakeOut_}) {
        button->setEnabled(count > 0);
    }
    imgPicture_->setVisible(current() >= 0);
    lblNone_->setVisible(current() < 0);
}

Filing frmAddMany::filing() const
{
    return {state_.CurrentAssessmentNum, cboTopics_->entryData(cboTopics_->listIndex()),
            cboSubtopics_->entryData(cboSubtopics_->listIndex())};
}

QString frmAddMany::obstacle() const
{
    if (library_.connection().isReadOnly()) {
        return tr("The question library can only be read: nothing can be saved.");
    }
    return cboSubtopics_->listIndex() < 0
               ? tr("A question needs a topic and a subtopic. Create them in the library manager.")
               : QString();
}

void frmAddMany::saveRow(int row)
{
    const QString answer = answerOf(row).trimmed();
    if (!statements::canHold(answer)) {
        lstPictures_->setCurrentRow(row);
        throw Error(tr("The question cannot be saved while its answer holds an apostrophe (')."));
    }
    pending_.save(lstPictures_->item(row)->data(numberRole).toInt(), filing(), answer);
    lastFiling_ = FilingPreselection{filing().TopicID, filing().SubtopicNum};
    ++savedCount_;
    delete lstPictures_->takeItem(row);
    Q_EMIT saved(*lastFiling_);
}

void frmAddMany::cmdSaveNext_Click()
{
    const int row = current();
    if (row < 0) {
        return;
    }
    QString reason = obstacle();
    if (reason.isEmpty() && answerOf(row).isEmpty()) {
        reason = tr("Type an answer before saving.");
    }
    if (!reason.isEmpty()) {
        lblHint_->say(reason);
    } else if (attempt([&] { saveRow(row); })) {
        lstPictures_->setCurrentRow(std::min(row, lstPictures_->count() - 1));
    }
    showState();
    txtAnswer_->setFocus();
}

void frmAddMany::cmdSaveAll_Click()
{
    if (const QString reason = obstacle(); !reason.isEmpty()) {
        lblHint_->say(reason);
        return;
    }
    const int before = savedCount_;
    const bool whole = attempt([this] {
        LongWork work(window(), tr("Saving the questions..."), LongWork::Cancel::Offered);
        const int all = lstPictures_->count();
        for (int row = 0, done = 0; row < lstPictures_->count(); ++done) {
            try {
                work.progress(done, all);
            } catch (const Cancelled&) {
                return;
            }
            if (answerOf(row).isEmpty()) {
                ++row;
            } else {
                saveRow(row);
            }
        }
    });
    if (whole && savedCount_ == before && lstPictures_->count() > 0) {
        lblHint_->say(tr("None of the pictures has an answer yet."));
    }
    showState();
    txtAnswer_->setFocus();
}

void frmAddMany::cmdTakeOut_Click()
{
    const int row = current();
    if (row < 0) {
        return;
    }
    const int number = lstPictures_->item(row)->data(numberRole).toInt();
    if (attempt([&] { pending_.takeOut(number); })) {
        takenOut_ = {number, answerOf(row)};
        cmdPutBack_->show();
        delete lstPictures_->takeItem(row);
        lstPictures_->setCurrentRow(std::min(row, lstPictures_->count() - 1));
    }
    showState();
}

void frmAddMany::cmdPutBack_Click()
{
    if (takenOut_ && attempt([this] { pending_.putBack(takenOut_->first); })) {
        addRow(takenOut_->first);
        QListWidgetItem* item = lstPictures_->item(lstPictures_->count() - 1);
        item->setData(answerRole, takenOut_->second);
        item->setText(takenOut_->second);
        lstPictures_->setCurrentItem(item);
        takenOut_.reset();
        cmdPutBack_->hide();
        showState();
    }
}

void frmAddMany::cmdEditPicture_Click()
{
    const int row = current();
    if (row < 0) {
        return;
    }
    const int number = lstPictures_->item(row)->data(numberRole).toInt();
    attempt([&] {
        const QString path = pending_.path(number);
        frmEditPicture dialog(
            services_, decodePicture(checkPicture(path), largestPictureSide, path), window());
        dialog.exec();
        if (dialog.edited()) {
            pending_.replace(number, *dialog.edited());
            loadThumbnail(number);
            lstPictures_Click();
        }
    });
    txtAnswer_->setFocus();
}

bool frmAddMany::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == txtAnswer_ && event->type() == QEvent::ShortcutOverride) {
        // Some desktops have a field go to its end by these keys.
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->keyCombination() == (Qt::CTRL | Qt::Key_E)) {
            event->ignore();
            return true;
        }
    }
    if (watched == txtAnswer_ && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        const int step = key->key() == Qt::Key_Down ? 1 : key->key() == Qt::Key_Up ? -1 : 0;
        if (step != 0) {
            lstPictures_->setCurrentRow(
                std::min(std::max(current() + step, 0), lstPictures_->count() - 1));
            return true;
        }
        if (key->matches(QKeySequence::Paste) && services_.clipboard->answers() &&
            services_.clipboard->hasImage()) {
            cmdPaste_Click();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace varnholt
