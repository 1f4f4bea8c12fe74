// BMP in the forms that other programs write, made byte by byte.
#include <cstring>

#include "files.h"

namespace {

using files::Bytes;

void Put16(Bytes& bytes, unsigned value) {
  bytes.push_back(static_cast<std::uint8_t>(value));
  bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}
void Put32(Bytes& bytes, std::uint32_t value) {
  Put16(bytes, value & 0xFFFF);
  Put16(bytes, value >> 16);
}

struct Bmp {
  int width = 0;
  int height = 0;
  int depth = 0;
  std::uint32_t compression = BI_RGB;
  std::uint32_t colorsUsed = 0;
  std::uint32_t headerBytes = 40;
  std::vector<std::uint32_t> masks{};    // behind or in the header
  std::vector<std::uint32_t> palette{};  // 0x00RRGGBB
  Bytes pixels{};
  std::int64_t offset = -1;  // of the pixels; -1 the true one
};

Bytes FileOf(const Bmp& bmp) {
  Bytes body;
  Put32(body, bmp.headerBytes);
  if (bmp.headerBytes == 12) {
    for (const int value : {bmp.width, bmp.height, 1, bmp.depth}) {
      Put16(body, static_cast<unsigned>(value));
    }
  } else {
    Put32(body, static_cast<std::uint32_t>(bmp.width));
    Put32(body, static_cast<std::uint32_t>(bmp.height));
    Put16(body, 1);
    Put16(body, static_cast<unsigned>(bmp.depth));
    for (const std::uint32_t value : {bmp.compression, 0U, 11811U, 5906U, bmp.colorsUsed, 0U}) {
      Put32(body, value);
    }
  }
  for (const std::uint32_t mask : bmp.masks) Put32(body, mask);
  if (body.size() < bmp.headerBytes) body.resize(bmp.headerBytes);
  for (const std::uint32_t color : bmp.palette) {
    Put32(body, color);
    if (bmp.headerBytes == 12) body.pop_back();
  }
  Bytes file{'B', 'M'};
  Put32(file, 0);
  Put32(file, 0);
  Put32(file, bmp.offset < 0 ? static_cast<std::uint32_t>(14 + body.size())
                             : static_cast<std::uint32_t>(bmp.offset));
  file.insert(file.end(), body.begin(), body.end());
  file.insert(file.end(), bmp.pixels.begin(), bmp.pixels.end());
  return file;
}

struct Row {
  const char* name;
  Bmp bmp;
  int depth;
  Bytes shown;  // blue, green, red from the top left
};

class BmpVariants : public files::FolderTest, public testing::WithParamInterface<Row> {};

constexpr std::uint32_t kRed = 0xFF0000;
constexpr std::uint32_t kBlue = 0x0000FF;

const Row kRows[] = {
    {"top_down_24",
     {.width = 1, .height = -2, .depth = 24, .pixels = {1, 2, 3, 0, 4, 5, 6, 0}},
     24,
     {1, 2, 3, 4, 5, 6}},
    {"core_header_with_three_byte_palette",
     {.width = 2,
      .height = 1,
      .depth = 1,
      .headerBytes = 12,
      .palette = {kRed, kBlue},
      .pixels = {0x40, 0, 0, 0}},
     1,
     {0, 0, 255, 255, 0, 0}},
    {"partial_palette_leaves_black",
     {.width = 2,
      .height = 1,
      .depth = 4,
      .colorsUsed = 2,
      .palette = {kRed, kBlue},
      .pixels = {0x1F, 0, 0, 0}},
     4,
     {255, 0, 0, 0, 0, 0}},
    {"more_colors_used_than_the_depth_has",
     {.width = 2,
      .height = 1,
      .depth = 1,
      .colorsUsed = 1000,
      .palette = {kRed, kBlue},
      .pixels = {0x80, 0, 0, 0}},
     1,
     {255, 0, 0, 0, 0, 255}},
    {"offset_of_zero_means_behind_the_headers",
     {.width = 1, .height = 1, .depth = 24, .pixels = {7, 8, 9, 0}, .offset = 0},
     24,
     {7, 8, 9}},
    {"bit_fields_565",
     {.width = 2,
      .height = 1,
      .depth = 16,
      .compression = BI_BITFIELDS,
      .masks = {0xF800, 0x07E0, 0x001F},
      .pixels = {0x00, 0xF8, 0xE0, 0x07}},
     16,
     {0, 0, 255, 0, 255, 0}},
    {"bit_fields_32_in_another_order",
     {.width = 1,
      .height = 1,
      .depth = 32,
      .compression = BI_BITFIELDS,
      .masks = {0xFF, 0xFF00, 0xFF0000},
      .pixels = {1, 2, 3, 4}},
     32,
     {3, 2, 1}},
    {"version_4_header_with_10_bit_channels",
     {.width = 1,
      .height = 1,
      .depth = 32,
      .compression = BI_BITFIELDS,
      .headerBytes = 108,
      .masks = {0x3FF00000, 0x000FFC00, 0x000003FF, 0},
      .pixels = {0xFF, 0x03, 0x00, 0x20}},
     32,
     {255, 0, 128}},
    {"runs_8_with_literals_jump_and_row_end",
     {.width = 4,
      .height = 2,
      .depth = 8,
      .compression = BI_RLE8,
      .colorsUsed = 3,
      .palette = {0, kRed, kBlue},
      .pixels = {0, 3, 1, 2, 1, 0, 0, 0, 0, 2, 2, 0, 2, 1, 0, 1}},
     8,
     {0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 0, 255, 0, 0, 255, 255, 0, 0, 0, 0, 255, 0, 0, 0}},
    {"runs_4_alternate_two_colors",
     {.width = 5,
      .height = 1,
      .depth = 4,
      .compression = BI_RLE4,
      .colorsUsed = 3,
      .palette = {0, kRed, kBlue},
      .pixels = {3, 0x12, 2, 0x22, 0, 1}},
     4,
     {0, 0, 255, 255, 0, 0, 0, 0, 255, 255, 0, 0, 255, 0, 0}},
};

TEST_P(BmpVariants, show_the_right_pixels) {
  const Row& row = GetParam();
  files::Write(at("a.bmp"), FileOf(row.bmp));
  int code = 0;
  const orvo::OwnedDib loaded = files::Load(at("a.bmp"), &code);
  ASSERT_EQ(code, kModuleSuccess);
  EXPECT_EQ(files::ShownPixels(loaded.get()), row.shown);
  EXPECT_EQ(pictures::Locked(loaded.get()).header()->biBitCount, row.depth);
}

INSTANTIATE_TEST_SUITE_P(Variants, BmpVariants, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

struct BadRow {
  const char* name;
  Bmp bmp;
  int code;
};

class BadBmp : public files::FolderTest, public testing::WithParamInterface<BadRow> {};

const BadRow kBadRows[] = {
    {"masks_overlap",
     {.width = 1,
      .height = 1,
      .depth = 16,
      .compression = BI_BITFIELDS,
      .masks = {0xF800, 0x0FE0, 0x001F},
      .pixels = {0, 0, 0, 0}},
     kFileFormatDamaged},
    {"mask_has_a_hole",
     {.width = 1,
      .height = 1,
      .depth = 16,
      .compression = BI_BITFIELDS,
      .masks = {0xF800, 0x05E0, 0x001F},
      .pixels = {0, 0, 0, 0}},
     kFileFormatDamaged},
    {"mask_beyond_the_pixel",
     {.width = 1,
      .height = 1,
      .depth = 16,
      .compression = BI_BITFIELDS,
      .masks = {0xF0000, 0x07E0, 0x001F},
      .pixels = {0, 0, 0, 0}},
     kFileFormatDamaged},
    {"runs_top_down",
     {.width = 1,
      .height = -1,
      .depth = 8,
      .compression = BI_RLE8,
      .colorsUsed = 1,
      .palette = {0},
      .pixels = {0, 1}},
     kFileFormatDamaged},
    {"run_above_the_last_row",
     {.width = 1,
      .height = 1,
      .depth = 8,
      .compression = BI_RLE8,
      .colorsUsed = 1,
      .palette = {0},
      .pixels = {0, 0, 1, 0, 0, 1}},
     kFileFormatDamaged},
    {"jump_beyond_the_row",
     {.width = 2,
      .height = 2,
      .depth = 8,
      .compression = BI_RLE8,
      .colorsUsed = 1,
      .palette = {0},
      .pixels = {0, 2, 9, 0, 1, 0, 0, 1}},
     kFileFormatDamaged},
    {"offset_beyond_the_file",
     {.width = 1, .height = 1, .depth = 24, .pixels = {1, 2, 3, 0}, .offset = 5000},
     kModuleReadFailed},
    {"depth_of_5",
     {.width = 1, .height = 1, .depth = 5, .pixels = {0, 0, 0, 0}},
     kModuleDepthNotSupported},
    {"jpeg_inside",
     {.width = 1, .height = 1, .depth = 24, .compression = 4, .pixels = {0, 0, 0, 0}},
     kFileFormatNotRead},
    {"height_of_the_lowest_number",
     {.width = 1, .height = INT32_MIN, .depth = 24, .pixels = {0, 0, 0, 0}},
     kFileFormatDamaged},
    {"claims_of_60000_by_60000",
     {.width = 60000, .height = 60000, .depth = 24, .pixels = {0, 0, 0, 0}},
     kModuleReadFailed},
};

TEST_P(BadBmp, is_refused_with_a_code) {
  files::Write(at("a.bmp"), FileOf(GetParam().bmp));
  int code = 0;
  EXPECT_FALSE(files::Load(at("a.bmp"), &code));
  EXPECT_EQ(code, GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(Variants, BadBmp, testing::ValuesIn(kBadRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
