#include "pdf_file.h"

#include <cmath>

#include "image_file.h"
#include "pdf_objects.h"

namespace client {
namespace {

using Object = QPDFObjectHandle;

// Pixels on so many points. Paper sizes are rounded: whole numbers come out whole.
double DotsPerInch(int pixels, double points) {
  constexpr double kPointsPerInch = 72;
  constexpr double kNear = 1e-3;
  const double dots = pixels * kPointsPerInch / points;
  const double whole = std::round(dots);
  return std::abs(dots - whole) <= whole * kNear ? whole : dots;
}

void Describe(const DrawnPicture& drawn, const ImageFacts& facts, PdfPage& page) {
  const Matrix shown = Then(drawn.place, drawn.turn);
  const auto orientation = OrientationOf(shown);
  if (!orientation) throw PdfFault("its picture lies slanted");
  const double across = std::hypot(shown.a, shown.b) * drawn.unit;
  const double down = std::hypot(shown.c, shown.d) * drawn.unit;
  page.orientation = *orientation;
  page.xDotsPerInch = DotsPerInch(facts.width, across);
  page.yDotsPerInch = DotsPerInch(facts.height, down);
}

const char* ColorsOf(const ImageFacts& facts) {
  if (!facts.palette.empty()) return "palette";
  return facts.components == 1 ? "gray" : facts.components == 3 ? "RGB" : "CMYK";
}

bool IsFilled(Object dictionary, const char* key) {
  return dictionary.isDictionary() && !dictionary.getKey(key).isNull();
}

}  // namespace

void PdfObjects::lookAt(int number) {
  if (look_.number == number) return;
  look_ = {};
  Object page = pages_.at(static_cast<std::size_t>(number) - 1);
  try {
    InWords([&] {
      look_.drawn = ScanPage(page);
      ReadImageFacts(look_.drawn.image, look_.drawn.inksBlack, look_.facts);
      Describe(look_.drawn, look_.facts, look_.page);
    });
  } catch (const PdfFault& fault) {
    look_.page.refusal = fault.what();
  }
  look_.page.width = look_.facts.width;
  look_.page.height = look_.facts.height;
  look_.page.bits = look_.facts.bits;
  look_.page.colors = ColorsOf(look_.facts);
  look_.page.coding = look_.facts.codingName;
  look_.page.hasHiddenText = look_.drawn.hasHiddenText;
  Object notes = page.getKey("/Annots");
  look_.page.hasAnnotations = notes.isArray() && notes.getArrayNItems() > 0;
  look_.number = number;
}

void PdfObjects::require(int number) {
  lookAt(number);
  if (!look_.page.refusal.empty()) throw PdfFault(look_.page.refusal);
}

PdfObjects::PdfObjects(const char* path) {
  InWords([&] {
    pdf_.setSuppressWarnings(true);
    pdf_.processFile(path);
    pages_ = pdf_.getAllPages();
  });
}

PdfPage PdfObjects::page(int number) {
  lookAt(number);
  return look_.page;
}

std::vector<std::string> PdfObjects::besidesPages() {
  return InWords([&] {
    std::vector<std::string> all;
    Object root = pdf_.getRoot();
    Object info = pdf_.getTrailer().getKey("/Info");
    if (IsFilled(root.getKey("/Outlines"), "/First")) all.emplace_back("the outlines");
    bool tells = root.hasKey("/Metadata");
    for (const char* key : {"/Title", "/Author", "/Subject", "/Keywords"}) {
      tells = tells || IsFilled(info, key);
    }
    if (tells) all.emplace_back("the document's title and properties");
    if (IsFilled(root.getKey("/Names"), "/EmbeddedFiles")) all.emplace_back("the attached files");
    return all;
  });
}

bool PdfObjects::isSigned() {
  return InWords([&] {
    constexpr long long kHasSignatures = 1;
    Object form = pdf_.getRoot().getKey("/AcroForm");
    if (!form.isDictionary() || !form.getKey("/SigFlags").isInteger()) return false;
    return (form.getKey("/SigFlags").getIntValue() & kHasSignatures) != 0;
  });
}

bool PdfObjects::extract(int number, Part part, const std::string& path) {
  return InWords([&] {
    require(number);
    const bool isJpeg = look_.facts.coding == ImageFacts::Coding::kJpeg;
    if (isJpeg && WriteJpegFile(look_.drawn.image, look_.facts, path)) return true;
    WriteTiffFile(look_.drawn.image, look_.facts, look_.page, part, path);
    return false;
  });
}

std::string PdfObjects::profile(int number) {
  return InWords([&] {
    require(number);
    return ProfileOf(look_.facts);
  });
}

}  // namespace client

client::PdfFile* OpenPdfFile(const char* path) {
  return new client::PdfObjects(path);
}
