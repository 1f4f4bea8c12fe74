#include "imaging/redeye/outline_angles.h"

#include <array>
#include <cmath>
#include <cstddef>

#include "imaging/utilities.h"

namespace orvo {

namespace {

// Pi, a full turn and the least sum of angles, as the outlines were measured with them.
constexpr double kHalfTurn = 3.14159;
constexpr double kFullTurn = 6.28318;
constexpr double kLeastSum = 6.0;

}  // namespace

bool IsWithinOutline(const RedEyeOutline& outline, int cb, int cr) noexcept {
  const auto count = static_cast<std::size_t>(outline.count);
  std::array<double, std::size(RedEyeOutline{}.vertices)> angles{};
  for (std::size_t i = 0; i < count; ++i) {
    const int dCb = outline.vertices[i].cb - cb;
    const int dCr = outline.vertices[i].cr - cr;
    if (dCb == 0 && dCr == 0) return true;
    angles[i] = ImgAtan2(dCr, dCb);
  }
  double sum = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const double turn = std::fabs(angles[(i + 1) % count] - angles[i]);
    sum += turn > kHalfTurn ? kFullTurn - turn : turn;
  }
  return sum > kLeastSum;
}

}  // namespace orvo
