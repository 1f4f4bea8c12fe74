#include "pictures/tiff_rows.h"

#include <algorithm>
#include <cstring>

namespace modules {
namespace {

std::uint8_t ByteOf(std::uint32_t value, std::uint32_t most) {
  return static_cast<std::uint8_t>((value * 255 + most / 2) / most);
}

}  // namespace

// The samples as bytes: the packed ones themselves when they are bytes already.
const std::uint8_t* TiffRows::bytesOf(const std::uint8_t* packed, std::size_t samples,
                                      std::vector<std::uint8_t>& out) const {
  if (page_.bits == 8) return packed;
  out.resize(samples);
  if (page_.bits == 16) {
    for (std::size_t i = 0; i < samples; ++i) {
      std::uint16_t value = 0;  // in this machine's byte order
      std::memcpy(&value, packed + 2 * i, sizeof value);
      out[i] = Narrowed16(value);
    }
    return out.data();
  }
  // Any other size is packed bit by bit, highest first.
  const auto bits = static_cast<std::size_t>(page_.bits);
  const std::uint32_t most = (1U << bits) - 1;
  std::size_t at = 0;
  for (std::size_t i = 0; i < samples; ++i) {
    std::uint32_t value = 0;
    for (std::size_t end = at + bits; at < end; ++at) {
      value = value << 1 | (packed[at / 8] >> (7 - at % 8) & 1U);
    }
    out[i] = ByteOf(value, most);
  }
  return out.data();
}

const std::uint8_t* TiffRows::samplesOf(const std::uint8_t* const* planes, std::size_t count) {
  const auto samples = static_cast<std::size_t>(page_.samples);
  if (!page_.planar) return bytesOf(planes[0], count * samples, samples_);
  samples_.resize(count * samples);
  for (std::size_t sample = 0; sample < samples; ++sample) {
    const std::uint8_t* const plane = bytesOf(planes[sample], count, plane_);
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
  const auto step = static_cast<std::size_t>(page_.samples);
  const std::uint8_t* from = samplesOf(planes, pixels);
  const std::uint8_t* const end = from + pixels * step;
  std::uint8_t* out = row + start * static_cast<std::size_t>(page_.picture.samples);
  switch (page_.kind) {
    case Kind::kGray:
      if (step == 1 && !page_.whiteIsZero) {
        std::memcpy(out, from, pixels);
      } else {
        for (; from != end; from += step) *out++ = toneOf(from[0]);
      }
      return;
    case Kind::kGrayAlpha:
      for (; from != end; from += step, out += 4) {
        out[0] = out[1] = out[2] = plainTone(toneOf(from[0]), from[1]);
        out[3] = from[1];
      }
      return;
    case Kind::kRgba:
      for (; from != end; from += step, out += 4) {
        for (int i = 0; i < 3; ++i) out[i] = plainTone(from[2 - i], from[3]);
        out[3] = from[3];
      }
      return;
    case Kind::kCmyk:
      for (; from != end; from += step, out += 3) {
        const int white = 255 - from[3];
        for (int i = 0; i < 3; ++i) {
          out[i] = static_cast<std::uint8_t>(((255 - from[2 - i]) * white + 127) / 255);
        }
      }
      return;
    default:
      for (; from != end; from += step, out += 3) {
        out[0] = from[2];
        out[1] = from[1];
        out[2] = from[0];
      }
  }
}

}  // namespace modules
