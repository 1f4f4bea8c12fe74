#include "private_folder.h"

#include <charconv>
#include <random>
#include <set>
#include <string>
#include <string_view>

#include "file_system.h"

namespace client {
namespace {

namespace fs = std::filesystem;

// ".orvo-MACHINE-PROCESS-NUMBER", short, since the toolkit takes no long paths.
std::string PrefixHere() {
  return ".orvo-" + MachineName().substr(0, 12) + "-";
}

// The process that a folder's name tells; 0 for names of others.
int ProcessOf(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix)) return 0;
  name.remove_prefix(prefix.size());
  int process = 0;
  const auto [stop, fault] = std::from_chars(name.data(), name.data() + name.size(), process);
  return fault == std::errc{} && stop != name.data() + name.size() && *stop == '-' ? process : 0;
}

// By strings: the standard library's own way to join paths may crash without memory.
fs::path Joined(const fs::path& folder, const std::string& name) {
  return folder.empty() ? name : folder.string() + "/" + name;
}

void RemoveLeftIn(const fs::path& parent) {
  const std::string prefix = PrefixHere();
  for (const std::string& name : NamesIn(parent)) {
    const int process = ProcessOf(name, prefix);
    if (process <= 0 || IsRunning(process)) continue;
    const fs::path path = Joined(parent, name);
    std::error_code fault;
    if (!fs::is_directory(fs::symlink_status(path, fault)) || !IsOwn(path)) continue;
    const int lock = LockFolder(path);
    if (lock < 0) continue;
    RemoveFolder(path);
    Unlock(lock);
  }
}

}  // namespace

PrivateFolder::~PrivateFolder() {
  if (path_.empty()) return;
  RemoveFolder(path_);
  Unlock(lock_);
}

bool PrivateFolder::makeIn(const fs::path& parent) {
  // Once for each folder: reading a large one takes a while.
  static std::set<fs::path> cleaned;
  const fs::path here = parent.empty() ? fs::path(".") : parent;
  if (cleaned.insert(here).second) RemoveLeftIn(here);
  constexpr int kAttempts = 16;
  constexpr unsigned kNumbers = 1000;
  std::random_device random;
  for (int i = 0; i < kAttempts; ++i) {
    fs::path folder = Joined(parent, PrefixHere() + std::to_string(ThisProcess()) + "-" +
                                         std::to_string(random() % kNumbers));
    if (!MakePrivateFolder(folder)) continue;
    path_ = std::move(folder);
    lock_ = LockFolder(path_);
    return true;
  }
  return false;
}

}  // namespace client
