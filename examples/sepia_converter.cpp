// A colour converter: a module that the toolkit loads by name for ConvertRGB. This one tones in
// sepia images of 24 bits and the palettes of 1, 4 and 8 bits; others it leaves as they are.
#include <algorithm>

#include <orvo/dib.h>

#if defined(_WIN32)
#define CONVERTER_API __declspec(dllexport)
#else
#define CONVERTER_API __attribute__((visibility("default")))
#endif

namespace {

// Weights in thousandths of red, green and blue in each new channel: a warm brown of the brightness
// that the eye sees.
struct Weights {
  int red, green, blue;
};
constexpr Weights kRed{393, 769, 189};
constexpr Weights kGreen{349, 686, 168};
constexpr Weights kBlue{272, 534, 131};

// The first three bytes at `color` are blue, green and red.
void Tone(std::uint8_t* color) {
  const int blue = color[0];
  const int green = color[1];
  const int red = color[2];
  const auto mix = [=](const Weights& weights) {
    const int sum = weights.red * red + weights.green * green + weights.blue * blue;
    return static_cast<std::uint8_t>(std::min((sum + 500) / 1000, 255));
  };
  color[0] = mix(kBlue);
  color[1] = mix(kGreen);
  color[2] = mix(kRed);
}

}  // namespace

// The block holds what its header tells; its size is not known here. A header that makes no sense
// changes nothing.
extern "C" CONVERTER_API void vnColorConvertDIB(void* packedDib) {
  if (packedDib == nullptr) return;
  const BITMAPINFOHEADER header = orvo::DibHeaderOf(packedDib);
  const auto layout = orvo::DibLayoutFor(header.biWidth, header.biHeight, header.biBitCount);
  if (!layout) return;

  auto* const block = static_cast<std::uint8_t*>(packedDib);
  const int depth = layout->depth;
  if (depth == 1 || depth == 4 || depth == 8) {
    for (std::size_t at = orvo::kDibHeaderBytes; at < layout->pixelOffset; at += 4)
      Tone(block + at);
  } else if (depth == 24) {
    std::uint8_t* row = block + layout->pixelOffset;
    for (int y = 0; y < layout->height; ++y, row += layout->stride) {
      for (int x = 0; x < layout->width; ++x) Tone(row + 3 * static_cast<std::size_t>(x));
    }
  }
}
