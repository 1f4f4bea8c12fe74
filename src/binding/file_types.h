// File kinds by the extension of a name.
#ifndef ORVO_BINDING_FILE_TYPES_H
#define ORVO_BINDING_FILE_TYPES_H

#include <cstdint>
#include <optional>

namespace orvo {

// How LTSaveFile writes a kind of file.
enum class SaveQuality { kNone, kCallers, kFixedLow };

struct SaveType {
  int format = 0;
  SaveQuality quality = SaveQuality::kNone;
  bool takesPages = false;  // a flag other than 0 appends a page
};

// Nothing for names that LTSaveFile does not take.
[[nodiscard]] std::optional<SaveType> SaveTypeOf(const char* path) noexcept;

// Whether the name ends in ".PDF", without regard to case.
[[nodiscard]] bool IsPdfName(const char* path) noexcept;

// What the PDF module calls the kind of picture that it takes from a file of this name; null for
// names of other kinds, ".jpeg" and ".tiff" among them.
[[nodiscard]] const char* PdfPictureTypeOf(const char* path) noexcept;

// What DetermineFileTypeByName answers for a name outside its table.
constexpr int kUnknownFileType = 14;

// The module's format number for the target of a conversion.
[[nodiscard]] int DetermineFileTypeByName(const char* path) noexcept;

// Whether the name is one of an image file, whether or not files of its kind can be loaded.
[[nodiscard]] bool IsImageFileName(const char* path) noexcept;

// Copies out the extensions of the files that can be loaded, as COrvoInstance::GetFileExtensions
// tells.
int CopyLoadableExtensions(int* count, char* buffer, std::uint32_t* size) noexcept;

}  // namespace orvo

#endif  // ORVO_BINDING_FILE_TYPES_H
