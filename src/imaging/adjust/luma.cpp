#include "imaging/adjust/luma.h"

#include "imaging/adjust/ycbcr.h"

namespace orvo::ORVO_LEVEL {

void TonesOfColors(const std::uint8_t* pixels, std::size_t count, std::uint8_t* tones) {
  for (std::size_t x = 0; x < count; ++x) {
    tones[x] = static_cast<std::uint8_t>(
        static_cast<int>(LumaOf(pixels[3 * x + 2], pixels[3 * x + 1], pixels[3 * x])));
  }
}

void StoreColors(const double* luma, std::size_t count, const std::uint8_t* source,
                 std::uint8_t* target) {
  for (std::size_t i = 0; i < count; ++i) {
    const double blue = source[3 * i];
    const double green = source[3 * i + 1];
    const double red = source[3 * i + 2];
    const double cb = CbOf(red, green, blue);
    const double cr = CrOf(red, green, blue);
    target[3 * i] = ChannelByte(BlueOf(luma[i], cb));
    target[3 * i + 1] = ChannelByte(GreenOf(luma[i], cb, cr));
    target[3 * i + 2] = ChannelByte(RedOf(luma[i], cr));
  }
}

}  // namespace orvo::ORVO_LEVEL
