#include "paths.h"

#include <algorithm>
#include <map>

namespace client {
namespace {

namespace fs = std::filesystem;

bool EndsAsFolder(const std::string& path) {
  return path.ends_with('/') || path.ends_with(fs::path::preferred_separator);
}

fs::path Renamed(const fs::path& input, const fs::path& folder, const std::string& extension) {
  fs::path target = folder / input.filename();
  if (!extension.empty()) target.replace_extension(extension);
  return target;
}

// Tells whether an existing file is one of the inputs. Only inputs of the same size are looked at
// closely, so that long lists stay quick.
class Inputs {
 public:
  explicit Inputs(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
      std::error_code fault;
      const auto bytes = fs::file_size(path, fault);
      if (!fault) bySize_.emplace(bytes, path);
    }
  }

  [[nodiscard]] bool contain(const std::string& path) const {
    std::error_code fault;
    const auto bytes = fs::file_size(path, fault);
    if (fault) return false;
    const auto [first, last] = bySize_.equal_range(bytes);
    return std::any_of(first, last, [&path](const auto& input) {
      std::error_code unseen;
      return fs::equivalent(input.second, path, unseen);
    });
  }

 private:
  std::multimap<std::uintmax_t, std::string> bySize_;
};

std::string FindClash(const Plan& plan, const std::vector<std::string>& inputs, bool inPlace) {
  const Inputs known(inputs);
  std::set<fs::path> targets;
  for (const Task& task : plan.tasks) {
    if (!inPlace && known.contain(task.target)) {
      return task.target + " is an input file; --in-place writes over inputs";
    }
    std::error_code fault;
    if (!targets.insert(fs::weakly_canonical(task.target, fault)).second) {
      return task.target + " would be written twice";
    }
  }
  return {};
}

Plan Failed(std::string problem) {
  return {.tasks = {}, .folder = {}, .problem = std::move(problem)};
}

}  // namespace

Plan PlanTargets(const std::vector<std::string>& inputs, const Parameters& parameters) {
  const bool inPlace = parameters.has("in-place");
  const std::string output = parameters.has("output") ? parameters.text("output") : "";
  const std::string extension = parameters.has("to") ? parameters.text("to") : "";
  if (inPlace && !(output.empty() && extension.empty())) {
    return Failed("--in-place goes with neither --output nor --to");
  }
  if (!inPlace && output.empty() && extension.empty()) {
    return Failed("--output or --to must say where the result goes");
  }

  std::error_code fault;
  const bool intoFolder = !output.empty() && (inputs.size() > 1 || EndsAsFolder(output) ||
                                              fs::is_directory(output, fault));
  if (!intoFolder && !output.empty() && !extension.empty()) {
    return Failed("--to goes with a folder; the extension of " + output + " says the format");
  }

  Plan plan;
  if (intoFolder) plan.folder = output;
  for (const std::string& input : inputs) {
    if (inPlace) {
      plan.tasks.push_back({input, input});
    } else if (!output.empty() && !intoFolder) {
      plan.tasks.push_back({input, output});
    } else {
      const fs::path folder = intoFolder ? fs::path(output) : fs::path(input).parent_path();
      plan.tasks.push_back({input, Renamed(input, folder, extension).string()});
    }
  }
  plan.problem = FindClash(plan, inputs, inPlace);
  return plan;
}

std::string FurtherTargets::claim(const std::string& path) {
  if (Inputs(inputs_).contain(path)) return path + " is an input file";
  std::error_code fault;
  if (claimed_.insert(fs::weakly_canonical(path, fault)).second) return {};
  return path + " would be written twice";
}

}  // namespace client
