// The table's entries for scan clean-up, which join the toolkit's own work with the binding's.
#include <algorithm>

#include <orvo/CLeadTools.h>
#include <orvo/COrvoCS.h>
#include <orvo/instance.h>

#include "dib/dib_blocks.h"

using namespace orvo;

namespace {

// The sharpening of a descreened image. Amounts beyond the range stay beyond it.
int SharpenChange(std::uint32_t amount) {
  constexpr std::uint32_t kChangePerAmount = 10;
  constexpr std::uint32_t kFarBeyond = 1000000;
  return static_cast<int>(std::min(amount, kFarBeyond) * kChangePerAmount);
}

bool HasSize(const RECT& rect) {
  return rect.right - rect.left > 1 && rect.bottom - rect.top > 1;
}

int WholeImage(DibHandle source, RECT* rect) {
  const LockedImage image(source);
  if (!image) return ORVO_ERR_FAILURE;
  SetRect(rect, 0, 0, image.layout().width, image.layout().height);
  return ORVO_OK;
}

}  // namespace

// Looks for the highest threshold that finds a rectangle of real size; the whole image when none
// does.
int COrvoInstance::FindAutoTrimRect(DibHandle source, std::uint8_t threshold, RECT* rect) noexcept {
  const int first = threshold;
  int at = first;
  int step = 10;
  int best = 0;
  bool raised = false;
  bool lowered = false;
  const auto measure = [&](int value) {
    return orvoCS->CSGetAutoTrimRect(source, static_cast<std::uint8_t>(value), rect);
  };
  for (;;) {
    if (const int code = measure(at); code != ORVO_OK) return code;
    const bool found = HasSize(*rect);
    if (found && at == first) return ORVO_OK;
    if (found) best = at;
    // The step is halved each time the search turns round.
    if (found ? lowered : raised) step /= 2;
    if (step == 0) return found ? static_cast<int>(ORVO_OK) : measure(best);
    at += found ? step : -step;
    if (at < 0) return WholeImage(source, rect);
    raised = found;
    lowered = !found;
  }
}

int COrvoInstance::GetAutoTrimRect(DibHandle source, std::uint8_t threshold, RECT* rect) noexcept {
  return FindAutoTrimRect(source, threshold, rect);
}

int COrvoInstance::AutoTrim(DibHandle source, DibHandle* result, std::uint8_t threshold) noexcept {
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  RECT rect;
  const int code = FindAutoTrimRect(source, threshold, &rect);
  return code == ORVO_OK ? leadTools->LTTrim(source, result, &rect) : code;
}

int COrvoInstance::AutoTrimInPlace(DibHandle* image, std::uint8_t threshold) noexcept {
  if (image == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  RECT rect;
  const int code = FindAutoTrimRect(*image, threshold, &rect);
  return code == ORVO_OK ? leadTools->LTTrim(*image, nullptr, &rect) : code;
}

int COrvoInstance::Descreen(DibHandle source, DibHandle* result, std::uint32_t level,
                            std::uint32_t sharpenAmount, StatusCallback callback) noexcept {
  const int code = orvoCS->CSDescreen(source, result, level, callback);
  if (code != ORVO_OK || sharpenAmount == 0) return code;
  return LeadSharpnessAdjust(*result, result, SharpenChange(sharpenAmount), callback);
}

int COrvoInstance::DescreenInPlace(DibHandle source, std::uint32_t level,
                                   std::uint32_t sharpenAmount, StatusCallback callback) noexcept {
  const int code = orvoCS->CSDescreen(source, &source, level, callback);
  if (code != ORVO_OK || sharpenAmount == 0) return code;
  // The handle came by value and has to stay, so the sharpened image moves into its block.
  DibHandle sharpened = nullptr;
  const int sharpenCode =
      LeadSharpnessAdjust(source, &sharpened, SharpenChange(sharpenAmount), callback);
  if (sharpenCode == ORVO_OK) {
    TakeImage(source, sharpened);
    GlobalFree(sharpened);
  }
  return sharpenCode;
}
