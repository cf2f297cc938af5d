#pragma once

#include "library/PastTests.h"
#include "selection/draw_wishes.h"

#include <QGroupBox>

#include <vector>

class QLabel;
class QPushButton;

namespace varnholt {

class ComboBox;

/// The group "More" of the selection window: the class, which questions a draw prefers, and the way
/// to what can be asked of the slides.
class MoreFrame : public QGroupBox
{
    Q_OBJECT

public:
    explicit MoreFrame(QWidget* parent = nullptr);

    [[nodiscard]] DrawWishes wishes() const;
    /// Shows them without telling.
    void setWishes(const DrawWishes& wishes);
    /// The classes to choose from. What is typed stays, but the class that is chosen is shown under
    /// its name of today.
    void setClasses(const std::vector<ClassRecord>& classes);
    /// What stands beside them: "31 of 38 new for 10B", or nothing.
    void say(const QString& text);
    /// What is asked of the slides, beside the button for it.
    void saySlides(const QString& text);

    /// In the order of tabbing.
    [[nodiscard]] std::vector<QWidget*> controls() const;

Q_SIGNALS:
    /// She has typed or chosen something else.
    void wishesChanged();
    void slidesClicked();

private:
    /// Of the class whose name is typed, 0 for none of these.
    [[nodiscard]] std::int32_t typedClass() const;

    std::int32_t classId_ = 0;
    ComboBox* cboClass_ = nullptr;
    ComboBox* cboDraw_ = nullptr;
    QLabel* lblFresh_ = nullptr;
    QPushButton* cmdSlides_ = nullptr;
    QLabel* lblSlides_ = nullptr;
};

} // namespace varnholt
