// A folder in which one result is made, beside its target and open to its owner alone.
#ifndef APPS_ORVO_FILES_PRIVATE_FOLDER_H
#define APPS_ORVO_FILES_PRIVATE_FOLDER_H

#include <filesystem>

namespace client {

class PrivateFolder {
 public:
  // Not made yet.
  PrivateFolder() = default;
  // Goes with all that is in it.
  ~PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  // Makes the folder; false when that fails. Its name tells the machine and the process, and a lock
  // that ends with the process lies on it. What the same user's processes left there when they were
  // killed goes first: folders of this machine that nobody holds any more.
  bool makeIn(const std::filesystem::path& parent);

  // Empty before it is made.
  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
  int lock_ = -1;
};

}  // namespace client

#endif  // APPS_ORVO_FILES_PRIVATE_FOLDER_H
