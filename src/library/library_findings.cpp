#include "library/library_findings.h"

#include "library/Library.h"
#include "pictures/picture_files.h"
#include "pictures/picture_info.h"
#include "store/library_file.h"
#include "store/plus_statements.h"
#include "store/statement.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <limits>
#include <unordered_set>

namespace varnholt {

namespace sql = plus_statements;

namespace {

constexpr int kinds = 4;
constexpr std::int64_t largestShownKey = std::numeric_limits<std::int16_t>::max();

class Look
{
public:
    Look(const QString& programFolder, const std::atomic<bool>& stop,
         const std::function<void(std::size_t, std::size_t)>& progress)
        : programFolder_(programFolder)
        , stop_(stop)
        , progress_(progress)
    {
        OpenLibraryDatabase(connection_, programFolder_, Connection::Access::ReadOnly);
    }

    std::vector<Finding> run()
    {
        if (!connection_.isSound(stop_)) {
            add({FindingKind::Damaged, {}, QFileInfo(connection_.path()).fileName(), {}, 0});
        }
        lookAtPlaces();
        lookAtNumbersAndTexts();
        lookForStrayPictures();
        lookAtPictures();
        return std::move(findings_);
    }

private:
    void add(Finding finding) { findings_.push_back(std::move(finding)); }
    void addRow(FindingKind kind, Item item)
    {
        Statement row(connection_, sql::SelectTrashTexts(static_cast<int>(item.kind)));
        row.bind(1, std::int64_t{item.key});
        Finding finding{kind, item, {}, {}, 0};
        if (row.next()) {
            finding.name = row.text(0);
            QStringList place;
            for (int above = 1; above < static_cast<int>(item.kind); ++above) {
                place.append(row.text(above));
            }
            place.removeAll(QString());
            finding.place = place.join(QStringLiteral(" > "));
        }
        add(std::move(finding));
    }

    void lookAtPlaces()
    {
        Statement rows(connection_, sql::SelectMisplaced);
        while (rows.next()) {
            addRow(rows.integer(1) ? FindingKind::PlaceMissing : FindingKind::PlaceDeleted,
                   {ItemKind::Question, static_cast<std::int32_t>(rows.integer(0))});
        }
    }

    void lookAtNumbersAndTexts()
    {
        for (int number = 1; number <= kinds; ++number) {
            const auto kind = static_cast<ItemKind>(number);
            Statement rows(connection_, sql::SelectWithApostrophe(number));
            while (rows.next()) {
                addRow(FindingKind::Apostrophe, {kind, static_cast<std::int32_t>(rows.integer(0))});
            }
            Statement large(connection_, sql::CountKeysAbove(number));
            large.bind(1, largestShownKey);
            if (large.next() && large.integer(0) > 0) {
                add({FindingKind::LargeKeys, {kind, 0}, {}, {}, large.integer(0)});
            }
        }
    }

    void lookForStrayPictures()
    {
        std::unordered_set<std::int64_t> keys;
        Statement rows(connection_, sql::SelectQuestionKeys);
        while (rows.next()) {
            keys.insert(rows.integer(0));
        }
        const QDir folder = QFileInfo(NewPictureFile(programFolder_, 0)).dir();
        const QRegularExpression picture(QStringLiteral(R"(\A([0-9]{1,9})\.[jJ][pP][gG]\z)"));
        for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden, QDir::Name)) {
            const auto match = picture.match(name);
            if (match.hasMatch() && !keys.contains(match.captured(1).toLongLong())) {
                add({FindingKind::PictureWithoutRow,
                     {ItemKind::Question, match.captured(1).toInt()},
                     name,
                     {},
                     0});
            }
        }
    }

    void lookAtPictures()
    {
        std::vector<std::int32_t> keys;
        Statement rows(connection_, sql::SelectQuestionsInUse);
        while (rows.next()) {
            keys.push_back(static_cast<std::int32_t>(rows.integer(0)));
        }
        for (std::size_t i = 0; i < keys.size() && !stop_; ++i) {
            try {
                static_cast<void>(readPictureInfo(FindPictureFile(programFolder_, keys[i])));
            } catch (const PictureError& error) {
                addRow(error.fault() == PictureFault::Missing ? FindingKind::PictureMissing
                                                              : FindingKind::PictureUnreadable,
                       {ItemKind::Question, keys[i]});
            }
            if (progress_) {
                progress_(i + 1, keys.size());
            }
        }
    }

    const QString& programFolder_;
    const std::atomic<bool>& stop_;
    const std::function<void(std::size_t, std::size_t)>& progress_;
    Connection connection_;
    std::vector<Finding> findings_;
};

QString withoutApostrophes(QString text)
{
    return text.replace(u'\'', QChar(0x2019));
}

} // namespace

std::vector<Finding>
LookThroughLibrary(const QString& programFolder, const std::atomic<bool>& stop,
                   const std::function<void(std::size_t done, std::size_t all)>& progress)
{
    return Look(programFolder, stop, progress).run();
}

Remedy RemedyFor(FindingKind kind)
{
    switch (kind) {
    case FindingKind::Damaged:
        return Remedy::RestoreBackup;
    case FindingKind::PictureWithoutRow:
        return Remedy::ShowFolder;
    case FindingKind::PictureMissing:
    case FindingKind::PictureUnreadable:
    case FindingKind::PlaceMissing:
        return Remedy::DeleteQuestion;
    case FindingKind::PlaceDeleted:
        return Remedy::RestorePlace;
    case FindingKind::Apostrophe:
        return Remedy::ReplaceApostrophe;
    case FindingKind::LargeKeys:
        break;
    }
    return Remedy::None;
}

bool ChangesLibrary(Remedy remedy)
{
    return remedy == Remedy::DeleteQuestion || remedy == Remedy::RestorePlace ||
           remedy == Remedy::ReplaceApostrophe;
}

RemedyResult ApplyRemedy(Library& library, Remedy remedy, const std::vector<Finding>& findings,
                         const std::map<std::int32_t, QString>& newNames)
{
    std::vector<Item> items;
    std::vector<NamedItem> texts;
    for (const Finding& finding : findings) {
        if (RemedyFor(finding.kind) == remedy) {
            items.push_back(finding.item);
            texts.push_back({finding.item, withoutApostrophes(finding.name)});
        }
    }
    RemedyResult result;
    if (remedy == Remedy::DeleteQuestion) {
        library.deleteRows(items);
    } else if (remedy == Remedy::ReplaceApostrophe) {
        library.replaceTexts(texts);
    } else if (remedy == Remedy::RestorePlace) {
        const RestoreResult restored = library.restore(items, newNames);
        if (restored.outcome == RestoreOutcome::NameTaken) {
            result.nameTaken = restored.obstacle;
        }
        for (const NamedItem& row : restored.back) {
            if (row.item.kind != ItemKind::Question) {
                result.placesBack.push_back(row.item);
            }
        }
    }
    return result;
}

} // namespace varnholt
