#pragma once

#include <QLabel>

namespace varnholt {

/// A label that shows its text as large as it fits, and never asks for more room because of it.
class FittedLabel : public QLabel
{
    Q_OBJECT

public:
    /// `largestLines`: no line is higher than the label's height divided by it.
    FittedLabel(const char* objectName, qreal largestLines);

    [[nodiscard]] QSize sizeHint() const override { return minimumSizeHint(); }
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    qreal largestLines_;
};

} // namespace varnholt
