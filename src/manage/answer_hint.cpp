#include "manage/answer_hint.h"

#include "toolkit/HintLabel.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QLineEdit>

namespace varnholt {

namespace {

/// Points from the left edge of a line's letters to the right edge of the slide, and to the edge
/// of the line's own box, within which some presentation programs wrap it.
constexpr double keySlideWidth = 960 - 7.2;
constexpr double keyBoxWidth = 100 - 2 * 7.2;
constexpr int keyTextSize = 18;

double keyLineWidth(const QString& number, const QString& answer)
{
    // Presentation programs differ in their face; this one is as wide as any of them.
    QFont font(QStringLiteral("Arial"));
    // A pixel stands for a point.
    font.setPixelSize(keyTextSize);
    return QFontMetricsF(font).horizontalAdvance(number + QStringLiteral(") ") + answer.trimmed());
}

} // namespace

QString AnswerHint(const QString& answer)
{
    const auto tr = [](const char* sentence) {
        return QCoreApplication::translate("AnswerHint", sentence);
    };
    const QString refusal = ApostropheHint(answer);
    if (!refusal.isEmpty()) {
        return refusal;
    }
    if (keyLineWidth(QStringLiteral("100"), answer) > keySlideWidth) {
        return tr("This is too long for one line of the answer key: its end will run off the "
                  "slide.");
    }
    return keyLineWidth(QStringLiteral("1"), answer) > keyBoxWidth
               ? tr("Only about nine letters fit on a line of the answer key: PowerPoint wraps "
                    "this one over the next answer.")
               : QString();
}

void WatchAnswer(HintLabel* hint, QLineEdit* field)
{
    hint->offerTypographic(field);
    const auto look = [hint](const QString& answer) { hint->say(AnswerHint(answer)); };
    QObject::connect(field, &QLineEdit::textChanged, hint, look);
    look(field->text());
}

} // namespace varnholt
