#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <utility>

#include "nle/nle_filter_params.h"

namespace Lumvane {

/// A frame as an entry point passes it to an effect; non-owning, valid during the call.
struct NLEFrameDesc {
  uint8_t* data = nullptr;
  int width = 0;
  int height = 0;
  int stride = 0;  ///< bytes from row to row, as passed by the host
};

/// The base class of effects that store their settings as named parameters. It does nothing itself; a derived class
/// overrides Init, Process and the destructor. An object must be used by one thread at a time.
class NLEAdjustColorEffect {
 public:
  /// `context` is kept alive as long as the effect, but not used; it may be empty.
  explicit NLEAdjustColorEffect(std::shared_ptr<void> context) : sharedContext(std::move(context)) {}
  NLEAdjustColorEffect(const NLEAdjustColorEffect&) = delete;
  NLEAdjustColorEffect& operator=(const NLEAdjustColorEffect&) = delete;

  cv::Mat attachedMat;
  std::shared_ptr<void> sharedContext;
  std::map<std::string, std::shared_ptr<NLEFilterParams>> params;

  virtual ~NLEAdjustColorEffect() = default;
  virtual int ReservedInt() { return 0; }

  /// Stores the settings. Returns 0 for success; any other value makes the creation of the effect fail.
  virtual int Init(int width, int height, int reserved, int saturation, int intensity);

  /// Renders src into dst. Returns 0 for success, any other value if the frame was refused.
  virtual int Process(const NLEFrameDesc& blank, const NLEFrameDesc& src, const NLEFrameDesc& dst, int width,
                      int height, int dstStride);
  virtual bool ReservedFlag() { return false; }

  /// Keeps a matrix header over the pixels of `input`.
  virtual void SetAttachedMat(const cv::Mat& input) { attachedMat = input; }
  virtual void ReservedNotify() {}
  virtual std::pair<uint64_t, uint64_t> ReservedPair() { return {0, 0}; }

  /// Sets the parameter `name`, creating it if necessary. Always returns true.
  bool SetParameter(const char* name, NLEFilterValue input);

  /// Reads the parameter `name`. Returns false, with `output` unchanged, if there is none.
  bool GetParameter(const char* name, NLEFilterValue& output) const;
};

}  // namespace Lumvane
