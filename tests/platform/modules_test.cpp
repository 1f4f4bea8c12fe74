#include "platform/modules.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

std::string FileNameOf(void* module) {
  char path[4096];
  return GetModuleFileNameA(module, path, sizeof path) == 0 ? std::string() : std::string(path);
}

TEST(Modules, LoadLookUpUnload) {
  void* const module = LoadLibraryA(PLATFORM_LIBRARY);
  ASSERT_NE(module, nullptr);
  EXPECT_NE(GetProcAddress(module, "GlobalAlloc"), nullptr);
  EXPECT_EQ(GetProcAddress(module, "NoSuchFunction"), nullptr);
  EXPECT_TRUE(fs::equivalent(FileNameOf(module), PLATFORM_LIBRARY));
  EXPECT_TRUE(FreeLibrary(module));
  for (const char* const path : {"", "/no/such/folder/module.dll", "/tmp"}) {
    EXPECT_EQ(LoadLibraryA(path), nullptr) << path;
  }
  EXPECT_EQ(LoadLibraryA(nullptr), nullptr);
  EXPECT_FALSE(FreeLibrary(nullptr));
}

TEST(Modules, NullMeansTheMainProgramAndLongPathsAreCut) {
  const std::string program = FileNameOf(nullptr);
  EXPECT_EQ(program, fs::read_symlink("/proc/self/exe").string());
  char cut[8];
  EXPECT_EQ(GetModuleFileNameA(nullptr, cut, sizeof cut), sizeof cut);
  EXPECT_EQ(std::string(cut), program.substr(0, sizeof cut - 1));
  EXPECT_EQ(GetModuleFileNameA(nullptr, cut, 0), 0U);
}

// A module that was loaded by a relative path keeps its own path when the process moves on.
TEST(Modules, OwnPathSurvivesAChangeOfDirectory) {
  const int anchor = 0;
  void* const own = PlatformModuleOf(&typeid(anchor));
  ASSERT_NE(own, nullptr);
  const std::string before = FileNameOf(own);
  EXPECT_TRUE(fs::path(before).is_absolute());
  const fs::path folder = fs::current_path();
  fs::current_path("/");
  EXPECT_EQ(FileNameOf(own), before);
  fs::current_path(folder);
}

}  // namespace
