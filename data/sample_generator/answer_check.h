#pragma once

#include "content.h"

namespace varnholt {

/// Works out what every question with a `value` or `zero` asks for and compares: its answer must
/// be right and, of four options, be the only one that is. Questions without either must belong
/// to the few subtopics whose answers no formula can say. Throws std::runtime_error naming every
/// question that is at fault.
void checkAnswers(const SampleContent& content);

} // namespace varnholt
