// Draws the outlines of red-eye colours.
//
//   redeye_outlines          the table as the source file src/imaging/redeye/red_eye_outlines.cpp
//   redeye_outlines --json   256 lists, one for each luma, of [Cb, Cr] pairs
#include <iostream>
#include <string_view>

#include "outline_table.h"

using namespace orvo;

namespace {

// open and close stand round a vertex.
void PrintVertices(const Polygon& polygon, char open, char close) {
  const char* separator = "";
  for (const ChromaPoint& point : polygon) {
    std::cout << separator << open << point.cb << ", " << point.cr << close;
    separator = ", ";
  }
}

void PrintSource(const OutlineTable& table) {
  std::cout << "// Written by tools/redeye_outlines.\n"
               "#include \"imaging/redeye/red_eye_outlines.h\"\n\n"
               "namespace orvo {\n\n"
               "// clang-format off\n"
               "const RedEyeOutline RedEyeOutlines[kLumaCount] = {\n";
  for (std::size_t y = 0; y < table.size(); ++y) {
    std::cout << "    /* " << y << " */ {" << table[y].size() << ", {";
    PrintVertices(table[y], '{', '}');
    std::cout << "}},\n";
  }
  std::cout << "};\n"
               "// clang-format on\n\n"
               "}  // namespace orvo\n";
}

void PrintJson(const OutlineTable& table) {
  const char* separator = "[\n";
  for (const Polygon& polygon : table) {
    std::cout << separator << "  [";
    PrintVertices(polygon, '[', ']');
    std::cout << "]";
    separator = ",\n";
  }
  std::cout << "\n]\n";
}

}  // namespace

int main(int argc, char** argv) {
  const bool json = argc == 2 && std::string_view(argv[1]) == "--json";
  if (argc > 1 && !json) {
    std::cerr << "usage: redeye_outlines [--json]\n";
    return 2;
  }
  const OutlineTable table = MakeOutlines();
  json ? PrintJson(table) : PrintSource(table);
  std::cout.flush();
  return std::cout ? 0 : 1;
}
