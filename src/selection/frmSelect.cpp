#include "selection/frmSelect.h"

#include "pictures/picture_files.h"
#include "store/catalogue.h"
#include "store/services.h"
#include "toolkit/PictureView.h"
#include "toolkit/controls.h"
#include "toolkit/key_icon.h"
#include "toolkit/short_text.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QSettings>
#include <QShortcut>
#include <QTextDocument>

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
    constexpr qsizetype longestShown = 300;
    label->setText(Wrappable(text, longestShown));
    label->setToolTip(text.size() > longestShown ? Qt::convertFromPlainText(text) : QString());
}

} // namespace

frmSelect::frmSelect(Services& services, const ProgramState& state, Draw draw, Build build,
                     QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint)
    , services_(services)
    , state_(state)
    , build_(std::move(build))
    , review_(std::move(draw))
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
    lblCount1_ = makeLabel("lblCount1");
    lblCount2_ = makeLabel("lblCount2");

    auto* cmdInclude = makeKeyButton("cmdInclude", tr("&Include"), Qt::Key_I);
    auto* cmdExclude = makeKeyButton("cmdExclude", tr("&Exclude"), Qt::Key_E);
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
    column->addWidget(imgQuestion_, 1);
    column->addLayout(buttons);

    QWidget* previous = cmdInclude;
    for (QWidget* next : {cmdExclude, cmdCreate, cmdCancel}) {
        setTabOrder(previous, next);
        previous = next;
    }
    cmdInclude->setDefault(true);
    cmdInclude->setFocus();

    connect(cmdInclude, &QPushButton::clicked, this, &frmSelect::cmdInclude_Click);
    connect(cmdExclude, &QPushButton::clicked, this, &frmSelect::cmdExclude_Click);
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
    const auto path = [this](int position) {
        return FindPictureFile(services_.programFolder, draw().DrawPool(position).PictureIndex);
    };
    const QuestionRecord& question = review_.question();
    const QString topic = GetTopicText(state_, question);
    showText(lblTopicDescription_, topic);
    showText(lblAnswer_, tr("Answer: %1").arg(question.Answer));
    imgQuestion_->setSubject(tr("Question %1 of %2: %3.")
                                 .arg(review_.position())
                                 .arg(draw().DrawPool.upperBound())
                                 .arg(topic));
    seen_ = false;
    imgQuestion_->load(path(review_.position()), [this](PictureFault fault) {
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
        imgQuestion_->prefetch(path(review_.position() + 1));
    }
}

void frmSelect::showCounts()
{
    lblCount1_->setText(review_.selectedText());
    lblCount2_->setText(review_.leftText());
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
    const End end = build_(this, draw()).end;
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
        imgQuestion_->forget();
        QSettings().setValue(geometryKey, saveGeometry());
        Q_EMIT unloaded();
    }
}

void frmSelect::reject()
{
    close();
}

bool frmSelect::eventFilter(QObject* watched, QEvent* event)
{
    seen_ = seen_ || (event->type() == QEvent::Paint && !imgQuestion_->isLoading());
    return QDialog::eventFilter(watched, event);
}

} // namespace varnholt
