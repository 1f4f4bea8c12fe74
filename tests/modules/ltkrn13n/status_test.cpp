#include "common/status.h"

#include "common/kernel_services.h"
#include "kernel_fixture.h"

namespace {

std::vector<int> seen;
int Record(int percent, void* /*userData*/) {
  seen.push_back(percent);
  return 0;
}
int Stop(int /*percent*/, void* /*userData*/) {
  return 16;
}

class StatusTest : public kernel::KernelTest {
 protected:
  StatusTest() {
    seen.clear();
    L_SetStatusCallBack(Record, nullptr);
  }
  ~StatusTest() override { L_SetStatusCallBack(nullptr, nullptr); }
};

void RunOperation(int steps) {
  modules::Progress progress(static_cast<std::uint64_t>(steps));
  for (int i = 0; i <= steps; ++i) ASSERT_TRUE(progress.report(static_cast<std::uint64_t>(i)));
}

TEST_F(StatusTest, one_callback_is_installed_at_a_time) {
  EXPECT_TRUE(KernelHasStatusCallback());
  EXPECT_TRUE(KernelReportStatus(17));
  EXPECT_EQ(L_SetStatusCallBack(Stop, nullptr), Record);
  EXPECT_FALSE(KernelReportStatus(5));
  EXPECT_EQ(L_SetStatusCallBack(nullptr, nullptr), Stop);
  EXPECT_FALSE(KernelHasStatusCallback());
  EXPECT_TRUE(KernelReportStatus(5));
  EXPECT_EQ(seen, std::vector<int>{17});
}

TEST_F(StatusTest, stages_make_one_rising_scale_without_repeats) {
  for (int round = 0; round < 2; ++round) {
    seen.clear();
    {
      const modules::StatusShare first(0, 50);
      RunOperation(4);
      RunOperation(2);  // a second operation in the same stage shows nothing twice
    }
    {
      const modules::StatusShare second(50, 50);
      RunOperation(2);
    }
    EXPECT_EQ(seen, (std::vector<int>{0, 12, 25, 37, 50, 75, 100}));
  }
  seen.clear();
  RunOperation(2);
  RunOperation(1);
  EXPECT_EQ(seen, (std::vector<int>{0, 50, 100, 0, 100}));
}

TEST_F(StatusTest, version_tells_the_codecs_that_were_registered) {
  LTVERSIONINFO info{};
  EXPECT_EQ(L_VersionInfo(nullptr), kModuleBadParameter);
  info.size = sizeof info - 1;
  EXPECT_EQ(L_VersionInfo(&info), kModuleBadParameter);
  info.size = sizeof info;
  KernelRegisterCodecs("codec 1.2, other 3");
  ASSERT_EQ(L_VersionInfo(&info), kModuleSuccess);
  EXPECT_STREQ(info.codecs, "codec 1.2, other 3");
  EXPECT_STRNE(info.product, "");
  EXPECT_STRNE(info.version, "");
  KernelRegisterCodecs(std::string(1000, 'x').c_str());
  ASSERT_EQ(L_VersionInfo(&info), kModuleSuccess);
  EXPECT_EQ(std::string(info.codecs), std::string(sizeof info.codecs - 1, 'x'));
  KernelRegisterCodecs(nullptr);
  ASSERT_EQ(L_VersionInfo(&info), kModuleSuccess);
  EXPECT_STREQ(info.codecs, "");
}

}  // namespace
