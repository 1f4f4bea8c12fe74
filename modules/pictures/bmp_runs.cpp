// The run-length codings of BMP: pairs of a count and a colour, and escapes that begin with 0.
#include <algorithm>
#include <cstring>

#include "common/status.h"
#include "pictures/bmp_header.h"

namespace modules {
namespace {

constexpr int kEndOfRow = 0;
constexpr int kEndOfPicture = 1;
constexpr int kJump = 2;

class RunDecoder {
 public:
  RunDecoder(const std::uint8_t* data, std::size_t bytes, const Pixels& image)
      : next_(data),
        end_(data + bytes),
        image_(image),
        progress_(static_cast<std::uint64_t>(image.height)) {}

  int decode() {
    while (left() >= 2) {
      const int count = *next_++;
      const int value = *next_++;
      if (count > 0) {
        if (!paintRun(count, value)) return kFileFormatDamaged;
      } else if (value == kEndOfPicture) {
        return finish();
      } else if (value == kEndOfRow) {
        if (!progress_.report(static_cast<std::uint64_t>(++y_))) return kModuleAborted;
        x_ = 0;
      } else if (const int code = value == kJump ? jump() : paintLiterally(value);
                 code != kModuleSuccess) {
        return code;
      }
    }
    // Some writers leave the end mark out.
    const bool complete = y_ >= image_.height || (y_ == image_.height - 1 && x_ >= image_.width);
    return complete ? finish() : kModuleReadFailed;
  }

 private:
  [[nodiscard]] std::ptrdiff_t left() const { return end_ - next_; }

  int finish() {
    return progress_.report(static_cast<std::uint64_t>(image_.height)) ? kModuleSuccess
                                                                       : kModuleAborted;
  }

  int jump() {
    if (left() < 2) return kModuleReadFailed;
    x_ += *next_++;
    y_ += *next_++;
    return x_ <= image_.width && y_ <= image_.height ? kModuleSuccess : kFileFormatDamaged;
  }

  // Pixels beyond the end of a row are dropped, as the run may fill up a byte.
  void put(int value) {
    if (x_ >= image_.width) return;
    std::uint8_t* const row = image_.row(y_);
    if (image_.depth == 8) {
      row[x_] = static_cast<std::uint8_t>(value);
    } else {
      const int shift = x_ % 2 == 0 ? 4 : 0;
      row[x_ / 2] = static_cast<std::uint8_t>((row[x_ / 2] & ~(15 << shift)) | value << shift);
    }
    ++x_;
  }

  // Of the two values in a byte of 4 bits each the first is the higher.
  [[nodiscard]] int valueAt(int byte, int position) const {
    if (image_.depth == 8) return byte;
    return position % 2 == 0 ? byte >> 4 : byte & 15;
  }

  bool paintRun(int count, int value) {
    if (y_ >= image_.height) return false;
    if (image_.depth == 8) {
      const int fitting = std::min(count, image_.width - x_);
      std::memset(image_.row(y_) + x_, value, static_cast<std::size_t>(fitting));
      x_ += fitting;
    } else {
      for (int i = 0; i < count; ++i) put(valueAt(value, i));
    }
    return true;
  }

  // Literal pixels fill up an even number of bytes.
  int paintLiterally(int count) {
    const int bytes = image_.depth == 8 ? count : (count + 1) / 2;
    const int padded = (bytes + 1) / 2 * 2;
    if (left() < bytes) return kModuleReadFailed;
    if (y_ >= image_.height) return kFileFormatDamaged;
    for (int i = 0; i < count; ++i) put(valueAt(next_[image_.depth == 8 ? i : i / 2], i));
    next_ += std::min<std::ptrdiff_t>(padded, left());
    return kModuleSuccess;
  }

  const std::uint8_t* next_;
  const std::uint8_t* end_;
  const Pixels& image_;
  Progress progress_;
  int x_ = 0;
  int y_ = 0;  // stored rows
};

}  // namespace

int DecodeBmpRuns(const std::uint8_t* data, std::size_t bytes, const Pixels& image) {
  return RunDecoder(data, bytes, image).decode();
}

}  // namespace modules
