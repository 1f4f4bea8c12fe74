// The client as a child process in a folder of its own.
#ifndef TESTS_CLIENT_CLIENT_H
#define TESTS_CLIENT_CLIENT_H

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

struct Outcome {
  int status;          // exit status, -1 when a signal ended the process
  std::string output;  // standard output
  std::string errors;  // standard error
};

// Runs in a fresh folder, to which relative paths refer; it is gone after the test.
class ClientTest : public ::testing::Test {
 protected:
  ClientTest();
  ~ClientTest() override;

  // The words are passed on as they are.
  [[nodiscard]] Outcome run(const std::vector<std::string>& words) const {
    return runProgram(CLIENT_PROGRAM, words);
  }
  [[nodiscard]] Outcome runProgram(const std::string& program,
                                   const std::vector<std::string>& words) const;
  [[nodiscard]] std::string path(const std::string& name) const {
    return (folder_ / name).string();
  }
  // Names in a folder, sorted.
  [[nodiscard]] std::vector<std::string> names(const std::string& folder) const;
  [[nodiscard]] std::string bytes(const std::string& name) const;
  void write(const std::string& name, const std::string& bytes) const;

 private:
  std::filesystem::path folder_;
};

#endif  // TESTS_CLIENT_CLIENT_H
