// One operation of the table on a block of made-up bytes, whatever its header says. Whatever comes
// of it, no lock is held afterwards and every block can be accounted for.
#include <cstdlib>
#include <cstring>
#include <iterator>

#include <orvo/orvo.h>

#include "platform/fault_injection.h"

namespace {

// What the bytes are taken for: the operation with its parameters, then the block. The header is
// made sound, so that operations get to work, unless its bytes are to be taken as they come.
struct Recipe {
  std::uint8_t operation;
  std::uint8_t inPlace;
  std::uint8_t first;
  std::uint8_t second;
  std::uint8_t third;
  std::uint8_t width;
  std::uint8_t height;
  std::uint8_t depth;
};

constexpr std::uint8_t kAsTheyCome = 255;  // for a depth

orvo::OwnedDib Block(const Recipe& recipe, const std::uint8_t* bytes, std::size_t size) {
  constexpr int kDepths[] = {1, 4, 8, 16, 24, 24, 24, 32};
  const int depth = kDepths[recipe.depth % std::size(kDepths)];
  const auto layout = orvo::DibLayoutFor(1 + recipe.width, 1 + recipe.height, depth);
  const bool raw = recipe.depth == kAsTheyCome;
  const std::size_t total = raw ? size : layout->totalBytes;
  orvo::OwnedDib block(GlobalAlloc(orvo::kDibBlockFlags, total));
  auto* const target = static_cast<std::uint8_t*>(GlobalLock(block.get()));
  if (target == nullptr) return block;
  for (std::size_t i = 0; i < total && size > 0; ++i) target[i] = bytes[i % size];
  if (!raw) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = layout->width;
    header.biHeight = layout->height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<std::uint16_t>(depth);
    // Not so few that a changed resolution asks for gigabytes.
    header.biXPelsPerMeter = header.biYPelsPerMeter = 1000 + 16 * recipe.third;
    std::memcpy(target, &header, sizeof header);
  }
  GlobalUnlock(block.get());
  return block;
}

using Operation = void (*)(COrvoInstance& toolkit, DibHandle source, DibHandle* result,
                           const Recipe& recipe);

// Those of the toolkit itself, which keep the source's handle in place, stand first.
constexpr std::size_t kOwnOperations = 8;
constexpr Operation kOperations[] = {
    [](COrvoInstance& t, DibHandle s, DibHandle*, const Recipe& r) {
      std::uint32_t x = 0;
      std::uint32_t y = 0;
      std::uint32_t radius = 0;
      t.SearchRedEyeRegion(s, r.first, r.second, &x, &y, &radius);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.ReduceRedEye(s, d, r.first, r.second, r.third);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe&) {
      int found = 0;
      t.AutoRedEye(s, d, &found);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.SharpnessAdjust(s, d, r.first);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.HistogramAdjust(s, d, r.first);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.ExposureAdjust(s, d, r.first);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.WhitenessAdjust(s, d, r.first);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.Descreen(s, d, r.first % 5, r.second, nullptr);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) { t.AutoTrim(s, d, r.first); },
    [](COrvoInstance& t, DibHandle s, DibHandle*, const Recipe& r) {
      RegionRecord* list = nullptr;
      int count = 0;
      t.FindRegions(s, &list, &count, r.first, r.second);
      if (list != nullptr) GlobalFree(list);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe&) {
      int angle = 0;
      t.AutoDeskew(s, d, &angle, nullptr);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.ConvertToColorRes(s, d, r.first);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.Rotate(s, d, r.first + 256 * r.second, nullptr);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.ChangeSize(s, d, r.first, r.second, r.third % 6, nullptr);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.Trim(s, d, r.first - 8, r.second - 8, r.third, r.width);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.ChangeResolution(s, d, r.first, r.second, nullptr);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe&) {
      t.ConvertToGrayScaleRes(s, d, nullptr);
    },
    [](COrvoInstance& t, DibHandle s, DibHandle* d, const Recipe& r) {
      t.LeadSharpnessAdjust(s, d, 8 * (r.first - 128), nullptr);
    },
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static COrvoInstance* const toolkit = CreateORVOInstance();
  Recipe recipe{};
  if (size <= sizeof recipe) return -1;
  std::memcpy(&recipe, data, sizeof recipe);
  const std::size_t blocks = PlatformLiveBlocks();
  {
    orvo::OwnedDib source = Block(recipe, data + sizeof recipe, size - sizeof recipe);
    if (!source) return -1;
    const std::size_t operation = recipe.operation % std::size(kOperations);
    const bool inPlace = recipe.inPlace % 2 != 0 && operation < kOwnOperations;
    DibHandle result = inPlace ? source.get() : nullptr;
    kOperations[operation](*toolkit, source.get(), &result, recipe);
    if (result != nullptr && result != source.get()) GlobalFree(result);
  }
  if (PlatformHeldLocks() != 0 || PlatformLiveBlocks() != blocks) std::abort();
  return 0;
}
