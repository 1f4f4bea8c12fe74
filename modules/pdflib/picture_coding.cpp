#include "pdflib/picture_coding.h"

#include <qpdf/Pl_Flate.hh>
#include <vector>

namespace modules {
namespace {

// Photographs shrink by a third more as differences; palette indexes and few bits would grow.
bool GainsByDifferences(const Picture& picture) {
  return picture.bits == 8 && picture.palette.empty();
}

void TakeDifferences(std::vector<std::uint8_t>& row, std::size_t components) {
  for (std::size_t i = row.size(); i-- > components;) {
    row[i] = static_cast<std::uint8_t>(row[i] - row[i - components]);
  }
}

}  // namespace

CodedPicture CodeRows(PictureReader& reader, Spool& spool) {
  const Picture& picture = reader.picture();
  CodedPicture coded{.picture = picture};
  if (picture.bits == 1 && picture.components == 1) {
    coded.coding = Coding::kFax;
    coded.data = EncodeFax(reader, spool);
    return coded;
  }
  const bool differences = GainsByDifferences(picture);
  coded.coding = differences ? Coding::kFlateDifferences : Coding::kFlate;
  const std::uint64_t start = spool.size();
  SpoolPipe pipe(spool);
  Pl_Flate deflate("deflate", &pipe, Pl_Flate::a_deflate);
  std::vector<std::uint8_t> row(picture.rowBytes());
  for (int y = 0; y < picture.height; ++y) {
    reader.readRow(row.data());
    if (differences) TakeDifferences(row, static_cast<std::size_t>(picture.components));
    deflate.write(row.data(), row.size());
  }
  deflate.finish();
  coded.data = spool.rangeSince(start);
  return coded;
}

}  // namespace modules
