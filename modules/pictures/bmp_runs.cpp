#include <algorithm>

#include "common/pixel_formats.h"
#include "pictures/bmp_header.h"

namespace modules {
namespace {

constexpr int kEndOfRow = 0;
constexpr int kEndOfPicture = 1;
constexpr int kJump = 2;

}  // namespace

// What no run paints stays 0.
void BmpRuns::readRow(std::uint8_t* row) {
  const int pixelsInByte = 8 / header_.depth;
  std::fill_n(row, (header_.picture.width + pixelsInByte - 1) / pixelsInByte, std::uint8_t{0});
  const bool isLast = next_ == header_.picture.height - 1;
  while (y_ == next_ && !(isLast && x_ >= header_.picture.width && data_.size() < 2)) step(row);
  // Nothing but the end mark may follow, and some writers leave that out.
  while (isLast && !ended_ && data_.size() >= 2) step(row);
  ++next_;
}

int BmpRuns::take() {
  Require(!data_.empty(), kModuleReadFailed);
  const int byte = data_.front();
  data_ = data_.subspan(1);
  return byte;
}

void BmpRuns::step(std::uint8_t* row) {
  const int count = take();
  const int value = take();
  if (count > 0) return paint(row, count, value);
  switch (value) {
    case kEndOfPicture:
      y_ = header_.picture.height;
      ended_ = true;
      return;
    case kEndOfRow:
      x_ = 0;
      ++y_;
      return;
    case kJump:
      return jump();
    default:
      return paintLiterally(row, value);
  }
}

void BmpRuns::jump() {
  x_ += take();
  y_ += take();
  Require(x_ <= header_.picture.width && y_ <= header_.picture.height, kFileFormatDamaged);
}

// Pixels beyond the end of a row are dropped, as the run may fill up a byte.
void BmpRuns::put(std::uint8_t* row, int value) {
  if (x_ >= header_.picture.width) return;
  const auto at = static_cast<std::size_t>(x_);
  const auto index = static_cast<std::uint8_t>(value);
  header_.depth == 8 ? Format8::write(row, at, index) : Format4::write(row, at, index);
  ++x_;
}

// Of the two values in a byte of 4 bits each the first is the higher.
int BmpRuns::valueAt(int byte, int position) const {
  if (header_.depth == 8) return byte;
  return position % 2 == 0 ? byte >> 4 : byte & 15;
}

void BmpRuns::paint(std::uint8_t* row, int count, int value) {
  Require(y_ < header_.picture.height, kFileFormatDamaged);
  for (int i = 0; i < count; ++i) put(row, valueAt(value, i));
}

// Literal pixels fill up an even number of bytes.
void BmpRuns::paintLiterally(std::uint8_t* row, int count) {
  const auto bytes = static_cast<std::size_t>(header_.depth == 8 ? count : (count + 1) / 2);
  Require(data_.size() >= bytes, kModuleReadFailed);
  Require(y_ < header_.picture.height, kFileFormatDamaged);
  for (int i = 0; i < count; ++i) {
    const int byte = data_[static_cast<std::size_t>(header_.depth == 8 ? i : i / 2)];
    put(row, valueAt(byte, i));
  }
  data_ = data_.subspan(std::min(bytes + bytes % 2, data_.size()));
}

}  // namespace modules
