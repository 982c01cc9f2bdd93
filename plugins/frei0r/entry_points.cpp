// The entry points that frei0r hosts look up by name, the same for every plug-in.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>

#include "effect.h"

extern "C" {
#include <frei0r.h>
}

namespace {

using plugins::kDescription;
using plugins::Values;

// Hosts may call update on one instance from several threads, as MLT does for slices of the picture. The effects are
// not reentrant and use threads themselves, so calls are serialised here.
struct Instance {
  std::mutex mutex;
  int32_t width, height;
  Values values;
  std::unique_ptr<plugins::Effect> effect = plugins::makeEffect();

  Instance(int32_t w, int32_t h) : width(w), height(h) {
    for (int i = 0; i < kDescription.parameterCount; ++i) values.numbers[i] = kDescription.parameters[i].initial;
  }
};

// Returns whether the height and the row size in bytes fit the effects' 32-bit arguments.
bool isSupportedSize(unsigned width, unsigned height) {
  constexpr unsigned kMax = std::numeric_limits<int32_t>::max();
  return width > 0 && height > 0 && width <= kMax / 4 && height <= kMax;
}

bool isParameter(int index) { return index >= 0 && index < kDescription.parameterCount; }

// NaN becomes 0.
double clampedNumber(double value) { return value > 0.0 ? std::min(value, 1.0) : 0.0; }

}  // namespace

extern "C" {

int f0r_init() { return 1; }

void f0r_deinit() {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
  info->name = kDescription.name;
  info->author = "Lumvane";
  info->plugin_type = F0R_PLUGIN_TYPE_FILTER;
  info->color_model = F0R_COLOR_MODEL_BGRA8888;
  info->frei0r_version = FREI0R_MAJOR_VERSION;
  info->major_version = 0;
  info->minor_version = 1;
  info->num_params = kDescription.parameterCount;
  info->explanation = kDescription.explanation;
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
  if (!isParameter(index)) return;
  const plugins::Parameter& parameter = kDescription.parameters[index];
  info->name = parameter.name;
  info->type = parameter.isText ? F0R_PARAM_STRING : F0R_PARAM_DOUBLE;
  info->explanation = parameter.explanation;
}

f0r_instance_t f0r_construct(unsigned width, unsigned height) try {
  if (!isSupportedSize(width, height)) return nullptr;
  return new Instance(static_cast<int32_t>(width), static_cast<int32_t>(height));
} catch (const std::bad_alloc&) {
  return nullptr;
}

void f0r_destruct(f0r_instance_t instance) { delete static_cast<Instance*>(instance); }

// If memory runs out, the previous text is kept.
void f0r_set_param_value(f0r_instance_t handle, f0r_param_t value, int index) try {
  if (!isParameter(index)) return;
  auto& instance = *static_cast<Instance*>(handle);
  const std::scoped_lock lock(instance.mutex);
  if (!kDescription.parameters[index].isText) {
    instance.values.numbers[index] = clampedNumber(*static_cast<const double*>(value));
  } else {
    const char* text = *static_cast<const f0r_param_string*>(value);
    instance.values.texts[index] = text ? text : "";
  }
} catch (const std::bad_alloc&) {
}

// The instance owns the returned text, which is valid until the next one is set.
void f0r_get_param_value(f0r_instance_t handle, f0r_param_t value, int index) {
  if (!isParameter(index)) return;
  auto& instance = *static_cast<Instance*>(handle);
  const std::scoped_lock lock(instance.mutex);
  if (kDescription.parameters[index].isText) {
    *static_cast<f0r_param_string*>(value) = instance.values.texts[index].data();
  } else {
    *static_cast<double*>(value) = instance.values.numbers[index];
  }
}

void f0r_update(f0r_instance_t handle, double /*time*/, const uint32_t* in, uint32_t* out) {
  auto& instance = *static_cast<Instance*>(handle);
  const std::scoped_lock lock(instance.mutex);
  const plugins::Frame frame{reinterpret_cast<const uint8_t*>(in), reinterpret_cast<uint8_t*>(out), instance.width,
                             instance.height};
  bool rendered = false;
  try {
    rendered = instance.effect->render(instance.values, frame);
  } catch (...) {  // must not reach the host, which is C, and the API has no error code
  }
  if (!rendered) std::memmove(out, in, frame.bytes());
}

}  // extern "C"
