#include "pdf/frmFromPdf.h"

#include "pdf/PdfPagesView.h"
#include "pdf/suggest_frames.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LongWork.h"

#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>

#include <algorithm>
#include <cmath>

namespace varnholt {

namespace {

constexpr double pointsPerInch = 72;
/// Pixels to the point in which pages are looked through for suggestions.
constexpr double lookingScale = 100 / pointsPerInch;
/// A place to cut at is looked for that far above and below the click, in points.
constexpr double nearCut = 12;

/// The size in pixels of a page, smaller where it would be too large.
QSize pixelsOf(QSizeF page, double scale)
{
    const double area = page.width() * page.height() * scale * scale;
    const double fitting = area > pdf::mostPixels ? std::sqrt(pdf::mostPixels / area) * 0.99 : 1;
    return (page * scale * fitting).toSize().expandedTo({1, 1});
}

} // namespace

frmFromPdf::frmFromPdf(Services& services, Take take, QWidget* parent)
    : QDialog(parent)
    , services_(services)
    , take_(std::move(take))
{
    setObjectName(QStringLiteral("frmFromPdf"));
    buildControls();
    connectControls();
}

bool frmFromPdf::open(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    QString password;
    QString question = tr("\"%1\" needs a password:").arg(name);
    for (;;) {
        try {
            LongWork work(parentWidget(), tr("Reading the PDF file..."), LongWork::Cancel::Offered);
            reader_.open(path, password, [&] { return work.goOn(); });
            break;
        } catch (const PdfLocked&) {
            if (!password.isEmpty()) {
                question = tr("This password does not open \"%1\". Try another:").arg(name);
            }
        } catch (const Cancelled&) {
            return false;
        }
        password = services_.messageBoxes->inputText(tr("From PDF"), question);
        if (password.isEmpty()) {
            return false;
        }
    }
    setWindowTitle(tr("Questions from \"%1\"").arg(name));
    pages_->begin();
    pages_->setFocus();
    showState();
    return true;
}

void frmFromPdf::perform(const QString& label, const std::function<void(LongWork& work)>& work)
{
    QString failure;
    try {
        LongWork longWork(this, label, LongWork::Cancel::Offered);
        work(longWork);
    } catch (const Cancelled&) {
        // What has been done stays.
    } catch (const Error& error) {
        failure = error.message();
    } catch (const std::bad_alloc&) {
        failure = tr("There is not enough memory for this page.");
    }
    lblHint_->say(failure);
    showState();
}

const pdf::PageRows& frmFromPdf::rowsOf(int page, const KeepGoing& goOn)
{
    const auto known = rows_.find(page);
    if (known != rows_.end()) {
        return known->second;
    }
    const QSizeF size = reader_.pages()[static_cast<std::size_t>(page)];
    const QSize pixels = pixelsOf(size, lookingScale);
    const QImage grey = reader_.render(page, pixels, PdfReader::Colours::Grey, goOn);
    return rows_.emplace(page, pdf::LookAtPage(grey, pixels.width() / size.width())).first->second;
}

void frmFromPdf::cmdSuggest_Click()
{
    perform(tr("Looking for the questions..."), [this](LongWork& work) {
        const KeepGoing goOn = [&] { return work.goOn(); };
        const auto count = static_cast<int>(reader_.pages().size());
        std::vector<pdf::SeenPage> seen;
        int unreadable = 0;
        for (int page = 0; page < count; ++page) {
            work.progress(page + 1, count);
            pdf::SeenPage& each = seen.emplace_back();
            try {
                each.rows = rowsOf(page, goOn);
                each.starts = reader_.lineStarts(page, goOn);
            } catch (const Error&) {
                // One bad page must not stand in the way of the others.
                each = {};
                ++unreadable;
            }
        }
        const std::vector<PdfFrame> frames = pdf::SuggestFrames(seen);
        pages_->change([&](PdfFrames& all) { all.replaceAll(frames); });
        if (unreadable > 0) {
            throw Error(tr("%n page(s) could not be looked at.", nullptr, unreadable));
        }
        if (frames.empty()) {
            throw Error(tr("There is nothing on these pages that looks like a question."));
        }
    });
    pages_->setFocus();
}

void frmFromPdf::cmdSplit_Click(double y)
{
    const PdfFrame* frame = pages_->frames().current();
    if (!frame) {
        return;
    }
    const PdfFrame cut = *frame;
    perform(tr("Looking at the page..."), [&](LongWork& work) {
        const pdf::PageRows& rows = rowsOf(cut.page, [&] { return work.goOn(); });
        const bool anywhere = y < 0;
        const double gap = anywhere ? pdf::WidestGap(rows, cut.area.top(), cut.area.bottom())
                                    : pdf::WidestGap(rows, std::max(cut.area.top(), y - nearCut),
                                                     std::min(cut.area.bottom(), y + nearCut));
        if (anywhere && gap < 0) {
            throw Error(tr("This frame has no white band to be split at. Double-click where it is "
                           "to be split."));
        }
        pages_->change([&](PdfFrames& frames) { frames.split(gap < 0 ? y : gap); });
    });
}

QImage frmFromPdf::pictureOf(const std::vector<PdfFrame>& frames, const KeepGoing& goOn)
{
    std::vector<QImage> parts;
    QRect whole;
    std::vector<QPoint> places;
    for (const PdfFrame& frame : frames) {
        const QSizeF page = reader_.pages()[static_cast<std::size_t>(frame.page)];
        const QSize pixels = pixelsOf(page, txtResolution_->value() / pointsPerInch);
        if (sharpPage_ != frame.page || sharp_.size() != pixels) {
            sharp_ = QImage();
            sharp_ = reader_.render(frame.page, pixels, PdfReader::Colours::All, goOn);
            sharpPage_ = frame.page;
        }
        const double scale = pixels.width() / page.width();
        const QRect area = QRectF(frame.area.topLeft() * scale, frame.area.size() * scale)
                               .toAlignedRect()
                               .intersected(sharp_.rect());
        parts.push_back(sharp_.copy(area));
        places.emplace_back(area.left(), whole.isNull() ? 0 : whole.bottom() + 1);
        whole |= QRect(places.back(), area.size());
    }
    if (parts.size() == 1) {
        return parts.front();
    }
    QImage picture(whole.size(), QImage::Format_RGB32);
    if (picture.isNull()) {
        throw std::bad_alloc();
    }
    picture.fill(Qt::white);
    QPainter painter(&picture);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        painter.drawImage(places[i] - whole.topLeft(), parts[i]);
    }
    return picture;
}

void frmFromPdf::cmdAdd_Click()
{
    bool whole = false;
    perform(tr("Taking the pictures in..."), [&](LongWork& work) {
        const auto all = static_cast<int>(pages_->frames().pictures().size());
        for (int done = 0; done < all; ++done) {
            work.progress(done + 1, all);
            take_(pictureOf(pages_->frames().pictures().front(), [&] { return work.goOn(); }));
            ++takenCount_;
            // What has been taken is not taken again should the next one fail.
            pages_->change([](PdfFrames& frames) { frames.forgetFirstPicture(); });
        }
        whole = true;
    });
    if (whole) {
        accept();
    }
}

void frmFromPdf::showState()
{
    const PdfFrames& frames = pages_->frames();
    const auto count = static_cast<int>(frames.pictures().size());
    lblState_->setText(tr("%n picture(s)", nullptr, count));
    lblPage_->setText(
        tr("Page %1 of %2").arg(pages_->currentPage() + 1).arg(reader_.pages().size()));
    cmdAdd_->setEnabled(count > 0);
    cmdUndo_->setEnabled(frames.canUndo());
    cmdJoin_->setEnabled(frames.selected() > 0);
    for (QPushButton* button : {cmdSplit_, cmdDrop_}) {
        button->setEnabled(frames.current() != nullptr);
    }
}

void frmFromPdf::keyPressEvent(QKeyEvent* event)
{
    // With frames to lose, Cancel or the close box it takes.
    if (event->key() != Qt::Key_Escape || pages_->frames().all().empty()) {
        QDialog::keyPressEvent(event);
    }
}

} // namespace varnholt
