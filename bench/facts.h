#pragma once

#include "bench/report.h"

namespace bench {

/// What the times hold for: processor, compiler, versions of the libraries. `commit` may be empty.
void stateFacts(Report& report, const std::string& commit);

}  // namespace bench
