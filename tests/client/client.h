// The client as a child process in a folder of its own.
#ifndef TESTS_CLIENT_CLIENT_H
#define TESTS_CLIENT_CLIENT_H

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <orvo/raii.h>

using nlohmann::json;
using Names = std::vector<std::string>;
using Color = std::array<int, 3>;  // blue, green and red

struct Outcome {
  int status;          // exit status, -1 when a signal ended the process
  std::string output;  // standard output
  std::string errors;  // standard error
};

// Test and client work in a fresh folder, which is gone after the test.
class ClientTest : public ::testing::Test {
 protected:
  ClientTest();
  ~ClientTest() override;

  // The words stand as in a line of the shell.
  static Outcome run(const std::string& words);
  // The report on the one file of a call that succeeds.
  static json report(const std::string& words);

  // Names in a folder, sorted.
  [[nodiscard]] static Names names(const std::string& folder);
  [[nodiscard]] static std::string bytes(const std::string& name);
  static void write(const std::string& name, const std::string& bytes);

  void save(const std::string& name, const orvo::OwnedDib& picture) const;
  [[nodiscard]] orvo::OwnedDib load(const std::string& name) const;
  // As ColorAt takes it.
  [[nodiscard]] orvo::OwnedDib loadTrueColor(const std::string& name) const;
  orvo::OwnedInstance toolkit_;

 private:
  std::filesystem::path folder_;
};

// A white page of 24 bits with two black blocks.
inline constexpr int kPageHeight = 320;
orvo::OwnedDib Page();

// A drawn face of 24 bits with red pupils.
inline constexpr int kPortraitWidth = 400;
inline constexpr int kPortraitHeight = 500;
inline constexpr int kEyes[2][2] = {{161, 215}, {239, 215}};  // the pupils' middles
orvo::OwnedDib Portrait();

// A pixel of a picture of 24 bits, counted from the top left.
Color ColorAt(const orvo::OwnedDib& picture, int x, int y);

// Left, top, right and bottom: pixels from the top left, right and bottom exclusive.
using Box = std::array<int, 4>;

// Expects frames of three pixels, the outermost `outside` pixels beyond the edge of each box, and
// all else as it was.
void ExpectFramed(const orvo::OwnedDib& before, const orvo::OwnedDib& marked,
                  const std::vector<Box>& boxes, int outside, const Color& color);

#endif  // TESTS_CLIENT_CLIENT_H
