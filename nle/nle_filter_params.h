#pragma once

#include <cstdint>
#include <string>

namespace Lumvane {

/// The value of a parameter on its way in or out. A whole number stands in the low half of `number`, as a 32-bit int.
struct NLEFilterValue {
  uint64_t number = 0;
  std::string text;
  int type = 0;  ///< 0 on the way in; the parameter's type on the way out
};

/// One named parameter of an effect.
class NLEFilterParams {
 public:
  static constexpr int kPlain = 5;
  static constexpr int kFilePath = 6;  ///< the text is a path, and loses a "file:/" in it

  std::string key;
  std::string name;  ///< the same text as `key`
  int type;          ///< kPlain or kFilePath; whoever makes the record sets it
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
