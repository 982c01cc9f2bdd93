// Runs tests once for each vector instruction set of this processor.
#pragma once

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <string>

namespace test {

/// Makes kernels use this target's instructions in the whole process; 0 means the best available.
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
