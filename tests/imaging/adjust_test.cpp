// Sharpness, histogram and exposure against their plain forms, and the colours that they share.
#include <cmath>

#include "imaging/adjust/exposure.h"
#include "imaging/adjust/histogram.h"
#include "imaging/adjust/sharpness.h"
#include "imaging/adjust/ycbcr.h"
#include "imaging/plain_image.h"
#include "imaging/results.h"
#include "platform/fault_injection.h"

using namespace orvo;

namespace {

using plain::Bytes;
using plain::Image;

// --- Plain forms ---------------------------------------------------------------------------------

// Tones of all pixels: bytes, or luma.
std::vector<double> TonesOf(const std::uint8_t* source, const Image& image) {
  std::vector<double> tones;
  for (std::uint32_t y = 0; y < image.height; ++y) {
    for (std::uint32_t x = 0; x < image.width; ++x) {
      const std::uint8_t* const p = source + image.at(x, y);
      tones.push_back(image.depth == 8 ? *p : p[1] * 0.587 + p[0] * 0.114 + p[2] * 0.299);
    }
  }
  return tones;
}

void Copy(const std::uint8_t* source, std::uint8_t* target, const Image& image) {
  if (source != target) std::copy_n(source, image.stride() * image.height, target);
}

// A new tone; colours keep the chroma of the source's pixel.
void Store(double tone, const std::uint8_t* source, std::uint8_t* target, const Image& image,
           std::size_t at) {
  if (image.depth == 8) {
    target[at] = plain::Limited(static_cast<int>(tone));
    return;
  }
  const double blue = source[at];
  const double green = source[at + 1];
  const double red = source[at + 2];
  const double cb = 0.5 * blue - (0.1687 * red + 0.3313 * green);
  const double cr = 0.5 * red - 0.4187 * green - 0.0813 * blue;
  target[at] = plain::Limited(static_cast<int>(tone + 1.772 * cb));
  target[at + 1] = plain::Limited(static_cast<int>(tone - 0.34414 * cb - 0.71414 * cr));
  target[at + 2] = plain::Limited(static_cast<int>(tone + 1.402 * cr));
}

void Sharpen(const std::uint8_t* source, std::uint8_t* target, const Image& image, int level) {
  const std::uint32_t m = std::max(image.width, image.height) / 512;
  const double s = m == 0 ? 1.0 / 4 : m == 1 ? 1.0 / 3 : m == 2 ? 1.0 / 2 : 1.0;
  const double a = (-level * s) * 0.01;
  const double b = (s * level) * 0.04;
  const double kernel[5][5] = {
      {a, a, a, a, a}, {a, 0, b, 0, a}, {a, b, 1, b, a}, {a, 0, b, 0, a}, {a, a, a, a, a}};
  Copy(source, target, image);
  const std::vector<double> luma = TonesOf(source, image);
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
      Store(sum, source, target, image, image.at(x, y));
    }
  }
}

void StretchHistogram(const std::uint8_t* source, std::uint8_t* target, const Image& image,
                      int level) {
  Copy(source, target, image);
  const std::vector<double> tones = TonesOf(source, image);
  std::uint32_t bins[256] = {};
  for (const double tone : tones) ++bins[static_cast<int>(tone)];
  const std::uint32_t clip =
      ((image.width / 10) * (image.height / 10) * static_cast<std::uint32_t>(level)) / 2;
  int low = 0;
  for (std::uint32_t sum = bins[0]; low < 25 && sum <= clip; sum += bins[low]) ++low;
  int high = 0;
  for (std::uint32_t sum = bins[255]; high < 25 && sum <= clip; sum += bins[255 - high]) ++high;
  for (std::uint32_t y = 0; y < image.height; ++y) {
    for (std::uint32_t x = 0; x < image.width; ++x) {
      const auto tone = static_cast<int>(tones[std::size_t{image.width} * y + x]);
      const double mapped = ((tone - low) * 255.0) / (255 - high - low);
      Store(std::clamp(mapped, 0.0, 255.0), source, target, image, image.at(x, y));
    }
  }
}

// Each tile counts its whole window anew. In place a window of tones holds what the rows of tiles
// above have written, and nothing of its own row.
void EqualizeExposure(const std::uint8_t* source, std::uint8_t* target, const Image& image,
                      int level) {
  const std::uint32_t w = image.width;
  const std::uint32_t h = image.height;
  Copy(source, target, image);
  if (w < 128 || h < 128) return;
  std::vector<double> tones = TonesOf(source, image);
  const auto tone = [&](std::uint32_t x, std::uint32_t y) {
    return static_cast<int>(tones[std::size_t{w} * y + x]);
  };
  for (std::uint32_t top = 0; top + 56 < h; top += 16) {
    if (image.depth == 8) tones = TonesOf(source, image);
    for (std::uint32_t left = 0; left + 56 < w; left += 16) {
      int window[256] = {};
      int centre[256] = {};
      const std::uint32_t right = std::min(left + 128, w);
      const std::uint32_t bottom = std::min(top + 128, h);
      for (std::uint32_t y = top; y < bottom; ++y) {
        for (std::uint32_t x = left; x < right; ++x) {
          const bool isCentral = x - left - 56 < 16 && y - top - 56 < 16;  // of unsigned numbers
          ++window[tone(x, y)];
          centre[tone(x, y)] += isCentral ? 1 : 0;
        }
      }
      double squares = 0.0;
      for (const int count : centre) squares += static_cast<double>(count) * count;
      const double variety = std::sqrt(256.0 / squares);
      const double scale = 256.0 / ((bottom - top) * (right - left));
      double map[256];
      int below = 0;
      for (int i = 0; i < 256; ++i) {
        const double curve = (below += window[i]) * scale - 1.0;
        map[i] = std::clamp(i + (((curve - i) * level) * variety) * 0.05, 0.0, 255.0);
      }
      for (std::uint32_t y = top == 0 ? 2 : top + 56; y < std::min(top + 72, h - 2); ++y) {
        for (std::uint32_t x = left == 0 ? 2 : left + 56; x < std::min(left + 72, w - 2); ++x) {
          Store(map[tone(x, y)], source, target, image, image.at(x, y));
        }
      }
    }
  }
}

// --- The operations ------------------------------------------------------------------------------

struct Operation {
  const char* name;
  int (*shipped)(const std::uint8_t*, std::uint8_t*, std::uint32_t, std::uint32_t, std::uint8_t,
                 std::uint8_t) noexcept;
  void (*reference)(const std::uint8_t*, std::uint8_t*, const Image&, int);
  int codeBelow128;  // for an image with a side below 128
};

const Operation kOperations[] = {
    {"sharpness", ImgSharpnessAdjust, Sharpen, kImgDone},
    {"histogram", ImgHistogramAdjust, StretchHistogram, kImgDone},
    {"exposure", ImgExposureAdjust, EqualizeExposure, kImgNotFound},
};

void ExpectReferences(const Image& image, int content, int level, unsigned seed) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(testing::Message() << operation.name << ", " << image.name() << ", level " << level
                                    << ", content " << content << ", seed " << seed);
    const bool small = image.width < 128 || image.height < 128;
    plain::ExpectSame(
        image, plain::Fill(image, content, seed),
        [&](const std::uint8_t* from, std::uint8_t* to) {
          const auto depth = static_cast<std::uint8_t>(image.depth);
          EXPECT_EQ(operation.shipped(from, to, image.width, image.height, depth,
                                      static_cast<std::uint8_t>(level)),
                    small ? operation.codeBelow128 : static_cast<int>(kImgDone));
        },
        [&](const std::uint8_t* from, std::uint8_t* to) {
          operation.reference(from, to, image, level);
        });
  }
}

// All small widths; then where sizes matter: the steps of sharpness at 512 and its like, its strips
// of 256 columns and bands of 16 rows, the tiles and windows of exposure.
TEST(Adjust, EqualsThePlainForms) {
  const std::uint32_t sides[][2] = {{127, 130}, {128, 128}, {129, 143}, {136, 128}, {144, 145},
                                    {200, 183}, {201, 184}, {255, 137}, {256, 129}, {511, 7},
                                    {512, 7},   {7, 1023},  {1024, 7},  {1535, 7},  {1536, 7},
                                    {331, 131}, {259, 20},  {260, 36},  {261, 21},  {516, 19}};
  unsigned seed = 0;
  for (const int depth : {8, 24}) {
    for (std::uint32_t width = 1; width <= 40; ++width) {
      for (const std::uint32_t height : {1U, 2U, 4U, 5U, 6U, 11U, 30U}) {
        ++seed;
        ExpectReferences({width, height, depth}, static_cast<int>(seed % plain::kContents),
                         static_cast<int>(seed % 11), seed);
      }
    }
    for (const auto& [width, height] : sides) {
      for (int content = 0; content < plain::kContents; ++content) {
        seed += 7;
        ExpectReferences({width, height, depth}, content, static_cast<int>(seed % 11), seed);
      }
    }
    for (int level = 0; level <= 10; ++level) {
      ExpectReferences({150, 140, depth}, plain::kSoft, level, 3);
      ExpectReferences({150, 140, depth}, plain::kNoise, level, 4);
    }
  }
}

TEST(Adjust, RefusalsLeaveTheTargetOrACopy) {
  const Image image{140, 130, 24};
  const Bytes source = plain::Fill(image, plain::kNoise, 3);
  const std::size_t blocks = PlatformLiveBlocks();
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    Bytes target(source.size());
    const auto run = [&](std::uint8_t depth) {
      return operation.shipped(source.data(), target.data(), 140, 130, depth, 9);
    };
    for (const std::uint8_t depth : Bytes{1, 4, 16, 32}) EXPECT_EQ(run(depth), kImgUnsuitable);
    EXPECT_EQ(target, Bytes(source.size()));
    int code = kImgNoMemory;
    for (int n = 1; code != kImgDone; ++n) {
      PlatformFailAllocation(n);
      code = run(24);
      PlatformFailAllocation(0);
      EXPECT_EQ(PlatformLiveBlocks(), blocks);
      ASSERT_TRUE(n < 12 && (code == kImgNoMemory || (code == kImgDone && n > 1)));
      EXPECT_EQ(target == source, code == kImgNoMemory);
    }
  }
}

// --- Colours -------------------------------------------------------------------------------------

// The byte form is the real form, truncated; where the two disagree the exact value is a whole
// number that doubles miss by their last bit, as for every gray.
TEST(YCbCr, ByteFormIsTheTruncatedRealForm) {
  for (int red = 0; red < 256; red += 3) {
    for (int green = 0; green < 256; green += 5) {
      for (int blue = 0; blue < 256; ++blue) {
        const YCbCrBytes bytes = ToYCbCrBytes(red, green, blue);
        const double cb = CbOf(red, green, blue) + 128.0 + 1e-9;
        const double cr = CrOf(red, green, blue) + 128.0 + 1e-9;
        ASSERT_EQ(bytes.cb, static_cast<int>(cb));
        ASSERT_EQ(bytes.cr, static_cast<int>(cr));
        ASSERT_EQ(bytes.y, (299 * red + 587 * green + 114 * blue) / 1000);
      }
    }
  }
  for (int tone = 0; tone < 256; ++tone) {
    const YCbCrBytes gray = ToYCbCrBytes(tone, tone, tone);
    EXPECT_TRUE(gray.y == tone && gray.cb == 128 && gray.cr == 128) << tone;
  }
}

}  // namespace
