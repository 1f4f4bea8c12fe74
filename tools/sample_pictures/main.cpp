// Writes the sample pictures of the demo into a folder. They are drawn, so they can go anywhere,
// and the same every time.
#include <cstdio>
#include <filesystem>
#include <string>

#include <orvo/orvo.h>

#include "scans.h"
#include "scenes.h"

namespace {

using samples::Canvas;

constexpr int kJpegQuality = 92;

// Saves into one folder and remembers whether all went well.
class Writer {
 public:
  explicit Writer(std::filesystem::path folder) : folder_(std::move(folder)) {}

  [[nodiscard]] explicit operator bool() const { return static_cast<bool>(toolkit_); }
  [[nodiscard]] bool allWritten() const { return allWritten_; }
  [[nodiscard]] std::string path(const char* name) const { return (folder_ / name).string(); }

  void save(const orvo::OwnedDib& picture, const char* name, bool appendPage = false) {
    check(toolkit_->SaveFile(picture.get(), path(name).c_str(), appendPage ? 1 : 0, kJpegQuality),
          name);
  }
  // To another depth; dithering modes as the toolkit has them, 0 for none.
  void toDepth(orvo::OwnedDib& picture, int bits, int dithering) {
    toolkit_->SetDitheringMode(dithering);
    check(toolkit_->ConvertToColorResInPlace(picture.address(), bits), "conversion");
  }
  // The same picture compressed: fax coding for 1 bit.
  void compress(const char* plain, const char* name) {
    check(toolkit_->ConvertFile(path(plain).c_str(), path(name).c_str(), 0, nullptr), name);
    std::filesystem::remove(path(plain));
  }

 private:
  void check(int code, const char* what) {
    if (code == ORVO_OK) return;
    std::fprintf(stderr, "%s: %s: %s\n", what, OrvoResultName(code), OrvoResultText(code));
    allWritten_ = false;
  }

  std::filesystem::path folder_;
  orvo::OwnedInstance toolkit_;
  bool allWritten_ = true;
};

Canvas Drawn(samples::Color (*scene)(double, double), int width, int height, double grain) {
  Canvas canvas(width, height);
  canvas.draw([&](double x, double y) { return scene(x / height, y / height); }, grain);
  return canvas;
}

void WritePhotographs(Writer& writer) {
  const Canvas landscape = Drawn(samples::Landscape, 1600, 1200, 3);
  orvo::OwnedDib photo = landscape.toDib(300, false);
  writer.save(photo, "photo.jpg");
  writer.save(landscape.toDib(300, true), "gray.png");
  writer.toDepth(photo, 8, 1);
  writer.save(photo, "palette.png");
  writer.save(Drawn(samples::Portrait, 1200, 1500, 3).toDib(300, false), "portrait.jpg");
}

void WritePages(Writer& writer) {
  constexpr int kDotsPerInch = 200;
  const samples::Sheet page = samples::PrintedPage(1500, 2120);
  const Canvas scan = samples::ScanOf(page, 1654, 2339, samples::kPageTiltDegrees);
  orvo::OwnedDib gray = scan.toDib(kDotsPerInch, true);
  writer.save(gray, "page.tif");
  writer.toDepth(gray, 1, 0);
  writer.save(gray, "page_plain.tif");
  writer.compress("page_plain.tif", "page_bw.tif");

  // A document of three pages, each with its own size, depth and resolution.
  std::filesystem::remove(writer.path("document.tif"));
  const samples::Sheet leaf = samples::PrintedPage(1100, 1560);
  writer.save(samples::ScanOf(leaf, 1165, 1654, 0).toDib(kDotsPerInch, true), "document.tif", true);
  writer.save(Drawn(samples::Landscape, 800, 600, 3).toDib(150, false), "document.tif", true);
  orvo::OwnedDib last = samples::ScanOf(leaf, 1240, 1754, 0).toDib(300, true);
  writer.toDepth(last, 1, 0);
  writer.save(last, "document.tif", true);
}

void WriteScans(Writer& writer) {
  writer.save(samples::ScannerBed(1240, 1600).toDib(150, false), "bed.png");
  writer.save(samples::ScreenedPrint(1000, 750, 6.3).toDib(300, true), "halftone.png");
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: make_samples FOLDER\n");
    return 2;
  }
  std::error_code fault;
  std::filesystem::create_directories(arguments[1], fault);
  Writer writer(arguments[1]);
  if (fault || !writer) {
    std::fprintf(stderr, "%s: the folder cannot be used\n", arguments[1]);
    return 1;
  }
  WritePhotographs(writer);
  WritePages(writer);
  WriteScans(writer);
  return writer.allWritten() ? 0 : 1;
}
