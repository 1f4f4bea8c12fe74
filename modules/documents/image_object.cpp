#include "documents/image_object.h"

namespace modules {
namespace {

using Object = QPDFObjectHandle;

Object BaseColorsOf(const CodedPicture& coded, const Object* profile) {
  if (profile != nullptr) {
    return Object::newArray(std::vector<Object>{Object::newName("/ICCBased"), *profile});
  }
  const int components = coded.colorComponents();
  return Object::newName(components == 1   ? "/DeviceGray"
                         : components == 3 ? "/DeviceRGB"
                                           : "/DeviceCMYK");
}

Object ColorSpaceOf(const CodedPicture& coded, const Object* profile) {
  Object base = BaseColorsOf(coded, profile);
  const std::vector<RGBQUAD>& palette = coded.picture.palette;
  if (palette.empty()) return base;
  std::string colors;
  for (const RGBQUAD& entry : palette) {
    for (const std::uint8_t tone : {entry.rgbRed, entry.rgbGreen, entry.rgbBlue}) {
      colors.push_back(static_cast<char>(tone));
    }
  }
  const auto last = static_cast<long long>(palette.size()) - 1;
  return Object::newArray(std::vector<Object>{Object::newName("/Indexed"), base,
                                              Object::newInteger(last), Object::newString(colors)});
}

const char* FilterOf(Coding coding) {
  switch (coding) {
    case Coding::kFax:
      return "/CCITTFaxDecode";
    case Coding::kJpeg:
    case Coding::kJpegOfRgb:
      return "/DCTDecode";
    default:
      return "/FlateDecode";
  }
}

// What the reader has to know to undo the coding.
Object ParametersOf(const CodedPicture& coded) {
  // 8 unless told.
  const std::string bits =
      coded.bits == 8 ? "" : " /BitsPerComponent " + std::to_string(coded.bits);
  const std::string columns = " /Columns " + std::to_string(coded.picture.width);
  switch (coded.coding) {
    case Coding::kFlateDifferences:
      return Object::parse("<< /Predictor 2 /Colors " + std::to_string(coded.components) + bits +
                           columns + " >>");
    case Coding::kFlateFilters:
      return Object::parse("<< /Predictor 15 /Colors " + std::to_string(coded.components) + bits +
                           columns + " >>");
    case Coding::kFax:
      // Group 4. The bits come out as they were in the file; which of them is black, /Decode tells.
      return Object::parse("<< /K -1 /BlackIs1 true /Rows " + std::to_string(coded.picture.height) +
                           columns + " >>");
    case Coding::kJpegOfRgb:
      return Object::parse("<< /ColorTransform 0 >>");
    default:
      return Object::newNull();
  }
}

}  // namespace

QPDFObjectHandle MakeStream(QPDF& pdf, const std::shared_ptr<Spool>& spool, Spool::Range data,
                            const QPDFObjectHandle& filter, const QPDFObjectHandle& parameters) {
  Object stream = Object::newStream(&pdf);
  stream.replaceStreamData(
      [spool, data](Pipeline* pipeline) {
        spool->copy(data, *pipeline);
        pipeline->finish();
      },
      filter, parameters);
  return stream;
}

QPDFObjectHandle MakeImageObject(QPDF& pdf, const CodedPicture& coded,
                                 const std::shared_ptr<Spool>& spool,
                                 const QPDFObjectHandle* profile) {
  const Picture& picture = coded.picture;
  Object image = MakeStream(pdf, spool, coded.data, Object::newName(FilterOf(coded.coding)),
                            ParametersOf(coded));
  Object dictionary = image.getDict();
  dictionary.replaceKey("/Type", Object::newName("/XObject"));
  dictionary.replaceKey("/Subtype", Object::newName("/Image"));
  dictionary.replaceKey("/Width", Object::newInteger(picture.width));
  dictionary.replaceKey("/Height", Object::newInteger(picture.height));
  dictionary.replaceKey("/BitsPerComponent", Object::newInteger(coded.bits));
  dictionary.replaceKey("/ColorSpace", ColorSpaceOf(coded, profile));
  if (picture.reversed) {
    std::string ranges;
    for (int i = 0; i < coded.components; ++i) ranges += " 1 0";
    dictionary.replaceKey("/Decode", Object::parse("[" + ranges + " ]"));
  }
  return image;
}

}  // namespace modules
