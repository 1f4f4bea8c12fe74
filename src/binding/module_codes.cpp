#include "binding/module_codes.h"

#include <orvo/result_codes.h>

namespace orvo {

namespace {

struct CodeMapping {
  int module;
  int toolkit;
};

constexpr CodeMapping kMappings[] = {
    {1, ORVO_OK},
    {0, ORVO_ERR_FAILURE},
    {-1, ORVO_ERR_NO_MEMORY},
    {-3, ORVO_ERR_NO_MEMORY},
    {-2, ORVO_ERR_NO_BITMAP},
    {-27, ORVO_ERR_NO_BITMAP},
    {-4, ORVO_ERR_FILE_IO},
    {-5, ORVO_ERR_FILE_IO},
    {-6, ORVO_ERR_FILE_IO},
    {-7, ORVO_ERR_FILE_IO},
    {-10, ORVO_ERR_FILE_NOT_FOUND},
    {-14, ORVO_ERR_FILE_OPEN},
    {-8, ORVO_ERR_BAD_FILE},
    {-9, ORVO_ERR_BAD_FORMAT},
    {-11, ORVO_ERR_BAD_FORMAT},
    {-12, ORVO_ERR_BAD_FORMAT},
    {-15, ORVO_ERR_BAD_FORMAT},
    {-13, ORVO_ERR_NOT_SUPPORTED},
    {-16, ORVO_ERR_NOT_SUPPORTED},
    {-23, ORVO_ERR_NOT_SUPPORTED},
    {-100, ORVO_ERR_CANCELLED},
    {2, ORVO_ERR_CANCELLED},
};

}  // namespace

int MapReturnCodeLT2ORVO(int moduleCode) noexcept {
  for (const CodeMapping& mapping : kMappings) {
    if (mapping.module == moduleCode) return mapping.toolkit;
  }
  return ORVO_ERR_VENDOR;
}

}  // namespace orvo
