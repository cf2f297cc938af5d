#include "selection/frmOverview.h"

#include "toolkit/HintLabel.h"
#include "toolkit/controls.h"
#include "toolkit/key_icon.h"
#include "toolkit/latin_key.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QSettings>
#include <QVBoxLayout>

namespace varnholt {

namespace {

const QString geometryKey = QStringLiteral("frmOverview/geometry");

} // namespace

frmOverview::frmOverview(Handlers handlers, QWidget* parent)
    : QDialog(parent)
    , handlers_(std::move(handlers))
{
    setObjectName(QStringLiteral("frmOverview"));
    setWindowTitle(tr("Overview"));
    lstQuestions_ = named(new QuestionStrip, "lstQuestions", tr("Accepted questions"));
    lstQuestions_->setMovable(true);
    lstQuestions_->installEventFilter(this);
    lblNote_ = new HintLabel("lblNote", lstQuestions_, HintLabel::Place::Kept);
    lblNote_->say(tr("Drag a question to another place, or move it with Ctrl and the arrow keys."));
    cmdSwap_ = makeButton("cmdSwap", tr("&Swap"));
    cmdSwap_->setIcon(keyIcon(QStringLiteral("S")));
    cmdSwap_->setToolTip(tr("Puts another question in the place of this one (S)."));
    auto* cmdCreate = makeButton("cmdCreate", tr("&Create"));
    cmdCreate->setToolTip(tr("Makes the slides of these questions."));
    auto* cmdBack = makeButton("cmdBack", tr("&Back to the Review"));
    cmdBack->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdSwap_);
    buttons->addStretch();
    buttons->addWidget(cmdCreate);
    buttons->addWidget(cmdBack);
    auto* column = new QVBoxLayout(this);
    column->addWidget(lstQuestions_, 1);
    column->addWidget(lblNote_);
    column->addLayout(buttons);
    connect(cmdSwap_, &QPushButton::clicked, this, &frmOverview::cmdSwap_Click);
    connect(cmdCreate, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdBack, &QPushButton::clicked, this, &QDialog::reject);
    connect(lstQuestions_, &QuestionStrip::reordered, this, [this] {
        handlers_.reorder(lstQuestions_->keys());
        refresh();
    });
    connect(this, &QDialog::finished, this,
            [this] { QSettings().setValue(geometryKey, saveGeometry()); });
    resizeWithinScreen(this, {fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 34});
    restoreGeometry(QSettings().value(geometryKey).toByteArray());
    refresh();
    lstQuestions_->setFocus();
}

void frmOverview::refresh()
{
    const int row = lstQuestions_->currentRow();
    lstQuestions_->setEntries(handlers_.entries());
    lstQuestions_->setCurrentRow(std::max(row, 0));
    cmdSwap_->setEnabled(lstQuestions_->count() > 0);
}

void frmOverview::cmdSwap_Click()
{
    if (!handlers_.swap(lstQuestions_->currentKey())) {
        lblNote_->say(tr("There is no other question to put in its place."));
        return;
    }
    lblNote_->say({});
    refresh();
}

void frmOverview::keyPressEvent(QKeyEvent* event)
{
    if (!takeKey(*event)) {
        QDialog::keyPressEvent(event);
    }
}

bool frmOverview::eventFilter(QObject* watched, QEvent* event)
{
    // Before the list takes a letter for the beginning of a text to be looked for.
    return (event->type() == QEvent::KeyPress && takeKey(*static_cast<QKeyEvent*>(event))) ||
           QDialog::eventFilter(watched, event);
}

bool frmOverview::takeKey(const QKeyEvent& event)
{
    if (LatinKey(event) != Qt::Key_S || event.modifiers() != Qt::NoModifier) {
        return false;
    }
    if (!event.isAutoRepeat()) {
        cmdSwap_->click();
    }
    return true;
}

} // namespace varnholt
