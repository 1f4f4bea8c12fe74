#include "operations.h"

#include "compression.h"

namespace client {
namespace {

// Of --strip.
constexpr std::string_view kStrips[] = {"metadata", "all"};

constexpr double kMostAmount = 1e15;

// The options of commands that write come first, then those of commands that read, the one of all
// commands last; commands that may not write over their inputs do without the first.
constexpr Option kCommonOptions[] = {
    {.name = "in-place", .meaning = "write over the input files", .kind = ValueKind::kFlag},
    {.name = "output",
     .meaning =
         "output file, or folder if it ends in / or several files are given; replaced if it exists",
     .kind = ValueKind::kFile,
     .shortName = 'o'},
    {.name = "to",
     .meaning =
         "extension, and so format, of output files in a folder: that of -o, else the input's own",
     .kind = ValueKind::kText},
    {.name = "quality",
     .meaning = "of JPEG and lossy WebP files, 100 best",
     .least = 1,
     .most = 100},
    {.name = "compression",
     .meaning =
         "of TIFF files, that of a TIFF source or deflate unless given; of WebP files, lossy "
         "but for few colors",
     .kind = ValueKind::kChoice,
     .choices = kCompressions},
    {.name = "png-level",
     .meaning = "of PNG files, 9 smallest and slowest; found by a look at the picture unless given",
     .least = 0,
     .most = 9},
    {.name = "pages",
     .meaning = "those of a TIFF file or PDF that are taken, such as 1,3-5 or 2-; all unless given",
     .kind = ValueKind::kText},
    {.name = "background",
     .meaning = "red, green and blue of what lies under opacity that the result cannot hold; white "
                "unless given",
     .least = 0,
     .most = 255,
     .fewest = 3,
     .atMost = 3},
    {.name = "allow-loss",
     .meaning = "with --in-place: write also what keeps 8 of a file's 16 bits a sample, one of its "
                "pictures, frames or layers, or loses a PDF's hidden text, notes or signature",
     .kind = ValueKind::kFlag},
    {.name = "strip",
     .meaning = "leave out what a file holds beside the picture and its color profile; --strip=all "
                "leaves that out too",
     .kind = ValueKind::kChoice,
     .choices = kStrips,
     .bare = "metadata"},
    {.name = "limit-pixels",
     .meaning = "refuse files whose picture has more pixels; 4295M unless given",
     .kind = ValueKind::kAmount,
     .least = 1,
     .most = kMostAmount},
    {.name = "limit-memory",
     .meaning = "refuse files whose decoding takes more bytes; 4295M unless given",
     .kind = ValueKind::kAmount,
     .least = 1,
     .most = kMostAmount},
    {.name = "json", .meaning = "report on standard output as JSON", .kind = ValueKind::kFlag},
};

}  // namespace

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> all = [] {
    std::vector<Operation> rows;
    for (const auto part :
         {ToneOperations(), ColorOperations(), RedEyeOperations(), GeometryOperations(),
          ScanOperations(), ItemOperations(), DocumentOperations(), Inquiries()}) {
      rows.insert(rows.end(), part.begin(), part.end());
    }
    return rows;
  }();
  return all;
}

std::span<const Option> CommonOptions(const Operation& operation) {
  const std::span<const Option> all = kCommonOptions;
  if (operation.subject == Subject::kToolkit) return all.last(1);
  if (operation.subject != Subject::kPictures) return all.last(3);
  return operation.inPlace ? all : all.subspan(1);
}

}  // namespace client
