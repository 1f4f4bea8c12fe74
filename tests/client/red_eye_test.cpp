// Red eyes of a drawn portrait: found, pointed at, outlined, and left alone.
#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "client/bmp_files.h"
#include "client/client.h"
#include "sample_pictures/canvas.h"
#include "sample_pictures/scenes.h"
#include "support/pictures.h"

namespace {

using nlohmann::json;
using Words = std::vector<std::string>;

constexpr int kWidth = 400;
constexpr int kHeight = 500;
constexpr int kEyes[2][2] = {{161, 215}, {239, 215}};  // where the pupils' middles are drawn
constexpr int kPupil = 5;                              // radius
constexpr int kFrame = 3;
constexpr Color kGreen{0, 255, 0};

struct Box {
  int left, top, right, bottom;
  [[nodiscard]] bool holds(int x, int y) const {
    return x >= left && x < right && y >= top && y < bottom;
  }
  [[nodiscard]] Box grown(int by) const { return {left - by, top - by, right + by, bottom + by}; }
  [[nodiscard]] json list() const { return {left, top, right, bottom}; }
};

// Round what differs in one half of the picture.
Box Changed(const orvo::OwnedDib& before, const orvo::OwnedDib& after, int half) {
  Box box{kWidth, kHeight, 0, 0};
  for (int y = 0; y < kHeight; ++y) {
    for (int x = half * kWidth / 2; x < (half + 1) * kWidth / 2; ++x) {
      if (ColorAt(before, x, y) == ColorAt(after, x, y)) continue;
      box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
             std::max(box.bottom, y + 1)};
    }
  }
  return box;
}

void ExpectAtEye(const Box& box, int eye) {
  const int x = kEyes[eye][0];
  const int y = kEyes[eye][1];
  EXPECT_TRUE(box.holds(x, y)) << box.list();
  const Box near = Box{x, y, x, y}.grown(2 * kPupil);
  EXPECT_TRUE(near.holds(box.left, box.top) && near.holds(box.right - 1, box.bottom - 1))
      << box.list();
}

void ExpectAtEye(const json& circle, int eye) {
  EXPECT_LE(std::abs(circle[0].get<int>() - kEyes[eye][0]), 2) << circle;
  EXPECT_LE(std::abs(circle[1].get<int>() - kEyes[eye][1]), 2) << circle;
  EXPECT_LE(std::abs(circle[2].get<int>() - kPupil), 2) << circle;
}

class RedEyeTest : public ClientTest {
 protected:
  RedEyeTest() {
    samples::Canvas canvas(kWidth, kHeight);
    canvas.draw([](double x, double y) { return samples::Portrait(x / kHeight, y / kHeight); }, 0);
    write("in.bmp", BmpOf(canvas.toDib(300, false)));
  }
  [[nodiscard]] orvo::OwnedDib picture(const std::string& name) const {
    return PictureIn(bytes(name));
  }
  // The report on the one picture of a call that succeeds.
  [[nodiscard]] json report(Words words) const {
    words.insert(words.begin(), {"redeye", "--json"});
    const Outcome outcome = run(words);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return json::parse(outcome.output)["files"][0];
  }
};

TEST_F(RedEyeTest, BothAreFoundInEveryDepthAndToldAsTheyChanged) {
  for (const char* const depth : {"24", "16", "32"}) {
    ASSERT_EQ(run({"depth", "--bits", depth, "in.bmp", "-o", "deep.bmp"}).status, 0);
    const json told = report({"deep.bmp", "-o", "out.bmp"});
    ASSERT_EQ(told["eyes"], 2) << depth;
    // Through 24 bits, so that pixels of 16 can be looked at too.
    ASSERT_EQ(run({"depth", "--bits", "24", "deep.bmp", "out.bmp", "-o", "plain"}).status, 0);
    const orvo::OwnedDib before = picture("plain/deep.bmp");
    const orvo::OwnedDib after = picture("plain/out.bmp");
    for (const int eye : {0, 1}) {
      const Box changed = Changed(before, after, eye);
      ExpectAtEye(changed, eye);
      ExpectAtEye(told["circles"][eye], eye);
      EXPECT_EQ(told["changed"][eye], changed.list());
      const Color color = ColorAt(after, kEyes[eye][0], kEyes[eye][1]);
      EXPECT_LT(color[2] - color[1], 20);
    }
  }
}

TEST_F(RedEyeTest, PointedAtOnlyThatOneIsCorrected) {
  const json one = report({"--at", "240,216", "in.bmp", "-o", "one.bmp"});
  EXPECT_EQ(one["eyes"], 1);
  ExpectAtEye(one["circles"][0], 1);
  EXPECT_EQ(Changed(picture("in.bmp"), picture("one.bmp"), 0).right, 0);
  ExpectAtEye(Changed(picture("in.bmp"), picture("one.bmp"), 1), 1);
  // Twice the same pupil is one; points may stand in one list or be given one by one.
  EXPECT_EQ(report({"--at", "161,215,162,215", "--at", "239,214", "in.bmp", "--to", "png"})["eyes"],
            2);

  const struct {
    const char *at, *told;
  } misses[] = {{"130,250", "no red pupil at 130,250"},
                {"0,499", "no red pupil at 0,499"},
                {"239,215,20,20", "no red pupil at 20,20"},
                {"0,500", "the picture has 400 x 500 pixels"}};
  for (const auto& miss : misses) {
    const Outcome outcome = run({"redeye", "--at", miss.at, "in.bmp", "-o", "none.bmp"});
    EXPECT_EQ(outcome.status, 1) << miss.at;
    EXPECT_NE(outcome.errors.find(miss.told), std::string::npos) << outcome.errors;
  }
  EXPECT_EQ(names("."), (Words{"in.bmp", "in.png", "one.bmp"}));
}

TEST_F(RedEyeTest, MarksFrameWhatWouldChangeAndNeedNoOutput) {
  const json told = report({"in.bmp", "--mark", "marks"});
  EXPECT_FALSE(told.contains("output"));
  EXPECT_EQ(told["written"], json({"marks/in-marked.png"}));
  EXPECT_EQ(names("."), (Words{"in.bmp", "marks"}));
  ASSERT_EQ(run({"convert", "marks/in-marked.png", "-o", "marked.bmp"}).status, 0);
  const orvo::OwnedDib before = picture("in.bmp");
  const orvo::OwnedDib marked = picture("marked.bmp");
  ASSERT_TRUE(marked);
  Box eyes[2];
  for (const int i : {0, 1}) {
    const json& list = told["changed"][i];
    eyes[i] = {list[0], list[1], list[2], list[3]};
  }
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const Box& eye = eyes[x < kWidth / 2 ? 0 : 1];
      const bool frame = eye.grown(kFrame).holds(x, y) && !eye.holds(x, y);
      ASSERT_EQ(ColorAt(marked, x, y), frame ? kGreen : ColorAt(before, x, y)) << x << ", " << y;
    }
  }
}

TEST_F(RedEyeTest, APictureWithoutThemStaysAsItIs) {
  write("noise.bmp", BmpOf(pictures::Noise(90, 70, 24, 5)));
  const json told = report({"noise.bmp", "-o", "out.bmp"});
  EXPECT_EQ(told["eyes"], 0);
  EXPECT_EQ(told["circles"], json::array());
  EXPECT_EQ(told["changed"], json::array());
  EXPECT_EQ(ColorAt(picture("out.bmp"), 7, 9), ColorAt(picture("noise.bmp"), 7, 9));
  EXPECT_EQ(bytes("out.bmp").size(), bytes("noise.bmp").size());
  const Outcome outcome = run({"redeye", "noise.bmp", "--in-place"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.errors.find("noise.bmp: no red eyes"), std::string::npos) << outcome.errors;
}

}  // namespace
