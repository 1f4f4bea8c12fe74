#include "marks.h"

#include <algorithm>
#include <cstring>

#include "encoding.h"
#include "picture.h"

namespace client {
namespace {

namespace fs = std::filesystem;

// Draws one frame into a picture of 24 bits.
void Frame(std::uint8_t* rows, const orvo::DibLayout& layout, const RECT& rect,
           const RGBQUAD& color) {
  const int right = std::min(rect.right, layout.width);
  const int bottom = std::min(rect.bottom, layout.height);
  for (int y = std::max(rect.top, 0); y < bottom; ++y) {
    std::uint8_t* const row =
        rows + layout.stride * static_cast<std::size_t>(layout.height - 1 - y);
    for (int x = std::max(rect.left, 0); x < right; ++x) {
      const int inside =
          std::min({x - rect.left, rect.right - 1 - x, y - rect.top, rect.bottom - 1 - y});
      if (inside < kFrameWidth) std::memcpy(row + std::ptrdiff_t{3} * x, &color, 3);
    }
  }
}

int ToTrueColor(Job& job, orvo::OwnedDib& copy) {
  const auto shape = ShapeOf(job.image.get());
  if (!shape || shape->bits != 1) {
    return job.toolkit.ConvertToColorRes(job.image.get(), copy.receive(job.image), 24);
  }
  // Two colours go to true colour by way of gray.
  const int code =
      job.toolkit.ConvertToGrayScaleRes(job.image.get(), copy.receive(job.image), nullptr);
  return code == ORVO_OK ? job.toolkit.ConvertToColorResInPlace(copy.address(), 24) : code;
}

}  // namespace

int SaveInto(Job& job, DibHandle picture, const fs::path& folder, const std::string& name) {
  std::error_code fault;
  fs::create_directories(folder, fault);
  const std::string target = (folder / name).string();
  job.hint = job.furtherTargets.claim(target);
  if (!job.hint.empty()) return ORVO_ERR_FILE_OPEN;
  int code = job.toolkit.SaveFile(picture, target.c_str(), 0, job.quality);
  const auto shape = ShapeOf(picture);
  if (code == ORVO_OK && shape) {
    code = Complete(job, target, {job.page, *shape, *shape, job.inSrgb});
  }
  if (code == ORVO_OK) {
    job.report.append("written", target);
  } else {
    job.hint = "while writing " + target;
  }
  return code;
}

int SaveMarked(Job& job, const Rects& rects, const RGBQUAD& color, const fs::path& folder) {
  orvo::OwnedDib marked;
  if (const int code = ToTrueColor(job, marked); code != ORVO_OK) return code;
  if (const orvo::LockedImage image(marked.get()); image && image.layout().depth == 24) {
    for (const RECT& rect : rects) Frame(image.pixels(), image.layout(), rect, color);
  }
  return SaveInto(job, marked.get(), folder, fs::path(job.source).stem().string() + "-marked.png");
}

Report Listed(const RECT& rect) {
  return Report::List{rect.left, rect.top, rect.right, rect.bottom};
}

Report Listed(const Rects& rects) {
  Report::List list;
  for (const RECT& rect : rects) list.push_back(Listed(rect));
  return list;
}

}  // namespace client
