#include "replacement.h"

#include <fstream>
#include <set>

#include "file_system.h"

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

// Results that took no file's place.
std::set<fs::path>& NewResults() {
  static std::set<fs::path> paths;
  return paths;
}

fs::path FolderOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

}  // namespace

Replacement::Replacement(const std::string& target) : target_(Followed(target)) {
  ready_ = MayBeReplaced(target_) && folder_.makeIn(target_.parent_path());
}

std::string Replacement::path() const {
  constexpr std::size_t kMostCharacters = 259;  // that the toolkit takes
  // By strings: the standard library's own way to join paths may crash without memory.
  const std::string folder = folder_.path().string() + "/";
  std::string path = folder + target_.filename().string();
  if (path.size() <= kMostCharacters) return path;
  return folder + "x" + target_.extension().string();
}

bool Replacement::commit() {
  std::error_code fault;
  const bool replaces = fs::exists(target_, fault);
  if (replaces && !(TakeRights(target_, path()) && Sync(path()))) return false;
  fs::rename(path(), target_, fault);
  if (fault) return false;
  if (!replaces) NewResults().insert(target_);
  return !replaces || Sync(FolderOf(target_));
}

bool SyncNewResults() {
  bool done = true;
  std::set<fs::path> folders;
  for (const fs::path& path : NewResults()) {
    done = Sync(path) && done;
    folders.insert(FolderOf(path));
  }
  for (const fs::path& folder : folders) done = Sync(folder) && done;
  NewResults().clear();
  return done;
}

}  // namespace client
