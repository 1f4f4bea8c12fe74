#include "pictures/magick_session.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>

#include <orvo/file_limits.h>

#include "pictures/library_calls.h"

namespace modules {
namespace {

// Where a call leaves to when the library meets what it takes for fatal, an allocation that failed
// as a rule; it would end the process otherwise. What the call held until then is lost. In the
// space that each thread has from its beginning: what a thread takes later has to be allocated, and
// ends the process when it cannot.
[[gnu::tls_model("initial-exec")]] thread_local std::jmp_buf* fatalExit = nullptr;
// Of the call that runs in this thread; null for calls without.
[[gnu::tls_model("initial-exec")]] thread_local MagickProgress* callProgress = nullptr;

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
  Magick().ThrowException(exception, FileOpenError, "refused", nullptr);
  return MagickFail;
}

// Images beyond these bounds fail before any of their memory is taken.
void HoldToLimits() {
  constexpr std::uint64_t kPixelBytes = 10;  // that the library takes
  constexpr std::uint64_t kMostSide = 0xFFFF;
  const OrvoFileLimits& limits = *OrvoLimitFiles(nullptr);
  const std::uint64_t pixels = std::min(limits.pixels, limits.memory / kPixelBytes);
  const auto side = static_cast<magick_int64_t>(std::min(limits.side, kMostSide));
  (void)Magick().SetMagickResourceLimit(PixelsResource, static_cast<magick_int64_t>(pixels));
  (void)Magick().SetMagickResourceLimit(WidthResource, side);
  (void)Magick().SetMagickResourceLimit(HeightResource, side);
}

void SetLimits() {
  (void)Magick().SetMagickResourceLimit(MapResource, 0);
  (void)Magick().SetMagickResourceLimit(DiskResource, 0);
  // Reports of progress have to come from the thread that asked for the work.
  (void)Magick().SetMagickResourceLimit(ThreadsResource, 1);
}

// Told what the library would write into its log, or to standard error; nobody reads it.
void OnLog(const ExceptionType /*kind*/, const char* /*text*/) {}

// While the library starts it has no handler for what is fatal yet and would end the process: these
// leave in its stead.
void* AllocateOrLeave(std::size_t bytes) {
  void* const memory = std::malloc(bytes);
  if (memory == nullptr) std::longjmp(*fatalExit, 1);
  return memory;
}
void* ReallocateOrLeave(void* memory, std::size_t bytes) {
  void* const larger = std::realloc(memory, bytes);
  if (larger == nullptr) std::longjmp(*fatalExit, 1);
  return larger;
}

// Decoders for the formats asked for, and for what metafiles keep their bitmaps in. A record that
// holds a file of another kind finds nothing that would read it.
void KeepNamedCoders(ExceptionInfo* exception) {
  constexpr std::array<std::string_view, 11> kNamed{"PCX", "DCX", "TGA",  "SUN", "PICT", "PCD",
                                                    "WMF", "WPG", "EPS3", "DIB", "MIFF"};
  MagickInfo** const coders = Magick().GetMagickInfoArray(exception);
  if (coders == nullptr) return OnFatal(ResourceLimitFatalError, nullptr, nullptr);
  for (MagickInfo** coder = coders; *coder != nullptr; ++coder) {
    const char* const name = (*coder)->name;
    if (std::ranges::find(kNamed, name) == kNamed.end()) (void)Magick().UnregisterMagickInfo(name);
  }
  Magick().MagickFree(coders);
}

// Runs calls into the library; false when memory failed.
template <class Calls>
bool Finishes(MagickProgress* progress, const Calls& calls) {
  std::jmp_buf jump;
  fatalExit = &jump;
  callProgress = progress;
  const bool finished = Attempt(jump, calls);
  fatalExit = nullptr;
  callProgress = nullptr;
  return finished;
}

// A start that failed leaves the library in a state that cannot be told, so it is not tried again.
bool Start() {
  // Locks are allocated past the calls above; there shall be room for them.
  constexpr std::size_t kRoomBytes = std::size_t{1} << 20;
  void* const room = std::malloc(kRoomBytes);
  std::free(room);
  if (room == nullptr) return false;
  MagickReport report;
  Magick().SetLogDefaultLogMethod(OnLog);
  Magick().MagickAllocFunctions(std::free, AllocateOrLeave, ReallocateOrLeave);
  const bool started = Finishes(nullptr, [&] {
    (void)Magick().InitializeMagickEx(nullptr, MAGICK_OPT_NO_SIGNAL_HANDER, report.get());
    Magick().SetWarningHandler(nullptr);
    Magick().SetErrorHandler(nullptr);
    Magick().SetFatalErrorHandler(OnFatal);
    Magick().SetMonitorHandler(OnProgress);
    KeepNamedCoders(report.get());
    // The list of fonts, for text in metafiles, is read while files may still be opened.
    (void)Magick().GetTypeInfo("*", report.get());
    Magick().MagickSetConfirmAccessHandler(OnAccess);
    SetLimits();
  });
  Magick().MagickAllocFunctions(std::free, std::malloc, std::realloc);
  return started;
}

// Starts the library, once for the process, and runs calls into it.
template <class Calls>
void CallMagick(MagickProgress* progress, const Calls& calls) {
  static const bool started = Start();
  Require(started && Finishes(progress, calls), kModuleNoMemory);
}

}  // namespace

const MagickLibrary& Magick() {
  static const MagickLibrary library;
  return library;
}

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
  CallMagick(nullptr, [&] {
    HoldToLimits();
    info = Magick().CloneImageInfo(nullptr);
  });
  std::string(magick).copy(info->magick, sizeof info->magick - 1);
  // What is in the file does not change the decoder's mind.
  info->affirm = MagickTrue;
  return MagickImageInfo(info);
}

MagickImage NewMagickImage(const ImageInfo& info) {
  Image* image = nullptr;
  CallMagick(nullptr, [&] { image = Magick().AllocateImage(&info); });
  std::copy(std::begin(info.magick), std::end(info.magick), std::begin(image->magick));
  return MagickImage(image);
}

MagickImage DecodeMagick(const ImageInfo& info, std::span<const std::uint8_t> file,
                         MagickProgress* progress) {
  MagickReport report;
  Image* decoded = nullptr;
  const auto decode = progress == nullptr ? Magick().PingBlob : Magick().BlobToImage;
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
  CallMagick(&progress, [&] { bytes = Magick().ImageToBlob(&info, &image, &count, report.get()); });
  const bool written = bytes != nullptr && std::fwrite(bytes, 1, count, file) == count;
  Magick().MagickFree(bytes);
  Require(!progress.stopped(), kModuleAborted);
  Require(report.code() != kModuleNoMemory, kModuleNoMemory);
  Require(written && report.code() == kModuleSuccess, kModuleWriteFailed);
  Require(progress.reportLibrary(1, 1), kModuleAborted);
}

}  // namespace modules
