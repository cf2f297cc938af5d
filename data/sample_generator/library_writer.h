#pragma once

#include "content.h"

namespace varnholt {

/// Writes a library file with the tables of `schemaPath`, its History row and the rows of
/// `content`: one assessment, its topics and subtopics in the order of their first question.
/// The file appears under `path` only when it is complete, without a write-ahead log.
/// Throws std::runtime_error.
void writeLibrary(const QString& path, const QString& schemaPath, const SampleContent& content);

} // namespace varnholt
