// Change of depth.
//
// To 16 bits and above each colour goes over by itself; nothing is dithered there, so that 16 bits
// survive the way through 24. To 4 and 8 bits a palette is chosen: the image's own best one, or a
// fixed one for all images. 1 bit is black and white, after the image's brightness.
#include <atomic>
#include <cstring>
#include <vector>

#include "common/color_rows.h"
#include "common/guard.h"
#include "common/kernel_services.h"
#include "ltkrn13n/dithering.h"
#include "ltkrn13n/optimised_palette.h"
#include "ltkrn13n/redrawing.h"

namespace {

using modules::ChosenPalette;
using modules::Color;
using modules::DitheringMode;
using modules::ForEachRow;
using modules::Pixels;
using modules::Redrawing;

std::atomic<unsigned> defaultDithering = 0;

// Black to light gray, and the pure colours at half and full strength.
std::vector<Color> SixteenColors() {
  std::vector<Color> colors;
  for (unsigned i = 0; i < 16; ++i) {
    const auto strength = static_cast<std::uint8_t>(i < 8 ? 128 : 255);
    const auto channel = [&](unsigned bit) { return (i & bit) != 0 ? strength : std::uint8_t{0}; };
    colors.push_back({channel(4), channel(2), channel(1)});
  }
  constexpr std::uint8_t kLightGray = 192;
  colors[8] = colors[7];
  colors[7] = modules::GrayOf(kLightGray);
  return colors;
}

// A cube of six levels a channel, and grays between its own.
std::vector<Color> ColorCube() {
  constexpr int kLevels = 6;
  constexpr int kStep = 255 / (kLevels - 1);
  constexpr int kGrays = 256 - kLevels * kLevels * kLevels;
  std::vector<Color> colors;
  colors.reserve(256);
  for (int i = 0; i < kLevels * kLevels * kLevels; ++i) {
    colors.push_back({modules::ClampedTone(i % kLevels * kStep),
                      modules::ClampedTone(i / kLevels % kLevels * kStep),
                      modules::ClampedTone(i / kLevels / kLevels * kStep)});
  }
  for (int i = 1; i <= kGrays; ++i) {
    colors.push_back(modules::GrayOf(modules::ClampedTone(i * 255 / (kGrays + 1))));
  }
  return colors;
}

std::vector<Color> FixedPalette(int bits) {
  if (bits == 1) return {modules::GrayOf(0), modules::GrayOf(255)};
  return bits == 4 ? SixteenColors() : ColorCube();
}

// The new pixels' colours at 16 bits and above.
void DrawColors(const Redrawing& drawing) {
  std::vector<Color> colors(static_cast<std::size_t>(drawing.source().width));
  ForEachRow(drawing.source().height, [&](int y) {
    const Color* const row = modules::RowOfColors(drawing.source(), y, colors.data());
    modules::WriteColors(drawing.target(), y, row);
  });
}

// Draws the image in the colours of a palette; `progress` goes on with stage `stage`.
void DrawIndexes(const Redrawing& drawing, const std::vector<Color>& palette, DitheringMode mode,
                 modules::Progress& progress, int stage) {
  const Pixels& source = drawing.source();
  const Pixels& target = drawing.target();
  for (std::size_t i = 0; i < palette.size(); ++i) target.palette[i] = modules::EntryOf(palette[i]);
  std::vector<Color> colors(static_cast<std::size_t>(source.width));
  std::vector<std::uint8_t> indexes(colors.size());
  const auto ditherer = modules::MakeDitherer(mode, palette, colors.size());
  ForEachRow(
      source.height,
      [&](int y) {
        modules::ReadColors(source, y, colors.data());
        if (target.depth == 1) {
          for (Color& color : colors) color = modules::GrayOf(modules::LumaOf(color));
        }
        ditherer->nextRow(colors, indexes.data());
        modules::WriteIndexes(target, y, indexes.data());
      },
      progress, stage);
}

void DrawInFixedPalette(const Redrawing& drawing, DitheringMode mode) {
  modules::Progress progress(static_cast<std::uint64_t>(drawing.source().height));
  DrawIndexes(drawing, FixedPalette(drawing.target().depth), mode, progress, 0);
}

// Reads the image twice: once to choose the palette, once to draw.
void DrawInOptimisedPalette(const Redrawing& drawing, DitheringMode mode) {
  const Pixels& source = drawing.source();
  modules::Progress progress(2 * static_cast<std::uint64_t>(source.height));
  modules::ColorHistogram histogram;
  std::vector<Color> colors(static_cast<std::size_t>(source.width));
  ForEachRow(
      source.height,
      [&](int y) { histogram.add(modules::RowOfColors(source, y, colors.data()), colors.size()); },
      progress);
  const auto most = static_cast<std::size_t>(drawing.target().paletteSize());
  const ChosenPalette palette = modules::OptimisedPalette(histogram, most);
  // A matrix would move even colours that the palette holds.
  DrawIndexes(drawing, palette.colors, palette.isExact ? DitheringMode::kNone : mode, progress, 1);
}

void CopyRows(const Redrawing& drawing) {
  const Pixels& source = drawing.source();
  ForEachRow(source.height, [&](int y) {
    std::memcpy(drawing.target().row(y), source.row(y), source.rowBytes());
  });
}

void Draw(const Redrawing& drawing, int bits, unsigned flags) {
  if (bits == drawing.source().depth) return CopyRows(drawing);
  if (bits > 8) return DrawColors(drawing);
  const auto mode = static_cast<DitheringMode>(flags >> kColorResDitheringShift);
  return bits > 1 && (flags & kColorResOptimisedPalette) != 0
             ? DrawInOptimisedPalette(drawing, mode)
             : DrawInFixedPalette(drawing, mode);
}

int ChangeDepth(struct_LEAD_Bitmap* source, struct_LEAD_Bitmap* target, int bits, unsigned flags) {
  Redrawing drawing(source);
  modules::Require(target, kModuleNoBitmap);
  const Pixels& image = drawing.source();
  if (bits == image.depth && source == target) return modules::ReportNothingToDo();
  drawing.begin(image.width, image.height, bits);
  Draw(drawing, bits, flags);
  return drawing.finish(*target);
}

}  // namespace

int L_DefaultDithering(unsigned mode) {
  defaultDithering = mode;
  return kModuleSuccess;
}

unsigned KernelDefaultDithering() {
  return defaultDithering;
}

// Palettes of the caller's are not taken; the callback is that of L_SetStatusCallBack.
int L_ColorResBitmap(struct_LEAD_Bitmap* source, struct_LEAD_Bitmap* target, int bits,
                     unsigned flags, void* palette, void* systemPalette, void* colors,
                     void* callback, void* /*userData*/) {
  const bool plain =
      palette == nullptr && systemPalette == nullptr && colors == nullptr && callback == nullptr;
  if (!plain || !orvo::IsDibDepth(bits)) return kModuleBadParameter;
  return modules::Guarded([=] { return ChangeDepth(source, target, bits, flags); });
}
