#include <algorithm>
#include <cstdio>

#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/psd.h"

namespace modules {
namespace {

unsigned Big16(const std::uint8_t* bytes) {
  return static_cast<unsigned>(bytes[0]) << 8 | bytes[1];
}
std::uint32_t Big32(const std::uint8_t* bytes) {
  return Big16(bytes) << 16 | Big16(bytes + 2);
}

// Channels that make a picture of this mode, what follows is transparency and masks; 0 for modes
// and sample sizes that are not read.
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

// Rounded to nearest, in place.
void NarrowTo8(std::span<std::uint8_t> row) {
  for (std::size_t i = 0; 2 * i + 1 < row.size(); ++i) row[i] = Narrowed16(Big16(&row[2 * i]));
}

class PsdReader : public PictureReader {
 public:
  using PictureReader::PictureReader;

  bool readHeader(int page) override {
    if (page != 1) return false;
    file_ = OpenToRead(path_);
    readMeasures();
    readPalette();
    readResources();
    readLayers();
    std::array<std::uint8_t, 2> compression{};
    read(compression);
    compression_ = static_cast<PsdCompression>(Big16(compression.data()));
    Require(compression_ == PsdCompression::kNone || hasRuns(), kFileFormatNotRead);
    picture_.format = kFormatPsd;
    if (hasRuns()) picture_.compression = "RLE";
    return true;
  }

  void start() override {
    constexpr std::uint64_t kMostRunRatio = 64;
    const auto layout = orvo::DibLayoutFor(picture_.width, picture_.height, picture_.depth());
    Require(
        layout && IsPlausible(layout->totalBytes, FileSize(path_), hasRuns() ? kMostRunRatio : 1),
        kModuleReadFailed);
    const long pixels = std::ftell(file_.get());
    findChannels();
    if (picture_.hasAlpha && mode_ == PsdMode::kRgb) {
      liesOnWhite_ = looksLaidOnWhite();
      seek(pixels);
      findChannels();
    }
    expectSteps(static_cast<std::uint64_t>(picture_.height));
  }

  void readRow(std::uint8_t* row) override {
    takeRow(row);
    if (liesOnWhite_) takeOffWhite(row);
    endStep();
  }

 private:
  // Takes the row from each channel: they lie one behind the other in the file.
  void takeRow(std::uint8_t* row) {
    for (std::size_t channel = 0; channel < channelStarts_.size(); ++channel) {
      readSamples(channel);
      if (bits_ == 16) NarrowTo8(samples_);
      storeChannel(channel, row);
    }
    ++nextRow_;
  }

  [[nodiscard]] bool hasRuns() const { return compression_ == PsdCompression::kRuns; }

  bool tryRead(std::span<std::uint8_t> bytes) {
    return std::fread(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size();
  }
  void read(std::span<std::uint8_t> bytes) { Require(tryRead(bytes), kModuleReadFailed); }
  std::uint32_t readNumber() {
    std::array<std::uint8_t, 4> bytes{};
    read(bytes);
    return Big32(bytes.data());
  }
  void skip(std::uint32_t bytes) {
    Require(std::fseek(file_.get(), static_cast<long>(bytes), SEEK_CUR) == 0, kModuleReadFailed);
  }
  void seek(long offset) {
    Require(std::fseek(file_.get(), offset, SEEK_SET) == 0, kModuleReadFailed);
  }

  void readMeasures() {
    constexpr unsigned kMostChannels = 56;
    std::array<std::uint8_t, kPsdHeaderBytes> bytes{};
    read(bytes);
    const unsigned channels = Big16(&bytes[12]);
    const std::uint32_t height = Big32(&bytes[14]);
    const std::uint32_t width = Big32(&bytes[18]);
    Require(channels >= 1 && channels <= kMostChannels && width >= 1 && width <= kPsdMostSide &&
                height >= 1 && height <= kPsdMostSide,
            kFileFormatDamaged);
    bits_ = static_cast<int>(Big16(&bytes[22]));
    mode_ = static_cast<PsdMode>(Big16(&bytes[24]));
    const int used = ChannelsOf(mode_, bits_);
    Require(used > 0, kFileFormatNotRead);
    Require(used <= static_cast<int>(channels), kFileFormatDamaged);
    channels_ = channels;
    picture_.width = static_cast<int>(width);
    picture_.height = static_cast<int>(height);
    picture_.samples = used;
    picture_.hasInks = used == 4;
    picture_.bits = std::min(8, bits_);
    picture_.reversed = mode_ == PsdMode::kBitmap || picture_.hasInks;
  }

  void readPalette() {
    const std::uint32_t length = readNumber();
    if (mode_ != PsdMode::kIndexed) return skip(length);
    std::array<std::uint8_t, kPsdPaletteBytes> tones{};
    Require(length >= tones.size(), kModuleReadFailed);
    read(tones);
    skip(length - static_cast<std::uint32_t>(tones.size()));
    constexpr std::size_t kEntries = kPsdPaletteBytes / 3;
    for (std::size_t i = 0; i < kEntries; ++i) {
      picture_.palette.push_back({tones[2 * kEntries + i], tones[kEntries + i], tones[i], 0});
    }
  }

  // A resource that makes no sense ends the list; the picture behind it may still be whole.
  void readResources() {
    const std::uint32_t length = readNumber();
    const long end = std::ftell(file_.get()) + static_cast<long>(length);
    while (std::ftell(file_.get()) < end && readResource()) {
    }
    seek(end);
  }

  // Stands at a resource and moves past it. Names and contents are padded to even lengths.
  bool readResource() {
    constexpr std::size_t kNameBytesAt = 6;
    std::array<std::uint8_t, 7> start{};  // mark, number, length of the name
    std::array<std::uint8_t, 4> lengthBytes{};
    if (!tryRead(start)) return false;
    skip(start[kNameBytesAt] | 1U);
    if (!tryRead(lengthBytes) ||
        !std::equal(kPsdResourceMark.begin(), kPsdResourceMark.end(), start.begin())) {
      return false;
    }
    const std::uint32_t length = Big32(lengthBytes.data());
    if (Big16(&start[4]) != kPsdResolutionResource || length != kPsdResolutionBytes) {
      skip(length + length % 2);
      return true;
    }
    constexpr double kFixedOne = 65536;
    std::array<std::uint8_t, kPsdResolutionBytes> resolution{};
    if (!tryRead(resolution)) return false;
    constexpr unsigned kInch = 2;
    picture_.setResolution(Big32(resolution.data()) / kFixedOne, Big32(&resolution[8]) / kFixedOne,
                           kInch);
    return true;
  }

  // The list of layers begins with their number, below 0 when the first channel behind the colours
  // is the transparency of the merged picture. With layers and no such sign it is a mask; without
  // any layer other programs take a single one for transparency.
  void readLayers() {
    const std::uint32_t length = readNumber();
    const long end = std::ftell(file_.get()) + static_cast<long>(length);
    std::array<std::uint8_t, 6> start{};  // length of the list, number of layers
    const bool hasList = length >= start.size() && tryRead(start) && Big32(start.data()) != 0;
    const auto layers = static_cast<std::int16_t>(hasList ? Big16(&start[4]) : 0);
    seek(end);
    const auto colors = static_cast<std::size_t>(picture_.samples);
    const bool knowsAlpha = mode_ != PsdMode::kBitmap && mode_ != PsdMode::kIndexed;
    const bool hasChannel = layers < 0 ? channels_ > colors : channels_ == colors + 1;
    picture_.hasAlpha = knowsAlpha && hasChannel && layers <= 0;
    picture_.isGray = picture_.hasAlpha && colors == 1;
    channelStarts_.resize(colors + (picture_.hasAlpha ? 1 : 0));
    if (picture_.hasAlpha) picture_.samples = picture_.hasInks ? 5 : 4;
  }

  // Where the rows of each channel begin, by the table of their lengths when they are runs.
  void findChannels() {
    const auto height = static_cast<std::size_t>(picture_.height);
    samples_.resize(
        (static_cast<std::size_t>(picture_.width) * static_cast<std::size_t>(bits_) + 7) / 8);
    if (hasRuns()) {
      counts_.resize(2 * channels_ * height);
      read(counts_);
    }
    long at = std::ftell(file_.get());
    nextRow_ = 0;
    for (std::size_t channel = 0; channel < channelStarts_.size(); ++channel) {
      channelStarts_[channel] = at;
      for (std::size_t y = 0; y < height; ++y) at += static_cast<long>(codedBytes(channel, y));
    }
  }

  [[nodiscard]] std::size_t codedBytes(std::size_t channel, std::size_t y) const {
    if (!hasRuns()) return samples_.size();
    return Big16(&counts_[2 * (channel * static_cast<std::size_t>(picture_.height) + y)]);
  }

  void readSamples(std::size_t channel) {
    const std::size_t bytes = codedBytes(channel, nextRow_);
    if (channelStarts_.size() > 1) seek(channelStarts_[channel]);
    channelStarts_[channel] += static_cast<long>(bytes);
    if (!hasRuns()) return read(samples_);
    runs_.resize(bytes);
    read(runs_);
    Require(UnpackRuns(runs_, samples_), kFileFormatDamaged);
  }

  // Red, green and blue fill a pixel from its end, inks from its start; transparency comes last.
  void storeChannel(std::size_t channel, std::uint8_t* row) const {
    const auto step = static_cast<std::size_t>(picture_.samples);
    if (step == 1) {
      std::copy_n(samples_.begin(), picture_.rowBytes(), row);
      return;
    }
    const std::size_t colors = channelStarts_.size() - (picture_.hasAlpha ? 1 : 0);
    const bool isColor = channel < colors && !picture_.hasInks;
    std::size_t place = isColor ? 2 - channel : channel;
    if (channel == colors) place = step - 1;
    for (std::size_t x = 0; x < static_cast<std::size_t>(picture_.width); ++x) {
      std::uint8_t* const pixel = row + step * x;
      pixel[place] = samples_[x];
      if (isColor && colors == 1) pixel[0] = pixel[1] = samples_[x];
    }
  }

  // Some programs lay the merged colours on white, as far as they let it through; others store
  // them plain, and then some pixel is darker than white leaves it.
  bool looksLaidOnWhite() {
    std::vector<std::uint8_t> row(picture_.rowBytes());
    for (int y = 0; y < picture_.height; ++y) {
      takeRow(row.data());
      for (std::size_t i = 0; i < row.size(); i += 4) {
        constexpr int kRounding = 1;
        if (std::min({row[i], row[i + 1], row[i + 2]}) + row[i + 3] + kRounding < 255) return false;
      }
    }
    return true;
  }

  void takeOffWhite(std::uint8_t* row) const {
    for (int x = 0; x < picture_.width; ++x, row += 4) {
      const int alpha = row[3];
      if (alpha == 0) continue;
      for (int i = 0; i < 3; ++i) {
        const int color = (255 * (row[i] + alpha - 255) + alpha / 2) / alpha;
        row[i] = static_cast<std::uint8_t>(std::max(color, 0));
      }
    }
  }

  FileHandle file_;
  PsdMode mode_{};
  PsdCompression compression_{};
  std::size_t channels_ = 0;           // in the file
  int bits_ = 0;                       // of a sample in the file
  std::vector<long> channelStarts_;    // of the next row of each channel that makes the picture
  std::vector<std::uint8_t> counts_;   // bytes of each row's runs, big-endian
  std::vector<std::uint8_t> runs_;     // of the row at work
  std::vector<std::uint8_t> samples_;  // of one channel in the row at work
  std::size_t nextRow_ = 0;
  bool liesOnWhite_ = false;
};

}  // namespace

bool IsPsd(Head head) {
  return head.size() >= kPsdHeaderBytes &&
         std::equal(kPsdMark.begin(), kPsdMark.end(), head.begin());
}

ReaderHandle OpenPsd(const char* path, Report report) {
  return std::make_unique<PsdReader>(path, report);
}

}  // namespace modules
