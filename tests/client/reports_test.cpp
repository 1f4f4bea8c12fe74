// What the client tells: JSON, pages, help and completion.
#include <nlohmann/json.hpp>

#include "client/bmp_files.h"
#include "client/client.h"
#include "support/pictures.h"

namespace {

using nlohmann::json;

class ReportsTest : public ClientTest {};

TEST_F(ReportsTest, JsonHoldsParametersAndEachFile) {
  write("a.bmp", BmpOf(pictures::Noise(12, 5, 24, 1)));
  const Outcome outcome =
      run({"sharpen", "a.bmp", "none.bmp", "-o", "out", "--json", "--quality", "50"});
  EXPECT_EQ(outcome.status, 1);
  const json told = json::parse(outcome.output);
  EXPECT_EQ(told["command"], "sharpen");
  EXPECT_EQ(told["parameters"], json({{"level", 5}}));  // the default
  ASSERT_EQ(told["files"].size(), 2);
  EXPECT_EQ(told["files"][0]["output"], "out/a.bmp");
  EXPECT_EQ(told["files"][0]["picture"]["width"], 12);
  EXPECT_EQ(told["files"][1]["result"], "ORVO_ERR_FILE_NOT_FOUND");
  EXPECT_FALSE(told["files"][1].contains("output"));
}

TEST_F(ReportsTest, InfoTellsFileAndPicture) {
  write("page.bmp", BmpOf(pictures::Noise(17, 9, 1, 3)));
  const std::size_t size = bytes("page.bmp").size();
  const json told = json::parse(run({"info", "--json", "page.bmp"}).output)["files"][0];
  EXPECT_EQ(told["file"]["width"], 17);
  EXPECT_EQ(told["file"]["bits"], 1);
  EXPECT_EQ(told["file"]["x_dpi"], 300);
  EXPECT_EQ(told["file"]["bytes_on_disk"], size);
  EXPECT_EQ(told["file"]["pages"], 1);
  EXPECT_EQ(told["picture"]["colors"], "gray");
  EXPECT_NE(run({"info", "page.bmp"}).output.find("height: 9\n"), std::string::npos);
}

// A TIFF of gray pages of 2 x 2 pixels in either byte order. `loops`: the last page names the first
// as the next one.
std::string Tiff(int pages, bool bigEndian, bool loops) {
  std::string file;
  const auto put = [&](std::uint32_t number, unsigned bytes) {
    for (unsigned i = 0; i < bytes; ++i) {
      file += static_cast<char>(number >> 8 * (bigEndian ? bytes - 1 - i : i));
    }
  };
  const struct {
    std::uint32_t tag, value;
  } entries[] = {{256, 2}, {257, 2}, {258, 8}, {259, 1}, {262, 1},
                 {273, 8}, {277, 1}, {278, 2}, {279, 4}};
  constexpr std::uint32_t kFirst = 12;
  const auto pageBytes = static_cast<std::uint32_t>(2 + 12 * std::size(entries) + 4);
  file = bigEndian ? "MM" : "II";
  put(42, 2);
  put(kFirst, 4);
  file += "abcd";  // the pixels
  for (std::uint32_t page = 1; page <= static_cast<std::uint32_t>(pages); ++page) {
    put(static_cast<std::uint32_t>(std::size(entries)), 2);
    for (const auto& entry : entries) {
      put(entry.tag, 2);
      put(4, 2);  // of 32 bits
      put(1, 4);
      put(entry.value, 4);
    }
    const bool last = page == static_cast<std::uint32_t>(pages);
    put(!last ? kFirst + page * pageBytes : loops ? kFirst : 0, 4);
  }
  return file;
}

TEST_F(ReportsTest, OtherPagesAreCountedAndNeverLostSilently) {
  const struct {
    const char* name;
    int pages;
    bool bigEndian, loops;
    int counted;
  } rows[] = {{"one.tif", 1, false, false, 1},
              {"three.tif", 3, false, false, 3},
              {"three_big.tif", 3, true, false, 3},
              {"endless.tif", 2, false, true, 65535}};
  for (const auto& row : rows) {
    const std::string file = Tiff(row.pages, row.bigEndian, row.loops);
    write(row.name, file);
    const json told = json::parse(run({"info", "--json", row.name}).output);
    EXPECT_EQ(told["files"][0]["file"]["pages"], row.counted) << row.name;

    const bool several = row.counted > 1;
    const Outcome copied = run({"invert", row.name, "-o", "out.png"});
    EXPECT_EQ(copied.status, 0) << copied.errors;
    EXPECT_EQ(copied.errors.find("only the first is used") != std::string::npos, several);

    EXPECT_EQ(run({"invert", row.name, "--in-place"}).status, several ? 1 : 0);
    EXPECT_EQ(bytes(row.name) == file, several) << row.name;
  }
}

TEST_F(ReportsTest, HelpAndCompletionKnowEveryCommand) {
  const std::string help = run({"--help"}).output;
  const std::string script = run({"completion", "bash"}).output;
  write("complete.sh", script +
                           "COMP_WORDS=(orvo \"$@\"); COMP_CWORD=$#; _orvo; "
                           "echo \"${COMPREPLY[@]}\"\n");
  const auto complete = [&](std::vector<std::string> words) {
    words.insert(words.begin(), path("complete.sh"));
    return runProgram("bash", words).output;
  };
  EXPECT_EQ(complete({"sat"}), "saturation\n");
  EXPECT_EQ(complete({"resize", "--method", "b"}), "bilinear best\n");
  EXPECT_EQ(complete({"trim", "--r"}), "--rect\n");
  EXPECT_EQ(complete({"completion", ""}), "bash\n");

  const std::string commands = complete({""});
  for (std::size_t at = help.find("\n  ", help.find("Subcommands")); at != std::string::npos;
       at = help.find("\n  ", at + 1)) {
    const std::size_t start = at + 3;
    const std::string name = help.substr(start, help.find(' ', start) - start);
    if (name.empty()) continue;
    EXPECT_NE((" " + commands).find(" " + name), std::string::npos) << name;
    const Outcome outcome = run({name, "--help"});
    EXPECT_EQ(outcome.status, 0) << name;
    EXPECT_NE(outcome.output.find("\n  orvo " + name), std::string::npos) << "example of " << name;
  }
}

}  // namespace
