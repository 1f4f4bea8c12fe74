// A file of the module's own beside the one that it is to become.
#ifndef PROVIDERS_PDFLIB_TEMPORARY_FILE_H
#define PROVIDERS_PDFLIB_TEMPORARY_FILE_H

#include <filesystem>

namespace provider {

// Deleted at the end of its life, unless it was moved.
class TemporaryFile {
 public:
  // Makes an empty file in the folder of `neighbour`. Throws when it cannot.
  explicit TemporaryFile(const std::filesystem::path& neighbour);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  // Takes the target's place in one step. Throws when that fails.
  void moveTo(const std::filesystem::path& target);

 private:
  std::filesystem::path path_;
};

}  // namespace provider

#endif  // PROVIDERS_PDFLIB_TEMPORARY_FILE_H
