// The module's entry points. Nothing is thrown across them. What fails where the caller gets no
// answer spoils the document: it then leaves no file.
#include "pdflib/document.h"

namespace {

constexpr int kFailed = -1;

// Runs work on a document; false when there is none or the work threw.
template <class Work>
bool Done(PdfDocument* document, const Work& work) noexcept {
  if (document == nullptr) return false;
  try {
    work(*document);
    return true;
  } catch (...) {
    return false;
  }
}

template <class Work>
void DoneOrSpoiled(PdfDocument* document, const Work& work) noexcept {
  if (!Done(document, work) && document != nullptr) document->spoil();
}

}  // namespace

PdfDocument* PDF_new() {
  try {
    return new PdfDocument;
  } catch (...) {
    return nullptr;
  }
}

int PDF_open_file(PdfDocument* document, const char* path) {
  return Done(document, [=](PdfDocument& pdf) { pdf.open(path); }) ? 1 : kFailed;
}

void PDF_set_info(PdfDocument* document, const char* key, const char* value) {
  DoneOrSpoiled(document, [=](PdfDocument& pdf) { pdf.setInfo(key, value); });
}

// parameter "page": number is the page of a TIFF file, counted from 1. Otherwise the first page.
int PDF_open_image_file(PdfDocument* document, const char* type, const char* path,
                        const char* parameter, int number) {
  std::optional<int> image;
  const bool done = Done(document, [&](PdfDocument& pdf) {
    const bool numbered = parameter != nullptr && std::string_view(parameter) == "page";
    image = pdf.openImage(type == nullptr ? "" : type, path, numbered ? number : 1);
  });
  if (!done && document != nullptr) document->spoilUnlessEmpty();
  return image.value_or(kFailed);
}

float PDF_get_value(PdfDocument* document, const char* key, float image) {
  float value = 0;
  (void)Done(document, [&](PdfDocument& pdf) {
    if (key != nullptr) value = pdf.value(key, static_cast<int>(image));
  });
  return value;
}

void PDF_begin_page(PdfDocument* document, float width, float height) {
  DoneOrSpoiled(document, [=](PdfDocument& pdf) {
    pdf.beginPage(static_cast<double>(width), static_cast<double>(height));
  });
}

void PDF_scale(PdfDocument* document, float x, float y) {
  DoneOrSpoiled(document, [=](PdfDocument& pdf) {
    pdf.scale(static_cast<double>(x), static_cast<double>(y));
  });
}

void PDF_place_image(PdfDocument* document, int image, float x, float y, float scale) {
  DoneOrSpoiled(document, [=](PdfDocument& pdf) {
    pdf.placeImage(image, static_cast<double>(x), static_cast<double>(y),
                   static_cast<double>(scale));
  });
}

void PDF_close_image(PdfDocument* document, int image) {
  (void)Done(document, [=](PdfDocument& pdf) { pdf.closeImage(image); });
}

void PDF_end_page(PdfDocument* document) {
  DoneOrSpoiled(document, [](PdfDocument& pdf) { pdf.endPage(); });
}

void PDF_close(PdfDocument* document) {
  DoneOrSpoiled(document, [](PdfDocument& pdf) { pdf.close(); });
}

void PDF_delete(PdfDocument* document) {
  delete document;
}
