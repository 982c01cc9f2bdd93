#include "nle/nle_adjust_color_effect.h"

namespace Lumvane {

int NLEAdjustColorEffect::Init(int /*width*/, int /*height*/, int /*reserved*/, int /*saturation*/, int /*intensity*/) {
  return 0;
}

int NLEAdjustColorEffect::Process(const NLEFrameDesc& /*blank*/, const NLEFrameDesc& /*src*/,
                                  const NLEFrameDesc& /*dst*/, int /*width*/, int /*height*/, int /*dstStride*/) {
  return 0;
}

bool NLEAdjustColorEffect::SetParameter(const char* name, NLEFilterValue input) {
  const auto found = params.find(name);
  if (found != params.end()) {
    found->second->SetValue(input);
    return true;
  }
  // Completed before it is inserted, so that the map stays unchanged if memory runs out.
  const auto entry = std::make_shared<NLEFilterParams>();
  entry->type = NLEFilterParams::kPlain;
  entry->key = entry->name = name;
  entry->SetValue(input);
  params.emplace(name, entry);
  return true;
}

bool NLEAdjustColorEffect::GetParameter(const char* name, NLEFilterValue& output) const {
  const auto found = params.find(name);
  if (found == params.end()) return false;
  found->second->GetValue(output);
  return true;
}

}  // namespace Lumvane
