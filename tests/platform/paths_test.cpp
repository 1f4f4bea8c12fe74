#include "platform/paths.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

struct SplitRow {
  const char* name;
  std::string path;
  std::string drive, dir, file, ext;
};

TEST(Paths, Split) {
  const std::string longName(400, 'n');
  std::string longExtension = longName;
  longExtension.insert(0, 1, '.');
  const SplitRow rows[] = {
      {"drive and backslashes", "c:\\out\\scan.pdf", "c:", "\\out\\", "scan", ".pdf"},
      {"slashes", "/home/me/a.b/photo.jpeg", "", "/home/me/a.b/", "photo", ".jpeg"},
      {"mixed, the last of either counts", "a/b\\c/d.e", "", "a/b\\c/", "d", ".e"},
      {"dot in the directory only", "dir.ext/name", "", "dir.ext/", "name", ""},
      {"two dots", "x.tar.gz", "", "", "x.tar", ".gz"},
      {"directory alone", "dir/", "", "dir/", "", ""},
      {"hidden file", ".profile", "", "", "", ".profile"},
      {"trailing dot", "name.", "", "", "name", "."},
      {"drive only", "d:", "d:", "", "", ""},
      {"digit is no drive", "1:x", "", "", "1:x", ""},
      {"empty", "", "", "", "", ""},
      {"too long for the buffers", longName + longExtension, "", "", longName.substr(0, 255),
       longExtension.substr(0, 255)},
  };
  for (const SplitRow& row : rows) {
    SCOPED_TRACE(row.name);
    char drive[_MAX_DRIVE], dir[_MAX_DIR], file[_MAX_FNAME], ext[_MAX_EXT];
    _splitpath(row.path.c_str(), drive, dir, file, ext);
    EXPECT_EQ(drive, row.drive);
    EXPECT_EQ(dir, row.dir);
    EXPECT_EQ(file, row.file);
    EXPECT_EQ(ext, row.ext);
  }
  _splitpath(nullptr, nullptr, nullptr, nullptr, nullptr);
}

const unsigned char* Text(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

TEST(Strings, CompareAndSearch) {
  EXPECT_EQ(_mbsicmp(Text(".JpEg"), Text(".jPeG")), 0);
  EXPECT_LT(_mbsicmp(Text("abc"), Text("ABD")), 0);
  EXPECT_LT(_mbsicmp(Text("ab"), Text("abc")), 0);
  EXPECT_NE(_mbsicmp(Text("@"), Text("`")), 0) << "only letters fold";
  EXPECT_NE(_mbsicmp(Text("\xC3\x84"), Text("\xC3\xA4")), 0) << "only ASCII letters fold";
  EXPECT_NE(_mbscmp(Text("jpg"), Text("JPG")), 0);
  EXPECT_EQ(_mbscmp(Text("jpg"), Text("jpg")), 0);
  const unsigned char* const path = Text("a.b.c");
  EXPECT_EQ(_mbsrchr(path, '.'), path + 3);
  EXPECT_EQ(_mbsrchr(path, 'x'), nullptr);
}

TEST(Files, DeleteTakesFilesAndSparesFolders) {
  const fs::path folder = fs::temp_directory_path() / ("orvo_files_" + std::to_string(getpid()));
  fs::create_directories(folder / "target.pdf");
  std::ofstream(folder / "file.txt") << "x";
  EXPECT_FALSE(DeleteFileA((folder / "target.pdf").c_str()));
  EXPECT_TRUE(fs::is_directory(folder / "target.pdf"));
  EXPECT_TRUE(DeleteFileA((folder.string() + "\\file.txt").c_str())) << "either separator";
  EXPECT_FALSE(fs::exists(folder / "file.txt"));
  EXPECT_FALSE(DeleteFileA((folder / "file.txt").c_str()));
  EXPECT_FALSE(DeleteFileA(nullptr));
  fs::remove_all(folder);
}

}  // namespace
