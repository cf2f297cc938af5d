// The teacher's window: what stands in it and what it calls.
#include "show/frmShow.h"

#include "show/FittedLabel.h"
#include "show/ShowDesktop.h"
#include "show/ShowView.h"
#include "toolkit/controls.h"
#include "toolkit/key_icon.h"

#include <QGridLayout>
#include <QVBoxLayout>

namespace varnholt {

QPushButton* frmShow::makeKeyButton(const char* objectName, const QString& caption,
                                    const QString& help, const QString& key,
                                    void (frmShow::*handler)())
{
    QPushButton* button = makeButton(objectName, caption);
    // Space and Enter move on, whatever was clicked last.
    button->setFocusPolicy(Qt::NoFocus);
    button->setToolTip(tr("%1 Press the key %2").arg(help, key));
    if (key.size() == 1) {
        button->setIcon(keyIcon(key));
    }
    connect(button, &QPushButton::clicked, this, handler);
    return button;
}

void frmShow::buildControls()
{
    pupils_ = named(new ShowView(this), "frmShowPupils", tr("What the pupils see"));
    pupils_->setWindowFlags(Qt::Window);
    pupils_->setWindowTitle(tr("Show in Class: the pupils' window"));
    pupils_->setMouseTracking(true);
    pupils_->setZooms(true);
    pupils_->installEventFilter(this);

    viewNow_ = named(new ShowView, "viewNow", tr("What the pupils see"));
    viewNow_->setZooms(true);
    viewNow_->setToolTip(tr("Draw a frame or turn the wheel to show a part of the picture larger. "
                            "Esc shows all of it again."));
    viewNext_ = named(new ShowView, "viewNext", tr("The next question"));
    lblCount_ = makeLabel("lblCount");
    QFont large = lblCount_->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    lblCount_->setFont(large);
    lblTopic_ = makeLabel("lblTopic");
    lblTopic_->setWordWrap(true);
    lblClock_ = new FittedLabel("lblClock", 1.2);
    lblClock_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lblAnswer_ = new FittedLabel("lblAnswer", 1.5);
    lblAnswer_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    lblShown_ = makeLabel("lblShown");
    lblShown_->setWordWrap(true);
    lblShown_->setForegroundRole(QPalette::PlaceholderText);
    lblNext_ = makeLabel("lblNext");
    lblNote_ = makeLabel("lblNote");
    lblNote_->setWordWrap(true);
    lblNote_->setMinimumHeight(2 * fontMetrics().lineSpacing());
    lblNote_->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    cmdBack_ = makeKeyButton("cmdBack", tr("Bac&k"), tr("Goes one question back."), tr("←"),
                             &frmShow::cmdBack_Click);
    cmdNext_ = makeKeyButton("cmdNext", tr("&Next"), tr("Goes on."), tr("→ or Space"),
                             &frmShow::cmdNext_Click);
    cmdAnswer_ = makeKeyButton("cmdAnswer", tr("&Answer"),
                               tr("Shows the answer to the pupils, or hides it again."),
                               QStringLiteral("A"), &frmShow::cmdAnswer_Click);
    cmdSwap_ = makeKeyButton("cmdSwap", tr("&Swap"),
                             tr("Puts another question of its subtopic or topic in the place of "
                                "this one."),
                             QStringLiteral("S"), &frmShow::cmdSwap_Click);
    QPushButton* cmdEnd = makeKeyButton("cmdEnd", tr("&End"), tr("Ends the show."), tr("Esc"),
                                        &frmShow::cmdEnd_Click);
    cmdClock_ = makeKeyButton("cmdClock", tr("&Clock"), tr("Switches the clock on or off."),
                              QStringLiteral("T"), &frmShow::cmdClock_Click);
    cmdLess_ = makeKeyButton("cmdLess", tr("15 s"), tr("Takes 15 seconds away."),
                             QStringLiteral("−"), &frmShow::cmdLess_Click);
    QPushButton* cmdMore = makeKeyButton("cmdMore", tr("15 s"), tr("Gives 15 seconds more."),
                                         QStringLiteral("+"), &frmShow::cmdMore_Click);
    cmdBlack_ = makeKeyButton("cmdBlack", tr("&Black"), tr("Makes the pupils' screen black."),
                              QStringLiteral("B"), &frmShow::cmdBlack_Click);
    cmdWhite_ = makeKeyButton("cmdWhite", tr("&White"), tr("Makes the pupils' screen white."),
                              QStringLiteral("W"), &frmShow::cmdWhite_Click);
    cmdScreens_ = makeKeyButton("cmdScreens", tr("Screens"),
                                tr("Puts the pupils' window on the other screen."),
                                QStringLiteral("F"), &frmShow::cmdScreens_Click);
    const QString marks = tr("Notes it for this question and goes on.");
    outcomes_ = {
        makeKeyButton("cmdFew", tr("Few"), marks, QStringLiteral("1"), &frmShow::cmdFew_Click),
        makeKeyButton("cmdHalf", tr("Half"), marks, QStringLiteral("2"), &frmShow::cmdHalf_Click),
        makeKeyButton("cmdMost", tr("Most"), marks, QStringLiteral("3"), &frmShow::cmdMost_Click)};
    for (QPushButton* button :
         {cmdAnswer_, cmdClock_, cmdBlack_, cmdWhite_, outcomes_[0], outcomes_[1], outcomes_[2]}) {
        button->setCheckable(true);
    }

    cmdLess_->setAccessibleName(tr("15 seconds less"));
    cmdMore->setAccessibleName(tr("15 seconds more"));
    outcomes_[0]->setAccessibleName(tr("Few knew it"));
    outcomes_[1]->setAccessibleName(tr("Half of the class knew it"));
    outcomes_[2]->setAccessibleName(tr("Most knew it"));
    auto* lblKnew = makeLabel("lblKnew", tr("Knew it:"));
    lblKnew->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* heading = new QHBoxLayout;
    heading->addWidget(lblCount_);
    heading->addWidget(lblClock_, 1);
    auto* side = new QVBoxLayout;
    side->addLayout(heading);
    side->addWidget(lblTopic_);
    side->addWidget(lblAnswer_, 3);
    side->addWidget(lblShown_);
    side->addWidget(lblNext_);
    side->addWidget(viewNext_, 3);
    auto* above = new QHBoxLayout;
    above->addWidget(viewNow_, 5);
    above->addLayout(side, 3);
    // Rows of five: the window must fit on small screens with large letters.
    auto* buttons = new QGridLayout;
    constexpr int perRow = 5;
    int cell = 0;
    for (QWidget* widget : std::initializer_list<QWidget*>{
             cmdBack_, cmdNext_, cmdAnswer_, cmdSwap_, cmdEnd, cmdClock_, cmdLess_, cmdMore,
             cmdBlack_, cmdWhite_, lblKnew, outcomes_[0], outcomes_[1], outcomes_[2],
             cmdScreens_}) {
        buttons->addWidget(widget, cell / perRow, cell % perRow);
        ++cell;
    }
    auto* column = new QVBoxLayout(this);
    column->addLayout(above, 1);
    column->addWidget(lblNote_);
    column->addLayout(buttons);
}

void frmShow::connectControls()
{
    connect(&desktop_, &ShowDesktop::screensChanged, this, [this] {
        if (loop_.isRunning()) {
            placeWindows();
        }
    });
    connect(&pictures_, &ShowPictures::came, this, &frmShow::refresh);
    connect(pupils_, &ShowView::roomChanged, this,
            [this] { pictures_.setRoom(pupils_->pictureRoom()); });
    for (ShowView* view : {pupils_, viewNow_}) {
        connect(view, &ShowView::zoomedTo, this, [this](const QRectF& part) {
            show_.zoomTo(part);
            refresh();
        });
        connect(view, &ShowView::zoomedAt, this, [this](const QPointF& point, double factor) {
            show_.zoomAt(point, factor);
            refresh();
        });
    }
    ticks_.callOnTimeout(this, [this] {
        if (show_.pass()) {
            refresh();
        }
    });
    later_.setSingleShot(true);
    later_.callOnTimeout(this, &frmShow::showTeacher);
    pointerRests_.setSingleShot(true);
    pointerRests_.callOnTimeout(this, [this] { pupils_->setCursor(Qt::BlankCursor); });
}

void frmShow::showButtons()
{
    const PupilsView view = show_.pupilsView();
    const auto position = show_.position();
    cmdSwap_->setEnabled(show_.canSwap());
    cmdAnswer_->setEnabled(position.has_value());
    cmdAnswer_->setChecked(show_.isAnswerShown());
    cmdClock_->setEnabled(position.has_value());
    cmdClock_->setChecked(view.clock.has_value());
    cmdLess_->setEnabled(view.clock.has_value());
    cmdBlack_->setChecked(view.cover == PupilsView::Cover::Black);
    cmdWhite_->setChecked(view.cover == PupilsView::Cover::White);
    for (std::size_t i = 0; i < outcomes_.size(); ++i) {
        outcomes_[i]->setEnabled(position.has_value());
        outcomes_[i]->setChecked(position &&
                                 static_cast<std::size_t>(show_.outcome(*position)) == i + 1);
    }
    constexpr int perMinute = 60;
    constexpr int decimal = 10;
    lblClock_->setText(view.clock
                           ? QStringLiteral("%1:%2")
                                 .arg(view.clock->seconds / perMinute)
                                 .arg(view.clock->seconds % perMinute, 2, decimal, QLatin1Char('0'))
                           : QString());
}

} // namespace varnholt
