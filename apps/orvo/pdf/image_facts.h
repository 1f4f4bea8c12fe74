// What the dictionary of a picture in a document says of its samples.
#ifndef APPS_ORVO_PDF_IMAGE_FACTS_H
#define APPS_ORVO_PDF_IMAGE_FACTS_H

#include <cstdint>
#include <qpdf/QPDFObjectHandle.hh>
#include <string>
#include <vector>

namespace client {

struct ImageFacts {
  enum class Coding : std::uint8_t { kSamples, kJpeg, kFax };
  struct Fax {
    int k = 0;  // below 0 group 4, 0 and above group 3 in one and two dimensions
    bool blackIs1 = false;
    bool byteAligned = false;
    bool hasLineEnds = false;
  };

  int width = 0;   // pixels
  int height = 0;  // pixels
  int bits = 1;    // of a sample
  int components = 1;
  bool inverted = false;    // the highest value shows dark, or no ink
  bool mixesColors = true;  // of a JPEG file with three components: they are a tone and tints
  // Red, green and blue of 2 to the power of `bits` indexes, a byte each; empty for none.
  std::string palette;
  QPDFObjectHandle profile;  // a stream, or null
  Coding coding = Coding::kSamples;
  std::string codingName = "none";
  Fax fax;
  // Filters that are to be undone before the coding, as they stand in the dictionary.
  std::vector<QPDFObjectHandle> outerFilters;
  std::vector<QPDFObjectHandle> outerParameters;

  [[nodiscard]] std::uint64_t rowBytes() const {
    return (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(components) *
                static_cast<std::uint64_t>(bits) +
            7) /
           8;
  }
};

// Fills in what it can, and throws PdfFault when the picture is of a kind that is not read.
void ReadImageFacts(QPDFObjectHandle image, bool inksBlack, ImageFacts& facts);

}  // namespace client

#endif  // APPS_ORVO_PDF_IMAGE_FACTS_H
