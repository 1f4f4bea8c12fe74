#include "methods.h"

#include <algorithm>

namespace binding {

namespace {

// A method that takes one number of any integer type and a callback.
template <auto method>
int WithNumber(CLeadTools& tools, DibHandle& source, DibHandle* result, int number,
               StatusCallback callback) {
  return (tools.*method)(source, result, number, callback);
}

template <auto method>
int Plain(CLeadTools& tools, DibHandle& source, DibHandle* result, int /*number*/,
          StatusCallback callback) {
  return (tools.*method)(source, result, callback);
}

Method Change(const char* name, const char* own, Method::Call call) {
  return {.name = name,
          .own = own,
          .moduleCall = "b1, 250",
          .call = call,
          .number = 250,
          .accepted = {-1000, 1000},
          .outOfRange = {-1001, 1001}};
}

std::vector<Method> AllMethods() {
  std::vector<Method> methods = {
      Change("LTContrastAdjust", "L_ChangeBitmapContrast",
             WithNumber<&CLeadTools::LTContrastAdjust>),
      Change("LTIntensityAdjust", "L_ChangeBitmapIntensity",
             WithNumber<&CLeadTools::LTIntensityAdjust>),
      Change("LTSaturationAdjust", "L_ChangeBitmapSaturation",
             WithNumber<&CLeadTools::LTSaturationAdjust>),
      Change("LTSharpnessAdjust", "L_SharpenBitmap", WithNumber<&CLeadTools::LTSharpnessAdjust>),
      Change("LTHueAdjust", "L_ChangeBitmapHue", WithNumber<&CLeadTools::LTHueAdjust>),
      {.name = "LTGammaAdjust",
       .own = "L_GammaCorrectBitmap",
       .moduleCall = "b1, 220",
       .call =
           [](CLeadTools& tools, DibHandle& source, DibHandle* result, int number,
              StatusCallback callback) {
             return tools.LTGammaAdjust(source, result, static_cast<unsigned>(number), callback);
           },
       .number = 220,
       .accepted = {1, -1},
       .outOfRange = {0}},
      {.name = "LTInvert",
       .own = "L_InvertBitmap",
       .moduleCall = "b1",
       .call = Plain<&CLeadTools::LTInvert>},
      {.name = "LTRemapIntensity",
       .own = "L_RemapBitmapIntensity",
       .moduleCall = "b1, table, 256, 3",
       .call =
           [](CLeadTools& tools, DibHandle& source, DibHandle* result, int /*number*/,
              StatusCallback callback) {
             return tools.LTRemapIntensity(source, result, kToneTable, 3, callback);
           }},
      {.name = "LTConvertToGrayScaleRes",
       .own = "L_GrayScaleBitmap",
       .moduleCall = "b1, 8",
       .call = Plain<&CLeadTools::LTConvertToGrayScaleRes>,
       .refusedDepths = {2}},
      {.name = "LTConvertToColorRes",
       .own = "L_ColorResBitmap",
       .moduleCall = "b1, b1, 8, 65537, 0, 0, 0, 0, 0",
       .call =
           [](CLeadTools& tools, DibHandle& source, DibHandle* result, int number,
              StatusCallback /*callback*/) {
             return tools.LTConvertToColorRes(source, result, number);
           },
       .number = 8,
       .accepted = {1, 4, 8, 16, 24, 32},
       .outOfRange = {-8, 0, 2, 3, 15, 25, 64},
       .takesCallback = false,
       .needsCallbackEntry = false},
      {.name = "LTRotate",
       .own = "L_RotateBitmap",
       .moduleCall = "b1, 9000, 1, 16777215",
       .call =
           [](CLeadTools& tools, DibHandle& source, DibHandle* result, int number,
              StatusCallback callback) {
             return tools.LTRotate(source, result, number, 1, callback);
           },
       .number = 90,
       .refusedDepths = {2},
       .depthTestedAfterCall = true},
      {.name = "LTChangeSize",
       .own = "L_SizeBitmap",
       .moduleCall = "b1, 30, 20, 7",
       .call =
           [](CLeadTools& tools, DibHandle& source, DibHandle* result, int number,
              StatusCallback callback) {
             return tools.LTChangeSize(source, result, number, 20, 7, callback);
           },
       .number = 30,
       .refusedDepths = {}},
      {.name = "LTChangeResolution",
       .own = "L_SizeBitmap",
       .moduleCall = "b1, 3, 2, 4",
       .call =
           [](CLeadTools& tools, DibHandle& source, DibHandle* result, int number,
              StatusCallback callback) {
             return tools.LTChangeResolution(source, result, number, 100, callback);
           },
       .number = 150,
       .failureSetsResult = false,
       .freesOldResult = false,
       .stampsResolution = true,
       .givesBackNew = {"L_ConvertToDIB(b1)", "L_FreeBitmap(b1)"}},
      {.name = "LTTrim",
       .own = "L_TrimBitmap",
       .moduleCall = "b1, 10, 20, 100, 200",
       .call =
           [](CLeadTools& tools, DibHandle& source, DibHandle* result, int number,
              StatusCallback /*callback*/) {
             const RECT rect{number, 20, 110, 220};
             return tools.LTTrim(source, result, &rect);
           },
       .number = 10,
       .refusedDepths = {},
       .takesCallback = false,
       .givesBackInPlace = "L_ChangeToDIB2(b1, 0)"},
  };
  methods[0].bindingsFirst = true;
  methods[1].refusedDepthSetsResult = true;
  methods[4].accepted = {-36001, 36001};
  methods[4].outOfRange = {};
  return methods;
}

}  // namespace

const std::vector<Method>& Methods() {
  static const std::vector<Method> methods = AllMethods();
  return methods;
}

const Method& MethodNamed(const std::string& name) {
  return *std::find_if(Methods().begin(), Methods().end(),
                       [&](const Method& method) { return method.name == name; });
}

}  // namespace binding
