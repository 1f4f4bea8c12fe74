// Pages of TIFF files. Group 4 pages of the usual making go into the document as they are.
#include <algorithm>
#include <vector>

#include "pdflib/picture_files.h"
#include "pdflib/tiff_bands.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

using Kind = TiffPage::Kind;

// A page, opened. The library counts in faults_ what it finds wrong, pixels that it made up
// included.
class TiffSource : public PictureReader {
 public:
  explicit TiffSource(const std::string& path)
      // Not mapped: a file that shrinks under a mapping kills the process.
      : tiff_(OpenTiff(path.c_str(), "rm", &faults_)), fileBytes_(FileSize(path.c_str())) {
    if (!tiff_) throw UnreadablePicture("TIFF");
  }

  // False when the file has fewer pages.
  bool goTo(int number) {
    check(number >= 1);
    faults_ = 0;
    if (number > static_cast<int>(TIFFNumberOfDirectories(tiff_.get()))) {
      check(faults_ == 0);
      return false;
    }
    check(number == 1 || TIFFSetDirectory(tiff_.get(), static_cast<tdir_t>(number - 1)) != 0);
    check(ReadTiffPage(tiff_.get(), page_) == kModuleSuccess);
    describe();
    faults_ = 0;
    bands_ = std::make_unique<TiffBands>(tiff_.get(), page_, fileBytes_);
    return true;
  }

  void readRow(std::uint8_t* row) override {
    const std::uint8_t* from = bands_->nextRow();
    check(faults_ == 0);
    if (page_.kind == Kind::kIndexes) {
      std::copy_n(from, picture_.rowBytes(), row);
      return;
    }
    const int tones = picture_.components;
    const int step = page_.image.depth / 8;
    for (int x = 0; x < picture_.width; ++x, from += step) {
      const std::uint8_t alpha = step == 4 ? from[3] : 255;
      for (int i = tones - 1; i >= 0; --i) *row++ = OnWhite(from[i], alpha);
    }
  }

  // The page's own group 4 data, when they are one stretch with the bits in the usual order.
  std::optional<CodedPicture> takeFax(Spool& spool) {
    constexpr std::uint32_t kUncompressedMode = 2;
    std::uint16_t order = FILLORDER_MSB2LSB;
    std::uint32_t options = 0;
    (void)TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_FILLORDER, &order);
    (void)TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_GROUP4OPTIONS, &options);
    if (page_.compression != COMPRESSION_CCITTFAX4 || page_.kind != Kind::kIndexes ||
        page_.bits != 1 || TIFFIsTiled(tiff_.get()) != 0 || TIFFNumberOfStrips(tiff_.get()) != 1 ||
        order != FILLORDER_MSB2LSB || (options & kUncompressedMode) != 0) {
      return std::nullopt;
    }
    // Damage is met here and not in the document.
    std::vector<std::uint8_t> row(picture_.rowBytes());
    for (int y = 0; y < picture_.height; ++y) readRow(row.data());

    const std::uint64_t bytes = TIFFGetStrileByteCount(tiff_.get(), 0);
    check(bytes > 0 && bytes <= fileBytes_);
    std::vector<std::uint8_t> data(bytes);
    check(TIFFReadRawStrip(tiff_.get(), 0, data.data(), static_cast<tmsize_t>(bytes)) ==
          static_cast<tmsize_t>(bytes));
    const std::uint64_t start = spool.size();
    spool.append(data.data(), data.size());
    return CodedPicture{
        .picture = picture_, .coding = Coding::kFax, .data = spool.rangeSince(start)};
  }

 private:
  static void check(bool sound) {
    if (!sound) throw UnreadablePicture("TIFF");
  }

  void describe() {
    const FileImage& image = page_.image;
    picture_.width = image.width;
    picture_.height = image.height;
    picture_.orientation = image.orientation;
    picture_.resolution = ResolutionOf(image.xPixelsPerMetre, image.yPixelsPerMetre);
    takeAspect();
    if (page_.kind == Kind::kIndexes) {
      picture_.bits = page_.bits;
      picture_.reversed = page_.whiteIsZero;
      if (page_.hasPalette) takePalette();
    } else if (page_.kind != Kind::kGray && page_.kind != Kind::kGrayAlpha) {
      picture_.components = 3;
    }
  }

  void takeAspect() {
    std::uint16_t unit = RESUNIT_INCH;
    float x = 0;
    float y = 0;
    (void)TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_RESOLUTIONUNIT, &unit);
    if (unit == RESUNIT_NONE && TIFFGetField(tiff_.get(), TIFFTAG_XRESOLUTION, &x) != 0 &&
        TIFFGetField(tiff_.get(), TIFFTAG_YRESOLUTION, &y) != 0) {
      picture_.resolution = AspectOf(static_cast<double>(x), static_cast<double>(y));
    }
  }

  // Entries have 16 bits a colour; some writers store bytes there.
  void takePalette() {
    std::uint16_t* red = nullptr;
    std::uint16_t* green = nullptr;
    std::uint16_t* blue = nullptr;
    check(TIFFGetField(tiff_.get(), TIFFTAG_COLORMAP, &red, &green, &blue) != 0);
    const int count = 1 << page_.bits;
    const auto isByte = [](std::uint16_t tone) { return tone <= 255; };
    const bool areBytes = std::all_of(red, red + count, isByte) &&
                          std::all_of(green, green + count, isByte) &&
                          std::all_of(blue, blue + count, isByte);
    for (int i = 0; i < count; ++i) {
      for (const std::uint32_t tone : {red[i], green[i], blue[i]}) {
        const std::uint32_t byte = areBytes ? tone : (tone * 255 + 32767) / 65535;
        picture_.palette.push_back(static_cast<char>(byte));
      }
    }
  }

  int faults_ = 0;
  TiffHandle tiff_;
  std::uint64_t fileBytes_;
  TiffPage page_;
  std::unique_ptr<TiffBands> bands_;
};

}  // namespace

std::optional<CodedPicture> TakeTiffPage(const std::string& path, int page, Spool& spool) {
  TiffSource source(path);
  if (!source.goTo(page)) return std::nullopt;
  if (auto fax = source.takeFax(spool)) return fax;
  return CodeRows(source, spool);
}

}  // namespace modules
