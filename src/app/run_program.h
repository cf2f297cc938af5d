#pragma once

class QApplication;

namespace varnholt {

/// Names the application as settings, data folders and windows need it.
void NameApplication();

/// The program from the choice of its folder to the end of its event loop; returns the exit
/// code. A second start on the same library hands over to the first and returns 0, or reads
/// only where another user or machine has it. What keeps the program from starting is reported to
/// the user.
int RunProgram(QApplication& application);

} // namespace varnholt
