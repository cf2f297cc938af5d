#pragma once

#include "selection/QuestionStrip.h"

#include <QDialog>

#include <functional>
#include <vector>

class QPushButton;

namespace varnholt {

class HintLabel;

/// All questions that a review has accepted, as small pictures: to be dragged into another order,
/// swapped or taken out, and then made into slides. Modal; the review does what is asked of it.
class frmOverview : public QDialog
{
    Q_OBJECT

public:
    struct Handlers
    {
        /// The accepted questions in their order; keys are positions in the draw pool.
        std::function<std::vector<StripEntry>()> entries;
        /// Another question in the place of one; false when there is none.
        std::function<bool(std::int32_t position)> swap;
        /// The accepted questions come in this order of their positions.
        std::function<void(const std::vector<std::int32_t>& positions)> reorder;
    };

    frmOverview(Handlers handlers, QWidget* parent);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void cmdSwap_Click();
    /// True for a key that is the window's own.
    bool takeKey(const QKeyEvent& event);
    void refresh();

    Handlers handlers_;
    QuestionStrip* lstQuestions_ = nullptr;
    HintLabel* lblNote_ = nullptr;
    QPushButton* cmdSwap_ = nullptr;
};

} // namespace varnholt
