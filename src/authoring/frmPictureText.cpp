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
    setWindowTitle(QStringLiteral("Create Text"));
    buildControls();
    Form_Load();
}

QGroupBox* frmPictureText::buildFaces()
{
    auto* frame = makeFrame("fraFont", QStringLiteral("Font"));
    auto* column = new QVBoxLayout(frame);
    const auto add = [&](const char* name, const QString& caption) {
        auto* option = named(new QRadioButton(caption), name);
        const QString face = option->text().remove(u'&');
        const QString used = stampFont({face}).family();
        if (used != face && QFontDatabase::hasFamily(used)) {
            option->setToolTip(
                QStringLiteral("This computer does not have %1; %2 is used in its place.")
                    .arg(face, used));
        }
        connect(option, &QRadioButton::toggled, this, [this, option](bool chosen) {
            if (chosen) {
                optFont_Click(option);
            }
        });
        column->addWidget(option);
        return option;
    };
    add("optArial", QStringLiteral("A&rial"));
    add("optCalibri", QStringLiteral("Ca&libri"));
    add("optCourier", QStringLiteral("&Courier"));
    add("optCourierNew", QStringLiteral("Courier &New"));
    optMSSansSerif_ = add("optMSSansSerif", QStringLiteral("&MS Sans Serif"));
    add("optTimesNewRoman", QStringLiteral("Times Ne&w Roman"));
    add("optVerdana", QStringLiteral("&Verdana"));
    return frame;
}

QGroupBox* frmPictureText::buildStyles()
{
    auto* frame = makeFrame("fraFontStyle", QStringLiteral("Font Style"));
    auto* column = new QVBoxLayout(frame);
    const auto add = [&](const char* name, const QString& caption, bool CanvasFont::*on) {
        auto* box = named(new QCheckBox(caption), name);
        connect(box, &QCheckBox::toggled, this, [this, on](bool checked) {
            font_.*on = checked;
            showSample();
        });
        column->addWidget(box);
        return Style{box, on};
    };
    styles_ = {add("chkBold", QStringLiteral("&Bold"), &CanvasFont::bold),
               add("chkItalic", QStringLiteral("&Italic"), &CanvasFont::italic),
               add("chkUnderline", QStringLiteral("&Underline"), &CanvasFont::underline)};
    lblStyleHint_ = new HintLabel("lblStyleHint", frame, HintLabel::Place::Given);
    column->addWidget(lblStyleHint_);
    column->addStretch();
    return frame;
}

void frmPictureText::buildControls()
{
    auto* lblTextToAdd = makeLabel("lblTextToAdd", QStringLiteral("&Text to Add:"));
    txtText_ = named(new LineEdit, "txtText", QStringLiteral("Text to add"));
    lblTextToAdd->setBuddy(txtText_);

    lstFontSize_ =
        named(new ListBox(ListBox::Mode::Single), "lstFontSize", QStringLiteral("Font size"));
    for (int size = smallestSize; size <= largestSize; size += 2) {
        lstFontSize_->addItem(QString::number(size), size);
    }
    lstFontSize_->setMinimumWidth(fontMetrics().averageCharWidth() * 10);
    connect(lstFontSize_, &ListBox::Click, this, &frmPictureText::lstFontSize_Click);
    auto* fraFontSize = makeFrame("fraFontSize", QStringLiteral("Font Si&ze"));
    (new QVBoxLayout(fraFontSize))->addWidget(lstFontSize_);

    lblSample_ = makeLabel("lblSample", QStringLiteral("Sample Message"));
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
    const QFontMetrics largest(stampFont({QStringLiteral("Verdana"), largestSize, true}));
    lblSample_->setMinimumSize(largest.horizontalAdvance(lblSample_->text()) + largest.height(),
                               largest.height() * 3 / 2);

    QPushButton* cmdAddText = makeButton("cmdAddText", QStringLiteral("&Add Text"));
    QPushButton* cmdCancel = makeButton("cmdCancel", QStringLiteral("Cancel"));
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

void frmPictureText::optFont_Click(QRadioButton* option)
{
    font_.name = option->text().remove(u'&');
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
            kept.append(style.box->text().remove(u'&'));
        }
    }
    lblStyleHint_->say(kept.isEmpty()
                           ? QString()
                           : QStringLiteral("%1: still on from the last text. Tick and untick to "
                                            "turn it off.")
                                 .arg(kept.join(QStringLiteral(", "))));
}

void frmPictureText::cmdAddText_Click()
{
    const QString text = txtText_->text().trimmed();
    if (text.isEmpty()) {
        messages_.inform(QStringLiteral("Missing Text"),
                         QStringLiteral("Please enter the text you would like to add."));
        txtText_->setFocus();
        return;
    }
    textToAdd_ = text;
    accept();
}

} // namespace varnholt
