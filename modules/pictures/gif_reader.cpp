// The first frame of a GIF file, in its place on the canvas.
#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>
#include <string_view>

#include "common/pixel_formats.h"
#include "pictures/codecs.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

struct GifCloser {
  void operator()(GifFileType* gif) const { (void)DGifCloseFile(gif, nullptr); }
};

void Check(bool sound) {
  Require(sound, kFileFormatDamaged);
}

class GifReader : public PictureReader {
 public:
  using PictureReader::PictureReader;

  bool readHeader(int page) override {
    if (page != 1) return false;
    gif_.reset(DGifOpenFileName(path_, nullptr));
    Check(gif_ != nullptr);
    findFrame();
    picture_.format = kFormatGif;
    picture_.compression = "LZW";
    takeMeasures();
    takePalette();
    takeAspect();
    return true;
  }

  void start() override {
    // A code of the file stands for at most 4096 pixels and takes at least 3 bits.
    constexpr std::uint64_t kMostRatio = 4096 * 8 / 3;
    const GifImageDesc& frame = gif_->Image;
    const std::size_t pixels =
        static_cast<std::size_t>(frame.Width) * static_cast<std::size_t>(frame.Height);
    const std::uint64_t canvasBytes =
        std::uint64_t{picture_.rowBytes()} * static_cast<std::uint64_t>(picture_.height);
    Require(IsPlausible(std::max<std::uint64_t>(pixels, canvasBytes), FileSize(path_), kMostRatio),
            kModuleReadFailed);
    expectSteps(static_cast<std::uint64_t>(picture_.height));
    indexes_.resize(pixels);
    readFrame();
  }

  void readRow(std::uint8_t* row) override {
    std::fill_n(row, picture_.rowBytes(), std::uint8_t{0});
    const int y = nextRow_++ - gif_->Image.Top;
    if (y >= 0 && y < gif_->Image.Height) {
      coversCanvas() ? putIndexes(rowAt(y), row) : putColors(rowAt(y), row);
    }
    endStep();
  }

 private:
  // Goes to the first frame's description, and notes the clear index that stands before it.
  void findFrame() {
    for (GifRecordType kind = UNDEFINED_RECORD_TYPE; kind != IMAGE_DESC_RECORD_TYPE;) {
      Check(DGifGetRecordType(gif_.get(), &kind) == GIF_OK && kind != TERMINATE_RECORD_TYPE);
      if (kind != EXTENSION_RECORD_TYPE) continue;
      int code = 0;
      GifByteType* block = nullptr;
      Check(DGifGetExtension(gif_.get(), &code, &block) == GIF_OK);
      GraphicsControlBlock control{};
      if (code == GRAPHICS_EXT_FUNC_CODE && block != nullptr &&
          DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
        clearIndex_ = control.TransparentColor;
      }
      while (block != nullptr) Check(DGifGetExtensionNext(gif_.get(), &block) == GIF_OK);
    }
    Check(DGifGetImageDesc(gif_.get()) == GIF_OK);
  }

  // Some files tell no canvas, or a smaller one than their frame takes.
  void takeMeasures() {
    const GifImageDesc& frame = gif_->Image;
    Check(frame.Width > 0 && frame.Height > 0);
    picture_.width = std::max(gif_->SWidth, frame.Left + frame.Width);
    picture_.height = std::max(gif_->SHeight, frame.Top + frame.Height);
  }

  [[nodiscard]] bool coversCanvas() const {
    return picture_.width == gif_->Image.Width && picture_.height == gif_->Image.Height;
  }

  // What the frame leaves of the canvas is clear, which no palette may have an index for.
  void takePalette() {
    const ColorMapObject* const map =
        gif_->Image.ColorMap != nullptr ? gif_->Image.ColorMap : gif_->SColorMap;
    Check(map != nullptr && map->ColorCount > 0);
    const bool hasClear = clearIndex_ != NO_TRANSPARENT_COLOR;
    for (int i = 0; i < map->ColorCount; ++i) {
      const GifColorType& color = map->Colors[i];
      const bool covers = i != clearIndex_ && (hasClear || !coversCanvas());
      const auto fourth = static_cast<std::uint8_t>(covers ? 255 : 0);
      palette_.push_back({color.Blue, color.Green, color.Red, fourth});
    }
    picture_.hasAlpha = hasClear || !coversCanvas();
    if (!coversCanvas()) {
      picture_.samples = 4;
      return;
    }
    const auto last = static_cast<unsigned>(map->ColorCount - 1);
    picture_.bits =
        static_cast<int>(std::bit_ceil(static_cast<unsigned>(std::bit_width(std::max(last, 1U)))));
    picture_.palette = palette_;
  }

  void putIndexes(std::span<const std::uint8_t> from, std::uint8_t* row) const {
    const unsigned last = (1U << picture_.bits) - 1;
    WithIndexFormat(picture_.bits, [&](auto format) {
      for (std::size_t x = 0; x < from.size(); ++x) {
        // Some files hold indexes that no palette of this depth has.
        format.write(row, x, from[x] <= last ? from[x] : std::uint8_t{0});
      }
    });
  }

  void putColors(std::span<const std::uint8_t> from, std::uint8_t* row) const {
    constexpr RGBQUAD kBeyondPalette{0, 0, 0, 255};
    row += 4 * static_cast<std::size_t>(gif_->Image.Left);
    for (const std::uint8_t index : from) {
      const RGBQUAD& color = index < palette_.size() ? palette_[index] : kBeyondPalette;
      std::memcpy(row, &color, sizeof color);
      row += sizeof color;
    }
  }

  // Width to height of a pixel, in 64ths; 0 is not told.
  void takeAspect() {
    constexpr int kLeast = 15;
    constexpr int kSquare = 64;
    if (gif_->AspectByte == 0) return;
    picture_.xDensity = kSquare;
    picture_.yDensity = gif_->AspectByte + kLeast;
  }

  [[nodiscard]] std::span<std::uint8_t> rowAt(int y) {
    const auto width = static_cast<std::size_t>(gif_->Image.Width);
    return std::span(indexes_).subspan(static_cast<std::size_t>(y) * width, width);
  }

  void readFrame() {
    struct Pass {
      int first;
      int step;
    };
    constexpr std::array<Pass, 4> kInterlaced = {{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};
    constexpr std::array<Pass, 1> kPlain = {{{0, 1}}};
    const std::span<const Pass> passes =
        gif_->Image.Interlace ? std::span<const Pass>(kInterlaced) : std::span<const Pass>(kPlain);
    for (const Pass& pass : passes) {
      for (int y = pass.first; y < gif_->Image.Height; y += pass.step) {
        Check(DGifGetLine(gif_.get(), rowAt(y).data(), gif_->Image.Width) == GIF_OK);
      }
    }
  }

  std::unique_ptr<GifFileType, GifCloser> gif_;
  int clearIndex_ = NO_TRANSPARENT_COLOR;
  std::vector<RGBQUAD> palette_;
  std::vector<std::uint8_t> indexes_;  // of the frame, a byte each
  int nextRow_ = 0;
};

}  // namespace

bool IsGif(Head head) {
  constexpr std::string_view kMark = "GIF8";
  return head.size() > kMark.size() && std::equal(kMark.begin(), kMark.end(), head.begin());
}

ReaderHandle OpenGif(const char* path, Report report) {
  return std::make_unique<GifReader>(path, report);
}

}  // namespace modules
