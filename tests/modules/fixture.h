// What the tests of the four modules share: pictures of every kind and a view of their pixels, a
// folder that goes with the test, a watch on progress, and calls that fail one after the other.
#ifndef TESTS_MODULES_FIXTURE_H
#define TESTS_MODULES_FIXTURE_H

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "binding/module_contract.h"
#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace rig {

using orvo::OwnedDib;
using pictures::Locked;
using Bytes = std::vector<std::uint8_t>;
using Operation = std::function<int(struct_LEAD_Bitmap*)>;

// Every kind of image: gray ones have bytes that are their tones.
struct Kind {
  int depth;
  bool gray;
  [[nodiscard]] bool inColors() const { return depth <= 8 && !gray; }
};
inline constexpr Kind kKinds[] = {{1, false},  {4, false},  {8, false}, {8, true},
                                  {16, false}, {24, false}, {32, false}};

// Noise, the bytes of the palette that hold no colour included.
inline OwnedDib Picture(Kind kind, int width, int height, unsigned seed = 5) {
  OwnedDib dib = kind.inColors() ? pictures::NoiseInColor(width, height, kind.depth, seed)
                                 : pictures::Noise(width, height, kind.depth, seed);
  const Locked image(dib.get());
  for (std::size_t i = 0; i < orvo::DibPaletteBytes(kind.depth) / 4; ++i) {
    image.palette()[i].rgbReserved = static_cast<std::uint8_t>(i + 1);
  }
  return dib;
}

// Red, green and blue of all pixels from the top left, and the fourth bytes of 32 bits when asked.
inline Bytes Shown(const OwnedDib& dib, bool withFourth = false) {
  const Locked image(dib.get());
  const orvo::DibLayout layout = image.layout();
  const auto depth = static_cast<unsigned>(layout.depth);
  Bytes all;
  for (int y = layout.height; y-- > 0;) {
    for (unsigned bit = 0; bit < static_cast<unsigned>(layout.width) * depth; bit += depth) {
      const std::uint8_t* bytes = image.row(y) + bit / 8;
      const unsigned narrow = depth == 16 ? bytes[0] | unsigned{bytes[1]} << 8 : 0;
      if (depth <= 8) {
        const unsigned index = bytes[0] >> (8 - depth - bit % 8) & ((1U << depth) - 1);
        bytes = reinterpret_cast<const std::uint8_t*>(image.palette() + index);
      }
      for (const unsigned c : {2U, 1U, 0U, 3U}) {
        const unsigned tone = narrow >> (5 * c) & 31;
        if (c == 3 && !withFourth) continue;
        all.push_back(depth == 16 ? static_cast<std::uint8_t>(tone << 3 | tone >> 2) : bytes[c]);
      }
    }
  }
  return all;
}
inline BITMAPINFOHEADER HeaderOf(const OwnedDib& dib) {
  return *Locked(dib.get()).header();
}
// The largest difference of two pictures' bytes; 256 when they differ in size.
inline int LargestDifference(const Bytes& a, const Bytes& b) {
  if (a.size() != b.size()) return 256;
  int largest = 0;
  for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

// A check sum of codes and bytes; results are exact, so that one of them stands for a great many.
class Sum {
 public:
  void add(std::int64_t number) {
    value_ = (value_ ^ static_cast<std::uint64_t>(number)) * 0x100000001B3;
  }
  void add(const Bytes& bytes) {
    for (const std::uint8_t byte : bytes) add(byte);
    add(static_cast<std::int64_t>(bytes.size()));
  }
  void expect(std::uint64_t expected, const std::string& of) const {
    EXPECT_EQ(value_, expected) << of << ": 0x" << std::hex << std::uppercase << value_;
  }

 private:
  std::uint64_t value_ = 0;
};

// Runs an operation on an image in place; its owner holds the valid handle afterwards.
inline int Apply(const Operation& operation, OwnedDib& image) {
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, image.release());
  const int code = operation(&bitmap);
  image.reset(L_ChangeToDIB(&bitmap));
  return code;
}
inline OwnedDib Changed(const OwnedDib& image, const Operation& operation) {
  OwnedDib copy = pictures::CopyOf(image.get());
  EXPECT_EQ(Apply(operation, copy), kModuleSuccess);
  return copy;
}
// An entry's call with these arguments behind the bitmap.
template <class Entry, class... Arguments>
Operation Do(Entry entry, Arguments... arguments) {
  return [=](struct_LEAD_Bitmap* bitmap) { return entry(bitmap, arguments...); };
}
inline Operation ToDepth(int bits, unsigned dithering = 0,
                         unsigned flags = kColorResOptimisedPalette) {
  return [=](struct_LEAD_Bitmap* bitmap) {
    return L_ColorResBitmap(bitmap, bitmap, bits, flags | dithering << kColorResDitheringShift,
                            nullptr, nullptr, nullptr, nullptr, nullptr);
  };
}

// Follows progress for a scope, and stops the operation at a percent.
class Watch {
 public:
  explicit Watch(int stopAt = 1000) : stopAt_(stopAt) { L_SetStatusCallBack(Follow, this); }
  ~Watch() { L_SetStatusCallBack(nullptr, nullptr); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  // Checks what was seen of an operation that gave this code: a rising scale up to the stop, or to
  // its end.
  void check(int code) const {
    ASSERT_FALSE(seen_.empty());
    EXPECT_TRUE(std::is_sorted(seen_.begin(), seen_.end(), std::less_equal<>()));
    EXPECT_GE(seen_.front(), 0);
    EXPECT_EQ(code, stopAt_ <= 100 ? kModuleAborted : kModuleSuccess);
    EXPECT_GE(seen_.back(), std::min(stopAt_, 100));
    EXPECT_LE(seen_.back(), 100);
    EXPECT_EQ(std::count_if(seen_.begin(), seen_.end(), [&](int p) { return p >= stopAt_; }),
              stopAt_ <= 100 ? 1 : 0);
  }
  [[nodiscard]] const std::vector<int>& seen() const { return seen_; }

 private:
  static int Follow(int percent, void* watch) {
    Watch& self = *static_cast<Watch*>(watch);
    self.seen_.push_back(percent);
    return percent >= self.stopAt_ ? 16 : 1;
  }

  int stopAt_;
  std::vector<int> seen_;
};

// The n-th call of new from now on fails, once; 0 lets all succeed.
void FailNew(int n) noexcept;

// Lets the first, then the second ... allocation, lock and call of new fail, until the work, which
// gives a module code, goes through. `check` takes each code and looks at what is left.
template <class Work, class Check>
void FailEach(const Work& work, const Check& check) {
  for (void (*const fail)(int) noexcept : {+PlatformFailAllocation, +PlatformFailLock, +FailNew}) {
    for (int n = 1, code = kModuleFailure; code != kModuleSuccess; ++n) {
      ASSERT_LT(n, 500);
      fail(n);
      code = work();
      fail(0);
      ASSERT_TRUE(code == kModuleSuccess || code == kModuleNoMemory || code == kModuleNoBitmap)
          << code;
      check(code);
    }
  }
}

// Every test has an empty folder of its own, and leaves no block, no lock and no word behind.
class ModuleTest : public testing::Test {
 protected:
  ModuleTest() {
    std::string pattern = testing::TempDir() + "orvo-modules-XXXXXX";
    folder_ = mkdtemp(pattern.data());
    testing::internal::CaptureStderr();
  }
  ~ModuleTest() override {
    std::filesystem::remove_all(folder_);
    // The address sanitizer tells of memory that it does not give.
    const std::string words = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(words.empty() || words.find("AddressSanitizer failed") != std::string::npos)
        << words;
    EXPECT_EQ(PlatformLiveBlocks(), blocks_);
    EXPECT_EQ(PlatformHeldLocks(), locks_);
  }

  [[nodiscard]] std::string at(const std::string& name) const { return folder_ / name; }
  [[nodiscard]] std::size_t fileCount() const {
    const std::filesystem::directory_iterator files(folder_);
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }
  [[nodiscard]] Bytes read(const std::string& name) const {
    std::ifstream file(at(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void write(const std::string& name, const Bytes& bytes) const {
    std::ofstream(at(name), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  // Runs a command line in the folder; what it prints.
  Bytes run(const std::string& command) const {
    Bytes output;
    std::FILE* const pipe = popen(
        ("export OMP_NUM_THREADS=1 && cd " + folder_.string() + " && " + command).c_str(), "r");
    if (pipe == nullptr) return output;
    for (int byte = 0; (byte = std::fgetc(pipe)) != EOF;) {
      output.push_back(static_cast<std::uint8_t>(byte));
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
  }
  // Does the work with files limited to so many bytes, as a full disk would.
  template <class Work>
  static auto inSpaceOf(std::size_t bytes, const Work& work) {
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    const auto result = work();
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    return result;
  }
  [[nodiscard]] std::string text(const std::string& command) const {
    const Bytes output = run(command);
    return {output.begin(), output.end()};
  }

 private:
  std::filesystem::path folder_;
  std::size_t blocks_ = PlatformLiveBlocks();
  std::size_t locks_ = PlatformHeldLocks();
};

}  // namespace rig

#endif  // TESTS_MODULES_FIXTURE_H
