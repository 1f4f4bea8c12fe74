#include "image_file.h"

#include <algorithm>
#include <array>
#include <qpdf/Buffer.hh>
#include <vector>

#include "jpeg_facts.h"
#include "pictures/file_handle.h"
#include "pictures/tiff_page.h"
#include "streams.h"

namespace client {
namespace {

using Object = QPDFObjectHandle;
using Coding = ImageFacts::Coding;

constexpr const char* kDamaged = "its picture is damaged";
constexpr const char* kNotWritten = "its picture could not be written beside the target";

void Need(bool met, const char* words) {
  if (!met) throw PdfFault(words);
}

// The bytes of a JPEG or fax coding.
std::string CodedBytes(Object image, const ImageFacts& facts) {
  constexpr std::size_t kMostBytes = std::size_t{1} << 30U;
  const auto raw = image.getRawStreamData();
  std::string bytes(reinterpret_cast<const char*>(raw->getBuffer()), raw->getSize());
  if (facts.outerFilters.empty()) return bytes;
  Object inner = Object::newStream(image.getOwningQPDF());
  inner.replaceStreamData(bytes, Object::newArray(facts.outerFilters),
                          Object::newArray(facts.outerParameters));
  return BytesOf(inner, kMostBytes);
}

class TiffFile {
 public:
  explicit TiffFile(const std::string& path)
      // Samples of 16 bits come high byte first, as documents have them.
      : tiff_(modules::OpenTiffFile(path.c_str(), "w8b", faults_)) {
    Need(tiff_ != nullptr, kNotWritten);
  }

  template <class... Values>
  void set(std::uint32_t tag, Values... values) {
    Need(TIFFSetField(tiff_.get(), tag, values...) != 0, kNotWritten);
  }
  void addStrip(std::string& bytes) {
    Need(TIFFWriteRawStrip(tiff_.get(), strips_++, bytes.data(),
                           static_cast<tmsize_t>(bytes.size())) >= 0,
         kNotWritten);
  }
  void finish() {
    Need(TIFFWriteDirectory(tiff_.get()) != 0, kNotWritten);
    tiff_.reset();
    Need(faults_ == 0, kNotWritten);
  }

 private:
  int faults_ = 0;
  std::uint32_t strips_ = 0;
  modules::TiffHandle tiff_;
};

void SetPalette(const std::string& palette, TiffFile& tiff) {
  constexpr int kByteTo16 = 257;
  std::array<std::array<std::uint16_t, 256>, 3> tones{};
  for (std::size_t at = 0; at < palette.size(); ++at) {
    tones.at(at % 3).at(at / 3) =
        static_cast<std::uint16_t>(static_cast<unsigned char>(palette[at]) * kByteTo16);
  }
  tiff.set(TIFFTAG_COLORMAP, tones[0].data(), tones[1].data(), tones[2].data());
}

void SetColors(const ImageFacts& facts, TiffFile& tiff) {
  tiff.set(TIFFTAG_BITSPERSAMPLE, facts.bits);
  tiff.set(TIFFTAG_SAMPLESPERPIXEL, facts.components);
  const bool isFax = facts.coding == Coding::kFax;
  if (!facts.palette.empty()) {
    std::string palette = facts.palette;
    if (isFax && !facts.fax.blackIs1) palette = palette.substr(3) + palette.substr(0, 3);
    tiff.set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_PALETTE);
    SetPalette(palette, tiff);
  } else if (facts.components == 1) {
    // Samples of other codings are turned round on their way.
    const bool whiteIsZero = isFax && facts.fax.blackIs1 == facts.inverted;
    tiff.set(TIFFTAG_PHOTOMETRIC, whiteIsZero ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK);
  } else {
    tiff.set(TIFFTAG_PHOTOMETRIC, facts.components == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_SEPARATED);
  }
  if (const std::string profile = ProfileOf(facts); !profile.empty()) {
    tiff.set(TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()), profile.data());
  }
}

void SetPage(const PdfPage& page, TiffFile& tiff) {
  tiff.set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  tiff.set(TIFFTAG_ORIENTATION, page.orientation);
  tiff.set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  tiff.set(TIFFTAG_XRESOLUTION, page.xDotsPerInch);
  tiff.set(TIFFTAG_YRESOLUTION, page.yDotsPerInch);
}

void AddFax(const Object& image, const ImageFacts& facts, TiffFile& tiff) {
  constexpr int kTwoDimensions = 1;
  constexpr int kFilledToBytes = 4;
  const bool isGroup4 = facts.fax.k < 0;
  tiff.set(TIFFTAG_ROWSPERSTRIP, facts.height);
  tiff.set(TIFFTAG_COMPRESSION, isGroup4 ? COMPRESSION_CCITTFAX4 : COMPRESSION_CCITTFAX3);
  if (!isGroup4) {
    tiff.set(TIFFTAG_GROUP3OPTIONS,
             (facts.fax.k > 0 ? kTwoDimensions : 0) | (facts.fax.byteAligned ? kFilledToBytes : 0));
  }
  std::string bytes = CodedBytes(image, facts);
  Need(!bytes.empty(), kDamaged);
  tiff.addStrip(bytes);
}

void AddSamples(Object image, const ImageFacts& facts, TiffFile& tiff) {
  constexpr std::uint64_t kStripBytes = 1U << 18U;
  constexpr std::uint64_t kMostRatio = 4096;  // of the codings that there are
  const std::uint64_t rowBytes = facts.rowBytes();
  const std::uint64_t all = rowBytes * static_cast<std::uint64_t>(facts.height);
  const std::uint64_t raw = image.getRawStreamData()->getSize();
  Need(modules::IsPlausible(all, raw, kMostRatio), kDamaged);
  const auto rows = std::clamp<std::uint64_t>(kStripBytes / rowBytes, 1,
                                              static_cast<std::uint64_t>(facts.height));
  tiff.set(TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rows));
  tiff.set(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  const auto flip = static_cast<unsigned char>(facts.inverted ? 255 : 0);
  std::string strip;
  const std::uint64_t passed =
      PassOn(image, all, [&](const unsigned char* bytes, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
          strip.push_back(static_cast<char>(bytes[i] ^ flip));
          if (strip.size() < rows * rowBytes) continue;
          tiff.addStrip(strip);
          strip.clear();
        }
      });
  Need(passed == all, kDamaged);
  if (!strip.empty()) tiff.addStrip(strip);
}

}  // namespace

std::string ProfileOf(const ImageFacts& facts) {
  constexpr std::size_t kMostBytes = std::size_t{16} << 20U;
  Object profile = facts.profile;
  return profile.isStream() ? BytesOf(profile, kMostBytes) : std::string();
}

bool WriteJpegFile(const QPDFObjectHandle& image, const ImageFacts& facts,
                   const std::string& path) {
  const std::string bytes = CodedBytes(image, facts);
  try {
    modules::WriteFile(path.c_str(), [&](std::FILE* file) {
      (void)std::fwrite(bytes.data(), 1, bytes.size(), file);
    });
  } catch (const modules::ModuleError&) {
    throw PdfFault(kNotWritten);
  }
  const auto own = ReadJpegFacts(path);
  Need(own.has_value() && own->width == facts.width && own->height == facts.height &&
           own->components == facts.components && facts.bits == 8,
       kDamaged);
  if (own->components == 3 && own->mixesColors && !facts.mixesColors) {
    throw PdfFault("its colors are coded in a way that its JPEG data do not tell");
  }
  return own->inverted == facts.inverted && facts.palette.empty();
}

void WriteTiffFile(const QPDFObjectHandle& image, const ImageFacts& facts, const PdfPage& page,
                   PdfFile::Part part, const std::string& path) {
  const bool isWhole = part == PdfFile::Part::kAll;
  TiffFile tiff(path);
  tiff.set(TIFFTAG_IMAGEWIDTH, isWhole ? facts.width : 1);
  tiff.set(TIFFTAG_IMAGELENGTH, isWhole ? facts.height : 1);
  SetColors(facts, tiff);
  SetPage(page, tiff);
  if (!isWhole) {
    constexpr std::size_t kMostPixelBytes = 8;
    std::string pixel(kMostPixelBytes, '\0');
    tiff.set(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    tiff.addStrip(pixel);
  } else if (facts.coding == Coding::kFax) {
    AddFax(image, facts, tiff);
  } else {
    AddSamples(image, facts, tiff);
  }
  tiff.finish();
}

}  // namespace client
