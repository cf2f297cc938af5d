#pragma once

#include <QDate>
#include <QString>

namespace varnholt {

/// What a presentation is called: after the assessment or test that it is of, and the day. "Physics
/// 2026-11-21".
[[nodiscard]] QString PresentationName(const QString& of, QDate day);

/// The name for a file, without its extension: what no file system takes is replaced, and it is no
/// longer than any of them allows. Never empty.
[[nodiscard]] QString FileNameOf(const QString& name);

} // namespace varnholt
