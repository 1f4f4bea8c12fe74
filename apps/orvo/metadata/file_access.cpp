#include "file_access.h"

#include <filesystem>

namespace client {
namespace {

constexpr std::uint64_t kMostMetadata = 64U << 20U;

}  // namespace

FileReader::FileReader(const std::string& path)
    : file_(path, std::ios::binary | std::ios::ate), budget_(kMostMetadata) {
  if (!file_) throw MetadataFault("the file cannot be opened");
  size_ = static_cast<std::uint64_t>(file_.tellg());
  file_.seekg(0);
}

Bytes FileReader::read(std::uint64_t bytes) {
  if (position_ > size_ || bytes > size_ - position_) throw MetadataFault("the file is cut off");
  if (bytes > budget_) throw MetadataFault("more than 64 MiB beside the picture");
  budget_ -= bytes;
  Bytes piece(bytes);
  if (!file_.read(reinterpret_cast<char*>(piece.data()), static_cast<std::streamsize>(bytes))) {
    throw MetadataFault("the file cannot be read");
  }
  position_ += bytes;
  return piece;
}

void FileReader::moveTo(std::uint64_t position) {
  file_.clear();
  file_.seekg(static_cast<std::streamoff>(position));
  position_ = position;
}

void ReplaceHead(const std::string& path, View head, std::uint64_t restFrom) {
  const std::string fresh = path + ".new";
  std::ifstream old(path, std::ios::binary);
  old.seekg(static_cast<std::streamoff>(restFrom));
  std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(head.data()), static_cast<std::streamsize>(head.size()));
  file << old.rdbuf();
  file.close();
  std::error_code error;
  const bool written = file.good() && old.good();
  if (written) {
    std::filesystem::permissions(fresh, std::filesystem::status(path).permissions(), error);
    std::filesystem::rename(fresh, path, error);
  }
  if (!written || error) {
    std::filesystem::remove(fresh, error);
    throw MetadataFault("the file could not be written anew with its metadata");
  }
}

}  // namespace client
