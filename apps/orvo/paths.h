// Which file each input becomes.
#ifndef APPS_ORVO_PATHS_H
#define APPS_ORVO_PATHS_H

#include <string>
#include <vector>

#include "options.h"

namespace client {

struct Task {
  std::string source;
  std::string target;  // empty when nothing is written
};

struct Plan {
  std::vector<Task> tasks;
  std::string folder;   // to be made before the work; empty for none
  std::string problem;  // why the call cannot be carried out; empty when it can
};

// By the options "in-place", "output" and "to". No target is an input under whatever name, unless
// the work is in place, and none is named twice.
Plan PlanTargets(const std::vector<std::string>& inputs, const Parameters& parameters);

}  // namespace client

#endif  // APPS_ORVO_PATHS_H
