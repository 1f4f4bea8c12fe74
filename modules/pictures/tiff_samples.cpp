#include "pictures/tiff_samples.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace modules {
namespace {

// Numbers are in this machine's byte order.
template <class Number, class Narrow>
void NarrowEach(const std::uint8_t* packed, std::span<std::uint8_t> bytes, const Narrow& narrow) {
  for (std::uint8_t& byte : bytes) {
    Number value{};
    std::memcpy(&value, packed, sizeof value);
    packed += sizeof value;
    byte = narrow(value);
  }
}

double NumberOfHalf(std::uint16_t half) {
  constexpr int kMostExponent = 31;
  const int exponent = half >> 10 & kMostExponent;
  const int fraction = half & 1023;
  double value =
      exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25);
  if (exponent == kMostExponent) {
    value = fraction == 0 ? std::numeric_limits<double>::infinity() : std::nan("");
  }
  return (half & 0x8000) != 0 ? -value : value;
}

// By the page's range; what lies outside is black or white, what is no number black.
void NarrowByRange(const TiffPage& page, const std::uint8_t* packed,
                   std::span<std::uint8_t> bytes) {
  const double scale = 255 / (page.high - page.low);
  const auto narrow = [low = page.low, scale](auto value) {
    const double tone = (static_cast<double>(value) - low) * scale + 0.5;
    return tone >= 255 ? std::uint8_t{255} : static_cast<std::uint8_t>(tone > 0 ? tone : 0);
  };
  const bool isSigned = page.format == SAMPLEFORMAT_INT;
  if (page.format == SAMPLEFORMAT_IEEEFP) {
    if (page.bits == 16) {
      return NarrowEach<std::uint16_t>(
          packed, bytes, [&](std::uint16_t half) { return narrow(NumberOfHalf(half)); });
    }
    return page.bits == 32 ? NarrowEach<float>(packed, bytes, narrow)
                           : NarrowEach<double>(packed, bytes, narrow);
  }
  if (page.bits == 8) return NarrowEach<std::int8_t>(packed, bytes, narrow);
  if (page.bits == 16) return NarrowEach<std::int16_t>(packed, bytes, narrow);
  return isSigned ? NarrowEach<std::int32_t>(packed, bytes, narrow)
                  : NarrowEach<std::uint32_t>(packed, bytes, narrow);
}

// Packed bit by bit, highest first.
void NarrowBits(int bits, const std::uint8_t* packed, std::span<std::uint8_t> bytes) {
  const auto sampleBits = static_cast<std::size_t>(bits);
  const std::uint32_t most = (1U << sampleBits) - 1;
  std::size_t at = 0;
  for (std::uint8_t& byte : bytes) {
    std::uint32_t value = 0;
    for (const std::size_t end = at + sampleBits; at < end; ++at) {
      value = value << 1 | (packed[at / 8] >> (7 - at % 8) & 1U);
    }
    byte = static_cast<std::uint8_t>((value * 255 + most / 2) / most);
  }
}

// 16 bits: a and b are 256ths, and so is the lightness of the form that counts them from 128.
void NarrowLab(const TiffPage& page, const std::uint8_t* packed, std::size_t sample,
               std::span<std::uint8_t> bytes) {
  const std::size_t step = page.planar ? 0 : 1;
  const auto samples = static_cast<std::size_t>(page.samples);
  NarrowEach<std::uint16_t>(packed, bytes, [&](std::uint16_t value) {
    const bool isColor = sample == 1 || sample == 2;
    const bool isWhole = sample > 2 || (sample == 0 && !page.hasIccLab);
    sample = step == 0 ? sample : (sample + 1) % samples;
    if (isWhole) return Narrowed16(value);
    if (isColor && !page.hasIccLab) {
      const int number = (static_cast<std::int16_t>(value) + 128) >> 8;
      return static_cast<std::uint8_t>(std::min(number, 127));
    }
    return ClampedTone((value + 128) >> 8);
  });
}

// Tones of light as screens show them.
std::uint8_t ScreenTone(double light) {
  constexpr std::size_t kSteps = 1 << 14;  // fine enough for the steep start of the curve
  static const auto kTones = [] {
    std::array<std::uint8_t, kSteps + 1> tones{};
    for (std::size_t i = 0; i <= kSteps; ++i) {
      const double part = static_cast<double>(i) / kSteps;
      const double tone =
          part <= 0.0031308 ? 12.92 * part : 1.055 * std::pow(part, 1 / 2.4) - 0.055;
      tones[i] = static_cast<std::uint8_t>(std::lround(tone * 255));
    }
    return tones;
  }();
  return kTones[static_cast<std::size_t>(std::lround(std::clamp(light, 0.0, 1.0) * kSteps))];
}

}  // namespace

void NarrowSamples(const TiffPage& page, const std::uint8_t* packed, std::size_t sample,
                   std::span<std::uint8_t> bytes) {
  if (page.kind == TiffPage::Kind::kLab) return NarrowLab(page, packed, sample, bytes);
  if (page.format != SAMPLEFORMAT_UINT || page.bits > 16) return NarrowByRange(page, packed, bytes);
  if (page.bits != 16) return NarrowBits(page.bits, packed, bytes);
  NarrowEach<std::uint16_t>(packed, bytes, [](std::uint16_t tone) { return Narrowed16(tone); });
}

Color ColorOfLab(std::uint8_t lightness, std::int8_t a, std::int8_t b) {
  constexpr double kKnee = 6.0 / 29;
  const auto lightOf = [](double part) {
    return part > kKnee ? part * part * part : 3 * kKnee * kKnee * (part - 4.0 / 29);
  };
  const double middle = (lightness / 2.55 + 16) / 116;
  const double x = 0.95047 * lightOf(middle + a / 500.0);
  const double y = lightOf(middle);
  const double z = 1.08883 * lightOf(middle - b / 200.0);
  return {ScreenTone(0.0556434 * x - 0.2040259 * y + 1.0572252 * z),
          ScreenTone(-0.9692660 * x + 1.8760108 * y + 0.0415560 * z),
          ScreenTone(3.2404542 * x - 1.5371385 * y - 0.4985314 * z)};
}

}  // namespace modules
