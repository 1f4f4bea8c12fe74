// How pictures are turned upright on a page.
#ifndef MODULES_DOCUMENTS_UPRIGHT_MATRICES_H
#define MODULES_DOCUMENTS_UPRIGHT_MATRICES_H

#include <array>

namespace modules {

// a to f: takes x, y to a*x + c*y + e, b*x + d*y + f.
using Matrix = std::array<double, 6>;

// Objects are drawn into the square from 0, 0 to 1, 1 with their first row on top. One row for each
// orientation, from 1: how the square is laid over itself so that the picture stands upright.
inline constexpr Matrix kUprightMatrices[] = {
    {1, 0, 0, 1, 0, 0},    // upright
    {-1, 0, 0, 1, 1, 0},   // mirrored left to right
    {-1, 0, 0, -1, 1, 1},  // turned by 180 degrees
    {1, 0, 0, -1, 0, 1},   // mirrored top to bottom
    {0, -1, -1, 0, 1, 1},  // mirrored along the diagonal from the top left
    {0, -1, 1, 0, 0, 1},   // needs a quarter turn clockwise
    {0, 1, 1, 0, 0, 0},    // mirrored along the other diagonal
    {0, 1, -1, 0, 1, 0},   // needs a quarter turn counter-clockwise
};

}  // namespace modules

#endif  // MODULES_DOCUMENTS_UPRIGHT_MATRICES_H
