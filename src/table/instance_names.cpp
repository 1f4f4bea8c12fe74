// The entries that know file names by themselves.
#include <algorithm>
#include <iterator>
#include <string_view>

#include <orvo/instance.h>

using namespace orvo;

namespace {

using std::string_view_literals::operator""sv;

// Every name that an image file may end in. The first sixteen are those that can be loaded.
constexpr const char* kImageExtensions[] = {
    ".BMP", ".TIF", ".TIFF", ".JPG", ".JPE", ".JPEG", ".CMP", ".PCX", ".PSD", ".PNG",
    ".RAS", ".PCD", ".FPX",  ".WMF", ".TGA", ".PCT",  ".JTF", ".EXF", ".DCX"};

// The loadable ones as a multi-string: each name closed by a NUL, the list by one more.
constexpr std::string_view kLoadableList =
    "BMP\0TIF\0TIFF\0JPG\0JPE\0JPEG\0CMP\0PCX\0PSD\0PNG\0RAS\0PCD\0FPX\0WMF\0TGA\0PCT\0\0"sv;
constexpr int kLoadableCount = 16;

}  // namespace

int COrvoInstance::IsImageFileName(const char* path) noexcept {
  char extension[_MAX_EXT] = {};
  _splitpath(path, nullptr, nullptr, nullptr, extension);
  const auto* const text = reinterpret_cast<const unsigned char*>(extension);
  return std::any_of(std::begin(kImageExtensions), std::end(kImageExtensions),
                     [text](const char* known) {
                       return _mbsicmp(text, reinterpret_cast<const unsigned char*>(known)) == 0;
                     })
             ? 1
             : 0;
}

int COrvoInstance::GetFileExtensions(int* count, char* buffer, std::uint32_t* size) noexcept {
  if (count != nullptr) *count = kLoadableCount;
  if (size == nullptr) return ORVO_ERR_BUFFER_TOO_SMALL;
  const std::uint32_t given = *size;
  *size = static_cast<std::uint32_t>(kLoadableList.size());
  if (given < kLoadableList.size() || buffer == nullptr) return ORVO_ERR_BUFFER_TOO_SMALL;
  std::copy(kLoadableList.begin(), kLoadableList.end(), buffer);
  return ORVO_OK;
}
