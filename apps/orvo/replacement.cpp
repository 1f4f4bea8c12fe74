#include "replacement.h"

#include <fstream>
#include <random>

namespace client {
namespace {

namespace fs = std::filesystem;

fs::path Followed(const fs::path& path) {
  std::error_code fault;
  return fs::is_symlink(path, fault) ? fs::weakly_canonical(path, fault) : path;
}

// What may not be written over in place is not replaced either.
bool MayBeReplaced(const fs::path& path) {
  std::error_code fault;
  const fs::file_status status = fs::status(path, fault);
  if (!fs::exists(status)) return true;
  return fs::is_regular_file(status) && std::fstream(path, std::ios::in | std::ios::out);
}

// Empty when none can be made there.
fs::path PrivateFolderIn(const fs::path& parent) {
  constexpr int kAttempts = 16;
  std::random_device random;
  for (int i = 0; i < kAttempts; ++i) {
    std::error_code fault;
    fs::path folder = parent / (".orvo-" + std::to_string(random()));
    if (!fs::create_directory(folder, fault)) continue;
    fs::permissions(folder, fs::perms::owner_all, fault);
    if (!fault) return folder;
    fs::remove(folder, fault);
  }
  return {};
}

}  // namespace

Replacement::Replacement(const std::string& target) : target_(Followed(target)) {
  if (MayBeReplaced(target_)) folder_ = PrivateFolderIn(target_.parent_path());
}

Replacement::~Replacement() {
  std::error_code ignored;
  if (!folder_.empty()) fs::remove_all(folder_, ignored);
}

std::string Replacement::path() const {
  constexpr std::size_t kMostCharacters = 259;  // that the toolkit takes
  std::string path = (folder_ / target_.filename()).string();
  if (path.size() <= kMostCharacters) return path;
  return (folder_ / "x").string() + target_.extension().string();
}

bool Replacement::commit() {
  std::error_code fault;
  const fs::file_status old = fs::status(target_, fault);
  if (fs::exists(old)) fs::permissions(path(), old.permissions(), fault);
  if (fault && fs::exists(old)) return false;
  fs::rename(path(), target_, fault);
  return !fault;
}

}  // namespace client
