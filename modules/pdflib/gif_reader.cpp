// The first frame of a GIF file.
#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <span>
#include <vector>

#include "pdflib/picture_files.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

struct GifCloser {
  void operator()(GifFileType* gif) const { (void)DGifCloseFile(gif, nullptr); }
};

class GifReader : public PictureReader {
 public:
  explicit GifReader(const std::string& path) : gif_(DGifOpenFileName(path.c_str(), nullptr)) {
    check(gif_ != nullptr);
    findFrame();
    const GifImageDesc& frame = gif_->Image;
    check(frame.Width > 0 && frame.Height > 0);
    // A code of the file stands for at most 4096 pixels and takes at least 3 bits.
    constexpr std::uint64_t kMostRatio = 4096 * 8 / 3;
    check(IsPlausible(
        std::uint64_t{1} * static_cast<unsigned>(frame.Width) * static_cast<unsigned>(frame.Height),
        FileSize(path.c_str()), kMostRatio));
    picture_.width = frame.Width;
    picture_.height = frame.Height;
    takePalette();
    takeAspect();
    readFrame();
  }

  void readRow(std::uint8_t* row) override {
    const std::uint8_t* const from = rowAt(nextRow_++);
    const auto bits = static_cast<unsigned>(picture_.bits);
    std::fill_n(row, picture_.rowBytes(), std::uint8_t{0});
    for (unsigned x = 0; x < static_cast<unsigned>(picture_.width); ++x) {
      // Some files hold indexes that their palette lacks.
      const unsigned index = std::min<unsigned>(from[x], colors_ - 1);
      const unsigned shift = 8 - bits - x * bits % 8;
      row[x * bits / 8] = static_cast<std::uint8_t>(row[x * bits / 8] | index << shift);
    }
  }

 private:
  static void check(bool sound) {
    if (!sound) throw UnreadablePicture("GIF");
  }

  // Goes to the first frame's description, and notes the clear index that stands before it.
  void findFrame() {
    for (GifRecordType kind = UNDEFINED_RECORD_TYPE; kind != IMAGE_DESC_RECORD_TYPE;) {
      check(DGifGetRecordType(gif_.get(), &kind) == GIF_OK && kind != TERMINATE_RECORD_TYPE);
      if (kind != EXTENSION_RECORD_TYPE) continue;
      int code = 0;
      GifByteType* block = nullptr;
      check(DGifGetExtension(gif_.get(), &code, &block) == GIF_OK);
      GraphicsControlBlock control{};
      if (code == GRAPHICS_EXT_FUNC_CODE && block != nullptr &&
          DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
        clearIndex_ = control.TransparentColor;
      }
      while (block != nullptr) check(DGifGetExtensionNext(gif_.get(), &block) == GIF_OK);
    }
    check(DGifGetImageDesc(gif_.get()) == GIF_OK);
  }

  void takePalette() {
    const ColorMapObject* const map =
        gif_->Image.ColorMap != nullptr ? gif_->Image.ColorMap : gif_->SColorMap;
    check(map != nullptr && map->ColorCount > 0);
    colors_ = static_cast<unsigned>(map->ColorCount);
    picture_.bits = static_cast<int>(
        std::bit_ceil(static_cast<unsigned>(std::bit_width(std::max(colors_ - 1, 1U)))));
    for (int i = 0; i < map->ColorCount; ++i) {
      const GifColorType& color = map->Colors[i];
      const std::uint8_t alpha = i == clearIndex_ ? 0 : 255;
      for (const std::uint8_t tone : {color.Red, color.Green, color.Blue}) {
        picture_.palette.push_back(static_cast<char>(OnWhite(tone, alpha)));
      }
    }
  }

  // Width to height of a pixel, in 64ths; 0 is not told.
  void takeAspect() {
    constexpr int kLeast = 15;
    constexpr int kSquare = 64;
    if (gif_->AspectByte != 0) {
      picture_.resolution = AspectOf(kSquare, gif_->AspectByte + kLeast);
    }
  }

  [[nodiscard]] std::uint8_t* rowAt(int y) {
    return indexes_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(picture_.width);
  }

  void readFrame() {
    indexes_.resize(static_cast<std::size_t>(picture_.width) *
                    static_cast<std::size_t>(picture_.height));
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
        check(DGifGetLine(gif_.get(), rowAt(y), picture_.width) == GIF_OK);
      }
    }
  }

  std::unique_ptr<GifFileType, GifCloser> gif_;
  int clearIndex_ = NO_TRANSPARENT_COLOR;
  unsigned colors_ = 0;
  std::vector<std::uint8_t> indexes_;  // a byte each
  int nextRow_ = 0;
};

}  // namespace

std::unique_ptr<PictureReader> OpenGif(const std::string& path) {
  return std::make_unique<GifReader>(path);
}

}  // namespace modules
