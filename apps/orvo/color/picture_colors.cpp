#include "picture_colors.h"

#include <algorithm>
#include <array>

#include "color_transform.h"
#include "common/dib_image.h"

namespace client {
namespace {

using Profile = std::span<const std::uint8_t>;
using Tones = std::array<std::uint8_t, 256>;

constexpr std::size_t kColorBytes = 3;  // of a pixel or a palette's entry, which may have a fourth

// Each tone on its own.
void MapTones(const Tones& tones, std::uint8_t* bytes, std::size_t count) {
  std::transform(bytes, bytes + count, bytes, [&](std::uint8_t tone) { return tones[tone]; });
}
void MapColors(const Tones& tones, std::uint8_t* pixels, std::size_t count, std::size_t step) {
  for (; count > 0; --count, pixels += step) MapTones(tones, pixels, kColorBytes);
}

void BringTones(const ColorTransform& transform, const modules::Pixels& picture) {
  Tones tones{};
  for (std::size_t i = 0; i < tones.size(); ++i) tones.at(i) = static_cast<std::uint8_t>(i);
  transform.run(tones.data(), tones.data(), tones.size());
  const auto width = static_cast<std::size_t>(picture.width);
  if (picture.palette != nullptr && !modules::BytesAreTones(picture)) {
    return MapColors(tones, reinterpret_cast<std::uint8_t*>(picture.palette),
                     static_cast<std::size_t>(picture.paletteSize()), sizeof(RGBQUAD));
  }
  for (int y = 0; y < picture.height; ++y) {
    if (picture.palette != nullptr) {
      MapTones(tones, picture.row(y), width);
    } else {
      MapColors(tones, picture.row(y), width, static_cast<std::size_t>(picture.depth) / 8);
    }
  }
}

void BringColors(const ColorTransform& transform, const modules::Pixels& picture) {
  if (picture.palette != nullptr) {
    auto* const palette = reinterpret_cast<std::uint8_t*>(picture.palette);
    return transform.run(palette, palette, static_cast<std::size_t>(picture.paletteSize()));
  }
  for (int y = 0; y < picture.height; ++y) {
    transform.run(picture.row(y), picture.row(y), static_cast<std::size_t>(picture.width));
  }
}

}  // namespace

bool BringToSrgb(DibHandle picture, Profile profile) {
  constexpr int kBits555 = 16;
  const modules::LockedDib image(picture);
  if (!image || image->depth == kBits555) return false;
  if (const auto tones = ColorTransform::ToSrgb(profile, PixelForm::kTone)) {
    BringTones(tones, *image);
    return true;
  }
  const auto colors =
      ColorTransform::ToSrgb(profile, image->depth == 24 ? PixelForm::kBgr : PixelForm::kBgra);
  if (colors) BringColors(colors, *image);
  return static_cast<bool>(colors);
}

bool BringChangesBack(DibHandle before, DibHandle after, Profile profile, DibHandle picture) {
  const modules::LockedDib was(before);
  const modules::LockedDib is(after);
  const modules::LockedDib target(picture);
  const auto back = ColorTransform::FromSrgb(profile);
  if (!was || !is || !target || !back) return false;
  const auto step = static_cast<std::size_t>(target->depth) / 8;
  for (int y = 0; y < target->height; ++y) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(target->width); ++x) {
      const std::uint8_t* const color = is->row(y) + x * step;
      if (std::equal(color, color + kColorBytes, was->row(y) + x * step)) continue;
      back.run(color, target->row(y) + x * step, 1);
    }
  }
  return true;
}

}  // namespace client
