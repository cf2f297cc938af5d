#include "authoring/frmPictureText.h"

#include "store/modMain.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/ListBox.h"
#include "toolkit/controls.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGridLayout>

namespace varnholt {

namespace {

constexpr int smallestSize = 10;
constexpr int largestSize = 40;

} // namespace

frmPictureText::frmPictureText(CanvasFont& font, MessageBoxes& messages, QWidget* parent)
    : QDialog(parent)
    , font_(font)
    , messages_(messages)
{
    setObjectName(QStringLiteral("frmPictureText"));
    setWindowTitle(tr("Create Text"));
    buildControls();
    Form_Load();
}

QGroupBox* frmPictureText::buildFaces()
{
    auto* frame = makeFrame("fraFont", tr("Font"));
    auto* column = new QVBoxLayout(frame);
    const auto add = [&](const char* name, const QString& caption, const QString& face) {
        auto* option = named(new QRadioButton(caption), name);
        const QString used = stampFont({face}).family();
        if (used != face && QFontDatabase::hasFamily(used)) {
            option->setToolTip(
                tr("This computer does not have %1; %2 is used in its place.").arg(face, used));
        }
        connect(option, &QRadioButton::toggled, this, [this, face](bool chosen) {
            if (chosen) {
                optFont_Click(face);
            }
        });
        column->addWidget(option);
        return option;
    };
    add("optArial", tr("A&rial"), QStringLiteral("Arial"));
    add("optCalibri", tr("Ca&libri"), QStringLiteral("Calibri"));
    add("optCourier", tr("&Courier"), QStringLiteral("Courier"));
    add("optCourierNew", tr("Courier &New"), QStringLiteral("Courier New"));
    optMSSansSerif_ = add("optMSSansSerif", tr("&MS Sans Serif"), QStringLiteral("MS Sans Serif"));
    add("optTimesNewRoman", tr("Times Ne&w Roman"), QStringLiteral("Times New Roman"));
    add("optVerdana", tr("&Verdana"), QStringLiteral("Verdana"));
    return frame;
}

QGroupBox* frmPictureText::buildStyles()
{
    auto* frame = makeFrame("fraFontStyle", tr("Font Style"));
    auto* column = new QVBoxLayout(frame);
    const auto add = [&](const char* name, const QString& caption, const QString& style,
                         bool CanvasFont::*on) {
        auto* box = named(new QCheckBox(caption), name);
        connect(box, &QCheckBox::toggled, this, [this, on](bool checked) {
            font_.*on = checked;
            showSample();
        });
        column->addWidget(box);
        return Style{box, style, on};
    };
    styles_ = {add("chkBold", tr("&Bold"), tr("Bold"), &CanvasFont::bold),
               add("chkItalic", tr("&Italic"), tr("Italic"), &CanvasFont::italic),
               add("chkUnderline", tr("&Underline"), tr("Underline"), &CanvasFont::underline)};
    lblStyleHint_ = new HintLabel("lblStyleHint", frame, HintLabel::Place::Given);
    column->addWidget(lblStyleHint_);
    column->addStretch();
    return frame;
}

void frmPictureText::buildControls()
{
    auto* lblTextToAdd = makeLabel("lblTextToAdd", tr("&Text to Add:"));
    txtText_ = named(new LineEdit, "txtText", tr("Text to add"));
    lblTextToAdd->setBuddy(txtText_);

    lstFontSize_ = named(new ListBox(ListBox::Mode::Single), "lstFontSize", tr("Font size"));
    for (int size = smallestSize; size <= largestSize; size += 2) {
        lstFontSize_->addItem(QString::number(size), size);
    }
    lstFontSize_->setMinimumWidth(fontMetrics().averageCharWidth() * 10);
    connect(lstFontSize_, &ListBox::Click, this, &frmPictureText::lstFontSize_Click);
    auto* fraFontSize = makeFrame("fraFontSize", tr("Font Si&ze"));
    (new QVBoxLayout(fraFontSize))->addWidget(lstFontSize_);

    lblSample_ = makeLabel("lblSample", tr("Sample Message"));
    lblSample_->setAlignment(Qt::AlignCenter);
    // As it will stand in the picture, whatever the desktop's colours are.
    QPalette paper = lblSample_->palette();
    paper.setColor(QPalette::Base, Qt::white);
    paper.setColor(QPalette::Text, Qt::black);
    lblSample_->setPalette(paper);
    lblSample_->setBackgroundRole(QPalette::Base);
    lblSample_->setForegroundRole(QPalette::Text);
    lblSample_->setAutoFillBackground(true);
    lblSample_->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    // As large as the largest sample, so that the window keeps still.
    const QFontMetrics largest(stampFont({tr("Verdana"), largestSize, true}));
    lblSample_->setMinimumSize(largest.horizontalAdvance(lblSample_->text()) + largest.height(),
                               largest.height() * 3 / 2);

    QPushButton* cmdAddText = makeButton("cmdAddText", tr("&Add Text"));
    QPushButton* cmdCancel = makeButton("cmdCancel", tr("Cancel"));
    cmdAddText->setDefault(true);
    cmdCancel->setAutoDefault(true);
    connect(cmdAddText, &QPushButton::clicked, this, &frmPictureText::cmdAddText_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    auto* text = new QHBoxLayout;
    text->addWidget(lblTextToAdd);
    text->addWidget(txtText_);
    auto* choices = new QHBoxLayout;
    choices->addWidget(buildFaces());
    choices->addWidget(fraFontSize);
    choices->addWidget(buildStyles(), 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdAddText);
    buttons->addWidget(cmdCancel);
    auto* column = new QVBoxLayout(this);
    column->addLayout(text);
    column->addLayout(choices, 1);
    column->addWidget(lblSample_);
    column->addLayout(buttons);
    txtText_->setFocus();
}

void frmPictureText::Form_Load()
{
    optMSSansSerif_->setChecked(true);
    // Qt would let Tab stop at the first one until one of them has had the focus.
    const QList<QRadioButton*> options = findChildren<QRadioButton*>();
    for (QRadioButton* option : options) {
        option->setFocusPolicy(option->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    }
    lstFontSize_->setListIndex(0);
}

void frmPictureText::optFont_Click(const QString& face)
{
    font_.name = face;
    showSample();
}

void frmPictureText::lstFontSize_Click()
{
    if (lstFontSize_->listIndex() >= 0) {
        font_.size = lstFontSize_->itemData(lstFontSize_->listIndex());
        showSample();
    }
}

void frmPictureText::showSample()
{
    lblSample_->setFont(stampFont(font_));
    QStringList kept;
    for (const Style& style : styles_) {
        if (font_.*style.on && !style.box->isChecked()) {
            kept.append(style.name);
        }
    }
    lblStyleHint_->say(kept.isEmpty() ? QString()
                                      : tr("%1: still on from the last text. Tick and untick to "
                                           "turn it off.")
                                            .arg(kept.join(tr(", "))));
}

void frmPictureText::cmdAddText_Click()
{
    const QString text = txtText_->text().trimmed();
    if (text.isEmpty()) {
        messages_.inform(tr("Missing Text"), tr("Please enter the text you would like to add."));
        txtText_->setFocus();
        return;
    }
    textToAdd_ = text;
    accept();
}

} // namespace varnholt
