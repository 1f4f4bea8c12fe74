// The command that corrects red eyes: all that are found, or those that the user points at.
#include <algorithm>

#include "changes.h"
#include "marks.h"
#include "messages.h"
#include "operations.h"
#include "picture.h"
#include "picture_colors.h"
#include "source_colors.h"

namespace client {
namespace {

constexpr int kMostPixels = 65535;  // of a width or height
constexpr std::size_t kMostPoints = 64;

// Pixels from the top left of the picture as shown.
struct Circle {
  int x;
  int y;
  int radius;

  bool operator==(const Circle&) const = default;
};
using Circles = std::vector<Circle>;

struct Correction {
  orvo::OwnedDib picture = {};  // empty when there was nothing to correct
  Circles circles = {};
};

std::string Spelled(int x, int y) {
  return std::to_string(x) + "," + std::to_string(y);
}

// The circles inside the rectangles.
Circles CirclesIn(const Rects& rects) {
  Circles circles;
  for (const RECT& rect : rects) {
    const int side = std::max(rect.right - rect.left, rect.bottom - rect.top);
    circles.push_back(
        {(rect.left + rect.right - 1) / 2, (rect.top + rect.bottom - 1) / 2, side / 2});
  }
  return circles;
}

Report ListedCircles(const Circles& circles) {
  Report::List list;
  for (const Circle& circle : circles) {
    list.emplace_back(Report::List{circle.x, circle.y, circle.radius});
  }
  return list;
}

// The pupil at a point that the user gave.
int FindPupil(Job& job, const Shape& shape, int x, int y, Circle& pupil) {
  if (x >= shape.width || y >= shape.height) {
    job.hint = Spelled(x, y) + " lies outside, the picture has " + std::to_string(shape.width) +
               " x " + std::to_string(shape.height) + " pixels";
    return ORVO_ERR_OUT_OF_RANGE;
  }
  // The toolkit counts rows from the bottom.
  std::uint32_t foundX = 0;
  std::uint32_t foundY = 0;
  std::uint32_t radius = 0;
  const int code = job.toolkit.SearchRedEyeRegion(job.image.get(), static_cast<std::uint32_t>(x),
                                                  static_cast<std::uint32_t>(shape.height - 1 - y),
                                                  &foundX, &foundY, &radius);
  if (code == ORVO_ERR_FAILURE) job.hint = "no red pupil at " + Spelled(x, y);
  pupil = {static_cast<int>(foundX), shape.height - 1 - static_cast<int>(foundY),
           static_cast<int>(radius)};
  return code;
}

// The pupils at the points, each once. All are looked for before the first one loses its red.
int FindPupils(Job& job, const Shape& shape, Circles& pupils) {
  const std::vector<double>& points = job.parameters.numbers("at");
  for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
    Circle pupil{};
    const int code =
        FindPupil(job, shape, static_cast<int>(points[i]), static_cast<int>(points[i + 1]), pupil);
    if (code != ORVO_OK) return code;
    if (std::find(pupils.begin(), pupils.end(), pupil) == pupils.end()) pupils.push_back(pupil);
  }
  return ORVO_OK;
}

int CorrectAtPoints(Job& job, const Shape& shape, Correction& correction) {
  int code = FindPupils(job, shape, correction.circles);
  for (const Circle& pupil : correction.circles) {
    if (code != ORVO_OK) break;
    const auto x = static_cast<std::uint32_t>(pupil.x);
    const auto y = static_cast<std::uint32_t>(shape.height - 1 - pupil.y);
    const auto radius = static_cast<std::uint32_t>(pupil.radius);
    orvo::OwnedDib& picture = correction.picture;
    code = picture ? job.toolkit.ReduceRedEyeInPlace(picture.get(), x, y, radius)
                   : job.toolkit.ReduceRedEye(job.image.get(), picture.receive(job.image), x, y,
                                              radius);
  }
  return code;
}

// A picture without red eyes is an ordinary one.
int CorrectAll(Job& job, Correction& correction) {
  int found = 0;
  const int code =
      job.toolkit.AutoRedEye(job.image.get(), correction.picture.receive(job.image), &found);
  if (code != ORVO_ERR_FAILURE || found != 0) return code;
  job.found = "no red eye found";
  return ORVO_OK;
}

// Outlines lie outside of what changes, so that the eyes can be seen.
Rects FramesRound(Rects rects) {
  for (RECT& rect : rects) {
    rect = {rect.left - kFrameWidth, rect.top - kFrameWidth, rect.right + kFrameWidth,
            rect.bottom + kFrameWidth};
  }
  return rects;
}

// Tells what the correction changed. The toolkit names no eyes that it found by itself.
int Report(Job& job, const Correction& correction) {
  Rects changed;
  if (correction.picture) changed = ChangedParts(job.image.get(), correction.picture.get());
  const Circles circles = job.parameters.has("at") ? correction.circles : CirclesIn(changed);
  job.report.set("eyes", circles.size());
  job.report.set("circles", ListedCircles(circles));
  job.report.set("changed", Listed(changed));
  if (!job.parameters.has("mark")) return ORVO_OK;
  return SaveMarked(job, FramesRound(changed), kGreen, job.parameters.text("mark"));
}

int Correct(Job& job, const Shape& shape, Correction& correction) {
  return job.parameters.has("at") ? CorrectAtPoints(job, shape, correction)
                                  : CorrectAll(job, correction);
}

// How red a pupil is, is measured in sRGB. A picture in other colours is corrected there; its own
// pixels change only where that changed any, and keep to their profile.
int CorrectInSrgb(Job& job, const Shape& shape, Correction& correction) {
  const std::vector<std::uint8_t> profile = OtherColorsOf(job);
  if (profile.empty()) return Correct(job, shape, correction);
  orvo::OwnedDib own = Copied(job.image.get());
  if (!own) return ORVO_ERR_NO_MEMORY;
  if (!BringToSrgb(job.image.get(), profile)) {
    TellWarning(job.source, "its color profile is damaged, red is measured without it");
    return Correct(job, shape, correction);
  }
  int code = Correct(job, shape, correction);
  orvo::OwnedDib corrected;
  if (code == ORVO_OK && correction.picture) {
    corrected = Copied(own.get());
    if (!BringChangesBack(job.image.get(), correction.picture.get(), profile, corrected.get())) {
      code = ORVO_ERR_NO_MEMORY;
    }
  }
  correction.picture = std::move(corrected);
  job.image = std::move(own);
  return code;
}

int RedEye(Job& job) {
  const auto shape = ShapeOf(job.image.get());
  if (!shape) return ORVO_ERR_NO_BITMAP;
  Correction correction;
  int code = CorrectInSrgb(job, *shape, correction);
  // No other depth would help a picture without colours.
  if (code == ORVO_ERR_BAD_DEPTH && (shape->bits == 1 || shape->colors == "gray")) {
    job.hint = "the picture is " + std::to_string(shape->bits) + "-bit " +
               std::string(shape->colors) + ", there is no red in it";
  }
  if (code == ORVO_OK) code = Report(job, correction);
  if (code == ORVO_OK && correction.picture) job.image = std::move(correction.picture);
  return code;
}

std::string CheckRedEye(const Parameters& parameters) {
  if (!parameters.has("at") || parameters.numbers("at").size() % 2 == 0) return {};
  return "--at needs pairs: X,Y of each pupil";
}

constexpr Option kRedEyeOptions[] = {
    {.name = "at",
     .meaning =
         "X,Y of a pupil, in pixels from the top left: corrects that one alone; may be repeated",
     .least = 0,
     .most = kMostPixels,
     .fewest = 2,
     .atMost = 2 * kMostPoints,
     .repeatable = true},
    {.name = "mark",
     .meaning = "folder for a copy of the uncorrected picture, PNG, with a frame round each eye; "
                "no output has to be given then",
     .kind = ValueKind::kFile}};

constexpr Operation kRows[] = {
    {.name = "redeye",
     .summary = "Find and correct red eyes, or correct those that --at points at",
     .example = "photo.jpg -o out/",
     .run = RedEye,
     .options = kRedEyeOptions,
     .depths = "16, 24 and 32 bits",
     .check = CheckRedEye,
     .insteadOfTarget = "mark"},
};

}  // namespace

std::span<const Operation> RedEyeOperations() {
  return kRows;
}

}  // namespace client
