#include "pictures/temporary_file.h"

#include <random>

#include "pictures/file_handle.h"

namespace modules {

TemporaryFile::TemporaryFile(const std::filesystem::path& neighbour) {
  constexpr int kAttempts = 16;
  std::random_device random;
  // As a string: the library's own ways to change a path may crash when memory runs out.
  const std::string path = neighbour.string();
  const auto last = path.rfind(std::filesystem::path::preferred_separator);
  const std::string folder = path.substr(0, last + 1);  // empty without one
  for (int i = 0; i < kAttempts; ++i) {
    std::filesystem::path name(folder + "orvo" + std::to_string(random()) + ".tmp");
    // Exclusively, so that a file of somebody else is never taken.
    if (!OpenFile(name.c_str(), "wbx")) continue;
    path_ = std::move(name);
    return;
  }
}

TemporaryFile::~TemporaryFile() {
  std::error_code ignored;
  if (!path_.empty()) std::filesystem::remove(path_, ignored);
}

bool TemporaryFile::moveTo(const std::filesystem::path& target) {
  std::error_code error;
  std::filesystem::rename(path_, target, error);
  if (!error) path_.clear();
  return !error;
}

}  // namespace modules
