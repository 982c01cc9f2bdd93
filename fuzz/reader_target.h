// What the targets of both readers for grading have in common.
#pragma once

#include <cstring>
#include <memory>
#include <sstream>
#include <string>

#include "fuzz/graded_frame.h"
#include "fuzz/table_checks.h"
#include "fuzz/targets.h"

namespace fuzz {

/// A table as a new one is. Always the same object: to get 3.3 MB from the system and to give them back takes longer
/// than to read a small file. The readers themselves set the lattice to zeros.
inline std::unique_ptr<Lumvane::CubeLut>& newTable() {
  static auto lut = std::make_unique<Lumvane::CubeLut>();
  lut->status = Lumvane::statusUnloaded;
  lut->latticeSize = 0;
  std::memset(lut->fraction, 0, sizeof lut->fraction);
  std::memset(lut->cell, 0, sizeof lut->cell);
  return lut;
}

/// Grades a small frame of all kinds of colours through `lut`, with each set of vector instructions.
inline void gradeOnEveryTarget(std::unique_ptr<Lumvane::CubeLut>& lut) {
  FrameCase test = {19, 3, -84, 80, 40, false, {}};
  for (uint32_t i = 0; i < 251; ++i) test.pixels.push_back(static_cast<uint8_t>(i * 2654435761u >> 24));
  for (size_t i = 0; i < hwy::SupportedAndGeneratedTargets().size(); ++i) {
    onTarget(i, [&] { checkGradedFrame(lut, test); });
  }
}

}  // namespace fuzz
