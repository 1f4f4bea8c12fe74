#include "batch.h"

#include <filesystem>

#include <orvo/file_limits.h>

#include "carrying.h"
#include "document.h"
#include "messages.h"
#include "paths.h"
#include "picture.h"
#include "progress.h"
#include "replacement.h"
#include "reports.h"

namespace client {
namespace {

Report Entry(const Job& job, int code) {
  Report entry;
  if (!job.source.empty()) entry.set("input", job.source);
  if (!job.target.empty() && code == ORVO_OK) entry.set("output", job.target);
  entry.set("result", OrvoResultName(code));
  if (const auto shape = ShapeOf(job.image.get()); shape && code == ORVO_OK) {
    entry.set("picture", Described(*shape));
  }
  // Some commands tell what has changed.
  if (job.changed && code == ORVO_OK) entry.set("changed", true);
  entry.take(job.report);
  if (job.changed == false && code == ORVO_OK) entry.set("changed", false);
  return entry;
}

// A folder, or a pipe, which would be waited for.
bool IsNoFile(Job& job) {
  std::error_code fault;
  const auto status = std::filesystem::status(job.source, fault);
  if (job.source.empty() || !std::filesystem::exists(status)) return false;
  if (std::filesystem::is_regular_file(status)) return false;
  job.hint = std::filesystem::is_directory(status) ? "it is a folder" : "it is no file";
  return true;
}

// Counts how the files fared and keeps what was reported about them.
class Session {
 public:
  Session(COrvoInstance& toolkit, const Request& request)
      : toolkit_(toolkit),
        request_(request),
        furtherTargets_(request.inputs),
        json_(request.parameters.has("json")),
        quality_(request.parameters.has("quality") ? request.parameters.whole("quality") : 0) {}

  void work(const Task& task) {
    Job job{.toolkit = toolkit_,
            .parameters = request_.parameters,
            .furtherTargets = furtherTargets_,
            .document = document_ ? &document_->pages() : nullptr,
            .source = task.source,
            .target = task.target,
            .quality = quality_};
    const int code = IsNoFile(job) ? ORVO_ERR_FILE_OPEN : Carry(*request_.operation, job);
    if (json_) {
      entries_.push_back(Entry(job, code));
    } else if (!job.report.isNothing()) {
      PrintText(job.source, job.report);
    }
    if (code == ORVO_OK) {
      ++done_;
      return;
    }
    ++failed_;
    moduleMissing_ = moduleMissing_ || code == ORVO_ERR_NO_VENDOR;
    TellFailure(job.source.empty() ? request_.operation->name : job.source, code, job.hint);
  }

  // Of a command that makes one document of all files. False when nothing can be written there.
  bool beginDocument() {
    const std::string& target = request_.parameters.text("output");
    document_.emplace(request_.parameters);
    if (*document_) return true;
    TellFailure(target, ORVO_ERR_FILE_OPEN, "the document could not be written");
    return false;
  }

  // Ends the document unless one of its pages is missing.
  void completeDocument(std::size_t planned) {
    const std::string& target = request_.parameters.text("output");
    if (done_ < planned) {
      TellWarning(target, "not written, since pages are missing");
      return;
    }
    BeginStep(target, "writing");
    const int code = document_->finish();
    ClearProgress();
    if (code == ORVO_OK) return;
    incomplete_ = true;
    TellFailure(target, code, "the document could not be written");
  }

  ExitStatus finish(std::size_t planned) {
    const std::size_t skipped = planned - done_ - failed_;
    if (planned > 1) tellSummary(planned, skipped);
    if (json_) {
      Report document = ReportOfCall(*request_.operation, request_.parameters);
      if (request_.operation->subject == Subject::kToolkit) {
        document.take(entries_.front());
      } else {
        document.set("files", std::move(entries_));
      }
      PrintJson(document);
    }
    if (moduleMissing_) return kModuleMissing;
    return failed_ + skipped == 0 && !incomplete_ ? kAllDone : kSomeFailed;
  }

 private:
  void tellSummary(std::size_t planned, std::size_t skipped) const {
    std::string text = std::to_string(done_) + " of " + std::to_string(planned) + " files done";
    if (failed_ > 0) text += ", " + std::to_string(failed_) + " failed";
    if (skipped > 0) text += ", " + std::to_string(skipped) + " not tried";
    Tell(text);
  }

  COrvoInstance& toolkit_;
  const Request& request_;
  FurtherTargets furtherTargets_;
  std::optional<CallDocument> document_;
  bool json_;
  int quality_;
  Report::List entries_;
  std::size_t done_ = 0;
  std::size_t failed_ = 0;
  bool moduleMissing_ = false;
  bool incomplete_ = false;  // the document could not be made of its pages
};

bool GoesWithoutTargets(const Request& request) {
  const std::string_view option = request.operation->insteadOfTarget;
  const Parameters& given = request.parameters;
  return !option.empty() && given.has(option) && !given.has("output") && !given.has("to") &&
         !given.has("in-place");
}

Plan PlanFor(const Request& request) {
  if (request.operation->subject == Subject::kPictures && !GoesWithoutTargets(request)) {
    return PlanTargets(request.inputs, request.parameters);
  }
  if (request.operation->subject == Subject::kDocument) {
    return PlanDocument(request.inputs, request.parameters);
  }
  Plan plan;
  for (const std::string& input : request.inputs) plan.tasks.push_back({input, {}});
  if (request.operation->subject == Subject::kToolkit) plan.tasks.emplace_back();
  return plan;
}

void SetLimits(const Parameters& given) {
  OrvoFileLimits limits = *OrvoLimitFiles(nullptr);
  const auto take = [&given](std::string_view option, std::uint64_t& limit) {
    if (given.has(option)) limit = static_cast<std::uint64_t>(given.number(option));
  };
  take("limit-pixels", limits.pixels);
  take("limit-memory", limits.memory);
  OrvoLimitFiles(&limits);
}

}  // namespace

ExitStatus Run(COrvoInstance& toolkit, const Request& request) {
  const Plan plan = PlanFor(request);
  if (!plan.problem.empty()) {
    Tell(plan.problem);
    return kWrongUsage;
  }
  if (!plan.folder.empty()) {
    std::error_code fault;
    std::filesystem::create_directories(plan.folder, fault);
    if (fault) {
      Tell(plan.folder + ": " + fault.message());
      return kSomeFailed;
    }
  }
  SetLimits(request.parameters);
  Session session(toolkit, request);
  const bool makesDocument = request.operation->subject == Subject::kDocument;
  if (makesDocument && !session.beginDocument()) return kSomeFailed;
  for (const Task& task : plan.tasks) {
    if (Interrupted()) break;
    session.work(task);
  }
  if (makesDocument) session.completeDocument(plan.tasks.size());
  if (!SyncNewResults()) Tell("warning: the results may not have reached the disk");
  return session.finish(plan.tasks.size());
}

}  // namespace client
