// A plug-in as a host holds it: loaded from its file, and known by nothing but its exports.
#pragma once

#include <dlfcn.h>
#include <inttypes.h>

#include <stdexcept>
#include <string>

extern "C" {
#include <frei0r.h>
}

namespace test {

class LoadedPlugin {
 public:
  explicit LoadedPlugin(const std::string& name)
      : library_(dlopen((PLUGIN_FOLDER "/" + name + ".so").c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!library_) throw std::runtime_error(dlerror());
    load(init, "f0r_init");
    load(deinit, "f0r_deinit");
    load(info, "f0r_get_plugin_info");
    load(paramInfo, "f0r_get_param_info");
    load(construct, "f0r_construct");
    load(destruct, "f0r_destruct");
    load(set, "f0r_set_param_value");
    load(get, "f0r_get_param_value");
    load(update, "f0r_update");
    init();
  }
  ~LoadedPlugin() {
    deinit();
    dlclose(library_);
  }
  LoadedPlugin(const LoadedPlugin&) = delete;

  decltype(&f0r_init) init;
  decltype(&f0r_deinit) deinit;
  decltype(&f0r_get_plugin_info) info;
  decltype(&f0r_get_param_info) paramInfo;
  decltype(&f0r_construct) construct;
  decltype(&f0r_destruct) destruct;
  decltype(&f0r_set_param_value) set;
  decltype(&f0r_get_param_value) get;
  decltype(&f0r_update) update;

 private:
  template <class Function>
  void load(Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(library_, name));
    if (!function) throw std::runtime_error(dlerror());
  }

  void* library_;
};

/// An instance of a plug-in.
class Instance {
 public:
  Instance(const LoadedPlugin& plugin, unsigned width, unsigned height)
      : plugin_(plugin), handle_(plugin.construct(width, height)) {
    if (!handle_) throw std::runtime_error("not constructed");
  }
  ~Instance() { plugin_.destruct(handle_); }
  Instance(const Instance&) = delete;

  void set(int index, double value) { plugin_.set(handle_, &value, index); }
  void set(int index, std::string text) {
    f0r_param_string pointer = text.data();
    plugin_.set(handle_, &pointer, index);
    text.assign(text.size(), '?');  // the plug-in has to have its own copy
  }
  double number(int index) {
    double value = -1.0;
    plugin_.get(handle_, &value, index);
    return value;
  }
  std::string text(int index) {
    f0r_param_string pointer = nullptr;
    plugin_.get(handle_, &pointer, index);
    return pointer;
  }
  void update(const uint8_t* src, uint8_t* dst) {
    plugin_.update(handle_, 0.0, reinterpret_cast<const uint32_t*>(src), reinterpret_cast<uint32_t*>(dst));
  }

 private:
  const LoadedPlugin& plugin_;
  f0r_instance_t handle_;
};

}  // namespace test
