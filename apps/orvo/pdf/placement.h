// Where a page shows its picture: matrices and boxes in points, and what of them a picture file can
// tell.
#ifndef APPS_ORVO_PDF_PLACEMENT_H
#define APPS_ORVO_PDF_PLACEMENT_H

#include <optional>
#include <vector>

namespace client {

struct Point {
  double x;
  double y;
};

// Takes x, y to a·x + c·y + e, b·x + d·y + f.
struct Matrix {
  double a = 1;
  double b = 0;
  double c = 0;
  double d = 1;
  double e = 0;
  double f = 0;
};
// One after the other.
Matrix Then(const Matrix& first, const Matrix& second);
Point At(const Matrix& matrix, Point point);

struct Box {
  double left;
  double bottom;
  double right;
  double top;
};
Box Common(const Box& one, const Box& other);
bool Holds(const Box& outer, const Box& inner, double tolerance);
// Round the square from 0, 0 to 1, 1 as the matrix lays it.
Box BoxOfSquare(const Matrix& matrix);
// The box whose four corners these points are, in any order; the first may come again as the last.
std::optional<Box> BoxOfCorners(const std::vector<Point>& corners);

// The turn of a page by so many degrees clockwise; other than quarters count as none.
Matrix TurnOf(int degrees);

// Pictures are drawn into the square from 0, 0 to 1, 1 with their first row on top. How the drawn
// one has to be turned to stand upright, 1 to 8 as cameras tell it; nothing when it is slanted.
std::optional<int> OrientationOf(const Matrix& place);
// Lays the square over itself so that a picture of this orientation stands upright.
Matrix UprightMatrix(int orientation);
// The way back.
Matrix InverseOfUpright(int orientation);

}  // namespace client

#endif  // APPS_ORVO_PDF_PLACEMENT_H
