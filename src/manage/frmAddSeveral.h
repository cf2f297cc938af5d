#pragma once

#include "library/items.h"

#include <QDialog>
#include <QStringList>

#include <functional>

class QPlainTextEdit;
class QPushButton;

namespace varnholt {

class HintLabel;
struct Services;

/// The names that somebody has typed, one a line.
struct TypedNames
{
    /// Without blanks around them and without empty lines.
    QStringList names;
    /// Why they cannot all be added, a sentence for each such line; nothing is added then.
    QStringList refusals;
};

[[nodiscard]] TypedNames ReadNames(const QString& text);

/// Adds several topics or subtopics at once, by the rules of single ones. Accepted when it has.
class frmAddSeveral : public QDialog
{
    Q_OBJECT

public:
    /// `add` adds all of the names, or none and throws.
    frmAddSeveral(Services& services, ItemKind kind, std::function<void(const QStringList&)> add,
                  QWidget* parent = nullptr);

    void reject() override;

private:
    void buildControls(ItemKind kind);
    void look();
    void cmdAdd_Click();

    Services& services_;
    std::function<void(const QStringList&)> add_;

    QPlainTextEdit* txtNames_ = nullptr;
    HintLabel* lblHint_ = nullptr;
    QPushButton* cmdAdd_ = nullptr;
};

} // namespace varnholt
