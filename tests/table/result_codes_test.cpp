#include <gtest/gtest.h>

#include <set>
#include <string>

#include <orvo/result_codes.h>

#include "methods/imaging_result.h"

using namespace orvo;

namespace {

TEST(ResultCodes, EveryCodeHasItsOwnNameAndText) {
  const std::set<int> codes = {0, 1, 2, 4, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20};
  std::set<std::string> names;
  std::set<std::string> texts;
  for (const int code : codes) {
    names.insert(OrvoResultName(code));
    texts.insert(OrvoResultText(code));
  }
  EXPECT_EQ(names.size(), codes.size());
  EXPECT_EQ(texts.size(), codes.size());
  EXPECT_EQ(std::size(kOrvoResults), codes.size());
  EXPECT_STREQ(OrvoResultName(ORVO_ERR_BAD_DEPTH), "ORVO_ERR_BAD_DEPTH");
  for (const int code : {-1, 3, 5, 21}) EXPECT_STREQ(OrvoResultName(code), "unknown");
}

TEST(ResultCodes, ResultsOfPixelFunctions) {
  EXPECT_EQ(MapImagingLibResult(0), ORVO_OK);
  EXPECT_EQ(MapImagingLibResult(1), ORVO_ERR_FAILURE);
  EXPECT_EQ(MapImagingLibResult(2), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(MapImagingLibResult(3), ORVO_ERR_NO_MEMORY);
  EXPECT_EQ(MapImagingLibResult(-7), ORVO_ERR_FAILURE);
}

}  // namespace
