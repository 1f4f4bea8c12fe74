// Images loaded and saved by the module, and files built byte by byte.
#ifndef TESTS_MODULES_LTFIL13N_FILES_H
#define TESTS_MODULES_LTFIL13N_FILES_H

#include <initializer_list>

#include "modules/fixture.h"

namespace rig {

// Bytes and numbers one after the other: little- and big-endian ones of 16 and 32 bits.
class Builder {
 public:
  using Numbers = std::initializer_list<std::int64_t>;

  Builder& add(Numbers bytes) { return put(bytes, {0}); }
  Builder& little16(Numbers numbers) { return put(numbers, {0, 8}); }
  Builder& little32(Numbers numbers) { return put(numbers, {0, 8, 16, 24}); }
  Builder& big16(Numbers numbers) { return put(numbers, {8, 0}); }
  Builder& big32(Numbers numbers) { return put(numbers, {24, 16, 8, 0}); }
  Builder& add(const Bytes& more) {
    bytes_.insert(bytes_.end(), more.begin(), more.end());
    return *this;
  }
  Builder& zeros(std::size_t count) {
    bytes_.resize(bytes_.size() + count);
    return *this;
  }
  operator const Bytes&() const { return bytes_; }

 private:
  Builder& put(Numbers numbers, std::initializer_list<int> shifts) {
    for (const std::int64_t number : numbers) {
      for (const int shift : shifts) bytes_.push_back(static_cast<std::uint8_t>(number >> shift));
    }
    return *this;
  }
  Bytes bytes_;
};

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
    const BITMAPINFOHEADER header = View(image).header();
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

  int code_ = 0;
};

}  // namespace rig

#endif  // TESTS_MODULES_LTFIL13N_FILES_H
