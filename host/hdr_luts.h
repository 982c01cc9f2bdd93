#pragma once

#include <functional>
#include <opencv2/core.hpp>
#include <string>

namespace host {

using Colour = cv::Vec3d;  ///< red, green, blue

/// The transfer function, PQ or else HLG: light in cd/m2 to the signal from 0 to 1, both BT.2020.
Colour hdrSignal(const Colour& light, bool pq);

/// R'G'B' of BT.709 from such a signal.
Colour hdrToBt709(const Colour& signal, bool pq);

/// The text of a .cube file of `size` points per axis; `colourAt` gives the result for an input, both from 0 to 1.
std::string cubeText(const std::string& title, int size, const std::function<Colour(const Colour&)>& colourAt);

}  // namespace host
