#include "pictures/jpeg_session.h"

#include <jerror.h>

#include <algorithm>

namespace modules {
namespace {

JpegSession& SessionOf(j_common_ptr codec) {
  return *static_cast<JpegSession*>(codec->client_data);
}

// Leaves the library with a module code.
[[noreturn]] void LeaveJpeg(j_common_ptr codec, int code) {
  JpegSession& session = SessionOf(codec);
  session.code = code;
  std::longjmp(session.jump, 1);
}

int ModuleCodeOf(int message) {
  switch (message) {
    case JERR_OUT_OF_MEMORY:
      return kModuleNoMemory;
    case JERR_INPUT_EMPTY:
    case JERR_INPUT_EOF:
    case JERR_FILE_READ:
      return kModuleReadFailed;
    case JERR_FILE_WRITE:
      return kModuleWriteFailed;
    default:
      return kFileFormatDamaged;
  }
}

void OnError(j_common_ptr codec) {
  LeaveJpeg(codec, ModuleCodeOf(codec->err->msg_code));
}

// Warnings that mean lost pixels end the work: half a picture is not taken for a whole one.
void OnMessage(j_common_ptr codec, int level) {
  if (level >= 0) return;
  switch (codec->err->msg_code) {
    case JWRN_JPEG_EOF:
    case JWRN_HIT_MARKER:
      LeaveJpeg(codec, kModuleReadFailed);
    case JWRN_HUFF_BAD_CODE:
    case JWRN_ARITH_BAD_CODE:
    case JWRN_MUST_RESYNC:
      LeaveJpeg(codec, kFileFormatDamaged);
    default:
      break;
  }
}

void StaySilent(j_common_ptr /*codec*/) {}

void OnPass(j_common_ptr codec) {
  JpegSession& session = SessionOf(codec);
  // 100 is left to the caller, who knows when all is done.
  constexpr long kMostWhileBusy = 99;
  const jpeg_progress_mgr& at = session.monitor;
  const long limit = std::max(at.pass_limit, 1L);
  const long inPass = std::clamp(at.pass_counter, 0L, limit) * 100 / limit;
  const long percent = (at.completed_passes * 100L + inPass) / std::max(at.total_passes, 1);
  if (!session.progress.report(static_cast<std::uint64_t>(std::min(percent, kMostWhileBusy)))) {
    LeaveJpeg(codec, kModuleAborted);
  }
}

}  // namespace

void PrepareJpeg(JpegSession& session, j_common_ptr codec) {
  codec->err = jpeg_std_error(&session.errors);
  session.errors.error_exit = OnError;
  session.errors.emit_message = OnMessage;
  session.errors.output_message = StaySilent;
  codec->client_data = &session;
}

void WatchJpeg(JpegSession& session, j_common_ptr codec) {
  session.monitor.progress_monitor = OnPass;
  codec->progress = &session.monitor;
}

void DescribeDensity(jpeg_compress_struct& codec, const BITMAPINFOHEADER& header) {
  constexpr int kMostDensity = 0xFFFF;
  const int x = orvo::DotsPerInch(header.biXPelsPerMeter);
  const int y = orvo::DotsPerInch(header.biYPelsPerMeter);
  // An image without resolution says so in version 1.02: a density without unit in a file of
  // version 1.01 is read as multiples of 72 dots per inch.
  codec.JFIF_minor_version = 2;
  if (x <= 0 || y <= 0 || x > kMostDensity || y > kMostDensity) return;
  codec.density_unit = 1;  // dots per inch
  codec.X_density = static_cast<UINT16>(x);
  codec.Y_density = static_cast<UINT16>(y);
}

}  // namespace modules
