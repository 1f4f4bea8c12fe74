// A result on its way to its name. It is made in a private folder beside the target, under the
// target's own file name unless that makes the path too long, and takes the target's place in one
// step when it is whole: until then, and after any failure, what stood there stays as it was.
#ifndef APPS_ORVO_FILES_REPLACEMENT_H
#define APPS_ORVO_FILES_REPLACEMENT_H

#include <filesystem>
#include <string>

#include "private_folder.h"

namespace client {

class Replacement {
 public:
  // Makes the folder, readable by its owner alone. A link as target is followed once. False when
  // the folder cannot be made, or when what stands at the target may not be written.
  explicit Replacement(const std::string& target);

  explicit operator bool() const { return ready_; }
  // Where the result is to be made.
  [[nodiscard]] std::string path() const;
  // Gives the result the name of its target and, where it replaces a file, that file's rights; it
  // is on the disk before the old one is gone. False when that fails.
  [[nodiscard]] bool commit();

 private:
  std::filesystem::path target_;
  PrivateFolder folder_;
  bool ready_ = false;
};

// Returns once the results that replaced no file have reached the disk, which for many at once is
// quicker than for each. False when they cannot.
bool SyncNewResults();

}  // namespace client

#endif  // APPS_ORVO_FILES_REPLACEMENT_H
