#pragma once

#include "bench/report.h"

namespace bench {

/// The setup of the measurements: processor, compiler, library versions. `commit` may be empty.
void stateFacts(Report& report, const std::string& commit);

}  // namespace bench
