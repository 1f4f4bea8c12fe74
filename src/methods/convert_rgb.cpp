// Colour conversion by a module that the caller names.
#include <orvo/COrvoCS.h>
#include <orvo/result_codes.h>

#include "dib/result_block.h"

using namespace orvo;

int COrvoCS::CSConvertRGB(DibHandle source, DibHandle* result, const char* library) noexcept {
  if (source == nullptr) return ORVO_ERR_NULL_IMAGE;
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  ResultBlock block(source, result);
  if (!block.copySource()) return ORVO_ERR_NO_MEMORY;
  if (converterModule == nullptr) {
    converterModule = LoadLibraryA(library);
    if (converterModule == nullptr) return block.takeBack(ORVO_ERR_NO_CONVERTER);
    converterEntry =
        reinterpret_cast<ColorConverter>(GetProcAddress(converterModule, "vnColorConvertDIB"));
  }
  {
    const LockedImage image(*result);
    // The copy stays in the result handle here, unlike after the other failures.
    if (!image) return ORVO_ERR_FAILURE;
    if (converterEntry != nullptr) {
      converterEntry(image.bytes());
      return ORVO_OK;
    }
  }
  return block.takeBack(ORVO_ERR_NO_CONVERTER);
}
