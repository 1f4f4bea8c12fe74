// Files for tests: a folder that goes with the test, images loaded and saved by the module, and the
// pixels that another program sees in a file.
#ifndef TESTS_MODULES_LTFIL13N_FILES_H
#define TESTS_MODULES_LTFIL13N_FILES_H

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "binding/module_contract.h"
#include "support/pictures.h"

using namespace orvo;

namespace files {

using Bytes = std::vector<std::uint8_t>;

// Every test runs in an empty folder of its own, and leaves no block and no lock behind.
class FolderTest : public testing::Test {
 protected:
  FolderTest() {
    std::string pattern = testing::TempDir() + "orvo-files-XXXXXX";
    folder_ = mkdtemp(pattern.data());
  }
  ~FolderTest() override { std::filesystem::remove_all(folder_); }

  [[nodiscard]] std::string at(const std::string& name) const { return folder_ / name; }
  [[nodiscard]] std::size_t fileCount() const {
    const std::filesystem::directory_iterator files(folder_);
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }

 private:
  std::filesystem::path folder_;
};

inline Bytes Read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void Write(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

// The image of a file's first page; empty when it does not load. `code` is the module's.
inline orvo::OwnedDib Load(const std::string& path, int* code = nullptr) {
  struct_LEAD_Bitmap bitmap{};
  const int result = L_LoadBitmap(path.c_str(), &bitmap, 0, 1, nullptr, nullptr);
  if (code != nullptr) *code = result;
  return orvo::OwnedDib(bitmap.block);
}

inline int Save(DibHandle image, const std::string& path, int format, int quality = 0) {
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, image);
  const int code = L_SaveBitmap(path.c_str(), &bitmap, format, 0, quality, nullptr);
  L_ChangeToDIB(&bitmap);
  return code;
}

inline int AppendPage(DibHandle image, const std::string& path, int format = kFormatTiff) {
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, image);
  const int code =
      L_SaveFile(path.c_str(), &bitmap, format, 0, 0, kSaveAppendsPage, nullptr, nullptr, nullptr);
  L_ChangeToDIB(&bitmap);
  return code;
}

struct ThumbnailWish {
  int width = 0;
  int height = 0;
  int bits = 0;
  bool keepAspect = true;
  bool forceSize = false;
  int background = 0;
};

// The thumbnail of a file; empty when it is not made. `code` is the module's.
inline orvo::OwnedDib Thumbnail(const std::string& path, const ThumbnailWish& wish, int* code) {
  LTTHUMBNAILOPTIONS options{};
  options.width = wish.width;
  options.height = wish.height;
  options.bitsPerPixel = wish.bits;
  options.keepAspect = wish.keepAspect ? 1 : 0;
  options.forceSize = wish.forceSize ? 1 : 0;
  options.backgroundColor = wish.background;
  struct_LEAD_Bitmap bitmap{};
  *code = L_CreateThumbnailFromFile(path.c_str(), &bitmap, &options, nullptr, nullptr, nullptr,
                                    nullptr);
  return orvo::OwnedDib(L_ChangeToDIB(&bitmap));
}

// What an image shows: blue, green, red (and the fourth byte when asked) from the top left.
inline Bytes ShownPixels(DibHandle dib, bool withFourth = false) {
  const pictures::Locked image(dib);
  const orvo::DibLayout layout = image.layout();
  Bytes shown;
  for (int y = layout.height - 1; y >= 0; --y) {
    const std::uint8_t* const row = image.row(y);
    for (std::size_t x = 0; x < static_cast<std::size_t>(layout.width); ++x) {
      RGBQUAD color{};
      if (layout.depth <= 8) {
        const auto bits = static_cast<std::size_t>(layout.depth);
        const auto shift = 8 - bits - x * bits % 8;
        color = image.palette()[row[x * bits / 8] >> shift & ((1 << bits) - 1)];
      } else if (layout.depth == 16) {
        const int pixel = row[2 * x] | row[2 * x + 1] << 8;
        const auto tone = [=](int shift) {
          const int narrow = pixel >> shift & 31;
          return static_cast<std::uint8_t>(narrow << 3 | narrow >> 2);
        };
        color = RGBQUAD{tone(0), tone(5), tone(10), 0};
      } else {
        const std::uint8_t* const pixel = row + x * static_cast<std::size_t>(layout.depth) / 8;
        color = RGBQUAD{pixel[0], pixel[1], pixel[2],
                        layout.depth == 32 ? pixel[3] : std::uint8_t{255}};
      }
      shown.insert(shown.end(), {color.rgbBlue, color.rgbGreen, color.rgbRed});
      if (withFourth) shown.push_back(color.rgbReserved);
    }
  }
  return shown;
}

// What a program prints.
inline Bytes OutputOf(const std::string& command) {
  Bytes output;
  std::FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return output;
  std::array<std::uint8_t, 4096> part{};
  while (const std::size_t count = std::fread(part.data(), 1, part.size(), pipe)) {
    output.insert(output.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(count));
  }
  pclose(pipe);
  return output;
}

inline bool HasProgram(const std::string& name) {
  return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

// The largest difference of two pictures' bytes; 256 when they differ in size.
inline int LargestDifference(const Bytes& a, const Bytes& b) {
  if (a.size() != b.size()) return 256;
  int largest = 0;
  for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

// A smooth picture with an edge, in colours or grays: compresses as photographs do.
inline orvo::OwnedDib Scene(int width, int height, int depth) {
  orvo::OwnedDib dib = pictures::Blank(width, height, depth);
  const pictures::Locked image(dib.get());
  const std::size_t bytesPerPixel = static_cast<std::size_t>(depth) / 8;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      std::uint8_t* const pixel = image.row(y) + static_cast<std::size_t>(x) * bytesPerPixel;
      for (std::size_t i = 0; i < bytesPerPixel && i < 3; ++i) {
        const int tone = x * 200 / width + (y > height / 2 ? 40 : 0) + static_cast<int>(i) * 7;
        pixel[i] = static_cast<std::uint8_t>(tone);
      }
    }
  }
  return dib;
}

}  // namespace files

#endif  // TESTS_MODULES_LTFIL13N_FILES_H
