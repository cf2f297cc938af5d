#include "store/slide_wishes.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace varnholt {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(SlideWishes)
};

struct Switch
{
    const char* key;
    bool SlideWishes::*on;
    const char* words;
};

constexpr Switch switches[] = {
    {"fit", &SlideWishes::fitPictures, QT_TRANSLATE_NOOP("SlideWishes", "fitted pictures")},
    {"answersAfterEach", &SlideWishes::answersAfterEach,
     QT_TRANSLATE_NOOP("SlideWishes", "answers after each question")},
    {"titles", &SlideWishes::titles, QT_TRANSLATE_NOOP("SlideWishes", "titles for screen readers")},
    {"notes", &SlideWishes::answersInNotes,
     QT_TRANSLATE_NOOP("SlideWishes", "answers in the notes")},
    {"keyColumns", &SlideWishes::keyColumns, QT_TRANSLATE_NOOP("SlideWishes", "key in columns")}};

const QString moveOnKey = QStringLiteral("moveOn");

} // namespace

QJsonObject SlideWishes::toJson() const
{
    QJsonObject object;
    for (const Switch& wish : switches) {
        if (this->*wish.on) {
            object.insert(QLatin1String(wish.key), 1);
        }
    }
    if (moveOnSeconds > 0) {
        object.insert(moveOnKey, moveOnSeconds);
    }
    return object;
}

SlideWishes SlideWishes::fromJson(const QJsonObject& object)
{
    SlideWishes wishes;
    for (const Switch& wish : switches) {
        wishes.*wish.on = object.value(QLatin1String(wish.key)).toInt() != 0;
    }
    wishes.moveOnSeconds = std::clamp(object.value(moveOnKey).toInt(), 0, longestMoveOn);
    return wishes;
}

QString SlideWishes::inWords() const
{
    QStringList parts;
    for (const Switch& wish : switches) {
        if (this->*wish.on) {
            parts.append(Words::tr(wish.words));
        }
    }
    if (moveOnSeconds > 0) {
        parts.append(Words::tr("moving on after %n second(s)", nullptr, moveOnSeconds));
    }
    if (parts.isEmpty()) {
        return {};
    }
    parts.first().replace(0, 1, parts.first().at(0).toUpper());
    return Words::tr("%1.").arg(parts.join(Words::tr(", ")));
}

} // namespace varnholt
