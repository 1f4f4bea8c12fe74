// Reading what stands around a picture, and putting something else there.
#ifndef APPS_ORVO_METADATA_FILE_ACCESS_H
#define APPS_ORVO_METADATA_FILE_ACCESS_H

#include <fstream>
#include <stdexcept>
#include <string>

#include "bytes.h"

namespace client {

// Says in words what is wrong with a file, or why it could not be written.
struct MetadataFault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Reads a file piece by piece. More than 64 MiB of metadata is a fault, and so is a piece that the
// file has not.
class FileReader {
 public:
  explicit FileReader(const std::string& path);

  Bytes read(std::uint64_t bytes);
  void moveTo(std::uint64_t position);
  void skip(std::uint64_t bytes) { moveTo(position_ + bytes); }
  [[nodiscard]] std::uint64_t position() const { return position_; }
  [[nodiscard]] std::uint64_t size() const { return size_; }

 private:
  std::ifstream file_;
  std::uint64_t size_ = 0;
  std::uint64_t position_ = 0;
  std::uint64_t budget_;
};

// Makes the file anew of `head` and of what it holds from `restFrom` on.
void ReplaceHead(const std::string& path, View head, std::uint64_t restFrom);

}  // namespace client

#endif  // APPS_ORVO_METADATA_FILE_ACCESS_H
