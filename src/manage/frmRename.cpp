#include "manage/frmRename.h"

#include "library/Library.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/controls.h"

#include <QBoxLayout>

namespace varnholt {

namespace {

QString titleFor(ItemKind kind)
{
    switch (kind) {
    case ItemKind::Assessment:
        return frmRename::tr("Rename Assessment");
    case ItemKind::Topic:
        return frmRename::tr("Rename Topic");
    default:
        return frmRename::tr("Rename Subtopic");
    }
}

QString takenHint(ItemKind kind)
{
    switch (kind) {
    case ItemKind::Assessment:
        return frmRename::tr("Another assessment has this name already. Both may have it.");
    case ItemKind::Topic:
        return frmRename::tr("Another topic has this name already. Both may have it.");
    default:
        return frmRename::tr("Another subtopic of the topic has this name already. Both may have "
                             "it.");
    }
}

} // namespace

frmRename::frmRename(Library& library, NamedItem item, QStringList others, QWidget* parent)
    : QDialog(parent)
    , library_(library)
    , item_(std::move(item))
    , others_(std::move(others))
{
    setObjectName(QStringLiteral("frmRename"));
    setWindowTitle(titleFor(item_.item.kind));
    buildControls();
    look();
}

void frmRename::buildControls()
{
    auto* lblName = makeLabel("lblName", tr("&New name:"));
    txtName_ = named(new LineEdit(item_.name), "txtName", tr("New name"));
    txtName_->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    txtName_->selectAll();
    lblName->setBuddy(txtName_);
    lblHint_ = new HintLabel("lblHint", txtName_, HintLabel::Place::Kept);
    cmdRename_ = makeButton("cmdRename", tr("&Rename"));
    cmdRename_->setDefault(true);
    auto* cmdCancel = makeButton("cmdCancel", tr("&Cancel"));
    cmdCancel->setAutoDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdRename_);
    buttons->addWidget(cmdCancel);
    auto* column = new QVBoxLayout(this);
    column->addWidget(lblName);
    column->addWidget(txtName_);
    column->addWidget(lblHint_);
    column->addStretch();
    column->addLayout(buttons);
    txtName_->setFocus();

    connect(txtName_, &QLineEdit::textChanged, this, &frmRename::look);
    connect(cmdRename_, &QPushButton::clicked, this, &frmRename::cmdRename_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmRename::reject);
}

QString frmRename::stored() const
{
    return Library::storedName(item_.item.kind, txtName_->text());
}

void frmRename::look()
{
    const QString refusal =
        stored().isEmpty() ? tr("A name is needed.") : ApostropheHint(txtName_->text());
    cmdRename_->setEnabled(refusal.isEmpty());
    const bool taken = refusal.isEmpty() && others_.contains(stored());
    lblHint_->say(taken ? takenHint(item_.item.kind) : refusal);
}

void frmRename::cmdRename_Click()
{
    if (stored() == item_.name) {
        reject();
        return;
    }
    try {
        library_.rename(item_.item, stored());
    } catch (const Error& error) {
        lblHint_->say(tr("The name was not changed. %1").arg(error.message()));
        return;
    }
    accept();
}

} // namespace varnholt
