#include "paper/frmPaper.h"

#include "paper/PaperPreview.h"
#include "paper/paper_painter.h"
#include "paper/paper_pdf.h"
#include "pictures/picture_info.h"
#include "store/errors.h"
#include "store/file_name.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/LongWork.h"
#include "toolkit/controls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QDir>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QScrollArea>
#include <QSettings>
#include <QShortcut>
#include <QSpinBox>

#include <utility>

namespace varnholt {

namespace {

/// A printer has no use for more.
constexpr int longestPrintedSide = 3000;

QString asFileName(const QString& title)
{
    const QString name = title.trimmed();
    return name.isEmpty() ? QStringLiteral("Test") : PortableFileName(name);
}

template <typename Value>
void addChoice(QComboBox* combo, const QString& text, Value value)
{
    combo->addItem(text, static_cast<int>(value));
}

template <typename Value>
Value chosen(const QComboBox* combo)
{
    return static_cast<Value>(combo->currentData().toInt());
}

} // namespace

frmPaper::frmPaper(Services& services, PaperTest test, QWidget* parent)
    : QDialog(parent, Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                          Qt::WindowMaximizeButtonHint)
    , services_(services)
    , test_(std::move(test))
    , sizes_(ReadPaperPictureSizes(test_))
{
    setObjectName(QStringLiteral("frmPaper"));
    setWindowTitle(tr("Print or Save as PDF"));
    if (test_.date.isEmpty()) {
        const QDateTime now =
            QDateTime::fromMSecsSinceEpoch(services_.clock->millisecondsSinceEpoch());
        test_.date = QLocale().toString(now.date(), QLocale::LongFormat);
    }
    buildControls();
    restoreSettings();
    if (test_.versions.empty()) {
        makeVersions();
    } else {
        txtVersions_->setValue(static_cast<int>(test_.versions.size()));
    }
    for (LineEdit* field : {txtTitle_, txtClass_, txtDate_}) {
        field->setCursorPosition(0);
        connect(field, &QLineEdit::textChanged, this, &frmPaper::layOut);
    }
    for (QComboBox* combo : {cboPerPage_, cboPaper_, cboAnswerSpace_, cboKey_}) {
        connect(combo, &QComboBox::currentIndexChanged, this, &frmPaper::layOut);
    }
    for (QCheckBox* box : {chkTopics_, chkLargePrint_}) {
        connect(box, &QCheckBox::toggled, this, &frmPaper::layOut);
    }
    connect(txtVersions_, &QSpinBox::valueChanged, this, [this] {
        makeVersions();
        layOut();
    });
    connect(preview_, &PaperPreview::pageChanged, this, &frmPaper::showPage);
    layOut();
    resizeWithinScreen(this, {fontMetrics().averageCharWidth() * 130, fontMetrics().height() * 42});
}

frmPaper::~frmPaper()
{
    saveSettings();
}

void frmPaper::buildControls()
{
    preview_ = named(new PaperPreview, "picPreview", tr("The pages as they will be"));
    lblPage_ = makeLabel("lblPage");
    lblHint_ = new HintLabel("lblHint", preview_, HintLabel::Place::Given);

    auto* buttons = new QDialogButtonBox;
    cmdSavePdf_ = makeButton("cmdSavePdf", tr("&Save as PDF…"));
    cmdPrint_ = makeButton("cmdPrint", tr("&Print…"));
    buttons->addButton(cmdSavePdf_, QDialogButtonBox::ActionRole);
    buttons->addButton(cmdPrint_, QDialogButtonBox::ActionRole);
    buttons->addButton(makeButton("cmdClose", tr("&Close")), QDialogButtonBox::RejectRole);
    cmdSavePdf_->setDefault(true);
    cmdSavePdf_->setToolTip(QKeySequence(QKeySequence::Save).toString(QKeySequence::NativeText));
    cmdPrint_->setToolTip(QKeySequence(QKeySequence::Print).toString(QKeySequence::NativeText));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(cmdSavePdf_, &QPushButton::clicked, this, &frmPaper::cmdSavePdf_Click);
    connect(cmdPrint_, &QPushButton::clicked, this, &frmPaper::cmdPrint_Click);
    connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, cmdSavePdf_,
            &QPushButton::click);
    connect(new QShortcut(QKeySequence::Print, this), &QShortcut::activated, cmdPrint_,
            &QPushButton::click);

    auto* left = new QVBoxLayout;
    left->addWidget(buildSettings(), 1);
    left->addWidget(lblHint_);
    auto* right = new QVBoxLayout;
    right->addWidget(preview_, 1);
    right->addWidget(lblPage_, 0, Qt::AlignHCenter);
    auto* columns = new QHBoxLayout;
    columns->addLayout(left);
    columns->addLayout(right, 1);
    auto* rows = new QVBoxLayout(this);
    rows->addLayout(columns, 1);
    rows->addWidget(buttons);
    txtTitle_->setFocus();
}

QWidget* frmPaper::buildSettings()
{
    auto* settings = new QWidget;
    auto* form = new QFormLayout(settings);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    const auto add = [&](const QString& caption, auto* control, const char* name) {
        named(control, name, QString(caption).remove(u'&').remove(u':'));
        auto* label = new QLabel(caption);
        label->setBuddy(control);
        form->addRow(label, control);
        return control;
    };
    txtTitle_ = add(tr("&Title:"), new LineEdit(test_.title), "txtTitle");
    txtClass_ = add(tr("C&lass:"), new LineEdit(test_.className), "txtClass");
    txtDate_ = add(tr("&Date:"), new LineEdit(test_.date), "txtDate");
    cboPerPage_ = add(tr("&Questions on a page:"), new QComboBox, "cboPerPage");
    for (const int number : {0, 1, 2, 4}) {
        addChoice(cboPerPage_, number == 0 ? tr("As many as fit") : QString::number(number),
                  number);
    }
    cboAnswerSpace_ = add(tr("&Answer space:"), new QComboBox, "cboAnswerSpace");
    using Space = PaperOptions::AnswerSpace;
    addChoice(cboAnswerSpace_, tr("None"), Space::None);
    addChoice(cboAnswerSpace_, tr("A line"), Space::Line);
    addChoice(cboAnswerSpace_, tr("A box"), Space::Box);
    addChoice(cboAnswerSpace_, tr("A B C D E"), Space::Choices);
    cboKey_ = add(tr("Answer &key:"), new QComboBox, "cboKey");
    addChoice(cboKey_, tr("None"), PaperOptions::Key::None);
    addChoice(cboKey_, tr("On a page of its own"), PaperOptions::Key::OwnPage);
    addChoice(cboKey_, tr("After each question"), PaperOptions::Key::AfterEach);
    txtVersions_ = add(tr("&Versions:"), new QSpinBox, "txtVersions");
    txtVersions_->setRange(1, mostPaperVersions);
    txtVersions_->setToolTip(tr("Each version has the questions in another order. The key has a "
                                "column for each."));
    cboPaper_ = add(tr("Pap&er:"), new QComboBox, "cboPaper");
    addChoice(cboPaper_, tr("A4"), PaperOptions::Paper::A4);
    addChoice(cboPaper_, tr("Letter"), PaperOptions::Paper::Letter);
    chkTopics_ = named(new QCheckBox(tr("T&opic above each question")), "chkTopics");
    chkLargePrint_ = named(new QCheckBox(tr("La&rge print")), "chkLargePrint");
    chkLargePrint_->setToolTip(tr("One question on a page, and all text half as large again."));
    form->addRow(chkTopics_);
    form->addRow(chkLargePrint_);

    auto* scroll = new QScrollArea;
    scroll->setWidget(settings);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setMinimumWidth(settings->sizeHint().width() + fontMetrics().averageCharWidth() * 4);
    return scroll;
}

void frmPaper::restoreSettings()
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("paper"));
    for (QComboBox* combo : {cboPerPage_, cboPaper_, cboAnswerSpace_, cboKey_}) {
        const QVariant value = settings.value(combo->objectName());
        if (value.isValid()) {
            combo->setCurrentIndex(std::max(0, combo->findData(value.toInt())));
        }
    }
    const PaperOptions usual;
    if (!settings.contains(cboPaper_->objectName())) {
        const bool letter = QLocale().measurementSystem() == QLocale::ImperialUSSystem;
        cboPaper_->setCurrentIndex(letter ? 1 : 0);
        cboAnswerSpace_->setCurrentIndex(static_cast<int>(usual.answerSpace));
        cboKey_->setCurrentIndex(static_cast<int>(usual.key));
    }
    for (QCheckBox* box : {chkTopics_, chkLargePrint_}) {
        box->setChecked(settings.value(box->objectName(), false).toBool());
    }
    txtVersions_->setValue(settings.value(txtVersions_->objectName(), 1).toInt());
    restoreGeometry(settings.value(QStringLiteral("geometry")).toByteArray());
}

void frmPaper::saveSettings() const
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("paper"));
    for (const QComboBox* combo : {cboPerPage_, cboPaper_, cboAnswerSpace_, cboKey_}) {
        settings.setValue(combo->objectName(), combo->currentData());
    }
    for (const QCheckBox* box : {chkTopics_, chkLargePrint_}) {
        settings.setValue(box->objectName(), box->isChecked());
    }
    settings.setValue(txtVersions_->objectName(), txtVersions_->value());
    settings.setValue(QStringLiteral("geometry"), saveGeometry());
}

PaperOptions frmPaper::options() const
{
    PaperOptions options;
    options.paper = chosen<PaperOptions::Paper>(cboPaper_);
    options.questionsPerPage = chosen<int>(cboPerPage_);
    options.answerSpace = chosen<PaperOptions::AnswerSpace>(cboAnswerSpace_);
    options.key = chosen<PaperOptions::Key>(cboKey_);
    options.topicLines = chkTopics_->isChecked();
    options.largePrint = chkLargePrint_->isChecked();
    return options;
}

void frmPaper::makeVersions()
{
    test_.versions =
        MakePaperVersions(test_.questions.size(), txtVersions_->value(), *services_.random);
}

void frmPaper::layOut()
{
    test_.title = txtTitle_->text();
    test_.className = txtClass_->text();
    test_.date = txtDate_->text();
    cboPerPage_->setEnabled(!chkLargePrint_->isChecked());
    const auto missing = std::count_if(sizes_.begin(), sizes_.end(),
                                       [](const auto& size) { return size.width <= 0; });
    lblHint_->say(missing > 0 ? tr("%n question(s) have no picture that can be shown. A sentence "
                                   "stands in its place.",
                                   nullptr, static_cast<int>(missing))
                              : QString());
    try {
        font_ = PaperFont::forTest(test_);
        widthOf_ = font_.widths();
        preview_->show(test_, LayOutPaper(test_, options(), sizes_, widthOf_), font_.family);
    } catch (const Error& error) {
        preview_->show(test_, {}, {});
        lblHint_->say(error.message());
    }
    const bool something = !preview_->layout().pages.empty() && !test_.questions.empty();
    cmdSavePdf_->setEnabled(something);
    cmdPrint_->setEnabled(something);
    showPage();
}

void frmPaper::showPage()
{
    const auto pages = preview_->layout().pages.size();
    lblPage_->setText(pages == 0 ? QString()
                                 : tr("Page %1 of %2").arg(preview_->currentPage() + 1).arg(pages));
}

void frmPaper::tell(const QString& title, const QString& reason)
{
    services_.messageBoxes->inform(title, reason);
}

bool frmPaper::perform(const QString& what, const std::function<void(LongWork& work)>& work)
{
    QString failure;
    try {
        LongWork busy(this, what, LongWork::Cancel::Offered);
        work(busy);
        return true;
    } catch (const Cancelled&) {
        return false;
    } catch (const Error& error) {
        failure = error.message();
    } catch (const std::bad_alloc&) {
        failure = tr("There is not enough memory for so many pictures.");
    }
    // After the progress bar has gone.
    tell(tr("The Test Was Not Finished"), failure);
    return false;
}

void frmPaper::cmdSavePdf_Click()
{
    const std::optional<QString> chosen = services_.fileDialogs->saveFile(
        tr("PDF Files (*.pdf)"), asFileName(test_.title) + QStringLiteral(".pdf"));
    if (!chosen) {
        return;
    }
    const QString path = chosen->endsWith(QStringLiteral(".pdf"), Qt::CaseInsensitive)
                             ? *chosen
                             : *chosen + QStringLiteral(".pdf");
    if (path != *chosen && QFileInfo::exists(path) &&
        !services_.messageBoxes->yesNo(
            tr("Replace File?"),
            tr("There is a file %1 already. Replace it?").arg(QDir::toNativeSeparators(path)))) {
        return;
    }
    const bool saved = perform(tr("Saving the PDF file…"), [&](LongWork& work) {
        SavePaperPdf(path, test_, preview_->layout(), font_,
                     [&](int page, int pages) { work.progress(page, pages); });
    });
    if (saved) {
        lblHint_->say(tr("Saved as %1.").arg(QDir::toNativeSeparators(path)));
        if (onDone) {
            onDone(test_);
        }
    }
}

void frmPaper::cmdPrint_Click()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageSize(QPageSize(options().paper == PaperOptions::Paper::Letter ? QPageSize::Letter
                                                                                 : QPageSize::A4));
    printer.setDocName(asFileName(test_.title));
    QPrintDialog dialog(&printer, this);
    dialog.setMinMax(1, static_cast<int>(preview_->layout().pages.size()));
    if (dialog.exec() == QDialog::Accepted) {
        printOn(printer);
    }
}

void frmPaper::printOn(QPrinter& printer)
{
    const PaperLayout& layout = preview_->layout();
    const int count = static_cast<int>(layout.pages.size());
    const int first = printer.fromPage() > 0 ? printer.fromPage() : 1;
    const int last = printer.toPage() > 0 ? std::min(printer.toPage(), count) : count;
    const auto imageOf = [this](std::size_t question) {
        const QString& path = test_.questions.at(question).picturePath;
        try {
            return decodePicture(checkPicture(path), longestPrintedSide, path);
        } catch (const PictureError&) {
            return QImage();
        }
    };
    const bool printed = perform(tr("Printing…"), [&](LongWork& work) {
        printer.setFullPage(true);
        QPainter painter;
        const auto failed = [] {
            return Error(tr("The printer does not take the test. See whether it is switched on and "
                            "connected, and try again."));
        };
        if (!painter.begin(&printer)) {
            throw failed();
        }
        const double dots = printer.resolution() / 72.0;
        for (int page = first; page <= last; ++page) {
            if (page > first && !printer.newPage()) {
                throw failed();
            }
            painter.resetTransform();
            painter.scale(dots, dots);
            PaintPaperPage(painter, layout.pages[static_cast<std::size_t>(page) - 1], font_.family,
                           imageOf);
            work.progress(page - first + 1, last - first + 1);
        }
        if (!painter.end()) {
            throw failed();
        }
    });
    if (printed && onDone) {
        onDone(test_);
    }
}

} // namespace varnholt
