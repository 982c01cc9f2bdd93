// What the plug-ins have in common: each is one Effect, which entry_points.cpp offers to its host.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace plugins {

struct Parameter {
  const char* name;
  const char* explanation;
  bool isText;
  double start;  ///< of a number: its value in a new instance, 0 to 1
};

constexpr int kMostParameters = 3;

/// What a host may show of a plug-in. Plain ASCII, since not every host decodes more.
struct Description {
  const char* name;
  const char* explanation;
  int parameterCount;
  Parameter parameters[kMostParameters];
};

/// The values of an instance's parameters, each in the member of its kind.
struct Values {
  double numbers[kMostParameters] = {};  ///< 0 to 1
  std::string texts[kMostParameters];
};

/// Two pictures of packed BGRA rows, which do not overlap, or are one.
struct Frame {
  const uint8_t* src;
  uint8_t* dst;
  int32_t width, height;

  size_t bytes() const { return size_t{4} * static_cast<size_t>(width) * static_cast<size_t>(height); }
};

class Effect {
 public:
  virtual ~Effect() = default;

  /// Called by one thread at a time. False or an exception: nothing of use was written, and the picture is to pass
  /// through unchanged.
  virtual bool render(const Values& values, const Frame& frame) = 0;
};

// Each plug-in defines these two.
extern const Description kDescription;

/// Takes next to no time and no memory for frames: hosts make instances just to list a plug-in.
std::unique_ptr<Effect> makeEffect();

}  // namespace plugins
