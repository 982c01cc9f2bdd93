#pragma once

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

/// Runs `run` with the kernels of set number `which` of vector instructions among those that this processor has.
template <class Run>
void onTarget(size_t which, const Run& run) {
  const auto choose = [](int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  };
  static const std::vector<int64_t> targets = hwy::SupportedAndGeneratedTargets();
  choose(targets[which % targets.size()]);
  run();
  choose(0);
}

}  // namespace fuzz
