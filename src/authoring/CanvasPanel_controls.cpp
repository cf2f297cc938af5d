// What the canvas panel consists of.
#include "authoring/CanvasPanel.h"

#include "authoring/CanvasView.h"
#include "toolkit/controls.h"

#include <QAction>
#include <QGridLayout>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QToolButton>

namespace varnholt {

namespace {

QScrollBar* makeScrollBar(const char* name, Qt::Orientation orientation, int page,
                          const QString& accessibleName)
{
    auto* bar = named(new QScrollBar(orientation), name, accessibleName);
    bar->setPageStep(page);
    bar->setSingleStep(page / 20);
    // The place stays free, so that nothing jumps when a bar comes or goes.
    QSizePolicy policy = bar->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    bar->setSizePolicy(policy);
    return bar;
}

/// Asks for little and takes what there is: what cannot be shown scrolls.
class PageView : public QScrollArea
{
public:
    explicit PageView(QSize page)
        : page_(page)
    {
        setFrameShape(NoFrame);
        setAlignment(Qt::AlignCenter);
        setFocusPolicy(Qt::NoFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }

    [[nodiscard]] QSize sizeHint() const override { return page_ / 4; }
    [[nodiscard]] QSize minimumSizeHint() const override { return page_ / 4; }

private:
    QSize page_;
};

} // namespace

QWidget* CanvasPanel::buildView()
{
    fraCanvas_ = named(new QFrame, "fraCanvas");
    fraCanvas_->setFrameStyle(QFrame::Box | QFrame::Plain);
    fraCanvas_->setLineWidth(2);
    fraCanvas_->setForegroundRole(QPalette::Mid);
    picCropped_ = named(new QWidget, "picCropped");
    picCropped_->installEventFilter(this);
    picQuestion_ =
        named(new CanvasView(canvas_, picCropped_), "picQuestion", tr("Picture of the question"));
    picQuestion_->setFocusPolicy(Qt::StrongFocus);
    picQuestion_->installEventFilter(this);
    view_ = named(new PageView(canvas_.page()), "scrCanvas");
    view_->setWidget(picCropped_);
    view_->viewport()->installEventFilter(this);
    auto* layout = new QVBoxLayout(fraCanvas_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    return fraCanvas_;
}

QToolButton* CanvasPanel::buildZoom()
{
    cmdZoom_ = named(new QToolButton, "cmdZoom");
    cmdZoom_->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(cmdZoom_);
    const auto add = [&](const QString& caption, const QList<QKeySequence>& keys, auto work) {
        QAction* action = menu->addAction(caption, this, work);
        action->setShortcuts(keys);
        addAction(action);
    };
    add(tr("&Fit"), {Qt::CTRL | Qt::Key_0}, [this] { setZoom(0); });
    add(tr("&100 %"), {Qt::CTRL | Qt::Key_1}, [this] { setZoom(1); });
    add(tr("Zoom &In"), {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
        [this] { zoomBy(1, view_->viewport()->rect().center()); });
    add(tr("Zoom &Out"), {Qt::CTRL | Qt::Key_Minus},
        [this] { zoomBy(-1, view_->viewport()->rect().center()); });
    cmdZoom_->setMenu(menu);
    // The widest text, so that nothing moves.
    cmdZoom_->setMinimumWidth(fontMetrics().horizontalAdvance(tr("Fit (%1 %)").arg(100)) +
                              2 * fontMetrics().height());
    return cmdZoom_;
}

QWidget* CanvasPanel::buildControls()
{
    cmdPaste_ = makeButton("cmdPaste", tr("&Paste Screenshot"));
    cmdPaste_->setToolTip(tr("Ctrl+V"));
    auto* lblPrintScreen =
        makeLabel("lblPrintScreen", tr("Type PrintScreen on keyboard for screen capture"));
    const auto tool = [this](const char* name, const QString& caption, const QKeySequence& keys) {
        auto* button = named(new QToolButton, name);
        button->setText(caption);
        // Its own would act a moment later, and once where it is pressed twice in that.
        connect(new QShortcut(keys, this), &QShortcut::activated, button, &QToolButton::click);
        button->setToolTip(keys.toString(QKeySequence::NativeText));
        button->setFocusPolicy(Qt::TabFocus);
        return button;
    };
    cmdUndo_ = tool("cmdUndo", tr("Undo"), Qt::CTRL | Qt::Key_Z);
    cmdRedo_ = tool("cmdRedo", tr("Redo"), Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
    auto* lblHelp =
        makeLabel("lblHelp", tr("Click and hold to draw frames around what you want to edit"));
    lblSize_ = makeLabel("lblSize");
    for (QLabel* label : {lblPrintScreen, lblHelp}) {
        label->setWordWrap(true);
    }

    auto* top = new QHBoxLayout;
    top->addWidget(cmdPaste_);
    top->addSpacing(fontMetrics().averageCharWidth());
    top->addWidget(lblPrintScreen, 1);
    top->addWidget(cmdUndo_);
    top->addWidget(cmdRedo_);
    top->addWidget(buildZoom());
    auto* below = new QHBoxLayout;
    below->addWidget(lblHelp, 1);
    below->addWidget(lblSize_);
    HScroll_ = makeScrollBar("HScroll", Qt::Horizontal, canvas_.page().width(),
                             tr("Scroll the picture sideways"));
    VScroll_ = makeScrollBar("VScroll", Qt::Vertical, canvas_.page().height(),
                             tr("Scroll the picture up and down"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    grid->addLayout(top, 0, 0);
    grid->setRowMinimumHeight(1, fontMetrics().height() / 3);
    grid->addWidget(buildView(), 2, 0);
    grid->setRowStretch(2, 1);
    grid->addWidget(VScroll_, 2, 1);
    grid->addWidget(HScroll_, 3, 0);
    grid->setRowMinimumHeight(4, fontMetrics().height() / 4);
    grid->addLayout(below, 5, 0);
    grid->addWidget(buildPictureControls(), 6, 0);
    return this;
}

QWidget* CanvasPanel::buildPictureControls()
{
    fraPictureControls_ = makeFrame("fraPictureControls", tr("Picture Controls"));
    QSizePolicy policy = fraPictureControls_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    fraPictureControls_->setSizePolicy(policy);
    auto* grid = new QGridLayout(fraPictureControls_);
    using Work = std::function<void(PictureCanvas&)>;
    const auto add = [&](int row, int column, const char* name, const QString& caption,
                         const QString& help, const Work& work) {
        QPushButton* button = makeButton(name, caption);
        button->setToolTip(help);
        // A click leaves the keys with the canvas; Tab still gets here.
        button->setFocusPolicy(Qt::TabFocus);
        connect(button, &QPushButton::clicked, this, [this, work] { onCanvas({}, work); });
        grid->addWidget(button, row, column);
    };
    const auto move = [](SelectionMove mode) {
        return Work([mode](PictureCanvas& canvas) { canvas.MoveSelection(mode); });
    };
    const auto crop = [](PictureCanvas& canvas) { canvas.Crop(); };
    const QString moves = tr("100 pixels; the arrow keys move by one, with Shift by 10.");
    add(0, 0, "cmdCrop", tr("C&rop"), tr("Keeps only what is inside the frame."), crop);
    add(1, 0, "cmdCenter", tr("Cen&ter"), tr("Keeps only what is inside the frame, in the middle."),
        crop);
    add(0, 1, "cmdUp", tr("Move &Up"), moves, move(SelectionMove::Up));
    add(1, 1, "cmdDown", tr("Move &Down"), moves, move(SelectionMove::Down));
    add(0, 2, "cmdMoveLeft", tr("Move &Left"), moves, move(SelectionMove::Left));
    add(1, 2, "cmdRight", tr("Move Ri&ght"), moves, move(SelectionMove::Right));
    add(0, 3, "cmdErase", tr("&Erase"), tr("Delete"), move(SelectionMove::Erase));
    QPushButton* cmdText = makeButton("cmdText", tr("Enter Te&xt"));
    cmdText->setToolTip(tr("Writes a line of text at the frame's upper left corner."));
    cmdText->setFocusPolicy(Qt::TabFocus);
    connect(cmdText, &QPushButton::clicked, this, &CanvasPanel::cmdText_Click);
    grid->addWidget(cmdText, 1, 3);
    add(0, 4, "cmdFit", tr("Fit t&o Page"),
        tr("Keeps only what is inside the frame, as large as the page can hold it."),
        [](PictureCanvas& canvas) { canvas.FitToPage(); });
    return fraPictureControls_;
}

} // namespace varnholt
