#include <algorithm>

#include "common/status.h"
#include "pictures/file_handle.h"
#include "pictures/picture.h"
#include "pictures/psd.h"

namespace modules {
namespace {

unsigned Big16(const std::uint8_t* bytes) {
  return static_cast<unsigned>(bytes[0]) << 8 | bytes[1];
}
std::uint32_t Big32(const std::uint8_t* bytes) {
  return Big16(bytes) << 16 | Big16(bytes + 2);
}

struct PsdHeader {
  FileImage image;
  PsdMode mode{};
  int channels = 0;      // in the file
  int usedChannels = 0;  // that make the picture; what follows is transparency and masks
  int bits = 0;          // of a sample
  PsdCompression compression{};
  std::array<std::uint8_t, kPsdPaletteBytes> palette{};

  [[nodiscard]] std::size_t rowBytes() const {
    return (static_cast<std::size_t>(image.width) * static_cast<std::size_t>(bits) + 7) / 8;
  }
};

bool Read(std::FILE* file, std::span<std::uint8_t> bytes) {
  return std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

bool ReadNumber(std::FILE* file, std::uint32_t& number) {
  std::array<std::uint8_t, 4> bytes{};
  if (!Read(file, bytes)) return false;
  number = Big32(bytes.data());
  return true;
}

bool Skip(std::FILE* file, std::uint32_t bytes) {
  return std::fseek(file, static_cast<long>(bytes), SEEK_CUR) == 0;
}

// Channels that make a picture of this mode; 0 for modes and sample sizes that are not read.
int ChannelsOf(PsdMode mode, int bits) {
  if (mode == PsdMode::kBitmap) return bits == 1 ? 1 : 0;
  if (mode == PsdMode::kIndexed) return bits == 8 ? 1 : 0;
  if (bits != 8 && bits != 16) return 0;
  switch (mode) {
    case PsdMode::kGray:
    case PsdMode::kDuotone:
      return 1;
    case PsdMode::kRgb:
      return 3;
    case PsdMode::kCmyk:
      return 4;
    default:
      return 0;
  }
}

int ReadMeasures(std::FILE* file, PsdHeader& header) {
  constexpr unsigned kMostChannels = 56;
  std::array<std::uint8_t, kPsdHeaderBytes> bytes{};
  if (!Read(file, bytes)) return kModuleReadFailed;
  const unsigned channels = Big16(&bytes[12]);
  const std::uint32_t height = Big32(&bytes[14]);
  const std::uint32_t width = Big32(&bytes[18]);
  const bool fits = channels >= 1 && channels <= kMostChannels && width >= 1 &&
                    width <= kPsdMostSide && height >= 1 && height <= kPsdMostSide;
  if (!fits) return kFileFormatDamaged;

  header.channels = static_cast<int>(channels);
  header.bits = static_cast<int>(Big16(&bytes[22]));
  header.mode = static_cast<PsdMode>(Big16(&bytes[24]));
  header.usedChannels = ChannelsOf(header.mode, header.bits);
  if (header.usedChannels == 0) return kFileFormatNotRead;
  if (header.usedChannels > header.channels) return kFileFormatDamaged;
  header.image.width = static_cast<int>(width);
  header.image.height = static_cast<int>(height);
  header.image.depth = std::min(8, header.bits);
  if (header.usedChannels > 1) header.image.depth = 24;
  return kModuleSuccess;
}

bool ReadPalette(std::FILE* file, PsdHeader& header) {
  std::uint32_t length = 0;
  if (!ReadNumber(file, length)) return false;
  if (header.mode != PsdMode::kIndexed) return Skip(file, length);
  return length >= kPsdPaletteBytes && Read(file, header.palette) &&
         Skip(file, length - static_cast<std::uint32_t>(kPsdPaletteBytes));
}

// Stands at a resource and moves past it. Names and contents are padded to even lengths.
bool ReadResource(std::FILE* file, FileImage& image) {
  std::array<std::uint8_t, 7> start{};  // mark, number, length of the name
  std::uint32_t length = 0;
  if (!Read(file, start) || !Skip(file, start[6] | 1U) || !ReadNumber(file, length)) return false;
  if (!std::equal(kPsdResourceMark.begin(), kPsdResourceMark.end(), start.begin())) return false;
  if (Big16(&start[4]) == kPsdResolutionResource && length == kPsdResolutionBytes) {
    constexpr double kFixedOne = 65536;
    std::array<std::uint8_t, kPsdResolutionBytes> resolution{};
    if (!Read(file, resolution)) return false;
    image.xPixelsPerMetre =
        PixelsPerMetreOf(Big32(resolution.data()) / kFixedOne, orvo::kMetresPerInch);
    image.yPixelsPerMetre =
        PixelsPerMetreOf(Big32(&resolution[8]) / kFixedOne, orvo::kMetresPerInch);
    return true;
  }
  return Skip(file, length + length % 2);
}

// A resource that makes no sense ends the list; the picture behind it may still be whole.
bool ReadResources(std::FILE* file, PsdHeader& header) {
  std::uint32_t length = 0;
  if (!ReadNumber(file, length)) return false;
  const long end = std::ftell(file) + static_cast<long>(length);
  while (std::ftell(file) < end && ReadResource(file, header.image)) {
  }
  return std::fseek(file, end, SEEK_SET) == 0;
}

// Opens a file and leaves it at the picture's rows.
int Open(const char* path, int page, FileHandle& file, PsdHeader& header) {
  if (page != 1) return kModuleBadParameter;
  file = OpenFile(path, "rb");
  if (!file) return kModuleFileNotOpened;
  if (const int code = ReadMeasures(file.get(), header); code != kModuleSuccess) return code;
  std::uint32_t layerBytes = 0;
  std::array<std::uint8_t, 2> compression{};
  const bool complete = ReadPalette(file.get(), header) && ReadResources(file.get(), header) &&
                        ReadNumber(file.get(), layerBytes) && Skip(file.get(), layerBytes) &&
                        Read(file.get(), compression);
  if (!complete) return kModuleReadFailed;
  header.compression = static_cast<PsdCompression>(Big16(compression.data()));
  const bool known =
      header.compression == PsdCompression::kNone || header.compression == PsdCompression::kRuns;
  return known ? kModuleSuccess : kFileFormatNotRead;
}

// Gives the rows of the picture's channels in the order of the file.
class RowReader {
 public:
  RowReader(std::FILE* file, const PsdHeader& header)
      : file_(file), hasRuns_(header.compression == PsdCompression::kRuns) {
    if (!hasRuns_) return;
    counts_.resize(2 * static_cast<std::size_t>(header.channels * header.image.height));
    hasCounts_ = Read(file, counts_);
  }

  int read(std::span<std::uint8_t> row) {
    if (!hasRuns_) return Read(file_, row) ? kModuleSuccess : kModuleReadFailed;
    if (!hasCounts_) return kModuleReadFailed;
    runs_.resize(Big16(&counts_[next_]));
    next_ += 2;
    if (!Read(file_, runs_)) return kModuleReadFailed;
    return UnpackRuns(runs_, row) ? kModuleSuccess : kFileFormatDamaged;
  }

 private:
  std::FILE* file_;
  bool hasRuns_;
  bool hasCounts_ = false;
  std::vector<std::uint8_t> counts_;  // bytes of each row's runs, big-endian
  std::size_t next_ = 0;
  std::vector<std::uint8_t> runs_;
};

// Rounded to nearest.
void NarrowTo8(std::span<std::uint8_t> row) {
  for (std::size_t i = 0; 2 * i + 1 < row.size(); ++i) {
    row[i] = static_cast<std::uint8_t>((Big16(&row[2 * i]) * 255 + 32767) / 65535);
  }
}

// Stores one channel's samples of a line. Red, green and blue fill a pixel from its end; cyan,
// magenta and yellow, 255 where there is no ink, are their tones before black darkens all three.
void StoreChannel(const std::uint8_t* samples, int channel, const Pixels& image,
                  std::uint8_t* line) {
  if (image.depth <= 8) {
    std::copy_n(samples, image.rowBytes(), line);
  } else if (channel < 3) {
    for (int x = 0; x < image.width; ++x) line[3 * x + 2 - channel] = samples[x];
  } else {
    for (int i = 0; i < 3 * image.width; ++i) {
      line[i] = static_cast<std::uint8_t>((line[i] * samples[i / 3] + 127) / 255);
    }
  }
}

void FillPalette(const PsdHeader& header, const Pixels& image) {
  if (image.palette == nullptr) return;
  FillGrayPalette(image);
  if (header.mode == PsdMode::kBitmap) std::swap(image.palette[0], image.palette[1]);
  if (header.mode != PsdMode::kIndexed) return;
  for (std::size_t i = 0; i < 256; ++i) {
    image.palette[i] =
        RGBQUAD{header.palette[512 + i], header.palette[256 + i], header.palette[i], 0};
  }
}

int ReadPicture(std::FILE* file, const PsdHeader& header, const Pixels& image) {
  FillPalette(header, image);
  const int rows = header.usedChannels * image.height;
  Progress progress(static_cast<std::uint64_t>(rows));
  RowReader reader(file, header);
  std::vector<std::uint8_t> row(header.rowBytes());
  for (int i = 0; i < rows; ++i) {
    if (const int code = reader.read(row); code != kModuleSuccess) return code;
    if (header.bits == 16) NarrowTo8(row);
    StoreChannel(row.data(), i / image.height, image, LineFromTop(image, i % image.height));
    if (!progress.report(static_cast<std::uint64_t>(i) + 1)) return kModuleAborted;
  }
  return kModuleSuccess;
}

// Whether the file is long enough for the picture that it claims.
bool HoldsPicture(const char* path, const PsdHeader& header) {
  constexpr std::uint64_t kMostRunRatio = 64;
  const FileImage& image = header.image;
  const auto layout = orvo::DibLayoutFor(image.width, image.height, image.depth);
  const bool hasRuns = header.compression == PsdCompression::kRuns;
  return layout && IsPlausible(layout->totalBytes, FileSize(path), hasRuns ? kMostRunRatio : 1);
}

}  // namespace

int DescribePsd(const char* path, int page, LTFILEINFO& info) {
  FileHandle file;
  PsdHeader header;
  if (const int code = Open(path, page, file, header); code != kModuleSuccess) return code;
  const bool hasRuns = header.compression == PsdCompression::kRuns;
  DescribeImage(header.image, kFormatPsd, hasRuns ? "RLE" : "none", info);
  return kModuleSuccess;
}

int LoadPsd(const char* path, int page, struct_LEAD_Bitmap& bitmap) {
  FileHandle file;
  PsdHeader header;
  if (const int code = Open(path, page, file, header); code != kModuleSuccess) return code;
  if (!HoldsPicture(path, header)) return kModuleReadFailed;
  return LoadImage(header.image, bitmap,
                   [&](const Pixels& image) { return ReadPicture(file.get(), header, image); });
}

}  // namespace modules
