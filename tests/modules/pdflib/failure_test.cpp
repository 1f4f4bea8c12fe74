// What fails leaves no file: neither under the document's name nor beside it.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "binding/module_contract.h"
#include "documents.h"

using namespace orvo;

namespace documents {
namespace {

namespace fs = std::filesystem;

class FailureTest : public DocumentTest {
 protected:
  // Converts and expects a failure of which nothing is left.
  void expectNothing(const std::string& source) {
    const std::size_t before = fileCount();
    EXPECT_EQ(convert(source), ORVO_ERR_FAILURE) << source;
    EXPECT_EQ(fileCount(), before) << source;
    EXPECT_FALSE(fs::exists(at("out.pdf"))) << source;
  }
};

TEST_F(FailureTest, DamagedPicturesAreRefused) {
  make("", "whole.jpg");
  make("-interlace JPEG", "progressive.jpg");
  make("", "whole.png");
  make("-interlace PNG", "interlaced.png");
  make("", "whole.gif");
  make("-compress LZW", "whole.tif");
  make("-monochrome -compress Group4", "g4.tif");
  for (const char* file : {"whole.jpg", "progressive.jpg", "whole.png", "interlaced.png",
                           "whole.gif", "whole.tif", "g4.tif"}) {
    const files::Bytes whole = files::Read(at(file));
    const std::string damaged = std::string("cut") + fs::path(file).extension().string();
    for (const std::size_t part : {0, 3, 5, 9}) {  // tenths that are left
      const auto end = whole.begin() + static_cast<std::ptrdiff_t>(whole.size() * part / 10);
      files::Write(at(damaged), files::Bytes(whole.begin(), end));
      expectNothing(damaged);
    }
  }
  files::Write(at("text.png"), {'t', 'e', 'x', 't'});
  for (const char* file :
       {"text.png", "missing.jpg", "missing.tif", "missing.png", "missing.gif"}) {
    expectNothing(file);
  }
}

// Whatever a file holds: an answer, and a document only with success.
TEST_F(FailureTest, RandomDamageIsSurvived) {
  make("-interlace JPEG", "a.jpg");
  make("-colors 20", "a.png");
  make("-colors 20", "a.gif");
  make("-compress LZW", "a.tif");
  make("-monochrome -compress Group4", "g4.tif");
  unsigned seed = 1;
  for (const char* file : {"a.jpg", "a.png", "a.gif", "a.tif", "g4.tif"}) {
    const files::Bytes whole = files::Read(at(file));
    const std::string name = std::string("damaged") + fs::path(file).extension().string();
    for (int trial = 0; trial < 60; ++trial) {
      files::Bytes damaged = whole;
      std::mt19937 random(seed++);
      for (int i = 0; i < 4; ++i) {
        damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
      }
      files::Write(at(name), damaged);
      fs::remove(at("out.pdf"));
      const int code = convert(name);
      EXPECT_EQ(fs::exists(at("out.pdf")), code == ORVO_OK) << file << " " << trial;
    }
  }
}

// A page that cannot be read is not the end of the file.
TEST_F(FailureTest, LaterPageThatIsDamagedLeavesNoShorterDocument) {
  run("convert rose: rose: rose: -compress LZW " + at("in.tif"));
  ASSERT_EQ(convert("in.tif"), ORVO_OK);
  fs::remove(at("out.pdf"));
  const std::string offsets = text("tiffinfo -s " + at("in.tif") + " | grep '0: \\['");
  const std::size_t last = offsets.rfind('[');
  ASSERT_NE(last, std::string::npos) << offsets;
  files::Bytes bytes = files::Read(at("in.tif"));
  const std::size_t strip = std::stoul(offsets.substr(last + 1));
  std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(strip), 400, std::uint8_t{0x5A});
  files::Write(at("in.tif"), bytes);
  expectNothing("in.tif");
}

TEST_F(FailureTest, UnwritableTargets) {
  make("", "in.png");
  fs::create_directory(at("folder.pdf"));
  EXPECT_EQ(convert("in.png", "folder.pdf"), ORVO_ERR_FAILURE);
  EXPECT_EQ(convert("in.png", "missing/x.pdf"), ORVO_ERR_FAILURE);
  if (geteuid() == 0) return;  // may write everywhere
  fs::create_directory(at("closed"));
  fs::permissions(at("closed"), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(convert("in.png", "closed/x.pdf"), ORVO_ERR_FAILURE);
}

// A disk that is full at every stage, by a limit on the length of files.
TEST_F(FailureTest, FullDisk) {
  run("convert rose: rose: rose: -compress None " + at("in.tif"));
  ASSERT_EQ(convert("in.tif"), ORVO_OK);
  const auto whole = static_cast<rlim_t>(fs::file_size(at("out.pdf")));
  fs::remove(at("out.pdf"));
  const std::size_t before = fileCount();
  for (const rlim_t limit : {rlim_t{0}, whole / 4, whole / 2, whole - 600, whole - 1, whole}) {
    const pid_t child = fork();
    if (child == 0) {
      std::signal(SIGXFSZ, SIG_IGN);
      const rlimit most{limit, limit};
      setrlimit(RLIMIT_FSIZE, &most);
      _exit(convert("in.tif"));
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    const bool fits = limit == whole;
    EXPECT_EQ(WEXITSTATUS(status), fits ? ORVO_OK : ORVO_ERR_FAILURE) << limit;
    EXPECT_EQ(fileCount(), before + (fits ? 1 : 0)) << limit;
  }
}

TEST_F(FailureTest, DocumentThatIsNotClosedLeavesNothing) {
  make("-density 50x40 -units PixelsPerInch", "in.png");
  const std::size_t before = fileCount();
  for (const bool close : {false, true}) {
    PdfDocument* const pdf = PDF_new();
    ASSERT_NE(PDF_open_file(pdf, at("out.pdf").c_str()), -1);
    EXPECT_EQ(PDF_open_image_file(pdf, "gif", at("in.png").c_str(), "", 0), -1);
    EXPECT_EQ(PDF_open_image_file(pdf, "bmp", at("in.png").c_str(), "", 0), -1);
    const int image = PDF_open_image_file(pdf, "png", at("in.png").c_str(), "", 0);
    ASSERT_GE(image, 0);
    const auto key = static_cast<float>(image);
    EXPECT_EQ(PDF_get_value(pdf, "resx", key), 50);
    EXPECT_EQ(PDF_get_value(pdf, "resy", key), 40);
    EXPECT_EQ(PDF_get_value(pdf, "imagewidth", key), 70);
    EXPECT_EQ(PDF_get_value(pdf, "imageheight", key), 46);
    EXPECT_EQ(PDF_get_value(pdf, "unknown", key), 0);
    PDF_begin_page(pdf, 70, 46);
    PDF_place_image(pdf, image, 0, 0, 1);
    PDF_close_image(pdf, image);
    EXPECT_EQ(PDF_get_value(pdf, "resx", key), 0);
    // Still unfinished, it cannot be taken for a whole document.
    EXPECT_EQ(fs::file_size(at("out.pdf")), 0U);
    if (close) PDF_close(pdf);
    PDF_delete(pdf);
    EXPECT_EQ(fileCount(), before + (close ? 1 : 0));
  }
  expectSound();
}

// No document at all, and calls out of order.
TEST_F(FailureTest, CallsThatMakeNoSense) {
  PDF_delete(nullptr);
  PDF_close(nullptr);
  PDF_end_page(nullptr);
  EXPECT_EQ(PDF_open_file(nullptr, at("x.pdf").c_str()), -1);
  PdfDocument* const pdf = PDF_new();
  EXPECT_EQ(PDF_open_file(pdf, nullptr), -1);
  EXPECT_EQ(PDF_open_file(pdf, ""), -1);
  EXPECT_EQ(PDF_open_image_file(pdf, "png", nullptr, "", 0), -1);
  EXPECT_EQ(PDF_open_image_file(pdf, nullptr, at("x.png").c_str(), nullptr, 0), -1);
  PDF_set_info(pdf, nullptr, nullptr);
  PDF_begin_page(pdf, 0, 10);
  PDF_place_image(pdf, 7, 0, 0, 1);
  PDF_end_page(pdf);
  PDF_close(pdf);
  PDF_delete(pdf);
  EXPECT_EQ(fileCount(), 0U);
}

}  // namespace
}  // namespace documents
