// What the client refuses, in rows of a file: status, words and a part of what it tells.
#include <fstream>
#include <regex>

#include "client/client.h"
#include "support/pictures.h"

namespace {

namespace fs = std::filesystem;

class RefusalsTest : public ClientTest {};

TEST_F(RefusalsTest, WhatCannotBeDoneIsToldAndTouchesNothing) {
  save("a.bmp", pictures::Noise(12, 5, 24, 1));
  save("b.bmp", pictures::Noise(9, 4, 24, 2));
  save("face.bmp", Portrait());
  save("page.bmp", pictures::Noise(16, 8, 1, 3));
  save("four.bmp", pictures::Noise(16, 8, 4, 3));
  save("wide.bmp", pictures::Noise(16384, 1, 1, 3));
  save("gray.bmp", pictures::Noise(12, 5, 8, 4));
  save("palette.bmp", pictures::NoiseInColor(12, 5, 8, 4));
  fs::create_directory("sub");
  fs::create_hard_link("a.bmp", "hard.bmp");
  fs::create_symlink("a.bmp", "soft.bmp");
  write("broken.bmp", "BM, but no picture");
  write("broken.pdf", "%PDF-1.4 and no page");
  write("old.pdf", "old");
  write("old.xyz", "old");
  write("short.txt", "1 2 3");
  std::string numbers;
  for (int i = 0; i < 256; ++i) numbers += std::to_string(i) + " ";
  write("long.txt", numbers + "0");
  write("word.txt", numbers + "x");
  write("high.txt", "256 " + numbers);
  const Names before = names(".");
  const std::string all =
      bytes("a.bmp") + bytes("old.pdf") + bytes("old.xyz") + bytes("broken.bmp");
  std::ifstream rows(REFUSALS);
  for (std::string line; std::getline(rows, line);) {
    std::smatch row;
    if (!std::regex_match(line, row, std::regex("([12]) \\| (.*) \\| (.*)"))) continue;
    const Outcome outcome = run(row[2]);
    EXPECT_EQ(outcome.status, std::stoi(row[1])) << line;
    EXPECT_NE(outcome.errors.find(row[3]), std::string::npos) << line << '\n' << outcome.errors;
    EXPECT_EQ(outcome.output, "");
  }
  EXPECT_TRUE(rows.eof());
  EXPECT_EQ(names("."), before);
  EXPECT_TRUE(bytes("a.bmp") + bytes("old.pdf") + bytes("old.xyz") + bytes("broken.bmp") == all);
}

}  // namespace
