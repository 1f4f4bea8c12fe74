// Documents for tests: made by the toolkit through the module, and looked at by other programs.
#ifndef TESTS_PROVIDERS_PDFLIB_DOCUMENTS_H
#define TESTS_PROVIDERS_PDFLIB_DOCUMENTS_H

#include <sstream>

#include <orvo/raii.h>
#include <orvo/result_codes.h>

#include "providers/ltfil13n/files.h"

namespace documents {

// A folder, and the programs that make pictures and look at documents.
class DocumentTest : public files::FolderTest {
 protected:
  void SetUp() override {
    for (const char* program : {"convert", "qpdf", "pdfinfo", "pdfimages", "pdftoppm"}) {
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

  // Red, green and blue of all pixels: of a page drawn with so many dots per inch, and of a
  // picture file laid on white.
  files::Bytes drawn(int page, const std::string& dotsPerInch) {
    const std::string number = std::to_string(page);
    return files::OutputOf("pdftoppm -r " + dotsPerInch + " -f " + number + " -l " + number + " " +
                           at("out.pdf") + " | convert ppm:- -depth 8 rgb:-");
  }
  files::Bytes shown(const std::string& name) {
    return files::OutputOf("convert " + at(name) +
                           " -auto-orient -background white -flatten -colorspace sRGB -depth 8 "
                           "rgb:- 2>/dev/null");
  }
};

}  // namespace documents

#endif  // TESTS_PROVIDERS_PDFLIB_DOCUMENTS_H
