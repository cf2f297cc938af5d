#pragma once

#include "library/PastTests.h"

#include <QGroupBox>

#include <array>

class QLabel;
class QPushButton;

namespace varnholt {

/// The newest past tests, to be made again with one press. Not there while there are none.
class RecentTests : public QGroupBox
{
    Q_OBJECT

public:
    static constexpr int rows = 3;

    explicit RecentTests(QWidget* parent = nullptr);

    /// The newest first; only the first `rows` are shown.
    void setTests(const std::vector<PastTest>& tests);
    /// In the order of tabbing.
    [[nodiscard]] std::vector<QWidget*> controls() const;

Q_SIGNALS:
    void makeAgain(const varnholt::PastTest& test);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showTexts();

    struct Row
    {
        QLabel* label = nullptr;
        QPushButton* button = nullptr;
    };
    std::array<Row, rows> rows_;
    std::vector<PastTest> tests_;
};

/// "3 March, 10B: Number, Algebra – 12 questions".
[[nodiscard]] QString TestInWords(const PastTest& test);

} // namespace varnholt
