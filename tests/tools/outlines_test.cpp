// The outlines of red-eye colours: their make-up, and that the drawing program still gives them.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "imaging/adjust/ycbcr.h"
#include "imaging/redeye/color_tests.h"
#include "outline_table.h"

using namespace orvo;

namespace {

struct MeasuredRow {
  int luma;
  Polygon outline;
};

// A choice of the rows that are known for certain.
const MeasuredRow kKnown[] = {
    {13, {{125, 151}}},
    {14, {{125, 151}, {127, 151}}},
    {24, {{113, 154}, {113, 172}, {146, 155}, {118, 150}}},
    {48,
     {{99, 175},
      {101, 207},
      {104, 210},
      {122, 201},
      {139, 179},
      {134, 157},
      {125, 144},
      {113, 137},
      {108, 140}}},
    {80, {{90, 200}, {95, 253}, {100, 252}, {139, 168}, {143, 157}, {120, 148}}},
    {176, {{92, 183}, {125, 183}, {145, 163}}},
    {231, {{142, 146}}},
};

Polygon RowOf(int luma) {
  const RedEyeOutline& outline = RedEyeOutlines[luma];
  return {outline.vertices, outline.vertices + outline.count};
}

testing::AssertionResult Same(const Polygon& a, const Polygon& b) {
  const auto equal = [](const ChromaPoint& p, const ChromaPoint& q) {
    return p.cb == q.cb && p.cr == q.cr;
  };
  if (std::equal(a.begin(), a.end(), b.begin(), b.end(), equal)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << a.size() << " and " << b.size() << " vertices";
}

std::string OutputOf(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string output;
  std::array<char, 4096> part{};
  while (const std::size_t got = fread(part.data(), 1, part.size(), pipe.get())) {
    output.append(part.data(), got);
  }
  return output;
}

TEST(Outlines, HaveTheRightNumbersOfVertices) {
  std::map<int, int> rows;
  int vertices = 0;
  for (const RedEyeOutline& outline : RedEyeOutlines) {
    ++rows[outline.count];
    vertices += outline.count;
  }
  EXPECT_EQ(rows[0], 42);
  EXPECT_EQ(rows[1], 12);
  EXPECT_EQ(rows[2], 14);
  EXPECT_EQ(rows[13], 1);
  EXPECT_EQ(RedEyeOutlines[92].count, 13);
  EXPECT_EQ(rows.rbegin()->first, 13);
  EXPECT_EQ(vertices, 1353);
  for (const int luma : {0, 12, 19, 171, 184, 185, 186, 232, 255}) {
    EXPECT_EQ(RedEyeOutlines[luma].count, 0) << luma;
  }
  for (const MeasuredRow& known : kKnown) EXPECT_TRUE(Same(RowOf(known.luma), known.outline));
}

TEST(Outlines, AreStrictlyConvexAndClockwiseFromTheLeft) {
  for (int luma = 0; luma < kLumaCount; ++luma) {
    SCOPED_TRACE(luma);
    const Polygon row = RowOf(luma);
    for (std::size_t i = 0; i < std::size(RedEyeOutline{}.vertices); ++i) {
      const ChromaPoint& point = RedEyeOutlines[luma].vertices[i];
      if (i >= row.size()) {
        EXPECT_TRUE(point.cb == 0 && point.cr == 0);
        continue;
      }
      EXPECT_TRUE(point.cb >= 69 && point.cb <= 156 && point.cr >= 137 && point.cr <= 253);
      EXPECT_GE(point.cb, row[0].cb);
      if (row.size() < 3) continue;
      // All others lie to the right of each edge: no outline winds twice.
      const ChromaPoint& next = row[(i + 1) % row.size()];
      for (std::size_t j = 2; j < row.size(); ++j) {
        EXPECT_LT(TwiceArea(point, next, row[(i + j) % row.size()]), 0);
      }
    }
  }
}

TEST(Outlines, AcceptRedPupilsAndNeitherSkinNorGray) {
  const auto isRed = [](int red, int green, int blue) {
    const YCbCrBytes color = ToYCbCrBytes(red, green, blue);
    return ImgIsRedEyeColor(color.y, color.cb, color.cr);
  };
  EXPECT_TRUE(isRed(200, 30, 30));
  EXPECT_TRUE(isRed(230, 30, 60));
  EXPECT_FALSE(isRed(220, 170, 140));
  EXPECT_FALSE(isRed(180, 120, 100));
  for (int tone = 0; tone < 256; ++tone) EXPECT_FALSE(isRed(tone, tone, tone)) << tone;
  EXPECT_TRUE(ImgIsRedEyeColor(170, 113, 189));
  EXPECT_FALSE(ImgIsRedEyeColor(170, 113, 190));
  EXPECT_TRUE(ImgIsRedEyeColor(132, 100, 200));
  EXPECT_FALSE(ImgIsRedEyeColor(132, 128, 128));
}

// Neighbouring rows are never far apart: ten units by the way they are drawn, two by the grid.
TEST(Outlines, ChangeLittleFromLumaToLuma) {
  constexpr double kMostStep = 12;
  for (int luma = 25; luma < 170; ++luma) {
    const Extents a = ExtentsOf(RowOf(luma));
    const Extents b = ExtentsOf(RowOf(luma + 1));
    for (std::size_t i = 0; i < a.size(); ++i) EXPECT_LT(std::abs(a[i] - b[i]), kMostStep) << luma;
  }
}

TEST(Outlines, AreWhatTheDrawingProgramGives) {
  const OutlineTable table = MakeOutlines();
  const auto json = nlohmann::json::parse(OutputOf(std::string(OUTLINES_PROGRAM) + " --json"));
  ASSERT_EQ(json.size(), table.size());
  for (int luma = 0; luma < kLumaCount; ++luma) {
    const auto at = static_cast<std::size_t>(luma);
    EXPECT_TRUE(Same(RowOf(luma), table[at])) << luma;
    Polygon printed;
    for (const auto& pair : json[at]) printed.push_back({pair[0], pair[1]});
    EXPECT_TRUE(Same(printed, table[at])) << luma;
  }
}

}  // namespace
