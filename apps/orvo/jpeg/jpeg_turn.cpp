#include "jpeg_turn.h"

#include <turbojpeg.h>

#include <memory>
#include <optional>
#include <utility>

#include "jpeg_coding.h"

namespace client {
namespace {

// What brings a stored picture to its result: a place in the table below, as orientations count.
struct Step {
  TJXOP operation;
  bool swapsSides;
  // Whether the result's left or top comes from the stored picture's right, and bottom.
  bool beginsAtRight;
  bool beginsAtBottom;
  int clockwise;  // the step that equals this one and a quarter turn
  int mirrored;   // and a mirror, left to right
};
constexpr Step kSteps[] = {
    {TJXOP_NONE, false, false, false, 6, 2},      //
    {TJXOP_HFLIP, false, true, false, 7, 1},      //
    {TJXOP_ROT180, false, true, true, 8, 4},      //
    {TJXOP_VFLIP, false, false, true, 5, 3},      //
    {TJXOP_TRANSPOSE, true, false, false, 2, 6},  //
    {TJXOP_ROT90, true, false, true, 3, 5},       //
    {TJXOP_TRANSVERSE, true, true, true, 4, 8},   //
    {TJXOP_ROT270, true, true, false, 1, 7},
};
constexpr const Step& StepOf(int orientation) {
  return kSteps[orientation - 1];
}

const Step& Followed(int orientation, const Turn& turn) {
  constexpr int kQuarters = 4;
  if (turn.mirrored) orientation = StepOf(orientation).mirrored;
  const int quarters = (turn.quarterTurnsClockwise % kQuarters + kQuarters) % kQuarters;
  for (int i = 0; i < quarters; ++i) orientation = StepOf(orientation).clockwise;
  return StepOf(orientation);
}

std::string Spelled(int width, int height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

// The blocks that cannot be divided, in pixels as stored.
struct BlockSize {
  int width;
  int height;
};
BlockSize BlocksOf(const JpegInput& picture) {
  const jpeg_decompress_struct& codec = picture.codec();
  if (codec.num_components == 1) return {DCTSIZE, DCTSIZE};
  return {DCTSIZE * codec.max_h_samp_factor, DCTSIZE * codec.max_v_samp_factor};
}

void RequireWholeEdges(const JpegFile::Frame& frame, const BlockSize& blocks, const Step& step) {
  if ((step.beginsAtRight && frame.width % blocks.width != 0) ||
      (step.beginsAtBottom && frame.height % blocks.height != 0)) {
    throw NotPossible{"the picture's " + Spelled(frame.width, frame.height) +
                      " pixels are no whole blocks of " + Spelled(blocks.width, blocks.height)};
  }
}

void RequireCut(const JpegFile::Frame& frame, BlockSize blocks, const Step& step,
                const RECT& part) {
  int width = frame.width;
  int height = frame.height;
  if (step.swapsSides) {
    std::swap(width, height);
    std::swap(blocks.width, blocks.height);
  }
  if (part.left < 0 || part.top < 0 || part.right > width || part.bottom > height ||
      part.left >= part.right || part.top >= part.bottom) {
    throw NotPossible{"the part does not lie in the picture's " + Spelled(width, height) +
                      " pixels"};
  }
  if (part.left % blocks.width != 0 || part.top % blocks.height != 0) {
    throw NotPossible{"a part begins at whole blocks of " + Spelled(blocks.width, blocks.height) +
                      " pixels"};
  }
}

struct TransformerEnder {
  void operator()(void* transformer) const { (void)tjDestroy(transformer); }
};
struct BytesEnder {
  void operator()(unsigned char* bytes) const { tjFree(bytes); }
};
struct Coded {
  std::unique_ptr<unsigned char, BytesEnder> bytes;
  unsigned long size = 0;
  [[nodiscard]] std::span<const std::uint8_t> view() const { return {bytes.get(), size}; }
};

// Only the picture; the way in which it is coded is any.
Coded Transformed(std::span<const std::uint8_t> stream, tjtransform request) {
  const std::unique_ptr<void, TransformerEnder> transformer(tjInitTransform());
  modules::Require(transformer, kModuleNoMemory);
  request.options |= TJXOPT_COPYNONE;
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  const int code = tjTransform(transformer.get(), stream.data(), stream.size(), 1, &bytes, &size,
                               &request, TJFLAG_LIMITSCANS);
  Coded result{.bytes = std::unique_ptr<unsigned char, BytesEnder>(bytes), .size = size};
  if (code == 0) return result;
  if (tjGetErrorCode(transformer.get()) != TJERR_WARNING) {
    throw NotPossible{tjGetErrorStr2(transformer.get())};
  }
  // Something is odd in the file: refused where that may have cost pixels.
  JpegInput(stream).readCoefficients();
  return result;
}

tjtransform CutTo(const RECT& part) {
  tjtransform request{};
  request.r = {part.left, part.top, part.right - part.left, part.bottom - part.top};
  request.options = TJXOPT_CROP;
  return request;
}

// Coded once more, for what a transformation does not keep: restart marks, progression, short
// codes.
Bytes CodedLike(const JpegInput& source, std::span<const std::uint8_t> stream) {
  JpegInput picture(stream);
  picture.readCoefficients();
  JpegManner manner = picture.manner();
  manner.progressive = source.manner().progressive;
  manner.restartInterval = source.manner().restartInterval;
  return picture.written(manner);
}

void Change(const Bytes& bytes, JpegFile& file, const Step& step, OddEdge edge,
            const std::optional<RECT>& part) {
  const JpegInput source(bytes);
  const BlockSize blocks = BlocksOf(source);
  if (edge == OddEdge::kKeep) RequireWholeEdges(file.frame, blocks, step);
  tjtransform request{};
  request.op = step.operation;
  request.options = edge == OddEdge::kKeep ? TJXOPT_PERFECT : TJXOPT_TRIM;
  Coded picture = Transformed(bytes, request);
  // A cut of its own: together with a turn, the library counts blocks as they lay before.
  if (part) {
    RequireCut(file.frame, blocks, step, *part);
    picture = Transformed(picture.view(), CutTo(*part));
  }
  JpegFile coded = TakenApart(CodedLike(source, picture.view()));
  file.coded = std::move(coded.coded);
  file.frame = coded.frame;
  file.setUpright(step.swapsSides);
}

}  // namespace

Outcome TurnJpeg(const std::string& source, const Turn& turn, OddEdge edge,
                 const std::string& target) {
  return ChangeFile(source, target, [&](const Bytes& bytes, JpegFile& file) {
    Change(bytes, file, Followed(file.orientation(), turn), edge, std::nullopt);
  });
}

Outcome CutJpeg(const std::string& source, const RECT& part, const std::string& target) {
  return ChangeFile(source, target, [&](const Bytes& bytes, JpegFile& file) {
    Change(bytes, file, StepOf(file.orientation()), OddEdge::kKeep, part);
  });
}

}  // namespace client
