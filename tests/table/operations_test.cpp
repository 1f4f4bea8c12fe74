// The operations that come in two forms, to a new image and in place, called by their places: each
// with pictures, numbers and callbacks of all kinds, and with every module entry missing or
// failing. What one leaves, from codes and pixels to the calls that modules get, goes
// into its sum.
#include <array>

#include "toolkit_test.h"

namespace table {
namespace {

// From here on modules carry the operations out, and the image in place is passed by its address.
constexpr std::size_t kFirstOfModules = 18;

// One call of one form.
struct Form {
  COrvoInstance* toolkit;
  std::size_t place;
  DibHandle* image;
  DibHandle* result;
  bool inPlace;

  template <class... Arguments>
  int operator()(Arguments... arguments) const {
    if (!inPlace) return CallSlot(toolkit, place, *image, result, arguments...);
    if (place < kFirstOfModules) return CallSlot(toolkit, place, *image, arguments...);
    return CallSlot(toolkit, place, image, arguments...);
  }
};

struct Operation {
  const char* name;
  std::size_t toNew, inPlace;
  int (*call)(const Form& form, int number, StatusCallback watch);
  std::vector<int> numbers;  // one that is taken, then those round the edges of the range
  const char* sum;
};

using F = const Form&;
using W = StatusCallback;

constexpr auto kNumber = [](F form, int n, W w) { return form(n, w); };
constexpr auto kNone = [](F form, int, W w) { return form(w); };
constexpr auto kLevel = [](F form, int n, W) { return form(static_cast<std::uint8_t>(n)); };
constexpr auto kGamma = [](F form, int n, W w) { return form(static_cast<unsigned>(n), w); };
constexpr auto kUnsigned = [](F form, int n, W) { return form(static_cast<unsigned>(n)); };
constexpr auto kBits = [](F form, int n, W) { return form(n); };
constexpr auto kSize = [](F form, int n, W w) { return form(n, 20, 2U, w); };
constexpr auto kDots = [](F form, int n, W w) { return form(n, 100, w); };
constexpr auto kTrim = [](F form, int n, W) { return form(n, 20, 110, 128); };
constexpr auto kConvert = [](F form, int, W) { return form(SEPIA_CONVERTER); };
constexpr auto kDescreen = [](F form, int n, W w) { return form(static_cast<unsigned>(n), 0U, w); };
constexpr auto kReduce = [](F form, int n, W) {
  return form(kEyeX, kEyeY, static_cast<std::uint32_t>(n));
};

int Remap(F form, int channel, W watch) {
  static std::uint32_t negative[256];
  for (unsigned i = 0; i < 256; ++i) negative[i] = 255 - i;
  return form(static_cast<const std::uint32_t*>(negative), channel, watch);
}

// The number is what stands in the caller's flag before; the flag goes into the code.
int AutoRedEye(F form, int before, W /*watch*/) {
  int found = before;
  const int code = form(before < 0 ? nullptr : &found);
  return code + 100 * found;
}

const Operation kOperations[] = {
    {"Convert", 1, 2, kConvert, {0}, "fba11043"},
    {"Sharpness", 3, 4, kLevel, {10, 11, 255}, "d9bfabf"},
    {"Histogram", 5, 6, kLevel, {10, 11, 255}, "5f2a3099"},
    {"Exposure", 7, 8, kLevel, {10, 11, 255}, "9fcd6fca"},
    {"Reduce", 10, 11, kReduce, {kEyeRadius, 0}, "c2aa1358"},
    {"Auto", 13, 12, AutoRedEye, {9, 0, 1, -1}, "962dc1fc"},
    {"Whiteness", 14, 15, kUnsigned, {100, 255, 256, -1}, "fdbe03cc"},
    {"Descreen", 16, 17, kDescreen, {1, 3, 4, -1}, "a5fc326d"},
    {"Resolution", 19, 20, kDots, {150}, "a8a36947"},
    {"Contrast", 21, 22, kNumber, {250, -1000, 1000, -1001, 1001}, "4c4a080e"},
    {"Bits", 23, 24, kBits, {4, 1, 8, 16, 24, 32, -8, 0, 2, 3, 15, 25, 31, 33, 64}, "4c7dbf37"},
    {"Gray", 25, 26, kNone, {0}, "dc541074"},
    {"Gamma", 27, 28, kGamma, {220, 1, 9, 0}, "818effe2"},
    {"Hue", 29, 30, kNumber, {250, -36001, 36001, -36002, 36002}, "472c825a"},
    {"Intensity", 31, 32, kNumber, {250, -1000, 1000, -1001, 1001}, "f1107dcd"},
    {"Invert", 33, 34, kNone, {0}, "60fab9e8"},
    {"Rotate", 35, 36, kNumber, {30, -90, 0, 725}, "b1f524ff"},
    {"Saturation", 37, 38, kNumber, {250, -1000, 1000, -1001, 1001}, "626d2636"},
    {"Sharpen", 40, 41, kNumber, {250, -1000, 1000, -1001, 1001}, "e013148b"},
    {"Size", 46, 47, kSize, {30}, "b57c9dc0"},
    {"Remap", 49, 50, Remap, {3, 0}, "b73aa467"},
    {"Trim", 59, 58, kTrim, {10}, "9be45907"}};

// Pictures by number: depths, and others beyond them.
constexpr int kUnusedBits = 33, kGround = 34, kColored = 35, kSmall = 36, kShort = 37, kTorn = 38;
constexpr int kNothing = 39;

OwnedDib PictureOf(int kind) {
  if (kind == kNothing) return {};
  if (kind == kGround) return Ground();
  if (kind == kColored) return pictures::NoiseInColor(kWidth, kHeight, 8, 1);
  if (kind == kSmall) return pictures::Noise(127, 200, 24, 1);
  if (kind < kUnusedBits) return Picture(kind);
  OwnedDib picture = Face();
  if (kind == kShort) {
    const std::vector<std::uint8_t> bytes = pictures::BytesOf(picture.get());
    picture.reset(GlobalAlloc(orvo::kDibBlockFlags, bytes.size() - 1));
    std::memcpy(Locked(picture.get()).bytes(), bytes.data(), bytes.size() - 1);
  } else if (kind == kTorn) {
    Locked(picture.get()).header()->biWidth = 60000;
  } else {
    Locked(picture.get()).header()->biBitCount = 0x118;
  }
  Locked(picture.get()).header()->biSizeImage = 77;
  return picture;
}

class Operations : public ToolkitTest, public testing::WithParamInterface<Operation> {
 protected:
  enum class Before : std::uint8_t { kOlder, kNull, kSource };

  int call(bool inPlace, DibHandle* image, DibHandle* result, int number) {
    const std::size_t place = inPlace ? GetParam().inPlace : GetParam().toNew;
    return GetParam().call({toolkit.get(), place, image, result, inPlace}, number, &Watch);
  }

  // One call, and all that it left.
  void run(bool inPlace, int kind, int number, Before before = Before::kOlder) {
    OwnedDib image = PictureOf(kind);
    OwnedDib old = pictures::Noise(7, 5, 24, 1);
    void* const given = image.get();
    const auto original = image ? pictures::BytesOf(given) : std::vector<std::uint8_t>();
    DibHandle made = before == Before::kOlder  ? old.get()
                     : before == Before::kNull ? nullptr
                                               : given;
    log();
    heard.clear();
    sum_ << call(inPlace, image.address(), &made, number) << log() << heard;
    if (!IsAlive(image.get())) image.release();
    const bool keeps = !inPlace && image && before != Before::kSource;
    EXPECT_TRUE(!keeps || pictures::BytesOf(given) == original) << "the source stays";
    sum_ << (image.get() == given) << image.get() << (made == image.get()) << (made == old.get())
         << IsAlive(old.get()) << (install(&Earlier) == &Watch);
    if (!IsAlive(old.get())) old.release();
    if (made == image.get() || made == old.get()) return;
    sum_ << made;
    GlobalFree(made);
  }

  Sum sum_;
};

TEST_P(Operations, LeaveWhatTheSumTells) {
  const std::vector<int>& numbers = GetParam().numbers;
  const Log entries(watched::EntryNames().begin() + 12, watched::EntryNames().begin() + 35);
  for (const bool inPlace : {false, true}) {
    for (const bool newHandles : {true, false}) {
      state.newHandles = newHandles;
      for (const int kind :
           {1, 4, 8, 16, 24, 32, kUnusedBits, kGround, kColored, kSmall, kShort, kTorn, kNothing}) {
        install(newHandles ? nullptr : &Earlier);
        run(inPlace, kind, numbers.front());
      }
    }
    for (const int number : numbers) {
      for (const int kind : {8, 24, kGround, kNothing}) run(inPlace, kind, number);
    }
    for (const int percent : {0, 50, 100}) {
      stopAt = percent;
      run(inPlace, 24, numbers.front());
    }
    stopAt = -1;
    for (const Before before : {Before::kNull, Before::kSource}) {
      for (const int kind : {24, kGround, kShort}) run(false, kind, numbers.front(), before);
    }
    for (const std::string& entry : entries + Log{"ltkrn13n.dll"}) {
      bind({entry});
      run(inPlace, kNothing, numbers.back());
      run(inPlace, 24, numbers.back());
      for (const int kind : {8, 16, 24}) run(inPlace, kind, numbers.front());
      bind();
      if (entry != "L_FreeBitmap") state.answers = {{entry, {-13}}};
      run(inPlace, 24, numbers.front());
      state.answers.clear();
    }
  }
  OwnedDib face = Face();
  sum_ << call(false, face.address(), nullptr, numbers.front());
  if (GetParam().inPlace > kFirstOfModules) sum_ << call(true, nullptr, nullptr, numbers.front());
  EXPECT_EQ(sum_.hex(), GetParam().sum);
  log();
}

INSTANTIATE_TEST_SUITE_P(All, Operations, testing::ValuesIn(kOperations),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace table
