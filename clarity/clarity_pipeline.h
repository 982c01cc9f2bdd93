#pragma once

#include <opencv2/core.hpp>

#include "clarity/detail_kernels.h"
#include "clarity/hsv_kernels.h"

namespace Lumvane {

class NLEPureCClarity;

/// The kernels that frames go through: the fastest on this processor, unless told otherwise.
struct ClarityKernels {
  const HsvKernels& hsv = hsvKernels();
  const DetailKernels& details = detailKernels();
};

/// Renders one frame, BGRA, src and dst of one size: decodes it into hue, saturation and value, scales the saturation,
/// raises the detail of the value plane, blends that with the plain one, and encodes it again. Hue and alpha stay.
///
/// saturation  -100 to 100, clamped: the saturation is multiplied by 0.85 to 1.15
/// intensity   0 to 100, clamped: the share of the raised value plane
/// Returns 0, or 1 with dst untouched when either frame is empty.
int clarityPipeline(NLEPureCClarity& effect, const cv::Mat& src, cv::Mat& dst, int saturation, int intensity,
                    const ClarityKernels& kernels = {});

}  // namespace Lumvane
