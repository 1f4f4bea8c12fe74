// The first frame of a GIF file.
#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <span>

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

  bool goTo(int page) override {
    if (page != 1) return false;
    gif_.reset(DGifOpenFileName(path_, nullptr));
    Check(gif_ != nullptr);
    findFrame();
    picture_.width = gif_->Image.Width;
    picture_.height = gif_->Image.Height;
    Check(picture_.width > 0 && picture_.height > 0);
    takePalette();
    takeAspect();
    return true;
  }

  void start() override {
    // A code of the file stands for at most 4096 pixels and takes at least 3 bits.
    constexpr std::uint64_t kMostRatio = 4096 * 8 / 3;
    const std::size_t pixels =
        static_cast<std::size_t>(picture_.width) * static_cast<std::size_t>(picture_.height);
    Require(IsPlausible(pixels, FileSize(path_), kMostRatio), kModuleReadFailed);
    expectSteps(static_cast<std::uint64_t>(picture_.height));
    indexes_.resize(pixels);
    readFrame();
  }

  void readRow(std::uint8_t* row) override {
    const std::uint8_t* const from = rowAt(nextRow_++);
    const auto last = static_cast<unsigned>(picture_.palette.size()) - 1;
    std::fill_n(row, picture_.rowBytes(), std::uint8_t{0});
    WithIndexFormat(picture_.bits, [&](auto format) {
      for (std::size_t x = 0; x < static_cast<std::size_t>(picture_.width); ++x) {
        // Some files hold indexes that their palette lacks.
        format.write(row, x, static_cast<std::uint8_t>(std::min<unsigned>(from[x], last)));
      }
    });
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

  void takePalette() {
    const ColorMapObject* const map =
        gif_->Image.ColorMap != nullptr ? gif_->Image.ColorMap : gif_->SColorMap;
    Check(map != nullptr && map->ColorCount > 0);
    const auto last = static_cast<unsigned>(map->ColorCount - 1);
    picture_.bits =
        static_cast<int>(std::bit_ceil(static_cast<unsigned>(std::bit_width(std::max(last, 1U)))));
    picture_.hasAlpha = clearIndex_ != NO_TRANSPARENT_COLOR;
    for (int i = 0; i < map->ColorCount; ++i) {
      const GifColorType& color = map->Colors[i];
      const bool covers = picture_.hasAlpha && i != clearIndex_;
      const auto fourth = static_cast<std::uint8_t>(covers ? 255 : 0);
      picture_.palette.push_back({color.Blue, color.Green, color.Red, fourth});
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

  [[nodiscard]] std::uint8_t* rowAt(int y) {
    return indexes_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(picture_.width);
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
      for (int y = pass.first; y < picture_.height; y += pass.step) {
        Check(DGifGetLine(gif_.get(), rowAt(y), picture_.width) == GIF_OK);
      }
    }
  }

  std::unique_ptr<GifFileType, GifCloser> gif_;
  int clearIndex_ = NO_TRANSPARENT_COLOR;
  std::vector<std::uint8_t> indexes_;  // a byte each
  int nextRow_ = 0;
};

}  // namespace

ReaderHandle OpenGif(const char* path, Report report) {
  return std::make_unique<GifReader>(path, report);
}

}  // namespace modules
