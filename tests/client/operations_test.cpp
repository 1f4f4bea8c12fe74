// Each command gives the file that the operations of the toolkit give, called with what its words
// mean: units, order and row 0 of each argument stand here a second time.
#include <cmath>
#include <functional>

#include "client/client.h"
#include "support/pictures.h"

namespace {

constexpr int kWidth = 150;  // of the pictures of noise
constexpr int kHeight = 140;

using Call = std::function<int(COrvoInstance&, orvo::OwnedDib&)>;
using Toolkit = COrvoInstance;

// An operation that changes the handle it is given.
auto At(auto operation, auto... arguments) {
  return [=](Toolkit& toolkit, orvo::OwnedDib& picture) {
    return (toolkit.*operation)(picture.address(), arguments...);
  };
}

// An operation that gives a picture of its own.
auto New(auto operation, auto... arguments) {
  return [=](Toolkit& toolkit, orvo::OwnedDib& picture) {
    orvo::OwnedDib result;
    const int code = (toolkit.*operation)(picture.get(), result.receive(picture), arguments...);
    picture = std::move(result);
    return code;
  };
}

auto Remapped(int channel, const std::function<long(int)>& toneOf) {
  return [=](Toolkit& toolkit, orvo::OwnedDib& picture) {
    std::uint32_t table[256];
    for (int tone = 0; tone < 256; ++tone) table[tone] = static_cast<std::uint32_t>(toneOf(tone));
    return toolkit.RemapIntensityInPlace(picture.address(), table, channel, nullptr);
  };
}

auto Dithered(int mode, int bits) {
  return [=](Toolkit& toolkit, orvo::OwnedDib& picture) {
    toolkit.SetDitheringMode(mode);
    return toolkit.ConvertToColorResInPlace(picture.address(), bits);
  };
}

// Thumbnails are made from files.
auto Small(int width, int height) {
  return [=](Toolkit& toolkit, orvo::OwnedDib& picture) {
    return toolkit.CreateThumbnailFromFile("photo.bmp", picture.receive(), width, height);
  };
}

// Straight lines through 10,200 and 20,100 and 200,220, level outside.
long Curve(int tone) {
  if (tone <= 10) return 200;
  if (tone <= 20) return 200 - 10L * (tone - 10);
  return std::min(220L, std::lround(100 + (tone - 20) / 1.5));
}

long Negative(int tone) {
  return 255 - tone;
}

struct Row {
  const char* words;
  const char* source;
  Call expected;
};

std::uint8_t Level(int number) {
  return static_cast<std::uint8_t>(number);
}

constexpr StatusCallback kQuiet = nullptr;

const Row kRows[] = {
    {"sharpen", "photo", New(&Toolkit::SharpnessAdjust, Level(5))},
    {"sharpen --level 10", "gray", New(&Toolkit::SharpnessAdjust, Level(10))},
    {"histogram --level 3", "photo", New(&Toolkit::HistogramAdjust, Level(3))},
    {"exposure --level 0", "gray", New(&Toolkit::ExposureAdjust, Level(0))},
    {"unsharp --change -600", "photo", At(&Toolkit::LeadSharpnessAdjustInPlace, -600, kQuiet)},
    {"whiten --threshold 120", "photo",
     [](auto& toolkit, auto& picture) {
       return toolkit.WhitenessAdjustInPlace(picture.get(), 120);
     }},
    {"contrast --change 1000", "photo", At(&Toolkit::ContrastAdjustInPlace, 1000, kQuiet)},
    {"intensity --change=-100", "photo", At(&Toolkit::IntensityAdjustInPlace, -100, kQuiet)},
    {"saturation --change 300", "photo", At(&Toolkit::SaturationAdjustInPlace, 300, kQuiet)},
    {"hue --degrees 120.005", "photo", At(&Toolkit::HueAdjustInPlace, 12001, kQuiet)},
    {"gamma --gamma 1.8", "photo", At(&Toolkit::GammaAdjustInPlace, 180U, kQuiet)},
    {"invert", "gray", At(&Toolkit::InvertInPlace, kQuiet)},
    {"gray", "photo", At(&Toolkit::ConvertToGrayScaleResInPlace, kQuiet)},
    {"depth --bits 1", "photo", Dithered(1, 1)},
    {"depth --bits 8 --dither stucki", "photo", Dithered(2, 8)},
    {"depth --bits 16", "photo", Dithered(1, 16)},
    {"depth --bits 32", "photo", Dithered(1, 32)},
    {"remap --posterize 5", "photo",
     Remapped(0, [](int tone) { return std::lround((tone * 5 / 256) * 63.75); })},
    {"remap --curve 10,200,20,100,200,220", "photo", Remapped(0, Curve)},
    {"remap --table table.txt --channel red", "photo", Remapped(1, Negative)},
    {"remap --table table.txt --channel green", "photo", Remapped(2, Negative)},
    {"remap --curve 0,255,255,0 --channel blue", "photo", Remapped(3, Negative)},
    {"convert-rgb --converter " SEPIA_CONVERTER, "photo",
     [](auto& toolkit, auto& picture) {
       return toolkit.ConvertRGBInPlace(picture.get(), SEPIA_CONVERTER);
     }},
    {"rotate --angle -8", "photo", At(&Toolkit::RotateInPlace, -8, kQuiet)},
    {"resize --width 75", "photo", At(&Toolkit::ChangeSizeInPlace, 75, 70, 4U, kQuiet)},
    {"resize --height 20 --method nearest", "photo",
     At(&Toolkit::ChangeSizeInPlace, 21, 20, 0U, kQuiet)},
    {"resize --width 7 --height 90 --method bilinear", "photo",
     At(&Toolkit::ChangeSizeInPlace, 7, 90, 2U, kQuiet)},
    {"resize --height 1", "narrow", At(&Toolkit::ChangeSizeInPlace, 1, 1, 4U, kQuiet)},
    {"resolution --dpi 150", "photo", At(&Toolkit::ChangeResolutionInPlace, 150, 150, kQuiet)},
    {"resolution --dpi 150,600", "photo", At(&Toolkit::ChangeResolutionInPlace, 150, 600, kQuiet)},
    {"convert", "gray", [](auto&, auto&) { return ORVO_OK; }},
    {"thumbnail", "photo", Small(160, 160)},
    {"thumbnail --size 24x30", "photo", Small(24, 30)},
    {"descreen", "photo", New(&Toolkit::Descreen, 1U, 0U, kQuiet)},
    {"descreen --level 3 --sharpen 20", "gray", New(&Toolkit::Descreen, 3U, 20U, kQuiet)},
    {"trim --rect 10,5,30,40", "photo",
     At(&Toolkit::TrimInPlace, 10, kHeight - 40, 30, kHeight - 5)},
    {"trim --rect 0,0,149,140", "photo", At(&Toolkit::TrimInPlace, 0, 0, kWidth - 1, kHeight)},
    {"trim --auto --threshold 90", "page", New(&Toolkit::AutoTrim, Level(90))},
    {"redeye", "portrait",
     [](Toolkit& toolkit, orvo::OwnedDib& picture) {
       int found = 0;
       return toolkit.AutoRedEyeInPlace(picture.get(), &found);
     }},
};

class OperationsTest : public ClientTest {
 protected:
  OperationsTest() {
    save("photo.bmp", pictures::Noise(kWidth, kHeight, 24, 7));
    save("gray.bmp", pictures::Noise(kWidth, kHeight, 8, 8));
    save("narrow.bmp", pictures::Noise(2, 100, 24, 9));
    save("page.bmp", Page());
    save("portrait.bmp", Portrait());
    std::string table;
    for (int tone = 255; tone >= 0; --tone) {
      table += std::to_string(tone) + (tone % 16 == 0 ? "\n" : ", ");
    }
    write("table.txt", table);
  }

  void expectSame(const std::string& words, const std::string& name, const Call& expected) const {
    const std::string source = name + ".bmp";
    const std::string before = bytes(source);
    const Outcome outcome = run(words + " -o out.bmp " + source);
    EXPECT_EQ(outcome.status, 0) << words;
    EXPECT_TRUE(outcome.errors.empty() || outcome.errors.ends_with("copied as it is\n")) << words;
    EXPECT_EQ(bytes(source), before) << words;
    orvo::OwnedDib picture = load(source);
    EXPECT_EQ(expected(*toolkit_.get(), picture), ORVO_OK) << words;
    save("expected.bmp", picture);
    EXPECT_TRUE(bytes("out.bmp") == bytes("expected.bmp")) << words;
  }
};

TEST_F(OperationsTest, DithersAreThoseOfTheToolkitInItsOrder) {
  int mode = 0;
  for (const char* const name : {"none", "floyd-steinberg", "stucki", "burkes", "sierra",
                                 "stevenson-arce", "jarvis", "ordered", "clustered"}) {
    expectSame("depth --bits 4 --dither " + std::string(name), "photo", Dithered(mode++, 4));
  }
}

TEST_F(OperationsTest, CommandsCallTheToolkitWithWhatTheyWereTold) {
  for (const Row& row : kRows) expectSame(row.words, row.source, row.expected);
}

TEST_F(OperationsTest, NothingToDoLeavesTheBytes) {
  const auto longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(48);
  for (const char* const name : {"p.jpg", "p.png", "p.tif", "p.psd", "p.bmp"}) {
    // Bytes that no picture needs are gone once the file is written anew.
    save(name, load("photo.bmp"));
    write(name, bytes(name) + "more");
    const std::string whole = bytes(name);
    for (const char* const words :
         {"redeye", "sharpen --level 0", "exposure --level 0", "contrast --change 0",
          "rotate --angle 0", "resize --width 150", "trim --rect 0,0,150,140", "depth --bits 24"}) {
      std::filesystem::last_write_time(name, longAgo);
      const json told = report(std::string(words) + " --in-place " + name);
      EXPECT_EQ(told["changed"], false) << words << name;
      EXPECT_EQ(std::filesystem::last_write_time(name), longAgo) << words << name;
      const std::string copy =
          std::string("copy") + std::filesystem::path(name).extension().string();
      report(std::string(words) + " -o " + copy + " " + name);
      EXPECT_TRUE(bytes(name) == whole && bytes(copy) == whole) << words << name;
    }
    EXPECT_EQ(report(std::string("invert --in-place ") + name)["changed"], true);
    EXPECT_FALSE(bytes(name) == whole);
  }
  EXPECT_EQ(run("convert --quality 90 p.jpg -o q.jpg").errors, "");
  EXPECT_FALSE(bytes("q.jpg") == bytes("p.jpg"));
}

TEST_F(OperationsTest, QualityReachesJpegFiles) {
  const orvo::OwnedDib photo = load("photo.bmp");
  for (const char* const command : {"convert", "contrast --change 0"}) {
    for (const int quality : {20, 95}) {
      const std::string told = std::to_string(quality);
      ASSERT_EQ(run(command + std::string(" photo.bmp -o out.jpg --quality ") + told).status, 0);
      toolkit_->SaveFile(photo.get(), "expected.jpg", 0, quality);
      EXPECT_TRUE(bytes("out.jpg") == bytes("expected.jpg")) << command << told;
    }
  }
}

TEST_F(OperationsTest, ContentAndSkewAreTold) {
  RECT rect{};
  orvo::OwnedDib page = load("page.bmp");
  EXPECT_EQ(toolkit_->GetAutoTrimRect(page.get(), 100, &rect), ORVO_OK);
  const json kept{rect.left, kPageHeight - rect.bottom, rect.right, kPageHeight - rect.top};
  EXPECT_EQ(report("content page.bmp")["rect"], kept);
  EXPECT_EQ(report("trim --auto page.bmp -o cut.bmp")["rect"], kept);

  orvo::OwnedDib upright;
  int hundredths = 0;
  EXPECT_EQ(toolkit_->RotateInPlace(page.address(), 7, nullptr), ORVO_OK);
  save("crooked.bmp", page);
  toolkit_->AutoDeskew(page.get(), upright.receive(page), &hundredths, nullptr);
  save("expected.bmp", upright);
  EXPECT_EQ(report("deskew crooked.bmp -o out.bmp")["angle"], hundredths / 100);
  EXPECT_NE(hundredths, 0);
  EXPECT_TRUE(bytes("out.bmp") == bytes("expected.bmp"));
}

TEST_F(OperationsTest, ItemsAreToldCutOutAndFramed) {
  for (const int depth : {1, 24}) {
    orvo::OwnedDib page = load("page.bmp");
    if (depth == 1) {
      EXPECT_EQ(Dithered(0, 1)(*toolkit_.get(), page), ORVO_OK);
    }
    save("bed.bmp", page);
    RegionRecord* list = nullptr;
    int count = 0;
    EXPECT_EQ(toolkit_->FindRegions(page.get(), &list, &count, 5, 200), ORVO_OK);
    ASSERT_EQ(count, 2);
    const json told = report("regions --reach 5 --level 200 --crop cut --mark . bed.bmp");
    std::vector<Box> boxes;
    for (int i = 0; i < count; ++i) {
      boxes.push_back({list[i].left, list[i].top, list[i].right, list[i].bottom});
      orvo::OwnedDib cut;
      EXPECT_EQ(
          toolkit_->Trim(page.get(), cut.receive(page), list[i].left, kPageHeight - list[i].bottom,
                         list[i].right, kPageHeight - list[i].top),
          ORVO_OK);
      save("expected.bmp", cut);
      EXPECT_TRUE(bytes("cut/bed-" + std::to_string(i + 1) + ".bmp") == bytes("expected.bmp"));
    }
    GlobalFree(list);
    EXPECT_EQ(told["items"], json(boxes));
    EXPECT_EQ(told["written"], json({"cut/bed-1.bmp", "cut/bed-2.bmp", "./bed-marked.png"}));
    ExpectFramed(Page(), loadTrueColor("bed-marked.png"), boxes, 0, {0, 0, 255});
  }
}

}  // namespace
