// Double of PdfLib.dll: records, and makes no file. What a test sets as answers for "resx", "resy",
// "imagewidth" and "imageheight" is what PDF_get_value gives, page by page; 0 without one.
#include <sstream>

#include "double_log.h"

using doubles::Called;

namespace {

// As short as it goes: 72, 0.24.
std::string Short(float number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

}  // namespace

PdfDocument* PDF_new() {
  static char document = 0;
  doubles::TheState().names[&document] = "doc";
  Called("PDF_new");
  return reinterpret_cast<PdfDocument*>(&document);
}

int PDF_open_file(PdfDocument* document, const char* path) {
  return Called("PDF_open_file", document, path);
}

void PDF_set_info(PdfDocument* document, const char* key, const char* value) {
  Called("PDF_set_info", document, key, value);
}

// The number of an image is 6 above that of its page. A file has as many pages as the test says.
int PDF_open_image_file(PdfDocument* document, const char* type, const char* path,
                        const char* parameter, int number) {
  const bool told = !doubles::TheState().answers["PDF_open_image_file"].empty();
  const int answer = Called("PDF_open_image_file", document, type, path, parameter, number);
  if (told) return answer;
  return number <= doubles::TheState().pageCount ? 6 + number : -1;
}

float PDF_get_value(PdfDocument* document, const char* key, float image) {
  Called("PDF_get_value", document, key, Short(image));
  std::deque<int>& answers = doubles::TheState().answers[key];
  if (answers.empty()) return 0;
  const int answer = answers.front();
  answers.pop_front();
  return static_cast<float>(answer);
}

void PDF_begin_page(PdfDocument* document, float width, float height) {
  Called("PDF_begin_page", document, Short(width), Short(height));
}

void PDF_scale(PdfDocument* document, float x, float y) {
  Called("PDF_scale", document, Short(x), Short(y));
}

void PDF_place_image(PdfDocument* document, int image, float x, float y, float scale) {
  Called("PDF_place_image", document, image, Short(x), Short(y), Short(scale));
}

void PDF_close_image(PdfDocument* document, int image) {
  Called("PDF_close_image", document, image);
}

void PDF_end_page(PdfDocument* document) {
  Called("PDF_end_page", document);
}

void PDF_close(PdfDocument* document) {
  Called("PDF_close", document);
}

void PDF_delete(PdfDocument* document) {
  Called("PDF_delete", document);
}
