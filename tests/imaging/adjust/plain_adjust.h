// The adjust functions as they are defined, step by step: the references that the shipped forms
// have to equal byte for byte.
#ifndef TESTS_IMAGING_ADJUST_PLAIN_ADJUST_H
#define TESTS_IMAGING_ADJUST_PLAIN_ADJUST_H

#include <cmath>

#include "imaging/adjust/plain_image.h"

using namespace orvo;

namespace plain {

inline void Sharpen(const std::uint8_t* source, std::uint8_t* target, const Image& image,
                    int level) {
  const std::uint32_t m = std::max(image.width, image.height) / 512;
  const double s = m == 0 ? 1.0 / 4 : m == 1 ? 1.0 / 3 : m == 2 ? 1.0 / 2 : 1.0;
  const double a = (-level * s) * 0.01;
  const double b = (s * level) * 0.04;
  const double kernel[5][5] = {
      {a, a, a, a, a}, {a, 0, b, 0, a}, {a, b, 1, b, a}, {a, 0, b, 0, a}, {a, a, a, a, a}};
  CopyAll(source, target, image);
  std::vector<double> luma;
  if (image.depth == 24) luma = LumaPlane(source, image);
  for (std::uint32_t y = 2; y + 2 < image.height; ++y) {
    for (std::uint32_t x = 2; x + 2 < image.width; ++x) {
      double sum = 0.0;
      for (std::uint32_t j = 0; j < 5; ++j) {
        for (std::uint32_t i = 0; i < 5; ++i) {
          const std::uint32_t column = x + i - 2;
          const std::uint32_t row = y + j - 2;
          sum += kernel[j][i] * (image.depth == 8 ? source[image.at(column, row)]
                                                  : luma[std::size_t{image.width} * row + column]);
        }
      }
      if (image.depth == 8) {
        target[image.at(x, y)] = static_cast<std::uint8_t>(std::clamp(sum, 0.0, 255.0));
      } else {
        StoreColor(sum, source + image.at(x, y), target + image.at(x, y));
      }
    }
  }
}

// The tone by which a pixel is counted.
inline int ToneAt(const std::uint8_t* source, const std::vector<double>& luma, const Image& image,
                  std::uint32_t x, std::uint32_t y) {
  return image.depth == 8 ? source[image.at(x, y)]
                          : static_cast<int>(luma[std::size_t{image.width} * y + x]);
}

inline void MapPixel(const double (&map)[256], int tone, const std::uint8_t* source,
                     std::uint8_t* target, const Image& image, std::uint32_t x, std::uint32_t y) {
  const std::size_t at = image.at(x, y);
  if (image.depth == 8) {
    target[at] = static_cast<std::uint8_t>(map[tone]);
  } else {
    StoreColor(map[tone], source + at, target + at);
  }
}

inline void StretchHistogram(const std::uint8_t* source, std::uint8_t* target, const Image& image,
                             std::uint32_t level) {
  CopyAll(source, target, image);
  std::vector<double> luma;
  if (image.depth == 24) luma = LumaPlane(source, image);
  std::uint32_t bins[256] = {};
  for (std::uint32_t y = 0; y < image.height; ++y) {
    for (std::uint32_t x = 0; x < image.width; ++x) ++bins[ToneAt(source, luma, image, x, y)];
  }
  const std::uint32_t clip = ((image.width / 10) * (image.height / 10) * level) / 2;
  int low = 0;
  for (std::uint32_t sum = 0; low < 25; ++low) {
    sum += bins[low];
    if (sum > clip) break;
  }
  int high = 0;
  for (std::uint32_t sum = 0; high < 25; ++high) {
    sum += bins[255 - high];
    if (sum > clip) break;
  }
  double map[256];
  for (int i = 0; i < 256; ++i) {
    map[i] = std::clamp(((i - low) * 255.0) / (255 - high - low), 0.0, 255.0);
  }
  for (std::uint32_t y = 0; y < image.height; ++y) {
    for (std::uint32_t x = 0; x < image.width; ++x) {
      MapPixel(map, ToneAt(source, luma, image, x, y), source, target, image, x, y);
    }
  }
}

// The walk with its ring of 128 column histograms, recounted for every row of tiles.
inline void EqualizeExposure(const std::uint8_t* source, std::uint8_t* target, const Image& image,
                             int level) {
  CopyAll(source, target, image);
  if (image.width < 128 || image.height < 128) return;
  std::vector<double> luma;
  if (image.depth == 24) luma = LumaPlane(source, image);
  const auto tone = [&](std::uint32_t x, std::uint32_t y) {
    return ToneAt(source, luma, image, x, y);
  };
  std::vector<std::vector<std::uint16_t>> ring(128, std::vector<std::uint16_t>(256));
  for (std::uint32_t y0 = 0; y0 < image.height; y0 += 16) {
    const std::uint32_t bottom = std::min(y0 + 128, image.height);
    for (std::uint32_t c = 0; c < 128; ++c) {
      std::fill(ring[c].begin(), ring[c].end(), std::uint16_t{0});
      for (std::uint32_t y = y0; y < bottom; ++y) ++ring[c][static_cast<std::size_t>(tone(c, y))];
    }
    std::uint32_t columns = 128;
    std::uint32_t next = 128;
    double map[256];
    // False when the centre block at this column holds no pixel.
    const auto makeMap = [&](std::uint32_t first) {
      std::uint16_t centre[256] = {};
      for (std::uint32_t y = y0 + 56; y < std::min(y0 + 72, image.height); ++y) {
        for (std::uint32_t x = first; x < std::min(first + 16, image.width); ++x) {
          ++centre[tone(x, y)];
        }
      }
      double e = 0.0;
      for (const std::uint16_t count : centre) e += static_cast<double>(count) * count;
      if (e == 0.0) return false;
      const double s = std::sqrt(256.0 / e);
      const double t = 256.0 / ((bottom - y0) * columns);
      int running = 0;
      for (int i = 0; i < 256; ++i) {
        for (const auto& slot : ring) running += slot[static_cast<std::size_t>(i)];
        map[i] = std::clamp(i + ((((running * t - 1.0) - i) * level) * s) * 0.05, 0.0, 255.0);
      }
      return true;
    };
    if (!makeMap(56)) return;
    for (std::uint32_t x0 = 0; x0 < image.width; x0 += 16) {
      for (std::uint32_t y = y0 == 0 ? 2 : y0 + 56; y <= y0 + 71 && y < image.height - 2; ++y) {
        for (std::uint32_t x = x0 == 0 ? 2 : x0 + 56; x <= x0 + 71 && x < image.width - 2; ++x) {
          MapPixel(map, tone(x, y), source, target, image, x, y);
        }
      }
      columns -= 16;
      for (std::uint32_t c = next; c < next + 16; ++c) {
        auto& slot = ring[c % 128];
        std::fill(slot.begin(), slot.end(), std::uint16_t{0});
        if (c >= image.width) continue;
        ++columns;
        for (std::uint32_t y = y0; y < bottom; ++y) ++slot[static_cast<std::size_t>(tone(c, y))];
      }
      next += 16;
      if (!makeMap(x0 + 72)) break;
    }
  }
}

}  // namespace plain

#endif  // TESTS_IMAGING_ADJUST_PLAIN_ADJUST_H
