// One operation of the table on a made-up block, without vector instructions and with them: code,
// block and result are the same.
#include <orvo/raii.h>

#include "fuzz.h"
#include "platform/vector_level.h"
#include "recipe.h"
#include "stress/every_operation.h"

namespace {

constexpr std::uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};
// Pixels per metre: of fewer, a changed resolution makes gigabytes. So does a turned line that is
// longer than these pixels.
constexpr std::int32_t kLeastResolution = 1000;
constexpr std::int32_t kMostSide = 512;

// Measures that the block can hold, so that operations get to work.
void MakeSound(BITMAPINFOHEADER& header, std::size_t blockBytes) {
  const std::size_t bytes = blockBytes - orvo::kDibHeaderBytes;
  if (!orvo::IsDibDepth(header.biBitCount)) header.biBitCount = kDepths[header.biBitCount % 6U];
  if (orvo::DibPaletteBytes(header.biBitCount) >= bytes) header.biBitCount = 24;
  const std::size_t rows = bytes - orvo::DibPaletteBytes(header.biBitCount);
  const auto widest = static_cast<std::uint32_t>(rows * 8 / header.biBitCount);
  header.biWidth = static_cast<int>((static_cast<std::uint32_t>(header.biWidth) - 1) % widest) + 1;
  const std::uint64_t stride =
      orvo::DibStride(static_cast<std::uint64_t>(header.biWidth), header.biBitCount);
  header.biHeight = static_cast<int>(std::max<std::size_t>(rows / stride, 1));
}

std::vector<std::uint8_t> BlockOf(fuzz::Bytes bytes, bool isSound) {
  std::vector<std::uint8_t> block(bytes.begin(), bytes.end());
  if (isSound) block.resize(std::max(block.size(), orvo::kDibHeaderBytes + 16));
  if (block.size() < orvo::kDibHeaderBytes) return block;
  BITMAPINFOHEADER header = orvo::DibHeaderOf(block.data());
  header.biXPelsPerMeter = std::max(header.biXPelsPerMeter, kLeastResolution);
  header.biYPelsPerMeter = std::max(header.biYPelsPerMeter, kLeastResolution);
  if (isSound) MakeSound(header, block.size());
  std::memcpy(block.data(), &header, sizeof header);
  if (orvo::DibLayoutOf(block.data(), block.size())) {
    header.biWidth = std::min(header.biWidth, kMostSide);
    header.biHeight = std::min(header.biHeight, kMostSide);
    std::memcpy(block.data(), &header, sizeof header);
  }
  return block;
}

std::vector<std::uint8_t> BytesOf(DibHandle handle) {
  const orvo::BlockLock lock(handle);
  if (!lock) return {};
  return {lock.bytes(), lock.bytes() + lock.size()};
}

struct Outcome {
  int code = 0;
  std::vector<std::uint8_t> image, result;
  std::vector<int> figures;
  bool operator==(const Outcome&) const = default;
};

// All that can be measured, which calls of one shape do not tell.
std::vector<int> FiguresOf(DibHandle image, const std::array<int, 4>& numbers) {
  COrvoInstance& toolkit = fuzz::Toolkit();
  RECT kept{};
  toolkit.GetAutoTrimRect(image, static_cast<std::uint8_t>(numbers[0]), &kept);
  std::uint32_t x = 0, y = 0, radius = 0;
  const auto at = [&](std::size_t i) { return static_cast<std::uint32_t>(numbers.at(i)); };
  toolkit.SearchRedEyeRegion(image, at(0), at(1), &x, &y, &radius);
  std::vector<int> figures{kept.left,
                           kept.top,
                           kept.right,
                           kept.bottom,
                           static_cast<int>(x),
                           static_cast<int>(y),
                           static_cast<int>(radius)};
  RegionRecord* list = nullptr;
  int count = 0;
  toolkit.FindRegions(image, &list, &count, numbers[0], numbers[1]);
  for (int i = 0; i < count; ++i) {
    figures.insert(figures.end(), {list[i].left, list[i].top, list[i].right, list[i].bottom});
  }
  if (list != nullptr) GlobalFree(list);
  return figures;
}

// Each number of the range, and one beyond either end.
int NumberOf(const stress::Number& number, unsigned madeUp) {
  return number.low - 1 +
         static_cast<int>(madeUp % static_cast<unsigned>(number.high - number.low + 3));
}

Outcome OutcomeAt(int level, const fuzz::Recipe& recipe, fuzz::Bytes bytes) {
  COrvoInstance& toolkit = fuzz::Toolkit();
  const auto operations = stress::EveryOperation();
  const stress::Operation& operation = operations[recipe.operation % operations.size()];
  const std::string& kind = fuzz::Kinds()[recipe.kind % fuzz::Kinds().size()];
  const fuzz::File source("source.bmp", bytes);
  const fuzz::File target("target." + kind);

  PlatformVectorLevel = level;
  toolkit.SetDitheringMode(recipe.dithering % 10);
  const std::vector<std::uint8_t> block = BlockOf(bytes, (recipe.choices & fuzz::kAsItComes) == 0);
  orvo::OwnedDib image(GlobalAlloc(orvo::kDibBlockFlags, block.size()));
  if (const orvo::BlockLock lock(image.get()); lock) std::ranges::copy(block, lock.bytes());
  orvo::OwnedDib result;
  stress::Call call{toolkit, image.address(), result.receive(image.get()),
                    {},      source.path(),   target.path()};
  for (std::size_t i = 0; i < call.numbers.size(); ++i) {
    call.numbers.at(i) = NumberOf(operation.numbers.at(i), recipe.numbers[i]);
  }
  const int code = operation.call(call);
  std::vector<int> figures;
  if (operation.form == stress::Form::kMeasure) figures = FiguresOf(image.get(), call.numbers);
  return {code, BytesOf(image.get()), BytesOf(result.get()), std::move(figures)};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int highest = PlatformVectorLevel;
  fuzz::Recipe recipe;
  if (size <= sizeof recipe) return -1;
  std::memcpy(&recipe, data, sizeof recipe);
  const fuzz::Accounts accounts;
  const fuzz::Bytes block(data + sizeof recipe, size - sizeof recipe);
  const Outcome plain = OutcomeAt(1, recipe, block);
  const int level = (recipe.choices & fuzz::kMiddleLevel) != 0 ? std::min(3, highest) : highest;
  fuzz::Require(OutcomeAt(level, recipe, block) == plain,
                stress::EveryOperation()[recipe.operation % 60U].name +
                    std::string(" differs at level ") + std::to_string(level));
  return 0;
}
