// How the library manager renames, adds several at once, and what it offers beside its buttons.
#include "manage/frmManage.h"

#include "library/Library.h"
#include "manage/frmAddSeveral.h"
#include "manage/frmRename.h"
#include "manage/structure_maintenance.h"
#include "toolkit/ComboBox.h"
#include "toolkit/PictureView.h"

#include <QMenu>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>

namespace varnholt {

namespace {

/// An entry that presses a button.
void addPress(QMenu* menu, QPushButton* button)
{
    QAction* action = menu->addAction(button->text());
    QObject::connect(action, &QAction::triggered, button, &QPushButton::click);
    QObject::connect(menu, &QMenu::aboutToShow, action, [action, button] {
        action->setEnabled(button->isEnabled());
        action->setVisible(!button->isHidden());
    });
}

} // namespace

void frmManage::buildMenus()
{
    addMenu(cboAssessment_, cmdAssessmentMore_, ItemKind::Assessment,
            {cmdAddAssessment_, cmdDeleteAssessment_});
    addMenu(lstTopics_, cmdTopicMore_, ItemKind::Topic, {cmdNewTopic_, cmdDeleteTopic_});
    addMenu(lstSubtopics_, cmdSubtopicMore_, ItemKind::Subtopic,
            {cmdNewSubtopic_, cmdDeleteSubtopic_});

    auto* picture = new QMenu(imgQuestion_);
    addPress(picture, cmdEditQuestion_);
    addPress(picture, cmdEditPicture_);
    addPress(picture, cmdDeleteQuestion_);
    imgQuestion_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(imgQuestion_, &QWidget::customContextMenuRequested, this,
            [this, picture](QPoint at) { picture->popup(imgQuestion_->mapToGlobal(at)); });
}

void frmManage::addMenu(QWidget* control, QPushButton* more, ItemKind kind,
                        const std::vector<QPushButton*>& buttons)
{
    auto* menu = new QMenu(control);
    // What follows the tab is shown as the key.
    QAction* rename = menu->addAction(tr("&Rename…") + QStringLiteral("\tF2"));
    connect(rename, &QAction::triggered, this, [this, kind] { this->rename(kind); });
    QAction* several = nullptr;
    if (kind != ItemKind::Assessment) {
        several = menu->addAction(kind == ItemKind::Topic ? tr("Add &Several Topics…")
                                                          : tr("Add &Several Subtopics…"));
        connect(several, &QAction::triggered, this, [this, kind] { addSeveral(kind); });
    }
    menu->addSeparator();
    for (QPushButton* button : buttons) {
        addPress(menu, button);
    }
    menu->setToolTipsVisible(true);
    connect(menu, &QMenu::aboutToShow, this, [=, this] {
        const FeatureState features = library_.features();
        rename->setEnabled(features.on && currentItem(kind));
        rename->setToolTip(features.reason);
        if (several) {
            several->setEnabled(buttons.front()->isEnabled());
        }
    });
    more->setMenu(menu);

    control->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(control, &QWidget::customContextMenuRequested, this, [=](QPoint at) {
        if (auto* list = qobject_cast<ListBox*>(control)) {
            // The menu is about the row under the pointer.
            const QModelIndex row = list->indexAt(at);
            if (row.isValid() && row.row() != list->listIndex()) {
                list->setListIndex(row.row());
            }
        }
        menu->popup(control->mapToGlobal(at));
    });
    auto* key = new QShortcut(Qt::Key_F2, control, nullptr, nullptr, Qt::WidgetShortcut);
    key->setAutoRepeat(false);
    connect(key, &QShortcut::activated, this, [this, kind] { this->rename(kind); });
}

std::optional<NamedItem> frmManage::currentItem(ItemKind kind) const
{
    if (kind == ItemKind::Assessment) {
        const int entry = cboAssessment_->listIndex();
        return entry < 0 ? std::nullopt
                         : std::optional(NamedItem{{kind, cboAssessment_->entryData(entry)},
                                                   cboAssessment_->itemText(entry)});
    }
    const ListBox& list = *(kind == ItemKind::Topic ? lstTopics_ : lstSubtopics_);
    const int row = list.listIndex();
    return row < 0 ? std::nullopt
                   : std::optional(NamedItem{{kind, list.itemData(row)}, list.itemText(row)});
}

QStringList frmManage::namesBeside(const NamedItem& item) const
{
    QStringList names;
    if (item.item.kind == ItemKind::Assessment) {
        for (const AssessmentRecord& record : state_.AssessmentList) {
            names.append(record.AssessmentName);
        }
    } else {
        for (const ListBox::Row& row :
             (item.item.kind == ItemKind::Topic ? lstTopics_ : lstSubtopics_)->rows()) {
            names.append(row.text);
        }
    }
    names.removeOne(item.name);
    return names;
}

void frmManage::rename(ItemKind kind)
{
    const std::optional<NamedItem> item = currentItem(kind);
    if (!item) {
        return;
    }
    if (const FeatureState features = library_.features(); !features.on) {
        say(features.reason);
        return;
    }
    {
        const QScopedValueRollback open(inDialog_, true);
        frmRename(library_, *item, namesBeside(*item), window()).exec();
    }
    if (!changed_.empty()) {
        loadReporting([this] { refresh(currentPlace()); });
    }
}

void frmManage::addSeveral(ItemKind kind)
{
    const bool topics = kind == ItemKind::Topic;
    const auto add = [&](const QStringList& names) {
        if (topics) {
            library_.addTopics(state_.CurrentAssessmentNum, names);
        } else {
            library_.addSubtopics(state_.CurrentAssessmentNum,
                                  toInt16(currentRows().topicId.value()), names);
        }
    };
    {
        const QScopedValueRollback open(inDialog_, true);
        frmAddSeveral(services_, kind, add, window()).exec();
    }
    if (!changed_.empty()) {
        loadReporting([this] { refresh(currentPlace()); });
        ListBox* list = topics ? lstTopics_ : lstSubtopics_;
        list->reveal(list->listCount() - 1);
        list->setFocus();
    }
}

} // namespace varnholt
