// A save reaches its target whole or not at all.
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "files.h"

namespace {

namespace fs = std::filesystem;
using files::AppendPage;
using files::Save;

constexpr int kAllFormats[] = {kFormatBmp, kFormatJpeg, kFormatPng, kFormatTiff,
                               kFormatTiffCompressed};

class Saving : public files::FolderTest {
 protected:
  const files::Bytes old_{'o', 'l', 'd'};
};

// Stops the operation when the percent is reached; counts what it sees.
struct Watcher {
  static inline int stopAt = 0;
  static inline std::vector<int> seen;
  static int call(int percent, void* /*userData*/) {
    seen.push_back(percent);
    return percent >= stopAt ? 16 : 0;
  }
};

class Watched {
 public:
  explicit Watched(int stopAt) {
    Watcher::stopAt = stopAt;
    Watcher::seen.clear();
    L_SetStatusCallBack(Watcher::call, nullptr);
  }
  ~Watched() { L_SetStatusCallBack(nullptr, nullptr); }
  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;
};

constexpr int kNever = 1000;

TEST_F(Saving, full_disk_leaves_the_old_file) {
  const orvo::OwnedDib image = pictures::Noise(300, 300, 24, 1);
  for (const int format : kAllFormats) {
    files::Write(at("a"), old_);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{20000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const int code = Save(image.get(), at("a"), format);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(code, kModuleWriteFailed) << format;
    EXPECT_EQ(files::Read(at("a")), old_);
    EXPECT_EQ(fileCount(), 1U) << "a temporary file is left";
  }
}

TEST_F(Saving, targets_that_cannot_be_files_are_refused) {
  const orvo::OwnedDib image = pictures::Noise(3, 3, 24, 1);
  fs::create_directory(at("folder"));
  EXPECT_EQ(Save(image.get(), at("folder"), kFormatBmp), kModuleFileNotOpened);
  EXPECT_EQ(Save(image.get(), at("absent/a.bmp"), kFormatBmp), kModuleFileNotOpened);
  EXPECT_EQ(Save(image.get(), "/dev/null", kFormatBmp), kModuleFileNotOpened);
  EXPECT_EQ(Save(image.get(), "", kFormatBmp), kModuleFileNotOpened);
  EXPECT_EQ(Save(image.get(), at(std::string(300, 'a')), kFormatBmp), kModuleFileNotOpened);
  constexpr int kNoFormat = 99;
  EXPECT_EQ(Save(image.get(), at("a"), kNoFormat), kFileFormatNotWritten);
  EXPECT_EQ(Save(nullptr, at("a"), kFormatBmp), kModuleNoBitmap);
  EXPECT_EQ(fileCount(), 1U);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Saving, separators_permissions_and_links_are_kept) {
  const orvo::OwnedDib image = pictures::Noise(3, 3, 24, 1);
  fs::create_directory(at("sub"));
  EXPECT_EQ(Save(image.get(), at("sub\\a.bmp"), kFormatBmp), kModuleSuccess);
  fs::permissions(at("sub/a.bmp"), fs::perms{0640});
  fs::create_symlink(at("sub/a.bmp"), at("link.bmp"));
  EXPECT_EQ(Save(image.get(), at("link.bmp"), kFormatPng), kModuleSuccess);
  EXPECT_TRUE(fs::is_symlink(at("link.bmp")));
  EXPECT_EQ(files::Read(at("sub/a.bmp"))[1], 'P');
  EXPECT_EQ(fs::status(at("sub/a.bmp")).permissions(), fs::perms{0640});

  const mode_t mask = umask(027);
  EXPECT_EQ(Save(image.get(), at("new.bmp"), kFormatBmp), kModuleSuccess);
  umask(mask);
  EXPECT_EQ(fs::status(at("new.bmp")).permissions(), fs::perms{0640});
}

TEST_F(Saving, progress_rises_to_100_and_a_stop_leaves_nothing) {
  const orvo::OwnedDib image = files::Scene(900, 700, 24);
  for (const int format : kAllFormats) {
    const auto checkRising = [](const char* what) {
      ASSERT_FALSE(Watcher::seen.empty()) << what;
      for (std::size_t i = 1; i < Watcher::seen.size(); ++i) {
        EXPECT_LT(Watcher::seen[i - 1], Watcher::seen[i]) << what;
      }
      EXPECT_EQ(Watcher::seen.back(), 100) << what;
      EXPECT_GT(Watcher::seen.size(), 5U) << what;
    };
    {
      const Watched watched(kNever);
      EXPECT_EQ(Save(image.get(), at("a"), format), kModuleSuccess);
      checkRising("saving");
    }
    {
      const Watched watched(kNever);
      EXPECT_TRUE(files::Load(at("a")));
      checkRising("loading");
    }
    {
      const Watched watched(kNever);
      EXPECT_EQ(L_FileConvert(at("a").c_str(), at("b").c_str(), format, 0, 0, 8, 0, nullptr,
                              nullptr, nullptr),
                kModuleSuccess);
      checkRising("converting");
    }
    fs::remove(at("b"));
    for (const int stopAt : {0, 50, 100}) {
      const Watched watched(stopAt);
      int code = 0;
      EXPECT_FALSE(files::Load(at("a"), &code));
      EXPECT_EQ(code, kModuleAborted);
      EXPECT_EQ(Save(image.get(), at("b"), format), kModuleAborted);
      EXPECT_EQ(fileCount(), 1U);
    }
  }
}

TEST_F(Saving, pages_are_appended_one_by_one) {
  std::vector<orvo::OwnedDib> pages;
  for (const int depth : {1, 8, 24}) {
    pages.push_back(pictures::Noise(20 + depth, 10, depth, static_cast<unsigned>(depth)));
    ASSERT_EQ(AppendPage(pages.back().get(), at("a.tif"),
                         depth == 8 ? kFormatTiffCompressed : kFormatTiff),
              kModuleSuccess);
  }
  for (int page = 1; page <= 3; ++page) {
    const LTLOADOPTIONS options{sizeof options, page};
    LTFILEINFO info{};
    ASSERT_EQ(L_FileInfo(at("a.tif").c_str(), &info, kInfoUsesOptions, &options), kModuleSuccess);
    EXPECT_EQ(info.pageCount, 3);
    EXPECT_EQ(info.page, page);
    EXPECT_EQ(info.width,
              pictures::Locked(pages[static_cast<std::size_t>(page) - 1].get()).header()->biWidth);
  }
  const LTLOADOPTIONS beyond{sizeof beyond, 4};
  LTFILEINFO info{};
  info.width = 77;
  EXPECT_EQ(L_FileInfo(at("a.tif").c_str(), &info, kInfoUsesOptions, &beyond), kModuleBadParameter);
  const LTLOADOPTIONS shorter{4, 1};
  EXPECT_EQ(L_FileInfo(at("a.tif").c_str(), &info, kInfoUsesOptions, &shorter),
            kModuleBadParameter);
  EXPECT_EQ(info.width, 77);

  const orvo::OwnedDib first = files::Load(at("a.tif"));
  EXPECT_EQ(files::ShownPixels(first.get()), files::ShownPixels(pages[0].get()));
  if (files::HasProgram("convert")) {
    EXPECT_EQ(files::OutputOf("convert '" + at("a.tif") + "[2]' -depth 8 bgr:-"),
              files::ShownPixels(pages[2].get()));
  }
}

TEST_F(Saving, only_a_sound_tiff_takes_a_further_page) {
  const orvo::OwnedDib image = pictures::Noise(9, 9, 24, 1);
  ASSERT_EQ(Save(image.get(), at("a.png"), kFormatPng), kModuleSuccess);
  const files::Bytes png = files::Read(at("a.png"));
  EXPECT_EQ(AppendPage(image.get(), at("a.png")), kModuleBadFile);
  EXPECT_EQ(files::Read(at("a.png")), png);
  EXPECT_EQ(AppendPage(image.get(), at("new.png"), kFormatPng), kFileFormatNotWritten);

  // The only page's link to the next one leads back to itself.
  ASSERT_EQ(Save(image.get(), at("loop.tif"), kFormatTiff), kModuleSuccess);
  files::Bytes loop = files::Read(at("loop.tif"));
  std::uint32_t directory = 0;
  std::memcpy(&directory, &loop[4], 4);
  const std::size_t next = directory + 2 + 12 * std::size_t{loop[directory]};
  std::memcpy(&loop[next], &directory, 4);
  files::Write(at("loop.tif"), loop);
  EXPECT_NE(AppendPage(image.get(), at("loop.tif")), kModuleSuccess);
  EXPECT_EQ(files::Read(at("loop.tif")), loop);
  EXPECT_EQ(fileCount(), 2U);
}

}  // namespace
