// Helpers of the adjustment tests: pictures in a bitmap record, and their pixels one by one.
#ifndef TESTS_MODULES_LTIMG13N_ADJUSTED_H
#define TESTS_MODULES_LTIMG13N_ADJUSTED_H

#include <array>
#include <cmath>
#include <functional>

#include "binding/module_contract.h"
#include "support/pictures.h"

using namespace orvo;

namespace adjusted {

using Adjust = std::function<int(struct_LEAD_Bitmap*)>;
// Red, green, blue; 0..255.
using Rgb = std::array<double, 3>;

// Every kind of image that the adjustments take.
struct Kind {
  int depth;
  bool grayByTone;
};
inline constexpr Kind kKinds[] = {{4, false},  {8, false},  {8, true},
                                  {16, false}, {24, false}, {32, false}};

// Noise, the reserved bytes of the palette included.
inline orvo::OwnedDib Picture(Kind kind, int width, int height) {
  const bool inColor = kind.depth <= 8 && !kind.grayByTone;
  orvo::OwnedDib dib = inColor ? pictures::NoiseInColor(width, height, kind.depth, 7)
                               : pictures::Noise(width, height, kind.depth, 7);
  const pictures::Locked image(dib.get());
  for (std::size_t i = orvo::kDibHeaderBytes; i < image.layout().pixelOffset; i += 4) {
    image.bytes()[i + 3] = static_cast<std::uint8_t>(i / 4 + 1);
  }
  return dib;
}

// Runs an adjustment on an image, whose owner holds the valid handle afterwards.
inline int Apply(const Adjust& adjust, orvo::OwnedDib& image) {
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, image.release());
  const int code = adjust(&bitmap);
  image.reset(L_ChangeToDIB(&bitmap));
  return code;
}

// A status callback that only watches.
inline int GoOn(int /*percent*/, void* /*userData*/) {
  return 0;
}

// Installs a status callback for a scope.
class Watched {
 public:
  explicit Watched(StatusCallback callback) : before_(L_SetStatusCallBack(callback, nullptr)) {}
  ~Watched() { L_SetStatusCallBack(before_, nullptr); }
  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;

 private:
  StatusCallback before_;
};

// The colour that a pixel shows; channels of 5-5-5 repeat their top bits.
inline Rgb ColorAt(const pictures::Locked& image, int x, int y) {
  const int depth = image.layout().depth;
  const std::uint8_t* row = image.row(y);
  if (depth == 16) {
    const int pixel = row[2 * x] + 256 * row[2 * x + 1];
    const auto wide = [=](int unit) {
      const int tone = pixel / unit % 32;
      return double(tone << 3 | tone >> 2);
    };
    return {wide(1024), wide(32), wide(1)};
  }
  const int index = depth == 8 ? row[x] : x % 2 == 0 ? row[x / 2] / 16 : row[x / 2] % 16;
  const std::uint8_t* color =
      depth >= 24 ? row + x * (depth / 8) : image.bytes() + orvo::kDibHeaderBytes + 4 * index;
  return {double(color[2]), double(color[1]), double(color[0])};
}

// How far a shown tone may lie from the real number that it stands for: half a tone, and at 5-5-5
// half of one of 31 steps and what their widened form is off by.
inline double Slack(int depth) {
  return depth == 16 ? 1.3 + 255 / 62.0 : 0.5 + 1e-6;
}

// The first byte that changed without holding colour: header, padding, the palette or else the
// pixels, the bits of either that are no colour. -1 when there is none.
inline std::ptrdiff_t StrayChange(DibHandle before, DibHandle after, bool colorsInPalette) {
  const std::vector<std::uint8_t> a = pictures::BytesOf(before);
  const std::vector<std::uint8_t> b = pictures::BytesOf(after);
  const orvo::DibLayout layout = pictures::Locked(before).layout();
  for (std::size_t i = 0; i < a.size(); ++i) {
    const bool inPalette = i >= orvo::kDibHeaderBytes && i < layout.pixelOffset;
    const std::size_t at = (i - layout.pixelOffset) % layout.stride;
    const auto bits =
        static_cast<std::size_t>(layout.width) * static_cast<std::size_t>(layout.depth);
    int free = 0;
    if (colorsInPalette) {
      free = inPalette && i % 4 != 3 ? 0xFF : 0;
    } else if (i >= layout.pixelOffset && at * 8 < bits) {
      free = at * 8 + 4 == bits                  ? 0xF0
             : layout.depth == 16 && at % 2 == 1 ? 0x7F
             : layout.depth == 32 && at % 4 == 3 ? 0
                                                 : 0xFF;
    }
    if (((a[i] ^ b[i]) & ~free) != 0) return static_cast<std::ptrdiff_t>(i);
  }
  return -1;
}

}  // namespace adjusted

#endif  // TESTS_MODULES_LTIMG13N_ADJUSTED_H
