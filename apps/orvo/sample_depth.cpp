#include "sample_depth.h"

#include <algorithm>
#include <fstream>

#include "file_kind.h"
#include "pictures/tiff_page.h"

namespace client {
namespace {

constexpr int kBits = 8;

// A number of two bytes, or of one, high byte first.
int NumberAt(const std::string& path, std::streamoff offset, int bytes) {
  std::ifstream file(path, std::ios::binary);
  file.seekg(offset);
  int number = 0;
  while (bytes-- > 0) number = number << 8 | (file.get() & 0xFF);
  return file ? number : 0;
}

int TiffBits(const std::string& path, int page) {
  int faults = 0;
  const modules::TiffHandle tiff = modules::OpenTiffFile(path.c_str(), "rm", faults);
  std::uint16_t bits = 0;
  if (tiff && modules::FollowPages(tiff.get(), page - 1) == page - 1) {
    (void)TIFFGetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, &bits);
  }
  return bits;
}

}  // namespace

int SampleBits(const std::string& path, int page) {
  constexpr std::streamoff kPngBitsAt = 24;
  constexpr std::streamoff kPsdBitsAt = 22;
  const std::string kind = KindOfFile(path);
  int bits = kBits;
  if (kind == "png") bits = NumberAt(path, kPngBitsAt, 1);
  if (kind == "psd") bits = NumberAt(path, kPsdBitsAt, 2);
  if (kind == "tiff") bits = TiffBits(path, page);
  return std::max(bits, kBits);
}

}  // namespace client
