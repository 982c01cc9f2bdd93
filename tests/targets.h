// Runs tests once for each set of vector instructions that this processor has.
#pragma once

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <string>

namespace test {

/// Kernels run with the instructions of this target from now on, in the whole process; 0 for the best there are.
inline void useTarget(int64_t target) {
  hwy::SetSupportedTargetsForTest(target);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

/// A suite whose tests run with the kernels of one target.
class EveryTarget : public testing::TestWithParam<int64_t> {
 protected:
  void SetUp() override { useTarget(GetParam()); }
  void TearDown() override { useTarget(0); }
};

inline auto everyTarget() { return testing::ValuesIn(hwy::SupportedAndGeneratedTargets()); }
inline std::string targetName(const testing::TestParamInfo<int64_t>& info) { return hwy::TargetName(info.param); }

}  // namespace test
