#include <zlib.h>

#include <algorithm>
#include <array>
#include <vector>

#include "common/color_rows.h"
#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/library_calls.h"
#include "pictures/png_session.h"

namespace modules {
namespace {

// How the file holds the pixels.
struct Form {
  int bits;  // of a sample
  int colorType;

  [[nodiscard]] bool isGray() const { return colorType == PNG_COLOR_TYPE_GRAY; }
  // Samples that lie between others, so that neighbours foretell them.
  [[nodiscard]] bool hasTones() const { return bits == 8 && colorType != PNG_COLOR_TYPE_PALETTE; }
};

// Gray values of two bits among those of four.
constexpr int kTwoBitStep = 5;

// Whether four values are all that a picture of 4 bits needs, as one has that was read from 2 bits.
bool FitsTwoBits(const Pixels& image, bool isGray) {
  constexpr int kValues = 4;
  if (image.depth != 4) return false;
  const auto isBlack = [](const RGBQUAD& entry) {
    return (entry.rgbRed | entry.rgbGreen | entry.rgbBlue) == 0;
  };
  if (!isGray &&
      !std::all_of(image.palette + kValues, image.palette + image.paletteSize(), isBlack))
    return false;
  std::vector<std::uint8_t> indexes(static_cast<std::size_t>(image.width));
  for (int y = 0; y < image.height; ++y) {
    ReadIndexes(image, y, indexes.data());
    const auto fits = [=](int index) {
      return isGray ? index % kTwoBitStep == 0 : index < kValues;
    };
    if (!std::ranges::all_of(indexes, fits)) return false;
  }
  return true;
}

Form FormOf(const Pixels& image) {
  constexpr int kMostSampleBits = 8;
  Form form{std::min(image.depth, kMostSampleBits), PNG_COLOR_TYPE_RGB};
  if (image.depth <= kMostSampleBits) {
    form.colorType = HasGrayRamp(image) ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_PALETTE;
    if (FitsTwoBits(image, form.isGray())) form.bits = 2;
  } else if (HasAlpha(image)) {
    form.colorType = PNG_COLOR_TYPE_RGB_ALPHA;
  }
  return form;
}

// How the rows are coded, as zlib counts; negative: as the library does by itself.
struct Setting {
  int level;
  int strategy = -1;
  int filters = -1;
};

class PngWriter {
 public:
  PngWriter(const Pixels& image, const Form& form)
      : image_(image),
        form_(form),
        png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, &jump_, OnPngError, OnPngWarning)),
        info_(png_ == nullptr ? nullptr : png_create_info_struct(png_)) {
    Require(info_, kModuleNoMemory);
    if (image.depth == 16) colors_.resize(static_cast<std::size_t>(image.width));
    if (form.bits == 2) indexes_.resize(static_cast<std::size_t>(image.width));
  }
  ~PngWriter() { png_destroy_write_struct(&png_, &info_); }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  void write(std::FILE* file, const BITMAPINFOHEADER& header, const Setting& setting,
             Report report) {
    run([&, this] { png_init_io(png_, file); });
    begin(setting, image_.height, &header);
    Progress progress(static_cast<std::uint64_t>(image_.height), report);
    for (int y = image_.height - 1; y >= 0; --y) {
      writeRow(y);
      Require(progress.report(static_cast<std::uint64_t>(image_.height - y)), kModuleAborted);
    }
    run([this] { png_write_end(png_, nullptr); });
  }

  // Bytes that a sample of the rows takes.
  std::size_t measure(const Setting& setting) {
    constexpr int kBands = 4;
    constexpr int kPart = 32;  // of the rows, one is tried, and more of small pictures
    constexpr int kLeastBytes = 1 << 14;
    const int leastRows = kLeastBytes / static_cast<int>(image_.rowBytes()) + 1;
    const int tried = std::clamp(std::max(image_.height / kPart, leastRows), 1, image_.height);
    const int bands = std::min(kBands, tried);
    const int rows = tried / bands;
    std::size_t bytes = 0;
    const auto count = [](png_structp png, png_bytep, std::size_t size) {
      *static_cast<std::size_t*>(png_get_io_ptr(png)) += size;
    };
    png_set_write_fn(png_, &bytes, count, nullptr);
    begin(setting, bands * rows, nullptr);
    for (int band = 0; band < bands; ++band) {
      const int first = (image_.height - rows) * (band + 1) / (bands + 1);
      for (int row = rows - 1; row >= 0; --row) writeRow(first + row);
    }
    run([this] { png_write_end(png_, nullptr); });
    return bytes;
  }

 private:
  template <class Calls>
  void run(const Calls& calls) {
    Require(Attempt(jump_, calls), kModuleWriteFailed);
  }

  void begin(const Setting& setting, int height, const BITMAPINFOHEADER* header) {
    run([&, this] {
      png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
      png_set_compression_level(png_, setting.level);
      if (setting.strategy >= 0) {
        png_set_compression_strategy(png_, setting.strategy);
        png_set_compression_mem_level(png_, MAX_MEM_LEVEL);
        png_set_filter(png_, PNG_FILTER_TYPE_BASE, setting.filters);
      }
      png_set_IHDR(png_, info_, static_cast<png_uint_32>(image_.width),
                   static_cast<png_uint_32>(height), form_.bits, form_.colorType,
                   PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
      if (form_.colorType == PNG_COLOR_TYPE_PALETTE) tellPalette();
      if (header != nullptr) tellResolution(*header);
      png_write_info(png_, info_);
      png_set_bgr(png_);
      if (!indexes_.empty()) png_set_packing(png_);
      if (image_.depth == 32 && form_.colorType == PNG_COLOR_TYPE_RGB) {
        png_set_filler(png_, 0, PNG_FILLER_AFTER);
      }
    });
  }

  void tellPalette() {
    std::array<png_color, 256> entries{};
    const int count = 1 << form_.bits;
    for (int i = 0; i < count; ++i) {
      const RGBQUAD& entry = image_.palette[i];
      entries[static_cast<std::size_t>(i)] = {entry.rgbRed, entry.rgbGreen, entry.rgbBlue};
    }
    png_set_PLTE(png_, info_, entries.data(), count);
  }

  void tellResolution(const BITMAPINFOHEADER& header) {
    if (header.biXPelsPerMeter > 0 && header.biYPelsPerMeter > 0) {
      png_set_pHYs(png_, info_, static_cast<png_uint_32>(header.biXPelsPerMeter),
                   static_cast<png_uint_32>(header.biYPelsPerMeter), PNG_RESOLUTION_METER);
    }
  }

  void writeRow(int y) {
    const std::uint8_t* row = image_.row(y);
    if (!colors_.empty()) {
      ReadColors(image_, y, colors_.data());
      row = reinterpret_cast<const std::uint8_t*>(colors_.data());
    } else if (!indexes_.empty()) {
      ReadIndexes(image_, y, indexes_.data());
      if (form_.isGray()) {
        for (std::uint8_t& index : indexes_) index = static_cast<std::uint8_t>(index / kTwoBitStep);
      }
      row = indexes_.data();
    }
    run([this, row] { png_write_row(png_, row); });
  }

  std::jmp_buf jump_{};
  const Pixels& image_;
  Form form_;
  std::vector<Color> colors_;          // of a row, for depths that the file has not
  std::vector<std::uint8_t> indexes_;  // of a row, a byte each, that the library packs
  png_structp png_;
  png_infop info_;
};

// Of a few ways to code rows the one that suits a sample of them. Runs of equal differences are
// quickest by far, and do best for most photographs, scans and printed pages. Drawn colours and
// dithered pixels repeat in longer patterns, noise in short ones: looking for those takes up to
// twice the time. It has to save a sixteenth, unless runs come out larger than what the library by
// itself makes in several times the time: for tones by more than a thirty-second, else at all.
Setting SettingFor(const Pixels& image, const Form& form) {
  constexpr int kForetold = PNG_FILTER_SUB | PNG_FILTER_AVG | PNG_FILTER_PAETH;
  constexpr Setting kByItself{6};
  const bool hasTones = form.hasTones();
  const Setting runs{1, Z_RLE, hasTones ? kForetold : PNG_FILTER_NONE | PNG_FILTER_UP};
  const Setting others[] = {{1, Z_FILTERED, kForetold},
                            {4, Z_DEFAULT_STRATEGY, PNG_FILTER_NONE},
                            {3, Z_FILTERED, PNG_FILTER_PAETH}};
  const auto measure = [&](const Setting& setting) {
    return PngWriter(image, form).measure(setting);
  };
  const std::size_t usual = measure(kByItself);
  const std::size_t most = usual + (hasTones ? usual / 32 : 0);
  Setting best = runs;
  std::size_t least = measure(runs);
  for (const Setting& other : others) {
    const std::size_t bytes = measure(other);
    if (bytes >= (least > most ? least : least / 16 * 15)) continue;
    least = bytes;
    best = other;
  }
  return hasTones || least <= most ? best : kByItself;
}

}  // namespace

void SavePng(const SaveRequest& request, const LockedDib& image) {
  WriteFile(request.path, [&](std::FILE* file) {
    const Form form = FormOf(*image);
    const Setting setting =
        request.pngLevel ? Setting{*request.pngLevel} : SettingFor(*image, form);
    PngWriter(*image, form).write(file, image.header(), setting, request.report);
  });
}

}  // namespace modules
