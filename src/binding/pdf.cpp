// Pictures into PDF documents, through the PDF module: one page for each, as large as its
// resolution makes it.
#include "binding/pdf.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <orvo/CLeadTools.h>

#include "binding/file_types.h"
#include "binding/module_entries.h"
#include "platform/files.h"

using namespace orvo;

namespace {

constexpr int kPdfModuleFailed = -1;  // what the module answers when it cannot open a file
constexpr float kPointsPerInch = 72;

void SetInfo(const Modules& pdf, PdfDocument* document, const char* target) {
  std::array<char, _MAX_FNAME> title{};
  _splitpath(target, nullptr, nullptr, title.data(), nullptr);

  std::array<char, MAX_PATH> program{};
  std::array<char, _MAX_FNAME> name{};
  std::array<char, _MAX_EXT> extension{};
  // A path that was cut still ends with NUL behind the last byte but one.
  (void)GetModuleFileNameA(nullptr, program.data(), MAX_PATH - 1);
  _splitpath(program.data(), nullptr, nullptr, name.data(), extension.data());
  std::array<char, _MAX_FNAME + _MAX_EXT> creator{};
  const std::string_view stem(name.data());
  std::ranges::copy(stem, creator.begin());
  std::ranges::copy(std::string_view(extension.data()), creator.begin() + stem.size());

  pdf.call<Entry::PDF_set_info>()(document, "Title", title.data());
  pdf.call<Entry::PDF_set_info>()(document, "Creator", creator.data());
  pdf.call<Entry::PDF_set_info>()(document, "Author", "");
  pdf.call<Entry::PDF_set_info>()(document, "Subject", "Created PDF");
}

struct Scale {
  float x = 1;
  float y = 1;
};

// Points for each pixel. Resolutions above 0 are dots per inch; a negative pair tells only the
// shape of a pixel, whose width then is a point; with any other pair a pixel is a point.
Scale ScaleOf(float xResolution, float yResolution) {
  if (xResolution > 0 && yResolution > 0) {
    return {kPointsPerInch / xResolution, kPointsPerInch / yResolution};
  }
  if (xResolution < 0 && yResolution < 0) return {1, yResolution / xResolution};
  return {};
}

// False when there is no such page.
bool AddPage(const Modules& pdf, PdfDocument* document, const char* type, const char* source,
             const char* parameter, int number) {
  const int image =
      pdf.call<Entry::PDF_open_image_file>()(document, type, source, parameter, number);
  if (image == kPdfModuleFailed) return false;
  const auto key = static_cast<float>(image);
  const float xResolution = pdf.call<Entry::PDF_get_value>()(document, "resx", key);
  const float yResolution = pdf.call<Entry::PDF_get_value>()(document, "resy", key);
  const Scale scale = ScaleOf(xResolution, yResolution);
  const float height = pdf.call<Entry::PDF_get_value>()(document, "imageheight", key) * scale.y;
  const float width = pdf.call<Entry::PDF_get_value>()(document, "imagewidth", key) * scale.x;
  pdf.call<Entry::PDF_begin_page>()(document, width, height);
  pdf.call<Entry::PDF_scale>()(document, scale.x, scale.y);
  pdf.call<Entry::PDF_place_image>()(document, image, 0, 0, 1);
  pdf.call<Entry::PDF_close_image>()(document, image);
  pdf.call<Entry::PDF_end_page>()(document);
  return true;
}

// Whether there was a first page.
bool AddPages(const Modules& pdf, PdfDocument* document, const char* type, const char* source) {
  if (std::string_view(type) != "tiff") return AddPage(pdf, document, type, source, "", 0);
  int number = 1;
  while (AddPage(pdf, document, type, source, "page", number)) ++number;
  return number > 1;
}

}  // namespace

int CLeadTools::ConvertToPDF(const char* source, const char* target) noexcept {
  const Modules pdf(*this);
#define ORVO_PDF_ENTRY(name) Entry::name,
  if (!pdf.hasAll({ORVO_PDF_ENTRIES(ORVO_PDF_ENTRY)})) return kPdfNoModule;
#undef ORVO_PDF_ENTRY
  if (source == nullptr) return kPdfNoSource;
  const char* const type = PdfPictureTypeOf(source);
  if (type == nullptr) return kPdfNoPictureType;
  DeleteFileA(target);

  PdfDocument* const document = pdf.call<Entry::PDF_new>()();
  if (pdf.call<Entry::PDF_open_file>()(document, target) == kPdfModuleFailed) {
    pdf.call<Entry::PDF_delete>()(document);
    return kPdfNotWritten;
  }
  // Closing gives no answer. A module that keeps the target's place from its opening and then
  // cannot write the document takes the place away again.
  const bool hadPlace = PlatformIsThere(target) != 0;
  SetInfo(pdf, document, target);
  const bool anyPage = AddPages(pdf, document, type, source);
  pdf.call<Entry::PDF_close>()(document);
  pdf.call<Entry::PDF_delete>()(document);
  if (!anyPage) return kPdfNoPicture;
  return hadPlace && PlatformIsThere(target) == 0 ? kPdfNotWritten : kPdfDone;
}
