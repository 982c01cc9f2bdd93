#include "lut/interpolation_tables.h"

#include <cmath>

namespace Lumvane {

void fillInterpolationTables(int32_t latticeSize, float (&fraction)[256], int32_t (&cell)[256]) {
  const float step = 255.0f / static_cast<float>(latticeSize - 1);
  for (int v = 0; v < 256; ++v) {
    const float x = static_cast<float>(v) / step;
    cell[v] = static_cast<int32_t>(std::floor(x));
    fraction[v] = x - static_cast<float>(cell[v]);
  }
}

}  // namespace Lumvane
