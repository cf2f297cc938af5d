#include "toolkit/HintLabel.h"

#include "store/statements.h"

#include <QLineEdit>

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
}

void HintLabel::watchForApostrophes(QLineEdit* field)
{
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
