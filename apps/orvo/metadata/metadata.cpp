#include "metadata.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>

#include "carried.h"
#include "exif_block.h"
#include "icc_profile.h"
#include "told_colors.h"
#include "xmp_packet.h"

namespace client {
namespace {

enum class Kind { kJpeg, kPng, kPhotoshop, kTiff, kWebp, kGif, kOther };

Kind KindOf(const std::string& path) {
  constexpr std::uint64_t kMarkBytes = 12;
  FileReader file(path);
  const Bytes mark = file.read(std::min(kMarkBytes, file.size()));
  if (StartsWith(mark, "\xFF\xD8\xFF")) return Kind::kJpeg;
  if (StartsWith(mark, "\x89PNG")) return Kind::kPng;
  if (StartsWith(mark, "8BPS")) return Kind::kPhotoshop;
  if (StartsWith(mark, "II") || StartsWith(mark, "MM")) return Kind::kTiff;
  if (StartsWith(mark, "GIF8")) return Kind::kGif;
  if (StartsWith(mark, "RIFF") && TextOf(mark).ends_with("WEBP")) return Kind::kWebp;
  return Kind::kOther;
}

// "PCX", of a file that ends so.
std::string NameOfKind(const std::string& path) {
  std::string name = std::filesystem::path(path).extension().string();
  if (name.size() < 2) return "the format";
  name.erase(0, 1);
  std::transform(name.begin(), name.end(), name.begin(), [](unsigned char letter) {
    return static_cast<char>(letter >= 'a' && letter <= 'z' ? letter - 'a' + 'A' : letter);
  });
  return name;
}

// The colours that profiles in documents explain.
struct Space {
  std::string_view name;
  int components;
};
constexpr Space kSpaces[] = {{"GRAY", 1}, {"RGB", 3}, {"CMYK", 4}};

// What cannot be read is told and left out; the picture itself could be.
void Read(const MetadataRequest& request, Carried& carried) {
  try {
    switch (KindOf(request.source)) {
      case Kind::kJpeg:
        return ReadJpegMetadata(request.source, carried);
      case Kind::kPng:
        return ReadPngMetadata(request.source, carried);
      case Kind::kPhotoshop:
        return ReadPhotoshopMetadata(request.source, carried);
      case Kind::kTiff:
        return ReadTiffMetadata(request.source, request.page, carried, request.sourcePlace);
      case Kind::kWebp:
        return ReadWebpMetadata(request.source, carried);
      case Kind::kGif:
        return ReadGifMetadata(request.source, carried);
      case Kind::kOther:
        return ReadAttachedMetadata(request.source, carried);
    }
  } catch (const MetadataFault& fault) {
    carried.lose("the metadata", fault.what());
  }
}

// A PNG file's ways to tell colours without a profile.
bool TellsColors(const PngChunk& chunk) {
  return chunk.type == "gAMA" || chunk.type == "cHRM" || chunk.type == "sRGB" ||
         chunk.type == "cICP" || chunk.type == "iCCP";
}

void DropColors(Carried& carried) {
  carried.profile.clear();
  std::erase_if(carried.chunks, TellsColors);
}

// A damaged profile stays as it was, but goes nowhere else.
void DropDamagedProfile(Carried& carried) {
  if (carried.profile.empty() || !ColorsOfProfile(carried.profile).empty()) return;
  carried.lose("the color profile", "it is damaged");
  carried.profile.clear();
}

void TakeOff(Strip strip, Carried& carried) {
  if (strip == Strip::kNothing) return;
  Carried rest;
  if (strip == Strip::kAllButProfile) {
    rest.profile = std::move(carried.profile);
    for (PngChunk& chunk : carried.chunks) {
      if (TellsColors(chunk)) rest.chunks.push_back(std::move(chunk));
    }
  }
  rest.density = std::move(carried.density);
  rest.resolution = std::move(carried.resolution);
  rest.resolutionOrder = carried.resolutionOrder;
  carried = std::move(rest);
}

// The result is upright: what its source says across is said down.
void TurnResolution(Carried& carried) {
  if (!carried.density.empty()) {
    std::swap_ranges(carried.density.begin() + 1, carried.density.begin() + 3,
                     carried.density.begin() + 3);
  }
  auto& tags = carried.resolution.tags;
  if (tags.contains(kTagXResolution) && tags.contains(kTagYResolution)) {
    std::swap(tags[kTagXResolution], tags[kTagYResolution]);
  }
}

void DropResolution(Carried& carried) {
  carried.density.clear();
  carried.resolution.tags.clear();
  TakePhotoshop(carried.photoshop, kPhotoshopResolution);
  std::erase_if(carried.chunks, [](const PngChunk& chunk) { return chunk.type == "pHYs"; });
}

void BringAllUpToDate(const MetadataRequest& request, Carried& carried) {
  PictureFacts facts{.width = request.width, .height = request.height, .inSrgb = request.inSrgb};
  if (request.newResolution) {
    DropResolution(carried);
    facts.xDotsPerInch = request.xDotsPerInch;
    facts.yDotsPerInch = request.yDotsPerInch;
  } else if (constexpr int kFirstOnItsSide = 5; OrientationOf(carried.exif) >= kFirstOnItsSide) {
    TurnResolution(carried);
  }
  if (!carried.exif.empty() && !BringUpToDate(carried.exif, facts)) {
    carried.lose("the EXIF data", "it is damaged");
    carried.exif.clear();
  }
  if (!BringUpToDate(carried.xmp, facts)) {
    carried.lose("the XMP data", "it is not UTF-8 text");
    carried.xmp.clear();
  }
  TakePhotoshop(carried.photoshop, kPhotoshopThumbnail);
  TakePhotoshop(carried.photoshop, kPhotoshopThumbnailBgr);
}

void Write(const MetadataRequest& request, Carried& carried) {
  switch (KindOf(request.result)) {
    case Kind::kJpeg:
      return WriteJpegMetadata(request.result, carried);
    case Kind::kPng:
      return WritePngMetadata(request.result, carried);
    case Kind::kPhotoshop:
      return WritePhotoshopMetadata(request.result, carried);
    case Kind::kTiff:
      return WriteTiffMetadata(request.result, request.resultPage, carried, request.resultPlace);
    case Kind::kWebp:
      return WriteWebpMetadata(request.result, carried);
    case Kind::kGif:
    case Kind::kOther:
      return carried.loseAll(NameOfKind(request.result));
  }
}

}  // namespace

DocumentMetadata TakeForDocument(const MetadataRequest& request, PictureIs picture) {
  Carried carried;
  Read(request, carried);
  if (picture == PictureIs::kUpright) {
    if (request.colorsChanged) DropColors(carried);
    BringAllUpToDate(request, carried);
  }
  TakeOff(request.strip, carried);
  DocumentMetadata taken;
  taken.profile = std::move(carried.profile);
  taken.xmp = std::move(carried.xmp);
  const auto* const space =
      std::ranges::find(kSpaces, ColorsOfProfile(taken.profile), &Space::name);
  if (space != std::end(kSpaces)) taken.components = space->components;
  carried.profile.clear();
  carried.xmp.clear();
  std::erase_if(carried.chunks, [](const PngChunk& chunk) {
    return chunk.type == "gAMA" || chunk.type == "cHRM";  // what shows pictures knows no others
  });
  carried.loseAll("PDF");
  taken.lost = std::move(carried.lost);
  return taken;
}

void DocumentMetadata::fitTo(int pictureComponents) {
  if (components == pictureComponents) return;
  const auto* const space = std::ranges::find(kSpaces, pictureComponents, &Space::components);
  Carried carried;
  carried.profile = profile;
  carried.fitProfile(space == std::end(kSpaces) ? "of other colors" : space->name);
  lost.insert(lost.end(), carried.lost.begin(), carried.lost.end());
}

std::vector<std::string> KeepMetadata(const MetadataRequest& request) {
  Carried carried;
  Read(request, carried);
  const bool isOtherKind = KindOf(request.source) != KindOf(request.result);
  if (isOtherKind) DropDamagedProfile(carried);
  if (request.inSrgb) {
    DropColors(carried);
  } else if (request.colorsChanged) {
    if (!carried.profile.empty()) carried.lose("the color profile", "the colors became others");
    DropColors(carried);
  } else if (isOtherKind || (request.strip == Strip::kAllButProfile && carried.chunks.empty())) {
    carried.profile = ProfileIn(carried);
  }
  BringAllUpToDate(request, carried);
  TakeOff(request.strip, carried);
  if (request.inSrgb) carried.lose("the color profile", "the colors are brought to sRGB");
  Write(request, carried);
  return carried.lost;
}

std::vector<std::uint8_t> ReadColorProfile(const std::string& path, int page, PagePlace* last) {
  Carried carried;
  Read({.source = path, .page = page, .sourcePlace = last}, carried);
  return ProfileIn(carried);
}

}  // namespace client
