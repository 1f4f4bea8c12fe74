#include "between_rows.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "measured_rows.h"

namespace orvo {

namespace {

// The measured rows leave open what happens between them. An even blend of two neighbours misses
// many pupils, for the rows differ and pupils come in all lumas. So the outlines go further than
// the blend where nothing but a flash-lit pupil can be, and less far where other things look alike.
//
// - Toward more red, and to both sides of it: the retina's glow is the most saturated red in a
//   photograph, up to what displays can show, and takes on the tint of the flash. There the
//   outline goes as far as kOutward lets it.
// - Toward gray and skin, which is down and down to the left: brown irises, lips and the shadows of
//   lids lie there, most of all in the dark, and a blob that melts into skin has lost the shape of
//   a pupil. There the outline draws back from the blend.
//
// Chroma units by which an outline may move away from a measured one for each step of luma.
constexpr double kOutward = 10.0;
constexpr double kInward = 2.5;

// Where an outline stands between the blend (0) and the most that kOutward allows (1) or the least
// that kInward does (-1), in eight directions against the clock from the right.
struct ReachRow {
  double luma;
  double reach[8];
};
constexpr ReachRow kDarkReach = {72, {1, 1, 1, 1, 1, -0.5, -0.5, 0}};
constexpr ReachRow kBrightReach = {88, {1, 1, 1, 1, 1, -0.3, -0.3, -0.1}};
// Darker and brighter outlines are small; they are left at the blend.
constexpr int kDarkest = 24;
constexpr int kBrightest = 176;

double Blend(double a, double b, double t) {
  return (1 - t) * a + t * b;
}

double ReachTo(int direction, const ReachRow& row) {
  const double place = 8.0 * direction / kDirections;
  const auto low = static_cast<std::size_t>(place);
  return Blend(row.reach[low], row.reach[(low + 1) % 8], place - std::floor(place));
}

double ReachTo(int direction, int luma) {
  if (luma < kDarkest || luma >= kBrightest) return 0;
  const double t = (luma - kDarkReach.luma) / (kBrightReach.luma - kDarkReach.luma);
  return Blend(ReachTo(direction, kDarkReach), ReachTo(direction, kBrightReach),
               std::clamp(t, 0.0, 1.0));
}

// No display shows more red than 255, and none less blue than 0: the most that colours of this luma
// byte, itself cut down to a whole number like the chroma bytes, can have.
double DisplayLimit(int direction, int luma) {
  constexpr int kUp = kDirections / 4;
  constexpr int kLeft = kDirections / 2;
  if (direction == kUp) return 128 + (255 - luma) / 1.402;
  if (direction == kLeft) return -(127 - (luma + 1) / 1.772);
  return 1e9;
}

}  // namespace

Extents ShapeAt(int luma) {
  const auto& measured = MeasuredRows();
  const auto above = std::find_if(measured.begin() + 1, measured.end() - 1,
                                  [luma](const MeasuredRow& row) { return row.luma >= luma; });
  const auto below = above - 1;
  const Extents low = ExtentsOf(below->outline);
  const Extents high = ExtentsOf(above->outline);
  const double fromLow = luma - below->luma;
  const double fromHigh = above->luma - luma;
  Extents shape{};
  for (int i = 0; i < kDirections; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const double a = low[at];
    const double b = high[at];
    const double even = Blend(a, b, fromLow / (fromLow + fromHigh));
    const double most = std::min(a + kOutward * fromLow, b + kOutward * fromHigh);
    const double least = std::max(a - kInward * fromLow, b - kInward * fromHigh);
    const double reach = ReachTo(i, luma);
    const double wanted = reach > 0 ? Blend(even, std::max(even, most), reach)
                                    : Blend(even, std::min(even, least), -reach);
    shape[at] = std::min(wanted, std::max(even, DisplayLimit(i, luma)));
  }
  return shape;
}

}  // namespace orvo
