#pragma once

#include <QString>

struct sqlite3;

namespace varnholt {

/// Why the last call to `database` failed, in a whole sentence for a user; SQLite's own words only
/// where they are all there is. Null stands for a database that could not be made at all.
[[nodiscard]] QString WhatHappened(sqlite3* database);

} // namespace varnholt
