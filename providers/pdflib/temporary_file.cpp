#include "pdflib/temporary_file.h"

#include <random>
#include <stdexcept>

#include "ltfil13n/file_handle.h"

namespace provider {

TemporaryFile::TemporaryFile(const std::filesystem::path& neighbour) {
  constexpr int kAttempts = 16;
  std::random_device random;
  for (int i = 0; i < kAttempts; ++i) {
    std::filesystem::path name = neighbour;
    name.replace_filename("orvo" + std::to_string(random()) + ".tmp");
    // Exclusively, so that a file of somebody else is never taken.
    if (!OpenFile(name.c_str(), "wbx")) continue;
    path_ = std::move(name);
    return;
  }
  throw std::runtime_error("no temporary file can be made");
}

TemporaryFile::~TemporaryFile() {
  std::error_code ignored;
  if (!path_.empty()) std::filesystem::remove(path_, ignored);
}

void TemporaryFile::moveTo(const std::filesystem::path& target) {
  std::filesystem::rename(path_, target);
  path_.clear();
}

}  // namespace provider
