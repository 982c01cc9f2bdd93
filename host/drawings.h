#pragma once

#include <opencv2/core.hpp>

#include "host/y4m.h"

namespace host {

/// Draws a BGRA picture on which the effect of a grade can be judged: a sky over skin tones, saturated patches, a grey
/// ramp with steps, a sweep of hues, stone with detail at every scale, and a disc that fades to transparent.
cv::Mat drawScene(int width, int height);

/// Draws frame number `index` of a test clip with HDR light, BT.2020, limited range: an evening sky whose sun, at 1000
/// cd/m2, wanders across, skin tones in shade and light, saturated patches at 100 and 600 cd/m2, and a ramp of light.
VideoFrame drawHdrFrame(int width, int height, int index, int frames, bool pq);

}  // namespace host
