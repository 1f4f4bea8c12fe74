#ifndef APPS_ORVO_COMMANDS_COMPLETION_H
#define APPS_ORVO_COMMANDS_COMPLETION_H

#include <string>

namespace client {

// A bash script that completes commands, options and choices; everything else is a file name.
std::string CompletionScript();

}  // namespace client

#endif  // APPS_ORVO_COMMANDS_COMPLETION_H
