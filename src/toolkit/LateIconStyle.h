#pragma once

#include <QProxyStyle>

namespace varnholt {

/// The desktop's own style, except that the icon for a menu bar too narrow for its entries is read
/// when it is first painted. With it Qt reads every plug-in for pictures, which is a sixth of the
/// start of a program whose menu bar nearly always is wide enough.
class LateIconStyle : public QProxyStyle
{
public:
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                       const QWidget* widget) const override;
};

} // namespace varnholt
