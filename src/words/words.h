#pragma once

class QCoreApplication;

namespace varnholt {

/// Has the application say "1 question" and "2 questions" where the code says "%n question(s)".
/// To be called once, before the first window. Owned by the application.
void InstallWords(QCoreApplication& application);

} // namespace varnholt
