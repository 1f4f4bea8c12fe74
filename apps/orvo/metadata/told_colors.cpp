#include "told_colors.h"

#include <algorithm>
#include <cmath>

#include "exif_block.h"
#include "made_profile.h"

namespace client {
namespace {

constexpr std::size_t kNumberBytes = 4;
constexpr double kNumberOne = 100000;

const PngChunk* Find(const Carried& carried, std::string_view type, std::size_t bytes) {
  const auto found = std::ranges::find(carried.chunks, type, &PngChunk::type);
  return found != carried.chunks.end() && found->data.size() >= bytes ? &*found : nullptr;
}

double NumberOf(const PngChunk& chunk, std::size_t index) {
  const View data = View(chunk.data).subspan(index * kNumberBytes);
  return static_cast<double>(NumberIn(data, kNumberBytes)) / kNumberOne;
}

// The power that turns light into numbers; 0 when it is not told.
double PowerOf(const Carried& carried) {
  const PngChunk* const told = Find(carried, "gAMA", kNumberBytes);
  return told != nullptr ? NumberOf(*told, 0) : 0;
}

Primaries PrimariesOf(const Carried& carried) {
  Primaries colors = kScreenPrimaries;
  const PngChunk* const told = Find(carried, "cHRM", colors.size() * kNumberBytes);
  for (std::size_t i = 0; told != nullptr && i < colors.size(); ++i) {
    colors.at(i) = NumberOf(*told, i);
  }
  return colors;
}

bool AreNear(double one, double other) {
  constexpr double kRounding = 0.0011;
  return std::abs(one - other) < kRounding;
}

}  // namespace

bool TellsSrgb(const Carried& carried) {
  constexpr double kNearestPower = 0.45455;  // to sRGB's curve
  return Find(carried, "sRGB", 0) != nullptr ||
         (AreNear(PowerOf(carried), kNearestPower) &&
          std::ranges::equal(PrimariesOf(carried), kScreenPrimaries, AreNear));
}

Bytes ProfileIn(const Carried& carried) {
  if (!carried.profile.empty()) return carried.profile;
  if (const PngChunk* const codes = Find(carried, "cICP", 2)) {
    return ProfileOfCodes(codes->data[0], codes->data[1]);
  }
  if (TellsSrgb(carried)) return {};
  if (const double power = PowerOf(carried); power > 0) {
    return ProfileOf(PrimariesOf(carried), 1 / power);
  }
  return TellsAdobeRgb(carried.exif) ? AdobeRgbProfile() : Bytes();
}

}  // namespace client
