#include "toolkit/LateIconStyle.h"

#include <QIconEngine>
#include <QPainter>

#include <functional>

namespace varnholt {

namespace {

class LateIcon : public QIconEngine
{
public:
    explicit LateIcon(std::function<QIcon()> read)
        : read_(std::move(read))
    {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        read_().paint(painter, rect, Qt::AlignCenter, mode, state);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return read_().pixmap(size, mode, state);
    }

    [[nodiscard]] QIconEngine* clone() const override { return new LateIcon(read_); }

private:
    std::function<QIcon()> read_;
};

} // namespace

QIcon LateIconStyle::standardIcon(StandardPixmap icon, const QStyleOption* option,
                                  const QWidget* widget) const
{
    if (icon != SP_ToolBarHorizontalExtensionButton) {
        return QProxyStyle::standardIcon(icon, option, widget);
    }
    return QIcon(new LateIcon([this] {
        return QProxyStyle::standardIcon(SP_ToolBarHorizontalExtensionButton, nullptr, nullptr);
    }));
}

} // namespace varnholt
