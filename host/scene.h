#pragma once

#include <opencv2/core.hpp>

namespace host {

/// Draws a BGRA picture on which the effect of a grade can be judged: a sky over skin tones, saturated patches, a grey
/// ramp with steps, a sweep of hues, stone with detail at every scale, and a disc that fades to transparent.
cv::Mat drawScene(int width, int height);

}  // namespace host
