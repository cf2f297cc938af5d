#include "toolkit/HintLabel.h"

#include "store/statements.h"

#include <QLineEdit>
#include <QToolButton>

namespace varnholt {

HintLabel::HintLabel(const char* objectName, QWidget* field, Place place)
    : field_(field)
{
    setObjectName(QLatin1String(objectName));
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setAutoFillBackground(true);
    setMargin(fontMetrics().height() / 5);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setRetainSizeWhenHidden(place == Place::Kept);
    setSizePolicy(policy);
    hide();
}

void HintLabel::say(const QString& sentence)
{
    // The last sentence stays in the hidden label: its height is the place kept free.
    if (!sentence.isEmpty()) {
        setText(sentence);
    }
    setVisible(!sentence.isEmpty());
    field_->setAccessibleDescription(sentence);
    placeButton();
}

void HintLabel::offerTypographic(QLineEdit* field)
{
    replaceIn_ = field;
    cmdReplace_ = new QToolButton(this);
    cmdReplace_->setObjectName(QStringLiteral("cmdReplaceApostrophes"));
    cmdReplace_->setText(tr("Use ’"));
    cmdReplace_->setAccessibleName(tr("Use ’ instead of each apostrophe"));
    cmdReplace_->setFocusPolicy(Qt::TabFocus);
    cmdReplace_->hide();
    connect(cmdReplace_, &QToolButton::clicked, this, [this] {
        const int cursor = replaceIn_->cursorPosition();
        QString text = replaceIn_->text();
        replaceIn_->selectAll();
        // As typing does, so that it can be taken back.
        replaceIn_->insert(text.replace(u'\'', u'’'));
        replaceIn_->setCursorPosition(cursor);
        Q_EMIT replaceIn_->textEdited(replaceIn_->text());
        replaceIn_->setFocus();
    });
}

void HintLabel::placeButton()
{
    if (!cmdReplace_) {
        return;
    }
    const bool wanted = !isHidden() && !statements::canHold(replaceIn_->text());
    const QSize size(cmdReplace_->sizeHint().width(), fontMetrics().height() + 2 * margin() - 2);
    cmdReplace_->setGeometry(width() - size.width() - 1, (height() - size.height()) / 2,
                             size.width(), size.height());
    cmdReplace_->setVisible(wanted);
    setContentsMargins(0, 0, wanted ? size.width() + margin() : 0, 0);
}

void HintLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    placeButton();
}

void HintLabel::watchForApostrophes(QLineEdit* field)
{
    offerTypographic(field);
    const auto look = [this](const QString& text) { say(ApostropheHint(text)); };
    connect(field, &QLineEdit::textChanged, this, look);
    look(field->text());
}

QString ApostropheHint(const QString& text)
{
    return statements::canHold(text)
               ? QString()
               : HintLabel::tr("An apostrophe (') cannot be saved. Use ’ instead.");
}

} // namespace varnholt
