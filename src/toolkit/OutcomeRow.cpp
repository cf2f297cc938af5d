#include "toolkit/OutcomeRow.h"

#include "toolkit/controls.h"
#include "toolkit/keys.h"

#include <QHBoxLayout>

#include <tuple>

namespace varnholt {

OutcomeRow::OutcomeRow(const QString& caption, QWidget* list)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(makeLabel("lblOutcome", caption));
    for (const auto& [name, text, key, outcome] :
         {std::tuple("cmdFew", tr("&1 Few"), Qt::Key_1, 1),
          std::tuple("cmdHalf", tr("&2 Half"), Qt::Key_2, 2),
          std::tuple("cmdMost", tr("&3 Most"), Qt::Key_3, 3),
          std::tuple("cmdUnknown", tr("&0 Not Noted"), Qt::Key_0, 0)}) {
        QPushButton* button = makeButton(name, text);
        button->setAutoDefault(true);
        row->addWidget(button);
        buttons_.push_back(button);
        connect(button, &QPushButton::clicked, this,
                [this, outcome = outcome] { Q_EMIT noted(outcome); });
        onKey(list, key, [button] { button->click(); });
    }
    onKey(list, QKeySequence::Delete, [this] { buttons_.back()->click(); });
}

void OutcomeRow::offer(bool offered, const QString& toolTip)
{
    for (QPushButton* button : buttons_) {
        button->setEnabled(offered);
        button->setToolTip(toolTip);
    }
}

} // namespace varnholt
