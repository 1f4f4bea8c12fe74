// The entry points that the binding binds, and typed access to those that were found.
#ifndef ORVO_BINDING_MODULE_ENTRIES_H
#define ORVO_BINDING_MODULE_ENTRIES_H

#include <cstddef>
#include <initializer_list>

#include <orvo/CLeadTools.h>

#include "binding/module_contract.h"

namespace orvo {

// Every entry of the modules, module by module, in the order in which they are looked up.
#define ORVO_PDF_ENTRIES(ENTRY) \
  ENTRY(PDF_new)                \
  ENTRY(PDF_open_file)          \
  ENTRY(PDF_set_info)           \
  ENTRY(PDF_open_image_file)    \
  ENTRY(PDF_get_value)          \
  ENTRY(PDF_begin_page)         \
  ENTRY(PDF_scale)              \
  ENTRY(PDF_place_image)        \
  ENTRY(PDF_close_image)        \
  ENTRY(PDF_end_page)           \
  ENTRY(PDF_close)              \
  ENTRY(PDF_delete)

#define ORVO_KERNEL_ENTRIES(ENTRY) \
  ENTRY(L_ChangeFromDIB)           \
  ENTRY(L_ChangeToDIB)             \
  ENTRY(L_ChangeToDIB2)            \
  ENTRY(L_ColorResBitmap)          \
  ENTRY(L_DefaultDithering)        \
  ENTRY(L_FreeBitmap)              \
  ENTRY(L_GrayScaleBitmap)         \
  ENTRY(L_RotateBitmap)            \
  ENTRY(L_SetStatusCallBack)       \
  ENTRY(L_TrimBitmap)              \
  ENTRY(L_VersionInfo)             \
  ENTRY(L_ConvertToDIB)            \
  ENTRY(L_ConvertFromDIB)          \
  ENTRY(L_SizeBitmap)              \
  ENTRY(L_IsGrayScaleBitmap)

#define ORVO_IMAGE_ENTRIES(ENTRY) \
  ENTRY(L_ChangeBitmapContrast)   \
  ENTRY(L_ChangeBitmapHue)        \
  ENTRY(L_ChangeBitmapIntensity)  \
  ENTRY(L_GammaCorrectBitmap)     \
  ENTRY(L_InvertBitmap)           \
  ENTRY(L_RemapBitmapIntensity)   \
  ENTRY(L_SharpenBitmap)          \
  ENTRY(L_ChangeBitmapSaturation)

#define ORVO_FILE_ENTRIES(ENTRY)   \
  ENTRY(L_CreateThumbnailFromFile) \
  ENTRY(L_FileInfo)                \
  ENTRY(L_LoadBitmap)              \
  ENTRY(L_SaveBitmap)              \
  ENTRY(L_SaveFile)                \
  ENTRY(L_FileConvert)

// An entry's place among the entries of a CLeadTools.
enum class Entry : std::size_t {
#define ORVO_ENTRY_NAME(name) name,
  ORVO_PDF_ENTRIES(ORVO_ENTRY_NAME) ORVO_KERNEL_ENTRIES(ORVO_ENTRY_NAME)
      ORVO_IMAGE_ENTRIES(ORVO_ENTRY_NAME) ORVO_FILE_ENTRIES(ORVO_ENTRY_NAME)
#undef ORVO_ENTRY_NAME
          kCount
};

template <Entry>
struct EntryType;
#define ORVO_ENTRY_TYPE(name)          \
  template <>                          \
  struct EntryType<Entry::name> {      \
    using Pointer = decltype(&::name); \
  };
ORVO_PDF_ENTRIES(ORVO_ENTRY_TYPE)
ORVO_KERNEL_ENTRIES(ORVO_ENTRY_TYPE)
ORVO_IMAGE_ENTRIES(ORVO_ENTRY_TYPE)
ORVO_FILE_ENTRIES(ORVO_ENTRY_TYPE)
#undef ORVO_ENTRY_TYPE

// The modules as a CLeadTools has bound them.
class Modules {
 public:
  explicit Modules(const CLeadTools& tools) : tools_(tools) {
    static_assert(CLeadTools::kModuleEntryCount == static_cast<std::size_t>(Entry::kCount));
  }

  // The function, null when it is not bound.
  template <Entry entry>
  [[nodiscard]] typename EntryType<entry>::Pointer call() const {
    return reinterpret_cast<typename EntryType<entry>::Pointer>(
        tools_.moduleEntries[static_cast<std::size_t>(entry)]);
  }

  [[nodiscard]] bool has(Entry entry) const {
    return tools_.moduleEntries[static_cast<std::size_t>(entry)] != nullptr;
  }
  [[nodiscard]] bool hasAll(std::initializer_list<Entry> entries) const {
    for (const Entry entry : entries) {
      if (!has(entry)) return false;
    }
    return true;
  }

  // Makes the record a copy of a DIB. It stays all zeros when the copy cannot be made.
  void ConvertFromDIB(struct_LEAD_Bitmap* bitmap, DibHandle dib) const;

 private:
  const CLeadTools& tools_;
};

}  // namespace orvo

#endif  // ORVO_BINDING_MODULE_ENTRIES_H
