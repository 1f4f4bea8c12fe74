#include "progress.h"

#include <algorithm>
#include <csignal>
#include <cstdio>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include <orvo/result_codes.h>

#include "messages.h"

namespace client {
namespace {

constexpr int kBarWidth = 30;  // characters
constexpr int kWhole = 100;    // percent

volatile std::sig_atomic_t interruption = 0;

void OnInterrupt(int signal) {
  interruption = signal;
  std::signal(signal, SIG_DFL);
}

bool StandardErrorIsTerminal() {
#if defined(_WIN32)
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(STDERR_FILENO) != 0;
#endif
}

// The bar in plain characters, without colour.
struct Bar {
  bool visible = StandardErrorIsTerminal();
  std::string label;
  std::size_t drawn = 0;  // characters on the terminal's line
  int percent = -1;       // what they show

  void draw(int now) {
    if (!visible || now == percent) return;
    percent = now;
    const int filled = now * kBarWidth / kWhole;
    std::string line = label + " [" + std::string(static_cast<std::size_t>(filled), '#') +
                       std::string(static_cast<std::size_t>(kBarWidth - filled), '.') + "] " +
                       std::to_string(now) + " %";
    const std::size_t length = line.size();
    if (length < drawn) line.append(drawn - length, ' ');
    std::fprintf(stderr, "\r%s", line.c_str());
    std::fflush(stderr);
    drawn = length;
  }

  void clear() {
    if (drawn == 0) return;
    std::fprintf(stderr, "\r%s\r", std::string(drawn, ' ').c_str());
    std::fflush(stderr);
    drawn = 0;
  }
};

Bar& TheBar() {
  static Bar bar;
  return bar;
}

}  // namespace

void CatchInterrupts() {
  std::signal(SIGINT, OnInterrupt);
  std::signal(SIGTERM, OnInterrupt);
#if !defined(_WIN32)
  std::signal(SIGHUP, OnInterrupt);
  // A file beyond the limit of sizes fails like one on a full disk.
  std::signal(SIGXFSZ, SIG_IGN);
#endif
}

bool Interrupted() {
  return interruption != 0;
}

int InterruptingSignal() {
  return interruption;
}

void BeginStep(const std::string& file, const std::string& step) {
  Bar& bar = TheBar();
  bar.label = Printable(file + ": " + step);
  bar.percent = -1;
  bar.draw(0);
}

int ReportProgress(int percent, void* /*unused*/) {
  TheBar().draw(std::clamp(percent, 0, kWhole));
  return Interrupted() ? ORVO_ERR_CANCELLED : ORVO_OK;
}

void ClearProgress() {
  TheBar().clear();
}

}  // namespace client
