// What the window for questions out of PDF files consists of.
#include "pdf/PdfPagesView.h"
#include "pdf/frmFromPdf.h"
#include "toolkit/HintLabel.h"
#include "toolkit/controls.h"

#include <QBoxLayout>
#include <QSettings>
#include <QSpinBox>

namespace varnholt {

namespace {

constexpr int leastResolution = 50;
constexpr int usualResolution = 200;
constexpr int mostResolution = 400;

QString geometryKey()
{
    return QStringLiteral("frmFromPdf/geometry");
}

QString resolutionKey()
{
    return QStringLiteral("frmFromPdf/resolution");
}

} // namespace

void frmFromPdf::buildControls()
{
    const auto button = [](const char* name, const QString& caption, const QString& help) {
        QPushButton* made = makeButton(name, caption);
        made->setToolTip(help);
        return made;
    };
    pages_ = named(new PdfPagesView(reader_), "pages", tr("Pages of the file"));
    cmdSuggest_ = button("cmdSuggest", tr("S&uggest Frames"),
                         tr("Looks for the questions on all pages and draws a frame round each. "
                            "Undo brings back what was there before."));
    cmdJoin_ = button("cmdJoin", tr("&Join"),
                      tr("Joins the frame with the one before it; on another page, both become one "
                         "picture (J)."));
    cmdSplit_ = button("cmdSplit", tr("&Split"),
                       tr("Cuts the frame in two at its widest white band (S). A double-click cuts "
                          "it where you click."));
    cmdDrop_ = button("cmdDrop", tr("&Drop"), tr("Takes the frame away (Del)."));
    cmdUndo_ = button("cmdUndo", tr("U&ndo"), tr("Ctrl+Z; Ctrl+Y repeats."));
    lblPage_ = makeLabel("lblPage");
    auto* tools = new QHBoxLayout;
    for (QPushButton* each : {cmdSuggest_, cmdJoin_, cmdSplit_, cmdDrop_, cmdUndo_}) {
        tools->addWidget(each);
    }
    tools->addStretch();

    lblKeys_ = makeLabel("lblKeys",
                         tr("Draw frames with the mouse. Keys: N and B choose the next frame and "
                            "the one before, Ins makes a new one, arrows move it, Ctrl+Shift and "
                            "arrows size it; PgDn and PgUp turn the pages."));
    lblKeys_->setWordWrap(true);
    lblKeys_->setForegroundRole(QPalette::PlaceholderText);
    lblHint_ = new HintLabel("lblHint", pages_, HintLabel::Place::Given);

    txtResolution_ = named(new QSpinBox, "txtResolution", tr("Resolution"));
    txtResolution_->setRange(leastResolution, mostResolution);
    txtResolution_->setSingleStep(leastResolution);
    txtResolution_->setSuffix(tr(" dots per inch"));
    txtResolution_->setValue(QSettings().value(resolutionKey(), usualResolution).toInt());
    QLabel* lblResolution = makeLabel("lblResolution", tr("&Resolution:"));
    lblResolution->setBuddy(txtResolution_);
    lblState_ = makeLabel("lblState");
    cmdAdd_ = makeButton("cmdAdd", tr("&Add Pictures"));
    cmdAdd_->setDefault(true);
    cmdCancel_ = makeButton("cmdCancel", tr("&Cancel"));
    auto* state = new QHBoxLayout;
    state->addWidget(lblPage_);
    state->addStretch();
    state->addWidget(lblState_);
    auto* end = new QHBoxLayout;
    end->addWidget(lblResolution);
    end->addWidget(txtResolution_);
    end->addStretch();
    end->addWidget(cmdAdd_);
    end->addWidget(cmdCancel_);

    auto* column = new QVBoxLayout(this);
    column->addLayout(tools);
    column->addWidget(pages_, 1);
    column->addLayout(state);
    column->addWidget(lblHint_);
    column->addWidget(lblKeys_);
    column->addLayout(end);
    setTabOrder(pages_, txtResolution_);
    resizeWithinScreen(this, sizeHint());
    restoreGeometry(QSettings().value(geometryKey()).toByteArray());
}

frmFromPdf::~frmFromPdf()
{
    QSettings().setValue(geometryKey(), saveGeometry());
    QSettings().setValue(resolutionKey(), txtResolution_->value());
}

void frmFromPdf::connectControls()
{
    const auto onFrames = [this](QPushButton* button, const std::function<void(PdfFrames&)>& with) {
        connect(button, &QPushButton::clicked, this, [this, with] {
            pages_->change(with);
            pages_->setFocus();
        });
    };
    onFrames(cmdJoin_, [](PdfFrames& frames) { frames.join(); });
    onFrames(cmdDrop_, [](PdfFrames& frames) { frames.drop(); });
    onFrames(cmdUndo_, [](PdfFrames& frames) { frames.undo(); });
    connect(cmdSplit_, &QPushButton::clicked, this, [this] {
        cmdSplit_Click(-1);
        pages_->setFocus();
    });
    connect(cmdSuggest_, &QPushButton::clicked, this, &frmFromPdf::cmdSuggest_Click);
    connect(cmdAdd_, &QPushButton::clicked, this, &frmFromPdf::cmdAdd_Click);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
    connect(pages_, &PdfPagesView::splitWanted, this, &frmFromPdf::cmdSplit_Click);
    connect(pages_, &PdfPagesView::changed, this, &frmFromPdf::showState);
}

} // namespace varnholt
