#pragma once

#include <memory>
#include <opencv2/core.hpp>

#include "clarity/clarity_pyramid.h"
#include "clarity/hsv_kernels.h"
#include "nle/nle_adjust_color_effect.h"

namespace Lumvane {

/// The kernels that process frames, by default the fastest for this processor.
struct ClarityKernels {
  HsvKernels hsv = hsvKernels();
  DetailKernels details = detailKernels();
  PyramidKernels pyramid = pyramidKernels();
};

/// The clarity effect: see CreateNLEPureCClarity. Its parameters "saturation" and "intensity" are integers, stored
/// unchanged; a missing one counts as 100.
class NLEPureCClarity : public NLEAdjustColorEffect {
 public:
  using NLEAdjustColorEffect::NLEAdjustColorEffect;

  int width = 0;  ///< the size for which `levels` was computed
  int height = 0;
  int levels = 0;          ///< pyramid levels, also for frames of another size; 0 counts as 1
  ClarityPyramid pyramid;  ///< of the current frame's value, from 0 to 1

  ~NLEPureCClarity() override = default;

  /// Always returns 0.
  int Init(int frameWidth, int frameHeight, int reserved, int saturation, int intensity) override;

  /// Returns 0, or 1 with the destination unchanged for a missing buffer, an empty frame, or a stride above 0 and below
  /// the bytes of a row.
  int Process(const NLEFrameDesc& blank, const NLEFrameDesc& src, const NLEFrameDesc& dst, int frameWidth,
              int frameHeight, int dstStride) override;

 private:
  int percentage(const char* name) const;
};

/// Renders one BGRA frame, src and dst of one size: converts it to hue, saturation and value, scales the saturation,
/// raises the details of the value plane, blends it with the original plane and converts back. Hue and alpha stay.
///
/// saturation  -100 to 100, clamped: the saturation is multiplied by 0.85 to 1.15
/// intensity   0 to 100, clamped: the share of the raised value plane
/// Returns 0, or 1 with dst unchanged if either frame is empty.
int clarityPipeline(NLEPureCClarity& effect, const cv::Mat& src, cv::Mat& dst, int saturation, int intensity,
                    const ClarityKernels& kernels = {});

}  // namespace Lumvane
