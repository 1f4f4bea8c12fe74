// TGA: tones, palettes and colours, with opacity, plain or in runs.
#include <algorithm>
#include <array>

#include "common/color.h"
#include "pictures/codecs.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

constexpr std::size_t kHeaderBytes = 18;
enum Kind : std::uint8_t { kPalette = 1, kColor = 2, kGray = 3, kRuns = 8 };
enum Attributes : std::uint8_t { kOpacityBits = 0x0F, kFromRight = 0x10, kFromTop = 0x20 };
constexpr int kInterleavedFrom = 0x40;

void Check(bool sound) {
  Require(sound, kFileFormatDamaged);
}

std::uint16_t Little16(const std::uint8_t* bytes) {
  return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

// Of a palette; by its bytes in the file.
RGBQUAD EntryFrom(const std::uint8_t* bytes, std::size_t count) {
  if (count == 1) return EntryOf(GrayOf(bytes[0]));
  if (count == 2) return EntryOf(ColorOf555(Little16(bytes)));
  return {bytes[0], bytes[1], bytes[2], count == 4 ? bytes[3] : std::uint8_t{0}};
}

class TgaReader : public PictureReader {
 public:
  using PictureReader::PictureReader;

  bool readHeader(int page) override {
    if (page != 1) return false;
    file_ = OpenToRead(path_);
    std::array<std::uint8_t, kHeaderBytes> header{};
    fill(header);
    kind_ = header[2] & ~kRuns;
    hasRuns_ = (header[2] & kRuns) != 0;
    pixelBytes_ = (std::size_t{header[16]} + 7) / 8;
    Require(header[17] < kInterleavedFrom, kFileFormatNotRead);
    describe(header);
    std::vector<std::uint8_t> comment(header[0]);
    fill(comment);
    takePalette(header);
    return true;
  }

  // Runs shrink to one 128th at most.
  void start() override {
    constexpr std::uint64_t kMostRatio = 128;
    const std::uint64_t needed = std::uint64_t{pixelBytes_} *
                                 static_cast<std::uint64_t>(picture_.width) *
                                 static_cast<std::uint64_t>(picture_.height);
    const auto begin = static_cast<std::uint64_t>(std::ftell(file_.get()));
    const std::uint64_t present = std::max(FileSize(path_), begin) - begin;
    Check(hasRuns_ ? IsPlausible(needed, present, kMostRatio) : needed <= present);
    data_.resize(static_cast<std::size_t>(hasRuns_ ? present : needed));
    fill(data_);
    expectSteps(static_cast<std::uint64_t>(picture_.height));
  }

  void readRow(std::uint8_t* row) override {
    for (int x = 0; x < picture_.width; ++x) row = put(nextPixel(), row);
    endStep();
  }

 private:
  void fill(std::span<std::uint8_t> bytes) {
    Check(std::fread(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size());
  }

  void describe(std::span<const std::uint8_t> header) {
    picture_ = Picture{.format = kFormatTga};
    picture_.width = Little16(&header[12]);
    picture_.height = Little16(&header[14]);
    Check(picture_.width > 0 && picture_.height > 0);
    const bool tellsOpacity = (header[17] & kOpacityBits) != 0;
    hasAlpha_ = pixelBytes_ == 4 || (pixelBytes_ == 2 && (kind_ == kGray || tellsOpacity));
    picture_.setDepth(hasAlpha_ ? 32 : 8 * static_cast<int>(pixelBytes_));
    picture_.hasAlpha = hasAlpha_;
    picture_.isGray = kind_ == kGray;
    picture_.bottomUp = (header[17] & kFromTop) == 0;
    constexpr int kMirrored = 2;
    picture_.orientation = (header[17] & kFromRight) != 0 ? kMirrored : kUpright;
    if (hasRuns_) picture_.compression = "RLE";
  }

  // Pictures in colour may have one that serves other ends.
  void takePalette(std::span<const std::uint8_t> header) {
    if (header[1] == 0) return;
    constexpr std::size_t kMostEntries = 256;
    const std::size_t count = Little16(&header[5]);
    const std::size_t entryBytes = (std::size_t{header[7]} + 7) / 8;
    std::vector<std::uint8_t> bytes(count * entryBytes);
    fill(bytes);
    if (kind_ != kPalette) return;
    Check(entryBytes >= 1 && entryBytes <= 4);
    firstIndex_ = Little16(&header[3]);
    for (std::size_t i = 0; i < std::min(count, kMostEntries); ++i) {
      picture_.palette.push_back(EntryFrom(&bytes[i * entryBytes], entryBytes));
    }
    // Nothing but zeros is padding.
    picture_.hasAlpha = std::ranges::any_of(
        picture_.palette, [](const RGBQUAD& entry) { return entry.rgbReserved != 0; });
  }

  const std::uint8_t* take(std::size_t bytes) {
    Check(bytes <= data_.size() - at_);
    at_ += bytes;
    return data_.data() + at_ - bytes;
  }

  // Runs may go on in the next row.
  const std::uint8_t* nextPixel() {
    if (!hasRuns_) return take(pixelBytes_);
    if (runLeft_ == 0) {
      constexpr int kRepeats = 0x80;
      const int packet = *take(1);
      runLeft_ = (packet & ~kRepeats) + 1;
      repeated_ = (packet & kRepeats) != 0 ? take(pixelBytes_) : nullptr;
    }
    --runLeft_;
    return repeated_ != nullptr ? repeated_ : take(pixelBytes_);
  }

  // Stores a pixel and gives the place of the next.
  std::uint8_t* put(const std::uint8_t* pixel, std::uint8_t* row) const {
    if (kind_ == kPalette) {
      const int index = *pixel - firstIndex_;
      Check(index >= 0 && static_cast<std::size_t>(index) < picture_.palette.size());
      *row = static_cast<std::uint8_t>(index);
      return row + 1;
    }
    if (pixelBytes_ != 2) return std::copy_n(pixel, pixelBytes_, row);
    if (!hasAlpha_) {
      row[0] = pixel[0];
      row[1] = pixel[1] & 0x7F;
      return row + 2;
    }
    const bool isGray = kind_ == kGray;
    const Color color = isGray ? GrayOf(pixel[0]) : ColorOf555(Little16(pixel));
    const int alpha = isGray ? pixel[1] : (pixel[1] & 0x80) != 0 ? 255 : 0;
    row[0] = color.blue;
    row[1] = color.green;
    row[2] = color.red;
    row[3] = static_cast<std::uint8_t>(alpha);
    return row + 4;
  }

  FileHandle file_;
  int kind_ = 0;
  bool hasRuns_ = false;
  bool hasAlpha_ = false;
  std::size_t pixelBytes_ = 0;
  int firstIndex_ = 0;  // the palette's first entry is this one

  std::vector<std::uint8_t> data_;  // pixels and packets
  std::size_t at_ = 0;
  int runLeft_ = 0;
  const std::uint8_t* repeated_ = nullptr;
};

}  // namespace

bool IsTga(Head head) {
  if (head.size() < kHeaderBytes || head[1] > 1) return false;
  const int kind = head[2] & ~kRuns;
  const int bits = head[16];
  if (kind == kPalette) return head[1] == 1 && bits == 8;
  if (kind == kGray) return bits == 8 || bits == 16;
  return kind == kColor && (bits == 15 || bits == 16 || bits == 24 || bits == 32);
}

ReaderHandle OpenTga(const char* path, Report report) {
  return std::make_unique<TgaReader>(path, report);
}

}  // namespace modules
