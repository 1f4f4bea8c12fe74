// What reading and writing JPEG share: errors that come back as codes, progress, silence.
#ifndef MODULES_PICTURES_JPEG_SESSION_H
#define MODULES_PICTURES_JPEG_SESSION_H

#include <csetjmp>

// The library's header needs the types of the first, so they stay in this order.
// clang-format off
#include <stdio.h>
#include <jpeglib.h>
// clang-format on

#include "common/guard.h"
#include "common/status.h"
#include "pictures/library_calls.h"

namespace modules {

// Stays where it is while the library uses it: the library keeps pointers to it.
struct JpegSession {
  explicit JpegSession(Report report) : progress(100, report) {}

  jpeg_error_mgr errors{};
  jpeg_progress_mgr monitor{};
  std::jmp_buf jump{};
  int code = 0;  // module code of the error that was met
  Progress progress;

  // Runs calls into the library, which may leave.
  template <class Calls>
  void run(const Calls& calls) {
    if (!Attempt(jump, calls)) throw ModuleError{code};
  }
  // Told once all is done: passes end at 99 percent.
  void finish() { Require(progress.report(100), kModuleAborted); }
};

// To be called before the library makes its object, which then reports to the session.
void PrepareJpeg(JpegSession& session, j_common_ptr codec);
// To be called once the object is made: its passes are reported as progress.
void WatchJpeg(JpegSession& session, j_common_ptr codec);
// The resolution of a file that is about to be written.
void DescribeDensity(jpeg_compress_struct& codec, const BITMAPINFOHEADER& header);

}  // namespace modules

#endif  // MODULES_PICTURES_JPEG_SESSION_H
