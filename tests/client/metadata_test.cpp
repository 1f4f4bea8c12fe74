// What a picture file holds beside the picture, carried from files that are laid out here by hand.
#include "metadata.h"

#include <gtest/gtest.h>
#include <libheif/heif.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "carried.h"
#include "exif_block.h"

namespace client {
namespace {

using Text = std::string;
using Lines = std::vector<Text>;

Text Number(std::uint64_t number, std::size_t bytes, ByteOrder order = ByteOrder::kBig) {
  Bytes out(bytes);
  PutNumber(out, number, order);
  return Text(TextOf(out));
}
bool Has(const Text& text, const Text& part) {
  return text.find(part) != Text::npos;
}

const Text kNote = "the maker's own note";
const Text kPreview = "PREVIEW";
const Text kXmp =
    "<x xmlns:tiff='http://ns.adobe.com/tiff/1.0/' xmlns:e=\"http://ns.adobe.com/exif/1.0/\" "
    "xmlns:xmp='http://ns.adobe.com/xap/1.0/' tiff:Orientation='6' my:Orientation='6'>"
    "<e:PixelXDimension>40</e:PixelXDimension><xmp:Thumbnails>PREVIEW</xmp:Thumbnails></x>";
const Text kXmpAfter =
    "<x xmlns:tiff='http://ns.adobe.com/tiff/1.0/' xmlns:e=\"http://ns.adobe.com/exif/1.0/\" "
    "xmlns:xmp='http://ns.adobe.com/xap/1.0/' tiff:Orientation='1' my:Orientation='6'>"
    "<e:PixelXDimension>30</e:PixelXDimension></x>";
const Text kIptc{
    "\x1C\x02\x78\0\x03"
    "abc",
    8};

Text Profile(const Text& colors, std::size_t bytes = 200) {
  Text profile(bytes, 'p');
  return profile.replace(16, 4, colors).replace(36, 4, "acsp");
}

struct Entry {
  std::uint16_t tag;
  std::uint16_t type;
  std::uint32_t count;
  Text value;  // of more than four bytes, or a number where it lies
};
using Entries = std::vector<Entry>;

// A directory and its values, from `at` on.
Text Directory(const Entries& entries, std::size_t at, std::uint32_t next, ByteOrder order) {
  Text table = Number(entries.size(), 2, order);
  Text values;
  for (const Entry& entry : entries) {
    table +=
        Number(entry.tag, 2, order) + Number(entry.type, 2, order) + Number(entry.count, 4, order);
    const bool fits = entry.value.size() <= 4;
    table += fits ? entry.value + Text(4 - entry.value.size(), '\0')
                  : Number(at + 6 + entries.size() * 12 + values.size(), 4, order);
    if (!fits) values += entry.value;
  }
  return table + Number(next, 4, order) + values;
}
Text Header(ByteOrder order) {
  return (order == ByteOrder::kBig ? "MM" : "II") + Number(42, 2, order) + Number(8, 4, order);
}

// 40 by 30 pixels, held on its side, 300 by 150 dots an inch; with a note and a preview.
Text Exif(ByteOrder order = ByteOrder::kBig) {
  const auto n = [=](std::uint64_t number, std::size_t bytes) {
    return Number(number, bytes, order);
  };
  constexpr std::size_t kCameraAt = 100;
  constexpr std::size_t kPreviewAt = 200;
  Text block = Header(order) + Directory({{271, 2, 6, Text{"Maker\0", 6}},
                                          {274, 3, 1, n(6, 2)},
                                          {282, 5, 1, n(300, 4) + n(1, 4)},
                                          {283, 5, 1, n(150, 4) + n(1, 4)},
                                          {34665, 4, 1, n(kCameraAt, 4)}},
                                         8, kPreviewAt, order);
  block.resize(kCameraAt);
  block += Directory({{37500, 7, 20, kNote}, {40962, 3, 1, n(40, 2)}, {40963, 4, 1, n(30, 4)}},
                     kCameraAt, 0, order);
  block.resize(kPreviewAt);
  block +=
      Directory({{513, 4, 1, n(kPreviewAt + 30, 4)}, {514, 4, 1, n(7, 4)}}, kPreviewAt, 0, order);
  return block + kPreview;
}

Text Resource(std::uint16_t id, const Text& data) {
  return "8BIM" + Number(id, 2) + Text(2, '\0') + Number(data.size(), 4) + data +
         Text(data.size() % 2, '\0');
}
Text Segment(int app, const Text& data) {
  return "\xFF" + Text(1, static_cast<char>(app)) + Number(data.size() + 2, 2) + data;
}
const Text kJfif = Segment(0xE0, Text{"JFIF\0\1\2\1\0\x48\0\x60\0\0", 14});
Text Jpeg(const Text& segments, int channels = 3) {
  Text frame{"\x08\0\x1E\0\x28", 5};
  frame += static_cast<char>(channels);
  return "\xFF\xD8" + kJfif + segments + Segment(0xC0, frame) + "\xFF\xDA scan";
}
Text Chunk(const Text& type, const Text& data) {
  std::uint32_t sum = UINT32_MAX;
  for (const char byte : type + data) {
    sum ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320U : 0U);
  }
  return Number(data.size(), 4) + type + data + Number(~sum, 4);
}
Text Png(const Text& chunks, int colorType = 2) {
  return "\x89PNG\r\n\x1A\n" +
         Chunk("IHDR", Number(40, 4) + Number(30, 4) + "\x8" + static_cast<char>(colorType) +
                           Text(3, '\0')) +
         chunks + Chunk("IDAT", "pixels") + Chunk("IEND", "");
}
Text Psd(const Text& resources) {
  return "8BPS" + Number(1, 2) + Text(18, '\0') + Number(3, 2) + Number(0, 4) +
         Number(resources.size(), 4) + resources + "rest";
}

Text Riff(const Text& chunks) {
  return "RIFF" + Number(chunks.size() + 4, 4, ByteOrder::kLittle) + "WEBP" + chunks;
}
Text RiffChunk(const Text& type, const Text& data) {
  return type + Number(data.size(), 4, ByteOrder::kLittle) + data + Text(data.size() % 2, '\0');
}
// 30 by 40 pixels, with loss; `features` and what else a richer file has stand round them.
Text Webp(const Text& before = {}, const Text& behind = {}) {
  return Riff(before + RiffChunk("VP8 ", Text{"\0\0\0\x9D\1\x2A\x1E\0\x28\0.", 11}) + behind);
}
Text Features(int flags) {
  return RiffChunk("VP8X", Text(1, static_cast<char>(flags)) + Text{"\0\0\0\x1D\0\0\x27\0\0", 9});
}

// Two pages, of which the second tells all, unless it is plain.
Text Tiff(ByteOrder order = ByteOrder::kLittle, bool isPlain = false) {
  constexpr std::size_t kPageAt = 200;
  constexpr std::size_t kCameraAt = 1500;
  const auto n = [=](std::uint64_t number, std::size_t bytes) {
    return Number(number, bytes, order);
  };
  const auto block = [](std::uint16_t tag, const Text& value) {
    return Entry{tag, 7, static_cast<std::uint32_t>(value.size()), value};
  };
  const Entries first{{256, 3, 1, n(40, 2)}, {262, 3, 1, n(1, 2)}, {285, 2, 6, Text{"first\0", 6}}};
  Text file = Header(order) + Directory(first, 8, kPageAt, order);
  file.resize(kPageAt);
  const Entries plain{{256, 3, 1, n(40, 2)}, {262, 3, 1, n(2, 2)}, {274, 3, 1, n(1, 2)}};
  if (isPlain) return file + Directory(plain, kPageAt, 0, order);
  file += Directory({{256, 3, 1, n(40, 2)},
                     {262, 3, 1, n(2, 2)},
                     {271, 2, 6, Text{"Maker\0", 6}},
                     {273, 4, 1, n(8, 4)},
                     {274, 3, 1, n(6, 2)},
                     {282, 5, 1, n(300, 4) + n(1, 4)},
                     {283, 5, 1, n(150, 4) + n(1, 4)},
                     {296, 3, 1, n(3, 2)},
                     block(700, kXmp),
                     block(33723, kIptc),
                     {34665, 4, 1, n(kCameraAt, 4)},
                     block(34675, Profile("RGB "))},
                    kPageAt, 0, order);
  file.resize(kCameraAt);
  return file + Directory({{37500, 7, 20, kNote}, {40962, 3, 1, n(40, 2)}, {40963, 4, 1, n(30, 4)}},
                          kCameraAt, 0, order);
}

Text RichJpeg() {
  const Text profile = Profile("RGB ");
  return Jpeg(Segment(0xE1, Text{"Exif\0\0", 6} + Exif()) +
              Segment(0xE1, Text{"http://ns.adobe.com/xap/1.0/\0", 29} + kXmp) +
              Segment(0xE2, Text{"ICC_PROFILE\0\2\2", 14} + profile.substr(150)) +
              Segment(0xE2, Text{"ICC_PROFILE\0\1\2", 14} + profile.substr(0, 150)) +
              Segment(0xED, Text{"Photoshop 3.0\0", 14} + Resource(1036, kPreview) +
                                Resource(1028, kIptc)));
}
Text RichPng() {
  // Stored, not compressed: 200 bytes in one block, then their sum.
  const Text profile = Profile("RGB ");
  std::uint32_t a = 1;
  std::uint32_t b = 0;
  for (const char byte : profile) b += a += static_cast<unsigned char>(byte);
  const Text packed =
      Text{"\x78\1\1\xC8\0\x37\xFF", 7} + profile + Number(b % 65521, 2) + Number(a % 65521, 2);
  Text digits = "\nIPTC profile\n       8\n";
  for (const char* pair : {"1c", "02", "78", "00", "03", "61\n", "62", "63"}) digits += pair;
  return Png(Chunk("iCCP", Text{"p\0\0", 3} + packed) + Chunk("eXIf", Exif()) +
             Chunk("iTXt", Text{"XML:com.adobe.xmp\0\0\0\0\0", 22} + kXmp) +
             Chunk("tEXt", Text{"Raw profile type iptc\0", 22} + digits));
}
Text RichPsd() {
  return Psd(Resource(1028, kIptc) + Resource(1033, kPreview) + Resource(1039, Profile("RGB ")) +
             Resource(1058, Exif()) + Resource(1060, kXmp));
}

Text RichWebp() {
  return Webp(Features(0x2C) + RiffChunk("ICCP", Profile("RGB ", 201)),
              RiffChunk("EXIF", Exif()) + RiffChunk("XMP ", kXmp));
}
// Of one pixel, with a comment in two pieces.
Text Gif() {
  const Text trail = [] {
    Text bytes = "\1";
    for (int length = 255; length >= 0; --length) bytes += static_cast<char>(length);
    return bytes + '\0';
  }();
  const Text picture = Text{"\x2C\0\0\0\0\1\0\1\0\x80", 10} + "palett" + Text{"\2\3lzw\0", 6};
  return Text{"GIF89a\1\0\1\0\x80\0\0", 13} + "palett" + picture + "!\xFE\3one\3two" +
         Text(1, '\0') + "!\xFF\x0BXMP DataXMP" + kXmp + trail + ";";
}

// Works in a folder of its own, which is gone after the test.
class MetadataTest : public ::testing::Test {
 protected:
  MetadataTest() {
    Text folder = std::filesystem::temp_directory_path() / "metadata.XXXXXX";
    std::filesystem::current_path(mkdtemp(folder.data()));
  }
  ~MetadataTest() override {
    const auto folder = std::filesystem::current_path();
    std::filesystem::current_path("/");
    std::filesystem::remove_all(folder);
  }

  static void write(const Text& name, const Text& bytes) {
    std::ofstream(name, std::ios::binary) << bytes;
  }
  static Text bytes(const Text& name) {
    std::ifstream file(name, std::ios::binary);
    return Text(std::istreambuf_iterator<char>(file), {});
  }
  // Gives what is lost; the result, 30 by 40 pixels, is in the file "result.bmp" whatever it holds.
  static Lines keep(const Text& source, const Text& result, MetadataRequest request = {}) {
    write("source", source);
    write("result.bmp", result);
    request.source = "source";
    request.result = "result.bmp";
    request.width = 30;
    request.height = 40;
    return KeepMetadata(request);
  }
  static Carried carried(const Text& kind) {
    Carried found;
    if (kind == "jpeg") ReadJpegMetadata("result.bmp", found);
    if (kind == "png") ReadPngMetadata("result.bmp", found);
    if (kind == "psd") ReadPhotoshopMetadata("result.bmp", found);
    if (kind == "webp") ReadWebpMetadata("result.bmp", found);
    if (kind == "tiff") ReadTiffMetadata("result.bmp", 2, found);
    return found;
  }
};

const std::vector<std::pair<Text, Text>> kRich{
    {"jpeg", RichJpeg()}, {"png", RichPng()}, {"psd", RichPsd()}, {"tiff", Tiff()}};

void ExpectUpToDate(const Bytes& exif) {
  ByteOrder order{};
  const TagDirectory tags = TagsOf(exif, order);
  ASSERT_TRUE(tags.below.contains(34665));
  const auto& camera = tags.below.at(34665).tags;
  const auto number = [=](const Tag& tag) {
    return NumberIn(tag.value, BytesOfType(tag.type), order);
  };
  EXPECT_EQ(TextOf(tags.tags.at(271).value), (Text{"Maker\0", 6}));
  EXPECT_EQ(number(tags.tags.at(274)), 1);
  EXPECT_EQ(TextOf(camera.at(37500).value), kNote);
  EXPECT_EQ(number(camera.at(40962)), 30);
  EXPECT_EQ(number(camera.at(40963)), 40);
}

TEST_F(MetadataTest, EverythingArrivesUpToDateInEveryFormat) {
  const std::vector<std::pair<Text, Text>> plain{{"jpeg", Jpeg("")},
                                                 {"png", Png("")},
                                                 {"psd", Psd("")},
                                                 {"tiff", Tiff(ByteOrder::kBig, true)}};
  for (const auto& [from, source] : kRich) {
    for (const auto& [to, result] : plain) {
      SCOPED_TRACE(from + " to " + to);
      EXPECT_EQ(keep(source, result, {.page = 2, .resultPage = 2}), Lines{});
      Carried found = carried(to);
      ExpectUpToDate(found.exif);
      EXPECT_EQ(found.xmp, kXmpAfter);
      EXPECT_EQ(TextOf(found.profile), Profile("RGB "));
      EXPECT_EQ(TextOf(TakePhotoshop(found.photoshop, kPhotoshopIptc)), kIptc);
      EXPECT_TRUE(found.photoshop.empty());
      EXPECT_FALSE(Has(bytes("result.bmp"), kPreview));
    }
  }
}

TEST_F(MetadataTest, TagsStandInRisingOrder) {
  keep(RichJpeg(), Tiff(ByteOrder::kBig, true), {.resultPage = 2});
  const Text result = bytes("result.bmp");
  std::size_t before = 0;
  for (const auto& [tag, type] :
       {std::pair{274, 3}, {700, 1}, {33723, 7}, {34665, 4}, {34675, 7}}) {
    const std::size_t at = result.rfind(Number(static_cast<std::uint64_t>(tag), 2) +
                                        Number(static_cast<std::uint64_t>(type), 2));
    EXPECT_TRUE(at != Text::npos && at > before) << tag;
    before = at;
  }
}

TEST_F(MetadataTest, ExifIsChangedWhereItLies) {
  for (const ByteOrder order : {ByteOrder::kBig, ByteOrder::kLittle}) {
    const Text before = Exif(order);
    keep(Jpeg(Segment(0xE1, Text{"Exif\0\0", 6} + before)), Png(""));
    const Carried found = carried("png");
    const Text after(TextOf(found.exif));
    EXPECT_EQ(after.find(kNote), before.find(kNote));
    // What it says across is down now.
    EXPECT_EQ(after.substr(8 + 2 + 2 * 12 + 8, 4), before.substr(8 + 2 + 3 * 12 + 8, 4));
    EXPECT_EQ(after.substr(8 + 2 + 5 * 12, 4), Text(4, '\0')) << "no further directory is told";
    EXPECT_EQ(after.find_last_not_of('\0'), 161) << "the preview and its directory are gone";
  }
}

TEST_F(MetadataTest, MakersNotesThatCountFromTheFileMoveWithIt) {
  const auto order = ByteOrder::kLittle;
  constexpr std::size_t kCameraAt = 8 + 2 + 12 + 4;
  constexpr std::size_t kNoteAt = kCameraAt + 2 + 12 + 4;
  for (const Text& start : {Text(), Text{"Maker\0", 6}}) {
    const Text note =
        start + Directory({{6, 2, 60, Text(60, 'n')}}, kNoteAt + start.size(), 0, order);
    const Text exif =
        Header(order) + Directory({{34665, 4, 1, Number(kCameraAt, 4, order)}}, 8, 0, order) +
        Directory({{37500, 7, static_cast<std::uint32_t>(note.size()), note}}, kCameraAt, 0, order);
    keep(Psd(Resource(1058, exif)), Tiff(order, true), {.resultPage = 2});
    const Text result = bytes("result.bmp");
    const std::size_t value = result.find(Text(60, 'n'));
    EXPECT_TRUE(Has(result, Number(60, 4, order) + Number(value, 4, order)));
    keep(result, Png(""), {.page = 2});
    const Text block(TextOf(carried("png").exif));
    EXPECT_TRUE(Has(block, Number(60, 4, order) + Number(block.find(Text(60, 'n')), 4, order)));
  }
}

TEST_F(MetadataTest, ResolutionIsTheSourcesUnlessTheResultHasANewOne) {
  keep(RichJpeg(), Jpeg(""));
  EXPECT_TRUE(Has(bytes("result.bmp"), Text{"\1\0\x60\0\x48", 5})) << "turned with the picture";
  keep(RichJpeg(), Jpeg(""), {.newResolution = true, .xDotsPerInch = 72.5, .yDotsPerInch = 72.5});
  EXPECT_TRUE(Has(bytes("result.bmp"), Text{"\1\0\x48\0\x60", 5}));
  EXPECT_TRUE(Has(bytes("result.bmp"), Number(7250, 4) + Number(100, 4)));

  const Text pixelsPerMetre = Number(1000, 4) + Number(2000, 4) + "\1";
  const Text own = Chunk("pHYs", Text(9, '\1'));
  keep(Png(Chunk("pHYs", pixelsPerMetre)), Png(own));
  EXPECT_TRUE(Has(bytes("result.bmp"), pixelsPerMetre));
  EXPECT_FALSE(Has(bytes("result.bmp"), own));
  keep(Png(Chunk("pHYs", pixelsPerMetre)), Png(own), {.newResolution = true});
  EXPECT_EQ(bytes("result.bmp"), Png(own));

  keep(Tiff(), Tiff(ByteOrder::kBig), {.page = 2, .resultPage = 1});
  EXPECT_TRUE(
      Has(bytes("result.bmp"), Number(150, 4) + Number(1, 4) + Number(300, 4) + Number(1, 4)));
}

TEST_F(MetadataTest, WhatOneKindAloneKnowsStaysInThatKind) {
  const Text camera = Segment(0xEC, "camera");
  const Text comments = Segment(0xFE, "one") + Segment(0xFE, "two");
  EXPECT_EQ(
      keep(Jpeg(Segment(0xE0, "JFXX") + camera + comments + Segment(0xE2, Text{"MPF\0", 4}), 1),
           Jpeg(Segment(0xEE, "Adobe"))),
      Lines{});
  EXPECT_EQ(bytes("result.bmp"), Jpeg(camera + comments + Segment(0xEE, "Adobe")));

  const Text packed = Chunk("zTXt", "not even compressed");
  const Text kept = Chunk("gAMA", "gama") + Chunk("tEXt", Text{"Title\0t", 7}) +
                    Chunk("tIME", "noon") + Chunk("tEst", "private");
  Text broken = Chunk("tEXt", Text{"Title\0u", 7});
  broken.back() ^= 1;
  EXPECT_EQ(keep(Png(kept + Chunk("sBIT", "8") + Chunk("teST", "of pixels") + broken),
                 Png(Chunk("tRNS", "t"))),
            (Lines{"the PNG chunk teST: it belongs to the pixels as they were",
                   "the PNG chunk tEXt: it is damaged"}));
  EXPECT_EQ(bytes("result.bmp"), Png(Chunk("gAMA", "gama") + Chunk("tRNS", "t") + kept.substr(16)));

  keep(Tiff(), Tiff(), {.page = 1, .resultPage = 2});
  EXPECT_TRUE(Has(Text(TextOf(carried("tiff").exif)), "first"));
}

TEST_F(MetadataTest, WordsGoFromKindToKind) {
  const Text words =
      Chunk("tEXt", Text{"Author\0J\xF6rg", 11}) + Chunk("tEXt", Text{"Comment\0c", 9});
  keep(Png(words), Jpeg(""));
  EXPECT_EQ(bytes("result.bmp"), Jpeg(Segment(0xFE, "Author: J\xC3\xB6rg") + Segment(0xFE, "c")));
  keep(Png(words), Tiff());
  EXPECT_TRUE(Has(bytes("result.bmp"), Text{"J\xC3\xB6rg\0", 6}));
  for (const auto& [comment, chunk] :
       {std::pair<Text, Text>{"plain", Chunk("tEXt", Text{"Comment\0plain", 13})},
        {"J\xF6rg", Chunk("tEXt", Text{"Comment\0J\xF6rg", 12})},
        {"J\xC3\xB6rg", Chunk("iTXt", Text{"Comment\0\0\0\0\0J\xC3\xB6rg", 17})}}) {
    keep(Jpeg(Segment(0xFE, comment)), Png(""));
    EXPECT_EQ(bytes("result.bmp"), Png(chunk));
  }
}

TEST_F(MetadataTest, WhatIsLostIsTold) {
  const Text rgb = Profile("RGB ");
  const Text text = Chunk("tEXt", Text{"Odd\0t", 5});
  const Text xmp = Chunk("iTXt", Text{"XML:com.adobe.xmp\0\0\0\0\0", 22} + Text(70000, 'x'));
  const struct {
    Text source;
    Text result;
    Lines lost;
  } rows[] = {
      {RichJpeg(),
       "BM",
       {"the EXIF data: BMP cannot hold it", "the XMP data: BMP cannot hold it",
        "the IPTC data: BMP cannot hold it", "the color profile: BMP cannot hold it"}},
      {Psd(Resource(1039, rgb)),
       Jpeg("", 1),
       {"the color profile: it is for RGB and the result is GRAY"}},
      {Psd(Resource(1039, rgb)),
       Png("", 0),
       {"the color profile: it is for RGB and the result is GRAY"}},
      {Psd(Resource(1039, "x")), Png(""), {"the color profile: it is damaged"}},
      {Psd(Resource(1058, "MM*")), Png(""), {"the EXIF data: it is damaged"}},
      {Psd(Resource(1060, Text(9, '\0'))), Png(""), {"the XMP data: it is not UTF-8 text"}},
      {Jpeg(Segment(0xEC, "a") + Segment(0xEC, "b")),
       Png(""),
       {"the JPEG segment APP12: PNG cannot hold it"}},
      {Png(text + Chunk("gAMA", "g") + Chunk("sRGB", "s")),
       Tiff(),
       {"the text Odd: TIFF cannot hold it"}},
      {Png(Chunk("gAMA", "g")), Jpeg(""), {"the PNG chunk gAMA: JPEG cannot hold it"}},
      {Png(xmp), Jpeg(""), {"the XMP data: it is too long for a JPEG file"}},
      {"\xFF\xD8\xFF\xE0", Png(""), {"the metadata: the file is cut off"}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(keep(row.source, row.result), row.lost);
  }
  EXPECT_EQ(keep(RichJpeg(), Jpeg(""), {.colorsChanged = true}),
            Lines{"the color profile: the colors became others"});
}

TEST_F(MetadataTest, WebpHoldsItRoundThePicture) {
  const Text profile = RiffChunk("ICCP", Profile("RGB ", 201));
  EXPECT_EQ(keep(RichWebp(), Jpeg("")), Lines{});
  ExpectUpToDate(carried("jpeg").exif);
  EXPECT_EQ(carried("jpeg").xmp, kXmpAfter);
  EXPECT_EQ(TextOf(carried("jpeg").profile), Profile("RGB ", 201));

  // Lossless pixels tell their size, and opacity, in bits.
  const Text lossless = RiffChunk("VP8L", Text{"\x2F\x1D\xC0\x09\x10", 5});
  for (const auto& [result, flags, picture] :
       {std::tuple{Webp(), 0x2C, Webp().substr(12)}, std::tuple{Riff(lossless), 0x3C, lossless},
        std::tuple{Webp(Features(0x10)), 0x3C, Webp().substr(12)}}) {
    EXPECT_EQ(keep(RichWebp(), result), Lines{});
    const Text after = bytes("result.bmp");
    ExpectUpToDate(carried("webp").exif);
    const Text block(TextOf(carried("webp").exif));
    EXPECT_EQ(after, Riff(Features(flags) + profile + picture + RiffChunk("EXIF", block) +
                          RiffChunk("XMP ", kXmpAfter)));
  }
  EXPECT_EQ(keep(RichJpeg(), Webp()), Lines{"the IPTC data: WebP cannot hold it"});
}

TEST_F(MetadataTest, GifBringsItsWords) {
  keep(Gif(), Jpeg(""));
  EXPECT_EQ(carried("jpeg").comments, Lines{"onetwo"});
  EXPECT_EQ(carried("jpeg").xmp, kXmpAfter);
}

// Eight by eight pixels of one red in P3.
Text JpegXl(const Text& exif, const Text& xmp) {
  const auto box = [](const Text& type, const Text& data) {
    return Number(data.size() + 8, 4) + type + data;
  };
  const Text picture{
      "\xFF\x0A\x41\x40\x40\xE5\xDE\x2A\x82\x08\x02\x01\0\x5C\0\x4B\x18\x8B\x15\xC2\x49\x02"
      "\xE6\x05\x22\0\xD8\xFF\xFE\xD0\0\0\0\0\0\0\0\0",
      38};
  return box("JXL ", "\r\n\x87\n") + box("ftyp", Text{"jxl \0\0\0\0jxl ", 12}) +
         box("jxlc", picture) + box("Exif", Text{"\0\0\0\2??", 6} + exif) + box("xml ", xmp);
}
void WriteAvif(const char* path, const Text& exif, const Text& xmp, const Text& profile) {
  heif_context* const file = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  heif_image* image = nullptr;
  heif_image_handle* item = nullptr;
  (void)heif_context_get_encoder_for_format(file, heif_compression_AV1, &encoder);
  (void)heif_image_create(16, 16, heif_colorspace_RGB, heif_chroma_interleaved_RGB, &image);
  (void)heif_image_add_plane(image, heif_channel_interleaved, 16, 16, 8);
  (void)heif_image_set_raw_color_profile(image, "prof", profile.data(), profile.size());
  (void)heif_context_encode_image(file, image, encoder, nullptr, &item);
  (void)heif_context_add_exif_metadata(file, item, exif.data(), static_cast<int>(exif.size()));
  (void)heif_context_add_XMP_metadata(file, item, xmp.data(), static_cast<int>(xmp.size()));
  EXPECT_EQ(heif_context_write_to_file(file, path).code, heif_error_Ok);
  heif_image_handle_release(item);
  heif_image_release(image);
  heif_encoder_release(encoder);
  heif_context_free(file);
}

TEST_F(MetadataTest, PicturesOfPhonesBringCameraAndColors) {
  write("phone", JpegXl(Exif(), kXmp));
  WriteAvif("phone.avif", Exif(), kXmp, Profile("RGB "));
  for (const char* const phone : {"phone", "phone.avif"}) {
    SCOPED_TRACE(phone);
    EXPECT_EQ(keep(bytes(phone), Png("")), Lines{});
    ExpectUpToDate(carried("png").exif);
    EXPECT_EQ(carried("png").xmp, kXmpAfter);
    EXPECT_TRUE(Has(Text(TextOf(carried("png").profile)), "RGB "));
  }
  EXPECT_EQ(TextOf(carried("png").profile), Profile("RGB "));
}

TEST_F(MetadataTest, ColorsThatBecameSrgbAreToldSo) {
  constexpr auto kOrder = ByteOrder::kBig;
  const Text exif =
      Header(kOrder) + Directory({{34665, 4, 1, Number(26, 4)}}, 8, 0, kOrder) +
      Directory({{40961, 3, 1, Number(65535, 2)}, {40965, 4, 1, Number(56, 4)}}, 26, 0, kOrder) +
      Directory({{1, 2, 4, Text{"R03\0", 4}}}, 56, 0, kOrder);
  const Text adobe = Jpeg(Segment(0xE1, Text{"Exif\0\0", 6} + exif));
  write("source", adobe);
  const auto profile = ReadColorProfile("source", 1);
  EXPECT_TRUE(Has(Text(TextOf(profile)), "RGB XYZ "));
  EXPECT_EQ(keep(adobe, Png("")), Lines{});
  EXPECT_EQ(carried("png").profile, profile);
  EXPECT_EQ(TextOf(carried("png").exif), exif);
  EXPECT_EQ(keep(adobe, Png(""), {.inSrgb = true}),
            Lines{"the color profile: the colors are brought to sRGB"});
  EXPECT_TRUE(carried("png").profile.empty());
  Text srgb = exif;
  srgb.replace(36, 2, Number(1, 2)).replace(66, 3, "R98");
  EXPECT_EQ(TextOf(carried("png").exif), srgb);
}

TEST_F(MetadataTest, ColorsOfPngGetAProfileWhereOnlyThatIsKnown) {
  const Text power = Chunk("gAMA", Number(45455, 4));
  const Text linear = Chunk("gAMA", Number(100000, 4));
  for (const auto& [chunks, isOther] : {std::pair{power, false},
                                        {linear, true},
                                        {linear + Chunk("sRGB", "s"), false},
                                        {Chunk("cICP", Text{"\14\15\0\1", 4}), true}}) {
    EXPECT_EQ(keep(Png(chunks), Jpeg("")), Lines{});
    EXPECT_EQ(!carried("jpeg").profile.empty(), isOther) << chunks;
    EXPECT_EQ(keep(Png(chunks), Png("")), Lines{});
    EXPECT_TRUE(carried("png").profile.empty());
  }
}

TEST_F(MetadataTest, DamagedProfilesStayAtHome) {
  const Text half = Segment(0xE2, Text{"ICC_PROFILE\0\1\2", 14} + "half");
  EXPECT_EQ(keep(Jpeg(half), Jpeg("")), Lines{});
  EXPECT_EQ(bytes("result.bmp"), Jpeg(half));
  EXPECT_EQ(keep(Jpeg(half), Png("")), Lines{"the damaged color profile: PNG cannot hold it"});
  const Text bad = Chunk("iCCP", "bad");
  EXPECT_EQ(keep(Png(bad), Png("")), Lines{});
  EXPECT_EQ(bytes("result.bmp"), Png(bad));
}

TEST_F(MetadataTest, StrippingLeavesTheProfileOrNothing) {
  for (const auto& [from, source] : kRich) {
    SCOPED_TRACE(from);
    EXPECT_EQ(keep(source, Png(""), {.page = 2, .strip = Strip::kAllButProfile}), Lines{});
    EXPECT_EQ(TextOf(carried("png").profile), Profile("RGB "));
    EXPECT_TRUE(carried("png").exif.empty() && carried("png").xmp.empty());
    EXPECT_EQ(keep(source, Jpeg(Segment(0xFE, "own")), {.page = 2, .strip = Strip::kAll}), Lines{});
    EXPECT_EQ(bytes("result.bmp").size(), Jpeg("").size());
  }
}

TEST_F(MetadataTest, LongProfilesGoThroughManySegments) {
  const Text profile = Profile("RGB ", 150000);
  EXPECT_EQ(keep(Psd(Resource(1039, profile)), Jpeg("")), Lines{});
  EXPECT_EQ(TextOf(carried("jpeg").profile), profile);
}

TEST_F(MetadataTest, DamagedSourcesHarmNothingAndDamagedResultsStayAsTheyWere) {
  auto kinds = kRich;
  kinds.insert(kinds.end(), {{"webp", RichWebp()}, {"gif", Gif()}, {"jxl", JpegXl(Exif(), kXmp)}});
  for (const auto& [kind, whole] : kinds) {
    for (std::size_t length = 0; length < whole.size(); length += 13) {
      const Text start = whole.substr(0, length);
      EXPECT_NO_THROW(keep(start, Jpeg(""), {.page = 2})) << kind << length;
      try {
        keep(RichJpeg(), start, {.resultPage = 2});
      } catch (const MetadataFault&) {
        EXPECT_EQ(bytes("result.bmp"), start) << kind << length;
      }
      Text changed = whole;
      changed[length] = static_cast<char>(~changed[length]);
      EXPECT_NO_THROW(keep(changed, Jpeg(""), {.page = 2})) << kind << length;
    }
  }
  Text endless = Tiff();
  endless.replace(8 + 2 + 3 * 12, 4, Number(8, 4, ByteOrder::kLittle));
  EXPECT_EQ(keep(endless, Jpeg(""), {.page = 70000}).size(), 1);
}

}  // namespace
}  // namespace client
