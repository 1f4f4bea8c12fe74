#include "pictures/tiff_rows.h"

#include <algorithm>
#include <cstring>

#include "pictures/tiff_samples.h"

namespace modules {

// The samples as bytes: the packed ones themselves when they are bytes already.
const std::uint8_t* TiffRows::bytesOf(const std::uint8_t* packed, std::size_t count,
                                      std::size_t sample, std::vector<std::uint8_t>& out) const {
  if (page_.bits == 8 && page_.format == SAMPLEFORMAT_UINT) return packed;
  out.resize(count);
  NarrowSamples(page_, packed, sample, out);
  return out.data();
}

const std::uint8_t* TiffRows::samplesOf(const std::uint8_t* const* planes, std::size_t count) {
  const auto samples = static_cast<std::size_t>(page_.samples);
  if (!page_.planar) return bytesOf(planes[0], count * samples, 0, samples_);
  samples_.resize(count * samples);
  for (std::size_t sample = 0; sample < samples; ++sample) {
    const std::uint8_t* const plane = bytesOf(planes[sample], count, sample, plane_);
    for (std::size_t x = 0; x < count; ++x) samples_[x * samples + sample] = plane[x];
  }
  return samples_.data();
}

std::uint8_t TiffRows::plainTone(std::uint8_t tone, std::uint8_t alpha) const {
  if (!page_.premultiplied || alpha == 0 || alpha == 255) return tone;
  return static_cast<std::uint8_t>(std::min((tone * 255 + alpha / 2) / alpha, 255));
}

void TiffRows::store(const std::uint8_t* const* planes, int left, int count, std::uint8_t* row) {
  using Kind = TiffPage::Kind;
  const auto start = static_cast<std::size_t>(left);
  const auto pixels = static_cast<std::size_t>(count);
  if (page_.kind == Kind::kAsStored) {
    // Tiles begin at a multiple of 16 pixels, so always with a whole byte.
    const auto bits = static_cast<std::size_t>(page_.bits);
    std::memcpy(row + start * bits / 8, planes[0], (pixels * bits + 7) / 8);
    return;
  }
  if (page_.keepsSixteenBits) {
    const auto samples = static_cast<std::size_t>(page_.samples);
    return storeWide(planes[0], pixels * samples, row + 2 * start * samples);
  }
  const std::uint8_t* const from = samplesOf(planes, pixels);
  std::uint8_t* const out = row + start * static_cast<std::size_t>(page_.picture.samples);
  const auto samples = std::span(from, pixels * static_cast<std::size_t>(page_.samples));
  switch (page_.kind) {
    case Kind::kGray:
      if (page_.alphaAt == 0) return storeTones(samples, out);
      return storeColors(samples, out,
                         [this](const std::uint8_t* s) { return GrayOf(toneOf(s[0])); });
    case Kind::kIndex:
      // Samples fill a byte as tones do: the highest bits are the index.
      return storeColors(samples, out, [this](const std::uint8_t* s) {
        return ColorOf(page_.colors[static_cast<std::size_t>(s[0] >> (8 - page_.bits))]);
      });
    case Kind::kLab:
      return storeColors(samples, out, [flip = page_.hasIccLab ? 0x80 : 0](const std::uint8_t* s) {
        return ColorOfLab(s[0], static_cast<std::int8_t>(s[1] ^ flip),
                          static_cast<std::int8_t>(s[2] ^ flip));
      });
    case Kind::kCmyk:
      if (page_.picture.hasInks) return storeInks(samples, out);
      return storeColors(samples, out, [](const std::uint8_t* s) {
        const auto mixed = [white = 255 - s[3]](std::uint8_t ink) {
          return static_cast<std::uint8_t>(((255 - ink) * white + 127) / 255);
        };
        return Color{mixed(s[2]), mixed(s[1]), mixed(s[0])};
      });
    default:
      return storeColors(samples, out, [](const std::uint8_t* s) {
        return Color{s[2], s[1], s[0]};
      });
  }
}

// The library gives them in the order of the machine.
void TiffRows::storeWide(const std::uint8_t* from, std::size_t count, std::uint8_t* out) const {
  const unsigned flip = page_.whiteIsZero ? 0xFFFF : 0;
  for (std::size_t i = 0; i < count; ++i, from += 2, out += 2) {
    std::uint16_t sample = 0;
    std::memcpy(&sample, from, sizeof sample);
    const unsigned tone = sample ^ flip;
    out[0] = static_cast<std::uint8_t>(tone >> 8);
    out[1] = static_cast<std::uint8_t>(tone);
  }
}

void TiffRows::storeTones(std::span<const std::uint8_t> samples, std::uint8_t* out) const {
  const auto step = static_cast<std::size_t>(page_.samples);
  if (step == 1 && !page_.whiteIsZero) {
    std::copy(samples.begin(), samples.end(), out);
    return;
  }
  for (std::size_t i = 0; i < samples.size(); i += step) *out++ = toneOf(samples[i]);
}

void TiffRows::storeInks(std::span<const std::uint8_t> samples, std::uint8_t* out) const {
  constexpr std::size_t kInks = 4;
  const auto step = static_cast<std::size_t>(page_.samples);
  for (; !samples.empty(); samples = samples.subspan(step)) {
    out = std::copy_n(samples.begin(), kInks, out);
    if (page_.alphaAt != 0) *out++ = samples[page_.alphaAt];
  }
}

template <class ColorOf>
void TiffRows::storeColors(std::span<const std::uint8_t> samples, std::uint8_t* out,
                           const ColorOf& colorOf) const {
  const auto step = static_cast<std::size_t>(page_.samples);
  const std::size_t alphaAt = page_.alphaAt;
  const std::uint8_t* const end = samples.data() + samples.size();
  for (const std::uint8_t* from = samples.data(); from != end; from += step) {
    Color color = colorOf(from);
    if (alphaAt != 0) {
      const std::uint8_t alpha = from[alphaAt];
      color = {plainTone(color.blue, alpha), plainTone(color.green, alpha),
               plainTone(color.red, alpha)};
      out[3] = alpha;
    }
    std::memcpy(out, &color, sizeof color);
    out += alphaAt != 0 ? 4 : 3;
  }
}

}  // namespace modules
