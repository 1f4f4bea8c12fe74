#include "source_colors.h"

#include <algorithm>

#include "color_transform.h"
#include "file_kind.h"
#include "icc_profile.h"
#include "messages.h"
#include "metadata.h"
#include "picture_colors.h"

namespace client {
namespace {

bool HoldsProfile(std::string_view kind) {
  constexpr std::string_view kKinds[] = {"jpeg", "png", "tiff", "psd", "webp", "pdf"};
  return std::ranges::find(kKinds, kind) != std::end(kKinds);
}

bool IsGray(const std::optional<Shape>& shape) {
  return shape && shape->colors == "gray";
}

// What files of a kind hold a picture as: "GRAY" or "RGB", as profiles spell it.
std::string_view ColorsIn(std::string_view kind, const std::optional<Shape>& picture) {
  return IsGray(picture) && kind != "webp" ? "GRAY" : "RGB";
}

// The profile, if it explains the picture and says something else than sRGB. Inks were mixed when
// they were loaded.
Bytes OtherProfile(const Job& job) {
  if (job.inSrgb) return {};
  Bytes profile = ReadColorProfile(job.file(), job.pageInFile(), job.placeInFile());
  const std::string colors = ColorsOfProfile(profile);
  const bool fits = colors == "GRAY" || (colors == "RGB" && !IsGray(ShapeOf(job.image.get())));
  if (!fits || SaysSrgb(profile)) return {};
  return profile;
}

// The same, if the target cannot keep it.
Bytes ProfileThatGoes(const Job& job) {
  const std::string kind = KindOfName(job.target);
  const Parameters& given = job.parameters;
  const bool keeps = HoldsProfile(kind) && !(given.has("strip") && given.text("strip") == "all");
  Bytes profile = OtherProfile(job);
  if (keeps && ColorsOfProfile(profile) == ColorsIn(kind, ShapeOf(job.image.get()))) return {};
  return profile;
}

void Bring(Job& job, const Bytes& profile) {
  job.inSrgb = BringToSrgb(job.image.get(), profile);
  if (!job.inSrgb)
    TellWarning(job.source, "its color profile is damaged, its colors stay as they are");
}

}  // namespace

void TakeInksByProfile(Job& job) {
  const std::string kind = KindOfFile(job.file());
  if (kind != "jpeg" && kind != "tiff" && kind != "psd") return;
  const Bytes profile = ReadColorProfile(job.file(), job.pageInFile(), job.placeInFile());
  if (ColorsOfProfile(profile) != "CMYK") return;
  if (orvo::OwnedDib mixed = LoadedFromInks(job.file(), job.pageInFile(), profile); mixed) {
    job.image = std::move(mixed);
    job.inSrgb = true;
  }
}

void BringToSrgb(Job& job) {
  if (const Bytes profile = OtherProfile(job); !profile.empty()) Bring(job, profile);
}

void BringToSrgbBeforeGray(Job& job) {
  if (!IsGray(ShapeOf(job.image.get()))) BringToSrgb(job);
}

bool NeedsSrgb(const Job& job) {
  return !ProfileThatGoes(job).empty();
}

void BringToSrgbIfNeeded(Job& job) {
  if (const Bytes profile = ProfileThatGoes(job); !profile.empty()) Bring(job, profile);
}

std::vector<std::uint8_t> OtherColorsOf(const Job& job) {
  Bytes profile = OtherProfile(job);
  return ColorsOfProfile(profile) == "RGB" ? profile : Bytes();
}

}  // namespace client
