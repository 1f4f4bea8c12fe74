#include "pictures/magick_session.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string>

#include "pictures/library_calls.h"

namespace modules {
namespace {

// Where a call leaves to when the library meets what it takes for fatal, an allocation that failed
// as a rule; it would end the process otherwise. What the call held until then is lost.
thread_local std::jmp_buf* fatalExit = nullptr;
// Of the call that runs in this thread; null for calls without.
thread_local MagickProgress* callProgress = nullptr;

MAGICK_FUNC_NORETURN void OnFatal(const ExceptionType /*kind*/, const char* /*reason*/,
                                  const char* /*description*/) {
  if (fatalExit != nullptr) std::longjmp(*fatalExit, 1);
  std::abort();
}

MagickPassFail OnProgress(const char* /*stage*/, const magick_int64_t done,
                          const magick_uint64_t total, ExceptionInfo* /*exception*/) {
  if (callProgress == nullptr) return MagickPass;
  const auto known = static_cast<std::uint64_t>(std::max<magick_int64_t>(done, 0));
  return callProgress->reportLibrary(known, total) ? MagickPass : MagickFail;
}

// Files come from memory and go there. What a decoder wants beyond, programs, addresses, further
// files, it is refused.
MagickPassFail OnAccess(const ConfirmAccessMode /*mode*/, const char* /*path*/,
                        ExceptionInfo* exception) {
  ThrowException(exception, FileOpenError, "refused", nullptr);
  return MagickFail;
}

// The library counts 10 bytes for each pixel. Images beyond these bounds fail before any of it is
// taken; below them memory decides.
void SetLimits() {
  constexpr magick_int64_t kMostPixels = 150'000'000;
  constexpr magick_int64_t kMostSide = 0xFFFF;
  (void)SetMagickResourceLimit(PixelsResource, kMostPixels);
  (void)SetMagickResourceLimit(WidthResource, kMostSide);
  (void)SetMagickResourceLimit(HeightResource, kMostSide);
  (void)SetMagickResourceLimit(MapResource, 0);
  (void)SetMagickResourceLimit(DiskResource, 0);
  // Reports of progress have to come from the thread that asked for the work.
  (void)SetMagickResourceLimit(ThreadsResource, 1);
}

bool Start() {
  MagickReport report;
  if (InitializeMagickEx(nullptr, MAGICK_OPT_NO_SIGNAL_HANDER, report.get()) != MagickPass) {
    return false;
  }
  SetWarningHandler(nullptr);
  SetErrorHandler(nullptr);
  SetFatalErrorHandler(OnFatal);
  SetMonitorHandler(OnProgress);
  // The list of fonts, for text in metafiles, is read while files may still be opened.
  (void)GetTypeInfo("*", report.get());
  MagickSetConfirmAccessHandler(OnAccess);
  SetLimits();
  return true;
}

// Starts the library, once for the process, and runs calls into it. What fails is memory.
template <class Calls>
void CallMagick(MagickProgress* progress, const Calls& calls) {
  static const bool started = Start();
  Require(started, kModuleNoMemory);
  std::jmp_buf jump;
  fatalExit = &jump;
  callProgress = progress;
  const bool finished = Attempt(jump, calls);
  fatalExit = nullptr;
  callProgress = nullptr;
  Require(finished, kModuleNoMemory);
}

}  // namespace

int MagickReport::code() const {
  const int severity = exception_.severity;
  if (severity < ErrorException) return kModuleSuccess;
  switch (severity % 100) {
    case ResourceLimitBase:
    case CacheBase:
      return kModuleNoMemory;
    case MissingDelegateBase:
    case DelegateBase:
      return kFileFormatNotRead;
    default:
      return kFileFormatDamaged;
  }
}

bool MagickProgress::reportLibrary(std::uint64_t done, std::uint64_t total) {
  return report(order_ == Order::kLibraryFirst, std::min(done, total), total);
}

bool MagickProgress::reportRows(int done, int total) {
  return report(order_ == Order::kRowsFirst, static_cast<std::uint64_t>(done),
                static_cast<std::uint64_t>(total));
}

bool MagickProgress::report(bool firstHalf, std::uint64_t done, std::uint64_t total) {
  if (stopped_) return false;
  const std::uint64_t part = total == 0 ? kHalf : done * kHalf / total;
  stopped_ = !progress_.report(firstHalf ? part : kHalf + part);
  return !stopped_;
}

MagickImageInfo NewMagickInfo(const char* magick) {
  ImageInfo* info = nullptr;
  CallMagick(nullptr, [&] { info = CloneImageInfo(nullptr); });
  std::string(magick).copy(info->magick, sizeof info->magick - 1);
  // What is in the file does not change the decoder's mind.
  info->affirm = MagickTrue;
  return MagickImageInfo(info);
}

MagickImage NewMagickImage(const ImageInfo& info) {
  Image* image = nullptr;
  CallMagick(nullptr, [&] { image = AllocateImage(&info); });
  std::copy(std::begin(info.magick), std::end(info.magick), std::begin(image->magick));
  return MagickImage(image);
}

MagickImage DecodeMagick(const ImageInfo& info, std::span<const std::uint8_t> file,
                         MagickProgress* progress) {
  MagickReport report;
  Image* decoded = nullptr;
  const auto decode = progress == nullptr ? PingBlob : BlobToImage;
  CallMagick(progress, [&] { decoded = decode(&info, file.data(), file.size(), report.get()); });
  MagickImage image(decoded);
  Require(progress == nullptr || !progress->stopped(), kModuleAborted);
  Require(report.code() == kModuleSuccess, report.code());
  Require(image, kFileFormatDamaged);
  Require(progress == nullptr || progress->reportLibrary(1, 1), kModuleAborted);
  return image;
}

void EncodeMagick(const ImageInfo& info, Image& image, MagickProgress& progress, std::FILE* file) {
  MagickReport report;
  void* bytes = nullptr;
  std::size_t count = 0;
  CallMagick(&progress, [&] { bytes = ImageToBlob(&info, &image, &count, report.get()); });
  const bool written = bytes != nullptr && std::fwrite(bytes, 1, count, file) == count;
  MagickFree(bytes);
  Require(!progress.stopped(), kModuleAborted);
  Require(report.code() != kModuleNoMemory, kModuleNoMemory);
  Require(written && report.code() == kModuleSuccess, kModuleWriteFailed);
  Require(progress.reportLibrary(1, 1), kModuleAborted);
}

}  // namespace modules
