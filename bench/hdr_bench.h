#pragma once

namespace bench {

/// The first CreateVideoAdjustColor of the process, which loads two files of 65 points per axis; call it once.
double millisecondsOfFirstHdrCreate();

}  // namespace bench
