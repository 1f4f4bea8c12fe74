// What each command does to a picture, told pixel by pixel from the picture that went in.
#include <algorithm>
#include <functional>
#include <numeric>

#include "client/bmp_files.h"
#include "client/client.h"
#include "support/pictures.h"

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 40;

struct Seen {
  const orvo::OwnedDib& before;
  const orvo::OwnedDib& after;
  int x, y;  // in the picture that came out
  [[nodiscard]] Color was(int atX, int atY) const { return ColorAt(before, atX, atY); }
};

struct Row {
  const char* name;
  std::vector<std::string> words;
  int width, height, depth;  // of the result
  // What a pixel must be; null where only the measures are told.
  std::function<Color(const Seen&)> pixel;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

template <class Function>
auto EachChannel(Function function) {
  return [function](const Seen& seen) {
    Color color = seen.was(seen.x, seen.y);
    for (int& channel : color) channel = function(channel);
    return color;
  };
}

const auto kSame = EachChannel([](int tone) { return tone; });
const auto kNegative = EachChannel([](int tone) { return 255 - tone; });
const auto kTwoTones = EachChannel([](int tone) { return tone < 128 ? 0 : 255; });

Color RedNegative(const Seen& seen) {
  Color color = seen.was(seen.x, seen.y);
  color[2] = 255 - color[2];
  return color;
}

Color Whitened(const Seen& seen) {
  const Color color = seen.was(seen.x, seen.y);
  return *std::min_element(color.begin(), color.end()) >= 120 ? Color{255, 255, 255} : color;
}

// A third of the colour circle: red becomes green, green blue, blue red.
Color Turned(const Seen& seen) {
  const Color color = seen.was(seen.x, seen.y);
  return {color[1], color[2], color[0]};
}

// Half the size without mixing: one of the four pixels that were there.
Color OneOfFour(const Seen& seen) {
  const Color color = ColorAt(seen.after, seen.x, seen.y);
  for (const int dx : {0, 1}) {
    for (const int dy : {0, 1}) {
      if (color == seen.was(2 * seen.x + dx, 2 * seen.y + dy)) return color;
    }
  }
  return seen.was(2 * seen.x, 2 * seen.y);
}

const Row kRows[] = {
    {"contrast by nothing", {"contrast", "--change", "0"}, 60, 40, 24, kSame},
    {"all_contrast_gone",
     {"contrast", "--change", "-1000"},
     60,
     40,
     24,
     [](const Seen& seen) { return ColorAt(seen.after, 0, 0); }},
    {"black", {"intensity", "--change=-1000"}, 60, 40, 24, EachChannel([](int) { return 0; })},
    {"gray by saturation",
     {"saturation", "--change", "-1000"},
     60,
     40,
     24,
     [](const Seen& seen) {
       const int blue = ColorAt(seen.after, seen.x, seen.y)[0];
       return Color{blue, blue, blue};
     }},
    {"hue in degrees", {"hue", "--degrees", "120"}, 60, 40, 24, Turned},
    {"gamma is a factor", {"gamma", "--gamma", "1.0"}, 60, 40, 24, kSame},
    {"unsharp by nothing", {"unsharp", "--change", "0"}, 60, 40, 24, kSame},
    {"whiten", {"whiten", "--threshold", "120"}, 60, 40, 24, Whitened},
    {"invert", {"invert"}, 60, 40, 24, kNegative},
    {"posterize", {"remap", "--posterize", "2"}, 60, 40, 24, kTwoTones},
    {"curve", {"remap", "--curve", "0,255,255,0"}, 60, 40, 24, kNegative},
    {"table on red",
     {"remap", "--table", "table.txt", "--channel", "red"},
     60,
     40,
     24,
     RedNegative},
    {"rows of trim count from the top",
     {"trim", "--rect", "10,5,30,25"},
     20,
     20,
     24,
     [](const Seen& seen) { return seen.was(seen.x + 10, seen.y + 5); }},
    {"clockwise",
     {"rotate", "--angle", "90"},
     40,
     60,
     24,
     [](const Seen& seen) { return seen.was(seen.y, kHeight - 1 - seen.x); }},
    {"one side keeps the proportions",
     {"resize", "--height", "20", "--method", "nearest"},
     30,
     20,
     24,
     OneOfFour},
    {"both sides", {"resize", "--width", "7", "--height", "90"}, 7, 90, 24, nullptr},
    {"half the resolution", {"resolution", "--dpi", "150"}, 30, 20, 24, nullptr},
    {"resolutions apart", {"resolution", "--dpi", "150,600"}, 30, 80, 24, nullptr},
    {"thumbnail", {"thumbnail", "--size", "24x24"}, 24, 24, 24, nullptr},
    {"gray", {"gray"}, 60, 40, 8, nullptr},
    {"palette", {"depth", "--bits", "8", "--dither", "stucki"}, 60, 40, 8, nullptr},
    {"deeper", {"depth", "--bits", "32"}, 60, 40, 32, kSame},
    {"convert", {"convert"}, 60, 40, 24, kSame},
};

class OperationTest : public ClientTest, public ::testing::WithParamInterface<Row> {};

TEST_P(OperationTest, MakesThePictureThatItShould) {
  const Row& row = GetParam();
  const orvo::OwnedDib before = pictures::Noise(kWidth, kHeight, 24, 7);
  write("in.bmp", BmpOf(before));
  std::string table;
  for (int tone = 255; tone >= 0; --tone) table += std::to_string(tone) + (tone % 16 ? ", " : "\n");
  write("table.txt", table);

  std::vector<std::string> words = row.words;
  words.insert(words.end(), {"in.bmp", "-o", "out.bmp"});
  const Outcome outcome = run(words);
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output + outcome.errors, "");
  EXPECT_EQ(bytes("in.bmp"), BmpOf(before));

  const orvo::OwnedDib after = PictureIn(bytes("out.bmp"));
  ASSERT_TRUE(after);
  const orvo::DibLayout layout = pictures::Locked(after.get()).layout();
  ASSERT_EQ((std::vector{layout.width, layout.height, layout.depth}),
            (std::vector{row.width, row.height, row.depth}));
  if (row.pixel == nullptr) return;
  for (int y = 0; y < row.height; ++y) {
    for (int x = 0; x < row.width; ++x) {
      ASSERT_EQ(ColorAt(after, x, y), row.pixel({before, after, x, y})) << "at " << x << ", " << y;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Client, OperationTest, ::testing::ValuesIn(kRows), [](const auto& row) {
  std::string name = row.param.name;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
});

// How much neighbours in a row differ, as a measure of sharpness.
long Unevenness(const orvo::OwnedDib& picture) {
  long sum = 0;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 1; x < kWidth; ++x) {
      sum += std::abs(ColorAt(picture, x, y)[1] - ColorAt(picture, x - 1, y)[1]);
    }
  }
  return sum;
}

// The sum of all channels, as a measure of brightness.
long Sum(const orvo::OwnedDib& picture) {
  const std::vector<std::uint8_t> all = pictures::BytesOf(picture.get());
  return std::accumulate(all.begin() + orvo::kDibHeaderBytes, all.end(), 0L);
}

class DirectionTest : public ClientTest {};

TEST_F(DirectionTest, SignsAndStrengthsPointTheRightWay) {
  // Middle tones, so that stronger effects do not run against black and white.
  const orvo::OwnedDib before = pictures::Noise(kWidth, kHeight, 24, 9);
  {
    const pictures::Locked image(before.get());
    for (std::uint8_t* byte = image.row(0); byte != image.row(kHeight); ++byte) {
      *byte = static_cast<std::uint8_t>(112 + *byte / 8);
    }
  }
  write("in.bmp", BmpOf(before));
  const auto brightness = [&](std::vector<std::string> words) {
    words.insert(words.end(), {"in.bmp", "-o", "out.bmp"});
    EXPECT_EQ(run(words).status, 0);
    return Sum(PictureIn(bytes("out.bmp")));
  };
  EXPECT_GT(brightness({"gamma", "--gamma", "1.8"}), Sum(before));
  EXPECT_LT(brightness({"gamma", "--gamma", "0.5"}), Sum(before));
  EXPECT_GT(brightness({"intensity", "--change", "200"}), Sum(before));
  const auto unevenness = [&](const std::vector<std::string>& words) {
    brightness(words);
    return Unevenness(PictureIn(bytes("out.bmp")));
  };
  EXPECT_GT(unevenness({"unsharp", "--change", "600"}), Unevenness(before));
  EXPECT_LT(unevenness({"unsharp", "--change", "-600"}), Unevenness(before));
  // Sepia is warm: never less red than green, nor less green than blue.
  EXPECT_GT(brightness({"convert-rgb", "--converter", SEPIA_CONVERTER}), 0);
  const orvo::OwnedDib sepia = PictureIn(bytes("out.bmp"));
  for (int x = 0; x < kWidth; ++x) {
    const Color color = ColorAt(sepia, x, kHeight / 2);
    EXPECT_TRUE(color[0] <= color[1] && color[1] <= color[2]) << "at " << x;
  }
}

TEST_F(DirectionTest, SharpeningOvershootsAtAnEdgeByItsLevel) {
  constexpr int kDark = 80;
  constexpr int kBright = 170;
  const orvo::OwnedDib edge = pictures::Blank(kWidth, kHeight, 24);
  const pictures::Locked image(edge.get());
  for (int y = 0; y < kHeight; ++y) {
    std::memset(image.row(y), kDark, std::size_t{3} * kWidth);
    std::memset(image.row(y), kBright, std::size_t{3} * kWidth / 2);
  }
  write("in.bmp", BmpOf(edge));
  const auto brightest = [this](const char* level) {
    EXPECT_EQ(run({"sharpen", "--level", level, "in.bmp", "-o", "out.bmp"}).status, 0);
    const orvo::OwnedDib sharp = PictureIn(bytes("out.bmp"));
    int most = 0;
    for (int x = 0; x < kWidth; ++x) most = std::max(most, ColorAt(sharp, x, kHeight / 2)[1]);
    return most;
  };
  EXPECT_EQ(brightest("0"), kBright);
  EXPECT_GT(brightest("3"), kBright);
  EXPECT_GT(brightest("10"), brightest("3"));
}

}  // namespace
