#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

#include "carried.h"
#include "exif_block.h"
#include "file_access.h"

namespace client {
namespace {

// Tags that tell how the pixels lie in the file, in rising order: they are each file's own.
constexpr std::array<std::uint16_t, 48> kOfPixels{
    254, 255, 256, 257, 258, 259, 262, 263, 264, 265, 266, 273, 277, 278, 279, 280,
    281, 284, 288, 289, 290, 291, 292, 293, 317, 320, 321, 322, 323, 324, 325, 326,
    327, 328, 330, 332, 333, 334, 336, 338, 339, 340, 341, 347, 512, 513, 514, 515};
constexpr std::uint16_t kFirstYcbcr = 517;
constexpr std::uint16_t kLastYcbcr = 532;
constexpr std::uint16_t kTransferFunction = 301;
constexpr std::uint16_t kStripRowCounts = 559;

bool IsOfPixels(std::uint16_t tag) {
  return std::binary_search(kOfPixels.begin(), kOfPixels.end(), tag) || tag == kTransferFunction ||
         (tag >= kFirstYcbcr && tag <= kLastYcbcr) || tag == kStripRowCounts || tag == kTagLayers;
}
bool IsResolution(std::uint16_t tag) {
  return tag == kTagXResolution || tag == kTagYResolution || tag == kTagResolutionUnit;
}

Bytes TakeTag(TagDirectory& directory, std::uint16_t tag) {
  const auto node = directory.tags.extract(tag);
  return node.empty() ? Bytes{} : std::move(node.mapped().value);
}

// IPTC is bytes, yet often called numbers of 32 bits, and then turned with them in some files.
Bytes TakeIptc(TagDirectory& directory) {
  constexpr std::uint8_t kMark = 0x1C;
  constexpr std::ptrdiff_t kUnit = 4;
  Bytes iptc = TakeTag(directory, kTagIptc);
  if (iptc.size() % kUnit == 0 && !iptc.empty() && iptc[0] != kMark && iptc[kUnit - 1] == kMark) {
    for (auto at = iptc.begin(); at != iptc.end(); at += kUnit) std::reverse(at, at + kUnit);
  }
  return iptc;
}

struct Page {
  TagForm form;
  std::uint64_t placeAt;  // where the file tells the directory's position
  std::uint64_t at;       // the directory's position
};

Page OpenPage(std::istream& file, int number, PagePlace* last) {
  const auto form = ReadTagForm(file);
  if (!form) throw MetadataFault("no TIFF file");
  PagePlace first;
  const auto place = FindPage(file, *form, number, last == nullptr ? first : *last);
  if (!place) throw MetadataFault("the file has no page " + std::to_string(number));
  return {*form, *place, NumberAt(file, *form, *place, form->offsetBytes())};
}

// PNG's usual keywords, as far as TIFF knows the same.
std::uint16_t TagFor(const std::string& keyword) {
  static const std::map<std::string_view, std::uint16_t> kTags{{"Title", 269},
                                                               {"Description", kTagDescription},
                                                               {"Comment", kTagDescription},
                                                               {"Software", 305},
                                                               {"Author", 315},
                                                               {"Copyright", 33432}};
  const auto found = kTags.find(keyword);
  return found == kTags.end() ? 0 : found->second;
}

void Put(TagDirectory& tags, std::uint16_t tag, std::uint16_t type, View value) {
  if (!value.empty()) tags.tags[tag] = {type, Bytes(value.begin(), value.end())};
}

void PutExif(TagDirectory& tags, View exif, ByteOrder order) {
  ByteOrder own = order;
  TagDirectory block = TagsOf(exif, own);
  if (own != order) TurnByteOrder(block);
  // The picture's own resolution, where it has one, is what it was loaded with.
  const bool needsResolution = !tags.tags.contains(kTagXResolution);
  for (auto& [id, tag] : block.tags) {
    if (IsOfPixels(id) || id == kTagOrientation || (IsResolution(id) && !needsResolution)) continue;
    tags.tags[id] = std::move(tag);
  }
  for (auto& [id, lower] : block.below) tags.below[id] = std::move(lower);
}

// False when the tag says something else already; cameras fill some with blanks.
bool PutText(TagDirectory& tags, std::uint16_t id, std::string_view text) {
  constexpr std::string_view kBlank{" \0", 2};
  Tag& tag = tags.tags[id];
  const Tag wanted = TextTag(text);
  if (TextOf(tag.value).find_first_not_of(kBlank) == std::string_view::npos) tag = wanted;
  return tag.value == wanted.value;
}

void PutTexts(TagDirectory& tags, Carried& carried) {
  std::erase_if(carried.texts, [&](const PngText& text) {
    const std::uint16_t id = TagFor(text.keyword);
    return id != 0 && PutText(tags, id, text.text);
  });
  std::erase_if(carried.comments, [&](const std::string& comment) {
    return PutText(tags, kTagDescription, comment);
  });
  carried.loseTexts("TIFF");
}

std::string_view ColorsOf(const TagDirectory& tags, ByteOrder order) {
  constexpr std::uint64_t kLastGray = 1;
  constexpr std::uint64_t kInks = 5;
  const auto found = tags.tags.find(kTagPhotometric);
  const std::uint64_t meaning =
      found == tags.tags.end() ? 0 : NumberIn(found->second.value, 2, order);
  return meaning <= kLastGray ? "GRAY" : meaning == kInks ? "CMYK" : "RGB";
}

void PutAll(TagDirectory& tags, TagForm form, Carried& carried) {
  carried.fitProfile(ColorsOf(tags, form.order));
  carried.loseSegments("TIFF");
  carried.loseChunks("TIFF");
  if (!carried.exif.empty()) PutExif(tags, carried.exif, form.order);
  if (!carried.resolution.tags.empty()) {
    if (carried.resolutionOrder != form.order) TurnByteOrder(carried.resolution);
    for (const auto& [id, tag] : carried.resolution.tags) tags.tags[id] = tag;
  }
  PutTexts(tags, carried);
  Put(tags, kTagXmp, kTypeByte, ViewOf(carried.xmp));
  Put(tags, kTagIptc, kTypeUndefined, TakePhotoshop(carried.photoshop, kPhotoshopIptc));
  Put(tags, kTagPhotoshop, kTypeByte, WritePhotoshop(carried.photoshop));
  Put(tags, kTagProfile, kTypeUndefined, carried.profile);
}

// Writes the directory behind the file's end, then tells its position in place of the old one's, so
// that the file is whole at every moment.
void Rehang(std::fstream& file, const std::string& path, const Page& page,
            const TagDirectory& tags) {
  const std::uint64_t entries = NumberAt(file, page.form, page.at, page.form.countBytes());
  const std::uint64_t next =
      NumberAt(file, page.form, page.at + page.form.countBytes() + entries * page.form.entryBytes(),
               page.form.offsetBytes());
  const std::uint64_t end = std::filesystem::file_size(path);
  const std::uint64_t at = end + end % 2;
  const auto bytes = WriteTags(tags, page.form, at, next);
  if (!bytes) throw MetadataFault("the TIFF file would become longer than 4 GiB");
  const auto write = [&](std::uint64_t place, View what) {
    file.clear();
    file.seekp(static_cast<std::streamoff>(place));
    file.write(reinterpret_cast<const char*>(what.data()),
               static_cast<std::streamsize>(what.size()));
    file.flush();
    if (!file) {
      std::error_code ignored;
      std::filesystem::resize_file(path, end, ignored);
      throw MetadataFault("the file could not be written anew with its metadata");
    }
  };
  write(at, *bytes);
  Bytes place(page.form.offsetBytes());
  PutNumber(place, at, page.form.order);
  write(page.placeAt, place);
}

}  // namespace

void ReadTiffMetadata(const std::string& path, int page, Carried& carried, PagePlace* last) {
  std::ifstream file(path, std::ios::binary);
  const Page found = OpenPage(file, page, last);
  bool isWhole = true;
  TagDirectory tags = ReadTags(
      file, found.form, found.at,
      [&](std::uint16_t tag) {
        if (tag == kTagLayers)
          carried.lose("the Photoshop layers", "they show the picture as it was");
        return !IsOfPixels(tag);
      },
      isWhole);
  if (!isWhole) carried.lose("some TIFF tags", "they are damaged or too long");
  carried.xmp = TextOf(TakeTag(tags, kTagXmp));
  carried.profile = TakeTag(tags, kTagProfile);
  carried.photoshop = ReadPhotoshop(TakeTag(tags, kTagPhotoshop));
  if (const Bytes iptc = TakeIptc(tags); !iptc.empty()) {
    TakePhotoshop(carried.photoshop, kPhotoshopIptc);
    AddPhotoshop(carried.photoshop, kPhotoshopIptc, iptc);
  }
  for (const auto& [id, tag] : tags.tags) {
    if (IsResolution(id)) carried.resolution.tags[id] = tag;
  }
  carried.resolutionOrder = found.form.order;
  const bool tellsMore =
      !tags.below.empty() || std::any_of(tags.tags.begin(), tags.tags.end(), [](const auto& one) {
        return !IsResolution(one.first) && one.first != kTagOrientation;
      });
  // Blocks know no numbers of 64 bits.
  std::erase_if(tags.tags, [](const auto& one) { return one.second.type >= kTypeBigLong; });
  if (tellsMore) carried.exif = BlockOf(tags, found.form.order);
}

void WriteTiffMetadata(const std::string& path, int page, Carried& carried, PagePlace* last) {
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  const Page found = OpenPage(file, page, last);
  bool isWhole = true;
  TagDirectory tags = ReadTags(
      file, found.form, found.at, [](std::uint16_t) { return true; }, isWhole);
  if (!isWhole) throw MetadataFault("the result's own tags could not be read");
  PutAll(tags, found.form, carried);
  Rehang(file, path, found, tags);
}

}  // namespace client
