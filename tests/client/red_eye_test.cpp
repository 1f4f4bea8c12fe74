// Red eyes of a drawn portrait: found, pointed at, outlined, and left alone.
#include <algorithm>

#include "client/client.h"
#include "support/pictures.h"

namespace {

// Round what differs in either half of the picture.
std::vector<Box> Changed(const orvo::OwnedDib& before, const orvo::OwnedDib& after) {
  std::vector<Box> boxes(2, Box{kPortraitWidth, kPortraitHeight, 0, 0});
  for (int y = 0; y < kPortraitHeight; ++y) {
    for (int x = 0; x < kPortraitWidth; ++x) {
      if (ColorAt(before, x, y) == ColorAt(after, x, y)) continue;
      auto& [left, top, right, bottom] = boxes[x < kPortraitWidth / 2 ? 0 : 1];
      left = std::min(left, x);
      top = std::min(top, y);
      right = std::max(right, x + 1);
      bottom = std::max(bottom, y + 1);
    }
  }
  return boxes;
}

json CircleIn(const Box& box) {
  const auto& [left, top, right, bottom] = box;
  return {(left + right - 1) / 2, (top + bottom - 1) / 2, std::max(right - left, bottom - top) / 2};
}

class RedEyeTest : public ClientTest {
 protected:
  RedEyeTest() { save("in.bmp", Portrait()); }
};

TEST_F(RedEyeTest, BothAreFoundInEveryDepthAndToldAsTheyChanged) {
  for (const int depth : {16, 24, 32}) {
    orvo::OwnedDib deep = load("in.bmp");
    EXPECT_EQ(toolkit_->ConvertToColorResInPlace(deep.address(), depth), ORVO_OK);
    save("deep.bmp", deep);
    const json told = report("redeye deep.bmp -o out.bmp");
    const orvo::OwnedDib after = loadTrueColor("out.bmp");
    const std::vector<Box> boxes = Changed(loadTrueColor("deep.bmp"), after);
    EXPECT_EQ(told["eyes"], 2) << depth;
    EXPECT_EQ(told["changed"], json(boxes));
    EXPECT_EQ(told["circles"], json({CircleIn(boxes[0]), CircleIn(boxes[1])}));
    EXPECT_EQ(told["picture"]["bits"], depth);
    for (const auto& [x, y] : kEyes) {
      const Color color = ColorAt(after, x, y);
      EXPECT_LT(color[2] - color[1], 20);
    }
  }
}

TEST_F(RedEyeTest, PointedAtOnlyThatOneIsCorrected) {
  orvo::OwnedDib picture = load("in.bmp");
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  std::uint32_t radius = 0;
  EXPECT_EQ(
      toolkit_->SearchRedEyeRegion(picture.get(), 240, kPortraitHeight - 1 - 216, &x, &y, &radius),
      ORVO_OK);
  EXPECT_EQ(toolkit_->ReduceRedEyeInPlace(picture.get(), x, y, radius), ORVO_OK);
  save("expected.bmp", picture);
  const json one = report("redeye --at 240,216 in.bmp -o out.bmp");
  EXPECT_EQ(one["eyes"], 1);
  EXPECT_EQ(one["circles"], json({{x, kPortraitHeight - 1 - y, radius}}));
  EXPECT_TRUE(bytes("out.bmp") == bytes("expected.bmp"));

  // Twice the same pupil is one; points may stand in one list or be given one by one.
  const json both = report("redeye --at 240,216,241,215 --at 161,215 in.bmp -o out.bmp");
  EXPECT_EQ(both["eyes"], 2);
  EXPECT_EQ(both["changed"], json(Changed(load("in.bmp"), load("out.bmp"))));
}

TEST_F(RedEyeTest, MarksFrameWhatWouldChangeAndNeedNoOutput) {
  // Cut so close to the eyes that no side of a frame has its whole width.
  const std::vector<Box> eyes = report("redeye in.bmp -o out.bmp")["changed"];
  const auto& [left, top, unused, bottom] = eyes[0];
  orvo::OwnedDib cut = load("in.bmp");
  EXPECT_EQ(toolkit_->TrimInPlace(cut.address(), left - 1, kPortraitHeight - bottom - 1,
                                  eyes[1][2] + 2, kPortraitHeight - top + 2),
            ORVO_OK);
  save("close.bmp", cut);
  const std::string x = std::to_string(kEyes[0][0] - left + 1);
  const std::string y = std::to_string(kEyes[0][1] - top + 2);
  const json told = report("redeye --at " + x + "," + y + " --mark marks close.bmp");
  EXPECT_FALSE(told.contains("output"));
  EXPECT_EQ(told["written"], json({"marks/close-marked.png"}));
  EXPECT_EQ(names("."), (Names{"close.bmp", "in.bmp", "marks", "out.bmp"}));
  ExpectFramed(cut, load("marks/close-marked.png"), told["changed"], 3, {0, 255, 0});
}

TEST_F(RedEyeTest, APictureWithoutThemStaysAsItIs) {
  save("noise.bmp", pictures::Noise(90, 70, 24, 5));
  const Outcome outcome = run("redeye noise.bmp -o out.bmp");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "noise.bmp:\n  eyes: 0\n  circles: none\n  changed: none\n");
  EXPECT_EQ(outcome.errors, "orvo: noise.bmp: no red eye found, copied as it is\n");
  EXPECT_TRUE(bytes("out.bmp") == bytes("noise.bmp"));
}

}  // namespace
