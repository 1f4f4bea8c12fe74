#include "xmp_packet.h"

#include <cmath>
#include <string_view>
#include <vector>

namespace client {
namespace {

constexpr std::string_view kTiffNames = "http://ns.adobe.com/tiff/1.0/";
constexpr std::string_view kExifNames = "http://ns.adobe.com/exif/1.0/";
constexpr std::string_view kXmpNames = "http://ns.adobe.com/xap/1.0/";
constexpr std::string_view kBlank = " \t\r\n";

// What the packet calls a space of names: the x of every xmlns:x="space", once each.
std::vector<std::string> PrefixesOf(const std::string& xmp, std::string_view space) {
  constexpr std::string_view kDeclaration = "xmlns:";
  std::vector<std::string> prefixes;
  for (std::size_t at = xmp.find(space); at != std::string::npos; at = xmp.find(space, at + 1)) {
    const std::size_t start = xmp.rfind(kDeclaration, at);
    const std::size_t end = xmp.find_first_of("=> \t\r\n", start);
    if (start == std::string::npos || end >= at || xmp.find_first_of("\"'", end) != at - 1)
      continue;
    const std::size_t name = start + kDeclaration.size();
    std::string prefix = xmp.substr(name, end - name);
    if (prefixes.empty() || prefixes.back() != prefix) prefixes.push_back(std::move(prefix));
  }
  return prefixes;
}

// Sets name="value" and <name>value</name>, wherever they stand.
void SetValue(std::string& xmp, const std::string& name, const std::string& value) {
  for (std::size_t at = xmp.find(name); at != std::string::npos; at = xmp.find(name, at + 1)) {
    const char before = at == 0 ? '\0' : xmp[at - 1];
    std::size_t start = xmp.find_first_not_of(kBlank, at + name.size());
    if (start == std::string::npos) return;
    std::size_t end = 0;
    if (before == '<' && xmp[start] == '>') {
      end = xmp.find('<', ++start);
    } else if (kBlank.find(before) != std::string_view::npos && xmp[start] == '=') {
      start = xmp.find_first_of("\"'", start);
      if (start == std::string::npos) return;
      const char quote = xmp[start++];
      end = xmp.find(quote, start);
    } else {
      continue;
    }
    if (end == std::string::npos) return;
    xmp.replace(start, end - start, value);
  }
}

// Takes <name ...>...</name> out.
void DropElement(std::string& xmp, const std::string& name) {
  const std::string closing = "</" + name + ">";
  for (;;) {
    const std::size_t start = xmp.find("<" + name);
    const std::size_t end = xmp.find(closing, start);
    if (start == std::string::npos || end == std::string::npos) return;
    xmp.erase(start, end + closing.size() - start);
  }
}

std::string FractionOf(double number) {
  constexpr int kDenominator = 100;
  return std::to_string(std::lround(number * kDenominator)) + "/" + std::to_string(kDenominator);
}

}  // namespace

bool BringUpToDate(std::string& xmp, const PictureFacts& facts) {
  if (xmp.find('\0') != std::string::npos) return false;
  const std::string width = std::to_string(facts.width);
  const std::string height = std::to_string(facts.height);
  for (const std::string& tiff : PrefixesOf(xmp, kTiffNames)) {
    SetValue(xmp, tiff + ":Orientation", "1");
    SetValue(xmp, tiff + ":ImageWidth", width);
    SetValue(xmp, tiff + ":ImageLength", height);
    if (facts.xDotsPerInch <= 0 || facts.yDotsPerInch <= 0) continue;
    SetValue(xmp, tiff + ":XResolution", FractionOf(facts.xDotsPerInch));
    SetValue(xmp, tiff + ":YResolution", FractionOf(facts.yDotsPerInch));
    SetValue(xmp, tiff + ":ResolutionUnit", "2");
  }
  for (const std::string& exif : PrefixesOf(xmp, kExifNames)) {
    SetValue(xmp, exif + ":PixelXDimension", width);
    SetValue(xmp, exif + ":PixelYDimension", height);
    if (facts.inSrgb) SetValue(xmp, exif + ":ColorSpace", "1");
  }
  for (const std::string& previews : PrefixesOf(xmp, kXmpNames)) {
    DropElement(xmp, previews + ":Thumbnails");
  }
  return true;
}

}  // namespace client
