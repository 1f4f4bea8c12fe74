#include "image_facts.h"

#include <algorithm>
#include <array>

#include "pdf_file.h"
#include "streams.h"

namespace client {
namespace {

using Object = QPDFObjectHandle;
using Coding = ImageFacts::Coding;

int WholeOf(Object number, int fallback) {
  constexpr long long kMost = 1 << 24;
  if (!number.isInteger()) return fallback;
  return static_cast<int>(std::clamp(number.getIntValue(), -kMost, kMost));
}

bool IsTrue(Object value) {
  return value.isBool() && value.getBoolValue();
}

std::string NameOf(Object value) {
  return value.isName() ? value.getName() : "";
}

// An array, or what stands alone instead of it.
std::vector<Object> Items(Object object) {
  if (object.isArray()) return object.getArrayAsVector();
  if (object.isNull()) return {};
  return {object};
}

struct Filter {
  const char* name;
  const char* shown;
  Coding coding;
};
constexpr Filter kFilters[] = {
    {"/DCTDecode", "JPEG", Coding::kJpeg},
    {"/CCITTFaxDecode", "CCITT", Coding::kFax},
    {"/FlateDecode", "deflate", Coding::kSamples},
    {"/LZWDecode", "LZW", Coding::kSamples},
    {"/RunLengthDecode", "run length", Coding::kSamples},
    {"/ASCIIHexDecode", "none", Coding::kSamples},
    {"/ASCII85Decode", "none", Coding::kSamples},
};

void TakeFax(Object parameters, ImageFacts& facts) {
  constexpr int kColumns = 1728;  // unless told
  ImageFacts::Fax& fax = facts.fax;
  int columns = kColumns;
  if (parameters.isDictionary()) {
    fax.k = WholeOf(parameters.getKey("/K"), 0);
    fax.blackIs1 = IsTrue(parameters.getKey("/BlackIs1"));
    fax.byteAligned = IsTrue(parameters.getKey("/EncodedByteAlign"));
    fax.hasLineEnds = IsTrue(parameters.getKey("/EndOfLine"));
    columns = WholeOf(parameters.getKey("/Columns"), kColumns);
  }
  facts.codingName = fax.k < 0 ? "CCITT G4" : "CCITT G3";
  // What TIFF files hold too.
  const bool isKnown = fax.k < 0 ? !fax.byteAligned : fax.hasLineEnds;
  if (columns != facts.width || facts.bits != 1 || facts.components != 1 || !isKnown) {
    throw PdfFault("its picture is a fax of a kind that is not read");
  }
}

void TakeFilters(Object dictionary, ImageFacts& facts) {
  const std::vector<Object> filters = Items(dictionary.getKey("/Filter"));
  std::vector<Object> parameters = Items(dictionary.getKey("/DecodeParms"));
  parameters.resize(filters.size(), Object::newNull());
  for (std::size_t i = 0; i < filters.size(); ++i) {
    const std::string name = NameOf(filters[i]);
    const auto* const row = std::find_if(std::begin(kFilters), std::end(kFilters),
                                         [&](const Filter& one) { return name == one.name; });
    const bool isLast = i + 1 == filters.size();
    if (row == std::end(kFilters) || (row->coding != Coding::kSamples && !isLast)) {
      facts.codingName = name == "/JBIG2Decode" ? "JBIG2" : name == "/JPXDecode" ? "JPEG 2000" : "";
      throw PdfFault("its picture is coded as " +
                     (facts.codingName.empty() ? name : facts.codingName) + ", which is not read");
    }
    facts.codingName = row->shown;
    facts.coding = row->coding;
    if (row->coding == Coding::kSamples) continue;
    facts.outerFilters.assign(filters.begin(), filters.end() - 1);
    facts.outerParameters.assign(parameters.begin(), parameters.end() - 1);
    if (row->coding == Coding::kFax) TakeFax(parameters[i], facts);
    facts.mixesColors =
        !parameters[i].isDictionary() || WholeOf(parameters[i].getKey("/ColorTransform"), 1) != 0;
  }
}

struct Space {
  int components = 0;
  Object profile = Object::newNull();
  Object palette = Object::newNull();  // of indexes: a string or a stream
  int lastIndex = 0;
};

Space SpaceOf(const Object& object, bool mayBeIndexed);

Space ProfileSpace(Object stream) {
  if (!stream.isStream()) return {};
  Space space{WholeOf(stream.getDict().getKey("/N"), 0), stream};
  return space;
}

Space IndexedSpace(const std::vector<Object>& parts) {
  if (parts.size() < 4) return {};
  Space space = SpaceOf(parts[1], false);
  space.lastIndex = std::clamp(WholeOf(parts[2], 0), 0, 255);
  space.palette = parts[3];
  return space;
}

// No components for a space that is not known.
Space SpaceOf(const Object& object, bool mayBeIndexed) {
  const std::vector<Object> parts = Items(object);
  const std::string name = parts.empty() ? "" : NameOf(parts[0]);
  if (name == "/DeviceGray" || name == "/CalGray" || name == "/G") return {1};
  if (name == "/DeviceRGB" || name == "/CalRGB" || name == "/RGB") return {3};
  if (name == "/DeviceCMYK" || name == "/CMYK") return {4};
  if (name == "/ICCBased" && parts.size() > 1) return ProfileSpace(parts[1]);
  if (name == "/Indexed" && mayBeIndexed) return IndexedSpace(parts);
  return {};
}

// Colours of a palette as red, green and blue.
void TakePalette(const Space& space, ImageFacts& facts) {
  constexpr std::size_t kMostBytes = 4 * 256;
  Object table = space.palette;
  std::string bytes = table.isStream()   ? BytesOf(table, kMostBytes)
                      : table.isString() ? table.getStringValue()
                                         : "";
  const auto components = static_cast<std::size_t>(space.components);
  const std::size_t entries = std::size_t{1} << static_cast<unsigned>(facts.bits);
  bytes.resize(std::min(entries, static_cast<std::size_t>(space.lastIndex) + 1) * components);
  facts.palette.clear();
  const auto tone = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  for (std::size_t at = 0; at < bytes.size(); at += components) {
    for (std::size_t i = 0; i < 3; ++i) {
      const int value = components == 1   ? tone(at)
                        : components == 3 ? tone(at + i)
                                          : (255 - tone(at + i)) * (255 - tone(at + 3)) / 255;
      facts.palette.push_back(static_cast<char>(value));
    }
  }
  facts.palette.resize(entries * 3);
  facts.components = 1;
}

void TakeColors(Object dictionary, ImageFacts& facts) {
  constexpr std::array<int, 5> kBits{1, 2, 4, 8, 16};
  Space space = SpaceOf(dictionary.getKey("/ColorSpace"), true);
  const bool hasPalette = !space.palette.isNull();
  if ((space.components != 1 && space.components != 3 && space.components != 4) ||
      std::find(kBits.begin(), kBits.end(), facts.bits) == kBits.end() ||
      (hasPalette && facts.bits > 8)) {
    throw PdfFault("its colors are of a kind that is not read");
  }
  facts.components = space.components;
  facts.profile = space.profile;
  if (hasPalette) TakePalette(space, facts);
}

// From the lowest to the highest value, or the other way round.
void TakeRange(Object range, ImageFacts& facts) {
  if (range.isNull()) return;
  const double highest = facts.palette.empty() ? 1 : (1 << facts.bits) - 1;
  std::vector<Object> ends = Items(range);
  bool isPlain = true;
  bool isInverted = true;
  for (std::size_t i = 0; i < ends.size(); ++i) {
    const double value = ends[i].isNumber() ? ends[i].getNumericValue() : -1;
    isPlain = isPlain && value == (i % 2 == 0 ? 0 : highest);
    isInverted = isInverted && value == (i % 2 == 0 ? highest : 0);
  }
  if (ends.size() < 2 * static_cast<std::size_t>(facts.components) || !(isPlain || isInverted)) {
    throw PdfFault("its picture changes its tones by /Decode");
  }
  if (isPlain) return;
  if (facts.palette.empty()) {
    facts.inverted = !facts.inverted;
    return;
  }
  std::string turned;
  for (std::size_t at = facts.palette.size(); at > 0; at -= 3) {
    turned.append(facts.palette, at - 3, 3);
  }
  facts.palette = turned;
}

}  // namespace

void ReadImageFacts(QPDFObjectHandle image, bool inksBlack, ImageFacts& facts) {
  Object dictionary = image.getDict();
  facts.width = WholeOf(dictionary.getKey("/Width"), 0);
  facts.height = WholeOf(dictionary.getKey("/Height"), 0);
  const bool isStencil = IsTrue(dictionary.getKey("/ImageMask"));
  facts.profile = Object::newNull();
  const std::vector<Object> filters = Items(dictionary.getKey("/Filter"));
  const std::string coding = filters.empty() ? "" : NameOf(filters.back());
  const bool isFax = isStencil || coding == "/CCITTFaxDecode" || coding == "/JBIG2Decode";
  facts.bits = isStencil ? 1 : WholeOf(dictionary.getKey("/BitsPerComponent"), isFax ? 1 : 8);
  if (!isStencil && coding != "/JPXDecode") TakeColors(dictionary, facts);
  TakeFilters(dictionary, facts);
  if (facts.width <= 0 || facts.height <= 0) throw PdfFault("its picture is damaged");
  if (!dictionary.getKey("/F").isNull()) throw PdfFault("its picture lies in another file");
  if (!dictionary.getKey("/SMask").isNull() || !dictionary.getKey("/Mask").isNull()) {
    throw PdfFault("its picture lets the ground show through");
  }
  if (isStencil && !inksBlack) throw PdfFault("its picture is a stencil in a color");
  TakeRange(dictionary.getKey("/Decode"), facts);
}

}  // namespace client
