#include "sample_depth.h"

#include <algorithm>
#include <fstream>

#include "file_kind.h"

namespace client {
namespace {

constexpr int kBits = 8;

// A number of two bytes, or of one, high byte first.
int NumberOf(const std::string& path, std::streamoff offset, int bytes) {
  std::ifstream file(path, std::ios::binary);
  file.seekg(offset);
  int number = 0;
  while (bytes-- > 0) number = number << 8 | (file.get() & 0xFF);
  return file ? number : 0;
}

int TiffBits(const std::string& path, int page, PagePlace* last) {
  constexpr std::uint16_t kBitsPerSample = 258;
  std::ifstream file(path, std::ios::binary);
  const auto form = ReadTagForm(file);
  if (!form) return 0;
  PagePlace first;
  const auto place = FindPage(file, *form, page, last == nullptr ? first : *last);
  if (!place) return 0;
  bool isWhole = true;
  const TagDirectory tags = ReadTags(
      file, *form, NumberAt(file, *form, *place, form->offsetBytes()),
      [](std::uint16_t id) { return id == kBitsPerSample; }, isWhole);
  const auto bits = tags.tags.find(kBitsPerSample);
  return bits == tags.tags.end() ? 0
                                 : static_cast<int>(NumberIn(bits->second.value, 2, form->order));
}

}  // namespace

int SampleBits(const std::string& path, int page, PagePlace* last) {
  constexpr std::streamoff kPngBitsAt = 24;
  constexpr std::streamoff kPsdBitsAt = 22;
  const std::string kind = KindOfFile(path);
  int bits = kBits;
  if (kind == "png") bits = NumberOf(path, kPngBitsAt, 1);
  if (kind == "psd") bits = NumberOf(path, kPsdBitsAt, 2);
  if (kind == "tiff") bits = TiffBits(path, page, last);
  return std::max(bits, kBits);
}

}  // namespace client
