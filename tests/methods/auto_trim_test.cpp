#include <gtest/gtest.h>

#include <vector>

#include <orvo/COrvoCS.h>
#include <orvo/raii.h>

#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace {

bool Same(const RECT& a, const RECT& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

std::string Text(const RECT& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) +
         "," + std::to_string(r.bottom);
}

// The four walks as they are defined, one pixel at a time.
RECT MeasurePlainly(DibHandle handle, int threshold) {
  const pictures::Locked image(handle);
  const orvo::DibLayout shape = image.layout();
  const int w = shape.width;
  const int h = shape.height;
  const int channels = shape.depth / 8;
  const int limit = std::min(230, std::max(25, 255 - threshold));
  const int k = image.header()->biXPelsPerMeter / 2834 * 3;
  int m = 0;
  if (channels == 1) {
    m = w < 10 ? 1 : 10;
    if (m > h) m /= 10;
  }
  int run = 0;
  // Adds a pixel to the run; true when the run is long enough.
  const auto add = [&](int x, int y) {
    bool dark = false;
    for (int c = 0; c < channels; ++c) dark = dark || image.row(y)[x * channels + c] <= limit;
    run = dark ? run + 1 : 0;
    return dark && run >= k;
  };
  const auto inRow = [&](int y) {
    run = 0;
    for (int x = m; x < w - m; ++x) {
      if (add(x, y)) return true;
    }
    return false;
  };
  RECT r{0, 0, 1, 1};
  const auto inColumn = [&](int x) {
    run = 0;
    for (int y = r.top; y < r.bottom; ++y) {
      if (add(x, y)) return true;
    }
    return false;
  };
  for (int y = m; y < h - m; ++y) {
    if (inRow(y)) {
      r.top = y >= k ? y - k : y;
      break;
    }
  }
  for (int y = h - m - 1; y > r.top; --y) {
    if (inRow(y)) {
      r.bottom = y < h - k ? y + k : y;
      break;
    }
  }
  for (int x = m; x < w - m; ++x) {
    if (inColumn(x)) {
      r.left = x >= k ? x - k : x;
      break;
    }
  }
  for (int x = w - m - 1; x > r.left; --x) {
    if (inColumn(x)) {
      r.right = x < w - k ? x + k : x;
      break;
    }
  }
  return r;
}

// A light page with some dark blots and specks.
orvo::OwnedDib Page(int width, int height, int depth, unsigned seed) {
  orvo::OwnedDib page = pictures::Blank(width, height, depth);
  const pictures::Locked image(page.get());
  std::mt19937 random(seed);
  const int bytes = width * depth / 8;
  for (int y = 0; y < height; ++y) {
    for (int i = 0; i < bytes; ++i) {
      image.row(y)[i] = static_cast<std::uint8_t>(225 + random() % 31);
    }
  }
  for (auto blots = random() % 5; blots > 0; --blots) {
    const int top = static_cast<int>(random()) & 0xFF;
    const int left = static_cast<int>(random()) & 0xFF;
    const auto tone = static_cast<std::uint8_t>(random() % 240);
    for (int y = top % height; y < std::min(height, top % height + 1 + top % 9); ++y) {
      for (int i = left % bytes; i < std::min(bytes, left % bytes + 1 + left % 60); ++i) {
        image.row(y)[i] = tone;
      }
    }
  }
  return page;
}

TEST(AutoTrim, MeasuresAsThePlainForm) {
  COrvoCS toolkit;
  unsigned seed = 0;
  for (const int depth : {8, 24}) {
    for (int round = 0; round < 600; ++round) {
      const int width = 1 + static_cast<int>(seed * 7 % 70);
      const int height = 1 + static_cast<int>(seed * 13 % 60);
      const orvo::OwnedDib page = Page(width, height, depth, ++seed);
      const int resolutions[] = {72, 300, 0, 600, 90};
      pictures::Locked(page.get()).header()->biXPelsPerMeter =
          orvo::PixelsPerMetre(resolutions[seed % 5]);
      const int threshold = static_cast<int>(seed * 37 % 256);
      RECT got{9, 9, 9, 9};
      ASSERT_EQ(toolkit.CSGetAutoTrimRect(page.get(), static_cast<std::uint8_t>(threshold), &got),
                ORVO_OK);
      const RECT expected = MeasurePlainly(page.get(), threshold);
      ASSERT_TRUE(Same(got, expected))
          << width << "x" << height << ", " << depth << " bits, threshold " << threshold
          << ": expected " << Text(expected) << ", got " << Text(got);
    }
  }
}

// The search by its own rules over the plain measurement, with the thresholds that it visits.
RECT SearchPlainly(DibHandle page, int first, std::vector<int>& visited) {
  int t = first;
  int step = 10;
  int best = 0;
  bool raised = false;
  bool lowered = false;
  for (;;) {
    visited.push_back(t);
    const RECT r = MeasurePlainly(page, t);
    if (r.right - r.left > 1 && r.bottom - r.top > 1) {
      if (t == first) return r;
      best = t;
      if (lowered) step /= 2;
      if (step == 0) return r;
      t += step;
      raised = true;
      lowered = false;
    } else {
      if (raised) step /= 2;
      if (step == 0) {
        visited.push_back(best);
        return MeasurePlainly(page, best);
      }
      t -= step;
      if (t < 0) {
        const orvo::DibLayout shape = pictures::Locked(page).layout();
        return RECT{0, 0, shape.width, shape.height};
      }
      raised = false;
      lowered = true;
    }
  }
}

TEST(AutoTrim, SearchesTheHighestThresholdThatFinds) {
  const orvo::OwnedInstance toolkit;
  for (unsigned seed = 1; seed <= 80; ++seed) {
    const orvo::OwnedDib page = Page(90, 70, seed % 2 == 0 ? 8 : 24, seed);
    for (const int threshold : {0, 9, 100, 255}) {
      std::vector<int> visited;
      const RECT expected = SearchPlainly(page.get(), threshold, visited);
      RECT got;
      ASSERT_EQ(toolkit->GetAutoTrimRect(page.get(), static_cast<std::uint8_t>(threshold), &got),
                ORVO_OK);
      ASSERT_TRUE(Same(got, expected)) << "seed " << seed << ", threshold " << threshold;
    }
  }

  // A picture that is found at every threshold up to 37 and no higher.
  const orvo::OwnedDib page = pictures::Blank(60, 60, 8);
  const pictures::Locked image(page.get());
  for (int y = 0; y < 60; ++y) std::memset(image.row(y), 255, 60);
  for (int y = 20; y < 40; ++y) std::memset(image.row(y) + 20, 218, 20);
  std::vector<int> visited;
  SearchPlainly(page.get(), 100, visited);
  EXPECT_EQ(visited,
            (std::vector<int>{100, 90, 80, 70, 60, 50, 40, 30, 35, 40, 38, 36, 37, 38, 37}));
}

TEST(AutoTrim, FailuresTouchNoImage) {
  const orvo::OwnedInstance toolkit;
  struct Row {
    const char* name;
    int depth;
    int failAllocation;
    int failLock;
    int code;
  };
  const Row rows[] = {{"4 bits", 4, 0, 0, ORVO_ERR_BAD_DEPTH},
                      {"16 bits", 16, 0, 0, ORVO_ERR_BAD_DEPTH},
                      {"32 bits", 32, 0, 0, ORVO_ERR_BAD_DEPTH},
                      {"1 bit without the kernel module", 1, 0, 0, ORVO_ERR_BAD_DEPTH},
                      {"no memory for the gray copy", 1, 1, 0, ORVO_ERR_NO_MEMORY},
                      {"first lock fails", 24, 0, 1, ORVO_ERR_FAILURE},
                      {"second lock fails", 24, 0, 2, ORVO_ERR_FAILURE},
                      {"lock of the gray copy fails", 1, 0, 4, ORVO_ERR_FAILURE}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    orvo::OwnedDib page = pictures::Noise(40, 40, row.depth, 3);
    const std::vector<std::uint8_t> before = pictures::BytesOf(page.get());
    const std::size_t blocks = PlatformLiveBlocks();
    for (int form = 0; form < 3; ++form) {
      PlatformFailAllocation(row.failAllocation);
      PlatformFailLock(row.failLock);
      RECT rect{5, 5, 5, 5};
      DibHandle result = &rect;
      const int code = form == 0   ? toolkit->GetAutoTrimRect(page.get(), 9, &rect)
                       : form == 1 ? toolkit->AutoTrim(page.get(), &result, 9)
                                   : toolkit->AutoTrimInPlace(page.address(), 9);
      PlatformFailAllocation(0);
      PlatformFailLock(0);
      EXPECT_EQ(code, row.code);
      EXPECT_TRUE(Same(rect, form == 0 ? RECT{0, 0, 1, 1} : RECT{5, 5, 5, 5}));
      EXPECT_EQ(result, &rect) << "left alone";
      EXPECT_EQ(PlatformLiveBlocks(), blocks);
      EXPECT_EQ(PlatformHeldLocks(), 0U);
      EXPECT_EQ(pictures::BytesOf(page.get()), before);
    }
  }
  RECT rect{5, 5, 5, 5};
  EXPECT_EQ(toolkit->GetAutoTrimRect(nullptr, 9, &rect), ORVO_ERR_NULL_IMAGE);
  EXPECT_TRUE(Same(rect, RECT{5, 5, 5, 5}));
}

}  // namespace
