#include <algorithm>

#include "pictures/psd.h"

namespace modules {
namespace {

constexpr std::size_t kMostInRun = 128;
constexpr std::size_t kWorthARun = 3;  // shorter ones cost less among bytes kept as they are

using Bytes = std::span<const std::uint8_t>;

std::size_t EqualBytes(Bytes row) {
  const auto* const end = row.data() + std::min(row.size(), kMostInRun);
  const auto* const other =
      std::find_if(row.data(), end, [&](std::uint8_t value) { return value != row[0]; });
  return static_cast<std::size_t>(other - row.data());
}

// Bytes until the next worthwhile run.
std::size_t PlainBytes(Bytes row) {
  std::size_t count = 0;
  while (count < std::min(row.size(), kMostInRun)) {
    const std::size_t equal = EqualBytes(row.subspan(count));
    if (equal >= kWorthARun) break;
    count += equal;
  }
  return std::min(count, kMostInRun);
}

}  // namespace

void PackRuns(std::span<const std::uint8_t> row, std::vector<std::uint8_t>& runs) {
  while (!row.empty()) {
    const std::size_t equal = EqualBytes(row);
    const bool isRun = equal >= kWorthARun;
    const std::size_t count = isRun ? equal : PlainBytes(row);
    runs.push_back(static_cast<std::uint8_t>(isRun ? 257 - count : count - 1));
    const Bytes kept = row.first(isRun ? 1 : count);
    runs.insert(runs.end(), kept.begin(), kept.end());
    row = row.subspan(count);
  }
}

bool UnpackRuns(std::span<const std::uint8_t> runs, std::span<std::uint8_t> row) {
  while (!runs.empty()) {
    const std::size_t code = runs[0];
    runs = runs.subspan(1);
    if (code == kMostInRun) continue;
    const bool isRun = code > kMostInRun;
    const std::size_t count = isRun ? 257 - code : code + 1;
    const std::size_t stored = isRun ? 1 : count;
    if (stored > runs.size() || count > row.size()) return false;
    if (isRun) {
      std::fill_n(row.begin(), count, runs[0]);
    } else {
      std::copy_n(runs.begin(), count, row.begin());
    }
    runs = runs.subspan(stored);
    row = row.subspan(count);
  }
  return row.empty();
}

}  // namespace modules
