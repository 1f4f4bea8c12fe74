// Writes kRedEyeCrRanges as a source file. It rests on what it checks: for every luma and Cb the
// accepted Cr follow one another without a gap.
#include <cstdio>
#include <fstream>

#include "imaging/redeye/outline_angles.h"

using namespace orvo;

namespace {

struct Range {
  int first = 0;
  int count = 0;
};

// False when there is a gap.
bool MeasureRange(const RedEyeOutline& outline, int cb, Range& range) {
  for (int cr = 0; cr < 256; ++cr) {
    if (!IsWithinOutline(outline, cb, cr)) continue;
    if (range.count == 0) range.first = cr;
    if (cr != range.first + range.count++) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::ofstream file(argv[1]);
  file << "#include \"imaging/redeye/color_tests.h\"\n\n"
          "const orvo::CrRange orvo::kRedEyeCrRanges[orvo::kLumaCount][256] = {\n";
  for (int y = 0; y < kLumaCount; ++y) {
    file << "{";
    for (int cb = 0; cb < 256; ++cb) {
      Range range;
      if (!MeasureRange(RedEyeOutlines[y], cb, range)) {
        std::fprintf(stderr, "the red-eye colours of luma %d, Cb %d leave a gap\n", y, cb);
        return 1;
      }
      file << "{" << range.first << "," << range.count << "},";
    }
    file << "},\n";
  }
  file << "};\n";
  file.close();
  return file ? 0 : 1;
}
