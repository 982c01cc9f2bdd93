#pragma once

#include <stdexcept>
#include <string>

namespace host {

/// What the program ends with, as its help tells.
enum class ExitCode { kOther = 1, kUsage = 2, kInput = 3, kOutput = 4 };

/// What a person can mend. The text names the file and what is wrong with it.
class Fault : public std::runtime_error {
 public:
  Fault(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace host
