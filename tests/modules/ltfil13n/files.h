// Images loaded and saved by the module, and files built byte by byte.
#ifndef TESTS_MODULES_LTFIL13N_FILES_H
#define TESTS_MODULES_LTFIL13N_FILES_H

#include <initializer_list>
#include <sstream>

#include "modules/fixture.h"

namespace rig {

// The bytes that words tell: hexadecimal ones; decimal numbers of 16 (s) and 32 bits (i), in
// capitals big-endian; zeros by count (z); letters behind an apostrophe. A stroke puts its place,
// or the number behind it, where a BMP tells where its pixels are.
inline Bytes Of(const std::string& text) {
  Bytes bytes;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const std::string rest = word.substr(1);
    const int kind = std::tolower(word[0]);
    if (kind == 's' || kind == 'i') {
      const int last = kind == 's' ? 1 : 3;
      for (int i = 0; i <= last; ++i) {
        const int shift = 8 * (word[0] == kind ? i : last - i);
        bytes.push_back(static_cast<std::uint8_t>(std::stoll(rest) >> shift));
      }
    } else if (word[0] == 'z') {
      bytes.resize(bytes.size() + std::stoul(rest));
    } else if (word[0] == '\'') {
      bytes.insert(bytes.end(), rest.begin(), rest.end());
    } else if (word[0] == '|') {
      const std::size_t place = rest.empty() ? bytes.size() : std::stoul(rest);
      std::memcpy(&bytes[10], &place, 4);
    } else {
      bytes.push_back(static_cast<std::uint8_t>(std::stoul(word, nullptr, 16)));
    }
  }
  return bytes;
}
// Where a tag stands in the first directory of a little-endian TIFF.
inline std::uint8_t* TagOf(Bytes& tiff, int tag) {
  std::uint32_t directory = 0;
  std::memcpy(&directory, &tiff[4], 4);
  std::uint8_t* entry = &tiff[directory + 2];
  while ((entry[0] | entry[1] << 8) != tag) entry += 12;
  return entry;
}
// A picture's bytes with an Exif block, as cameras place it, behind the first two.
inline Bytes WithExif(Bytes jpeg, const std::string& block) {
  Bytes exif = Of("FF E1 0 0 'Exif 0 0 " + block);
  exif[3] = static_cast<std::uint8_t>(exif.size() - 2);
  jpeg.insert(jpeg.begin() + 2, exif.begin(), exif.end());
  return jpeg;
}

// A PNG with a chunk, its name first, at its very end; nobody looks at the check sum there.
inline Bytes WithChunk(Bytes png, const std::string& words) {
  constexpr std::ptrdiff_t kEndBytes = 12;
  Bytes chunk = Of("I0 " + words + " I0");
  chunk[3] = static_cast<std::uint8_t>(chunk.size() - kEndBytes);
  png.insert(png.end() - kEndBytes, chunk.begin(), chunk.end());
  return png;
}

inline constexpr std::pair<const char*, int> kFormats[] = {
    {"a.bmp", kFormatBmp},  {"a.jpg", kFormatJpeg},
    {"a.png", kFormatPng},  {"a.psd", kFormatPsd},
    {"a.tga", kFormatTga},  {"a.pcx", kFormatPcx},
    {"a.tif", kFormatTiff}, {"b.tif", kFormatTiffCompressed},
    {"a.pct", kFormatPct},  {"a.ras", kFormatRas}};

class FileTest : public ModuleTest {
 protected:
  // The image of a file's first page; empty when it does not load. `code_` is the module's.
  OwnedDib load(const std::string& name, int bits = 0) {
    struct_LEAD_Bitmap bitmap{};
    code_ = L_LoadBitmap(at(name).c_str(), &bitmap, bits, 1, nullptr, nullptr);
    EXPECT_EQ(bitmap.block != nullptr, code_ == kModuleSuccess);
    return OwnedDib(bitmap.block);
  }
  OwnedDib load(const std::string& name, const Bytes& bytes) {
    write(name, bytes);
    return load(name);
  }
  int save(const OwnedDib& image, const std::string& name, int format, int quality = 0,
           unsigned flags = 0, int bits = 0) {
    struct_LEAD_Bitmap bitmap{};
    L_ChangeFromDIB(&bitmap, image.get());
    const Bytes before = image ? pictures::BytesOf(image.get()) : Bytes();
    const int code = L_SaveFile(at(name).c_str(), &bitmap, format, bits, quality, flags, nullptr,
                                nullptr, nullptr);
    EXPECT_EQ(L_ChangeToDIB(&bitmap), image.get());
    EXPECT_TRUE(!image || pictures::BytesOf(image.get()) == before) << "the source changed";
    return code;
  }
  int convert(const std::string& source, const std::string& target, int format, int width = 0,
              int height = 0, int bits = 0) {
    return L_FileConvert(at(source).c_str(), at(target).c_str(), format, width, height, bits, 0,
                         nullptr, nullptr, nullptr);
  }
  // Null options are none.
  OwnedDib thumbnail(const std::string& name, const LTTHUMBNAILOPTIONS* options) {
    struct_LEAD_Bitmap bitmap{};
    code_ = L_CreateThumbnailFromFile(at(name).c_str(), &bitmap, options, nullptr, nullptr, nullptr,
                                      nullptr);
    return OwnedDib(L_ChangeToDIB(&bitmap));
  }
  LTFILEINFO info(const std::string& name, int page = 1) {
    const LTLOADOPTIONS options{sizeof options, page};
    LTFILEINFO info{};
    code_ =
        L_FileInfo(at(name).c_str(), &info, page == 1 ? 0U : unsigned{kInfoUsesOptions}, &options);
    return info;
  }
  // What a file's description says agrees with the image that it loads.
  void expectInfo(const std::string& name, const OwnedDib& image, const char* compression) {
    const LTFILEINFO told = info(name);
    const BITMAPINFOHEADER header = HeaderOf(image);
    EXPECT_EQ(std::tuple(code_, told.width, told.height, told.bitsPerPixel, told.xResolution,
                         told.yResolution, told.order, told.page),
              std::tuple(kModuleSuccess, header.biWidth, header.biHeight, header.biBitCount,
                         orvo::DotsPerInch(header.biXPelsPerMeter),
                         orvo::DotsPerInch(header.biYPelsPerMeter), 1, 1));
    EXPECT_EQ(static_cast<std::size_t>(told.sizeInMemory), GlobalSize(image.get()));
    EXPECT_EQ(static_cast<std::size_t>(told.sizeOnDisk), read(name).size());
    EXPECT_STREQ(told.compression, compression);
  }

  // Codes, description and image of a file; what differs between versions of the libraries is left
  // out: the size of what they pack, and pixels of JPEG.
  void addFile(Sum& sum, const std::string& name, const Bytes& bytes) {
    const OwnedDib image = load(name, bytes);
    sum.add(code_);
    if (!name.ends_with("jpg")) sum.add(image ? pictures::BytesOf(image.get()) : Bytes());
    LTFILEINFO told = info(name);
    sum.add(code_);
    told.sizeOnDisk = 0;
    const auto* const first = reinterpret_cast<const std::uint8_t*>(&told);
    sum.add(Bytes(first, first + sizeof told));
  }

  int code_ = 0;
};

}  // namespace rig

#endif  // TESTS_MODULES_LTFIL13N_FILES_H
