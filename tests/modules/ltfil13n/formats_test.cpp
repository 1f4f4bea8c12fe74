// docs/formats.md promises what the module reads and writes at each depth; every cell of its table
// is tried out here.
#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "rare_files.h"

namespace {

constexpr std::array kDepths{1, 4, 8, 16, 24, 32};

enum Column : std::size_t {
  kExtensions,
  kFormat,
  kNumber,
  kReads,
  kFirstDepth,
  kLibrary = 10,
  kColumns = 12
};

using Cells = std::vector<std::string>;

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? ""
                                    : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

// The rows of the page's table, its heading left out.
std::vector<Cells> Table() {
  std::ifstream page(ORVO_FORMATS_PAGE);
  std::vector<Cells> rows;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("| ")) continue;
    std::istringstream parts(line.substr(1));
    Cells cells;
    for (std::string cell; std::getline(parts, cell, '|');) cells.push_back(Trimmed(cell));
    rows.push_back(cells);
  }
  if (!rows.empty()) rows.erase(rows.begin());
  return rows;
}

std::vector<std::string> Words(const std::string& text, char separator) {
  std::vector<std::string> words;
  std::istringstream parts(text);
  for (std::string word; std::getline(parts, word, separator);) words.push_back(Trimmed(word));
  return words;
}

struct Picture {
  int depth;
  bool second;  // what a cell tells behind its stroke: colours, or opacity
};

orvo::OwnedDib Made(const Picture& picture) {
  if (picture.depth <= 8 && picture.second) return pictures::NoiseInColor(40, 20, picture.depth, 3);
  orvo::OwnedDib image = picture.depth == 24 || picture.depth == 32
                             ? files::Scene(40, 20, picture.depth)
                             : pictures::Noise(40, 20, picture.depth, 3);
  if (picture.depth == 32 && picture.second) pictures::Locked(image.get()).row(3)[7] = 200;
  return image;
}

class Formats : public files::FolderTest {
 protected:
  // Saves, loads and describes; gives the depth that came back, 0 for files that do not load.
  int depthBack(const std::string& name, int format, const Picture& picture, bool isLossless) {
    const orvo::OwnedDib saved = Made(picture);
    EXPECT_EQ(files::Save(saved.get(), at(name), format), kModuleSuccess);
    const orvo::OwnedDib loaded = files::Load(at(name));
    if (!loaded) return 0;
    if (isLossless) {
      EXPECT_EQ(files::ShownPixels(loaded.get()), files::ShownPixels(saved.get()));
    }
    const int depth = pictures::Locked(loaded.get()).layout().depth;
    LTFILEINFO info{};
    EXPECT_EQ(L_FileInfo(at(name).c_str(), &info, 0, nullptr), kModuleSuccess);
    EXPECT_EQ(info.bitsPerPixel, depth);
    return depth;
  }

  // Depths in which files of these names load that the module does not write itself.
  std::set<int> depthsOfSamples(const std::string& extension) {
    std::map<std::string, files::Bytes> samples{
        {"pcx", files::PcxOfPlanes()}, {"tga", files::TgaOf16Bits()}, {"wmf", files::Metafile()}};
    std::set<int> depths;
    if (samples.contains(extension)) {
      const std::string path = at("sample." + extension);
      files::Write(path, samples.at(extension));
      const orvo::OwnedDib loaded = files::Load(path);
      EXPECT_TRUE(loaded) << extension;
      if (loaded) depths.insert(pictures::Locked(loaded.get()).layout().depth);
    }
    return depths;
  }
};

TEST_F(Formats, every_cell_of_the_page_holds) {
  const std::vector<Cells> table = Table();
  ASSERT_GT(table.size(), 15U);
  for (const Cells& row : table) {
    SCOPED_TRACE(row.at(kExtensions) + " " + row.at(kNumber));
    ASSERT_EQ(row.size(), std::size_t{kColumns});
    const std::string extension = Words(row[kExtensions], ',').at(0);
    const int format = row[kNumber].empty() ? 0 : std::stoi(row[kNumber]);
    const bool isLossless = row[kFormat] != "JPEG";
    std::set<int> read = depthsOfSamples(extension);
    for (std::size_t i = 0; i < kDepths.size(); ++i) {
      const std::string& cell = row[kFirstDepth + i];
      const std::vector<std::string> kinds = Words(cell, '/');
      for (const bool second : {false, true}) {
        const Picture picture{kDepths[i], second};
        SCOPED_TRACE(std::to_string(picture.depth) + (second ? " second" : " first"));
        const std::string name = std::to_string(i) + (second ? "b." : "a.") + extension;
        if (cell == "-") {
          const orvo::OwnedDib image = Made(picture);
          EXPECT_EQ(files::Save(image.get(), at(name), format), kFileFormatNotWritten);
          EXPECT_FALSE(std::filesystem::exists(at(name)));
          continue;
        }
        const int depth = depthBack(name, format, picture, isLossless);
        const std::string expected = second ? kinds.back() : kinds.front();
        EXPECT_EQ(depth, expected == "yes" ? 0 : std::stoi(expected));
        if (depth != 0) read.insert(depth);
      }
    }
    if (row[kReads] == "no") {
      EXPECT_TRUE(read.empty());
      continue;
    }
    // Photo CD, DCX and WordPerfect graphics take other programs or more than one sample to show.
    if (extension == "pcd" || extension == "dcx" || extension == "wpg") continue;
    std::set<int> promised;
    for (const std::string& word : Words(row[kReads], ' ')) promised.insert(std::stoi(word));
    EXPECT_EQ(read, promised);
  }
}

// Every extension of the toolkit's own tables has its row.
TEST(FormatsPage, leaves_no_extension_out) {
  std::set<std::string> told;
  for (const Cells& row : Table()) {
    for (const std::string& extension : Words(row[kExtensions], ',')) told.insert(extension);
  }
  for (const char* const extension :
       {"bmp", "jff", "tif", "tiff", "jpg", "jpe", "jpeg", "cmp", "pcx", "psd", "png",
        "ras", "pcd", "fpx", "wmf",  "tga", "eps", "wpg",  "pct", "jtf", "exf", "dcx"}) {
    EXPECT_TRUE(told.contains(extension)) << extension;
  }
}

TEST_F(Formats, what_is_not_read_has_its_code) {
  for (const char* const name : {"a.cmp", "a.fpx", "a.jtf", "a.exf", "a.eps"}) {
    files::Bytes bytes(3000, 7);
    const char* const mark =
        name[2] == 'e' && name[3] == 'p' ? "%!PS-Adobe-3.0" : "\xD0\xCF\x11\xE0";
    std::copy_n(mark, 4, bytes.begin());
    files::Write(at(name), bytes);
    int code = 0;
    EXPECT_FALSE(files::Load(at(name), &code));
    EXPECT_EQ(code, kFileFormatNotRead) << name;
  }
}

}  // namespace
