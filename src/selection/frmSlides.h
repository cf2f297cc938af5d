#pragma once

#include "store/slide_wishes.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QSpinBox;

namespace varnholt {

/// The dialog "Slide Options": what a teacher asks of her slides beyond the plain ones. Changes
/// nothing; who opened it takes its wishes when it was accepted.
class frmSlides : public QDialog
{
    Q_OBJECT

public:
    explicit frmSlides(const SlideWishes& wishes, QWidget* parent = nullptr);

    [[nodiscard]] SlideWishes wishes() const;
    /// What the presentation program cannot be given, in a whole sentence.
    void say(const QString& hint);

private:
    QGroupBox* buildSlides();
    void setWishes(const SlideWishes& wishes);

    QCheckBox* chkFit_ = nullptr;
    QComboBox* cboAnswers_ = nullptr;
    QCheckBox* chkTitles_ = nullptr;
    QCheckBox* chkNotes_ = nullptr;
    QCheckBox* chkMoveOn_ = nullptr;
    QSpinBox* txtSeconds_ = nullptr;
    QCheckBox* chkKeyColumns_ = nullptr;
    QLabel* lblHint_ = nullptr;
};

} // namespace varnholt
