#pragma once

#include <array>
#include <filesystem>

namespace host {

/// R'G'B' of BT.709 from R'G'B' of BT.2020, all from 0 to 1.
using HdrLook = std::array<double, 3> (*)(const std::array<double, 3>& signal);

std::array<double, 3> hlgToBt709(const std::array<double, 3>& signal);
std::array<double, 3> pqToBt709(const std::array<double, 3>& signal);

/// Writes "HDR_HLG.cube" and "HDR_PQ.cube" of `size` points per axis into a folder, which is made when there is none.
/// Throws a Fault with the file's name when that fails.
void writeHdrLuts(const std::filesystem::path& folder, int size);

/// The transfer functions by themselves, for drawing HDR pictures: light in cd/m2 to the signal from 0 to 1.
double pqSignal(double light);
std::array<double, 3> hlgSignal(const std::array<double, 3>& light);

}  // namespace host
