#pragma once

#include "bench/report.h"

namespace bench {

/// Reports the test setup: processor, compiler, library versions, load. `commit` may be empty.
void stateFacts(Report& report, const std::string& commit);

}  // namespace bench
