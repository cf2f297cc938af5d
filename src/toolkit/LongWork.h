#pragma once

#include <QObject>
#include <QString>

#include <memory>

class QProgressDialog;
class QWidget;

namespace varnholt {

/// Stands for one long operation on the window's own thread. While it lives the pointer is
/// busy, the program's windows repaint but take no input (nothing can be started twice or
/// torn down half-way), and after half a second a progress bar appears. Modal dialogs, messages
/// among them, take input as always.
class LongWork : public QObject
{
    Q_OBJECT

public:
    enum class Cancel
    {
        Offered,
        NotOffered
    };

    /// `label` says what is being done. The window may be null.
    LongWork(QWidget* window, const QString& label, Cancel cancel);
    /// For a window that shows the progress itself.
    LongWork();
    ~LongWork() override;

    /// Step `step` of `steps` is being done now. Throws `Cancelled` when the user has asked
    /// to stop. Not for a window that shows the progress itself.
    void progress(int step, int steps);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void takeOver();

    std::unique_ptr<QProgressDialog> dialog_;
};

} // namespace varnholt
