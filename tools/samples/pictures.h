// The sample pictures as paintings, before they become files.
#ifndef TOOLS_SAMPLES_PICTURES_H
#define TOOLS_SAMPLES_PICTURES_H

#include "canvas.h"

namespace samples {

// 1600 x 1200: a house in the hills on a hazy day, a little soft and flat, as photographs are that
// want fixing.
Canvas PaintLandscape();

// 1200 x 1500: a face taken with flash, the pupils red.
Canvas PaintPortrait();
// Where the portrait's pupils are, and their radius in pixels.
inline constexpr Point kPupils[] = {{500.5, 640.5}, {699.5, 640.5}};
inline constexpr double kPupilRadius = 14;

// A4 at 200 dots per inch: a magazine page laid crooked on the scanner, turned clockwise by
// 2.86 degrees.
Canvas PaintPage(const Canvas& landscape);
inline constexpr double kPageTangent = 0.05;

// 1240 x 1754, A4 at 150 dots per inch: two photographs, one of them crooked, and a card.
Canvas PaintScannerBed(const Canvas& landscape, const Canvas& portrait);
inline constexpr int kItemsOnBed = 3;

// A picture as it is printed in one ink: dots on lines at 45 degrees, 6 pixels apart.
Canvas ScreenedInGray(const Canvas& picture);
// In four inks, each screen at its own angle.
Canvas ScreenedInColor(const Canvas& picture);

// A map of islands in few flat colours.
Canvas PaintMap();

// Three pages of a small report: a letter, a photograph with its caption, a card.
Canvas PaintLetter();
Canvas PaintPlate(const Canvas& landscape);
Canvas PaintCard();

}  // namespace samples

#endif  // TOOLS_SAMPLES_PICTURES_H
