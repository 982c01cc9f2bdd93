// What is compared, by effect.
#pragma once

#include "bench/peers/report.h"

namespace bench {

void lutCases(Report& report);

}  // namespace bench
