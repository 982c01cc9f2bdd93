#pragma once

#include <opencv2/core.hpp>
#include <string>

namespace host {

using Colour = cv::Vec3d;  ///< red, green, blue

/// The transfer function, PQ or else HLG: light in cd/m2 to the signal from 0 to 1, both BT.2020.
Colour hdrSignal(const Colour& light, bool pq);

/// R'G'B' of BT.709 from such a signal.
Colour hdrToBt709(const Colour& signal, bool pq);

/// The text of a .cube file with that conversion, of `size` points per axis.
std::string hdrLut(int size, bool pq);

}  // namespace host
