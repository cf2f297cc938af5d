#pragma once

#include "show/show_wishes.h"

#include <QGroupBox>

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace varnholt {

/// The group "Show in Class" of a dialog: how a test is to be shown.
class ShowGroup : public QGroupBox
{
    Q_OBJECT

public:
    explicit ShowGroup(QWidget* parent = nullptr);

    [[nodiscard]] ShowWishes wishes() const;
    void setWishes(const ShowWishes& wishes);

private:
    QLineEdit* txtShowSeconds_ = nullptr;
    QComboBox* cboShowAnswers_ = nullptr;
    QCheckBox* chkShowMoveOn_ = nullptr;
};

} // namespace varnholt
