#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <orvo/raii.h>

namespace {

TEST(Names, ImageFilesAreToldByExtension) {
  const orvo::OwnedInstance toolkit;
  for (const char* const name : {"a.bmp", "A.TIFF", "b.jpeg", "b.JPEG", "c.dcx", "x/y.z/photo.Jpe",
                                 "c:\\scans\\p.exf", ".png", "two.dots.tga", "q.jtf"}) {
    EXPECT_EQ(toolkit->IsImageFileName(name), 1) << name;
  }
  for (const char* const name : {"a.gif", "noextension", "", "dir.bmp/name", "a.bmp ", "a.bmpx",
                                 "bmp", "a.pdf", "a.jpg.", "a.eps"}) {
    EXPECT_EQ(toolkit->IsImageFileName(name), 0) << name;
  }
  EXPECT_EQ(toolkit->IsImageFileName(nullptr), 0);
  EXPECT_EQ(toolkit->IsImageFileName(("x." + std::string(1000, 'b')).c_str()), 0);
}

struct SizeRow {
  const char* name;
  bool withBuffer;
  std::uint32_t size;
  int code;
};

TEST(Names, ExtensionsAreCopiedOutInTwoCalls) {
  const orvo::OwnedInstance toolkit;
  const SizeRow rows[] = {{"size asked for", false, 0, ORVO_ERR_BUFFER_TOO_SMALL},
                          {"one byte short", true, 66, ORVO_ERR_BUFFER_TOO_SMALL},
                          {"no buffer", false, 67, ORVO_ERR_BUFFER_TOO_SMALL},
                          {"exact", true, 67, ORVO_OK},
                          {"room to spare", true, 1000, ORVO_OK}};
  for (const SizeRow& row : rows) {
    SCOPED_TRACE(row.name);
    std::string buffer(1000, '#');
    int count = 0;
    std::uint32_t size = row.size;
    EXPECT_EQ(toolkit->GetFileExtensions(&count, row.withBuffer ? buffer.data() : nullptr, &size),
              row.code);
    EXPECT_EQ(count, 16);
    EXPECT_EQ(size, 67U);
    if (row.code != ORVO_OK) {
      EXPECT_EQ(buffer, std::string(1000, '#')) << "untouched";
      continue;
    }
    std::vector<std::string> names;
    for (const char* name = buffer.c_str(); *name != '\0'; name += names.back().size() + 1) {
      names.emplace_back(name);
    }
    const std::vector<std::string> expected = {"BMP", "TIF", "TIFF", "JPG", "JPE", "JPEG",
                                               "CMP", "PCX", "PSD",  "PNG", "RAS", "PCD",
                                               "FPX", "WMF", "TGA",  "PCT"};
    EXPECT_EQ(names, expected);
    EXPECT_EQ(buffer[66], '\0');
    EXPECT_EQ(buffer[67], '#');
  }
  int count = 0;
  EXPECT_EQ(toolkit->GetFileExtensions(&count, nullptr, nullptr), ORVO_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(count, 16);
  EXPECT_EQ(toolkit->GetFileExtensions(nullptr, nullptr, nullptr), ORVO_ERR_BUFFER_TOO_SMALL);
}

}  // namespace
