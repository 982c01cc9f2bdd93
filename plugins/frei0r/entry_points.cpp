// The functions that a frei0r host looks up by name, the same for every plug-in.
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

// Hosts may call update on one instance from several threads, MLT for one slice of the picture each. The effects serve
// one thread at a time and use several of their own, so the calls queue up here.
struct Instance {
  std::mutex mutex;
  int32_t width, height;
  Values values;
  std::unique_ptr<plugins::Effect> effect = plugins::makeEffect();

  Instance(int32_t w, int32_t h) : width(w), height(h) {
    for (int i = 0; i < kDescription.parameterCount; ++i) values.numbers[i] = kDescription.parameters[i].start;
  }
};

// A number of bytes that the effects can count as a stride.
bool isTakenSize(unsigned width, unsigned height) {
  constexpr unsigned kMost = std::numeric_limits<int32_t>::max();
  return width > 0 && height > 0 && width <= kMost / 4 && height <= kMost;
}

bool isParameter(int index) { return index >= 0 && index < kDescription.parameterCount; }

// What is no number counts as 0.
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
  if (!isTakenSize(width, height)) return nullptr;
  return new Instance(static_cast<int32_t>(width), static_cast<int32_t>(height));
} catch (const std::bad_alloc&) {
  return nullptr;
}

void f0r_destruct(f0r_instance_t instance) { delete static_cast<Instance*>(instance); }

// A text that finds no memory leaves the one before it.
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

// A text stays the instance's own, and lives until the next one is set.
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
  } catch (...) {  // hosts are written in C, and have no way to hear of it
  }
  if (!rendered) std::memmove(out, in, frame.bytes());
}

}  // extern "C"
