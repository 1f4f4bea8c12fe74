// The kinds of files that the client reads and writes.
#ifndef APPS_ORVO_COMMANDS_FORMAT_LIST_H
#define APPS_ORVO_COMMANDS_FORMAT_LIST_H

#include "operations.h"

namespace client {

// Reports them, each as far as its libraries are there: as a table, or as JSON.
int ListFormats(Job& job);

}  // namespace client

#endif  // APPS_ORVO_COMMANDS_FORMAT_LIST_H
