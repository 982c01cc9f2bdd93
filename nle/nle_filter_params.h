#pragma once

#include <cstdint>
#include <string>

namespace Lumvane {

/// The value of a parameter, passed in or out. An integer is in the low half of `number`, as a 32-bit int.
struct NLEFilterValue {
  uint64_t number = 0;
  std::string text;
  int type = 0;  ///< 0 when passed in; the parameter's type when passed out
};

/// One named parameter of an effect.
class NLEFilterParams {
 public:
  static constexpr int kPlain = 5;
  static constexpr int kFilePath = 6;  ///< the text is a path, from which "file:/" is removed

  std::string key;
  std::string name;  ///< the same text as `key`
  int type;          ///< kPlain or kFilePath; set by the creator
  bool flag = true;
  NLEFilterValue auxValues[3];
  NLEFilterValue value;

  void SetValue(const NLEFilterValue& input) {
    value = input;
    if (type != kFilePath) return;
    const std::string scheme = "file:/";
    const size_t at = value.text.find(scheme);
    if (at != std::string::npos) value.text.erase(at, scheme.size());
  }

  void GetValue(NLEFilterValue& output) const {
    output.number = value.number;
    output.text = value.text;
    output.type = type;
  }
};

}  // namespace Lumvane
