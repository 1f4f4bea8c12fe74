// A file of a module's own beside the one that it is to become.
#ifndef MODULES_PICTURES_TEMPORARY_FILE_H
#define MODULES_PICTURES_TEMPORARY_FILE_H

#include <filesystem>

namespace modules {

// Deleted at the end of its life, unless it was moved.
class TemporaryFile {
 public:
  // Makes an empty file in the folder of `neighbour`; false when it could not.
  explicit TemporaryFile(const std::filesystem::path& neighbour);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  explicit operator bool() const { return !path_.empty(); }
  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  // Takes the target's place in one step. False when that fails.
  [[nodiscard]] bool moveTo(const std::filesystem::path& target);

 private:
  std::filesystem::path path_;
};

}  // namespace modules

#endif  // MODULES_PICTURES_TEMPORARY_FILE_H
