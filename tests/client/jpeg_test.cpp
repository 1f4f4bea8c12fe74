// JPEG files changed without loss: what is asked for changes, and nothing else in the file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <set>

#include <orvo/result_codes.h>

#include "jpeg_coding.h"
#include "jpeg_patch.h"
#include "jpeg_turn.h"
#include "pictures/codecs.h"
#include "pictures/loading.h"
#include "pictures/tags.h"

namespace client {
namespace {

using Kind = Outcome::Kind;
using Colors = JpegManner::Colors;

// What is loaded from a file, upright.
modules::OwnedBlock Loaded(const std::string& path) {
  const auto reader = modules::OpenJpeg(path.c_str(), nullptr);
  EXPECT_TRUE(reader->goTo(1));
  return modules::LoadPicture(*reader);
}

// Soft waves, 8-bit grays or colours, at 200 x 100 dots per inch.
modules::OwnedBlock Waves(int width, int height, int depth) {
  modules::OwnedBlock block = orvo::NewDib(orvo::DibHeaderFor(width, height, depth, 7874, 3937));
  const modules::LockedDib image(block.get());
  if (depth == 8) modules::FillGrayPalette(*image);
  for (int y = 0; y < height; ++y) {
    for (int i = 0; i < width * depth / 8; ++i) {
      const double wave = std::sin(i * 0.031) + std::cos(y * 0.12 + i % 3);
      image->row(y)[i] = static_cast<std::uint8_t>(128 + 40 * wave);
    }
  }
  return block;
}

// The notes of a phone: a block of tags with the width as a short number and the height as a long
// one, a comment, something with an end mark in it, and the index of a further picture.
constexpr std::array<std::uint8_t, 196> kNotes = {
    0xFF, 0xE1, 0, 116, 'E', 'x', 'i',  'f',  0,   0,   'M',  'M',  0, 42, 0, 0, 0, 8, 0, 4,  //
    1,    0x12, 0, 3,   0,   0,   0,    1,    0,   1,   0,    0,                              //
    1,    0x1A, 0, 5,   0,   0,   0,    1,    0,   0,   0,    92,                             //
    1,    0x1B, 0, 5,   0,   0,   0,    1,    0,   0,   0,    100,                            //
    0x87, 0x69, 0, 4,   0,   0,   0,    1,    0,   0,   0,    62,   0, 0,  0, 0, 0, 2,        //
    0xA0, 2,    0, 3,   0,   0,   0,    1,    0,   1,   0,    0,                              //
    0xA0, 3,    0, 4,   0,   0,   0,    1,    0,   0,   0,    1,    0, 0,  0, 0,              //
    0,    0,    0, 200, 0,   0,   0,    1,    0,   0,   0,    100,  0, 0,  0, 1,              //
    0xFF, 0xFE, 0, 4,   'h', 'i', 0xFF, 0xED, 0,   4,   0xFF, 0xD9,                           //
    0xFF, 0xE2, 0, 64,  'M', 'P', 'F',  0,    'I', 'I', 42,   0,    8, 0,  0, 0, 1, 0,        //
    0x02, 0xB0, 7, 0,   32,  0,   0,    0,    26,  0,   0,    0};
// Where its block of tags begins.
constexpr std::size_t kTags = 10;

// Has the index tell that the first picture ends there and the further one follows.
void SetIndex(Bytes& notes, std::size_t end) {
  constexpr std::size_t kIndex = 138;
  const modules::WritableTags index(std::span<std::uint8_t>(notes).subspan(kIndex));
  index.put32(26 + 4, static_cast<std::uint32_t>(end));
  index.put32(26 + 16 + 8, static_cast<std::uint32_t>(end - kIndex - 2));
}

struct Row {
  const char* name;
  int width;
  int height;
  // Sampling factors of the first and of the other components.
  int across;
  int down;
  int othersDown = 1;
  unsigned restartInterval = 0;
  bool progressive = false;
  bool longSteps = false;  // tables of 16 bits
  Colors colors = Colors::kTonesAndTints;
};
constexpr Row kRows[] = {
    {"4:4:4", 64, 80, 1, 1},
    {"4:2:2", 160, 80, 2, 1},
    {"4:2:0", 160, 96, 2, 2},
    {"4:4:0", 64, 96, 1, 2},
    {"4:2:0, part blocks", 149, 83, 2, 2},
    {"4:2:0, restarts, progressive", 144, 80, 2, 2, 1, 2, true},
    {"4:2:2, restarts, part blocks", 133, 71, 2, 1, 1, 3},
    {"4:4:0, restarts, progressive, part blocks", 96, 93, 1, 2, 1, 5, true},
    {"a common factor", 96, 93, 1, 2, 2},
    {"gray", 65, 79, 1, 1, 1, 0, false, false, Colors::kTones},
    {"gray with factors", 65, 79, 2, 2, 1, 0, false, false, Colors::kTones},
    {"red, green and blue", 61, 47, 1, 1, 1, 0, false, false, Colors::kRedGreenBlue},
    {"long steps", 61, 47, 1, 1, 1, 0, false, true},
};

JpegManner MannerOf(const Row& row) {
  JpegManner manner{
      .colors = row.colors, .progressive = row.progressive, .restartInterval = row.restartInterval};
  manner.tables[0].emplace().fill(3);
  const bool isRgb = row.colors == Colors::kRedGreenBlue;
  manner.components = {{.id = isRgb ? 'R' : 7, .across = row.across, .down = row.down, .table = 0}};
  if (row.colors == Colors::kTones) return manner;
  manner.tables[2].emplace().fill(4);
  if (row.longSteps) manner.tables[2]->back() = 300;
  for (const int id : {21, 22}) manner.components.push_back({id, 1, row.othersDown, 2});
  return manner;
}

class JpegTest : public ::testing::Test {
 protected:
  JpegTest() { std::filesystem::create_directory(folder_); }
  ~JpegTest() override { std::filesystem::remove_all(folder_); }

  // A file with the marks of a camera, of the shape that is stored.
  void make(const Row& row, int orientation) const {
    const auto picture = Waves(row.width, row.height, row.colors == Colors::kTones ? 8 : 24);
    EXPECT_EQ(SaveJpegLike(MannerOf(row), picture.get(), source_), ORVO_OK);
    Bytes bytes = ReadBytes(source_);
    Bytes notes(kNotes.begin(), kNotes.end());
    notes[kTags + 19] = static_cast<std::uint8_t>(orientation);
    SetIndex(notes, bytes.size() + notes.size());
    bytes.insert(bytes.begin() + 2, notes.begin(), notes.end());
    bytes.insert(bytes.end(), {0xFF, 0xD8, 'm', 'o', 'r', 'e'});
    WriteBytes(source_, bytes);
  }

  std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("orvo_jpeg_" + std::to_string(::getpid()));
  std::string source_ = folder_ / "source.jpg";
  std::string target_ = folder_ / "target.jpg";
};

// The greatest difference between two pictures of one shape; beyond all for other shapes.
int Distance(DibHandle a, DibHandle b) {
  const modules::LockedDib one(a);
  const modules::LockedDib other(b);
  if (one->width != other->width || one->height != other->height || one->depth != other->depth) {
    return 1000;
  }
  int most = 0;
  for (int y = 0; y < one->height; ++y) {
    for (std::size_t i = 0; i < one->rowBytes(); ++i) {
      most = std::max(most, std::abs(one->row(y)[i] - other->row(y)[i]));
    }
  }
  return most;
}

// How many units of so many pixels differ in their coefficients.
std::size_t ChangedUnits(const Bytes& before, const Bytes& after, int width, int height) {
  JpegInput was(before);
  JpegInput is(after);
  was.readCoefficients();
  is.readCoefficients();
  std::set<std::pair<int, int>> changed;
  for (int i = 0; i < was.codec().num_components; ++i) {
    const jpeg_component_info& component = was.codec().comp_info[i];
    const int blockWidth = 8 * was.codec().max_h_samp_factor / component.h_samp_factor;
    const int blockHeight = 8 * was.codec().max_v_samp_factor / component.v_samp_factor;
    for (JDIMENSION y = 0; y < component.height_in_blocks; ++y) {
      const JBLOCKROW a = was.blocks(i, y);
      const JBLOCKROW b = is.blocks(i, y);
      for (JDIMENSION x = 0; x < component.width_in_blocks; ++x) {
        if (std::equal(a[x], a[x] + DCTSIZE2, b[x])) continue;
        changed.emplace(static_cast<int>(x) * blockWidth / width,
                        static_cast<int>(y) * blockHeight / height);
      }
    }
  }
  return changed.size();
}

// Corners and middle made brighter.
modules::OwnedBlock Corrected(DibHandle picture) {
  modules::OwnedBlock result = modules::CopyOf(modules::LockedDib(picture));
  const modules::LockedDib image(result.get());
  const auto bytes = static_cast<std::size_t>(image->depth) / 8;
  const int right = image->width - 1;
  const int top = image->height - 1;
  const std::pair<int, int> points[] = {
      {0, 0}, {right, 0}, {0, top}, {right, top}, {right / 2, top / 2}};
  for (const auto& [x, y] : points) {
    std::uint8_t* const at = image->row(y) + static_cast<std::size_t>(x) * bytes;
    for (std::size_t i = 0; i < bytes; ++i) at[i] = static_cast<std::uint8_t>(at[i] + 30);
  }
  return result;
}

TEST_F(JpegTest, CorrectionsChangeTheBlocksTheyTouchAndNothingElse) {
  for (const Row& row : kRows) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
      SCOPED_TRACE(row.name + (" " + std::to_string(orientation)));
      make(row, orientation);
      const auto before = Loaded(source_);
      const auto after = Corrected(before.get());
      const Outcome outcome = PatchJpeg(source_, before.get(), after.get(), target_);
      ASSERT_EQ(outcome.kind, Kind::kDone) << outcome.reason;

      const Bytes was = ReadBytes(source_);
      const Bytes is = ReadBytes(target_);
      const bool coarse = row.down != row.othersDown && row.colors != Colors::kTones;
      const int width = row.colors == Colors::kTones ? 8 : 8 * row.across;
      EXPECT_EQ(ChangedUnits(was, is, width, coarse ? 8 * row.down : 8), 5);
      EXPECT_LE(Distance(Loaded(target_).get(), after.get()), 14);
      EXPECT_TRUE(JpegInput(is).manner() == JpegInput(was).manner());
      JpegFile shall = TakenApart(was);
      SetIndex(shall.notes, TakenApart(is).end);
      EXPECT_TRUE(TakenApart(is).notes == shall.notes);
      EXPECT_TRUE(TakenApart(is).trailer == shall.trailer);
    }
  }
}

TEST_F(JpegTest, WhatCannotBeCorrectedIsRefusedAndLeavesNoTarget) {
  make(kRows[2], 1);
  const auto picture = Loaded(source_);
  const auto other = Corrected(picture.get());
  const Bytes sound = ReadBytes(source_);
  constexpr std::uint8_t kFrame[] = {0xFF, 0xC0, 0, 17, 8};
  const auto frame = std::search(sound.begin(), sound.end(), kFrame, kFrame + 5) - sound.begin();
  const auto changed = [&](std::ptrdiff_t place, int byte) {
    Bytes bytes = sound;
    bytes[static_cast<std::size_t>(place)] = static_cast<std::uint8_t>(byte);
    return bytes;
  };
  Bytes cut(sound.begin(), sound.end() - 600);
  Bytes ended = cut;
  ended.insert(ended.end(), {0xFF, 0xD9});
  const auto gray = Waves(160, 96, 8);
  const struct {
    const char* name;
    Bytes bytes;
    DibHandle before;
    DibHandle after;
  } rows[] = {
      {"arithmetic", changed(frame + 1, 0xC9), picture.get(), other.get()},
      {"lossless", changed(frame + 1, 0xC3), picture.get(), other.get()},
      {"12 bits", changed(frame + 4, 12), picture.get(), other.get()},
      {"another height", changed(frame + 6, 95), picture.get(), other.get()},
      {"cut off", cut, picture.get(), other.get()},
      {"scan cut short", ended, picture.get(), other.get()},
      {"no JPEG", {'B', 'M', 0xFF, 0xD8}, picture.get(), other.get()},
      {"no picture", sound, picture.get(), nullptr},
      {"another depth", sound, gray.get(), gray.get()},
  };
  for (const auto& row : rows) {
    WriteBytes(source_, row.bytes);
    const Outcome outcome = PatchJpeg(source_, row.before, row.after, target_);
    EXPECT_EQ(outcome.kind, Kind::kNotPossible) << row.name;
    EXPECT_NE(outcome.reason, "") << row.name;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1) << row.name;
  }
  EXPECT_EQ(PatchJpeg("none.jpg", picture.get(), other.get(), target_).kind, Kind::kFailed);
}

// By way of the pixels.
modules::OwnedBlock Turned(modules::OwnedBlock picture, const Turn& turn) {
  if (turn.mirrored) picture = modules::TurnedUpright(std::move(picture), 2);
  for (int i = 0; i < turn.quarterTurnsClockwise + 4; ++i) {
    picture = modules::TurnedUpright(std::move(picture), 6);
  }
  return picture;
}
modules::OwnedBlock Cut(DibHandle picture, const RECT& part) {
  const modules::LockedDib from(picture);
  auto result = modules::NewDibLike(from.header(), part.right - part.left, part.bottom - part.top,
                                    from->depth);
  const modules::LockedDib to(result.get());
  for (int y = 0; y < to->height; ++y) {
    std::copy_n(from->row(from->height - part.bottom + y) + part.left * from->depth / 8,
                to->rowBytes(), to->row(y));
  }
  return result;
}

// The target against a picture of pixels: what an odd edge cost is missing at the left and the top.
void ExpectTurned(const std::string& target, const std::string& source, DibHandle shall) {
  const modules::OwnedBlock picture = Loaded(target);
  const BITMAPINFOHEADER is = modules::LockedDib(picture.get()).header();
  const BITMAPINFOHEADER whole = modules::LockedDib(shall).header();
  EXPECT_EQ(is.biXPelsPerMeter, whole.biXPelsPerMeter);
  EXPECT_LT(whole.biWidth - is.biWidth, 16);
  const auto part = Cut(shall, {whole.biWidth - is.biWidth, whole.biHeight - is.biHeight,
                                whole.biWidth, whole.biHeight});
  EXPECT_LE(Distance(picture.get(), part.get()), 4);
  const JpegFile file = TakenApart(ReadBytes(target));
  Bytes notes(kNotes.begin(), kNotes.end());
  SetIndex(notes, file.end);
  const modules::WritableTags tags(std::span<std::uint8_t>(notes).subspan(kTags));
  tags.put16(72, static_cast<unsigned>(is.biWidth));
  tags.put32(84, static_cast<std::uint32_t>(is.biHeight));
  // The resolutions' entries change places, not the resolutions.
  const bool swapped = is.biXPelsPerMeter < is.biYPelsPerMeter;
  tags.put32(30, swapped ? 100 : 92);
  tags.put32(42, swapped ? 92 : 100);
  EXPECT_TRUE(std::equal(notes.begin(), notes.end(), file.notes.begin()));
  EXPECT_TRUE(file.trailer == TakenApart(ReadBytes(source)).trailer);
}

TEST_F(JpegTest, TurnsAreThoseOfThePixelsAndTheTagsFollow) {
  for (const int i : {0, 1, 2, 3, 5, 9, 11}) {
    const Row& row = kRows[i];
    for (int orientation = 1; orientation <= 8; ++orientation) {
      for (const Turn& turn : {Turn{0, false}, Turn{1, false}, Turn{-1, true}, Turn{2, true}}) {
        SCOPED_TRACE(row.name + (" " + std::to_string(orientation)));
        make(row, orientation);
        const auto shall = Turned(Loaded(source_), turn);
        const Outcome kept = TurnJpeg(source_, turn, OddEdge::kKeep, target_);
        const Outcome outcome = TurnJpeg(source_, turn, OddEdge::kTrim, target_);
        ASSERT_EQ(outcome.kind, Kind::kDone) << outcome.reason;
        ExpectTurned(target_, source_, shall.get());
        const int lost = Distance(Loaded(target_).get(), shall.get());
        EXPECT_EQ(kept.kind, lost == 1000 ? Kind::kNotPossible : Kind::kDone) << kept.reason;
        EXPECT_TRUE(row.width % 8 != 0 || lost < 1000);
      }
    }
  }
}

TEST_F(JpegTest, FourTurnsInPlaceGiveEveryCoefficientBack) {
  make(kRows[5], 1);
  const Bytes before = ReadBytes(source_);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(TurnJpeg(source_, {.quarterTurnsClockwise = 1}, OddEdge::kKeep, source_).kind,
              Kind::kDone);
  }
  EXPECT_EQ(ChangedUnits(before, ReadBytes(source_), 16, 16), 0);
  EXPECT_TRUE(JpegInput(ReadBytes(source_)).manner() == MannerOf(kRows[5]));
}

TEST_F(JpegTest, PartsAreCutAtTheBordersOfBlocks) {
  const struct {
    int row;
    int orientation;
    RECT part;
    Kind kind;
  } rows[] = {
      {2, 1, {16, 32, 77, 59}, Kind::kDone},
      {2, 6, {32, 16, 96, 160}, Kind::kDone},
      {1, 6, {8, 16, 60, 90}, Kind::kDone},  // its blocks are 16 pixels high, as shown
      {1, 6, {16, 8, 60, 80}, Kind::kNotPossible},
      {2, 1, {8, 32, 77, 59}, Kind::kNotPossible},
      {2, 1, {0, 8, 77, 59}, Kind::kNotPossible},
      {4, 3, {16, 16, 77, 59}, Kind::kNotPossible},  // upright it begins within a block
      {0, 1, {0, 0, 65, 80}, Kind::kNotPossible},
      {0, 1, {8, 8, 8, 80}, Kind::kNotPossible},
      {9, 1, {8, 72, 65, 79}, Kind::kDone},
  };
  for (const auto& [row, orientation, part, kind] : rows) {
    SCOPED_TRACE(kRows[row].name + (" " + std::to_string(orientation)));
    make(kRows[row], orientation);
    const auto before = Loaded(source_);
    const Outcome outcome = CutJpeg(source_, part, target_);
    EXPECT_EQ(outcome.kind, kind) << outcome.reason;
    EXPECT_EQ(std::filesystem::exists(target_), kind == Kind::kDone);
    if (kind == Kind::kDone) ExpectTurned(target_, source_, Cut(before.get(), part).get());
    std::filesystem::remove(target_);
  }
}

TEST_F(JpegTest, MannersAndQualityAreThoseOfTheSource) {
  for (const Row& row : kRows) {
    make(row, 1);
    const auto manner = client::MannerOf(source_);
    ASSERT_TRUE(manner) << row.name;
    EXPECT_TRUE(*manner == MannerOf(row)) << row.name;
    // Pictures that the source could not have held follow its tones.
    const auto other = Waves(33, 41, row.colors == Colors::kTones ? 24 : 8);
    ASSERT_EQ(SaveJpegLike(*manner, other.get(), target_), ORVO_OK);
    const auto loaded = Loaded(target_);
    EXPECT_LE(Distance(loaded.get(), other.get()), 8) << row.name;
    EXPECT_EQ(modules::LockedDib(loaded.get()).header().biXPelsPerMeter, 7874);
    EXPECT_EQ(client::MannerOf(target_)->tables[0], manner->tables[0]);
  }
  EXPECT_EQ(SaveJpegLike(MannerOf(kRows[0]), Waves(9, 9, 32).get(), target_), ORVO_ERR_BAD_DEPTH);
  EXPECT_FALSE(client::MannerOf("none.jpg"));
  const auto picture = Waves(40, 40, 24);
  for (const int quality : {5, 30, 50, 51, 75, 90, 99, 100}) {
    modules::SaveJpeg({target_.c_str(), kFormatJpeg, quality, false, nullptr},
                      modules::LockedDib(picture.get()));
    EXPECT_EQ(EstimatedQuality(target_), quality);
  }
}

}  // namespace
}  // namespace client
