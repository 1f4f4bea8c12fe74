// One file through one command.
#ifndef APPS_ORVO_CARRYING_H
#define APPS_ORVO_CARRYING_H

#include "operations.h"

namespace client {

// Loads what the command wants to have loaded, does its work and saves what it gives. A result code
// of the toolkit.
int Carry(const Operation& operation, Job& job);

}  // namespace client

#endif  // APPS_ORVO_CARRYING_H
