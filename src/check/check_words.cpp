#include "check/check_words.h"

#include "toolkit/short_text.h"

namespace varnholt {

namespace {

constexpr qsizetype longestName = 120;

} // namespace

QString CheckWords::largeKeys(ItemKind kind, int count)
{
    switch (kind) {
    case ItemKind::Assessment:
        return tr("%n assessment(s) have a number above 32,767: deleting them fails.", nullptr,
                  count);
    case ItemKind::Topic:
        return tr("%n topic(s) have a number above 32,767: changing what is in them fails.",
                  nullptr, count);
    case ItemKind::Subtopic:
        return tr("%n subtopic(s) have a number above 32,767: changing what is in them fails.",
                  nullptr, count);
    default:
        break;
    }
    return tr("%n question(s) have a number above 32,767: editing them fails.", nullptr, count);
}

QString CheckWords::sentence(const Finding& finding)
{
    const QString name = ShortLine(finding.name, longestName);
    switch (finding.kind) {
    case FindingKind::Damaged:
        return tr("The file %1 is damaged: questions may be missing or wrong. Keep a "
                  "copy of it before you change anything.")
            .arg(name);
    case FindingKind::PictureMissing:
        return tr("The question with the answer %1 has no picture.").arg(name);
    case FindingKind::PictureUnreadable:
        return tr("The picture of the question with the answer %1 cannot be shown.").arg(name);
    case FindingKind::PictureWithoutRow:
        return tr("The picture %1 belongs to no question.").arg(name);
    case FindingKind::PlaceDeleted:
        return tr("The question with the answer %1 cannot be seen: its topic or subtopic "
                  "is deleted.")
            .arg(name);
    case FindingKind::PlaceMissing:
        return tr("The question with the answer %1 cannot be seen: the library does not "
                  "have the place where it is filed.")
            .arg(name);
    case FindingKind::LargeKeys:
        return largeKeys(finding.item.kind, static_cast<int>(finding.count));
    case FindingKind::Apostrophe:
        break;
    }
    return tr("%1 holds an apostrophe ('), with which it cannot be saved again.").arg(name);
}

QString CheckWords::caption(Remedy remedy)
{
    switch (remedy) {
    case Remedy::ShowFolder:
        return tr("Show Fo&lder");
    case Remedy::RestoreBackup:
        return tr("Re&store a Backup…");
    case Remedy::DeleteQuestion:
        return tr("To the Tra&sh");
    case Remedy::RestorePlace:
        return tr("Re&store Its Place");
    case Remedy::ReplaceApostrophe:
        return tr("Replace by ’");
    case Remedy::None:
        break;
    }
    return {};
}

QString CheckWords::done(Remedy remedy, int count)
{
    switch (remedy) {
    case Remedy::DeleteQuestion:
        return tr("%n question(s) are in the trash now.", nullptr, count);
    case Remedy::RestorePlace:
        return tr("The place of %n question(s) is back.", nullptr, count);
    case Remedy::ReplaceApostrophe:
        return tr("%n text(s) can be saved again.", nullptr, count);
    case Remedy::None:
    case Remedy::ShowFolder:
    case Remedy::RestoreBackup:
        break;
    }
    return {};
}

} // namespace varnholt
