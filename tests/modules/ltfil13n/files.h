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
  const auto put = [&](const std::string& number, std::initializer_list<int> shifts) {
    for (const int shift : shifts) {
      bytes.push_back(static_cast<std::uint8_t>(std::stoll(number) >> shift));
    }
  };
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const std::string rest = word.substr(1);
    if (word[0] == 's') {
      put(rest, {0, 8});
    } else if (word[0] == 'i') {
      put(rest, {0, 8, 16, 24});
    } else if (word[0] == 'S') {
      put(rest, {8, 0});
    } else if (word[0] == 'I') {
      put(rest, {24, 16, 8, 0});
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
    const BITMAPINFOHEADER header = rig::HeaderOf(image);
    EXPECT_EQ(code_, kModuleSuccess);
    EXPECT_EQ(told.width, header.biWidth);
    EXPECT_EQ(told.height, header.biHeight);
    EXPECT_EQ(told.bitsPerPixel, header.biBitCount);
    EXPECT_EQ(told.order, 1);
    EXPECT_EQ(told.xResolution, orvo::DotsPerInch(header.biXPelsPerMeter));
    EXPECT_EQ(told.yResolution, orvo::DotsPerInch(header.biYPelsPerMeter));
    EXPECT_EQ(static_cast<std::size_t>(told.sizeInMemory), GlobalSize(image.get()));
    EXPECT_EQ(static_cast<std::size_t>(told.sizeOnDisk), read(name).size());
    EXPECT_EQ(told.page, 1);
    EXPECT_STREQ(told.compression, compression);
  }

  // Codes, description and image of a file; the size of what libraries pack is left out.
  void addFile(Sum& sum, const std::string& name, const Bytes& bytes) {
    const OwnedDib image = load(name, bytes);
    sum.add(code_);
    sum.add(image ? pictures::BytesOf(image.get()) : Bytes());
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
