// Pictures into PDF documents, through the PDF module: one page for each, as large as its
// resolution makes it.
#include "binding/pdf.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <new>
#include <string_view>

#include <orvo/CLeadTools.h>

#include "binding/file_types.h"
#include "binding/module_contract.h"
#include "platform/paths.h"

using namespace orvo;

namespace {

using EntryPoint = void (*)();

constexpr int kPdfModuleFailed = -1;  // what the module answers when it cannot open a file
constexpr float kPointsPerInch = 72;

template <class Function>
Function* As(EntryPoint entry) {
  return reinterpret_cast<Function*>(entry);
}

// The module's functions, taken in the order in which they are bound.
struct PdfModule {
  explicit PdfModule(const EntryPoint* entry)
      : create(As<decltype(PDF_new)>(*entry++)),
        openFile(As<decltype(PDF_open_file)>(*entry++)),
        setInfo(As<decltype(PDF_set_info)>(*entry++)),
        openImageFile(As<decltype(PDF_open_image_file)>(*entry++)),
        getValue(As<decltype(PDF_get_value)>(*entry++)),
        beginPage(As<decltype(PDF_begin_page)>(*entry++)),
        scale(As<decltype(PDF_scale)>(*entry++)),
        placeImage(As<decltype(PDF_place_image)>(*entry++)),
        closeImage(As<decltype(PDF_close_image)>(*entry++)),
        endPage(As<decltype(PDF_end_page)>(*entry++)),
        close(As<decltype(PDF_close)>(*entry++)),
        remove(As<decltype(PDF_delete)>(*entry)) {}

  decltype(PDF_new)* create;
  decltype(PDF_open_file)* openFile;
  decltype(PDF_set_info)* setInfo;
  decltype(PDF_open_image_file)* openImageFile;
  decltype(PDF_get_value)* getValue;
  decltype(PDF_begin_page)* beginPage;
  decltype(PDF_scale)* scale;
  decltype(PDF_place_image)* placeImage;
  decltype(PDF_close_image)* closeImage;
  decltype(PDF_end_page)* endPage;
  decltype(PDF_close)* close;
  decltype(PDF_delete)* remove;
};

void SetInfo(const PdfModule& pdf, PdfDocument* document, const char* target) {
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

  pdf.setInfo(document, "Title", title.data());
  pdf.setInfo(document, "Creator", creator.data());
  pdf.setInfo(document, "Author", "");
  pdf.setInfo(document, "Subject", "Created PDF");
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
bool AddPage(const PdfModule& pdf, PdfDocument* document, const char* type, const char* source,
             const char* parameter, int number) {
  const int image = pdf.openImageFile(document, type, source, parameter, number);
  if (image == kPdfModuleFailed) return false;
  const auto key = static_cast<float>(image);
  const float xResolution = pdf.getValue(document, "resx", key);
  const float yResolution = pdf.getValue(document, "resy", key);
  const Scale scale = ScaleOf(xResolution, yResolution);
  const float height = pdf.getValue(document, "imageheight", key) * scale.y;
  const float width = pdf.getValue(document, "imagewidth", key) * scale.x;
  pdf.beginPage(document, width, height);
  pdf.scale(document, scale.x, scale.y);
  pdf.placeImage(document, image, 0, 0, 1);
  pdf.closeImage(document, image);
  pdf.endPage(document);
  return true;
}

// Whether there was a first page.
bool AddPages(const PdfModule& pdf, PdfDocument* document, const char* type, const char* source) {
  if (std::string_view(type) != "tiff") return AddPage(pdf, document, type, source, "", 0);
  int number = 1;
  while (AddPage(pdf, document, type, source, "page", number)) ++number;
  return number > 1;
}

bool IsThere(const char* path) {
  try {
    std::error_code ignored;
    return std::filesystem::exists(platform::NativePath(path), ignored);
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace

int CLeadTools::ConvertToPDF(const char* source, const char* target) noexcept {
  const bool bound = pdfModule != nullptr && std::ranges::all_of(pdfEntries, [](EntryPoint entry) {
                       return entry != nullptr;
                     });
  if (!bound) return kPdfNoModule;
  if (source == nullptr) return kPdfNoSource;
  const char* const type = PdfPictureTypeOf(source);
  if (type == nullptr) return kPdfNoPictureType;
  DeleteFileA(target);

  const PdfModule pdf(pdfEntries);
  PdfDocument* const document = pdf.create();
  if (pdf.openFile(document, target) == kPdfModuleFailed) {
    pdf.remove(document);
    return kPdfNotWritten;
  }
  // Closing gives no answer. A module that keeps the target's place from its opening and then
  // cannot write the document takes the place away again.
  const bool hadPlace = IsThere(target);
  SetInfo(pdf, document, target);
  const bool anyPage = AddPages(pdf, document, type, source);
  pdf.close(document);
  pdf.remove(document);
  if (!anyPage) return kPdfNoPicture;
  return hadPlace && !IsThere(target) ? kPdfNotWritten : kPdfDone;
}
