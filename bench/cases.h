// The groups of benchmark cases.
#pragma once

#include "bench/report.h"

namespace bench {

void lutCases(Report& report);
void whiteBalanceCases(Report& report);
void clarityCases(Report& report);
void hdrCases(Report& report);
void growthCases(Report& report);
void loadCases(Report& report);
void firstCallCases(Report& report);
void memoryCases(Report& report);

}  // namespace bench
