#pragma once

#include <opencv2/core.hpp>

#include "host/y4m.h"

namespace host {

/// Draws a BGRA picture on which a grade can be judged: a sky over skin tones, saturated patches, a smooth and a
/// stepped grey ramp, a sweep of hues, stone with detail at every scale, and a disc that fades to transparent.
cv::Mat drawScene(int width, int height);

/// Draws frame `index` of an HDR test clip, BT.2020, limited range: an evening sky crossed by a sun of 1000 cd/m2, skin
/// tones in shade and light, saturated patches at 100 and 600 cd/m2, and a luminance ramp.
VideoFrame drawHdrFrame(int width, int height, int index, int frames, bool pq);

}  // namespace host
