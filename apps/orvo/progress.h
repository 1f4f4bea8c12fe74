// How far the work is, as a bar on standard error when that is a terminal, and the user's wish to
// stop. Both live for the whole process: the toolkit's callback carries no data of its own and may
// be called by later loads and saves too.
#ifndef APPS_ORVO_PROGRESS_H
#define APPS_ORVO_PROGRESS_H

#include <string>

namespace client {

// Makes Ctrl-C, and the system's wishes that the process ends, end the work tidily; a second one
// ends the process.
void CatchInterrupts();
bool Interrupted();
// The signal that asked for it; 0 for none.
int InterruptingSignal();

// Starts a step of the work, such as "sharpen", on a file.
void BeginStep(const std::string& file, const std::string& step);

// The callback for the toolkit: shows the percentage, and asks to stop once the user has.
int ReportProgress(int percent, void* unused);

// Takes the bar off the terminal's line, so that something else may be written there.
void ClearProgress();

}  // namespace client

#endif  // APPS_ORVO_PROGRESS_H
