// What a scanner sees: printed pages laid a little askew, a bed with several items, screened print.
#ifndef TOOLS_SAMPLE_PICTURES_SCANS_H
#define TOOLS_SAMPLE_PICTURES_SCANS_H

#include "canvas.h"
#include "sheet.h"

namespace samples {

// How far the sample page is turned, clockwise as shown.
constexpr double kPageTiltDegrees = 3.0;

// The sheet on a slightly larger lid, turned clockwise about its middle.
Canvas ScanOf(const Sheet& sheet, int width, int height, double tiltDegrees);

// Three items on a white lid: a photograph, a portrait laid askew, and a card.
Canvas ScannerBed(int width, int height);

// The landscape printed with a screen of dots at 45 degrees, `pitch` pixels from dot to dot, as a
// scanner sees it.
Canvas ScreenedPrint(int width, int height, double pitch);

}  // namespace samples

#endif  // TOOLS_SAMPLE_PICTURES_SCANS_H
