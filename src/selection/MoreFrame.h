#pragma once

#include "selection/draw_wishes.h"

#include <QGroupBox>
#include <QStringList>

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
    /// The classes to choose from. What is typed stays.
    void setClasses(const QStringList& names);
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
    ComboBox* cboClass_ = nullptr;
    ComboBox* cboDraw_ = nullptr;
    QLabel* lblFresh_ = nullptr;
    QPushButton* cmdSlides_ = nullptr;
    QLabel* lblSlides_ = nullptr;
};

} // namespace varnholt
