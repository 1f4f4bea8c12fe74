// Double of PdfLib.dll: only records.
#include "double_log.h"

using doubles::Called;

PdfDocument* PDF_new() {
  Called("PDF_new");
  return nullptr;
}

int PDF_open_file(PdfDocument* /*document*/, const char* path) {
  return Called("PDF_open_file", path);
}

void PDF_set_info(PdfDocument* /*document*/, const char* key, const char* value) {
  Called("PDF_set_info", key, value);
}

int PDF_open_image_file(PdfDocument* /*document*/, const char* type, const char* path,
                        const char* parameter, int number) {
  return Called("PDF_open_image_file", type, path, parameter, number);
}

float PDF_get_value(PdfDocument* /*document*/, const char* key, float /*image*/) {
  return static_cast<float>(Called("PDF_get_value", key));
}

void PDF_begin_page(PdfDocument* /*document*/, float /*width*/, float /*height*/) {
  Called("PDF_begin_page");
}

void PDF_scale(PdfDocument* /*document*/, float /*x*/, float /*y*/) {
  Called("PDF_scale");
}

void PDF_place_image(PdfDocument* /*document*/, int image, float /*x*/, float /*y*/,
                     float /*scale*/) {
  Called("PDF_place_image", image);
}

void PDF_close_image(PdfDocument* /*document*/, int image) {
  Called("PDF_close_image", image);
}

void PDF_end_page(PdfDocument* /*document*/) {
  Called("PDF_end_page");
}

void PDF_close(PdfDocument* /*document*/) {
  Called("PDF_close");
}

void PDF_delete(PdfDocument* /*document*/) {
  Called("PDF_delete");
}
