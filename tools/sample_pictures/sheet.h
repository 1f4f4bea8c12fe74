// A sheet of printed paper: text in a small built-in type, rules and a picture, as ink from 0 to 1.
#ifndef TOOLS_SAMPLE_PICTURES_SHEET_H
#define TOOLS_SAMPLE_PICTURES_SHEET_H

#include <string_view>
#include <vector>

namespace samples {

class Sheet {
 public:
  Sheet(int width, int height);

  // Writes a line of text; a dot of the type is `dot` pixels wide. Gives the width in pixels.
  int write(int left, int top, int dot, std::string_view text);
  // Fills lines with words, each line justified roughly, from top to bottom.
  void writeParagraphs(int left, int top, int right, int bottom, int dot);
  void drawRule(int left, int top, int right, int bottom);
  // A picture of the landscape in gray.
  void drawPicture(int left, int top, int right, int bottom);

  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  // Ink at a point in pixels, smooth between them; none outside.
  [[nodiscard]] double inkAt(double x, double y) const;

 private:
  [[nodiscard]] double ink(int x, int y) const;
  void fill(int left, int top, int right, int bottom, float value);

  int width_;
  int height_;
  std::vector<float> ink_;
};

// A page of text for its size in pixels, at about 200 dots per inch.
Sheet PrintedPage(int width, int height);

}  // namespace samples

#endif  // TOOLS_SAMPLE_PICTURES_SHEET_H
