#include <algorithm>

#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/tiff_bands.h"

namespace modules {
namespace {

using Kind = TiffPage::Kind;

class TiffReader : public PictureReader {
 public:
  using PictureReader::PictureReader;

  // Pages are chained: going on from the page at hand does not begin the walk anew.
  bool readHeader(int number) override {
    bands_.reset();
    if (!tiff_ || number <= number_) {
      lostPalette_ = false;
      tiff_ = OpenTiffFile(path_, "rm", faults_, &lostPalette_);
      Require(tiff_, kFileFormatDamaged);
      number_ = 1;
    }
    if (number < 1) return false;
    faults_ = 0;
    const int wanted = number - number_;
    const int passed = FollowPages(tiff_.get(), wanted);
    number_ += passed;
    if (passed < wanted) {
      // The chain may also break off.
      tiff_.reset();
      Require(faults_ == 0, kFileFormatDamaged);
      return false;
    }
    Require(!lostPalette_, kFileFormatDamaged);
    page_ = ReadTiffPage(tiff_.get());
    picture_ = page_.picture;
    if (page_.hasPalette) takePalette(page_.kind == Kind::kIndex ? page_.colors : picture_.palette);
    return true;
  }

  void keepInks() override {
    if (page_.kind != Kind::kCmyk) return;
    page_.picture.hasInks = true;
    page_.picture.samples = page_.alphaAt != 0 ? 5 : 4;
    picture_ = page_.picture;
  }

  int pageCount() override {
    const int pages = number_ + FollowPages(tiff_.get());
    tiff_.reset();
    return pages;
  }

  void keepSixteenBits() override {
    constexpr int kWide = 16;
    const bool isPlain = page_.kind == Kind::kGray || page_.kind == Kind::kRgb;
    if (!isPlain || page_.bits != kWide || page_.format != SAMPLEFORMAT_UINT || page_.planar ||
        page_.samples != picture_.samples || page_.alphaAt != 0) {
      return;
    }
    page_.keepsSixteenBits = true;
    picture_.bits = kWide;
    picture_.narrowedFrom = 0;
  }

  void start() override {
    const std::uint64_t fileBytes = FileSize(path_);
    const auto layout = orvo::DibLayoutFor(picture_.width, picture_.height, picture_.depth());
    Require(layout.has_value(), kFileFormatDamaged);
    Require(IsPlausible(layout->totalBytes, fileBytes, page_.mostRatio), kModuleReadFailed);
    bands_.emplace(tiff_.get(), page_, fileBytes);
    expectSteps(static_cast<std::uint64_t>(picture_.height));
    faults_ = 0;
  }

  void readRow(std::uint8_t* row) override {
    bands_->readRow(row);
    endStep();
  }

  // Faxes have bad lines as a rule; the library makes up what it cannot decode.
  [[nodiscard]] bool isWhole() const override { return faults_ == 0; }

  // One strip in group 4 with the bits in the usual order.
  [[nodiscard]] std::optional<CodedStretch> codedStretch() const override {
    constexpr std::uint32_t kUncompressedMode = 2;
    TIFF* const tiff = tiff_.get();
    std::uint16_t order = FILLORDER_MSB2LSB;
    std::uint32_t options = 0;
    (void)TIFFGetFieldDefaulted(tiff, TIFFTAG_FILLORDER, &order);
    (void)TIFFGetFieldDefaulted(tiff, TIFFTAG_GROUP4OPTIONS, &options);
    if (page_.compression != COMPRESSION_CCITTFAX4 || page_.kind != Kind::kAsStored ||
        page_.bits != 1 || TIFFIsTiled(tiff) != 0 || TIFFNumberOfStrips(tiff) != 1 ||
        order != FILLORDER_MSB2LSB || (options & kUncompressedMode) != 0) {
      return std::nullopt;
    }
    return CodedStretch{.coding = Coding::kFax,
                        .start = TIFFGetStrileOffset(tiff, 0),
                        .bytes = TIFFGetStrileByteCount(tiff, 0)};
  }

  // One strip that is a JPEG file, but for tables that several would share.
  [[nodiscard]] std::optional<CodedParts> codedParts() override {
    TIFF* const tiff = tiff_.get();
    const bool isPlain = page_.compression == COMPRESSION_JPEG && page_.bits == 8 &&
                         !page_.planar && TIFFIsTiled(tiff) == 0 && TIFFNumberOfStrips(tiff) == 1;
    const bool isTones = page_.kind == Kind::kGray && page_.samples == 1 && !page_.whiteIsZero;
    const bool isColors = page_.kind == Kind::kRgb && page_.samples == 3;
    if (!isPlain || !(isTones || isColors)) {
      return PictureReader::codedParts();
    }
    std::uint16_t photometric = PHOTOMETRIC_YCBCR;
    (void)TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
    CodedParts parts{
        .coding = photometric == PHOTOMETRIC_RGB ? Coding::kJpegOfRgb : Coding::kJpeg,
        .stretches = {{TIFFGetStrileOffset(tiff, 0), TIFFGetStrileByteCount(tiff, 0)}}};
    joinTables(parts);
    return parts;
  }

 private:
  // The tables come between the mark at the begin of the strip's data and what follows it; they end
  // with a mark of their own.
  void joinTables(CodedParts& parts) const {
    constexpr std::uint32_t kMarkBytes = 2;
    const std::uint8_t* tables = nullptr;
    std::uint32_t bytes = 0;
    if (TIFFGetField(tiff_.get(), TIFFTAG_JPEGTABLES, &bytes, &tables) == 0) return;
    CodedParts::Stretch& strip = parts.stretches.front();
    if (bytes < 2 * kMarkBytes || strip.bytes < kMarkBytes) return;
    parts.head.assign(tables, tables + (bytes - kMarkBytes));
    strip.start += kMarkBytes;
    strip.bytes -= kMarkBytes;
  }

  // Entries have 16 bits a colour; some writers store bytes there.
  void takePalette(std::vector<RGBQUAD>& palette) const {
    std::uint16_t* red = nullptr;
    std::uint16_t* green = nullptr;
    std::uint16_t* blue = nullptr;
    Require(TIFFGetField(tiff_.get(), TIFFTAG_COLORMAP, &red, &green, &blue) != 0,
            kFileFormatDamaged);
    const int count = 1 << page_.bits;
    const auto isByte = [](std::uint16_t tone) { return tone < 256; };
    const bool areBytes = std::all_of(red, red + count, isByte) &&
                          std::all_of(green, green + count, isByte) &&
                          std::all_of(blue, blue + count, isByte);
    const auto toneOf = [=](std::uint16_t tone) {
      return areBytes ? static_cast<std::uint8_t>(tone) : Narrowed16(tone);
    };
    for (int i = 0; i < count; ++i) {
      palette.push_back({toneOf(blue[i]), toneOf(green[i]), toneOf(red[i]), 0});
    }
  }

  int faults_ = 0;
  bool lostPalette_ = false;
  TiffHandle tiff_;
  int number_ = 1;  // of the page at hand
  TiffPage page_;
  std::optional<TiffBands> bands_;
};

}  // namespace

bool IsTiff(Head head) {
  constexpr std::uint8_t kMark = 42;
  constexpr std::uint8_t kBigMark = 43;  // with 64-bit offsets
  if (head.size() < 4) return false;
  const bool little = head[0] == 'I' && head[1] == 'I' && head[3] == 0;
  const bool big = head[0] == 'M' && head[1] == 'M' && head[2] == 0;
  const std::uint8_t mark = little ? head[2] : head[3];
  return (little || big) && (mark == kMark || mark == kBigMark);
}

ReaderHandle OpenTiff(const char* path, Report report) {
  return std::make_unique<TiffReader>(path, report);
}

}  // namespace modules
