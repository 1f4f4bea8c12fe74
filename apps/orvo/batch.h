// Runs one command over its files.
#ifndef APPS_ORVO_BATCH_H
#define APPS_ORVO_BATCH_H

#include <string>
#include <vector>

#include "operations.h"

namespace client {

// What the process answers.
enum ExitStatus : int {
  kAllDone = 0,
  kSomeFailed = 1,
  kWrongUsage = 2,
  kModuleMissing = 3,
};

// What the user asks for.
struct Request {
  const Operation* operation = nullptr;
  Parameters parameters;
  std::vector<std::string> inputs;
};

// Does the work, goes on after a file that fails, and reports.
ExitStatus Run(COrvoInstance& toolkit, const Request& request);

}  // namespace client

#endif  // APPS_ORVO_BATCH_H
