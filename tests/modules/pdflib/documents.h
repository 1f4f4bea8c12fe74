// Documents for tests: made by the toolkit through the module, and looked at by other programs.
#ifndef TESTS_MODULES_PDFLIB_DOCUMENTS_H
#define TESTS_MODULES_PDFLIB_DOCUMENTS_H

#include <sstream>

#include <orvo/raii.h>
#include <orvo/result_codes.h>

#include "modules/ltfil13n/files.h"

namespace documents {

// A folder, and the programs that make pictures and look at documents.
class DocumentTest : public files::FolderTest {
 protected:
  void SetUp() override {
    for (const char* program : {"convert", "gm", "qpdf", "pdfinfo", "pdfimages", "pdftoppm"}) {
      if (!files::HasProgram(program)) GTEST_SKIP() << program << " is not installed";
    }
  }

  // Makes a picture file from the built-in rose of 70 x 46 pixels.
  void make(const std::string& arguments, const std::string& name) {
    run("convert rose: " + arguments + " " + at(name));
  }
  void run(const std::string& command) { ASSERT_EQ(std::system(command.c_str()), 0) << command; }

  int convert(const std::string& source, const std::string& target = "out.pdf") {
    const orvo::OwnedInstance toolkit;
    return toolkit->ConvertFile(at(source).c_str(), at(target).c_str(), 0, nullptr);
  }

  std::string text(const std::string& command) {
    const files::Bytes output = files::OutputOf(command + " 2>&1");
    return {output.begin(), output.end()};
  }
  // What pdfinfo says behind a key.
  std::string info(const std::string& key, const std::string& options = {}) {
    std::istringstream lines(text("pdfinfo " + options + " " + at("out.pdf")));
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with(key + ":")) continue;
      const std::size_t value = line.find_first_not_of(' ', key.size() + 1);
      return value == std::string::npos ? "" : line.substr(value);
    }
    return "no " + key;
  }
  // Colours, components, bits and coding of the document's first image.
  std::string imageKind() {
    std::istringstream lines(text("pdfimages -list " + at("out.pdf") + " | tail -1"));
    std::string skipped;
    std::string kind;
    for (int i = 0; i < 5; ++i) lines >> skipped;
    for (std::string word; kind.size() < 3 || std::count(kind.begin(), kind.end(), ' ') < 3;) {
      if (!(lines >> word)) break;
      kind += (kind.empty() ? "" : " ") + word;
    }
    return kind;
  }
  void expectSound() {
    const std::string report = text("qpdf --check " + at("out.pdf"));
    EXPECT_NE(report.find("No syntax or stream encoding errors"), std::string::npos) << report;
  }

  // Red, green and blue of all pixels of a page drawn with so many dots per inch. The page is drawn
  // four times as large and the middle of each pixel taken, since the program widens pictures by a
  // dot.
  files::Bytes drawn(int page, int dotsPerInch) {
    constexpr std::size_t kTimes = 4;
    const std::string number = std::to_string(page);
    const files::Bytes ppm =
        files::OutputOf("pdftoppm -r " + std::to_string(kTimes * dotsPerInch) + " -f " + number +
                        " -l " + number + " " + at("out.pdf"));
    std::istringstream head(std::string(ppm.begin(), ppm.end()));
    std::string mark;
    std::size_t width = 0;
    std::size_t height = 0;
    head >> mark >> width >> height;
    const std::size_t start = ppm.size() - width * height * 3;
    files::Bytes pixels;
    for (std::size_t y = kTimes / 2; y < height; y += kTimes) {
      for (std::size_t x = kTimes / 2; x < width; x += kTimes) {
        const auto pixel = ppm.begin() + static_cast<std::ptrdiff_t>(start + (y * width + x) * 3);
        pixels.insert(pixels.end(), pixel, pixel + 3);
      }
    }
    return pixels;
  }
  // The same of a picture file's first page, upright and laid on white.
  files::Bytes shown(const std::string& name) {
    return files::OutputOf("gm convert '" + at(name) +
                           "[0]' -auto-orient -background white -flatten -depth 8 rgb:-");
  }
};

}  // namespace documents

#endif  // TESTS_MODULES_PDFLIB_DOCUMENTS_H
