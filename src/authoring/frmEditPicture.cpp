#include "authoring/frmEditPicture.h"

#include "authoring/CanvasPanel.h"
#include "authoring/question_save.h"
#include "library/Library.h"
#include "pictures/picture_files.h"
#include "pictures/picture_info.h"
#include "store/services.h"
#include "toolkit/LongWork.h"
#include "toolkit/controls.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QSettings>
#include <QShortcut>

namespace varnholt {

namespace {

const QString geometryKey = QStringLiteral("frmEditPicture/geometry");
/// Above that of a new picture: what is saved here has been saved before.
constexpr int editedQuality = 90;

} // namespace

frmEditPicture::frmEditPicture(Services& services, const QImage& picture, QWidget* parent)
    : QDialog(parent)
    , panel_(new CanvasPanel(services))
{
    setObjectName(QStringLiteral("frmEditPicture"));
    setWindowTitle(tr("Edit Picture"));
    QPushButton* cmdSave = makeButton("cmdSave", tr("&Save"));
    QPushButton* cmdCancel = makeButton("cmdCancel", tr("&Cancel"));
    cmdSave->setToolTip(tr("Ctrl+S"));
    cmdSave->setDefault(true);
    cmdCancel->setAutoDefault(true);
    connect(cmdSave, &QPushButton::clicked, this, &frmEditPicture::cmdSave_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, this,
            &frmEditPicture::cmdSave_Click);
    connect(new QShortcut(QKeySequence::Paste, this), &QShortcut::activated, panel_,
            &CanvasPanel::cmdPaste_Click);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdCancel);
    auto* column = new QVBoxLayout(this);
    column->addWidget(panel_, 1);
    column->addLayout(buttons);
    panel_->begin(picture, picture.size());
    panel_->focusCanvas();
    resizeWithinScreen(this, sizeHint() + panel_->roomForPage());
    restoreGeometry(QSettings().value(geometryKey).toByteArray());
}

frmEditPicture::~frmEditPicture()
{
    QSettings().setValue(geometryKey, saveGeometry());
}

void frmEditPicture::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Escape) {
        QDialog::keyPressEvent(event);
    } else if (!panel_->takeBack() && !panel_->canvas().canUndo()) {
        // With work to lose, Cancel or the close box it takes.
        reject();
    }
}

void frmEditPicture::cmdSave_Click()
{
    panel_->onCanvas({}, [](PictureCanvas& canvas) { canvas.DropSelection(); });
    if (panel_->canvas().canUndo()) {
        edited_ = panel_->canvas().renderPage();
    }
    accept();
}

void EditQuestionPicture(Services& services, Library& library, std::int32_t solIndex,
                         QWidget* parent)
{
    const auto tr = [](const char* text) { return frmEditPicture::tr(text); };
    try {
        const QString path = FindPictureFile(services.programFolder, solIndex);
        const QImage picture = decodePicture(checkPicture(path), largestPictureSide, path);
        frmEditPicture dialog(services, picture, parent);
        dialog.exec();
        if (dialog.edited()) {
            const LongWork busy(parent, tr("Saving the picture..."), LongWork::Cancel::NotOffered);
            library.replacePicture(solIndex, [&](const QString& file) {
                WriteQuestionPicture(file, *dialog.edited(), editedQuality);
            });
        }
    } catch (const Error& error) {
        services.messageBoxes->inform(tr("Edit Picture"), error.message());
    }
}

} // namespace varnholt
