#pragma once

#include "show/show_wishes.h"
#include "store/slide_wishes.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QSpinBox;

namespace varnholt {

class ShowGroup;

/// The dialog "Slide Options": what a teacher asks of her slides beyond the plain ones, and how
/// a test is to be shown in class. Changes nothing; who opened it takes its wishes when it was
/// accepted.
class frmSlides : public QDialog
{
    Q_OBJECT

public:
    frmSlides(const SlideWishes& wishes, const ShowWishes& show, QWidget* parent = nullptr);

    [[nodiscard]] SlideWishes wishes() const;
    [[nodiscard]] ShowWishes showWishes() const;

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
    ShowGroup* fraShow_ = nullptr;
};

} // namespace varnholt
