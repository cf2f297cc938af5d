#include "manage/answer_hint.h"

#include "toolkit/HintLabel.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QLineEdit>

namespace varnholt {

namespace {

/// Points from the left edge of a line's letters to the right edge of the slide.
constexpr double keyLineWidth = 960 - 7.2;
constexpr int keyTextSize = 18;

bool leavesTheSlide(const QString& answer)
{
    // Presentation programs differ in their face; this one is as wide as any of them.
    QFont font(QStringLiteral("Arial"));
    // A pixel stands for a point.
    font.setPixelSize(keyTextSize);
    const QString line = QStringLiteral("100) ") + answer.trimmed();
    return QFontMetricsF(font).horizontalAdvance(line) > keyLineWidth;
}

} // namespace

QString AnswerHint(const QString& answer)
{
    const QString refusal = ApostropheHint(answer);
    if (!refusal.isEmpty() || !leavesTheSlide(answer)) {
        return refusal;
    }
    return QCoreApplication::translate(
        "AnswerHint",
        "This is too long for one line of the answer key: its end will run off the slide.");
}

void WatchAnswer(HintLabel* hint, QLineEdit* field)
{
    const auto look = [hint](const QString& answer) { hint->say(AnswerHint(answer)); };
    QObject::connect(field, &QLineEdit::textChanged, hint, look);
    look(field->text());
}

} // namespace varnholt
