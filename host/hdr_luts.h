#pragma once

#include <functional>
#include <opencv2/core.hpp>
#include <string>

namespace host {

using Colour = cv::Vec3d;  ///< red, green, blue

/// Applies the PQ or else HLG transfer function: light in cd/m2 to signal from 0 to 1, both BT.2020.
Colour hdrSignal(const Colour& light, bool pq);

/// Converts such a signal to BT.709 R'G'B'.
Colour hdrToBt709(const Colour& signal, bool pq);

/// Returns the text of a .cube file of `size` points per axis; `colourAt` maps input to output, both from 0 to 1.
std::string cubeText(const std::string& title, int size, const std::function<Colour(const Colour&)>& colourAt);

}  // namespace host
