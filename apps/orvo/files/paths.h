// Which file each input becomes.
#ifndef APPS_ORVO_FILES_PATHS_H
#define APPS_ORVO_FILES_PATHS_H

#include <filesystem>
#include <set>
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

// Files that a command writes beside its targets. The inputs have to outlive it.
class FurtherTargets {
 public:
  explicit FurtherTargets(const std::vector<std::string>& inputs) : inputs_(inputs) {}

  // Why the path must not be written, because it is an input or was claimed before; empty when it
  // may.
  [[nodiscard]] std::string claim(const std::string& path);

 private:
  const std::vector<std::string>& inputs_;
  std::set<std::filesystem::path> claimed_;
};

}  // namespace client

#endif  // APPS_ORVO_FILES_PATHS_H
