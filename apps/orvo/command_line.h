// From words to a request.
#ifndef APPS_ORVO_COMMAND_LINE_H
#define APPS_ORVO_COMMAND_LINE_H

#include <variant>

#include "batch.h"

namespace client {

// What the words ask for, or the status to end with: help was printed, or what is wrong was told.
std::variant<Request, ExitStatus> ReadCommandLine(int argc, const char* const* argv);

}  // namespace client

#endif  // APPS_ORVO_COMMAND_LINE_H
