#include "manage/frmAddSeveral.h"

#include "store/errors.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/controls.h"
#include "toolkit/short_text.h"

#include <QBoxLayout>
#include <QPlainTextEdit>
#include <QShortcut>

namespace varnholt {

namespace {

/// More lines of refusals would be read by nobody.
constexpr qsizetype refusalsShown = 3;

} // namespace

TypedNames ReadNames(const QString& text)
{
    TypedNames read;
    int number = 0;
    for (const QString& line : text.split(u'\n')) {
        ++number;
        const QString name = OneLine(line).trimmed();
        if (name.isEmpty()) {
            continue;
        }
        read.names.append(name);
        if (const QString refusal = ApostropheHint(name); !refusal.isEmpty()) {
            read.refusals.append(frmAddSeveral::tr("Line %1: %2").arg(number).arg(refusal));
        }
    }
    return read;
}

frmAddSeveral::frmAddSeveral(Services& services, ItemKind kind,
                             std::function<void(const QStringList&)> add, QWidget* parent)
    : QDialog(parent)
    , services_(services)
    , add_(std::move(add))
{
    setObjectName(QStringLiteral("frmAddSeveral"));
    setWindowTitle(kind == ItemKind::Topic ? tr("Add Several Topics")
                                           : tr("Add Several Subtopics"));
    buildControls(kind);
    look();
}

void frmAddSeveral::buildControls(ItemKind kind)
{
    auto* lblNames =
        makeLabel("lblNames", kind == ItemKind::Topic ? tr("&Names of the new topics, one a line:")
                                                      : tr("&Names of the new subtopics, one a "
                                                           "line:"));
    txtNames_ = named(new QPlainTextEdit, "txtNames", tr("Names, one a line"));
    txtNames_->setTabChangesFocus(true);
    txtNames_->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtNames_->setMinimumSize(fontMetrics().averageCharWidth() * 50, fontMetrics().height() * 10);
    lblNames->setBuddy(txtNames_);
    lblHint_ = new HintLabel("lblHint", txtNames_, HintLabel::Place::Given);
    cmdAdd_ = makeButton("cmdAdd", tr("&Add"));
    cmdAdd_->setDefault(true);
    const QKeySequence addKeys(Qt::CTRL | Qt::Key_Return);
    cmdAdd_->setToolTip(addKeys.toString(QKeySequence::NativeText));
    auto* cmdCancel = makeButton("cmdCancel", tr("&Cancel"));
    cmdCancel->setAutoDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdAdd_);
    buttons->addWidget(cmdCancel);
    auto* column = new QVBoxLayout(this);
    column->addWidget(lblNames);
    column->addWidget(txtNames_, 1);
    column->addWidget(lblHint_);
    column->addLayout(buttons);
    txtNames_->setFocus();

    connect(txtNames_, &QPlainTextEdit::textChanged, this, &frmAddSeveral::look);
    connect(cmdAdd_, &QPushButton::clicked, this, &frmAddSeveral::cmdAdd_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmAddSeveral::reject);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        connect(new QShortcut(Qt::CTRL | key, this), &QShortcut::activated, cmdAdd_,
                &QPushButton::click);
    }
}

void frmAddSeveral::look()
{
    TypedNames typed = ReadNames(txtNames_->toPlainText());
    cmdAdd_->setEnabled(!typed.names.isEmpty() && typed.refusals.isEmpty());
    if (typed.refusals.size() > refusalsShown) {
        const int more = static_cast<int>(typed.refusals.size() - refusalsShown);
        typed.refusals = typed.refusals.mid(0, refusalsShown);
        typed.refusals.append(tr("%n more line(s) cannot be saved either.", nullptr, more));
    }
    lblHint_->say(typed.refusals.join(u'\n'));
}

void frmAddSeveral::cmdAdd_Click()
{
    try {
        add_(ReadNames(txtNames_->toPlainText()).names);
    } catch (const std::exception& failure) {
        const auto* known = dynamic_cast<const Error*>(&failure);
        lblHint_->say(tr("Nothing was added. %1").arg(known ? known->message() : QString()));
        return;
    }
    accept();
}

void frmAddSeveral::reject()
{
    // A stray Esc does not lose a list of names.
    if (ReadNames(txtNames_->toPlainText()).names.isEmpty() ||
        services_.messageBoxes->yesNo(windowTitle(),
                                      tr("Close without adding the names that you have typed?"))) {
        QDialog::reject();
    }
}

} // namespace varnholt
