#include "toolkit/key_icon.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

#include <algorithm>

namespace varnholt {

namespace {

class KeyIconEngine : public QIconEngine
{
public:
    explicit KeyIconEngine(QString letter)
        : letter_(std::move(letter))
    {}

    [[nodiscard]] QIconEngine* clone() const override { return new KeyIconEngine(letter_); }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect({}, size), mode, state);
        return pixmap;
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QColor ink = QApplication::palette().color(group, QPalette::ButtonText);
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(ink, rect.height() / 16.0));
        const qreal margin = rect.height() / 16.0;
        const QRectF cap = QRectF(rect).adjusted(margin, margin, -margin, -margin);
        painter->drawRoundedRect(cap, cap.height() / 5, cap.height() / 5);
        QFont font = QApplication::font();
        font.setPixelSize(std::max(1, rect.height() * 10 / 16));
        painter->setFont(font);
        painter->drawText(cap, Qt::AlignCenter, letter_);
    }

private:
    QString letter_;
};

} // namespace

QIcon keyIcon(const QString& letter)
{
    return QIcon(new KeyIconEngine(letter));
}

} // namespace varnholt
