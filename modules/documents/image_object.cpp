#include "documents/image_object.h"

namespace modules {
namespace {

using Object = QPDFObjectHandle;

Object PaletteOf(const Picture& picture) {
  std::string colors;
  for (const RGBQUAD& entry : picture.palette) {
    const std::uint8_t alpha = picture.hasAlpha ? entry.rgbReserved : std::uint8_t{255};
    for (const std::uint8_t tone : {entry.rgbRed, entry.rgbGreen, entry.rgbBlue}) {
      colors.push_back(static_cast<char>(OnWhite(tone, alpha)));
    }
  }
  const auto last = static_cast<long long>(picture.palette.size()) - 1;
  return Object::newArray(std::vector<Object>{Object::newName("/Indexed"),
                                              Object::newName("/DeviceRGB"),
                                              Object::newInteger(last), Object::newString(colors)});
}

Object ColorSpaceOf(const CodedPicture& coded) {
  if (!coded.picture.palette.empty()) return PaletteOf(coded.picture);
  return Object::newName(coded.components == 1   ? "/DeviceGray"
                         : coded.components == 3 ? "/DeviceRGB"
                                                 : "/DeviceCMYK");
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
  const std::string columns = " /Columns " + std::to_string(coded.picture.width);
  switch (coded.coding) {
    case Coding::kFlateDifferences:
      return Object::parse("<< /Predictor 2 /Colors " + std::to_string(coded.components) + columns +
                           " >>");
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

QPDFObjectHandle MakeImageObject(QPDF& pdf, const CodedPicture& coded,
                                 const std::shared_ptr<Spool>& spool) {
  const Picture& picture = coded.picture;
  Object image = Object::newStream(&pdf);
  image.replaceDict(Object::parse("<< /Type /XObject /Subtype /Image /Width " +
                                  std::to_string(picture.width) + " /Height " +
                                  std::to_string(picture.height) + " /BitsPerComponent " +
                                  std::to_string(picture.bits) + " >>"));
  image.replaceStreamData(
      [spool, range = coded.data](Pipeline* pipeline) {
        spool->copy(range, *pipeline);
        pipeline->finish();
      },
      Object::newName(FilterOf(coded.coding)), ParametersOf(coded));
  image.getDict().replaceKey("/ColorSpace", ColorSpaceOf(coded));
  if (picture.reversed) {
    std::string ranges;
    for (int i = 0; i < coded.components; ++i) ranges += " 1 0";
    image.getDict().replaceKey("/Decode", Object::parse("[" + ranges + " ]"));
  }
  return image;
}

}  // namespace modules
