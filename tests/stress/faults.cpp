// Every operation of the table without memory, without locks, without modules: each such call that
// it makes fails in turn. Whatever comes of it, no block is lost or stays locked, a source that is
// only read stays, and the next call works as ever.
#include <cstring>

#include "faulty_files.h"
#include "outcomes.h"
#include "platform/fault_injection.h"
#include "support/face.h"

namespace {

using namespace stress;
using pictures::BytesOf;
using Bytes = std::vector<std::uint8_t>;

constexpr auto kMemory = {Fault::kAllocation, Fault::kLock, Fault::kNew};

orvo::OwnedDib BlockOf(const Bytes& bytes) {
  orvo::OwnedDib block(GlobalAlloc(orvo::kDibBlockFlags, bytes.size()));
  std::memcpy(pictures::Locked(block.get()).bytes(), bytes.data(), bytes.size());
  return block;
}

bool IsAlive(DibHandle handle) {
  return GlobalSize(handle) != 0;
}

bool LooksForEyes(const Operation& operation) {
  return std::strstr(operation.name, "RedEye") != nullptr;
}

// A page of noise in few colours between light margins.
orvo::OwnedDib Page(int depth) {
  constexpr int kWidth = 47;
  constexpr int kHeight = 43;
  orvo::OwnedDib page = depth == 4 ? pictures::NoiseInColor(kWidth, kHeight, depth, 1)
                                   : pictures::Noise(kWidth, kHeight, depth, 1);
  const pictures::Locked image(page.get());
  const orvo::DibLayout layout = image.layout();
  for (std::size_t i = layout.pixelOffset; depth > 8 && i < layout.totalBytes; ++i) {
    image.bytes()[i] &= 0xC0;
  }
  for (const int y : {0, 1, 2, kHeight - 2, kHeight - 1}) {
    std::memset(image.row(y), 0xFF, layout.stride);
  }
  return page;
}

// What the operation works on: the page, or a face where eyes are looked for or much room is
// needed.
Bytes SourceFor(const Operation& operation, COrvoInstance& toolkit, int depth) {
  const bool face = LooksForEyes(operation) || std::strstr(operation.name, "Exposure") != nullptr;
  orvo::OwnedDib image =
      face ? pictures::DrawnFace() : Page(depth == 16 || depth == 32 ? 24 : depth);
  if (face && depth == 8) toolkit.ConvertToGrayScaleResInPlace(image.address(), nullptr);
  toolkit.ConvertToColorResInPlace(image.address(), depth);
  return BytesOf(image.get());
}

// What stands in the result handle beforehand.
enum class Before : std::uint8_t { kNull, kSource, kOlder };

// What a call leaves.
struct Left {
  int code = 0;
  char result = ' ';  // null, source, older, made
  bool imageLives = false, olderLives = false;
  Bytes image, made;
  bool operator==(const Left&) const = default;
};

class PictureTrial {
 public:
  PictureTrial(const Operation& operation, COrvoInstance& toolkit, int depth, Before before)
      : operation_(operation),
        toolkit_(&toolkit),
        before_(before),
        source_(SourceFor(operation, toolkit, depth)),
        where_(std::string(operation.name) + " at " + std::to_string(depth) + " bits") {}

  void run(std::initializer_list<Fault> kinds) {
    FailEach(
        kinds, where_, [&] { return perform(); },
        [&](const Left& left, const Left& whole) { judge(left, whole); });
  }

  // The same by another toolkit, which lacks something.
  void runBy(COrvoInstance& lacking) {
    Plan(Fault::kNew, 0);
    const Left whole = perform();
    COrvoInstance* const usual = std::exchange(toolkit_, &lacking);
    judge(perform(), whole);
    toolkit_ = usual;
  }

 private:
  Left perform() const {
    const std::size_t blocks = PlatformLiveBlocks();
    DibHandle image = BlockOf(source_).release();
    orvo::OwnedDib older = pictures::Blank(3, 2, 24);
    DibHandle result = before_ == Before::kNull     ? nullptr
                       : before_ == Before::kSource ? image
                                                    : older.get();
    Call call{*toolkit_, &image, &result, operation_.usual(), "", "", SEPIA_CONVERTER};
    if (LooksForEyes(operation_)) {
      call.numbers = {pictures::kEyeX, pictures::kEyeY, pictures::kEyeRadius};
    }
    Left left;
    left.code = UnderFault(operation_, call);
    left.result = result == nullptr       ? 'n'
                  : result == image       ? 's'
                  : result == older.get() ? 'o'
                                          : 'm';
    left.imageLives = IsAlive(image);
    left.olderLives = IsAlive(older.get());
    if (left.imageLives) left.image = BytesOf(image);
    if (left.result == 'm' && IsAlive(result)) left.made = BytesOf(result);
    for (const DibHandle block : {image, result}) GlobalFree(block);
    older.reset();
    Check(PlatformLiveBlocks() == blocks, where_, "blocks were lost");
    return left;
  }

  void judge(const Left& left, const Left& whole) const {
    const bool onlyReads = operation_.form != Form::kInPlace && before_ != Before::kSource;
    Check(!onlyReads || left.image == source_, where_, "the source changed");
    Check(left.result != 'm' || !left.made.empty(), where_, "the result is dead");
    std::string outcome = std::to_string(left.code);
    if (operation_.form == Form::kToNew) outcome += left.result;
    if (left.code == ORVO_OK ? left != whole : left.image != source_) outcome += '~';
    if (!left.imageLives || (before_ == Before::kOlder && !left.olderLives)) outcome += '-';
    Met(operation_.name, outcome);
  }

  const Operation& operation_;
  COrvoInstance* toolkit_;
  Before before_;
  Bytes source_;
  std::string where_;
};

template <class Run>
void ForEachTrial(COrvoInstance& toolkit, std::initializer_list<int> depths, const Run& run) {
  for (const Operation& operation : EveryOperation()) {
    if (WorksOnFiles(operation)) continue;
    for (const int depth : depths) {
      for (const Before before : {Before::kNull, Before::kSource, Before::kOlder}) {
        if (operation.form != Form::kToNew && before != Before::kNull) continue;
        run(PictureTrial(operation, toolkit, depth, before));
      }
    }
  }
}

// Toolkits that miss one module or one entry after the other.
void LackOneByOne(COrvoInstance& toolkit) {
  for (int n = 1;; ++n) {
    Arm(Fault::kLoading, n);
    const orvo::OwnedInstance lacking;
    if (!Disarm()) return;
    ForEachTrial(toolkit, {8, 16}, [&](PictureTrial trial) { trial.runBy(*lacking.get()); });
  }
}

}  // namespace

int main() {
  {
    const orvo::OwnedInstance toolkit;
    FailFiles(*toolkit.get());
    ForEachTrial(*toolkit.get(), {1, 4, 8, 16, 24, 32},
                 [](PictureTrial trial) { trial.run(kMemory); });
    LackOneByOne(*toolkit.get());
  }
  Check(PlatformLiveBlocks() == 0, "the end", "blocks are left");
  return Conclude(OUTCOMES);
}
