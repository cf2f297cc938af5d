#include "class_results/ResultsModel.h"

#include "selection/draw_wishes.h"
#include "toolkit/short_text.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <numeric>
#include <tuple>
#include <unordered_map>

namespace varnholt {

namespace {

constexpr qsizetype longestText = 200;

/// What went badly first, then what nobody has told of, what went well, and what was never used.
std::tuple<int, std::int64_t> orderOf(const UseSummary& use)
{
    const int rank = use.uses == 0                     ? 4
                     : use.outcome == Outcome::Few     ? 0
                     : use.outcome == Outcome::Half    ? 1
                     : use.outcome == Outcome::Unknown ? 2
                                                       : 3;
    return {rank, -use.lastUsed};
}

} // namespace

QString UsesInCell(const UseSummary& uses)
{
    if (uses.uses == 0) {
        return {};
    }
    QStringList parts{OutcomeInWords(uses.outcome),
                      ResultsModel::tr("%1 ×").arg(QLocale().toString(uses.uses)),
                      QLocale().toString(QDateTime::fromSecsSinceEpoch(uses.lastUsed).date(),
                                         QLocale::ShortFormat)};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

ResultsModel::ResultsModel(const ClassResults& results, Rows rows, QObject* parent)
    : QAbstractTableModel(parent)
    , results_(results)
    , rows_(rows)
{}

std::size_t ResultsModel::size() const
{
    return rows_ == Rows::Questions ? results_.questions.size() : results_.subtopics.size();
}

std::int32_t ResultsModel::key(std::size_t place) const
{
    return rows_ == Rows::Questions ? results_.questions[place].SOLIndex
                                    : static_cast<std::int32_t>(place);
}

void ResultsModel::refresh(bool keepOrder)
{
    beginResetModel();
    std::unordered_map<std::int32_t, std::size_t> old;
    for (std::size_t i = 0; keepOrder && i < keys_.size(); ++i) {
        old.emplace(keys_[i], i);
    }
    const auto oldPlace = [&](std::size_t place) {
        const auto found = old.find(key(place));
        return found == old.end() ? old.size() : found->second;
    };
    shown_.resize(size());
    std::iota(shown_.begin(), shown_.end(), std::size_t{0});
    if (hardOnly_ && rows_ == Rows::Questions) {
        std::erase_if(shown_, [this](std::size_t i) { return !results_.questions[i].hardForAll; });
    }
    std::stable_sort(shown_.begin(), shown_.end(),
                     [&](std::size_t a, std::size_t b) { return oldPlace(a) < oldPlace(b); });
    keys_.clear();
    for (const std::size_t place : shown_) {
        keys_.push_back(key(place));
    }
    endResetModel();
}

void ResultsModel::showHardOnly(bool hardOnly)
{
    hardOnly_ = hardOnly;
    refresh(true);
}

int ResultsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int ResultsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : fixedColumns + 1 + static_cast<int>(results_.classes.size());
}

QString ResultsModel::text(std::size_t place, int column) const
{
    const auto use = static_cast<std::size_t>(column - fixedColumns);
    if (rows_ == Rows::Subtopics) {
        const SubtopicCoverage& row = results_.subtopics[place];
        const QLocale locale;
        return column == 0 ? row.topic
               : column == 1
                   ? row.subtopic
                   : tr("%1 of %2")
                         .arg(locale.toString(row.used[use]), locale.toString(row.questions));
    }
    const QuestionResult& row = results_.questions[place];
    return column == 0 ? row.answer
           : column == 1
               ? (row.subtopic.isEmpty() ? row.topic : tr("%1 - %2").arg(row.topic, row.subtopic))
               : (row.uses.empty() ? QString() : UsesInCell(row.uses[use]));
}

QVariant ResultsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return ShortLine(text(place(index.row()), index.column()), longestText);
    case Qt::ToolTipRole:
        return text(place(index.row()), index.column()).toHtmlEscaped();
    case Qt::AccessibleTextRole: {
        const QString shown = text(place(index.row()), index.column());
        return shown.isEmpty() ? tr("Not used yet") : shown;
    }
    default:
        return {};
    }
}

QVariant ResultsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case 0:
        return rows_ == Rows::Questions ? tr("Answer") : tr("Topic");
    case 1:
        return rows_ == Rows::Questions ? tr("Topic") : tr("Subtopic");
    case fixedColumns:
        return tr("All");
    default:
        return ShortLine(
            results_.classes.at(static_cast<std::size_t>(section - fixedColumns - 1)).ClassName,
            longestText);
    }
}

bool ResultsModel::before(std::size_t a, std::size_t b, int column) const
{
    if (column < fixedColumns) {
        return QString::localeAwareCompare(text(a, column), text(b, column)) < 0;
    }
    const auto use = static_cast<std::size_t>(column - fixedColumns);
    if (rows_ == Rows::Questions) {
        const auto order = [&](std::size_t place) {
            const auto& uses = results_.questions[place].uses;
            return orderOf(uses.empty() ? UseSummary() : uses[use]);
        };
        return order(a) < order(b);
    }
    const auto part = [&](std::size_t place) {
        const SubtopicCoverage& row = results_.subtopics[place];
        return row.questions == 0 ? 1.0 : static_cast<double>(row.used[use]) / row.questions;
    };
    return part(a) < part(b);
}

void ResultsModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= columnCount()) {
        return;
    }
    Q_EMIT layoutAboutToBeChanged();
    std::stable_sort(shown_.begin(), shown_.end(), [&](std::size_t a, std::size_t b) {
        return order == Qt::AscendingOrder ? before(a, b, column) : before(b, a, column);
    });
    for (std::size_t i = 0; i < shown_.size(); ++i) {
        keys_[i] = key(shown_[i]);
    }
    Q_EMIT layoutChanged();
}

} // namespace varnholt
