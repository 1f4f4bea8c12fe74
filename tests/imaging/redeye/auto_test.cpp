// The automatic run against its plain reference on drawn faces, byte for byte; and that every
// decision was taken on the way.
#include <gtest/gtest.h>

#include "imaging/redeye/auto_red_eye.h"
#include "imaging/redeye/build_kind.h"
#include "imaging/redeye/faces.h"
#include "imaging/redeye/plain_auto.h"
#include "imaging/results.h"
#include "platform/fault_injection.h"

using namespace orvo;

namespace {

using faces::Picture;

// --- The whole run -------------------------------------------------------------------------------

int ExpectReference(const Picture& picture) {
  const plain::Image& image = picture.image;
  const std::uint8_t* const source = picture.bytes.data();
  std::vector<std::uint8_t> expected(picture.bytes.size());
  std::vector<std::uint8_t> got(expected.size());
  const int code = plain::AutoRedEye(source, expected.data(), image);
  EXPECT_EQ(ImgAutoRedEye(source, got.data(), image.width, image.height), code);
  EXPECT_EQ(plain::Difference(expected, got, image), "");

  expected = got = picture.bytes;
  const int again = plain::AutoRedEye(expected.data(), expected.data(), image);
  EXPECT_EQ(ImgAutoRedEye(got.data(), got.data(), image.width, image.height), again);
  EXPECT_EQ(plain::Difference(expected, got, image), "") << "in place";
  return code;
}

// One face of 200 x 260 with two eyes, all of it times `k`, as below.
Picture Portrait(int k) {
  Picture picture(250 * k, 300 * k, 3);
  picture.ellipse(125 * k, 150 * k, 100 * k, 130 * k, faces::kSkin, 8);
  for (const int x : {85, 165}) picture.eye(x * k, 190 * k, 9 * k);
  return picture;
}

// A tall pupil close to a side, whose box reaches beyond the region, and one in the region's upper
// corner outside the outline.
Picture AtTheEdges(int k, bool mirrored) {
  Picture picture(250 * k, 300 * k, 4);
  const auto at = [&](int x) { return mirrored ? picture.w() - 1 - x : x; };
  picture.ellipse(at(125 * k), 150 * k, 100 * k, 130 * k, faces::kSkin, 8);
  const int left = at(25 * k + 7);
  const int right = at(37 * k + 7);
  picture.ellipse(at(57 * k + 7), 150 * k, 14 * k, 10 * k, faces::kWhite, 8);
  picture.rectangle(std::min(left, right), 138 * k, std::max(left, right), 161 * k, faces::kRed);
  picture.eye(at(40 * k), 244 * k, 5 * k);
  return picture;
}

// A long strip of skin in two tones with a sound eye and, below it, a dull one that has much the
// same Cr as all that lies round it.
Picture Dull(int k) {
  Picture picture(250 * k, 260 * k, 7);
  picture.rectangle(20 * k, 20 * k, 59 * k, 219 * k, faces::kSkin);
  picture.rectangle(60 * k, 20 * k, 99 * k, 219 * k, faces::kDarkSkin);
  picture.rectangle(66 * k, 109 * k, 70 * k, 111 * k, faces::kWhite);
  picture.ellipse(60 * k, 110 * k, 4 * k, 4 * k, {166, 106, 144});
  picture.eye(60 * k, 160 * k, 3 * k);
  return picture;
}

// Twelve small patches of skin; ten are looked at.
Picture Patches(int k) {
  Picture picture(250 * k, 120 * k, 5);
  for (int i = 0; i < 12; ++i) {
    const int x = (5 + i % 6 * 40) * k;
    const int y = (5 + i / 6 * 60) * k;
    picture.rectangle(x, y, x + 30 * k, y + 50 * k, faces::kSkin, 5);
    for (const int eye : {9, 21}) picture.eye(x + eye * k, y + 30 * k, 1.2 * k);
  }
  return picture;
}

// A region full of white, and then a smaller one whose pupil has no white beside it, so close to
// the right side that the columns looked at reach beyond the region.
Picture WhiteBefore() {
  Picture picture(170, 290, 9);
  picture.fill({128, 128, 128});
  picture.rectangle(5, 5, 156, 106, faces::kSkin, 8);
  picture.rectangle(11, 11, 150, 100, faces::kWhite);
  picture.rectangle(10, 120, 129, 279, faces::kSkin, 8);
  picture.rectangle(96, 205, 124, 212, {90, 90, 90});
  picture.ellipse(110, 220, 5, 5, faces::kRed);
  return picture;
}

// A picture so long that a reduced pixel is wider than what lies between two pupils and the sides
// of their regions, and a third pupil is too small.
Picture Strip() {
  Picture picture(2600, 300, 6);
  for (const int x : {100, 700, 1300}) picture.rectangle(x, 10, x + 210, 270, faces::kSkin, 8);
  for (const int x : {109, 902}) {
    picture.ellipse(x, 180, 14, 14, faces::kWhite, 8);
    picture.rectangle(x - 3, 175, x + 3, 186, faces::kRed);
  }
  picture.eye(1400, 180, 4);
  return picture;
}

enum Where { kFull = 1, kReduced = 2, kBoth = 3 };

// Which decisions were not taken though they can be, without reduction or with it.
std::string Missing(std::initializer_list<const char*> names, Where where) {
  std::string missing;
  for (const char* const name : names) {
    const std::array<int, 2> counts = plain::decisions[name];
    if ((where & kFull) != 0 && counts[0] == 0) missing.append(name).append(" ");
    if ((where & kReduced) != 0 && counts[1] == 0) missing.append(name).append(", reduced ");
  }
  return missing;
}

TEST(AutoRedEye, EveryDecisionAsThePlainRun) {
  for (int seed = 0; seed < (kSanitized ? 30 : 300); ++seed) {
    SCOPED_TRACE(seed);
    const int side = seed % 4 == 3 ? 520 : 60;
    ExpectReference(
        faces::Crowd(side + seed * 37 % 300, side + seed * 53 % 200, static_cast<unsigned>(seed)));
  }
  for (const int k : {1, 3}) {
    SCOPED_TRACE(testing::Message() << "times " << k);
    EXPECT_EQ(ExpectReference(Portrait(k)), kImgDone);
    EXPECT_EQ(ExpectReference(Patches(k)), kImgDone);
    ExpectReference(Dull(k));
    for (const bool mirrored : {false, true}) ExpectReference(AtTheEdges(k, mirrored));
  }
  ExpectReference(Strip());
  EXPECT_EQ(ExpectReference(WhiteBefore()), kImgNotFound);
  Picture wide(511, 60, 1);
  wide.fill(faces::kSkin, 5);
  ExpectReference(wide);
  if (kSanitized) return;
  // A blob of an opened mask has five pixels or more, so none fails by its area alone.
  EXPECT_EQ(Missing({"region too narrow",
                     "region too low",
                     "eleventh region",
                     "thinned",
                     "outline cut at 19",
                     "seed like skin",
                     "near the edge",
                     "fills too little of its box",
                     "too wide",
                     "too tall",
                     "below the band",
                     "above the band",
                     "too large",
                     "radius 1",
                     "flat luma",
                     "flat Cb",
                     "flat Cr",
                     "no white beside it",
                     "box cut",
                     "candidate",
                     "fourth candidate",
                     "no candidate",
                     "one candidate",
                     "a pair",
                     "two that are no pair",
                     "three candidates",
                     "four candidates",
                     "no pair: one above the other",
                     "no pair: first twice as wide",
                     "no pair: second twice as wide",
                     "region wider than tall",
                     "region more than twice as tall",
                     "in the lower half",
                     "column without a mark",
                     "below the outline",
                     "above the outline",
                     "inside the outline"},
                    kBoth),
            "");
  EXPECT_EQ(Missing({"list full"}, kFull), "");
  EXPECT_EQ(Missing({"too small", "at the left", "at the right"}, kReduced), "");
}

TEST(AutoRedEye, OtherSizes) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {3, 40}, {511, 1}, {4, 2600}}) {
    Picture picture(width, height, 1);
    EXPECT_EQ(ExpectReference(picture), kImgNotFound);
    picture.fill(faces::kSkin);
    EXPECT_EQ(ExpectReference(picture), kImgNotFound);
  }
  for (unsigned seed = 40; seed < (kSanitized ? 41 : 44); ++seed) {
    ExpectReference(faces::Crowd(2600, 1800, seed));
  }
}

TEST(AutoRedEye, WithoutMemoryTheTargetIsACopy) {
  for (const int k : {1, 3}) {
    const Picture picture = Portrait(k);
    const std::size_t blocks = PlatformLiveBlocks();
    for (int n = 1;; ++n) {
      std::vector<std::uint8_t> same = picture.bytes;
      std::vector<std::uint8_t> apart(same.size());
      const auto run = [&](const std::uint8_t* source, std::uint8_t* target) {
        PlatformFailAllocation(n);
        const int code = ImgAutoRedEye(source, target, picture.image.width, picture.image.height);
        PlatformFailAllocation(0);
        EXPECT_EQ(PlatformLiveBlocks(), blocks);
        return code;
      };
      const int code = run(picture.bytes.data(), apart.data());
      EXPECT_EQ(run(same.data(), same.data()), code);
      EXPECT_TRUE(n > 3 || code != kImgDone) << "planes, a mask, a list";
      if (code == kImgDone) break;
      EXPECT_EQ(code, kImgNoMemory);
      EXPECT_TRUE(apart == picture.bytes && same == picture.bytes) << n;
    }
  }
}

}  // namespace
