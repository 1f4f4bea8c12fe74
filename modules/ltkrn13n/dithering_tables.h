// The numbers of the dithering modes.
#ifndef MODULES_LTKRN13N_DITHERING_TABLES_H
#define MODULES_LTKRN13N_DITHERING_TABLES_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace modules {

// Thresholds by place, tiled over the image.
constexpr std::size_t kMatrixSide = 8;
struct Matrix {
  int levels;
  std::array<std::array<std::uint8_t, kMatrixSide>, kMatrixSide> thresholds;  // 0..levels - 1
};

constexpr Matrix kDispersed = {64,
                               {{{0, 32, 8, 40, 2, 34, 10, 42},
                                 {48, 16, 56, 24, 50, 18, 58, 26},
                                 {12, 44, 4, 36, 14, 46, 6, 38},
                                 {60, 28, 52, 20, 62, 30, 54, 22},
                                 {3, 35, 11, 43, 1, 33, 9, 41},
                                 {51, 19, 59, 27, 49, 17, 57, 25},
                                 {15, 47, 7, 39, 13, 45, 5, 37},
                                 {63, 31, 55, 23, 61, 29, 53, 21}}}};

// The matrix of 4 x 4, four times.
constexpr Matrix kClusteredDots = {16,
                                   {{{12, 5, 6, 13, 12, 5, 6, 13},
                                     {4, 0, 1, 7, 4, 0, 1, 7},
                                     {11, 3, 2, 8, 11, 3, 2, 8},
                                     {15, 10, 9, 14, 15, 10, 9, 14},
                                     {12, 5, 6, 13, 12, 5, 6, 13},
                                     {4, 0, 1, 7, 4, 0, 1, 7},
                                     {11, 3, 2, 8, 11, 3, 2, 8},
                                     {15, 10, 9, 14, 15, 10, 9, 14}}}};

// One pixel that inherits a share of another's error: places to its right and below, weight in
// parts of the sum of the kernel's weights.
struct Tap {
  int right;
  int down;
  int weight;
};

constexpr Tap kFloydSteinbergTaps[] = {{1, 0, 7}, {-1, 1, 3}, {0, 1, 5}, {1, 1, 1}};
constexpr Tap kStuckiTaps[] = {{1, 0, 8},  {2, 0, 4},                                    //
                               {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8}, {1, 1, 4}, {2, 1, 2},  //
                               {-2, 2, 1}, {-1, 2, 2}, {0, 2, 4}, {1, 2, 2}, {2, 2, 1}};
constexpr Tap kBurkesTaps[] = {{1, 0, 8},  {2, 0, 4},  //
                               {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8}, {1, 1, 4}, {2, 1, 2}};
constexpr Tap kSierraTaps[] = {{1, 0, 5},  {2, 0, 3},                                    //
                               {-2, 1, 2}, {-1, 1, 4}, {0, 1, 5}, {1, 1, 4}, {2, 1, 2},  //
                               {-1, 2, 2}, {0, 2, 3},  {1, 2, 2}};
constexpr Tap kStevensonArceTaps[] = {{2, 0, 32},                                        //
                                      {-3, 1, 12}, {-1, 1, 26}, {1, 1, 30}, {3, 1, 16},  //
                                      {-2, 2, 12}, {0, 2, 26},  {2, 2, 12},              //
                                      {-3, 3, 5},  {-1, 3, 12}, {1, 3, 12}, {3, 3, 5}};
constexpr Tap kJarvisJudiceNinkeTaps[] = {
    {1, 0, 7},  {2, 0, 5},                                    //
    {-2, 1, 3}, {-1, 1, 5}, {0, 1, 7}, {1, 1, 5}, {2, 1, 3},  //
    {-2, 2, 1}, {-1, 2, 3}, {0, 2, 5}, {1, 2, 3}, {2, 2, 1}};

constexpr std::size_t kReach = 3;  // of any tap, right, left and down

}  // namespace modules

#endif  // MODULES_LTKRN13N_DITHERING_TABLES_H
