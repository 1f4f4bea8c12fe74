// The table's entries for red-eye: what they write, and what they keep.
#include <orvo/raii.h>

#include "photograph.h"

namespace binding {
namespace {

class RedEyeEntries : public BindingTest {
 protected:
  const orvo::OwnedInstance toolkit;
  std::unique_ptr<CLeadTools> tools = Bind();
  const orvo::OwnedDib face = Photograph(*tools, 24);
  const orvo::OwnedDib empty = Photograph(*tools, 24, false);
};

TEST_F(RedEyeEntries, SearchAndReduction) {
  Numbers n;
  EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), kEyeX + 1, kEyeY, &n.x, &n.y, &n.radius),
            ORVO_OK);
  EXPECT_EQ(n, (Numbers{kEyeX, kEyeY, 4}));
  EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), 50, 60, &n.x, &n.y, &n.radius),
            ORVO_ERR_FAILURE);
  EXPECT_EQ(n, (Numbers{50, 60, 2}));
  EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), kWidth, 60, &n.x, &n.y, &n.radius),
            ORVO_ERR_FAILURE);
  EXPECT_EQ(n, (Numbers{kWidth, 60, 0}));

  orvo::OwnedDib made;
  EXPECT_EQ(toolkit->ReduceRedEye(face.get(), made.receive(face), kEyeX, kEyeY, 4), ORVO_OK);
  ASSERT_TRUE(made);
  EXPECT_NE(pictures::Difference(face.get(), made.get()), "");
  EXPECT_EQ(toolkit->ReduceRedEyeInPlace(face.get(), kEyeX, kEyeY, 4), ORVO_OK);
  EXPECT_EQ(pictures::Difference(face.get(), made.get()), "");
}

TEST_F(RedEyeEntries, AutomaticKeepsAResultOnlyWhenSomethingWasFound) {
  orvo::OwnedDib made;
  int found = 0;
  EXPECT_EQ(toolkit->AutoRedEye(face.get(), made.receive(face), &found), ORVO_OK);
  EXPECT_EQ(found, 1);
  ASSERT_TRUE(made);
  EXPECT_EQ(toolkit->AutoRedEyeInPlace(face.get(), &found), ORVO_OK);
  EXPECT_EQ(pictures::Difference(face.get(), made.get()), "");

  const orvo::OwnedDib before = pictures::CopyOf(empty.get());
  DibHandle result = empty.get();
  for (DibHandle old : {static_cast<DibHandle>(nullptr), made.get(), empty.get()}) {
    result = old;
    found = 9;
    EXPECT_EQ(toolkit->AutoRedEye(empty.get(), &result, &found), ORVO_ERR_FAILURE);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(result, nullptr);
  }
  EXPECT_NE(GlobalSize(made.get()), 0U);
  found = 9;
  EXPECT_EQ(toolkit->AutoRedEyeInPlace(empty.get(), &found), ORVO_ERR_FAILURE);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(pictures::Difference(before.get(), empty.get()), "");
}

// The flag is the caller's then, and with it what becomes of the result.
TEST_F(RedEyeEntries, AutomaticAfterAnEarlyFailure) {
  const orvo::OwnedDib gray = pictures::Noise(20, 10, 8, 1);
  for (const int preset : {0, 1}) {
    orvo::OwnedDib old = pictures::Noise(7, 5, 24, 1);
    int found = preset;
    DibHandle result = preset == 0 ? old.release() : old.get();
    EXPECT_EQ(toolkit->AutoRedEye(nullptr, &result, &found), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(result, preset == 0 ? nullptr : old.get());
    EXPECT_EQ(toolkit->AutoRedEye(gray.get(), &result, &found), ORVO_ERR_BAD_DEPTH);
    EXPECT_EQ(result, preset == 0 ? nullptr : gray.get());
    EXPECT_EQ(found, preset);
  }
}

TEST_F(RedEyeEntries, NullPointersAreRefused) {
  Numbers n;
  DibHandle result = nullptr;
  EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), 1, 1, &n.x, nullptr, &n.radius),
            ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ReduceRedEye(face.get(), nullptr, 1, 1, 1), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoRedEye(face.get(), &result, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoRedEye(face.get(), nullptr, &n.found), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoRedEyeInPlace(face.get(), nullptr), ORVO_ERR_BAD_ARGUMENT);
}

}  // namespace
}  // namespace binding
