#include "authoring/CanvasPanel.h"

#include "authoring/CanvasView.h"
#include "authoring/frmPictureText.h"
#include "authoring/hints.h"
#include "store/errors.h"
#include "store/services.h"
#include "toolkit/LongWork.h"
#include "toolkit/clipboard_probe.h"

#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QToolButton>

#include <array>
#include <cmath>
#include <new>

namespace varnholt {

namespace {

constexpr std::array zoomSteps{0.25, 0.33, 0.5, 0.67, 0.75, 1.0, 1.5, 2.0, 3.0, 4.0, 6.0, 8.0};
constexpr double largestFit = 4;
constexpr int dragScrollMs = 40;
/// Canvas pixels that a drag beyond the page scrolls at a time.
constexpr int dragScrollStep = 40;

} // namespace

CanvasPanel::CanvasPanel(Services& services, QWidget* parent)
    : QWidget(parent)
    , services_(services)
{
    buildControls();
    connectControls();
    showZoom();
    showCanvas();
}

void CanvasPanel::connectControls()
{
    connect(cmdPaste_, &QPushButton::clicked, this, &CanvasPanel::cmdPaste_Click);
    connect(cmdUndo_, &QToolButton::clicked, this,
            [this] { onCanvas({}, [](PictureCanvas& canvas) { canvas.Undo(); }); });
    connect(cmdRedo_, &QToolButton::clicked, this,
            [this] { onCanvas({}, [](PictureCanvas& canvas) { canvas.Redo(); }); });
    connect(HScroll_, &QScrollBar::valueChanged, this, &CanvasPanel::HScroll_Change);
    connect(VScroll_, &QScrollBar::valueChanged, this, &CanvasPanel::VScroll_Change);
    connect(picQuestion_, &CanvasView::MouseDown, this, [this](double X, double Y) {
        onCanvas({}, [&](PictureCanvas& canvas) { canvas.MouseDown(X, Y); });
    });
    connect(picQuestion_, &CanvasView::HandleDown, this, [this](int across, int down) {
        onCanvas({}, [&](PictureCanvas& canvas) { canvas.HandleDown(across, down); });
    });
    connect(picQuestion_, &CanvasView::MouseMove, this, [this](double X, double Y) {
        if (canvas_.isDragging()) {
            followPointer(X, Y);
        }
    });
    connect(picQuestion_, &CanvasView::MouseUp, this, [this] {
        dragScroll_.stop();
        onCanvas({}, [](PictureCanvas& canvas) { canvas.MouseUp(); });
    });
    dragScroll_.setInterval(dragScrollMs);
    connect(&dragScroll_, &QTimer::timeout, this, &CanvasPanel::scrollWhileDragging);
}

void CanvasPanel::begin(const QImage& picture, QSize page)
{
    onCanvas({}, [&](PictureCanvas& canvas) {
        PictureCanvas fresh(page);
        fresh.font = canvas.font;
        if (!picture.isNull()) {
            fresh.Begin(picture);
        }
        canvas = std::move(fresh);
    });
    HScroll_->setPageStep(page.width());
    VScroll_->setPageStep(page.height());
    showZoom();
}

bool CanvasPanel::clipboardAnswers()
{
    bool answers = false;
    {
        const LongWork busy(this, tr("Reading the clipboard..."), LongWork::Cancel::NotOffered);
        answers = services_.clipboard->answers();
    }
    if (!answers) {
        services_.messageBoxes->inform(tr("Paste Error"), ClipboardSilentSentence());
    }
    return answers;
}

void CanvasPanel::cmdPaste_Click()
{
    if (!clipboardAnswers()) {
        return;
    }
    onCanvas(tr("Paste Error"), [this](PictureCanvas& canvas) {
        QImage picture;
        {
            const LongWork busy(this, tr("Reading the clipboard..."), LongWork::Cancel::NotOffered);
            picture = services_.clipboard->image();
        }
        try {
            if (canvas.Paste(picture)) {
                picQuestion_->setFocus();
                return;
            }
        } catch (const OverflowError&) {
            throw Error(tr("The copied picture is too large to work on: %1 by %2 pixels. Please "
                           "copy a smaller part of it.")
                            .arg(picture.width())
                            .arg(picture.height()));
        }
        showCanvas();
        services_.messageBoxes->inform(
            tr("Paste Error"), tr("A question needs to be copied before it can be pasted."));
    });
}

void CanvasPanel::cmdText_Click()
{
    frmPictureText dialog(canvas_.font, *services_.messageBoxes, this);
    dialog.exec();
    if (dialog.textToAdd()) {
        onCanvas({}, [&](PictureCanvas& canvas) { canvas.StampText(*dialog.textToAdd()); });
    }
}

void CanvasPanel::fitToPage()
{
    onCanvas({}, [](PictureCanvas& canvas) { canvas.FitToPage(); });
}

void CanvasPanel::focusCanvas()
{
    picQuestion_->setFocus();
}

bool CanvasPanel::takeBack()
{
    if (canvas_.isDragging()) {
        onCanvas({}, [](PictureCanvas& canvas) { canvas.CancelDrag(); });
        return true;
    }
    if (canvas_.state().SelectionShown) {
        onCanvas({}, [](PictureCanvas& canvas) { canvas.DropSelection(); });
        return true;
    }
    return false;
}

void CanvasPanel::HScroll_Change(int value)
{
    onCanvas({}, [value](PictureCanvas& canvas) { canvas.setHScroll(value); });
}

void CanvasPanel::VScroll_Change(int value)
{
    onCanvas({}, [value](PictureCanvas& canvas) { canvas.setVScroll(value); });
}

void CanvasPanel::onCanvas(const QString& title, const std::function<void(PictureCanvas&)>& work)
{
    QString failure;
    try {
        work(canvas_);
    } catch (const Error& error) {
        failure = error.message();
    } catch (const std::bad_alloc&) {
        failure = tr("There is not enough memory for this picture.");
    }
    showCanvas();
    if (!failure.isEmpty()) {
        services_.messageBoxes->inform(title.isEmpty() ? tr("Error") : title, failure);
    }
}

void CanvasPanel::showCanvas()
{
    picQuestion_->refresh();
    const auto show = [](QScrollBar* bar, const CanvasScroll& from) {
        const QSignalBlocker quiet(bar);
        bar->setRange(0, from.visible ? from.maximum : 0);
        bar->setValue(from.value);
        bar->setVisible(from.visible);
    };
    show(HScroll_, canvas_.state().HScroll);
    show(VScroll_, canvas_.state().VScroll);
    fraPictureControls_->setVisible(canvas_.state().controlsShown);
    showSize();
    if (!canvas_.isDragging()) {
        dragScroll_.stop();
        cmdUndo_->setEnabled(canvas_.canUndo());
        cmdRedo_->setEnabled(canvas_.canRedo());
        picQuestion_->setAccessibleDescription(CanvasDescription(canvas_));
        Q_EMIT changed();
    }
}

void CanvasPanel::showSize()
{
    const CanvasState& state = canvas_.state();
    const auto show = [this](const QString& sentence, QSize size) {
        lblSize_->setText(sentence.arg(std::abs(size.width())).arg(std::abs(size.height())));
    };
    if (state.SelectionShown || canvas_.Drawing) {
        show(tr("Frame: %1 × %2 pixels"), state.selection().size());
    } else if (state.hasPicture) {
        show(tr("Picture: %1 × %2 pixels"), canvas_.image().size());
    } else {
        lblSize_->clear();
    }
}

QSize CanvasPanel::roomForPage() const
{
    return canvas_.page() - view_->sizeHint();
}

double CanvasPanel::zoom() const
{
    return picQuestion_->zoom();
}

void CanvasPanel::setZoom(double zoom)
{
    chosenZoom_ = zoom;
    showZoom();
}

void CanvasPanel::showZoom()
{
    const QSize page = canvas_.page();
    double zoom = chosenZoom_;
    if (zoom == 0) {
        const QSize room = view_->maximumViewportSize();
        zoom = std::clamp(
            std::min(1.0 * room.width() / page.width(), 1.0 * room.height() / page.height()),
            zoomSteps.front() / 2, largestFit);
    }
    picQuestion_->setZoom(zoom);
    picCropped_->resize(static_cast<int>(page.width() * zoom),
                        static_cast<int>(page.height() * zoom));
    picQuestion_->refresh();
    const int percent = static_cast<int>(std::lround(100 * zoom));
    cmdZoom_->setText((chosenZoom_ == 0 ? tr("Fit (%1 %)") : tr("%1 %")).arg(percent));
    cmdZoom_->setAccessibleName(tr("Zoom: %1 %").arg(percent));
}

void CanvasPanel::zoomBy(int steps, QPoint keptInView)
{
    const double now = zoom();
    const auto* chosen = zoomSteps.end();
    if (steps > 0) {
        chosen = std::upper_bound(zoomSteps.begin(), zoomSteps.end(), now * 1.01);
        if (chosen == zoomSteps.end()) {
            return;
        }
    } else {
        chosen = std::lower_bound(zoomSteps.begin(), zoomSteps.end(), now * 0.99);
        if (chosen == zoomSteps.begin()) {
            return;
        }
        --chosen;
    }
    const QPointF kept = picCropped_->mapFrom(view_->viewport(), keptInView);
    setZoom(*chosen);
    const QPointF moved = kept * (zoom() / now);
    view_->horizontalScrollBar()->setValue(qRound(moved.x()) - keptInView.x());
    view_->verticalScrollBar()->setValue(qRound(moved.y()) - keptInView.y());
}

void CanvasPanel::followPointer(double X, double Y)
{
    pointer_ = {X, Y};
    onCanvas({}, [&](PictureCanvas& canvas) { canvas.MouseMove(X, Y); });
    const QPoint at = picQuestion_->mapTo(picCropped_, picQuestion_->toWidget({int(X), int(Y)}));
    const QRect inside = picCropped_->rect();
    view_->ensureVisible(std::clamp(at.x(), 0, inside.width()),
                         std::clamp(at.y(), 0, inside.height()), fontMetrics().height(),
                         fontMetrics().height());
    if (!QRect({}, canvas_.page())
             .contains(QPoint(int(X) - canvas_.state().HScroll.value,
                              int(Y) - canvas_.state().VScroll.value))) {
        if (!dragScroll_.isActive()) {
            dragScroll_.start();
        }
    } else {
        dragScroll_.stop();
    }
}

void CanvasPanel::scrollWhileDragging()
{
    const auto step = [](double position, const CanvasScroll& bar, int page) {
        const double beyond = position < bar.value          ? position - bar.value
                              : position > bar.value + page ? position - bar.value - page
                                                            : 0;
        return static_cast<int>(std::clamp<double>(beyond, -dragScrollStep, dragScrollStep));
    };
    const CanvasScroll h = canvas_.state().HScroll;
    const CanvasScroll v = canvas_.state().VScroll;
    canvas_.ScrollBy(step(pointer_.x(), h, canvas_.page().width()),
                     step(pointer_.y(), v, canvas_.page().height()));
    // The pointer stands still, what is under it has moved.
    followPointer(pointer_.x() + canvas_.state().HScroll.value - h.value,
                  pointer_.y() + canvas_.state().VScroll.value - v.value);
}

bool CanvasPanel::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        if (watched == picQuestion_ && keyPress(static_cast<QKeyEvent*>(event))) {
            return true;
        }
        break;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        if (watched == picQuestion_) {
            fraCanvas_->setForegroundRole(event->type() == QEvent::FocusIn ? QPalette::Highlight
                                                                           : QPalette::Mid);
        }
        break;
    case QEvent::Wheel:
        if (watched == picCropped_ && wheel(static_cast<QWheelEvent*>(event))) {
            return true;
        }
        break;
    case QEvent::Resize:
        if (watched == view_->viewport() && chosenZoom_ == 0) {
            showZoom();
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

bool CanvasPanel::wheel(QWheelEvent* event)
{
    const QPoint delta = event->angleDelta();
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        if (delta.y() != 0) {
            zoomBy(delta.y() > 0 ? 1 : -1,
                   view_->viewport()->mapFromGlobal(event->globalPosition().toPoint()));
        }
        return true;
    }
    const bool sideways =
        std::abs(delta.x()) > std::abs(delta.y()) || event->modifiers().testFlag(Qt::ShiftModifier);
    QScrollBar* bar = sideways ? HScroll_ : VScroll_;
    return bar->isVisible() && QCoreApplication::sendEvent(bar, event);
}

bool CanvasPanel::keyPress(QKeyEvent* event)
{
    if (event->matches(QKeySequence::SelectAll)) {
        onCanvas({}, [](PictureCanvas& canvas) { canvas.SelectAll(); });
        return true;
    }
    QPoint way;
    switch (event->key()) {
    case Qt::Key_Left:
        way = {-1, 0};
        break;
    case Qt::Key_Right:
        way = {1, 0};
        break;
    case Qt::Key_Up:
        way = {0, -1};
        break;
    case Qt::Key_Down:
        way = {0, 1};
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (canvas_.state().SelectionShown && !canvas_.isDragging()) {
            onCanvas({}, [](PictureCanvas& canvas) { canvas.MoveSelection(SelectionMove::Erase); });
        }
        return true;
    default:
        return false;
    }
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        // One by one to be exact, and quicker while the key is held.
        way *= event->isAutoRepeat() ? 10 : 1;
        onCanvas({}, [&](PictureCanvas& canvas) {
            shift ? canvas.SizeFrame(way.x(), way.y()) : canvas.MoveFrame(way.x(), way.y());
        });
    } else {
        way *= shift ? 10 : 1;
        onCanvas({}, [&](PictureCanvas& canvas) { canvas.Nudge(way.x(), way.y()); });
    }
    return true;
}

} // namespace varnholt
