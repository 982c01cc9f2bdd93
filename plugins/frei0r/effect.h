// The interface between the plug-ins: each implements one Effect, which entry_points.cpp exposes to the host.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace plugins {

struct Parameter {
  const char* name;
  const char* explanation;
  bool isText;
  double initial;  ///< default value of a number, 0 to 1
};

constexpr int kMaxParameters = 3;

/// What hosts show about a plug-in. Plain ASCII, since not every host decodes UTF-8.
struct Description {
  const char* name;
  const char* explanation;
  int parameterCount;
  Parameter parameters[kMaxParameters];
};

/// The parameter values of an instance, each in the array for its type.
struct Values {
  double numbers[kMaxParameters] = {};  ///< 0 to 1
  std::string texts[kMaxParameters];
};

/// Two pictures of packed BGRA rows, either disjoint or the same buffer.
struct Frame {
  const uint8_t* src;
  uint8_t* dst;
  int32_t width, height;

  size_t bytes() const { return size_t{4} * static_cast<size_t>(width) * static_cast<size_t>(height); }
};

class Effect {
 public:
  virtual ~Effect() = default;

  /// Renders one frame; called by one thread at a time. If it returns false or throws, the output is invalid and the
  /// host gets the picture unchanged.
  virtual bool render(const Values& values, const Frame& frame) = 0;
};

// Defined by each plug-in.
extern const Description kDescription;

/// Creates an effect. Must be cheap and allocate no frames: hosts create instances just to list a plug-in.
std::unique_ptr<Effect> makeEffect();

}  // namespace plugins
