#pragma once

#include "exchange/exchange_progress.h"
#include "toolkit/LongWork.h"

#include <QElapsedTimer>
#include <QScopedValueRollback>
#include <QWidget>

#include <memory>

class QLabel;
class QPushButton;

namespace varnholt {

class ProgressBarLabels;

/// What the export and the import window have in common: a column of controls with a start
/// button, a progress bar made of two labels, and a run that goes on inside the button's
/// handler while the window repaints. A running window cannot be started a second time and
/// refuses to close.
class ExchangeWindow : public QWidget
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
    void runOnce(const Work& work)
    {
        if (running_) {
            return;
        }
        const QScopedValueRollback running(running_, true);
        explain(QString());
        work();
        hideBar();
    }

    /// A stretch of `work` during which the pointer is busy and the program's windows take no
    /// input; gives back its result. Messages come after it.
    template <typename Work>
    auto busily(const Work& work)
    {
        const LongWork busy;
        sinceBegin_.start();
        return work();
    }

    /// Shows in the bar what goes on. Work that takes longer than half a second gets the bar on
    /// show.
    [[nodiscard]] ExchangeProgress progress();
    void showBar();
    void hideBar();

    /// Keeps a sentence on show below the start button; nothing when it is empty.
    void explain(const QString& sentence);
    /// The same with what is known of a failure.
    void explain(const std::exception& failure);

    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showProgress(const QString& caption, std::int64_t done, std::int64_t all);

    QPushButton* startButton_ = nullptr;
    QLabel* lblReason_ = nullptr;
    std::unique_ptr<ProgressBarLabels> bar_;
    QElapsedTimer sinceBegin_;
    bool running_ = false;
};

} // namespace varnholt
