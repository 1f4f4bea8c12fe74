// Small files of rare kinds, made byte by byte, and what they show.
#ifndef TESTS_MODULES_LTFIL13N_RARE_FILES_H
#define TESTS_MODULES_LTFIL13N_RARE_FILES_H

#include <initializer_list>

#include "files.h"

namespace files {

// Bytes and numbers one after the other.
class Builder {
 public:
  Builder& add(std::initializer_list<int> values) {
    for (const int value : values) bytes_.push_back(static_cast<std::uint8_t>(value));
    return *this;
  }
  Builder& add(const Bytes& more) {
    bytes_.insert(bytes_.end(), more.begin(), more.end());
    return *this;
  }
  Builder& little16(std::initializer_list<int> values) {
    for (const int value : values) add({value & 255, value >> 8 & 255});
    return *this;
  }
  Builder& big16(std::initializer_list<int> values) {
    for (const int value : values) add({value >> 8 & 255, value & 255});
    return *this;
  }
  Builder& big32(std::initializer_list<int> values) {
    for (const int value : values) big16({value >> 16, value});
    return *this;
  }
  Builder& zeros(std::size_t count) {
    bytes_.resize(bytes_.size() + count);
    return *this;
  }
  operator const Bytes&() const { return bytes_; }

 private:
  Bytes bytes_;
};

// 16 by 1 pixels of 4 bits in four planes: pixel x has colour x, whose red is 16 x + 1.
inline Bytes PcxOfPlanes() {
  Builder file;
  file.add({0x0A, 5, 1, 1}).little16({0, 0, 15, 0, 300, 300});
  for (int i = 0; i < 16; ++i) file.add({16 * i + 1, i, 255 - i});
  file.add({0, 4}).little16({2, 1}).zeros(58);
  // The lowest bit's plane first. What looks like a run is written as a run of one.
  return file.add({0x55, 0x55, 0x33, 0x33, 0x0F, 0x0F, 0x00, 0xC1, 0xFF});
}

// 32 by 1 pixels of 16 bits: red x, green 31 - x, blue 7.
inline Bytes TgaOf16Bits() {
  Builder file;
  file.add({0, 0, 2}).zeros(9).little16({32, 1}).add({16, 0x20});
  for (int x = 0; x < 32; ++x) file.little16({x << 10 | (31 - x) << 5 | 7});
  return file;
}

// 100 by 50 pixels: blue, then the left half red.
inline Bytes Metafile() {
  Builder file;
  file.add({0xD7, 0xCD, 0xC6, 0x9A}).little16({0, 0, 0, 100, 50, 72, 0, 0, 0x570F});
  file.little16({1, 9, 0x300, 68, 0, 3, 8, 0, 0});
  file.little16({5, 0, 0x020B, 0, 0}).little16({5, 0, 0x020C, 50, 100});
  file.little16({8, 0, 0x02FA, 5, 0, 0, 0, 0}).little16({4, 0, 0x012D, 0});
  file.little16({7, 0, 0x02FC, 0, 0, 0x00FF, 0}).little16({4, 0, 0x012D, 1});
  file.little16({7, 0, 0x041B, 50, 100, 0, 0});
  file.little16({7, 0, 0x02FC, 0, 0x00FF, 0, 0}).little16({4, 0, 0x012D, 2});
  return file.little16({7, 0, 0x041B, 50, 50, 0, 0}).little16({3, 0, 0});
}

// 4 by 2 pixels of 4 bits: colours 1 2 3 4 above 5 6 7 8, colour i having red 10 i.
inline Bytes WordPerfectBitmap() {
  Builder file;
  file.add({0xFF, 'W', 'P', 'C'}).little16({16, 0}).add({1, 0x16, 1, 0, 0, 0, 0, 0});
  file.add({0x0F, 6, 1, 0}).little16({1000, 1000});
  file.add({0x0E, 52}).little16({0, 16});
  for (int i = 0; i < 16; ++i) file.add({10 * i, i, 255 - i});
  file.add({0x0B, 16}).little16({4, 2, 4, 75, 75}).add({2, 0x12, 0x34, 2, 0x56, 0x78});
  return file.add({0x10, 0});
}

// The red of each pixel, from the top left.
inline std::vector<int> Reds(DibHandle image) {
  const Bytes shown = ShownPixels(image);
  std::vector<int> reds;
  for (std::size_t i = 2; i < shown.size(); i += 3) reds.push_back(shown[i]);
  return reds;
}

}  // namespace files

#endif  // TESTS_MODULES_LTFIL13N_RARE_FILES_H
