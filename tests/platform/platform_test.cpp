// The platform layer: blocks and their handles, modules, paths, strings and rectangles.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <thread>
#include <tuple>
#include <vector>

#include <orvo/dib.h>

#include "platform/fault_injection.h"
#include "platform/modules.h"

namespace {

namespace fs = std::filesystem;

TEST(Blocks, AreZeroedAndForgottenWhenFreed) {
  const std::size_t blocks = PlatformLiveBlocks();
  // Below and from a megabyte on memory comes from different places.
  for (const std::size_t size : {0, 1, 100, (1 << 20) - 1, 1 << 20, (5 << 20) + 3}) {
    for (const unsigned flags : {GMEM_MOVEABLE | GMEM_ZEROINIT, GMEM_FIXED | GMEM_ZEROINIT}) {
      SCOPED_TRACE(size);
      // What used memory held must not shine through.
      void* const dirty = GlobalAlloc(GMEM_FIXED, size);
      std::fill_n(static_cast<char*>(dirty), size, 'x');
      GlobalFree(dirty);
      void* const handle = GlobalAlloc(flags, size);
      auto* const bytes = static_cast<char*>(GlobalLock(handle));
      ASSERT_NE(bytes, nullptr);
      EXPECT_EQ(handle == bytes, (flags & GMEM_MOVEABLE) == 0);
      EXPECT_EQ(GlobalSize(handle), size);
      EXPECT_EQ(static_cast<std::size_t>(std::count(bytes, bytes + size, 0)), size);
      std::fill_n(bytes, size, 'x');
      EXPECT_EQ(PlatformLiveBlocks(), blocks + 1);
      EXPECT_EQ(LocalFree(handle), handle) << "not of LocalAlloc";
      EXPECT_EQ(GlobalFree(handle), nullptr);
      EXPECT_EQ(GlobalFree(handle), handle) << "only once";
    }
    auto* const working = static_cast<char*>(LocalAlloc(LMEM_ZEROINIT | GMEM_MOVEABLE, size));
    EXPECT_EQ(static_cast<std::size_t>(std::count(working, working + size, 0)), size);
    EXPECT_EQ(GlobalFree(working), working) << "not of GlobalAlloc";
    EXPECT_EQ(LocalFree(working), nullptr);
  }
  EXPECT_EQ(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, SIZE_MAX / 2), nullptr);
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
}

TEST(Blocks, LocksCountAndDeadHandlesFail) {
  void* const handle = GlobalAlloc(GMEM_MOVEABLE, 10);
  const void* const first = GlobalLock(handle);
  EXPECT_EQ(GlobalLock(handle), first);
  EXPECT_EQ(PlatformHeldLocks(), 2U);
  EXPECT_NE(GlobalUnlock(handle), 0);
  EXPECT_EQ(GlobalUnlock(handle), 0);
  EXPECT_EQ(GlobalUnlock(handle), 0) << "one too many";
  EXPECT_EQ(PlatformHeldLocks(), 0U);
  GlobalLock(handle);
  GlobalFree(handle);
  EXPECT_EQ(PlatformHeldLocks(), 0U) << "freeing ends the locks";
  int onStack = 0;
  for (void* const dead : std::initializer_list<void*>{nullptr, handle, &onStack}) {
    EXPECT_EQ(GlobalLock(dead), nullptr);
    EXPECT_EQ(GlobalUnlock(dead), 0);
    EXPECT_EQ(GlobalSize(dead), 0U);
    EXPECT_EQ(GlobalFree(dead), dead);
    EXPECT_EQ(LocalFree(dead), dead);
  }
  PlatformFailAllocation(2);
  void* const next = GlobalAlloc(GMEM_MOVEABLE, 10);
  EXPECT_EQ(LocalAlloc(LMEM_ZEROINIT, 1), nullptr) << "the second fails, once";
  EXPECT_EQ(LocalFree(LocalAlloc(LMEM_ZEROINIT, 1)), nullptr);
  EXPECT_NE(next, handle) << "a freed handle is never given out again";
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(next) % 2, 1U) << "nor the address of a fixed block";
  PlatformFailLock(1);
  EXPECT_EQ(GlobalLock(next), nullptr);
  EXPECT_NE(GlobalLock(next), nullptr);
  GlobalFree(next);
}

TEST(Blocks, AnyThreadMayCall) {
  const std::size_t blocks = PlatformLiveBlocks();
  const auto work = [] {
    for (int i = 0; i < 2000; ++i) {
      void* const handle = GlobalAlloc(GMEM_MOVEABLE, 64);
      EXPECT_NE(GlobalLock(handle), nullptr);
      GlobalFree(handle);
    }
  };
  std::thread threads[] = {std::thread(work), std::thread(work), std::thread(work)};
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
}

TEST(Blocks, HoldImagesOfSizesThatFit) {
  for (const auto& [w, h, depth] : std::initializer_list<std::array<int, 3>>{
           {0, 1, 8}, {1, 0, 8}, {1, 1, 0}, {1 << 30, 1 << 30, 64}}) {
    EXPECT_FALSE(orvo::DibLayoutFor(w, h, depth));
  }
  EXPECT_EQ(orvo::DibLayoutFor(9, 3, 4)->totalBytes, 40U + 64 + 3 * 8);
  EXPECT_EQ(orvo::PixelsPerMetre(300), 11811);
  EXPECT_EQ(orvo::DotsPerInch(11811), 300);
  EXPECT_EQ(orvo::PixelsPerMetre(-100000000), -2147483647);
  EXPECT_EQ(orvo::PixelsPerMetre(100000000), 2147483647);
}

std::string FileNameOf(void* module) {
  char path[4096];
  return GetModuleFileNameA(module, path, sizeof path) == 0 ? std::string() : std::string(path);
}

TEST(Modules, LoadLookUpAndKnowTheirPlace) {
  void* const module = LoadLibraryA(PLATFORM_LIBRARY);
  ASSERT_NE(module, nullptr);
  EXPECT_NE(GetProcAddress(module, "GlobalAlloc"), nullptr);
  EXPECT_EQ(GetProcAddress(module, "NoSuchFunction"), nullptr);
  EXPECT_FALSE(GetProcAddress(module, nullptr) || GetProcAddress(nullptr, "GlobalAlloc"));
  EXPECT_TRUE(fs::equivalent(FileNameOf(module), PLATFORM_LIBRARY));
  EXPECT_TRUE(FreeLibrary(module));
  EXPECT_FALSE(FreeLibrary(nullptr));
  for (const char* path : {static_cast<const char*>(nullptr), "", "/no/such/module.dll", "/tmp"}) {
    EXPECT_EQ(LoadLibraryA(path), nullptr);
  }
  const std::string program = FileNameOf(nullptr);
  EXPECT_EQ(program, fs::read_symlink("/proc/self/exe").string());
  const auto length = static_cast<unsigned>(program.size());
  for (const unsigned size : {1U, 8U, length, length + 1, length + 2}) {
    std::string cut(size, '#');
    EXPECT_EQ(GetModuleFileNameA(nullptr, cut.data(), size), std::min(size, length));
    EXPECT_EQ(std::string(cut.c_str()), program.substr(0, size - 1));
  }
  char none[1];
  EXPECT_EQ(GetModuleFileNameA(nullptr, none, 0) + GetModuleFileNameA(nullptr, nullptr, 9), 0U);

  // A module that was loaded by a relative path is known by its own when the process moves on.
  const fs::path before = fs::current_path();
  const fs::path folder = fs::temp_directory_path() / ("orvo_modules_" + std::to_string(getpid()));
  fs::create_directories(folder);
  fs::copy_file(PLATFORM_LIBRARY, folder / "copy.so");
  fs::current_path(folder);
  void* const copy = LoadLibraryA("./copy.so");
  void* const own = PlatformModuleOf(GetProcAddress(copy, "GlobalAlloc"));
  fs::current_path("/");
  EXPECT_TRUE(fs::path(FileNameOf(own)).is_absolute());
  EXPECT_TRUE(fs::equivalent(FileNameOf(own), folder / "copy.so"));
  EXPECT_TRUE(FreeLibrary(copy));
  fs::current_path(before);
  fs::remove_all(folder);
  EXPECT_EQ(PlatformModuleOf(none), nullptr);
}

TEST(Paths, SplitAndDelete) {
  const std::string n(400, 'n');
  const std::vector<std::string> rows[] = {
      {"c:\\out\\scan.pdf", "c:", "\\out\\", "scan", ".pdf"},
      {"Z:/a.b/photo.jpeg", "Z:", "/a.b/", "photo", ".jpeg"},
      {"a/b\\c/d.e", "", "a/b\\c/", "d", ".e"},
      {"dir.ext/name", "", "dir.ext/", "name", ""},
      {"A:x.tar.gz", "A:", "", "x.tar", ".gz"},
      {"z:.profile", "z:", "", "", ".profile"},
      {"name.", "", "", "name", "."},
      {"1:x", "", "", "1:x", ""},
      {"a:", "a:", "", "", ""},
      {"", "", "", "", ""},
      {n + "/" + n + "." + n, "", n.substr(0, 255), n.substr(0, 255), "." + n.substr(0, 254)}};
  for (const std::vector<std::string>& row : rows) {
    char drive[_MAX_DRIVE], dir[_MAX_DIR], file[_MAX_FNAME], ext[_MAX_EXT];
    _splitpath(row[0].c_str(), drive, dir, file, ext);
    EXPECT_EQ((std::vector<std::string>{row[0], drive, dir, file, ext}), row);
  }
  _splitpath(nullptr, nullptr, nullptr, nullptr, nullptr);

  const fs::path folder = fs::temp_directory_path() / ("orvo_files_" + std::to_string(getpid()));
  fs::create_directories(folder / "target.pdf");
  std::ofstream(folder / "file.txt") << "x";
  EXPECT_FALSE(DeleteFileA((folder / "target.pdf").c_str()));
  EXPECT_TRUE(fs::is_directory(folder / "target.pdf"));
  EXPECT_TRUE(DeleteFileA((folder.string() + "\\file.txt").c_str())) << "either separator";
  EXPECT_FALSE(fs::exists(folder / "file.txt"));
  EXPECT_FALSE(DeleteFileA((folder / "file.txt").c_str()) || DeleteFileA(nullptr));
  fs::remove_all(folder);
}

const unsigned char* Text(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

TEST(Strings, CompareAndSearch) {
  // Letters of ASCII fold and nothing else.
  const std::tuple<const char*, const char*, int> rows[] = {
      {".JpEg AZ", ".jPeG az", 0}, {"abc", "ABD", -1}, {"b", "A", 1},
      {"ab", "abc", -1},           {"@", "`", -1},     {"[", "{", -1},
      {"\xC3\x84", "\xC3\xA4", -1}};
  for (const auto& [a, b, order] : rows) {
    const int got = _mbsicmp(Text(a), Text(b));
    EXPECT_EQ((got > 0) - (got < 0), order) << a << b;
    EXPECT_NE(_mbscmp(Text(a), Text(b)), 0);
    EXPECT_EQ(_mbscmp(Text(a), Text(a)), 0);
  }
  const unsigned char* const path = Text("a.b.c");
  EXPECT_EQ(_mbsrchr(path, '.'), path + 3);
  EXPECT_EQ(_mbsrchr(path, 'x'), nullptr);
}

// All rectangles with sides of 0..3, against the points that they hold.
TEST(Rectangles, ShareThePointsThatLieInBoth) {
  const auto at = [](int i) { return RECT{i & 3, i >> 2 & 3, i >> 4 & 3, i >> 6 & 3}; };
  for (int i = 0; i < 256; ++i) {
    const RECT a = at(i);
    for (int j = 0; j < 256; ++j) {
      const RECT b = at(j);
      RECT shared{9, 9, 9, 9};
      const bool meet = IntersectRect(&shared, &a, &b) != 0;
      bool any = false;
      for (int p = 0; p < 16; ++p) {
        const POINT point{p % 4, p / 4};
        const bool inA =
            point.x >= a.left && point.x < a.right && point.y >= a.top && point.y < a.bottom;
        ASSERT_EQ(PtInRect(&a, point) != 0, inA);
        const bool inBoth = inA && PtInRect(&b, point) != 0;
        ASSERT_EQ(PtInRect(&shared, point) != 0, inBoth) << i << ", " << j;
        any = any || inBoth;
      }
      ASSERT_TRUE(meet == any && (IsRectEmpty(&shared) == 0) == any);
      ASSERT_TRUE(any || (shared.left | shared.top | shared.right | shared.bottom) == 0);
    }
  }
  RECT r{0, 0, 1, 1};
  RECT copy{};
  EXPECT_TRUE(SetRect(&r, 1, 2, 3, 4) && CopyRect(&copy, &r) && copy.left == 1 && copy.top == 2 &&
              copy.right == 3 && copy.bottom == 4);
  EXPECT_FALSE(CopyRect(&r, nullptr) || CopyRect(nullptr, &r) || SetRect(nullptr, 1, 1, 2, 2) ||
               PtInRect(nullptr, {1, 1}) || IntersectRect(&r, &r, nullptr) ||
               IntersectRect(&r, nullptr, &r) || IntersectRect(nullptr, &r, &r));
  EXPECT_TRUE(IsRectEmpty(nullptr));
}

}  // namespace
