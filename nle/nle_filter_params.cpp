#include "nle/nle_filter_params.h"

namespace Lumvane {

void NLEFilterParams::SetValue(const NLEFilterValue& input) {
  value = input;
  if (type != kFilePath) return;
  const std::string scheme = "file:/";
  const size_t at = value.text.find(scheme);
  if (at != std::string::npos) value.text.erase(at, scheme.size());
}

void NLEFilterParams::GetValue(NLEFilterValue& output) const {
  output.number = value.number;
  output.text = value.text;
  output.type = type;
}

}  // namespace Lumvane
