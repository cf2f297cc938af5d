#include "selection/RecentTests.h"

#include "toolkit/controls.h"

#include <QDateTime>
#include <QGridLayout>
#include <QLocale>
#include <QTextDocument>

namespace varnholt {

QString TestInWords(const PastTest& test)
{
    const QString date =
        QLocale().toString(QDateTime::fromSecsSinceEpoch(test.madeAt).date(), QLocale::ShortFormat);
    return test.className.isEmpty()
               ? RecentTests::tr("%1: %2").arg(date, test.name)
               : RecentTests::tr("%1, %2: %3").arg(date, test.className, test.name);
}

RecentTests::RecentTests(QWidget* parent)
    : QGroupBox(tr("Last Tests"), parent)
{
    setObjectName(QStringLiteral("fraRecent"));
    auto* grid = new QGridLayout(this);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        Row& row = rows_[i];
        const QByteArray number = QByteArray::number(static_cast<int>(i) + 1);
        row.label = makeLabel(("lblRecent" + number).constData());
        row.label->setMinimumWidth(fontMetrics().averageCharWidth() * 8);
        row.button = makeButton(("cmdMakeAgain" + number).constData(), tr("Make Again"));
        grid->addWidget(row.label, static_cast<int>(i), 0);
        grid->addWidget(row.button, static_cast<int>(i), 1);
        connect(row.button, &QPushButton::clicked, this, [this, i] {
            const PastTest test = tests_.at(i);
            Q_EMIT makeAgain(test);
        });
    }
    grid->setColumnStretch(0, 1);
    hide();
}

void RecentTests::setTests(const std::vector<PastTest>& tests)
{
    tests_ = tests;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool there = i < tests_.size();
        rows_[i].label->setVisible(there);
        rows_[i].button->setVisible(there);
        if (there) {
            rows_[i].button->setAccessibleName(tr("Make again: %1").arg(TestInWords(tests_[i])));
        }
    }
    showTexts();
    setVisible(!tests_.empty());
}

void RecentTests::showTexts()
{
    for (std::size_t i = 0; i < rows_.size() && i < tests_.size(); ++i) {
        const QString text = TestInWords(tests_[i]);
        QLabel& label = *rows_[i].label;
        label.setText(label.fontMetrics().elidedText(text, Qt::ElideRight, label.width()));
        label.setToolTip(Qt::convertFromPlainText(text));
        label.setAccessibleName(text);
    }
}

void RecentTests::resizeEvent(QResizeEvent* event)
{
    QGroupBox::resizeEvent(event);
    layout()->activate();
    showTexts();
}

std::vector<QWidget*> RecentTests::controls() const
{
    std::vector<QWidget*> result;
    for (const Row& row : rows_) {
        result.push_back(row.button);
    }
    return result;
}

} // namespace varnholt
