#include "selection/frmSelect.h"

#include "pictures/picture_files.h"
#include "selection/draw_wishes.h"
#include "selection/frmOverview.h"
#include "store/catalogue.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/PictureView.h"
#include "toolkit/controls.h"
#include "toolkit/key_icon.h"
#include "toolkit/latin_key.h"
#include "toolkit/short_text.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QProgressBar>
#include <QSettings>
#include <QShortcut>
#include <QTextDocument>
#include <QTimer>

#include <utility>

namespace varnholt {

namespace {

const QString geometryKey = QStringLiteral("frmSelect/geometry");

/// A button that a single key presses as well; the key is shown on it.
QPushButton* makeKeyButton(const char* objectName, const QString& caption, Qt::Key key)
{
    QPushButton* button = makeButton(objectName, caption);
    button->setAutoDefault(true);
    const QString letter = QKeySequence(key).toString(QKeySequence::NativeText);
    button->setIcon(keyIcon(letter));
    button->setToolTip(frmSelect::tr("Press the key %1").arg(letter));
    auto* shortcut = new QShortcut(key, button);
    shortcut->setAutoRepeat(false);
    QObject::connect(shortcut, &QShortcut::activated, button, [button] { button->click(); });
    return button;
}

/// A text of any length, without making the window larger than the screen.
void showText(QLabel* label, const QString& text)
{
    constexpr qsizetype longestSentence = 300;
    label->setText(Wrappable(text, longestSentence));
    label->setToolTip(text.size() > longestSentence ? Qt::convertFromPlainText(text) : QString());
}

} // namespace

frmSelect::frmSelect(Services& services, const ProgramState& state, Review review,
                     Handlers handlers, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint)
    , services_(services)
    , state_(state)
    , handlers_(std::move(handlers))
    , review_(std::move(review))
{
    setObjectName(QStringLiteral("frmSelect"));
    setWindowTitle(tr("Select Questions"));
    setAttribute(Qt::WA_DeleteOnClose);
    buildControls();
}

void frmSelect::buildControls()
{
    imgQuestion_ = named(new PictureView, "imgQuestion", tr("Picture of the question"));
    imgQuestion_->installEventFilter(this);
    lblTopicDescription_ = makeLabel("lblTopicDescription");
    lblTopicDescription_->setWordWrap(true);
    QFont bold = lblTopicDescription_->font();
    bold.setBold(true);
    lblTopicDescription_->setFont(bold);
    lblAnswer_ = makeLabel("lblAnswer");
    lblAnswer_->setWordWrap(true);
    lblUses_ = makeLabel("lblUses");
    lblUses_->setWordWrap(true);
    lblUses_->setForegroundRole(QPalette::PlaceholderText);
    lblShort_ = new HintLabel("lblShort", imgQuestion_, HintLabel::Place::Given);
    barAccepted_ = named(new QProgressBar, "barAccepted", tr("Questions accepted"));
    barAccepted_->setRange(0, draw().RequestedQuestionCount);
    barAccepted_->setFormat(tr("%1 of %2").arg(QStringLiteral("%v"), QStringLiteral("%m")));
    barAccepted_->setMaximumHeight(fontMetrics().height() + 2);
    lblCount1_ = makeLabel("lblCount1");
    lblCount2_ = makeLabel("lblCount2");

    auto* cmdInclude = makeKeyButton("cmdInclude", tr("&Include"), Qt::Key_I);
    auto* cmdExclude = makeKeyButton("cmdExclude", tr("&Exclude"), Qt::Key_E);
    cmdSwap_ = makeKeyButton("cmdSwap", tr("&Swap"), Qt::Key_S);
    cmdBack_ = makeKeyButton("cmdBack", tr("&Back"), Qt::Key_Backspace);
    // The name of the key is no letter to be drawn.
    cmdBack_->setIcon({});
    cmdOverview_ = makeKeyButton("cmdOverview", tr("&Overview"), Qt::Key_O);
    cmdKeep_ = makeButton("cmdKeep", tr("&Keep for Later"));
    cmdKeep_->setAutoDefault(true);
    cmdKeep_->setVisible(static_cast<bool>(handlers_.keep));
    cmdKeep_->setToolTip(tr("Remembers the questions included so far among the past tests, and "
                            "makes no slides yet."));
    auto* cmdCreate = makeButton("cmdCreate", tr("&Create"));
    cmdCreate->setAutoDefault(true);
    cmdCreate->setToolTip(tr("Makes the slides of the questions included so far."));
    auto* cmdCancel = makeButton("cmdCancel", tr("C&ancel"));
    cmdCancel->setAutoDefault(true);
    cmdCancel->setToolTip(tr("Makes no slides (Esc)."));

    auto* counts = new QVBoxLayout;
    counts->addWidget(lblCount1_, 0, Qt::AlignRight);
    counts->addWidget(lblCount2_, 0, Qt::AlignRight);
    auto* texts = new QVBoxLayout;
    texts->addWidget(lblTopicDescription_);
    texts->addWidget(lblAnswer_);
    texts->addWidget(lblUses_);
    auto* heading = new QHBoxLayout;
    heading->addLayout(texts, 1);
    heading->addLayout(counts);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdInclude);
    buttons->addWidget(cmdExclude);
    buttons->addStretch();
    buttons->addWidget(cmdCreate);
    buttons->addWidget(cmdCancel);
    auto* column = new QVBoxLayout(this);
    column->addLayout(heading);
    column->addWidget(lblShort_);
    column->addWidget(barAccepted_);
    column->addWidget(imgQuestion_, 1);
    // A row of their own: in one with the others the window could not be made narrow.
    auto* moreButtons = new QHBoxLayout;
    moreButtons->addWidget(cmdSwap_);
    moreButtons->addWidget(cmdBack_);
    moreButtons->addWidget(cmdOverview_);
    moreButtons->addStretch();
    moreButtons->addWidget(cmdKeep_);
    column->addLayout(buttons);
    column->addLayout(moreButtons);

    QWidget* previous = cmdInclude;
    for (QWidget* next :
         {cmdExclude, cmdCreate, cmdCancel, cmdSwap_, cmdBack_, cmdOverview_, cmdKeep_}) {
        setTabOrder(previous, next);
        previous = next;
    }
    cmdInclude->setDefault(true);
    cmdInclude->setFocus();

    connect(cmdInclude, &QPushButton::clicked, this, &frmSelect::cmdInclude_Click);
    connect(cmdExclude, &QPushButton::clicked, this, &frmSelect::cmdExclude_Click);
    connect(cmdSwap_, &QPushButton::clicked, this, &frmSelect::cmdSwap_Click);
    connect(cmdBack_, &QPushButton::clicked, this, &frmSelect::cmdBack_Click);
    connect(cmdOverview_, &QPushButton::clicked, this, &frmSelect::cmdOverview_Click);
    connect(cmdKeep_, &QPushButton::clicked, this, &frmSelect::cmdKeep_Click);
    connect(cmdCreate, &QPushButton::clicked, this, &frmSelect::cmdCreate_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmSelect::abandon);

    resizeWithinScreen(this, {fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 38});
    if (!restoreGeometry(QSettings().value(geometryKey).toByteArray())) {
        move(parentWidget()->frameGeometry().center() - rect().center());
    }
}

void frmSelect::Form_Load()
{
    showCounts();
    ShowReviewQuestion();
    if (!unloaded_) {
        show();
        activateWindow();
    }
}

void frmSelect::ShowReviewQuestion()
{
    const QuestionRecord& question = review_.question();
    const QString topic = GetTopicText(state_, question);
    showText(lblTopicDescription_, topic);
    showText(lblAnswer_, tr("Answer: %1").arg(question.Answer));
    lblUses_->setText(handlers_.uses ? handlers_.uses(question) : QString());
    lblUses_->setVisible(!lblUses_->text().isEmpty());
    showButtons();
    imgQuestion_->setSubject(tr("Question %1 of %2: %3.")
                                 .arg(review_.position())
                                 .arg(draw().DrawPool.upperBound())
                                 .arg(topic));
    seen_ = false;
    imgQuestion_->load(picturePath(review_.position()), [this](PictureFault fault) {
        if (fault == PictureFault::None) {
            return;
        }
        services_.messageBoxes->inform(
            tr("File Missing"),
            tr("One of the questions you have selected is missing the picture file.  Please go to "
               "Manage Assessments and delete the question that is missing the picture file."));
        abandon();
    });
    if (review_.position() < draw().DrawPool.upperBound()) {
        imgQuestion_->prefetch(picturePath(review_.position() + 1));
    }
}

QString frmSelect::picturePath(int position) const
{
    return FindPictureFile(services_.programFolder, draw().DrawPool(position).PictureIndex);
}

void frmSelect::showButtons()
{
    cmdSwap_->setEnabled(review_.canSwap());
    cmdSwap_->setToolTip(review_.canSwap()
                             ? tr("Leaves this question out for another one of its subtopic or "
                                  "topic. Press the key S")
                             : tr("There is no other question to put in the place of this one."));
    cmdBack_->setEnabled(review_.canReopen());
    cmdBack_->setToolTip(tr("Takes the last judgement back. Press the Backspace key"));
    cmdOverview_->setEnabled(review_.acceptedCount() > 0);
    cmdKeep_->setEnabled(review_.acceptedCount() > 0);
}

std::vector<StripEntry> frmSelect::accepted() const
{
    std::vector<StripEntry> entries;
    for (int i = 1; i <= draw().DrawPool.upperBound(); ++i) {
        const DrawnQuestion& question = draw().DrawPool(i);
        if (question.Selected) {
            entries.push_back({i, picturePath(i), question.Answer, GetTopicText(state_, question)});
        }
    }
    return entries;
}

void frmSelect::cmdSwap_Click()
{
    if (seen_ && review_.canSwap()) {
        review_.swap();
        showCounts();
        ShowReviewQuestion();
    }
}

void frmSelect::cmdBack_Click()
{
    if (review_.canReopen()) {
        review_.reopenLast();
        showCounts();
        ShowReviewQuestion();
    }
}

void frmSelect::cmdOverview_Click()
{
    frmOverview overview(
        {[this] { return accepted(); },
         [this](std::int32_t position) { return review_.swapIncluded(position); },
         [this](const std::vector<std::int32_t>& positions) { review_.reorder(positions); }},
        this);
    if (overview.exec() == QDialog::Accepted) {
        cmdCreate_Click();
    } else {
        showCounts();
        ShowReviewQuestion();
    }
}

void frmSelect::cmdKeep_Click()
{
    if (handlers_.keep(draw())) {
        abandon();
    }
}

void frmSelect::showCounts()
{
    barAccepted_->setValue(review_.acceptedCount());
    lblCount1_->setText(review_.selectedText());
    lblCount2_->setText(review_.leftText());
    constexpr qsizetype mostSentences = 3;
    lblShort_->say(ShortTopicsInWords(review_.shortTopics(), state_.TopicList)
                       .mid(0, mostSentences)
                       .join(u' '));
}

void frmSelect::cmdInclude_Click()
{
    if (seen_) {
        goOn(review_.include());
    }
}

void frmSelect::cmdExclude_Click()
{
    if (seen_) {
        goOn(review_.exclude());
    }
}

void frmSelect::cmdCreate_Click()
{
    review_.excludeRest();
    if (build()) {
        ShowReviewQuestion();
    }
}

void frmSelect::goOn(Review::Next next)
{
    showCounts();
    switch (next) {
    case Review::Next::Show:
        ShowReviewQuestion();
        break;
    case Review::Next::Build:
        if (build()) {
            review_.reopenLast();
            showCounts();
            ShowReviewQuestion();
        }
        break;
    case Review::Next::Close:
        abandon();
        break;
    }
}

bool frmSelect::build()
{
    imgQuestion_->forget();
    using End = BuildOutcome::End;
    const End end = handlers_.build(this, draw()).end;
    if (end == End::Complete || end == End::Aborted) {
        abandon();
        return false;
    }
    return true;
}

void frmSelect::abandon()
{
    settled_ = true;
    close();
}

bool frmSelect::mayLeave()
{
    return settled_ || review_.acceptedCount() == 0 ||
           services_.messageBoxes->yesNo(
               tr("Leave the Review?"),
               tr("Questions included so far: %1. If you leave the review now, no slides are made "
                  "of them. Do you want to leave it?")
                   .arg(review_.acceptedCount()));
}

void frmSelect::closeEvent(QCloseEvent* event)
{
    event->setAccepted(unloaded_ || mayLeave());
    if (!unloaded_ && event->isAccepted()) {
        unloaded_ = true;
        prepared_.reset();
        imgQuestion_->forget();
        QSettings().setValue(geometryKey, saveGeometry());
        Q_EMIT unloaded();
    }
}

void frmSelect::reject()
{
    close();
}

void frmSelect::keyPressEvent(QKeyEvent* event)
{
    const int key = LatinKey(*event);
    // Latin letters have come as shortcuts.
    if (key != event->key() && event->modifiers() == Qt::NoModifier) {
        for (auto* button : findChildren<QPushButton*>()) {
            const auto* shortcut = button->findChild<QShortcut*>();
            if (shortcut && shortcut->key() == QKeySequence(key)) {
                if (!event->isAutoRepeat()) {
                    button->click();
                }
                return;
            }
        }
    }
    QDialog::keyPressEvent(event);
}

bool frmSelect::eventFilter(QObject* watched, QEvent* event)
{
    if (!seen_ && event->type() == QEvent::Paint && !imgQuestion_->isLoading()) {
        seen_ = true;
        // The first question comes first.
        if (const auto prepare = std::exchange(handlers_.prepare, {})) {
            QTimer::singleShot(0, this,
                               [this, prepare] { prepared_ = unloaded_ ? nullptr : prepare(); });
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace varnholt
