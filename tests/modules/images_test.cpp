// Every operation on images at all depths, of many sizes and with many arguments, wrong ones
// included: codes, progress and result bytes, held by a check sum for each operation. They are
// exact, so a sum that differs tells of a change that callers see.
#include <limits>

#include "modules/fixture.h"

namespace {

using pictures::CopyOf;
using pictures::Difference;
using rig::Do;
using rig::ModuleTest;
using rig::Operation;
using rig::OwnedDib;

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();

struct Row {
  std::string name;
  std::uint64_t sum;
  std::vector<Operation> operations;
};

// An entry with one argument after the other.
template <class Entry, class Argument>
std::vector<Operation> Each(Entry entry, std::initializer_list<Argument> arguments) {
  std::vector<Operation> all;
  for (const Argument argument : arguments) all.push_back(Do(entry, argument));
  return all;
}
// One operation behind another.
Operation Then(const Operation& first, const Operation& second) {
  return [=](auto* bitmap) { return first(bitmap) == kModuleSuccess ? second(bitmap) : -1; };
}

std::vector<Operation> Depths() {
  std::vector<Operation> all;
  for (const int bits : {1, 4, 8, 16, 24, 32, -1, 0, 2, 15, 64}) {
    for (unsigned dithering = 0; dithering <= 9; ++dithering) {
      for (const unsigned flags : {0U, 1U}) all.push_back(rig::ToDepth(bits, dithering, flags));
    }
  }
  for (int i = 0; i < 4; ++i) {  // colours of the caller's own are not taken
    all.emplace_back([=](auto* bitmap) {
      const auto given = [=](int place) -> void* { return place == i ? bitmap : nullptr; };
      return L_ColorResBitmap(bitmap, bitmap, 8, 0, given(0), given(1), given(2), given(3),
                              nullptr);
    });
  }
  // Smooth, so that far more colours than the palette has lie close to each other.
  const Operation smooth = Then(rig::ToDepth(24), Do(L_SizeBitmap, 100, 60, kSizeBest));
  for (const int bits : {4, 8}) all.push_back(Then(smooth, rig::ToDepth(bits, 1)));
  for (const int bits : {16, 24, 32}) {  // and back, and through grays
    all.push_back(Then(rig::ToDepth(bits), rig::ToDepth(8, 7)));
    all.push_back(Then(Do(L_GrayScaleBitmap, 8), Then(rig::ToDepth(bits), rig::ToDepth(8, 1))));
  }
  return all;
}
std::vector<Operation> Turns() {
  std::vector<Operation> all;
  for (const int angle :
       {0, 9000, 18000, 27000, -9000 - 360000000, 1, 700, 4507, 13333, -700, kLeast, kMost}) {
    for (const unsigned flags : {0U, unsigned{kRotateGrows}}) {
      for (const unsigned ground : {0xFF8001U, 0x808080U}) {
        all.push_back(Do(L_RotateBitmap, angle, flags, ground));
      }
    }
  }
  return all;
}
std::vector<Operation> Sizes() {
  constexpr int kSizes[][2] = {{19, 14}, {7, 5},  {19, 3}, {40, 9}, {50, 31}, {1, 1},
                               {1, 40},  {66, 1}, {0, 8},  {8, 0},  {-5, 8},  {kMost, kMost}};
  std::vector<Operation> all;
  for (const auto& [width, height] : kSizes) {
    for (const unsigned flags : {kSizeNearest, kSizeBilinear, kSizeBest}) {
      all.push_back(Do(L_SizeBitmap, width, height, flags));
    }
  }
  return all;
}
std::vector<Operation> Cuts() {
  constexpr int kRectangles[][4] = {
      {0, 0, 1, 1},  {0, 0, 6, 1},  {1, 2, 11, 3}, {3, 0, 30, 21}, {8, 1, 25, 9},
      {32, 0, 1, 2}, {-1, 0, 5, 5}, {0, -1, 5, 5}, {0, 0, 0, 1},   {0, 0, 1, 0},
      {4, 0, 1, 1},  {0, 4, 1, 1},  {0, 0, 5, 4},  {0, 0, 4, 5},   {1, 1, kMost, kMost}};
  std::vector<Operation> all;
  for (const auto& row : kRectangles) {
    all.push_back(Do(L_TrimBitmap, row[0], row[1], row[2], row[3]));
  }
  return all;
}
std::vector<Operation> Remaps() {
  static const std::array<unsigned, 257> table = [] {
    std::array<unsigned, 257> made{};
    for (unsigned i = 0; i < 257; ++i) made[i] = i * 7 % 301;  // some lie beyond 255
    return made;
  }();
  const unsigned* const none = nullptr;
  std::vector<Operation> all{Do(L_RemapBitmapIntensity, none, 256U, 0),
                             Do(L_RemapBitmapIntensity, table.data(), 255U, 0),
                             Do(L_RemapBitmapIntensity, table.data(), 257U, 0)};
  for (int channel = -1; channel <= 4; ++channel) {
    all.push_back(Do(L_RemapBitmapIntensity, table.data(), 256U, channel));
  }
  return all;
}

std::vector<Row> Rows() {
  const auto changes = {-1001, -1000, -600, -333, 0, 1, 200, 700, 1000, 1001, kLeast};
  return {{"depth", 0xA7A765CDF713A31E, Depths()},
          {"gray", 0xC08996B791491EDF, Each(L_GrayScaleBitmap, {8, 4, 0})},
          {"turn", 0x83096E8DD01FCC07, Turns()},
          {"size", 0xBEF8608AD890C03B, Sizes()},
          {"cut", 0x6C0CEA4032A2F49F, Cuts()},
          {"contrast", 0xCFDF7647AA60D98F, Each(L_ChangeBitmapContrast, changes)},
          {"intensity", 0x3B30DC9E84F5FD9E, Each(L_ChangeBitmapIntensity, changes)},
          {"saturation", 0x4E3079E898F10445, Each(L_ChangeBitmapSaturation, changes)},
          {"sharpness", 0x89A9AEB95FBC3A08, Each(L_SharpenBitmap, changes)},
          {"hue", 0x144083C4CDF156F3,
           Each(L_ChangeBitmapHue, {0, 1234, -7777, 12000, -36000, kMost, kLeast})},
          {"gamma", 0xFF2F0D5D85A290B8,
           Each(L_GammaCorrectBitmap, {0U, 1U, 45U, 100U, 200U, 4294967295U})},
          {"invert", 0x32F61C384A97BE95, {L_InvertBitmap}},
          {"remap", 0xEF6584A92394311C, Remaps()}};
}

TEST_F(ModuleTest, images_change_to_the_last_bit) {
  constexpr int kSizes[][2] = {{1, 1}, {1, 5}, {6, 1}, {4, 4}, {16, 16}, {33, 21}, {70, 41}};
  for (const Row& row : Rows()) {
    rig::Sum sum;
    for (const rig::Kind kind : rig::kKinds) {
      for (const auto& [width, height] : kSizes) {
        const OwnedDib source = rig::Picture(kind, width, height);
        rig::Locked(source.get()).header()->biYPelsPerMeter = 5001;
        // The first of equal colours is found, and an index that stands for one of them stays.
        if (kind.inColors()) rig::Locked(source.get()).palette()[1] = {9, 8, 7, 6};
        if (kind.inColors())
          rig::Locked(source.get()).palette()[(1 << kind.depth) - 1] = {9, 8, 7, 6};
        for (const Operation& operation : row.operations) {
          OwnedDib got = CopyOf(source.get());
          const rig::Watch watch;
          const int code = rig::Apply(operation, got);
          ASSERT_TRUE(code == kModuleSuccess || Difference(source.get(), got.get()).empty());
          sum.add(code);
          sum.add(pictures::BytesOf(got.get()));
          for (const int percent : watch.seen()) sum.add(percent);
        }
      }
    }
    sum.expect(row.sum, row.name);
  }
}

TEST_F(ModuleTest, images_change_alike_when_nobody_watches) {
  const OwnedDib source = rig::Picture({24, false}, 16, 16);
  for (const Row& row : Rows()) {
    for (const Operation& operation : row.operations) {
      OwnedDib got = CopyOf(source.get());
      OwnedDib watched = CopyOf(source.get());
      const int code = rig::Apply(operation, got);
      const rig::Watch watch;
      ASSERT_EQ(rig::Apply(operation, watched), code);
      ASSERT_EQ(Difference(got.get(), watched.get()), "") << row.name;
    }
  }
}

}  // namespace
