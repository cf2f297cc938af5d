#pragma once

#include <QString>
#include <QStringList>

namespace varnholt {

/// The paragraphs of a text as every back end shows them: line breaks of any kind separate
/// paragraphs, tabs stay, other control characters (which no presentation file can hold) are
/// left out and broken surrogates become the replacement character. Never empty.
[[nodiscard]] QStringList slideParagraphs(const QString& text);

} // namespace varnholt
