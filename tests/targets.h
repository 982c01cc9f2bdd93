// Runs tests once for each set of vector instructions that this processor has.
#pragma once

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <string>

namespace test {

/// A suite whose tests run with the kernels of one target. The choice holds for the whole process.
class EveryTarget : public testing::TestWithParam<int64_t> {
 protected:
  void SetUp() override { choose(GetParam()); }
  void TearDown() override { choose(0); }

 private:
  static void choose(int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  }
};

inline auto everyTarget() { return testing::ValuesIn(hwy::SupportedAndGeneratedTargets()); }
inline std::string targetName(const testing::TestParamInfo<int64_t>& info) { return hwy::TargetName(info.param); }

}  // namespace test
