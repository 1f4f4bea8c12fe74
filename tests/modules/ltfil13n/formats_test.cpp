// docs/formats.md promises what the module writes and reads at each depth. Every cell of its table
// is tried out.
#include <set>
#include <sstream>

#include "files.h"

namespace {

using rig::FileTest;
using rig::OwnedDib;

// What lies between separators, without blanks around it.
std::vector<std::string> Parts(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) {
    const std::size_t first = part.find_first_not_of(' ');
    parts.push_back(first == std::string::npos
                        ? ""
                        : part.substr(first, part.find_last_not_of(' ') + 1 - first));
  }
  return parts;
}

const char* CompressionOf(int format, int depth, bool second) {
  if (format == kFormatTiffCompressed) return depth == 1 && !second ? "CCITT G4" : "LZW";
  if (format == kFormatJpeg) return "JPEG";
  if (format == kFormatPng) return "deflate";
  return format == kFormatPsd ? "RLE" : "none";
}

// A cell `a/b` tells of two kinds: a gray palette or colours, no opacity or some.
OwnedDib Made(int width, int depth, bool second) {
  OwnedDib image = rig::Picture({depth, !second}, width, width / 5 + 4);
  const rig::Locked view(image.get());
  view.header()->biYPelsPerMeter = 5001;  // no whole dots per inch
  for (int i = 0; depth == 32 && !second && i < width * (width / 5 + 4); ++i) {
    view.row(0)[4 * i + 3] = 0;
  }
  return image;
}

TEST_F(FileTest, every_cell_of_the_page_of_formats_holds) {
  constexpr int kDepths[] = {1, 4, 8, 16, 24, 32};
  std::set<std::string> told;
  std::ifstream page(ORVO_FORMATS_PAGE);
  for (std::string line; std::getline(page, line);) {
    const std::vector<std::string> cells = Parts(line, '|');
    if (cells.size() != 13 || cells[1] == "Extension" || cells[1].starts_with("-")) continue;
    for (const std::string& extension : Parts(cells[1], ',')) told.insert(extension);
    const std::string extension = Parts(cells[1], ',')[0];
    const int format = cells[3].empty() ? 0 : std::stoi(cells[3]);
    const bool keepsResolution = cells[12].find("no resolution") == std::string::npos;
    const bool inWholeDots = format == kFormatJpeg || format == kFormatPcx || format == kFormatPct;
    const std::vector<std::string> reads = Parts(cells[4], ' ');
    for (std::size_t i = 0; i < std::size(kDepths); ++i) {
      for (const bool second : {false, true}) {
        const std::string cell = cells[5 + i];
        const std::string kind = second ? Parts(cell, '/').back() : Parts(cell, '/')[0];
        for (const int width : {1, 2, 7, 8, 33, 251}) {
          const std::string name = cells[3] + "-" + std::to_string(kDepths[i]) +
                                   (second ? "b-" : "a-") + std::to_string(width) + "." + extension;
          SCOPED_TRACE(name);
          const OwnedDib image = Made(width, kDepths[i], second);
          const bool isWritten = cell != "-" && (format != kFormatPct || width >= 8);
          ASSERT_EQ(save(image, name, format, 100),
                    isWritten ? kModuleSuccess : kFileFormatNotWritten);
          EXPECT_EQ(std::filesystem::exists(at(name)), isWritten);
          if (!isWritten) continue;
          const OwnedDib back = load(name);
          ASSERT_EQ(static_cast<bool>(back), kind != "yes");
          if (!back) continue;
          const bool withFourth = kind == "32";
          EXPECT_LE(
              rig::LargestDifference(rig::Shown(back, withFourth), rig::Shown(image, withFourth)),
              format == kFormatJpeg ? 6 : 0);
          const BITMAPINFOHEADER header = rig::HeaderOf(back);
          EXPECT_EQ(std::to_string(header.biBitCount), kind);
          EXPECT_NE(std::find(reads.begin(), reads.end(), kind), reads.end());
          EXPECT_EQ(header.biXPelsPerMeter, keepsResolution ? 11811 : 0);
          EXPECT_EQ(header.biYPelsPerMeter, !keepsResolution ? 0 : inWholeDots ? 5000 : 5001);
          expectInfo(name, back, CompressionOf(format, kDepths[i], second));
          EXPECT_EQ(info(name).format, format);
          EXPECT_EQ(info(name).pageCount, 1);
        }
      }
    }
  }
  for (const char* const extension :
       {"bmp", "jff", "tif", "tiff", "jpg", "jpe", "jpeg", "cmp", "pcx", "psd", "png",
        "ras", "pcd", "fpx", "wmf",  "tga", "eps", "wpg",  "pct", "jtf", "exf", "dcx"}) {
    EXPECT_TRUE(told.contains(extension)) << extension;
  }
}

}  // namespace
