#pragma once

#include "library/items.h"

#include <QDialog>
#include <QStringList>

class QPushButton;

namespace varnholt {

class HintLabel;
class Library;
class LineEdit;

/// Gives an assessment, topic or subtopic another name. Accepted when it has; what stands in the
/// way is said beside the name.
class frmRename : public QDialog
{
    Q_OBJECT

public:
    /// `others` are the names beside it. They may repeat, but that is said.
    frmRename(Library& library, NamedItem item, QStringList others, QWidget* parent = nullptr);

private:
    void buildControls();
    void look();
    void cmdRename_Click();
    [[nodiscard]] QString stored() const;

    Library& library_;
    NamedItem item_;
    QStringList others_;

    LineEdit* txtName_ = nullptr;
    HintLabel* lblHint_ = nullptr;
    QPushButton* cmdRename_ = nullptr;
};

} // namespace varnholt
