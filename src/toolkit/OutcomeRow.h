#pragma once

#include <QWidget>

#include <vector>

class QPushButton;

namespace varnholt {

/// How many pupils knew the questions that are chosen in a list: a button each for few, half, most
/// and not noted, which the keys 1, 2, 3 and 0 press in the list as well; Delete there is 0.
class OutcomeRow : public QWidget
{
    Q_OBJECT

public:
    OutcomeRow(const QString& caption, QWidget* list);

    /// Whether it can be said now, and why or why not.
    void offer(bool offered, const QString& toolTip);
    /// In their order.
    [[nodiscard]] const std::vector<QPushButton*>& buttons() const { return buttons_; }

Q_SIGNALS:
    /// 1 few, 2 half, 3 most, 0 not noted. Only while it is offered.
    void noted(int outcome);

private:
    std::vector<QPushButton*> buttons_;
};

} // namespace varnholt
