// Other pictures in the place of those that pages show. Nothing else of the document changes.
#include <algorithm>
#include <cmath>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <set>

#include "documents/image_object.h"
#include "documents/page_content.h"
#include "pdf_objects.h"
#include "pictures/file_handle.h"

namespace client {
namespace {

using Object = QPDFObjectHandle;

int ComponentsOf(Object space) {
  const std::string name = space.isName() ? space.getName() : "";
  return name == "/DeviceGray" ? 1 : name == "/DeviceRGB" ? 3 : name == "/DeviceCMYK" ? 4 : 0;
}

// A new picture of the same colours is explained by the old one's profile.
void KeepProfile(Object image, Object profile) {
  if (!profile.isStream()) return;
  Object dictionary = image.getDict();
  Object space = dictionary.getKey("/ColorSpace");
  Object explained = Object::newArray(std::vector<Object>{Object::newName("/ICCBased"), profile});
  const auto components = profile.getDict().getKey("/N").getIntValue();
  if (space.isArray() && space.getArrayNItems() > 1 &&
      ComponentsOf(space.getArrayItem(1)) == components) {
    space.setArrayItem(1, explained);
  } else if (ComponentsOf(space) == components) {
    dictionary.replaceKey("/ColorSpace", explained);
  }
}

Object FormRound(QPDF& pdf, const Object& image, const Matrix& matrix) {
  Object form = Object::newStream(&pdf, "/Picture Do\n");
  Object dictionary = form.getDict();
  dictionary.replaceKey("/Type", Object::newName("/XObject"));
  dictionary.replaceKey("/Subtype", Object::newName("/Form"));
  dictionary.replaceKey("/BBox", Object::parse("[0 0 1 1]"));
  std::vector<Object> numbers;
  for (const double number : {matrix.a, matrix.b, matrix.c, matrix.d, matrix.e, matrix.f}) {
    numbers.push_back(Object::newInteger(static_cast<long long>(number)));
  }
  dictionary.replaceKey("/Matrix", Object::newArray(numbers));
  Object resources = Object::newDictionary();
  Object pictures = Object::newDictionary();
  pictures.replaceKey("/Picture", image);
  resources.replaceKey("/XObject", pictures);
  dictionary.replaceKey("/Resources", resources);
  return form;
}

// Pages may share resources and forms: those on the way to the picture become the page's own.
void Hang(Object resources, const std::vector<std::string>& names, std::size_t at,
          const Object& image) {
  Object drawn = resources.getKey("/XObject").shallowCopy();
  resources.replaceKey("/XObject", drawn);
  if (at + 1 == names.size()) {
    drawn.replaceKey(names[at], image);
    return;
  }
  Object form = drawn.getKey(names[at]).copyStream();
  drawn.replaceKey(names[at], form);
  Object dictionary = form.getDict();
  // A form without resources of its own draws with those round it.
  Object inner = dictionary.getKey("/Resources").isDictionary()
                     ? dictionary.getKey("/Resources").shallowCopy()
                     : resources.shallowCopy();
  dictionary.replaceKey("/Resources", inner);
  Hang(inner, names, at + 1, image);
}

// Left, top, right and bottom of what surrounds the picture as shown, in points.
std::vector<double> MarginsOf(const DrawnPicture& drawn) {
  const Box square = BoxOfSquare(drawn.place);
  std::vector<double> margins{square.left - drawn.box.left, drawn.box.top - square.top,
                              drawn.box.right - square.right, square.bottom - drawn.box.bottom};
  for (double& margin : margins) margin = std::max(margin, 0.0) * drawn.unit;
  constexpr int kMost = 3;
  // A page turned clockwise has its lower margin on the left.
  const Point up = At(drawn.turn, {0, 1});
  const int quarters = up.x > 0 ? 1 : up.y < 0 ? 2 : up.x < 0 ? kMost : 0;
  std::rotate(margins.begin(), margins.end() - quarters, margins.end());
  return margins;
}

Object PageBoxOf(double width, double height) {
  constexpr int kDecimals = 4;
  return Object::newArray(std::vector<Object>{Object::newInteger(0), Object::newInteger(0),
                                              Object::newReal(width, kDecimals),
                                              Object::newReal(height, kDecimals)});
}

}  // namespace

Object PdfObjects::take(bool isJpeg, const std::string& path, modules::Picture& picture) {
  if (!spool_) spool_ = std::make_shared<modules::Spool>(path);
  const auto coded = modules::PictureFiles().take(isJpeg ? "jpeg" : "tiff", path, 1, *spool_);
  modules::Require(coded, kModuleReadFailed);
  Object image = modules::MakeImageObject(pdf_, *coded, spool_);
  KeepProfile(image, look_.facts.profile);
  picture = coded->picture;
  return image;
}

void PdfObjects::exchange(int number, bool isJpeg, const std::string& path) {
  InWords([&] {
    require(number);
    modules::Picture picture;
    Object image = take(isJpeg, path, picture);
    const int before = look_.page.orientation;
    if (picture.orientation != before) {
      image = FormRound(pdf_, image,
                        Then(UprightMatrix(picture.orientation), InverseOfUpright(before)));
    }
    Object page = pages_.at(static_cast<std::size_t>(number) - 1);
    Object resources = QPDFPageObjectHelper(page).getAttribute("/Resources", true);
    Hang(resources, look_.drawn.names, 0, image);
    page.removeKey("/Thumb");
    look_ = {};
  });
}

void PdfObjects::remake(int number, bool isJpeg, const std::string& path, double width,
                        double height) {
  InWords([&] {
    constexpr double kMostUnits = 14400;  // that readers take; beyond, units are larger than points
    require(number);
    modules::Picture picture;
    Object pictures = Object::newDictionary();
    pictures.replaceKey("/Picture", take(isJpeg, path, picture));
    Object resources = Object::newDictionary();
    resources.replaceKey("/XObject", pictures);

    const std::vector<double> margins = MarginsOf(look_.drawn);
    const double across = margins[0] + width + margins[2];
    const double down = margins[1] + height + margins[3];
    const double unit = std::max(1.0, std::ceil(std::max(across, down) / kMostUnits));
    const modules::Shown shown = modules::ShownOf(picture);
    const std::string content = modules::ScaleContent(1 / unit, 1 / unit) + "1 0 0 1 " +
                                modules::NumberText(margins[0]) + " " +
                                modules::NumberText(margins[3]) + " cm\n" +
                                modules::ScaleContent(width / shown.width, height / shown.height) +
                                modules::PlaceContent("/Picture", picture, 0, 0, 1);

    Object page = pages_.at(static_cast<std::size_t>(number) - 1);
    for (const char* key : {"/BleedBox", "/TrimBox", "/ArtBox", "/Annots", "/Thumb", "/Group"}) {
      page.removeKey(key);
    }
    // Said even where they are usual: they may be inherited otherwise.
    page.replaceKey("/Rotate", Object::newInteger(0));
    page.replaceKey("/MediaBox", PageBoxOf(across / unit, down / unit));
    page.replaceKey("/CropBox", PageBoxOf(across / unit, down / unit));
    page.replaceKey("/UserUnit", Object::newInteger(static_cast<long long>(unit)));
    page.replaceKey("/Resources", resources);
    page.replaceKey("/Contents", Object::newStream(&pdf_, content));
    look_ = {};
  });
}

void PdfObjects::keepOnly(const std::vector<int>& pages) {
  InWords([&] {
    const std::set<int> kept(pages.begin(), pages.end());
    for (int number = 1; number <= pageCount(); ++number) {
      if (kept.count(number) != 0) continue;
      Object page = pages_[static_cast<std::size_t>(number) - 1];
      pdf_.removePage(page);
      // Outlines may lead there still, and would keep it in the file.
      pdf_.replaceObject(page.getObjGen(), Object::newNull());
    }
  });
}

void PdfObjects::write(const std::string& path) {
  InWords([&] {
    constexpr const char* kNotWritten = "the target could not be written";
    modules::FileHandle file = modules::OpenFile(path.c_str(), "wb");
    if (!file) throw PdfFault(kNotWritten);
    QPDFWriter writer(pdf_);
    writer.setOutputFile(path.c_str(), file.get(), false);
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.write();
    if (!modules::CloseWritten(std::move(file))) throw PdfFault(kNotWritten);
  });
}

}  // namespace client
