// The platform layer: blocks and their handles, modules, paths, strings and rectangles.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "platform/fault_injection.h"
#include "platform/modules.h"

namespace {

namespace fs = std::filesystem;

// Below and from a megabyte on memory comes from different places.
constexpr std::size_t kSizes[] = {0, 1, 100, (1 << 20) - 1, 1 << 20, (5 << 20) + 3};

TEST(Blocks, AreZeroedWritableAndForgottenWhenFreed) {
  const std::size_t blocks = PlatformLiveBlocks();
  for (const std::size_t size : kSizes) {
    for (const unsigned flags : {GMEM_MOVEABLE | GMEM_ZEROINIT, GMEM_FIXED | GMEM_ZEROINIT}) {
      SCOPED_TRACE(size);
      // Used memory that was given back must not shine through.
      void* const dirty = GlobalAlloc(GMEM_FIXED, size);
      std::fill_n(static_cast<char*>(dirty), size, 'x');
      GlobalFree(dirty);
      void* const handle = GlobalAlloc(flags, size);
      auto* const bytes = static_cast<char*>(GlobalLock(handle));
      ASSERT_NE(bytes, nullptr);
      EXPECT_EQ(handle == bytes, (flags & GMEM_MOVEABLE) == 0);
      EXPECT_EQ(GlobalSize(handle), size);
      EXPECT_EQ(std::count(bytes, bytes + size, 0), static_cast<std::ptrdiff_t>(size));
      std::fill_n(bytes, size, 'x');
      EXPECT_EQ(PlatformLiveBlocks(), blocks + 1);
      EXPECT_EQ(LocalFree(handle), handle) << "not of LocalAlloc";
      EXPECT_EQ(GlobalFree(handle), nullptr);
      EXPECT_EQ(GlobalFree(handle), handle) << "only once";
    }
    auto* const working = static_cast<char*>(LocalAlloc(LMEM_ZEROINIT, size));
    EXPECT_EQ(std::count(working, working + size, 0), static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(GlobalSize(working), 0U) << "not of GlobalAlloc";
    EXPECT_EQ(LocalFree(working), nullptr);
  }
  void* const pointer = LocalAlloc(GMEM_MOVEABLE, 8);
  *static_cast<int*>(pointer) = 1;  // working memory is never opaque
  LocalFree(pointer);
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
  for (void* const dead : {static_cast<void*>(nullptr), handle, static_cast<void*>(&onStack),
                           reinterpret_cast<void*>(std::uintptr_t{77777})}) {
    EXPECT_EQ(GlobalLock(dead), nullptr);
    EXPECT_EQ(GlobalUnlock(dead), 0);
    EXPECT_EQ(GlobalSize(dead), 0U);
    EXPECT_EQ(GlobalFree(dead), dead);
    EXPECT_EQ(LocalFree(dead), dead);
  }
  void* const next = GlobalAlloc(GMEM_MOVEABLE, 10);
  EXPECT_NE(next, handle) << "a freed handle is never given out again";
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(next) % 2, 1U) << "nor the address of a fixed block";
  GlobalFree(next);
}

TEST(Blocks, TheNthCallFailsOnce) {
  PlatformFailAllocation(2);
  void* const first = GlobalAlloc(GMEM_MOVEABLE, 1);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(LocalAlloc(LMEM_ZEROINIT, 1), nullptr);
  EXPECT_EQ(LocalFree(LocalAlloc(LMEM_ZEROINIT, 1)), nullptr);
  PlatformFailLock(1);
  EXPECT_EQ(GlobalLock(first), nullptr);
  EXPECT_NE(GlobalLock(first), nullptr);
  GlobalFree(first);
}

TEST(Blocks, AnyThreadMayCall) {
  const std::size_t blocks = PlatformLiveBlocks();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 2000; ++i) {
        void* const handle = GlobalAlloc(GMEM_MOVEABLE, 64);
        auto* const bytes = static_cast<char*>(GlobalLock(handle));
        bytes[0] = static_cast<char>(t);
        EXPECT_EQ(bytes[0], t);
        GlobalFree(handle);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
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
  EXPECT_EQ(GetProcAddress(module, nullptr), nullptr);
  EXPECT_EQ(GetProcAddress(nullptr, "GlobalAlloc"), nullptr);
  EXPECT_TRUE(fs::equivalent(FileNameOf(module), PLATFORM_LIBRARY));
  EXPECT_TRUE(FreeLibrary(module));
  EXPECT_FALSE(FreeLibrary(nullptr));
  for (const char* const path : {"", "/no/such/folder/module.dll", "/tmp"}) {
    EXPECT_EQ(LoadLibraryA(path), nullptr) << path;
  }
  EXPECT_EQ(LoadLibraryA(nullptr), nullptr);

  const std::string program = FileNameOf(nullptr);
  EXPECT_EQ(program, fs::read_symlink("/proc/self/exe").string());
  const auto length = static_cast<unsigned>(program.size());
  for (const unsigned size : {1U, 8U, length, length + 1, length + 2}) {
    std::string cut(size, '#');
    EXPECT_EQ(GetModuleFileNameA(nullptr, cut.data(), size), std::min(size, length));
    EXPECT_EQ(std::string(cut.c_str()), program.substr(0, size - 1));
  }
  char none[1];
  EXPECT_EQ(GetModuleFileNameA(nullptr, none, 0), 0U);
  EXPECT_EQ(GetModuleFileNameA(nullptr, nullptr, 9), 0U);

  // A module's own path stays when the process moves to another directory.
  const int anchor = 0;
  void* const own = PlatformModuleOf(&typeid(anchor));
  const std::string before = FileNameOf(own);
  EXPECT_TRUE(fs::path(before).is_absolute());
  const fs::path folder = fs::current_path();
  fs::current_path("/");
  EXPECT_EQ(FileNameOf(own), before);
  fs::current_path(folder);
  int onStack = 0;
  EXPECT_EQ(PlatformModuleOf(&onStack), nullptr);
}

TEST(Paths, Split) {
  struct Row {
    std::string path, drive, dir, file, ext;
  };
  const std::string n400(400, 'n');
  const Row rows[] = {
      {"c:\\out\\scan.pdf", "c:", "\\out\\", "scan", ".pdf"},
      {"Z:/a.b/photo.jpeg", "Z:", "/a.b/", "photo", ".jpeg"},
      {"a/b\\c/d.e", "", "a/b\\c/", "d", ".e"},
      {"dir.ext/name", "", "dir.ext/", "name", ""},
      {"x.tar.gz", "", "", "x.tar", ".gz"},
      {"dir/", "", "dir/", "", ""},
      {".profile", "", "", "", ".profile"},
      {"name.", "", "", "name", "."},
      {"A:", "A:", "", "", ""},
      {"a:z", "a:", "", "z", ""},
      {"1:x", "", "", "1:x", ""},
      {"", "", "", "", ""},
      {n400 + "/" + n400 + "." + n400, "", n400.substr(0, 255), n400.substr(0, 255),
       "." + n400.substr(0, 254)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    char drive[_MAX_DRIVE], dir[_MAX_DIR], file[_MAX_FNAME], ext[_MAX_EXT];
    _splitpath(row.path.c_str(), drive, dir, file, ext);
    EXPECT_EQ(drive, row.drive);
    EXPECT_EQ(dir, row.dir);
    EXPECT_EQ(file, row.file);
    EXPECT_EQ(ext, row.ext);
  }
  _splitpath(nullptr, nullptr, nullptr, nullptr, nullptr);
}

TEST(Paths, DeleteTakesFilesAndSparesFolders) {
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

const unsigned char* Text(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

TEST(Strings, CompareAndSearch) {
  EXPECT_EQ(_mbsicmp(Text(".JpEg AZ"), Text(".jPeG az")), 0);
  EXPECT_LT(_mbsicmp(Text("abc"), Text("ABD")), 0);
  EXPECT_GT(_mbsicmp(Text("b"), Text("A")), 0);
  EXPECT_LT(_mbsicmp(Text("ab"), Text("abc")), 0);
  EXPECT_NE(_mbsicmp(Text("@["), Text("`[")), 0) << "only letters fold";
  EXPECT_NE(_mbsicmp(Text("["), Text("{")), 0);
  EXPECT_NE(_mbsicmp(Text("\xC3\x84"), Text("\xC3\xA4")), 0) << "only those of ASCII";
  EXPECT_NE(_mbscmp(Text("jpg"), Text("JPG")), 0);
  EXPECT_EQ(_mbscmp(Text("jpg"), Text("jpg")), 0);
  const unsigned char* const path = Text("a.b.c");
  EXPECT_EQ(_mbsrchr(path, '.'), path + 3);
  EXPECT_EQ(_mbsrchr(path, 'x'), nullptr);
}

TEST(Rectangles, EdgesAreExclusiveOnTheRightAndBelow) {
  const auto same = [](const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
  };
  RECT rect{};
  EXPECT_TRUE(SetRect(&rect, 1, 2, 4, 6));
  EXPECT_TRUE(same(rect, {1, 2, 4, 6}));
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) {
      EXPECT_EQ(PtInRect(&rect, POINT{x, y}) != 0, x >= 1 && x < 4 && y >= 2 && y < 6);
    }
  }
  struct Row {
    RECT other, shared;
  };
  const Row rows[] = {{{3, 0, 9, 3}, {3, 2, 4, 3}}, {{0, 5, 2, 9}, {1, 5, 2, 6}},
                      {{2, 3, 3, 4}, {2, 3, 3, 4}}, {{4, 2, 8, 6}, {}},
                      {{1, 6, 4, 9}, {}},           {{2, 3, 2, 9}, {}},
                      {{2, 5, 3, 5}, {}},           {{3, 3, 2, 5}, {}}};
  for (const Row& row : rows) {
    for (const bool swapped : {false, true}) {
      RECT shared{9, 9, 9, 9};
      const int hit =
          IntersectRect(&shared, swapped ? &row.other : &rect, swapped ? &rect : &row.other);
      EXPECT_TRUE(same(shared, row.shared)) << row.other.left << ", " << row.other.top;
      EXPECT_EQ(hit != 0, !same(row.shared, {}));
    }
    EXPECT_EQ(IsRectEmpty(&row.other) != 0,
              row.other.left >= row.other.right || row.other.top >= row.other.bottom);
  }
  RECT copy{};
  EXPECT_TRUE(CopyRect(&copy, &rect));
  EXPECT_TRUE(same(copy, rect));
  EXPECT_FALSE(CopyRect(&copy, nullptr) || CopyRect(nullptr, &rect) ||
               SetRect(nullptr, 1, 1, 2, 2) || PtInRect(nullptr, {1, 1}) ||
               IntersectRect(&copy, &rect, nullptr) || IntersectRect(&copy, nullptr, &rect) ||
               IntersectRect(nullptr, &rect, &rect));
  EXPECT_TRUE(IsRectEmpty(nullptr));
}

}  // namespace
