// Files that are cut, scrambled or lie about their size, and memory that runs out: always a code,
// never a crash, a leak, half a picture or a word on standard error.
#include <chrono>
#include <cstring>
#include <map>

#include "files.h"
#include "platform/fault_injection.h"

namespace {

using files::Bytes;

class Damage : public files::FolderTest {
 protected:
  void SetUp() override {
    blocks_ = PlatformLiveBlocks();
    testing::internal::CaptureStderr();
  }
  void TearDown() override {
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(PlatformLiveBlocks(), blocks_);
    EXPECT_EQ(PlatformHeldLocks(), 0U);
  }

  // Small files of each kind, by name.
  std::map<std::string, Bytes> samples() {
    struct Kind {
      const char* name;
      int format;
      int depth;
    };
    std::map<std::string, Bytes> made;
    for (const Kind& kind :
         {Kind{"8.bmp", kFormatBmp, 8}, Kind{"24.jpg", kFormatJpeg, 24},
          Kind{"8.png", kFormatPng, 8}, Kind{"32.png", kFormatPng, 32},
          Kind{"24.tif", kFormatTiff, 24}, Kind{"8.tif", kFormatTiffCompressed, 8},
          Kind{"1.tif", kFormatTiffCompressed, 1}}) {
      const orvo::OwnedDib image =
          kind.depth == 1 ? pictures::Noise(40, 30, 1, 1) : files::Scene(40, 30, kind.depth);
      EXPECT_EQ(files::Save(image.get(), at(kind.name), kind.format), kModuleSuccess);
      made[kind.name] = files::Read(at(kind.name));
    }
    if (files::HasProgram("convert")) {
      const std::string file = at("progressive.jpg");
      const std::string command = "convert -size 40x30 plasma:red-blue -interlace JPEG " + file;
      EXPECT_EQ(std::system(command.c_str()), 0);
      made["progressive.jpg"] = files::Read(file);
    }
    return made;
  }

  // Every entry that reads the file; gives the code of loading.
  int readAll(const std::string& path) {
    int code = 0;
    const orvo::OwnedDib loaded = files::Load(path, &code);
    EXPECT_EQ(static_cast<bool>(loaded), code == kModuleSuccess);
    LTFILEINFO info{};
    (void)L_FileInfo(path.c_str(), &info, 0, nullptr);
    int thumbnailCode = 0;
    (void)files::Thumbnail(path, {.width = 9, .height = 9, .forceSize = true}, &thumbnailCode);
    return code;
  }

 private:
  std::size_t blocks_ = 0;
};

TEST_F(Damage, cut_files_never_load) {
  for (const auto& [name, whole] : samples()) {
    const std::size_t step = std::max<std::size_t>(whole.size() / 150, 1);
    // All pixels are there without the end mark of PNG and JPEG and the resolution that ends a
    // TIFF.
    const std::size_t tail = name.ends_with(".png")   ? 24
                             : name.ends_with(".jpg") ? 8
                             : name.ends_with(".tif") ? 24
                                                      : 1;
    for (std::size_t length = 0; length < whole.size(); length += step) {
      files::Write(at("cut"), {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
      const int code = readAll(at("cut"));
      if (length + tail < whole.size()) {
        EXPECT_NE(code, kModuleSuccess) << name << " cut at " << length << " of " << whole.size();
      }
    }
  }
}

TEST_F(Damage, scrambled_files_do_no_harm) {
  std::mt19937 random(7);
  for (const auto& [name, whole] : samples()) {
    for (int round = 0; round < 150; ++round) {
      Bytes bytes = whole;
      const std::size_t reach =
          round % 2 == 0 ? std::min<std::size_t>(bytes.size(), 120) : bytes.size();
      for (int i = 0; i <= round % 5; ++i)
        bytes[random() % reach] = static_cast<std::uint8_t>(random());
      files::Write(at("scrambled"), bytes);
      (void)readAll(at("scrambled"));
    }
  }
}

TEST_F(Damage, claims_of_60000_by_60000_pixels_fail_at_once) {
  std::map<std::string, Bytes> all = samples();
  const auto put16 = [&](const char* name, std::size_t offset) {  // big-endian
    all[name][offset] = 60000 >> 8;
    all[name][offset + 1] = 60000 & 255;
  };
  // BMP and TIFF: little-endian measures of 32 bits; PNG's header has a checksum, given with it.
  const std::uint32_t measure = 60000;
  std::memcpy(&all["8.bmp"][18], &measure, 4);
  std::memcpy(&all["8.bmp"][22], &measure, 4);
  const Bytes pngHeader{0, 0, 0xEA, 0x60, 0, 0, 0xEA, 0x60, 8, 0, 0, 0, 0, 0x82, 0x02, 0x09, 0x1D};
  std::copy(pngHeader.begin(), pngHeader.end(), all["8.png"].begin() + 16);
  Bytes& jpeg = all["24.jpg"];
  for (std::size_t i = 2; i + 9 < jpeg.size(); i += 2U + jpeg[i + 2] * 256U + jpeg[i + 3]) {
    if (jpeg[i + 1] != 0xC0) continue;
    put16("24.jpg", i + 5);
    put16("24.jpg", i + 7);
    break;
  }
  for (const char* name : {"24.tif", "8.tif", "1.tif"}) {
    Bytes& tiff = all[name];
    std::uint32_t directory = 0;
    std::memcpy(&directory, &tiff[4], 4);
    for (std::size_t entry = directory + 2; entry + 12 < tiff.size(); entry += 12) {
      const unsigned tag = tiff[entry] | tiff[entry + 1] << 8;
      const std::uint16_t shortMeasure = 60000;
      if (tag == 256 || tag == 257) std::memcpy(&tiff[entry + 8], &shortMeasure, 2);
    }
  }
  for (const char* name : {"8.bmp", "8.png", "24.jpg", "24.tif", "8.tif", "1.tif"}) {
    files::Write(at("huge"), all[name]);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NE(readAll(at("huge")), kModuleSuccess) << name;
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(took, std::chrono::seconds(1)) << name;
  }
}

TEST_F(Damage, failing_memory_is_reported) {
  for (const auto& [name, whole] : samples()) {
    files::Write(at(name), whole);
    bool failed = true;
    for (int n = 1; failed && n < 50; ++n) {
      PlatformFailAllocation(n);
      int code = 0;
      failed = !files::Load(at(name), &code);
      PlatformFailAllocation(0);
      EXPECT_EQ(code, failed ? kModuleNoMemory : kModuleSuccess) << name << n;
      EXPECT_TRUE(failed || n > 1) << name << " loads without memory";
    }
    EXPECT_FALSE(failed);
    for (int n = 1; n < 8; ++n) {
      PlatformFailLock(n);
      (void)readAll(at(name));
      PlatformFailLock(0);
    }
  }
}

TEST_F(Damage, what_is_no_picture_file_has_its_own_code) {
  int code = 0;
  const auto codeOf = [&](const std::string& path) {
    EXPECT_FALSE(files::Load(path, &code));
    LTFILEINFO info{};
    EXPECT_EQ(L_FileInfo(path.c_str(), &info, 0, nullptr), code);
    return code;
  };
  EXPECT_EQ(codeOf(at("absent.png")), kModuleFileNotFound);
  EXPECT_EQ(codeOf(at("no/such/folder.png")), kModuleFileNotFound);
  EXPECT_EQ(codeOf(at("")), kModuleFileNotOpened);
  EXPECT_EQ(codeOf(""), kModuleFileNotOpened);
  EXPECT_EQ(codeOf(std::string(400, 'a') + ".png"), kModuleFileNotOpened);
  files::Write(at("empty.jpg"), {});
  EXPECT_EQ(codeOf(at("empty.jpg")), kFileFormatNotRead);
  const std::string words = "BMXY this is a letter and no picture at all";
  files::Write(at("letter.bmp"), {words.begin(), words.end()});
  EXPECT_EQ(codeOf(at("letter.bmp")), kFileFormatNotRead);
  struct_LEAD_Bitmap bitmap{};
  EXPECT_EQ(L_LoadBitmap(nullptr, &bitmap, 0, 1, nullptr, nullptr), kModuleBadParameter);
  EXPECT_EQ(L_LoadBitmap(at("a").c_str(), nullptr, 0, 1, nullptr, nullptr), kModuleNoBitmap);
}

}  // namespace
