#include "pages.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <set>

#include "compression.h"
#include "document_target.h"
#include "encoding.h"
#include "file_kind.h"
#include "metadata.h"
#include "page_source.h"
#include "pdf_pages.h"
#include "picture.h"
#include "progress.h"
#include "replacement.h"
#include "saving.h"
#include "source_colors.h"
#include "tiff_pages.h"

namespace client {
namespace {

namespace fs = std::filesystem;

// A page number; `fallback` for an empty text, 0 for what is none.
int NumberOf(std::string_view text, int fallback) {
  if (text.empty()) return fallback;
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, number);
  return fault == std::errc{} && stop == end ? number : 0;
}

// The file's pages, one after the other.
class Walk {
 public:
  Walk(Job& job, const std::function<int()>& work, PageSource& source, std::vector<int> pages)
      : job_(job), work_(work), source_(source), pages_(std::move(pages)) {}

  [[nodiscard]] const std::vector<int>& pages() const { return pages_; }
  [[nodiscard]] const std::vector<Passage>& passages() const { return passages_; }
  [[nodiscard]] bool hasChanged() const { return changed_; }
  [[nodiscard]] std::uint16_t compression() const { return source_.compression(); }
  // Its pages are files of their own only once they were loaded.
  [[nodiscard]] bool isOfDocument() const { return source_.document() != nullptr; }
  int hold(int page) { return source_.hold(page, job_); }
  // Bytes of a file of all pages, roughly: compressed ones seldom grow to eight times, the JPEG
  // data of documents do.
  [[nodiscard]] std::uint64_t expectedBytes() const {
    std::error_code fault;
    return fs::file_size(job_.source, fault) * (source_.document() == nullptr ? 8 : 32);
  }

  // Loads a page, changes it, and notes what was reported of it.
  int step(int page) {
    const std::string name = "page " + std::to_string(page);
    BeginStep(job_.source, name);
    job_.withoutLoss = {};
    job_.moved = false;
    int code = source_.load(page, job_);
    if (code == ORVO_OK) {
      job_.page = page;
      job_.inSrgb = false;
      TakeInksByProfile(job_);
      job_.before = Copied(job_.image.get());
      code = job_.before ? work_() : ORVO_ERR_NO_MEMORY;
    }
    if (code == ORVO_OK && Interrupted()) code = ORVO_ERR_CANCELLED;
    if (code != ORVO_OK) {
      job_.hint = job_.hint.empty() ? name : name + ": " + job_.hint;
      return code;
    }
    const bool changed = !AreTheSame(job_.before.get(), job_.image.get());
    changed_ = changed_ || changed;
    if (changed || !MayStayAsItIs(job_)) BringToSrgbIfNeeded(job_);
    const auto after = ShapeOf(job_.image.get());
    if (after && job_.loaded) passages_.push_back({page, *job_.loaded, *after, job_.inSrgb});
    Report entry = Report::Fields{{"page", page}};
    entry.take(job_.report);
    job_.report = {};
    reports_.push_back(std::move(entry));
    return ORVO_OK;
  }

  // Pages of which nothing is to be told but their number are left out.
  void report() {
    const bool tells = std::ranges::any_of(reports_, [](const Report& entry) {
      return std::get<Report::Fields>(entry.value()).size() > 1;
    });
    if (tells) job_.report.set("pages", std::move(reports_));
  }

 private:
  Job& job_;
  const std::function<int()>& work_;
  PageSource& source_;
  std::vector<int> pages_;
  std::vector<Passage> passages_;
  Report::List reports_;
  bool changed_ = false;
};

// What is lost of many pages is told once.
int TakeAllMetadata(Job& job, Walk& walk, const std::string& path) {
  try {
    std::set<std::string> losses;
    int resultPage = 0;
    PagePlace place;
    for (const Passage& passage : walk.passages()) {
      if (const int code = walk.hold(passage.page); code != ORVO_OK) return code;
      for (std::string& loss : TakeMetadata(job, passage, path, ++resultPage, &place)) {
        losses.insert(std::move(loss));
      }
    }
    TellLosses(job, {losses.begin(), losses.end()});
    return ORVO_OK;
  } catch (const MetadataFault& fault) {
    job.hint = "while writing " + job.target + ": " + fault.what();
    return ORVO_ERR_FILE_IO;
  }
}

// Makes a TIFF file of the changed pages.
int WritePages(Job& job, Walk& walk, const std::string& path) {
  TiffTarget target(path, walk.expectedBytes());
  int code = ORVO_OK;
  for (const int page : walk.pages()) {
    if (code == ORVO_OK) code = walk.step(page);
    if (code == ORVO_OK) code = MindSampleBits(job);
    if (code == ORVO_OK) code = MindCompression(job);
    if (code == ORVO_OK) {
      code = target.add(job.image.get(), TiffCodingFor(job, walk.compression()));
    }
  }
  if (code == ORVO_OK) code = target.finish();
  return code == ORVO_OK ? TakeAllMetadata(job, walk, path) : code;
}

// Pages that nothing changed go into the document as they are in their file, if they can.
int AddPage(Job& job, Walk& walk, int page, DocumentTarget& document) {
  const bool triesAtOnce = job.staysAsItIs && !walk.isOfDocument();
  if (triesAtOnce) {
    BeginStep(job.source, "page " + std::to_string(page));
    const int code = document.addPage(job, page);
    if (code == ORVO_OK || code == ORVO_ERR_CANCELLED) return code;
  }
  if (const int code = walk.step(page); code != ORVO_OK) return code;
  if (!triesAtOnce && AreTheSame(job.before.get(), job.image.get()) &&
      document.addPage(job, page) == ORVO_OK) {
    return ORVO_OK;
  }
  return document.addPicture(job);
}

int AddPages(Job& job, Walk& walk, DocumentTarget& document) {
  for (const int page : walk.pages()) {
    if (const int code = AddPage(job, walk, page, document); code != ORVO_OK) {
      if (job.hint.empty()) job.hint = "page " + std::to_string(page);
      return code;
    }
  }
  document.tellLosses(job);
  return ORVO_OK;
}

int IntoNewDocument(Job& job, Walk& walk) {
  job.changed = true;
  if (job.document != nullptr) return AddPages(job, walk, *job.document);
  return WriteTarget(job, [&](const std::string& path) {
    DocumentTarget document(path, TitleOf(job.target));
    const int code = AddPages(job, walk, document);
    return code == ORVO_OK ? document.finish() : code;
  });
}

int IntoOneFile(Job& job, Walk& walk) {
  Replacement result(job.target);
  int code = result ? WritePages(job, walk, result.path()) : ORVO_ERR_FILE_OPEN;
  if (code == ORVO_OK && !walk.hasChanged() && MayStayAsItIs(job)) return KeepAsItIs(job);
  if (code == ORVO_OK && !result.commit()) code = ORVO_ERR_FILE_IO;
  if (code != ORVO_OK && job.hint.empty()) job.hint = "while writing " + job.target;
  job.changed = true;
  return code;
}

// A page that did not change and is a file of the target's kind by itself needs no coding.
bool IsTheFile(const Job& job) {
  return !job.pageFile.empty() && KindOfFile(job.pageFile) == KindOfName(job.target) &&
         !job.parameters.has("quality") && !job.parameters.has("strip") &&
         AreTheSame(job.before.get(), job.image.get());
}

int SavePage(Job& job) {
  if (!IsTheFile(job)) return SavePicture(job);
  job.changed = true;
  return WriteTarget(job, [&job](const std::string& path) {
    std::error_code fault;
    fs::copy_file(job.pageFile, path, fault);
    return fault ? ORVO_ERR_FILE_IO : ORVO_OK;
  });
}

// Pages that are not taken stay where they are, as they are.
int AmongOthers(Job& job, Walk& walk, int count) {
  Replacement result(job.target);
  const std::string made = fs::path(result.path()).replace_filename("pages.tif").string();
  int code = result ? WritePages(job, walk, made) : ORVO_ERR_FILE_OPEN;
  if (code == ORVO_OK && !walk.hasChanged() && !job.parameters.has("strip")) return KeepAsItIs(job);
  if (code == ORVO_OK) code = JoinPages(job, count, walk.pages(), made, result.path());
  if (code == ORVO_OK && !result.commit()) code = ORVO_ERR_FILE_IO;
  if (code != ORVO_OK && job.hint.empty()) job.hint = "while writing " + job.target;
  job.changed = true;
  return code;
}

int IntoFiles(Job& job, Walk& walk) {
  const fs::path named(job.target);
  for (const int page : walk.pages()) {
    if (const int code = walk.step(page); code != ORVO_OK) return code;
    if (walk.pages().size() > 1) {
      job.target = (named.parent_path() / named.stem()).string() + "-" + std::to_string(page) +
                   named.extension().string();
      job.hint = job.furtherTargets.claim(job.target);
      if (!job.hint.empty()) return ORVO_ERR_FILE_OPEN;
    }
    if (const int code = SavePage(job); code != ORVO_OK) return code;
  }
  return ORVO_OK;
}

int IntoTarget(Job& job, Walk& walk, PageSource& source) {
  const std::string kind = KindOfName(job.target);
  PdfFile* const document = source.document();
  if (document != nullptr && kind == "pdf" && job.document == nullptr) {
    return IntoDocument(job, *document, walk.pages(),
                        [&walk](int page) { return walk.step(page); });
  }
  const int count = source.pageCount();
  if (job.parameters.has("in-place") && static_cast<int>(walk.pages().size()) < count) {
    return AmongOthers(job, walk, count);
  }
  const int code = kind == "pdf"    ? IntoNewDocument(job, walk)
                   : kind == "tiff" ? IntoOneFile(job, walk)
                                    : IntoFiles(job, walk);
  if (code == ORVO_OK && !job.parameters.has("strip")) TellLosses(job, source.besides());
  return code;
}

}  // namespace

std::vector<int> PagesNamed(const std::string& text, int count) {
  std::vector<int> pages;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t stop = std::min(text.find(',', start), text.size());
    const std::string_view range = std::string_view(text).substr(start, stop - start);
    const std::size_t dash = range.find('-');
    const int first = NumberOf(range.substr(0, dash), 0);
    const int last =
        dash == std::string_view::npos ? first : NumberOf(range.substr(dash + 1), count);
    if (first < 1 || last < first || last > count) return {};
    for (int page = first; page <= last; ++page) pages.push_back(page);
    start = stop + 1;
  }
  std::ranges::sort(pages);
  pages.erase(std::unique(pages.begin(), pages.end()), pages.end());
  return pages;
}

bool HasPages(const Job& job) {
  const std::string kind = KindOfFile(job.source);
  if (job.target.empty() || (kind != "tiff" && kind != "pdf")) return false;
  if (kind == "pdf" || job.parameters.has("pages")) return true;
  TiffSource source(job.source);
  return source.pageCount() > 1 || source.breaksOff();
}

int DoPages(Job& job, const std::function<int()>& work) {
  std::unique_ptr<PageSource> source;
  if (const int code = OpenPages(job, source); code != ORVO_OK) return code;
  const int count = source->pageCount();
  const bool picks = job.parameters.has("pages");
  if (!picks && source->breaksOff()) {
    job.hint = "damaged after page " + std::to_string(count) + "; --pages 1-" +
               std::to_string(count) + " takes what there is";
    return ORVO_ERR_BAD_FILE;
  }
  Walk walk(job, work, *source, PagesNamed(picks ? job.parameters.text("pages") : "1-", count));
  if (walk.pages().empty()) {
    job.hint = "the file has no such pages";
    return ORVO_ERR_OUT_OF_RANGE;
  }
  const int code = IntoTarget(job, walk, *source);
  walk.report();
  return code;
}

}  // namespace client
