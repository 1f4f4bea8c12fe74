// Copies of pictures in which places are framed.
#ifndef APPS_ORVO_COMMANDS_MARKS_H
#define APPS_ORVO_COMMANDS_MARKS_H

#include <filesystem>
#include <string>
#include <vector>

#include "operations.h"

namespace client {

// Pixels from the top left of the picture as shown; right and bottom exclusive.
using Rects = std::vector<RECT>;

inline constexpr int kFrameWidth = 3;  // pixels

inline constexpr RGBQUAD kRed{0, 0, 255, 0};
inline constexpr RGBQUAD kGreen{0, 255, 0, 0};

// Writes a picture beside the targets of the call, with what the source holds beside its own, and
// reports its name.
int SaveInto(Job& job, DibHandle picture, const std::filesystem::path& folder,
             const std::string& name);

// Writes job.image in true colour into the folder, as a PNG, with a frame along the inside of each
// rectangle's edge. The rectangles may reach beyond the picture.
int SaveMarked(Job& job, const Rects& rects, const RGBQUAD& color,
               const std::filesystem::path& folder);

// A rectangle as left, top, right and bottom.
Report Listed(const RECT& rect);
Report Listed(const Rects& rects);

}  // namespace client

#endif  // APPS_ORVO_COMMANDS_MARKS_H
