#include "file_system.h"

#if !defined(_WIN32)
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <memory>
#include <string_view>

#if defined(__linux__)
#include <sys/xattr.h>
#endif

namespace client {
namespace {

namespace fs = std::filesystem;

using OpenFolder = std::unique_ptr<DIR, int (*)(DIR*)>;

void TakeMarks(const fs::path& from, const fs::path& to) {
#if defined(__linux__)
  const ssize_t length = listxattr(from.c_str(), nullptr, 0);
  if (length <= 0) return;
  std::vector<char> names(static_cast<std::size_t>(length));
  if (listxattr(from.c_str(), names.data(), names.size()) != length) return;
  for (std::string_view rest(names.data(), names.size()); !rest.empty();) {
    const std::string name(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(name.size() + 1);
    const ssize_t bytes = getxattr(from.c_str(), name.c_str(), nullptr, 0);
    if (bytes < 0) continue;
    std::vector<char> value(static_cast<std::size_t>(bytes));
    if (getxattr(from.c_str(), name.c_str(), value.data(), value.size()) != bytes) continue;
    (void)setxattr(to.c_str(), name.c_str(), value.data(), value.size(), 0);
  }
#else
  (void)from;
  (void)to;
#endif
}

}  // namespace

std::string MachineName() {
  std::array<char, 65> name{};
  if (gethostname(name.data(), name.size() - 1) != 0 || name.front() == '\0') return "localhost";
  for (char& letter : name) {
    const bool plain = std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '.';
    if (letter != '\0' && !plain) letter = '_';
  }
  return name.data();
}

int ThisProcess() {
  return getpid();
}

bool IsRunning(int process) {
  return kill(process, 0) == 0 || errno != ESRCH;
}

bool MakePrivateFolder(const fs::path& path) {
  return mkdir(path.c_str(), S_IRWXU) == 0;
}

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  const OpenFolder open(opendir(folder.c_str()), closedir);
  for (const dirent* entry = nullptr; open && (entry = readdir(open.get())) != nullptr;) {
    names.emplace_back(entry->d_name);
  }
  return names;
}

void RemoveFolder(const fs::path& path) noexcept {
  if (rmdir(path.c_str()) == 0) return;
  {
    const OpenFolder open(opendir(path.c_str()), closedir);
    for (const dirent* entry = nullptr; open && (entry = readdir(open.get())) != nullptr;) {
      (void)unlinkat(dirfd(open.get()), entry->d_name, 0);
    }
  }
  (void)rmdir(path.c_str());
}

bool IsOwn(const fs::path& path) {
  struct stat facts {};
  return lstat(path.c_str(), &facts) == 0 && facts.st_uid == geteuid();
}

int LockFolder(const fs::path& path) {
  const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (folder >= 0 && flock(folder, LOCK_EX | LOCK_NB) == 0) return folder;
  if (folder >= 0) close(folder);
  return -1;
}

void Unlock(int lock) {
  if (lock >= 0) close(lock);
}

bool TakeRights(const fs::path& from, const fs::path& to) {
  struct stat facts {};
  if (stat(from.c_str(), &facts) != 0) return false;
  // Another's file stays another's only when this process may give files away.
  const bool given = chown(to.c_str(), facts.st_uid, facts.st_gid) == 0 ||
                     chown(to.c_str(), static_cast<uid_t>(-1), facts.st_gid) == 0;
  (void)given;
  if (chmod(to.c_str(), facts.st_mode & 07777) != 0) return false;
  TakeMarks(from, to);
  return true;
}

bool Sync(const fs::path& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  // Some file systems know no such thing for folders.
  const bool done = fsync(file) == 0 || errno == EINVAL;
  close(file);
  return done;
}

}  // namespace client

#else
#include <process.h>

namespace client {

std::string MachineName() {
  return "here";
}

int ThisProcess() {
  return _getpid();
}

bool IsRunning(int /*process*/) {
  return true;
}

bool MakePrivateFolder(const std::filesystem::path& path) {
  std::error_code fault;
  return std::filesystem::create_directory(path, fault);
}

std::vector<std::string> NamesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  std::error_code fault;
  for (const auto& entry : std::filesystem::directory_iterator(folder, fault)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

void RemoveFolder(const std::filesystem::path& path) noexcept {
  std::error_code fault;
  std::filesystem::remove_all(path, fault);
}

bool IsOwn(const std::filesystem::path& /*path*/) {
  return false;
}

int LockFolder(const std::filesystem::path& /*path*/) {
  return -1;
}

void Unlock(int /*lock*/) {}

bool TakeRights(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::error_code fault;
  std::filesystem::permissions(to, std::filesystem::status(from, fault).permissions(), fault);
  return !fault;
}

bool Sync(const std::filesystem::path& /*path*/) {
  return true;
}

}  // namespace client
#endif
