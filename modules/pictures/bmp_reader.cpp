// BMP. The rows of its usual form are those of an image in memory, padding included.
#include <algorithm>
#include <cstring>

#include "common/color.h"
#include "pictures/bmp_header.h"
#include "pictures/codecs.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

class BmpReader : public PictureReader {
 public:
  using PictureReader::PictureReader;

  bool readHeader(int page) override {
    if (page != 1) return false;
    file_ = OpenToRead(path_);
    header_ = ReadBmpHeader(file_.get(), FileSize(path_));
    picture_ = header_.picture;
    picture_.format = kFormatBmp;
    if (header_.hasRuns()) picture_.compression = "RLE";
    return true;
  }

  void start() override {
    checkLength();
    Require(std::fseek(file_.get(), static_cast<long>(header_.pixelOffset), SEEK_SET) == 0,
            kModuleReadFailed);
    expectSteps(static_cast<std::uint64_t>(picture_.height));
    if (!header_.hasRuns()) return;
    data_.resize(static_cast<std::size_t>(header_.pixelBytes));
    Require(std::fread(data_.data(), 1, data_.size(), file_.get()) == data_.size(),
            kModuleReadFailed);
    runs_.emplace(header_, data_);
  }

  void readRow(std::uint8_t* row) override {
    if (runs_) {
      runs_->readRow(row);
    } else {
      const auto bytes = static_cast<std::size_t>(std::min(header_.strideBytes(), left_));
      Require(std::fread(row, 1, bytes, file_.get()) == bytes, kModuleReadFailed);
      left_ -= bytes;
      if (!header_.isPlain) makePlain(row);
    }
    endStep();
  }

 private:
  // Whether the file is long enough for what it claims.
  void checkLength() {
    constexpr std::uint64_t kMostRunRatio = 1024;
    Require(orvo::DibLayoutFor(picture_.width, picture_.height, header_.depth).has_value(),
            kFileFormatDamaged);
    const std::uint64_t needed = header_.rowsBytes();
    left_ = header_.pixelBytes;
    Require(header_.hasRuns() ? IsPlausible(needed, left_, kMostRunRatio) : needed <= left_,
            kModuleReadFailed);
  }

  [[nodiscard]] Color colorOf(std::uint32_t pixel) const {
    return {header_.blue.tone(pixel), header_.green.tone(pixel), header_.red.tone(pixel)};
  }

  // Turns pixels of unusual channels into plain ones, in place: from the last to the first, since
  // they grow.
  void makePlain(std::uint8_t* row) const {
    const auto fileStep = static_cast<std::size_t>(header_.depth / 8);
    const std::size_t step = picture_.bits == 5 ? 2 : static_cast<std::size_t>(picture_.samples);
    for (auto x = static_cast<std::size_t>(picture_.width); x-- > 0;) {
      const std::uint8_t* const from = row + fileStep * x;
      const std::uint32_t pixel = fileStep == 2 ? Little16(from) : Little32(from);
      const Color color = colorOf(pixel);
      std::uint8_t* const to = row + step * x;
      if (step == 2) {
        const std::uint16_t narrow = With555(0, color);
        std::memcpy(to, &narrow, sizeof narrow);
        continue;
      }
      std::memcpy(to, &color, sizeof color);
      if (step == 4) to[3] = header_.alpha.tone(pixel);
    }
  }

  FileHandle file_;
  BmpHeader header_;
  std::uint64_t left_ = 0;          // bytes of the file behind the rows read
  std::vector<std::uint8_t> data_;  // with runs only, as is the next
  std::optional<BmpRuns> runs_;
};

}  // namespace

bool IsBmp(Head head) {
  constexpr std::size_t kHeaderSizeAt = 14;
  if (head.size() < kHeaderSizeAt + 4 || head[0] != 'B' || head[1] != 'M') return false;
  const std::uint32_t size = Little32(&head[kHeaderSizeAt]);
  return size == 12 || (size >= 16 && size <= 256);
}

ReaderHandle OpenBmp(const char* path, Report report) {
  return std::make_unique<BmpReader>(path, report);
}

}  // namespace modules
