// Every operation of the table on blocks that do not hold what they say, and on handles of none.
// Whatever a block says, nothing outside it is touched, which the sanitizers watch; no block is
// lost or stays locked, a source that is only read stays, and an image in place keeps a handle that
// lives.
//
//   blocks [STEP]   each STEP-th of the blocks
#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "every_operation.h"
#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace {

using namespace stress;
using pictures::BytesOf;
using Bytes = std::vector<std::uint8_t>;

int wrongs = 0;
long calls = 0;

void Check(bool holds, const Operation& operation, const char* what) {
  constexpr int kTold = 20;
  if (!holds && ++wrongs <= kTold) std::printf("%s: %s\n", operation.name, what);
}

orvo::OwnedDib BlockOf(const Bytes& bytes) {
  orvo::OwnedDib block(GlobalAlloc(orvo::kDibBlockFlags, bytes.size()));
  std::ranges::copy(bytes, pictures::Locked(block.get()).bytes());
  return block;
}

class Calls {
 public:
  Calls()
      : folder_(std::filesystem::temp_directory_path() /
                ("orvo-blocks-" + std::to_string(std::rand()))) {
    std::filesystem::create_directory(folder_);
  }
  ~Calls() { std::filesystem::remove_all(folder_); }
  Calls(const Calls&) = delete;
  Calls& operator=(const Calls&) = delete;

  // All operations that take an image, on copies of these bytes.
  void onBlock(const Bytes& bytes) {
    for (const Operation& operation : EveryOperation()) {
      if (operation.form == Form::kFile) continue;
      for (const bool overSource : {false, true}) {
        if (overSource && operation.form != Form::kToNew) continue;
        const std::size_t blocks = PlatformLiveBlocks();
        DibHandle image = BlockOf(bytes).release();
        DibHandle result = overSource ? image : nullptr;
        perform(operation, &image, &result);
        const bool lives = bytes.empty() || GlobalSize(image) != 0;
        Check(lives || overSource, operation, "the handle is dead");
        Check(operation.form == Form::kInPlace || overSource || BytesOf(image) == bytes, operation,
              "the source changed");
        for (const DibHandle block : {image, result}) GlobalFree(block);
        Check(PlatformLiveBlocks() == blocks, operation, "blocks were lost");
      }
    }
  }

  // The same on a handle behind which there is no block.
  void onHandle(DibHandle handle) {
    for (const Operation& operation : EveryOperation()) {
      if (operation.form == Form::kFile) continue;
      const std::size_t blocks = PlatformLiveBlocks();
      DibHandle image = handle;
      DibHandle result = nullptr;
      perform(operation, &image, &result);
      Check(image == handle && (result == nullptr || result == handle), operation,
            "a handle out of nothing");
      Check(PlatformLiveBlocks() == blocks, operation, "blocks were lost");
    }
  }

 private:
  void perform(const Operation& operation, DibHandle* image, DibHandle* result) {
    constexpr std::array kKinds = {".bmp", ".png", ".tif", ".jpg", ".psd", ".pcx", ".pdf"};
    const std::string target =
        (folder_ / "a").string() + kKinds[static_cast<std::size_t>(calls++) % kKinds.size()];
    (void)operation.call(
        {*toolkit_.get(), image, result, operation.usual(), "", target, SEPIA_CONVERTER});
    Check(PlatformHeldLocks() == 0, operation, "a block stays locked");
  }

  const orvo::OwnedInstance toolkit_;
  std::filesystem::path folder_;
};

// take(bytes) for each block that can be made of a sound one: another value in a field of the
// header, or its end at any byte of header and palette and at some of the rows.
template <class Take>
void ForEachMutant(const Bytes& sound, const Take& take) {
  struct Field {
    std::size_t place, bytes;
  };
  constexpr Field kFields[] = {{0, 4},  {4, 4},  {8, 4},  {12, 2}, {14, 2}, {16, 4},
                               {20, 4}, {24, 4}, {28, 4}, {32, 4}, {36, 4}};
  std::mt19937 random(1);
  for (const Field& field : kFields) {
    for (const int value : {0,
                            1,
                            2,
                            3,
                            4,
                            8,
                            16,
                            24,
                            32,
                            64,
                            0x118,
                            41,
                            0xFFFF,
                            0x10000,
                            -1,
                            INT_MAX,
                            INT_MIN,
                            INT_MAX / 4,
                            static_cast<int>(random() >> 16),
                            static_cast<int>(random())}) {
      Bytes mutant = sound;
      std::memcpy(mutant.data() + field.place, &value, field.bytes);
      take(mutant);
    }
  }
  const std::size_t rows = orvo::DibLayoutOf(sound.data(), sound.size())->pixelOffset;
  for (std::size_t end = 0; end < sound.size(); end += end < rows ? 1 : 7) {
    take(Bytes(sound.begin(), sound.begin() + static_cast<std::ptrdiff_t>(end)));
  }
}

}  // namespace

int main(int count, char** words) {
  const int step = count > 1 ? std::atoi(words[1]) : 1;
  int mutants = 0;
  int taken = 0;
  {
    Calls operations;
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
      ForEachMutant(BytesOf(pictures::Noise(19, 17, depth, 1).get()), [&](const Bytes& mutant) {
        if (mutants++ % step != 0) return;
        ++taken;
        operations.onBlock(mutant);
      });
    }
    const DibHandle freed = pictures::Blank(3, 2, 24).get();
    int local = 0;
    for (const std::uintptr_t invented :
         {std::uintptr_t{1}, std::uintptr_t{0xFFFFFFFF}, ~std::uintptr_t{0},
          reinterpret_cast<std::uintptr_t>(&local), reinterpret_cast<std::uintptr_t>(freed)}) {
      operations.onHandle(reinterpret_cast<DibHandle>(invented));
    }
  }
  std::printf("%d blocks mutated, %ld calls: %s\n", taken, calls,
              wrongs == 0 ? "nothing touched outside, nothing lost" : "wrong");
  return wrongs == 0 ? 0 : 1;
}
