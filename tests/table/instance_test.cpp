// What an instance does without any module beside it.
#include <gtest/gtest.h>

#include <orvo/raii.h>

#include "support/pictures.h"

namespace {

TEST(Instance, OwnWorkNeedsNoModule) {
  const orvo::OwnedInstance toolkit;
  const orvo::OwnedDib photo = pictures::Noise(20, 10, 24, 1);
  orvo::OwnedDib sharp;
  EXPECT_EQ(toolkit->SharpnessAdjust(photo.get(), sharp.receive(photo), 10), ORVO_OK);
  EXPECT_NE(pictures::Difference(photo.get(), sharp.get()), "");
  const orvo::OwnedDib same = pictures::CopyOf(photo.get());
  EXPECT_EQ(toolkit->SharpnessAdjustInPlace(same.get(), 10), ORVO_OK);
  EXPECT_EQ(pictures::Difference(sharp.get(), same.get()), "");

  DibHandle result = nullptr;
  EXPECT_EQ(toolkit->ContrastAdjust(photo.get(), &result, 1, nullptr), ORVO_ERR_NO_VENDOR);
  const orvo::OwnedDib deep = pictures::Noise(20, 10, 16, 1);
  EXPECT_EQ(toolkit->SharpnessAdjust(deep.get(), &result, 5), ORVO_ERR_BAD_DEPTH);
  EXPECT_EQ(result, deep.get());
  const orvo::OwnedDib gray = pictures::Noise(20, 10, 8, 1);
  EXPECT_EQ(toolkit->SharpnessAdjust(gray.get(), &result, 5), ORVO_ERR_BAD_DEPTH);
  EXPECT_EQ(result, gray.get());

  LTVERSIONINFO module{};
  ORVOVERSIONINFO version{"", &module};
  EXPECT_EQ(toolkit->GetVersion(&version), ORVO_ERR_NO_VENDOR);
  EXPECT_STREQ(version.version, "1.0");
}

TEST(Instance, NullPointersAreRefused) {
  const orvo::OwnedInstance toolkit;
  const orvo::OwnedDib photo = pictures::Noise(20, 10, 24, 1);
  EXPECT_EQ(toolkit->Invert(photo.get(), nullptr, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->InvertInPlace(nullptr, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->SharpnessAdjust(photo.get(), nullptr, 5), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->WhitenessAdjust(photo.get(), nullptr, 5), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ConvertRGB(photo.get(), nullptr, "x"), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->GetVersion(nullptr), ORVO_ERR_BAD_ARGUMENT);
}

}  // namespace
