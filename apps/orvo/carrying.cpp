#include "carrying.h"

#include "document_target.h"
#include "messages.h"
#include "opacity.h"
#include "pages.h"
#include "picture.h"
#include "progress.h"
#include "saving.h"
#include "source_colors.h"

namespace client {
namespace {

// A command may refuse a picture's depth; another command brings the picture to one that it takes.
std::string DepthHint(const Operation& operation, DibHandle picture) {
  const auto shape = ShapeOf(picture);
  if (!shape || operation.depths.empty()) return {};
  const std::string remedy = shape->bits == 1 ? "orvo gray" : "orvo depth --bits 24";
  return "the picture is " + std::to_string(shape->bits) + "-bit " + std::string(shape->colors) +
         ", " + std::string(operation.name) + " takes " + std::string(operation.depths) + "; try " +
         remedy + " first";
}

int Load(Job& job) {
  BeginStep(job.source, "loading");
  const int code = job.toolkit.LoadFile(job.source.c_str(), job.image.receive());
  if (code == ORVO_OK) TakeInksByProfile(job);
  job.loaded = ShapeOf(job.image.get());
  const bool mayStay = IsSameKind(job) || IsDocument(job.target);
  if (code != ORVO_OK || !(mayStay || HasOpacity(job.image.get()))) return code;
  job.before = Copied(job.image.get());
  return job.before ? ORVO_OK : ORVO_ERR_NO_MEMORY;
}

// Does the work on the loaded picture, and keeps its opacity through it.
int Work(const Operation& operation, Job& job) {
  BeginStep(job.source, std::string(operation.name));
  const int code = operation.run(job);
  if (code == ORVO_ERR_BAD_DEPTH && job.hint.empty()) {
    job.hint = DepthHint(operation, job.image.get());
  }
  if (code == ORVO_OK && HasOpacity(job.before.get()) && !HasOpacity(job.image.get())) {
    if (orvo::OwnedDib whole = WithOpacityOf(job.before.get(), job.image.get()); whole) {
      job.image = std::move(whole);
    }
  }
  // Not every step of the toolkit listens while it works.
  return code == ORVO_OK && Interrupted() ? ORVO_ERR_CANCELLED : code;
}

int Save(Job& job) {
  if (MayStayAsItIs(job) && AreTheSame(job.before.get(), job.image.get())) return KeepAsItIs(job);
  if (!job.found.empty()) Tell(job.source + ": " + job.found);
  return SavePicture(job);
}

int CarryPicture(const Operation& operation, Job& job) {
  int code = ORVO_OK;
  if (operation.loads && operation.subject != Subject::kToolkit) code = Load(job);
  if (code == ORVO_OK) code = Work(operation, job);
  const bool saves = operation.subject == Subject::kPictures && !job.target.empty() && !job.written;
  return code == ORVO_OK && saves ? Save(job) : code;
}

}  // namespace

int Carry(const Operation& operation, Job& job) {
  const bool takesPages = operation.subject == Subject::kPictures && operation.takesPages;
  const int code = takesPages && HasPages(job) ? DoPages(job, [&] { return Work(operation, job); })
                                               : CarryPicture(operation, job);
  ClearProgress();
  return code;
}

}  // namespace client
