#pragma once

#include "class_results/ClassResults.h"

#include <QAbstractTableModel>

#include <vector>

namespace varnholt {

/// The questions of an assessment, or its subtopics, against the classes; sorted by any column.
class ResultsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum class Rows
    {
        Questions,
        Subtopics
    };
    /// Columns before those of anybody and the classes.
    static constexpr int fixedColumns = 2;

    /// The results outlive the model and tell it when they change, by `refresh`.
    ResultsModel(const ClassResults& results, Rows rows, QObject* parent);

    /// The results are others. Rows stay where they are as far as they are the same.
    void refresh(bool keepOrder);
    /// Only questions that were hard for all.
    void showHardOnly(bool hardOnly);

    /// The place of a row in the results.
    [[nodiscard]] std::size_t place(int row) const { return shown_[static_cast<std::size_t>(row)]; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    void sort(int column, Qt::SortOrder order) override;

private:
    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] std::int32_t key(std::size_t place) const;
    [[nodiscard]] QString text(std::size_t place, int column) const;
    [[nodiscard]] bool before(std::size_t a, std::size_t b, int column) const;

    const ClassResults& results_;
    Rows rows_;
    bool hardOnly_ = false;
    std::vector<std::size_t> shown_;
    /// Of the rows on show, as they were when they were put there.
    std::vector<std::int32_t> keys_;
};

/// What a cell says of a question's uses: "half knew it · 2 × · 3/3/26".
[[nodiscard]] QString UsesInCell(const UseSummary& uses);

} // namespace varnholt
