#pragma once

#include "exchange/progress_label.h"
#include "exchange/work_view.h"

#include <QElapsedTimer>
#include <QScopedValueRollback>
#include <QWidget>

#include <memory>

class QLabel;
class QPushButton;

namespace varnholt {

class LongWork;
class ProgressBarLabels;

/// What the export and the import window have in common: a column of controls with a start
/// button, a progress bar made of two labels, and a run that goes on inside the button's
/// handler while the window repaints. A running window cannot be started a second time and
/// refuses to close.
class ExchangeWindow : public QWidget, protected WorkView
{
    Q_OBJECT

public:
    ~ExchangeWindow() override;

protected:
    ExchangeWindow(const char* objectName, const QString& title);

    /// Builds the column: title, controls, bar, button, the reason of a failure, and below it
    /// `followUp` if there is one. Enter presses `startButton` unless another button has the focus.
    void buildColumn(const QList<QWidget*>& controls, QPushButton* startButton,
                     QWidget* followUp = nullptr);

    /// Runs `work` unless it is running already.
    template <typename Work>
    void runOnce(Work work)
    {
        if (running_) {
            return;
        }
        const QScopedValueRollback running(running_, true);
        work(static_cast<WorkView&>(*this));
    }

    /// Keeps a sentence on show below the start button; nothing when it is empty.
    void explain(const QString& sentence) override;

    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void beginWork() override;
    void endWork() override;
    void showBar() override;
    void hideBar() override;
    ProgressLabel& backLabel() override;
    ProgressLabel& faceLabel() override;
    void progress(const QString& what, std::int64_t done, std::int64_t all) override;

    QPushButton* startButton_ = nullptr;
    QLabel* lblReason_ = nullptr;
    std::unique_ptr<ProgressBarLabels> bar_;
    std::unique_ptr<LongWork> work_;
    QElapsedTimer sinceBegin_;
    bool running_ = false;
};

} // namespace varnholt
