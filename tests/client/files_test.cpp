// Which files are read and written, and what the process answers.
#include "client/bmp_files.h"
#include "client/client.h"
#include "support/pictures.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class FilesTest : public ClientTest {
 protected:
  FilesTest() {
    write("a.bmp", one_);
    write("b.bmp", BmpOf(pictures::Noise(9, 4, 24, 2)));
    write("page.bmp", BmpOf(pictures::Noise(16, 8, 1, 3)));
    write("broken.bmp", "BM, but no picture");
  }
  std::string one_ = BmpOf(pictures::Noise(12, 5, 24, 1));
};

TEST_F(FilesTest, WrongUsageIsToldAndTouchesNothing) {
  fs::create_directory(path("sub"));
  fs::create_hard_link(path("a.bmp"), path("hard.bmp"));
  fs::create_symlink("a.bmp", path("soft.bmp"));
  write("short.txt", "1 2 3");
  const struct {
    Names words;
    const char* told;
  } rows[] = {
      {{}, "subcommand"},
      {{"melt", "a.bmp"}, "no command melt"},
      {{"invert"}, "files is required"},
      {{"invert", "a.bmp"}, "--output or --to"},
      {{"invert", "a.bmp", "--in-place", "-o", "x.bmp"}, "--in-place goes with neither"},
      {{"convert", "a.bmp", "--in-place"}, "--in-place"},
      {{"invert", "a.bmp", "-o", "a.bmp"}, "a.bmp is an input file"},
      {{"invert", "a.bmp", "-o", "sub/../a.bmp"}, "is an input file"},
      {{"invert", "a.bmp", "-o", "soft.bmp"}, "soft.bmp is an input file"},
      {{"invert", "a.bmp", "-o", "hard.bmp"}, "hard.bmp is an input file"},
      {{"invert", "a.bmp", "b.bmp", "-o", "."}, "a.bmp is an input file"},
      {{"invert", "a.bmp", "--to", ".bmp"}, "a.bmp is an input file"},
      {{"invert", "a.bmp", "./a.bmp", "-o", "out"}, "would be written twice"},
      {{"invert", "a.bmp", "./a.bmp", "--in-place"}, "would be written twice"},
      {{"invert", "a.bmp", "-o", "x.png", "--to", "bmp"}, "--to goes with a folder"},
      {{"sharpen", "--level", "11", "a.bmp", "-o", "x.bmp"}, "11 lies outside 0 to 10"},
      {{"rotate", "--angle", "1.5", "a.bmp", "-o", "x.bmp"}, "not a whole number"},
      {{"gamma", "--gamma", "nan", "a.bmp", "-o", "x.bmp"}, "lies outside"},
      {{"contrast", "a.bmp", "-o", "x.bmp"}, "--change is required"},
      {{"trim", "--rect", "1,2,3", "a.bmp", "-o", "x.bmp"}, "is not N,N,N,N"},
      {{"trim", "--rect", "5,1,5,4", "a.bmp", "-o", "x.bmp"}, "no area"},
      {{"resize", "a.bmp", "-o", "x.bmp"}, "--width or --height"},
      {{"depth", "--bits", "7", "a.bmp", "-o", "x.bmp"}, "not one of 1|4|8|16|24|32"},
      {{"redeye", "a.bmp"}, "--output or --to"},
      {{"redeye", "--at", "1,2,3", "a.bmp", "-o", "x.bmp"}, "--at needs pairs"},
      {{"remap", "a.bmp", "-o", "x.bmp"}, "exactly one of"},
      {{"remap", "--table", "short.txt", "a.bmp", "-o", "x.bmp"}, "does not hold 256 numbers"},
      {{"remap", "--curve", "9,1,9,2", "a.bmp", "-o", "x.bmp"}, "old tones that rise"},
  };
  const Names before = names(".");
  for (const auto& row : rows) {
    const Outcome outcome = run(row.words);
    EXPECT_EQ(outcome.status, 2) << row.told;
    EXPECT_NE(outcome.errors.find(row.told), std::string::npos) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
  }
  EXPECT_EQ(names("."), before);
  EXPECT_EQ(bytes("a.bmp"), one_);
}

TEST_F(FilesTest, SeveralFilesGoIntoAFolderAndABrokenOneStopsNoOther) {
  const Outcome outcome =
      run({"invert", "a.bmp", "broken.bmp", "none.bmp", "b.bmp", "-o", "new/out"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(names("new/out"), (Names{"a.bmp", "b.bmp"}));
  EXPECT_NE(outcome.errors.find("orvo: broken.bmp: ORVO_ERR_"), std::string::npos);
  EXPECT_NE(outcome.errors.find("orvo: none.bmp: ORVO_ERR_FILE_NOT_FOUND: the file does not exist"),
            std::string::npos);
  EXPECT_TRUE(outcome.errors.ends_with("orvo: 2 of 4 files done, 2 failed\n")) << outcome.errors;
  // Nothing but lines: no bar is drawn where no terminal is.
  EXPECT_EQ(outcome.errors.find_first_of("\r\033"), std::string::npos);
}

TEST_F(FilesTest, ExtensionsChooseTheFormat) {
  ASSERT_EQ(run({"convert", "a.bmp", "b.bmp", "--to", "png", "-o", "out/"}).status, 0);
  EXPECT_EQ(names("out"), (Names{"a.png", "b.png"}));
  EXPECT_TRUE(bytes("out/a.png").starts_with("\x89PNG"));
  // One file into a folder that exists, then beside the input.
  ASSERT_EQ(run({"convert", "out/b.png", "-o", "out", "--to", ".tif"}).status, 0);
  ASSERT_EQ(run({"invert", "out/a.png", "--to", "bmp"}).status, 0);
  EXPECT_EQ(names("out"), (Names{"a.bmp", "a.png", "b.png", "b.tif"}));
  // Another file that stands there is replaced; a format that is none leaves it.
  write("out/b.tif", "old");
  ASSERT_EQ(run({"convert", "out/b.png", "-o", "out/b.tif"}).status, 0);
  EXPECT_TRUE(bytes("out/b.tif").starts_with("II*") || bytes("out/b.tif").starts_with("MM"));
  write("a.xyz", "old");
  EXPECT_EQ(run({"invert", "a.bmp", "-o", "a.xyz"}).status, 1);
  EXPECT_EQ(bytes("a.xyz"), "old");
}

TEST_F(FilesTest, QualityReachesJpegFiles) {
  write("big.bmp", BmpOf(pictures::Noise(64, 64, 24, 4)));
  ASSERT_EQ(run({"convert", "big.bmp", "--quality", "20", "-o", "low.jpg"}).status, 0);
  ASSERT_EQ(run({"convert", "big.bmp", "--quality", "95", "-o", "high.jpg"}).status, 0);
  ASSERT_EQ(run({"invert", "big.bmp", "--quality", "20", "-o", "changed.jpg"}).status, 0);
  EXPECT_LT(bytes("low.jpg").size(), bytes("high.jpg").size() / 2);
  EXPECT_LT(bytes("changed.jpg").size(), bytes("high.jpg").size() / 2);
}

TEST_F(FilesTest, InPlaceWritesOverInputsAndThroughLinks) {
  fs::create_symlink("b.bmp", path("link.bmp"));
  ASSERT_EQ(run({"invert", "a.bmp", "link.bmp", "--in-place"}).status, 0);
  EXPECT_NE(bytes("a.bmp"), one_);
  EXPECT_TRUE(fs::is_symlink(path("link.bmp")));
  ASSERT_EQ(run({"invert", "a.bmp", "b.bmp", "--in-place"}).status, 0);
  EXPECT_EQ(ColorAt(PictureIn(bytes("a.bmp")), 3, 2), ColorAt(PictureIn(one_), 3, 2));
  const std::string broken = bytes("broken.bmp");
  EXPECT_EQ(run({"invert", "broken.bmp", "--in-place"}).status, 1);
  EXPECT_EQ(bytes("broken.bmp"), broken);
}

TEST_F(FilesTest, RefusalsSayWhatHelps) {
  write("gray.bmp", BmpOf(pictures::Noise(12, 5, 8, 4)));
  write("palette.bmp", BmpOf(pictures::NoiseInColor(12, 5, 8, 4)));
  const struct {
    Names words;
    const char* told;
  } rows[] = {
      {{"contrast", "--change", "100", "page.bmp"}, "try orvo gray first"},
      {{"trim", "--rect", "0,0,13,5", "a.bmp"}, "the picture has 12 x 5 pixels"},
      {{"convert-rgb", "--converter", "none.dll", "a.bmp"}, "ORVO_ERR_NO_CONVERTER"},
      {{"redeye", "page.bmp"}, "ORVO_ERR_BAD_DEPTH"},
      {{"redeye", "gray.bmp"}, "8-bit gray, there is no red in it"},
      {{"redeye", "--at", "2,2", "palette.bmp"}, "try orvo depth --bits 24 first"},
  };
  for (const auto& row : rows) {
    Names words = row.words;
    words.insert(words.end(), {"-o", "x.bmp"});
    const Outcome outcome = run(words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errors.find(row.told), std::string::npos) << outcome.errors;
    EXPECT_FALSE(fs::exists(path("x.bmp")));
  }
}

TEST_F(FilesTest, AMissingModuleHasAStatusOfItsOwn) {
  fs::create_directories(path("bare/bin"));
  fs::create_directories(path("bare/lib"));
  fs::copy_file(CLIENT_PROGRAM, path("bare/bin/orvo"));
  for (const char* const name : {"liborvo.so.1", "liborvo_platform.so.1"}) {
    fs::copy_file(fs::path(BUILT_LIBRARIES) / name, fs::path(path("bare/lib")) / name);
  }
  const std::string bare = path("bare/bin/orvo");
  const Outcome outcome = runProgram(bare, {"invert", "a.bmp", "b.bmp", "-o", "out"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(outcome.errors.find("ORVO_ERR_NO_VENDOR"), std::string::npos);
  EXPECT_EQ(runProgram(bare, {"version"}).status, 0);
  EXPECT_EQ(runProgram(bare, {"formats"}).status, 0);
}

}  // namespace
