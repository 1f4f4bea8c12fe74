#include "pdflib/image_object.h"

namespace modules {
namespace {

using Object = QPDFObjectHandle;

class SpooledData : public Object::StreamDataProvider {
 public:
  SpooledData(std::shared_ptr<Spool> spool, const Spool::Range& range)
      : spool_(std::move(spool)), range_(range) {}
  void provideStreamData(const QPDFObjGen& /*object*/, Pipeline* pipeline) override {
    spool_->copy(range_, *pipeline);
    pipeline->finish();
  }

 private:
  std::shared_ptr<Spool> spool_;
  Spool::Range range_;
};

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
  switch (coded.components) {
    case 1:
      return Object::newName("/DeviceGray");
    case 3:
      return Object::newName("/DeviceRGB");
    default:
      return Object::newName("/DeviceCMYK");
  }
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
  const Picture& picture = coded.picture;
  Object parameters = Object::newDictionary();
  switch (coded.coding) {
    case Coding::kFlate:
    case Coding::kJpeg:
      return Object::newNull();
    case Coding::kFlateDifferences: {
      constexpr int kHorizontalDifferences = 2;
      parameters.replaceKey("/Predictor", Object::newInteger(kHorizontalDifferences));
      parameters.replaceKey("/Colors", Object::newInteger(coded.components));
      parameters.replaceKey("/Columns", Object::newInteger(picture.width));
      break;
    }
    case Coding::kFax: {
      constexpr int kGroup4 = -1;
      parameters.replaceKey("/K", Object::newInteger(kGroup4));
      parameters.replaceKey("/Columns", Object::newInteger(picture.width));
      parameters.replaceKey("/Rows", Object::newInteger(picture.height));
      // The bits come out as they were in the file; which of them is black, /Decode tells.
      parameters.replaceKey("/BlackIs1", Object::newBool(true));
      break;
    }
    case Coding::kJpegOfRgb:
      parameters.replaceKey("/ColorTransform", Object::newInteger(0));
      break;
  }
  return parameters;
}

}  // namespace

QPDFObjectHandle MakeImageObject(QPDF& pdf, const CodedPicture& coded,
                                 const std::shared_ptr<Spool>& spool) {
  const Picture& picture = coded.picture;
  Object image = Object::newStream(&pdf);
  image.replaceStreamData(std::make_shared<SpooledData>(spool, coded.data),
                          Object::newName(FilterOf(coded.coding)), ParametersOf(coded));
  Object dictionary = image.getDict();
  dictionary.replaceKey("/Type", Object::newName("/XObject"));
  dictionary.replaceKey("/Subtype", Object::newName("/Image"));
  dictionary.replaceKey("/Width", Object::newInteger(picture.width));
  dictionary.replaceKey("/Height", Object::newInteger(picture.height));
  dictionary.replaceKey("/BitsPerComponent", Object::newInteger(picture.bits));
  dictionary.replaceKey("/ColorSpace", ColorSpaceOf(coded));
  if (picture.reversed) {
    std::vector<Object> ranges;
    for (int i = 0; i < coded.components; ++i) {
      ranges.push_back(Object::newInteger(1));
      ranges.push_back(Object::newInteger(0));
    }
    dictionary.replaceKey("/Decode", Object::newArray(ranges));
  }
  return image;
}

}  // namespace modules
