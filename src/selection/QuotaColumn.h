#pragma once

#include "selection/draw_order.h"

#include <QWidget>

#include <vector>

class QLineEdit;

namespace varnholt {

class ListBox;

/// A small number field beside each row of a list of topics: how many questions the topic is to
/// give. An empty one leaves that to chance. Right leads from the list to the field of its current
/// row, Left back, Up and Down from field to field; for Tab all of them are one stop.
class QuotaColumn : public QWidget
{
    Q_OBJECT

public:
    /// The rows' data are the topics' keys. The list outlives the column.
    explicit QuotaColumn(ListBox* list, QWidget* parent = nullptr);

    /// The numbers of all topics, on show or not.
    [[nodiscard]] const Quotas& quotas() const { return quotas_; }
    /// Shows them without telling.
    void setQuotas(Quotas quotas);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void quotasChanged();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void layOut();
    QLineEdit* addField();
    /// Gives the focus to the field of a row, which is scrolled into view.
    void enter(int row);
    bool keyInField(int key, QLineEdit* field);

    ListBox* list_;
    /// Still sends events while the list is being destroyed.
    const QObject* viewport_;
    Quotas quotas_;
    /// Fields for the rows on show, from the first one.
    std::vector<QLineEdit*> fields_;
    int firstRow_ = 0;
};

} // namespace varnholt
