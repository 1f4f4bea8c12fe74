#include "saving.h"

#include <algorithm>
#include <filesystem>

#include "document_target.h"
#include "encoding.h"
#include "file_kind.h"
#include "further_pictures.h"
#include "messages.h"
#include "opacity.h"
#include "page_source.h"
#include "progress.h"
#include "replacement.h"
#include "sample_depth.h"
#include "source_colors.h"

namespace client {

int MindOtherPages(Job& job) {
  const int pages = PageCount(job.source);
  if (pages == 1) return MindFurtherPictures(job);
  const std::string count = std::to_string(pages) + " pages";
  if (job.parameters.has("in-place")) {
    job.hint = "the file has " + count + ", and only the first would stay";
    return ORVO_ERR_NOT_SUPPORTED;
  }
  TellWarning(job.source, "the file has " + count + ", only the first is used");
  return ORVO_OK;
}

bool IsSameKind(const Job& job) {
  return !job.target.empty() && KindOfFile(job.source) == KindOfName(job.target);
}

bool MayStayAsItIs(const Job& job) {
  constexpr std::string_view kAskForWriting[] = {"quality", "background",  "pages",
                                                 "strip",   "compression", "png-level"};
  return IsSameKind(job) && std::ranges::none_of(kAskForWriting, [&job](std::string_view option) {
           return job.parameters.has(option);
         });
}

int KeepAsItIs(Job& job) {
  const bool leaves = job.parameters.has("in-place");
  Tell(job.source + ": " + (job.found.empty() ? "nothing to do" : job.found) +
       (leaves ? ", left as it is" : ", copied as it is"));
  job.changed = false;
  if (leaves) return ORVO_OK;
  return WriteTarget(job, [&job](const std::string& path) {
    std::error_code fault;
    std::filesystem::copy_file(job.source, path, fault);
    return fault ? ORVO_ERR_FILE_IO : ORVO_OK;
  });
}

int WriteTarget(Job& job, const std::function<int(const std::string& path)>& write) {
  Replacement result(job.target);
  int code = result ? write(result.path()) : ORVO_ERR_FILE_OPEN;
  if (code == ORVO_OK && !result.commit()) code = ORVO_ERR_FILE_IO;
  if (code != ORVO_OK && job.hint.empty()) job.hint = "while writing " + job.target;
  return code;
}

int LayOnBackground(Job& job) {
  if (!HasOpacity(job.image.get())) return ORVO_OK;
  RGBQUAD ground{255, 255, 255, 0};
  if (job.parameters.has("background")) {
    const auto tone = [&job](std::size_t index) {
      return static_cast<std::uint8_t>(job.parameters.whole("background", index));
    };
    ground = {tone(2), tone(1), tone(0), 0};
  } else if (job.parameters.has("in-place")) {
    job.hint = "its opacity would be lost; --background says what lies under it";
    return ORVO_ERR_NOT_SUPPORTED;
  } else {
    TellWarning(job.source, "its opacity is lost, it is laid on white");
  }
  job.image = LaidOn(ground, job.image.get());
  job.before.reset();
  return job.image ? ORVO_OK : ORVO_ERR_NO_MEMORY;
}

int MindSampleBits(Job& job) {
  const int bits = SampleBits(job.file(), job.pageInFile(), job.placeInFile());
  if (bits <= 8 || job.parameters.has("allow-loss")) return ORVO_OK;
  const std::string fact = "its samples of " + std::to_string(bits) + " bits ";
  if (job.parameters.has("in-place")) {
    job.hint = fact + "would be rounded to 8; --allow-loss does it";
    return ORVO_ERR_NOT_SUPPORTED;
  }
  TellWarning(job.source, fact + "are rounded to 8");
  return ORVO_OK;
}

int MindFurtherPictures(Job& job) {
  if (job.furtherTold || job.parameters.has("allow-loss")) return ORVO_OK;
  const FurtherPictures further = FurtherPicturesOf(job.source);
  if (further.count == 0) return ORVO_OK;
  const std::string count = std::to_string(further.count) + (further.merged ? " " : " further ") +
                            std::string(further.what) + (further.count == 1 ? "" : "s");
  if (job.parameters.has("in-place")) {
    job.hint = "its " + count + " would be lost; --allow-loss does it";
    return ORVO_ERR_NOT_SUPPORTED;
  }
  TellWarning(job.source, "its " + count + (further.count == 1 ? " is " : " are ") +
                              (further.merged ? "merged into one picture" : "left out"));
  job.furtherTold = true;
  return ORVO_OK;
}

int SavePicture(Job& job) {
  // Documents see to both themselves: a page may still be as it is in its file.
  const bool isDocument = IsDocument(job.target);
  int code = isDocument ? ORVO_OK : MindSampleBits(job);
  BringToSrgbIfNeeded(job);
  if (code == ORVO_OK && !isDocument && !HoldsOpacity(KindOfName(job.target))) {
    code = LayOnBackground(job);
  }
  if (code != ORVO_OK) return code;
  BeginStep(job.source, "saving");
  job.changed = true;
  return WriteTarget(job, [&job](const std::string& path) { return Encode(job, path); });
}

}  // namespace client
