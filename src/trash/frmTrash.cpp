#include "trash/frmTrash.h"

#include "library/Library.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/LongWork.h"
#include "toolkit/controls.h"
#include "toolkit/short_text.h"
#include "trash/TrashModel.h"

#include <QApplication>
#include <QGridLayout>
#include <QHeaderView>
#include <QLocale>
#include <QShortcut>
#include <QTableView>

#include <algorithm>
#include <set>

namespace varnholt {

namespace {

/// Typing goes on while the list waits.
constexpr int filterDelayMs = 150;
/// A question with more lines than these would be read by nobody.
constexpr int mostLines = 10;
constexpr qsizetype longestInQuestion = 80;

} // namespace

frmTrash::frmTrash(Services& services, Library& library, QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , library_(library)
{
    setObjectName(QStringLiteral("frmTrash"));
    setWindowTitle(tr("Trash"));
    const int line = fontMetrics().height();
    model_ = new TrashModel(library_, {line * 7, line * 4}, devicePixelRatioF());
    model_->QObject::setParent(this);
    buildControls();
    connectControls();
    reload();
    tblTrash_->selectRow(0);
}

frmTrash::~frmTrash() = default;

void frmTrash::buildControls()
{
    auto* lblFilter = makeLabel("lblFilter", tr("&Find:"));
    txtFilter_ = named(new LineEdit, "txtFilter", tr("Words to find in the trash"));
    txtFilter_->setClearButtonEnabled(true);
    txtFilter_->setPlaceholderText(tr("Words of the answer, the name or the old place"));
    lblFilter->setBuddy(txtFilter_);
    lblCount_ = makeLabel("lblCount");

    tblTrash_ = named(new QTableView, "tblTrash", tr("Deleted questions and names"));
    tblTrash_->setModel(model_);
    tblTrash_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tblTrash_->setTabKeyNavigation(false);
    tblTrash_->setShowGrid(false);
    tblTrash_->setAlternatingRowColors(true);
    const int line = fontMetrics().height();
    tblTrash_->setIconSize({line * 7, line * 4});
    tblTrash_->verticalHeader()->hide();
    tblTrash_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    tblTrash_->verticalHeader()->setDefaultSectionSize(line * 4 + line / 2);
    QHeaderView* header = tblTrash_->horizontalHeader();
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setSectionResizeMode(TrashModel::What, QHeaderView::Stretch);
    header->setSectionResizeMode(TrashModel::Place, QHeaderView::Stretch);
    header->setSectionResizeMode(TrashModel::Deleted, QHeaderView::Interactive);
    header->resizeSection(TrashModel::Deleted, fontMetrics().averageCharWidth() * 22);

    lblEmpty_ = makeLabel("lblEmpty");
    lblEmpty_->setAlignment(Qt::AlignCenter);
    lblEmpty_->setWordWrap(true);
    lblEmpty_->setForegroundRole(QPalette::PlaceholderText);
    lblNote_ = new HintLabel("lblNote", tblTrash_, HintLabel::Place::Kept);
    cmdUndo_ = makeButton("cmdUndo", tr("Undo (Ctrl+Z)"));
    cmdUndo_->setAutoDefault(true);
    cmdRestore_ = makeButton("cmdRestore", tr("Re&store"));
    cmdRestore_->setAutoDefault(true);

    auto* grid = new QGridLayout(this);
    grid->addWidget(lblFilter, 0, 0);
    grid->addWidget(txtFilter_, 0, 1);
    grid->addWidget(lblCount_, 0, 2, 1, 2);
    grid->addWidget(tblTrash_, 1, 0, 1, 4);
    grid->addWidget(lblEmpty_, 1, 0, 1, 4);
    grid->addWidget(lblNote_, 2, 0, 1, 2);
    grid->addWidget(cmdUndo_, 2, 2);
    grid->addWidget(cmdRestore_, 2, 3);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(1, 1);
    setTabOrder(txtFilter_, tblTrash_);
    setTabOrder(tblTrash_, cmdRestore_);
    setTabOrder(cmdRestore_, cmdUndo_);
}

void frmTrash::connectControls()
{
    filterSoon_.setSingleShot(true);
    filterSoon_.setInterval(filterDelayMs);
    connect(&filterSoon_, &QTimer::timeout, this, &frmTrash::filterNow);
    connect(txtFilter_, &QLineEdit::textChanged, &filterSoon_, qOverload<>(&QTimer::start));
    const auto toTheList = [this] {
        filterNow();
        tblTrash_->setFocus();
    };
    connect(txtFilter_, &QLineEdit::returnPressed, this, toTheList);
    connect(new QShortcut(Qt::Key_Down, txtFilter_, nullptr, nullptr, Qt::WidgetShortcut),
            &QShortcut::activated, this, toTheList);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        connect(new QShortcut(key, tblTrash_, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, this, &frmTrash::cmdRestore_Click);
    }
    connect(tblTrash_, &QTableView::doubleClicked, this, &frmTrash::cmdRestore_Click);
    connect(tblTrash_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &frmTrash::showState);
    connect(cmdRestore_, &QPushButton::clicked, this, &frmTrash::cmdRestore_Click);
    connect(cmdUndo_, &QPushButton::clicked, this, &frmTrash::cmdUndo_Click);
    connect(
        new QShortcut(Qt::CTRL | Qt::Key_Z, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
        &QShortcut::activated, this, &frmTrash::cmdUndo_Click);
}

void frmTrash::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    focusList();
}

void frmTrash::focusList()
{
    QWidget* place = tblTrash_;
    if (tblTrash_->isHidden()) {
        // Of an empty trash the window itself: Ctrl+Z goes on working.
        place = txtFilter_->isEnabled() ? static_cast<QWidget*>(txtFilter_) : this;
    }
    place->setFocus();
}

void frmTrash::reload()
{
    const int row = tblTrash_->currentIndex().row();
    try {
        model_->reload();
    } catch (const DatabaseError& error) {
        services_.messageBoxes->inform(tr("Database Error"), error.message());
    }
    tblTrash_->selectRow(std::min(std::max(row, 0), model_->rowCount() - 1));
    showState();
}

void frmTrash::filterNow()
{
    if (!filterSoon_.isActive()) {
        return;
    }
    filterSoon_.stop();
    try {
        model_->setFilter(txtFilter_->text());
    } catch (const DatabaseError& error) {
        services_.messageBoxes->inform(tr("Database Error"), error.message());
    }
    tblTrash_->selectRow(0);
    showState();
}

void frmTrash::showState()
{
    const bool anything = model_->rowCount() > 0;
    const bool empty = model_->size() == 0;
    if (!anything) {
        lblEmpty_->setText(empty ? tr("The trash is empty. Whatever you delete can be found here "
                                      "and brought back.")
                                 : tr("Nothing in the trash holds these words."));
    }
    QWidget* focus = QApplication::focusWidget();
    const bool hadFocus = focus && (focus == this || isAncestorOf(focus));
    tblTrash_->setVisible(anything);
    lblEmpty_->setVisible(!anything);
    txtFilter_->setEnabled(!empty || !txtFilter_->text().isEmpty());
    const QLocale locale;
    lblCount_->setText(static_cast<std::size_t>(model_->rowCount()) == model_->size()
                           ? tr("%1 deleted").arg(locale.toString(model_->rowCount()))
                           : tr("%1 of %2 deleted")
                                 .arg(locale.toString(model_->rowCount()),
                                      locale.toString(static_cast<qulonglong>(model_->size()))));
    const FeatureState features = library_.features();
    cmdRestore_->setEnabled(features.on && tblTrash_->selectionModel()->hasSelection());
    cmdRestore_->setToolTip(features.reason);
    if (!features.on) {
        say(features.reason, false);
    }
    cmdUndo_->setVisible(step_.has_value());
    if (hadFocus && (focus == this || focus->isHidden() || !focus->isEnabled())) {
        focusList();
    }
}

void frmTrash::say(const QString& sentence, bool withUndo)
{
    lblNote_->say(sentence);
    if (!withUndo) {
        step_.reset();
    } else if (const std::optional<StepInfo> newest = library_.undoStep()) {
        step_ = newest->step;
    }
    cmdUndo_->setVisible(step_.has_value());
}

std::vector<Item> frmTrash::selectedItems() const
{
    QModelIndexList rows = tblTrash_->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    std::vector<Item> items;
    for (const QModelIndex& row : rows) {
        items.push_back(model_->item(row.row()));
    }
    return items;
}

std::vector<Item> frmTrash::agreed(const std::vector<Item>& items)
{
    std::set<Item> coming(items.begin(), items.end());
    std::vector<Item> possible;
    std::vector<NamedItem> withoutPlace;
    QStringList also;
    {
        LongWork work(this, tr("Looking for the old places…"), LongWork::Cancel::Offered);
        for (const Item item : items) {
            work.progress(static_cast<int>(possible.size()), static_cast<int>(items.size()));
            const RestorePlan plan = library_.planRestore(item);
            if (plan.placeMissing) {
                withoutPlace.push_back(plan.item);
                continue;
            }
            possible.push_back(item);
            QStringList names;
            for (const NamedItem& row : plan.alsoBack) {
                if (coming.insert(row.item).second) {
                    names.append(ShortLine(row.name, longestInQuestion));
                }
            }
            if (!names.isEmpty()) {
                also.append(names.join(QStringLiteral(" > ")));
            }
        }
    }
    if (!withoutPlace.empty()) {
        const QString first = NameInWords(withoutPlace.front());
        services_.messageBoxes->inform(
            tr("Restore"),
            withoutPlace.size() == 1
                ? tr("%1 cannot be brought back. The library no longer has the place where it was, "
                     "so that nobody would see it.")
                      .arg(first)
                : tr("%n of these cannot be brought back, %1 among them. The library no longer has "
                     "the places where they were, so that nobody would see them.",
                     nullptr, static_cast<int>(withoutPlace.size()))
                      .arg(first));
    }
    if (also.isEmpty()) {
        return possible;
    }
    if (also.size() > mostLines) {
        const auto more = also.size() - mostLines;
        also = also.mid(0, mostLines);
        also.append(tr("and %n more", nullptr, static_cast<int>(more)));
    }
    const bool wanted = services_.messageBoxes->yesNo(
        tr("Restore?"),
        also.size() == 1 ? tr("Also brings back: %1").arg(also.front())
                         : tr("Also brings back:\n%1").arg(also.join(u'\n')),
        MessageBoxes::Answer::Yes);
    return wanted ? possible : std::vector<Item>();
}

void frmTrash::restore(const std::vector<Item>& items)
{
    std::map<std::int32_t, QString> newNames;
    for (;;) {
        RestoreResult result;
        {
            LongWork work(this, tr("Restoring…"), LongWork::Cancel::Offered);
            result = library_.restore(items, newNames, [&](std::size_t done) {
                work.progress(static_cast<int>(done), static_cast<int>(items.size()));
            });
        }
        if (result.outcome == RestoreOutcome::Done) {
            const NamedItem& first = result.back.front();
            reload();
            say(result.back.size() == 1 ? tr("%1 is back.").arg(NameInWords(first))
                                        : tr("%1 and %n more are back.", nullptr,
                                             static_cast<int>(result.back.size()) - 1)
                                              .arg(NameInWords(first)),
                true);
            return;
        }
        if (result.outcome != RestoreOutcome::NameTaken) {
            reload();
            say(tr("Nothing has come back: the library has changed meanwhile."), false);
            return;
        }
        const QString name = services_.messageBoxes->inputText(
            tr("Name Taken"),
            tr("Another assessment is called %1 now. Name for the one that comes back:")
                .arg(ShortLine(result.obstacle->name, longestInQuestion)),
            newNames[result.obstacle->item.key].isEmpty() ? result.obstacle->name
                                                          : newNames[result.obstacle->item.key]);
        if (name.isEmpty()) {
            return;
        }
        newNames[result.obstacle->item.key] = name;
    }
}

void frmTrash::cmdRestore_Click()
{
    if (!cmdRestore_->isEnabled()) {
        return;
    }
    try {
        const std::vector<Item> items = agreed(selectedItems());
        if (!items.empty()) {
            restore(items);
        }
    } catch (const Cancelled&) {
        say(tr("Stopped. Nothing has come back."), false);
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Restore"), error.message());
        reload();
    }
}

void frmTrash::cmdUndo_Click()
{
    if (!step_) {
        return;
    }
    try {
        const std::optional<StepInfo> newest = library_.undoStep();
        const UndoOutcome outcome =
            newest && newest->step == *step_ ? library_.undo() : UndoOutcome();
        reload();
        tblTrash_->setFocus();
        if (outcome.result == UndoOutcome::Result::Done) {
            say(tr("Undone: what had come back is in the trash again."), false);
        } else if (outcome.inTheWay.empty()) {
            say(tr("There is nothing to undo any more."), false);
        } else {
            say(tr("It cannot be undone: %1 has changed since.")
                    .arg(NameInWords(outcome.inTheWay.front())),
                false);
        }
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Undo"), error.message());
    }
}

} // namespace varnholt
