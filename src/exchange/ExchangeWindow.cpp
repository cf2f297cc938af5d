#include "exchange/ExchangeWindow.h"

#include "store/errors.h"
#include "toolkit/controls.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace varnholt {

namespace {

constexpr int patienceMs = 500;
/// Often enough for a smooth bar, and no cost beside the work.
constexpr int eventsEveryMs = 30;

/// The bar's fill. Its caption is printed where the back prints it too, in the colour that
/// reads on the fill, so that one number runs across both.
class FaceLabel : public QLabel
{
public:
    explicit FaceLabel(QLabel* back)
        : QLabel(back)
        , back_(back)
    {}

    void setShare(float share)
    {
        share_ = share;
        const QRect area = back_->contentsRect();
        setGeometry(area.x(), area.y(), qRound(share_ * static_cast<float>(area.width())),
                    area.height());
    }
    [[nodiscard]] float share() const { return share_; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().highlight());
        painter.setPen(palette().color(QPalette::HighlightedText));
        painter.drawText(QRect(QPoint(), back_->contentsRect().size()), Qt::AlignCenter, text());
    }

private:
    QLabel* back_;
    float share_ = 0;
};

/// The bar at full length. It has no text of its own: a label in a layout that gets another
/// text has the whole window laid out anew.
class BackLabel : public QLabel
{
public:
    FaceLabel* face = nullptr;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QLabel::paintEvent(event);
        QPainter(this).drawText(contentsRect(), Qt::AlignCenter, face->text());
    }
    void resizeEvent(QResizeEvent* event) override
    {
        QLabel::resizeEvent(event);
        face->setShare(face->share());
    }
};

} // namespace

/// `lblBack` and `lblFace`: the bar.
class ProgressBarLabels
{
public:
    ProgressBarLabels()
        : lblBack_(named(new BackLabel, "lblBack"))
        , lblFace_(named(new FaceLabel(lblBack_), "lblFace", ExchangeWindow::tr("Progress")))
    {
        lblBack_->face = lblFace_;
        lblBack_->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        lblBack_->setBackgroundRole(QPalette::Base);
        lblBack_->setForegroundRole(QPalette::Text);
        lblBack_->setAutoFillBackground(true);
        lblBack_->setMinimumHeight(lblBack_->fontMetrics().height() * 3 / 2);
        QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        policy.setRetainSizeWhenHidden(true);
        lblBack_->setSizePolicy(policy);
        setVisible(false);
    }

    [[nodiscard]] QLabel* widget() const { return lblBack_; }

    void setVisible(bool visible)
    {
        if (!visible) {
            show(0, QString());
        }
        lblBack_->setVisible(visible);
        lblFace_->setVisible(visible);
    }

    void show(float share, const QString& caption)
    {
        lblFace_->setShare(share);
        setCaption(caption);
    }

    [[nodiscard]] bool eventsAreDue() const
    {
        return !sinceEvents_.isValid() || sinceEvents_.elapsed() >= eventsEveryMs;
    }

    void processEvents()
    {
        if (eventsAreDue()) {
            QCoreApplication::processEvents();
            sinceEvents_.start();
        }
    }

private:
    void setCaption(const QString& caption)
    {
        lblFace_->setText(caption);
        lblBack_->update();
    }

    BackLabel* lblBack_;
    FaceLabel* lblFace_;
    QElapsedTimer sinceEvents_;
};

ExchangeWindow::ExchangeWindow(const char* objectName, const QString& title)
    : bar_(std::make_unique<ProgressBarLabels>())
{
    setObjectName(QLatin1String(objectName));
    setWindowTitle(title);
}

ExchangeWindow::~ExchangeWindow() = default;

void ExchangeWindow::buildColumn(const QList<QWidget*>& controls, QPushButton* startButton,
                                 QWidget* followUp)
{
    startButton_ = startButton;
    auto* lblTitle = makeLabel("lblTitle", windowTitle());
    QFont large = lblTitle->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    large.setBold(true);
    lblTitle->setFont(large);

    auto* column = new QWidget;
    column->setMaximumWidth(fontMetrics().averageCharWidth() * 80);
    auto* rows = new QVBoxLayout(column);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(lblTitle);
    rows->addSpacing(fontMetrics().height());
    for (QWidget* control : controls) {
        rows->addWidget(control);
    }
    rows->addSpacing(fontMetrics().height() / 2);
    rows->addWidget(bar_->widget());
    rows->addSpacing(fontMetrics().height() / 2);
    rows->addWidget(startButton, 0, Qt::AlignRight);
    lblReason_ = makeLabel("lblReason");
    lblReason_->setWordWrap(true);
    lblReason_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    rows->addSpacing(fontMetrics().height() / 2);
    rows->addWidget(lblReason_);
    sayIn(lblReason_, {});
    if (followUp) {
        rows->addWidget(followUp, 0, Qt::AlignLeft);
    }
    rows->addStretch();

    auto* middle = new QHBoxLayout(this);
    const int space = 2 * fontMetrics().height();
    middle->setContentsMargins(space, space, space, space);
    middle->addStretch(1);
    middle->addWidget(column, 1000);
    middle->addStretch(1);
}

void ExchangeWindow::closeEvent(QCloseEvent* event)
{
    event->setAccepted(!running_);
}

void ExchangeWindow::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        auto* focused = qobject_cast<QPushButton*>(focusWidget());
        (focused ? focused : startButton_)->click();
        break;
    }
    case Qt::Key_Escape:
        close();
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void ExchangeWindow::showBar()
{
    bar_->setVisible(true);
}

void ExchangeWindow::hideBar()
{
    bar_->setVisible(false);
}

ExchangeProgress ExchangeWindow::progress()
{
    return [this](ExchangeWork work, std::int64_t done, std::int64_t all) {
        switch (work) {
        case ExchangeWork::Collecting:
            return showProgress(tr("Collecting: %1%"), done, all);
        case ExchangeWork::Packing:
            return showProgress(tr("%1%"), done, all);
        case ExchangeWork::Unpacking:
            return showProgress(tr("Unpacking: %1%"), done, all);
        case ExchangeWork::Importing:
            return showProgress(tr("Importing: %1%"), done, all);
        }
    };
}

void ExchangeWindow::showProgress(const QString& caption, std::int64_t done, std::int64_t all)
{
    if (done < all && !bar_->eventsAreDue()) {
        return;
    }
    if (!bar_->widget()->isVisible() && sinceBegin_.elapsed() >= patienceMs) {
        showBar();
    }
    if (bar_->widget()->isVisible() && all > 0) {
        bar_->show(static_cast<float>(done) / static_cast<float>(all),
                   caption.arg(done * 100 / all));
    }
    bar_->processEvents();
}

void ExchangeWindow::explain(const QString& sentence)
{
    sayIn(lblReason_, sentence);
}

void ExchangeWindow::explain(const std::exception& failure)
{
    if (const auto* error = dynamic_cast<const Error*>(&failure)) {
        explain(error->message());
    }
}

} // namespace varnholt
