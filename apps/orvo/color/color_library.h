// The calls of the colour library that the client makes.
#ifndef APPS_ORVO_COLOR_COLOR_LIBRARY_H
#define APPS_ORVO_COLOR_COLOR_LIBRARY_H

#include <lcms2.h>

#include <memory>

#include "pictures/loaded_library.h"

namespace client {

struct ColorLibrary {
  modules::LoadedLibrary library{"liblcms2.so.2"};
  ORVO_LIBRARY_CALL(cmsOpenProfileFromMem);
  ORVO_LIBRARY_CALL(cmsCloseProfile);
  ORVO_LIBRARY_CALL(cmsCreate_sRGBProfile);
  ORVO_LIBRARY_CALL(cmsCreateRGBProfile);
  ORVO_LIBRARY_CALL(cmsCreateGrayProfile);
  ORVO_LIBRARY_CALL(cmsD50_xyY);
  ORVO_LIBRARY_CALL(cmsSaveProfileToMem);
  ORVO_LIBRARY_CALL(cmsGetColorSpace);
  ORVO_LIBRARY_CALL(cmsMLUalloc);
  ORVO_LIBRARY_CALL(cmsMLUsetASCII);
  ORVO_LIBRARY_CALL(cmsMLUfree);
  ORVO_LIBRARY_CALL(cmsWriteTag);
  ORVO_LIBRARY_CALL(cmsBuildGamma);
  ORVO_LIBRARY_CALL(cmsBuildParametricToneCurve);
  ORVO_LIBRARY_CALL(cmsFreeToneCurve);
  ORVO_LIBRARY_CALL(cmsCreateTransform);
  ORVO_LIBRARY_CALL(cmsDoTransform);
  ORVO_LIBRARY_CALL(cmsDeleteTransform);
};
bool HasColorLibrary();
// Where there is one.
const ColorLibrary& TheColorLibrary();

struct ProfileEnd {
  void operator()(void* profile) const { TheColorLibrary().cmsCloseProfile(profile); }
};
using ProfileHandle = std::unique_ptr<void, ProfileEnd>;
struct CurveEnd {
  void operator()(cmsToneCurve* curve) const { TheColorLibrary().cmsFreeToneCurve(curve); }
};
using CurveHandle = std::unique_ptr<cmsToneCurve, CurveEnd>;

// From the number to the light.
CurveHandle SrgbCurve();

}  // namespace client

#endif  // APPS_ORVO_COLOR_COLOR_LIBRARY_H
