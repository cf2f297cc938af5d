#pragma once

#include <QDate>
#include <QString>

namespace varnholt {

/// What a presentation is called: after the assessment or test that it is of, and the day. "Physics
/// 2026-11-21".
[[nodiscard]] QString PresentationName(const QString& of, QDate day);

} // namespace varnholt
