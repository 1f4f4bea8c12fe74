#include "saving.h"

#include <filesystem>

#include "file_kind.h"
#include "messages.h"
#include "progress.h"
#include "replacement.h"
#include "tiff_pages.h"

namespace client {

int MindOtherPages(Job& job) {
  const int pages = PageCount(job.source);
  if (pages == 1) return ORVO_OK;
  const std::string count = std::to_string(pages) + " pages";
  if (job.parameters.has("in-place")) {
    job.hint = "the file has " + count + ", and only the first would stay";
    return ORVO_ERR_NOT_SUPPORTED;
  }
  TellWarning(job.source, "the file has " + count + ", only the first is used");
  return ORVO_OK;
}

bool MayStayAsItIs(const Job& job) {
  return !job.target.empty() && !job.parameters.has("quality") &&
         KindOfFile(job.source) == KindOfName(job.target);
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

int SavePicture(Job& job) {
  if (const int code = MindOtherPages(job); code != ORVO_OK) return code;
  BeginStep(job.source, "saving");
  job.changed = true;
  return WriteTarget(job, [&job](const std::string& path) {
    return job.toolkit.SaveFile(job.image.get(), path.c_str(), 0, job.quality);
  });
}

}  // namespace client
