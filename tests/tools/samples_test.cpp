// The sample pictures: there, of the stated measures, and the same every time.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <orvo/raii.h>

#include "support/pictures.h"

namespace {

namespace fs = std::filesystem;

struct Row {
  const char* name;
  int width, height, bits, dotsPerInch;
};

constexpr Row kRows[] = {
    {"photo.jpg", 1600, 1200, 24, 300},   {"gray.png", 1600, 1200, 8, 300},
    {"palette.png", 1600, 1200, 8, 300},  {"portrait.jpg", 1200, 1500, 24, 300},
    {"page.tif", 1654, 2339, 8, 200},     {"page_bw.tif", 1654, 2339, 1, 200},
    {"document.tif", 1165, 1654, 8, 200}, {"bed.png", 1240, 1600, 24, 150},
    {"halftone.png", 1000, 750, 8, 300},
};

std::string Bytes(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Round the eyes of the portrait; flash has made their pupils red.
constexpr RECT kEyes[] = {{450, 610, 515, 680}, {685, 610, 750, 680}};

// Corrects red eyes and expects changes in both eyes and nowhere else.
void ExpectRedEyes(COrvoInstance& toolkit, const fs::path& file) {
  orvo::OwnedDib before;
  orvo::OwnedDib after;
  ASSERT_EQ(toolkit.LoadFile(file.c_str(), before.receive()), ORVO_OK);
  int found = 0;
  ASSERT_EQ(toolkit.AutoRedEye(before.get(), after.receive(before), &found), ORVO_OK);
  const pictures::Locked old(before.get());
  const pictures::Locked fresh(after.get());
  const orvo::DibLayout layout = old.layout();
  int changed[3] = {};  // pixels in either eye and elsewhere
  for (int y = 0; y < layout.height; ++y) {
    for (int x = 0; x < layout.width; ++x) {
      const int row = layout.height - 1 - y;
      if (std::memcmp(old.row(row) + 3 * x, fresh.row(row) + 3 * x, 3) == 0) continue;
      const POINT point{x, y};
      ++changed[PtInRect(&kEyes[0], point) != 0 ? 0 : PtInRect(&kEyes[1], point) != 0 ? 1 : 2];
    }
  }
  EXPECT_GT(changed[0], 300);
  EXPECT_GT(changed[1], 300);
  EXPECT_EQ(changed[2], 0);
}

TEST(Samples, AreDrawnTheSameEveryTime) {
  const fs::path folder = fs::temp_directory_path() / ("orvo_samples_" + std::to_string(getpid()));
  for (const char* const time : {"first", "second"}) {
    const std::string command = std::string(MAKE_SAMPLES) + ' ' + (folder / time).string();
    ASSERT_EQ(std::system(command.c_str()), 0);  // NOLINT(cert-env33-c): our own program
  }
  const orvo::OwnedInstance toolkit;
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const fs::path file = folder / "first" / row.name;
    ORVOIMAGEFILEINFO info{};
    ASSERT_EQ(toolkit->ImageFileInfo(file.c_str(), &info), ORVO_OK);
    EXPECT_EQ(info.width, row.width);
    EXPECT_EQ(info.height, row.height);
    EXPECT_EQ(info.bitsPerPixel, row.bits);
    EXPECT_EQ(info.xResolution, row.dotsPerInch);
    EXPECT_EQ(info.yResolution, row.dotsPerInch);
    EXPECT_TRUE(Bytes(file) == Bytes(folder / "second" / row.name));
  }
  ExpectRedEyes(*toolkit.get(), folder / "first" / "portrait.jpg");
  fs::remove_all(folder);
}

}  // namespace
