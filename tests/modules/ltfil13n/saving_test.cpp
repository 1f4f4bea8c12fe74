// A save reaches its target whole or not at all; a file that is damaged gives a code, and neither
// leaves anything behind.
#include <sys/stat.h>

#include <map>

#include "files.h"

namespace {

namespace fs = std::filesystem;
using rig::Bytes;
using rig::FileTest;
using rig::OwnedDib;
using rig::Picture;
using rig::Shown;

TEST_F(FileTest, a_full_disk_leaves_the_old_file) {
  const OwnedDib image = Picture({24, false}, 300, 300);
  for (const auto& [name, format] : rig::kFormats) {
    ASSERT_EQ(save(image, "whole", format), kModuleSuccess);
    const std::size_t size = read("whole").size();
    fs::remove(at("whole"));
    for (const std::size_t limit : {std::size_t{300}, std::size_t{700}, size / 2, size - 1}) {
      write("a", {'o', 'l', 'd'});
      const int code = inSpaceOf(limit, [&] { return save(image, "a", format); });
      EXPECT_EQ(code, kModuleWriteFailed) << name << " at " << limit << " of " << size;
      EXPECT_EQ(read("a"), (Bytes{'o', 'l', 'd'}));
      EXPECT_EQ(fileCount(), 1U) << "a temporary file is left";
    }
  }
}

TEST_F(FileTest, targets_that_cannot_be_files_are_refused) {
  const OwnedDib image = Picture({24, false}, 3, 3);
  fs::create_directory(at("folder"));
  for (const char* const target : {"folder", "absent/a.bmp", "../../../../../../dev/null"}) {
    EXPECT_EQ(save(image, target, kFormatBmp), kModuleFileNotOpened) << target;
  }
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ(save(image, std::string(300, 'a'), kFormatBmp), kModuleFileNotOpened);
  EXPECT_EQ(save(image, "a", 99), kFileFormatNotWritten);
  EXPECT_EQ(save(image, "a", kFormatPng, 0, kSaveAppendsPage), kFileFormatNotWritten);
  EXPECT_EQ(save(OwnedDib(), "a", kFormatBmp), kModuleNoBitmap);
  EXPECT_EQ(save(Picture({8, true}, 32768, 1), "a", kFormatPcx), kFileFormatNotWritten);
  EXPECT_EQ(save(Picture({1, true}, 65501, 1), "a", kFormatJpeg), kFileFormatNotWritten);
  EXPECT_EQ(save(Picture({1, true}, 30001, 1), "a", kFormatPsd), kFileFormatNotWritten);
  EXPECT_EQ(L_SaveBitmap("", nullptr, kFormatBmp, 0, 0, nullptr), kModuleNoBitmap);
  EXPECT_EQ(fileCount(), 1U);
  EXPECT_EQ(save(image, "a", kFormatTiff, 0, 4), kModuleSuccess) << "only all of 6 appends";
}

TEST_F(FileTest, separators_permissions_and_links_are_kept) {
  const OwnedDib image = Picture({24, false}, 3, 3);
  fs::create_directory(at("sub"));
  EXPECT_EQ(save(image, "sub\\a.bmp", kFormatBmp), kModuleSuccess);
  fs::permissions(at("sub/a.bmp"), fs::perms{0640});
  fs::create_symlink(at("sub/a.bmp"), at("link.bmp"));
  EXPECT_EQ(save(image, "link.bmp", kFormatPng), kModuleSuccess);
  EXPECT_TRUE(fs::is_symlink(at("link.bmp")));
  EXPECT_EQ(read("sub/a.bmp")[1], 'P');
  EXPECT_EQ(fs::status(at("sub/a.bmp")).permissions(), fs::perms{0640});
  const mode_t mask = umask(027);
  EXPECT_EQ(save(image, "new.bmp", kFormatBmp), kModuleSuccess);
  umask(mask);
  EXPECT_EQ(fs::status(at("new.bmp")).permissions(), fs::perms{0640});
}

TEST_F(FileTest, progress_rises_to_100_and_a_stop_leaves_nothing) {
  const OwnedDib image = Picture({24, false}, 400, 200);
  for (const auto& [file, number] : rig::kFormats) {
    const std::string name = file;
    const int format = number;
    const std::pair<std::string, std::function<int()>> works[] = {
        {name, [&] { return save(image, name, format); }},
        {name, [&] { return save(image, name, format, 0, 0, 8); }},
        {"b", [&] { return convert(name, "b", format, 90, 80, 8); }},
        {"", [&] { return load(name, 4), code_; }}};
    for (const auto& [made, work] : works) {
      for (const int stopAt : {0, 50, 100, 1000}) {
        SCOPED_TRACE(testing::Message() << format << " to " << made << ", stop at " << stopAt);
        if (!made.empty()) fs::remove(at(made));
        const std::size_t files = fileCount();
        const rig::Watch watch(stopAt);
        const int code = work();
        watch.check(code);
        const bool rises = format == kFormatJpeg || (made.empty() && format == kFormatBmp);
        EXPECT_GT(watch.seen().size(), rises && stopAt > 100 ? 20U : 0U);
        EXPECT_EQ(fileCount(), files + (code == kModuleSuccess && !made.empty() ? 1 : 0));
      }
    }
    fs::remove(at("b"));
    fs::remove(at(name));
  }
}

TEST_F(FileTest, quality_orders_sizes_and_has_a_default) {
  const OwnedDib image = Picture({24, false}, 64, 64);
  const auto bytesAt = [&](int quality) {
    EXPECT_EQ(save(image, "a.jpg", kFormatJpeg, quality), kModuleSuccess);
    return read("a.jpg");
  };
  EXPECT_LT(bytesAt(1).size(), bytesAt(50).size());
  EXPECT_LT(bytesAt(89).size() * 5 / 4, bytesAt(90).size()) << "full colour from 90 on";
  EXPECT_LT(bytesAt(90).size(), bytesAt(100).size());
  for (const auto& [given, meant] : {std::pair{0, 90}, {-5, 90}, {101, 100}}) {
    EXPECT_EQ(bytesAt(given), bytesAt(meant));
  }
  EXPECT_EQ(save(pictures::Blank(1000, 100, 24), "a.psd", kFormatPsd), kModuleSuccess);
  EXPECT_LT(read("a.psd").size(), 7000U) << "runs shorten flat pictures";
}

TEST_F(FileTest, pages_are_appended_to_a_sound_tiff_alone) {
  OwnedDib pages[3];
  constexpr int kDepths[] = {1, 8, 24};
  for (int page = 1; page <= 3; ++page) {
    const int depth = kDepths[page - 1];
    pages[page - 1] = Picture({depth, true}, 20 + depth, 10);
    EXPECT_EQ(save(pages[page - 1], "a.tif", depth == 8 ? kFormatTiffCompressed : kFormatTiff, 0,
                   kSaveAppendsPage),
              kModuleSuccess);
    const LTFILEINFO told = info("a.tif", page);
    EXPECT_EQ(std::tuple(told.pageCount, told.page, told.width),
              std::tuple(page, page, 20 + depth));
  }
  EXPECT_EQ(Shown(load("a.tif")), Shown(pages[0]));
  EXPECT_EQ(run("convert 'a.tif[2]' -depth 8 rgb:-"), Shown(pages[2]));
  for (const int wrong : {4, 0, -1}) {
    EXPECT_EQ(info("a.tif", wrong).width, 0);
    EXPECT_EQ(code_, kModuleBadParameter);
  }
  LTFILEINFO told{};
  const LTLOADOPTIONS shorter{4, 1};
  EXPECT_EQ(L_FileInfo(at("a.tif").c_str(), &told, kInfoUsesOptions, &shorter),
            kModuleBadParameter);
  EXPECT_EQ(L_FileInfo(at("a.tif").c_str(), &told, kInfoUsesOptions, nullptr), kModuleBadParameter);
  EXPECT_EQ(L_FileInfo(at("a.tif").c_str(), nullptr, 0, nullptr), kModuleBadParameter);

  ASSERT_EQ(save(pages[2], "a.png", kFormatPng), kModuleSuccess);
  const Bytes png = read("a.png");
  EXPECT_EQ(save(pages[2], "a.png", kFormatTiff, 0, kSaveAppendsPage), kModuleBadFile);
  EXPECT_EQ(read("a.png"), png);
  // The only page's link to the next one leads back to itself.
  ASSERT_EQ(save(pages[2], "loop.tif", kFormatTiff), kModuleSuccess);
  Bytes loop = read("loop.tif");
  std::uint32_t directory = 0;
  std::memcpy(&directory, &loop[4], 4);
  std::memcpy(&loop[directory + 2 + 12 * std::size_t{loop[directory]}], &directory, 4);
  write("loop.tif", loop);
  EXPECT_NE(save(pages[2], "loop.tif", kFormatTiff, 0, kSaveAppendsPage), kModuleSuccess);
  EXPECT_EQ(read("loop.tif"), loop);
  EXPECT_EQ(fileCount(), 3U);
}

class Damage : public FileTest {
 protected:
  // A small file of each kind, by name.
  std::map<std::string, Bytes> samples() {
    std::map<std::string, Bytes> made;
    for (const auto& [file, format] : rig::kFormats) {
      for (const rig::Kind kind : {rig::Kind{1, true}, {8, true}, {24, false}}) {
        const std::string name = std::to_string(kind.depth) + file;
        if (save(Picture(kind, 30, 20), name, format) == kModuleSuccess) made[name] = read(name);
      }
    }
    return made;
  }
};

TEST_F(Damage, files_that_are_cut_show_nothing) {
  for (const auto& [name, whole] : samples()) {
    const std::string extension = name.substr(name.find('.'));
    // All pixels are there without the end mark of PNG and JPEG and the resolution that ends a
    // TIFF; rare formats may load in part.
    const std::size_t tail = extension == ".png" || extension == ".tif"   ? 24
                             : extension == ".jpg"                        ? 8
                             : extension == ".bmp" || extension == ".psd" ? 1
                                                                          : whole.size() * 4 / 5;
    const std::size_t step = std::max<std::size_t>(whole.size() / 50, 1);
    for (std::size_t length = 0; length + tail < whole.size(); length += step) {
      const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
      EXPECT_FALSE(load("cut" + extension, cut))
          << name << " at " << length << " of " << whole.size();
    }
  }
}

// More codes in a table than there are bytes: the library gives up by itself.
TEST_F(Damage, tables_that_cannot_be_are_told) {
  Bytes jpeg = samples().at("24a.jpg");
  const std::array<std::uint8_t, 2> mark{0xFF, 0xC4};
  const auto table = std::search(jpeg.begin(), jpeg.end(), mark.begin(), mark.end());
  ASSERT_NE(table, jpeg.end());
  std::fill_n(table + 5, 16, std::uint8_t{0xFF});
  EXPECT_FALSE(load("a.jpg", jpeg));
  EXPECT_EQ(code_, kFileFormatDamaged);
}

TEST_F(Damage, failing_memory_is_reported) {
  for (const auto& [name, whole] : samples()) {
    struct_LEAD_Bitmap bitmap{};
    rig::FailEach(
        [&, path = at(name)] {
          return L_LoadBitmap(path.c_str(), &bitmap, 0, 1, nullptr, nullptr);
        },
        [&](int code) {
          EXPECT_EQ(bitmap.block != nullptr, code == kModuleSuccess);
          L_FreeBitmap(&bitmap);
        });
  }
  EXPECT_EQ(fileCount(), samples().size());
}

TEST_F(Damage, what_is_no_picture_file_has_its_own_code) {
  const auto codeOf = [&](const std::string& name) {
    (void)info(name);
    const int described = code_;
    EXPECT_FALSE(load(name));
    EXPECT_EQ(code_, described) << name;
    return code_;
  };
  EXPECT_EQ(codeOf("absent.png"), kModuleFileNotFound);
  EXPECT_EQ(codeOf("no/such/folder.png"), kModuleFileNotFound);
  EXPECT_EQ(codeOf(""), kModuleFileNotOpened);
  EXPECT_EQ(codeOf(std::string(400, 'a')), kModuleFileNotOpened);
  // A name never opens another decoder, nor one that starts programs.
  const auto textFile = [&](const std::string& name, std::string content) {
    content.resize(4000, ' ');
    write(name, {content.begin(), content.end()});
    return codeOf(name);
  };
  EXPECT_EQ(textFile("letter.bmp", "BMXY this is a letter"), kFileFormatNotRead);
  for (const char* const name :
       {"a.cmp", "a.fpx", "a.exf", "a.eps", "a.mvg", "a.tga", "a.wpg", "a.wmf"}) {
    EXPECT_EQ(textFile(name, "push graphic-context image over 0,0 0,0 '/etc/passwd' pop"),
              kFileFormatNotRead)
        << name;
  }
  for (const char* const name : {"a.pct", "a.pcd"}) {
    EXPECT_EQ(textFile(name, "<svg xmlns='http://www.w3.org/2000/svg'/>"), kFileFormatDamaged);
  }
  write("empty.jpg", {});
  EXPECT_EQ(codeOf("empty.jpg"), kFileFormatNotRead);
  ASSERT_EQ(save(Picture({24, false}, 9, 9), "png.tga", kFormatPng), kModuleSuccess);
  EXPECT_TRUE(load("png.tga")) << "a PNG all the same";
  struct_LEAD_Bitmap bitmap{};
  EXPECT_EQ(L_LoadBitmap(nullptr, &bitmap, 0, 1, nullptr, nullptr), kModuleBadParameter);
  EXPECT_EQ(L_LoadBitmap(at("a").c_str(), nullptr, 0, 1, nullptr, nullptr), kModuleNoBitmap);
}

}  // namespace
