// Change of resolution: the image is resampled so that its physical size stays, then stamped.
#include "binding/bitmap_cycle.h"

using namespace orvo;

namespace {

// size * wanted / stored in wrapping 32-bit arithmetic, the division truncating; stored is not 0.
int Rescaled(int size, int wanted, int stored) {
  const auto product =
      static_cast<std::int32_t>(static_cast<unsigned>(size) * static_cast<unsigned>(wanted));
  return static_cast<int>(std::int64_t{product} / stored);
}

}  // namespace

int CLeadTools::LTChangeResolution(DibHandle& source, DibHandle* result, int horizontal,
                                   int vertical, StatusCallback callback) noexcept {
  BitmapCycle cycle(*this, {.own = Entry::L_SizeBitmap, .failedCallSetsResult = false}, source,
                    result);
  const Modules& modules = cycle.modules();
  if (source != nullptr && !cycle.inPlace() && !modules.has(Entry::L_ConvertToDIB)) {
    return ORVO_ERR_NO_VENDOR;
  }
  if (const int code = cycle.prepare(); code != ORVO_OK) return code;
  struct_LEAD_Bitmap* const bitmap = cycle.bitmap();
  if (bitmap->xResolution == 0 || bitmap->yResolution == 0) {
    return cycle.fail(ORVO_ERR_NOT_SUPPORTED);
  }
  const int width = Rescaled(bitmap->width, horizontal, bitmap->xResolution);
  const int height = Rescaled(bitmap->height, vertical, bitmap->yResolution);
  cycle.install(callback);
  const int moduleCode = modules.call<Entry::L_SizeBitmap>()(bitmap, width, height, kSizeBest);
  if (moduleCode != kModuleSuccess) return cycle.fail(MapReturnCodeLT2ORVO(moduleCode));
  cycle.reinstallPrevious();
  bitmap->xResolution = horizontal;
  bitmap->yResolution = vertical;
  if (cycle.inPlace()) return cycle.succeed();
  // Unlike the other methods this one overwrites the result handle without freeing it.
  const DibHandle dib = modules.call<Entry::L_ConvertToDIB>()(bitmap);
  modules.call<Entry::L_FreeBitmap>()(bitmap);
  if (dib == nullptr) return ORVO_ERR_NO_MEMORY;
  *result = dib;
  return ORVO_OK;
}
