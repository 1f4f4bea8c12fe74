// Pictures for tests: made from a seed or a rule, compared to the first difference.
#ifndef TESTS_SUPPORT_PICTURES_H
#define TESTS_SUPPORT_PICTURES_H

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <orvo/raii.h>

namespace pictures {

// A locked block, for as long as the test looks at it.
class Locked {
 public:
  explicit Locked(DibHandle handle)
      : handle_(handle), bytes_(static_cast<std::uint8_t*>(GlobalLock(handle))) {}
  ~Locked() { GlobalUnlock(handle_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

  [[nodiscard]] std::uint8_t* bytes() const { return bytes_; }
  [[nodiscard]] BITMAPINFOHEADER* header() const {
    return reinterpret_cast<BITMAPINFOHEADER*>(bytes_);
  }
  [[nodiscard]] RGBQUAD* palette() const {
    return reinterpret_cast<RGBQUAD*>(bytes_ + orvo::kDibHeaderBytes);
  }
  [[nodiscard]] orvo::DibLayout layout() const {
    return orvo::DibLayoutOf(bytes_, GlobalSize(handle_)).value();
  }
  // A stored row.
  [[nodiscard]] std::uint8_t* row(int y) const {
    const orvo::DibLayout shape = layout();
    return bytes_ + shape.pixelOffset + shape.stride * static_cast<std::size_t>(y);
  }

 private:
  DibHandle handle_;
  std::uint8_t* bytes_;
};

// A zero-filled image, 300 dots per inch; depths to 8 get an even gray palette.
inline orvo::OwnedDib Blank(int width, int height, int depth) {
  const std::int32_t resolution = orvo::PixelsPerMetre(300);
  orvo::OwnedDib dib =
      orvo::NewDib(orvo::DibHeaderFor(width, height, depth, resolution, resolution));
  const Locked image(dib.get());
  const int colors = static_cast<int>(orvo::DibPaletteBytes(depth) / 4);
  for (int i = 0; i < colors; ++i) {
    const auto tone = static_cast<std::uint8_t>(i * 255 / (colors - 1));
    image.palette()[i] = RGBQUAD{tone, tone, tone, 0};
  }
  return dib;
}

// Noise in every byte of the rows, padding included, so that a padding byte that changes shows.
inline orvo::OwnedDib Noise(int width, int height, int depth, unsigned seed) {
  orvo::OwnedDib dib = Blank(width, height, depth);
  const Locked image(dib.get());
  const orvo::DibLayout layout = image.layout();
  std::mt19937 random(seed);
  for (std::size_t i = layout.pixelOffset; i < layout.totalBytes; ++i) {
    image.bytes()[i] = static_cast<std::uint8_t>(random());
  }
  return dib;
}

// Noise with a palette of random colours; depths to 8.
inline orvo::OwnedDib NoiseInColor(int width, int height, int depth, unsigned seed) {
  orvo::OwnedDib dib = Noise(width, height, depth, seed);
  const Locked image(dib.get());
  std::mt19937 random(seed + 1);
  for (std::size_t i = 0; i < orvo::DibPaletteBytes(depth); ++i) {
    if (i % 4 != 3) image.bytes()[orvo::kDibHeaderBytes + i] = static_cast<std::uint8_t>(random());
  }
  return dib;
}

// All bytes of a block.
inline std::vector<std::uint8_t> BytesOf(DibHandle dib) {
  const Locked image(dib);
  return {image.bytes(), image.bytes() + GlobalSize(dib)};
}

inline orvo::OwnedDib CopyOf(DibHandle dib) {
  const std::vector<std::uint8_t> bytes = BytesOf(dib);
  orvo::OwnedDib copy(GlobalAlloc(orvo::kDibBlockFlags, bytes.size()));
  std::memcpy(Locked(copy.get()).bytes(), bytes.data(), bytes.size());
  return copy;
}

// Empty when two images agree byte for byte, else where they first differ, in words.
inline std::string Difference(DibHandle expected, DibHandle got) {
  const std::vector<std::uint8_t> a = BytesOf(expected);
  const std::vector<std::uint8_t> b = BytesOf(got);
  if (a.size() != b.size()) {
    return "sizes " + std::to_string(a.size()) + " and " + std::to_string(b.size());
  }
  const auto layout = orvo::DibLayoutOf(a.data(), a.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] == b[i]) continue;
    std::string place = "byte " + std::to_string(i);
    if (layout && i >= layout->pixelOffset) {
      const std::size_t inRows = i - layout->pixelOffset;
      place = "row " + std::to_string(inRows / layout->stride) + ", byte " +
              std::to_string(inRows % layout->stride);
    }
    return place + ": expected " + std::to_string(a[i]) + ", got " + std::to_string(b[i]);
  }
  return {};
}

}  // namespace pictures

#endif  // TESTS_SUPPORT_PICTURES_H
