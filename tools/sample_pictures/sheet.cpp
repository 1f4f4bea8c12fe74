#include "sheet.h"

#include <cmath>
#include <cstdint>

#include "noise.h"
#include "scenes.h"

namespace samples {
namespace {

constexpr int kGlyphColumns = 5;
constexpr int kGlyphRows = 8;

// The type: five columns a letter, the lowest bit on top. Upper case, then lower case.
constexpr std::uint8_t kUpper[26][kGlyphColumns] = {
    {0x7E, 0x11, 0x11, 0x11, 0x7E}, {0x7F, 0x49, 0x49, 0x49, 0x36}, {0x3E, 0x41, 0x41, 0x41, 0x22},
    {0x7F, 0x41, 0x41, 0x22, 0x1C}, {0x7F, 0x49, 0x49, 0x49, 0x41}, {0x7F, 0x09, 0x09, 0x09, 0x01},
    {0x3E, 0x41, 0x49, 0x49, 0x7A}, {0x7F, 0x08, 0x08, 0x08, 0x7F}, {0x00, 0x41, 0x7F, 0x41, 0x00},
    {0x20, 0x40, 0x41, 0x3F, 0x01}, {0x7F, 0x08, 0x14, 0x22, 0x41}, {0x7F, 0x40, 0x40, 0x40, 0x40},
    {0x7F, 0x02, 0x0C, 0x02, 0x7F}, {0x7F, 0x04, 0x08, 0x10, 0x7F}, {0x3E, 0x41, 0x41, 0x41, 0x3E},
    {0x7F, 0x09, 0x09, 0x09, 0x06}, {0x3E, 0x41, 0x51, 0x21, 0x5E}, {0x7F, 0x09, 0x19, 0x29, 0x46},
    {0x46, 0x49, 0x49, 0x49, 0x31}, {0x01, 0x01, 0x7F, 0x01, 0x01}, {0x3F, 0x40, 0x40, 0x40, 0x3F},
    {0x1F, 0x20, 0x40, 0x20, 0x1F}, {0x3F, 0x40, 0x38, 0x40, 0x3F}, {0x63, 0x14, 0x08, 0x14, 0x63},
    {0x07, 0x08, 0x70, 0x08, 0x07}, {0x61, 0x51, 0x49, 0x45, 0x43}};
constexpr std::uint8_t kLower[26][kGlyphColumns] = {
    {0x20, 0x54, 0x54, 0x54, 0x78}, {0x7F, 0x48, 0x44, 0x44, 0x38}, {0x38, 0x44, 0x44, 0x44, 0x20},
    {0x38, 0x44, 0x44, 0x48, 0x7F}, {0x38, 0x54, 0x54, 0x54, 0x18}, {0x08, 0x7E, 0x09, 0x01, 0x02},
    {0x18, 0xA4, 0xA4, 0xA4, 0x7C}, {0x7F, 0x08, 0x04, 0x04, 0x78}, {0x00, 0x44, 0x7D, 0x40, 0x00},
    {0x40, 0x80, 0x84, 0x7D, 0x00}, {0x7F, 0x10, 0x28, 0x44, 0x00}, {0x00, 0x41, 0x7F, 0x40, 0x00},
    {0x7C, 0x04, 0x18, 0x04, 0x78}, {0x7C, 0x08, 0x04, 0x04, 0x78}, {0x38, 0x44, 0x44, 0x44, 0x38},
    {0xFC, 0x24, 0x24, 0x24, 0x18}, {0x18, 0x24, 0x24, 0x18, 0xFC}, {0x7C, 0x08, 0x04, 0x04, 0x08},
    {0x48, 0x54, 0x54, 0x54, 0x20}, {0x04, 0x3F, 0x44, 0x40, 0x20}, {0x3C, 0x40, 0x40, 0x20, 0x7C},
    {0x1C, 0x20, 0x40, 0x20, 0x1C}, {0x3C, 0x40, 0x30, 0x40, 0x3C}, {0x44, 0x28, 0x10, 0x28, 0x44},
    {0x1C, 0xA0, 0xA0, 0xA0, 0x7C}, {0x44, 0x64, 0x54, 0x4C, 0x44}};
constexpr std::uint8_t kStop[kGlyphColumns] = {0x00, 0x60, 0x60, 0x00, 0x00};

const std::uint8_t* Glyph(char letter) {
  if (letter >= 'A' && letter <= 'Z') return kUpper[letter - 'A'];
  if (letter >= 'a' && letter <= 'z') return kLower[letter - 'a'];
  return letter == '.' ? kStop : nullptr;
}

constexpr std::string_view kWords[] = {
    "the",   "light",  "of",    "a",      "window", "falls",  "on",    "paper", "and",
    "every", "letter", "keeps", "its",    "edge",   "where",  "ink",   "meets", "white",
    "we",    "scan",   "pages", "that",   "were",   "folded", "once",  "then",  "turn",
    "them",  "until",  "their", "lines",  "lie",    "level",  "with",  "care",  "for",
    "small", "marks",  "dust",  "margin", "which",  "nobody", "meant", "to",    "keep"};

}  // namespace

Sheet::Sheet(int width, int height)
    : width_(width),
      height_(height),
      ink_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

void Sheet::fill(int left, int top, int right, int bottom, float value) {
  for (int y = std::max(top, 0); y < std::min(bottom, height_); ++y) {
    for (int x = std::max(left, 0); x < std::min(right, width_); ++x) {
      ink_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
           static_cast<std::size_t>(x)] = value;
    }
  }
}

int Sheet::write(int left, int top, int dot, std::string_view text) {
  int x = left;
  for (const char letter : text) {
    if (const std::uint8_t* const glyph = Glyph(letter)) {
      for (int column = 0; column < kGlyphColumns; ++column) {
        for (int row = 0; row < kGlyphRows; ++row) {
          if ((glyph[column] >> row & 1) == 0) continue;
          fill(x + column * dot, top + row * dot, x + (column + 1) * dot, top + (row + 1) * dot, 1);
        }
      }
    }
    x += (kGlyphColumns + 1) * dot;
  }
  return x - left;
}

void Sheet::writeParagraphs(int left, int top, int right, int bottom, int dot) {
  constexpr int kLinePitch = 12;  // dots
  constexpr int kLinesAParagraph = 7;
  std::int64_t word = std::int64_t{left} * 1000;
  for (int line = 0, y = top; y + kGlyphRows * dot <= bottom; ++line, y += kLinePitch * dot) {
    if (line % kLinesAParagraph == kLinesAParagraph - 1) continue;
    const bool lastLine = line % kLinesAParagraph == kLinesAParagraph - 2;
    const int end = lastLine ? left + (right - left) * 3 / 5 : right;
    for (int x = left;;) {
      const auto pick = static_cast<std::size_t>(Hash(word++, 11) * std::size(kWords));
      const std::string_view text = kWords[pick];
      if (x + static_cast<int>(text.size()) * (kGlyphColumns + 1) * dot > end) break;
      x += write(x, y, dot, text) + (kGlyphColumns - 2) * dot;
    }
  }
}

void Sheet::drawRule(int left, int top, int right, int bottom) {
  fill(left, top, right, bottom, 0.85F);
}

void Sheet::drawPicture(int left, int top, int right, int bottom) {
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) {
      const double v = static_cast<double>(y - top) / (bottom - top);
      const double u = static_cast<double>(x - left) / (right - left) * 4 / 3;
      fill(x, y, x + 1, y + 1, static_cast<float>(1 - Luminance(Landscape(u, v))));
    }
  }
}

double Sheet::ink(int x, int y) const {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return 0;
  return static_cast<double>(ink_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                                  static_cast<std::size_t>(x)]);
}

double Sheet::inkAt(double x, double y) const {
  const double left = std::floor(x - 0.5);
  const double top = std::floor(y - 0.5);
  const double u = x - 0.5 - left;
  const double v = y - 0.5 - top;
  const int i = static_cast<int>(left);
  const int j = static_cast<int>(top);
  return (ink(i, j) * (1 - u) + ink(i + 1, j) * u) * (1 - v) +
         (ink(i, j + 1) * (1 - u) + ink(i + 1, j + 1) * u) * v;
}

Sheet PrintedPage(int width, int height) {
  Sheet sheet(width, height);
  const int margin = width / 9;
  const int right = width - margin;
  sheet.write(margin, margin, 7, "Pages made level");
  sheet.drawRule(margin, margin + 78, right, margin + 82);
  const int column = (right - margin - 50) / 2;
  const int top = margin + 130;
  const int middle = top + column * 3 / 4;
  sheet.drawPicture(margin, top, margin + column, middle);
  sheet.writeParagraphs(margin, middle + 40, margin + column, height - margin, 3);
  sheet.writeParagraphs(right - column, top, right, height - margin, 3);
  return sheet;
}

}  // namespace samples
