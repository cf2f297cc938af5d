#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <memory>

class QProgressBar;
class QProgressDialog;
class QWidget;

namespace varnholt {

/// Stands for one long operation on the window's own thread. While it lives the pointer is
/// busy, the program's windows repaint but take no input (nothing can be started twice or
/// torn down half-way), and after half a second a progress bar appears.
///
/// The bar comes up in `progress` and `goOn` alone, never by a timer, and gives way to every
/// modal window that opens meanwhile: it cannot cover a message. Whoever has something to say
/// about the outcome says it after this object has gone.
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

    /// Step `step` of `steps` is being done now; before the first call the bar shows only that
    /// something goes on. Throws `Cancelled` when the user has asked to stop. Not for a window
    /// that shows the progress itself.
    void progress(int step, int steps);

    /// Lets windows repaint and the Cancel button be pressed; to be called several times a
    /// second while anything is waited for. False once the user has asked to stop.
    bool goOn();

    void setLabel(const QString& label);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void takeOver();

    std::unique_ptr<QProgressDialog> dialog_;
    QProgressBar* bar_ = nullptr;
    Cancel cancel_ = Cancel::NotOffered;
    QElapsedTimer sinceStart_;
    QElapsedTimer sinceEvents_;
    /// The modal window that the work was started from, if any; only compared.
    const QWidget* modalAtStart_ = nullptr;
};

} // namespace varnholt
