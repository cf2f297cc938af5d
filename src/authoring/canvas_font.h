#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

namespace varnholt {

/// The font text is stamped with. `name` is a face as the program offers it, present on this
/// machine or not; `size` is in points of 1/72 inch, at 96 pixels an inch.
struct CanvasFont
{
    QString name = QStringLiteral("MS Sans Serif");
    int size = 10;
    bool bold = false;
    bool italic = false;
    bool underline = false;
};

/// The face itself and what stands in for it, best first: faces of the same widths, then of
/// the same kind.
[[nodiscard]] QStringList faceAndSubstitutes(const QString& name);

/// The font to print with: the first of the faces above that this machine has, sized in
/// pixels so that screens do not matter, smoothed in grey only, since coloured edges do not
/// survive a JPEG.
[[nodiscard]] QFont stampFont(const CanvasFont& font);

} // namespace varnholt
