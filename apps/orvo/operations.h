// The table of commands. One row says all there is to know about a command: its name and help, its
// options with ranges, and the function that does the work.
#ifndef APPS_ORVO_OPERATIONS_H
#define APPS_ORVO_OPERATIONS_H

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <orvo/orvo.h>

#include "options.h"
#include "outcome.h"
#include "paths.h"
#include "picture.h"
#include "report.h"
#include "tag_directory.h"

namespace client {

class DocumentTarget;

// One file on its way through one command, or one question put to the toolkit.
struct Job {
  COrvoInstance& toolkit;
  const Parameters& parameters;
  FurtherTargets& furtherTargets;  // of the whole call
  DocumentTarget* document;        // that the whole call makes; null when it makes none
  std::string source;
  std::string target;
  int quality = 0;  // of SaveFile

  orvo::OwnedDib image = {};   // loaded before and saved after the work, if the row says so
  orvo::OwnedDib before = {};  // as loaded, when it has opacity or may stay
  bool written = false;        // the work has written the target itself
  bool staysAsItIs = false;    // there is no work: documents take pages as they are in their file
  // What does the same to the source's file without coding its picture anew, where that is
  // possible.
  std::function<Outcome(const std::string& path)> withoutLoss = {};
  std::optional<Shape> loaded = {};  // what the picture was before the work
  bool inSrgb = false;               // the picture was brought there from other colours
  std::string lossesTold = {};
  bool furtherTold = false;          // that the source holds further pictures
  int page = 1;                      // of the source, that it came from
  std::string pageFile = {};         // that page as a file of its own, where there is one
  mutable PagePlace place = {};      // that page in a TIFF file
  bool moved = false;                // what lay over the picture lies elsewhere on it now
  std::optional<bool> changed = {};  // whether the target shows anything new
  std::string found = {};            // what there is to say when nothing changed
  std::string hint = {};             // what may help after a failure
  Report report = {};

  // Where the picture came from with all that goes with it, and the page there.
  [[nodiscard]] const std::string& file() const { return pageFile.empty() ? source : pageFile; }
  [[nodiscard]] int pageInFile() const { return pageFile.empty() ? page : 1; }
  [[nodiscard]] PagePlace* placeInFile() const { return pageFile.empty() ? &place : nullptr; }
};

enum class Subject {
  kPictures,  // input files become output files
  kDocument,  // all input files together become one
  kFiles,     // input files are looked at
  kToolkit,   // no files
};

struct Operation {
  std::string_view name;
  std::string_view summary;
  std::string_view example;  // what follows "orvo NAME"
  int (*run)(Job& job);      // a result code of the toolkit
  std::span<const Option> options = {};
  Subject subject = Subject::kPictures;
  bool loads = true;             // the picture is in job.image before the work
  bool inPlace = true;           // may write over its inputs
  bool takesPages = true;        // of a picture file: goes through all of its pages
  std::string_view depths = {};  // of pictures that it takes, in words; empty for all
  // What is wrong with options that are each right; empty for nothing.
  std::string (*check)(const Parameters& parameters) = nullptr;
  // Of pictures: an option that gives the call a sense without any target.
  std::string_view insteadOfTarget = {};
};

// The depths that the adjustments of the imaging module take.
inline constexpr std::string_view kFromFourBits = "4 bits and up";

// The rows, each beside the functions that they name.
std::span<const Operation> ToneOperations();
std::span<const Operation> ColorOperations();
std::span<const Operation> GeometryOperations();
std::span<const Operation> ScanOperations();
std::span<const Operation> ItemOperations();
std::span<const Operation> RedEyeOperations();
std::span<const Operation> DocumentOperations();
std::span<const Operation> Inquiries();

// All of them, in the order of the help.
const std::vector<Operation>& Operations();

// The options that every command of a kind has.
std::span<const Option> CommonOptions(const Operation& operation);

}  // namespace client

#endif  // APPS_ORVO_OPERATIONS_H
