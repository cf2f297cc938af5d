#pragma once

#include "authoring/PictureCanvas.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QAction;
class QFrame;
class QGroupBox;
class QLabel;
class QPushButton;
class QScrollArea;
class QScrollBar;
class QToolButton;

namespace varnholt {

class CanvasView;
struct Services;

/// A canvas with everything to work on it: the page at any zoom, scroll bars, picture controls,
/// undo and the keys. At "Fit", with which it begins, the whole page is shown as large as the
/// panel has room; at a fixed zoom the view scrolls by itself where it is smaller than the page.
class CanvasPanel : public QWidget
{
    Q_OBJECT

public:
    explicit CanvasPanel(Services& services, QWidget* parent = nullptr);

    [[nodiscard]] const PictureCanvas& canvas() const { return canvas_; }
    /// Runs work on the canvas, shows the outcome and reports a failure in a box.
    void onCanvas(const QString& title, const std::function<void(PictureCanvas&)>& work);
    /// A fresh canvas, with a picture to begin with or without; the font stays.
    void begin(const QImage& picture = {}, QSize page = questionPage);

    void cmdPaste_Click();
    /// Tells the user when it does not.
    [[nodiscard]] bool clipboardAnswers();
    /// Takes back an unfinished frame or drag, or else forgets the selection; false when there
    /// was neither.
    bool takeBack();
    void fitToPage();
    /// Gives the keys to the canvas.
    void focusCanvas();
    [[nodiscard]] QPushButton* cmdPaste() const { return cmdPaste_; }

    /// What the panel needs beyond its size hint to show the whole page at 100 %.
    [[nodiscard]] QSize roomForPage() const;
    /// 0 is "Fit".
    void setZoom(double zoom);
    [[nodiscard]] double zoom() const;

Q_SIGNALS:
    /// Something is not as it was; not while the mouse holds a frame or a block.
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildControls();
    QWidget* buildView();
    QWidget* buildPictureControls();
    QToolButton* buildZoom();
    void connectControls();

    void cmdText_Click();
    void HScroll_Change(int value);
    void VScroll_Change(int value);
    void showCanvas();
    void showZoom();
    void showSize();
    void zoomBy(int steps, QPoint keptInView);
    void followPointer(double X, double Y);
    void scrollWhileDragging();
    [[nodiscard]] bool keyPress(QKeyEvent* event);
    [[nodiscard]] bool wheel(QWheelEvent* event);

    Services& services_;
    PictureCanvas canvas_;
    double chosenZoom_ = 0;
    /// Where the mouse was last while it held something, in canvas pixels.
    QPointF pointer_;
    QTimer dragScroll_;

    QPushButton* cmdPaste_ = nullptr;
    QToolButton* cmdUndo_ = nullptr;
    QToolButton* cmdRedo_ = nullptr;
    QToolButton* cmdZoom_ = nullptr;
    QLabel* lblSize_ = nullptr;
    QFrame* fraCanvas_ = nullptr;
    QScrollArea* view_ = nullptr;
    QWidget* picCropped_ = nullptr;
    CanvasView* picQuestion_ = nullptr;
    QScrollBar* HScroll_ = nullptr;
    QScrollBar* VScroll_ = nullptr;
    QGroupBox* fraPictureControls_ = nullptr;
};

} // namespace varnholt
