#include "host/files.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <random>
#include <thread>
#include <utility>

#include "host/platform.h"

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#include <csignal>
#endif

namespace host {
namespace {

namespace fs = std::filesystem;

// What is being written, for the handler of signals. On Windows that runs in a thread of its own, while the program
// goes on.
std::atomic<const fs::path::value_type*> unfinishedName = nullptr;
std::atomic<FILE*> unfinishedFile = nullptr;

}  // namespace

Error::Error(ExitCode code, const std::string& failed, const fs::path& path, const std::string& reason)
    : Error(code, failed + " '" + toName(path) + "': " + reason) {}

std::u16string libraryPath(const std::string& name) {
  try {
    return toPath(name).u16string();
  } catch (const std::system_error&) {
    throw Error(ExitCode::kInput, "cannot use", toPath(name), "its name is no UTF-8");
  }
}

std::ifstream openInput(const std::string& failed, const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (file) file.peek();  // a folder can be opened, but not read
  if (!file.is_open() || file.bad()) throw Error(ExitCode::kInput, failed, path, std::strerror(errno));
  file.clear();
  return file;
}

void makeFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw Error(ExitCode::kOutput, "cannot make the folder", folder, error.message());
}

OutputFile::OutputFile(const fs::path& path) : path_(path), target_(path), file_(stdout) {
  if (path == "-") return;
  std::error_code error;
  if (fs::is_symlink(path, error)) {
    target_ = fs::weakly_canonical(path, error);
    if (error) fail(error.message());
  }
  fs::path opened = target_;
  if (!fs::exists(target_, error) || fs::is_regular_file(target_, error)) {
    opened += '.';
    opened += std::to_string(std::random_device()()) + ".part";
    unfinished_ = opened;
    unfinishedName = unfinished_.c_str();
  }
#ifdef _WIN32
  file_ = _wfopen(opened.c_str(), L"wb");
#else
  file_ = std::fopen(opened.c_str(), "wb");
#endif
  unfinishedFile = file_;
  if (!file_) fail(std::strerror(errno));
}

OutputFile::~OutputFile() {
  if (file_ && file_ != stdout) std::fclose(file_);
  std::error_code error;
  if (!unfinished_.empty()) fs::remove(unfinished_, error);
  unfinishedName = nullptr;
}

void OutputFile::write(const void* data, size_t size) {
  if (std::fwrite(data, 1, size, file_) != size) fail(std::strerror(errno));
}

void OutputFile::finish() {
  FILE* const file = std::exchange(file_, nullptr);
  if ((file == stdout ? std::fflush(file) : std::fclose(file)) != 0) fail(std::strerror(errno));
  if (unfinished_.empty()) return;
  std::error_code error;
  fs::rename(unfinished_, target_, error);
  if (error) fail(error.message());
  unfinishedName = nullptr;
  unfinished_.clear();
}

void OutputFile::fail(const std::string& reason) const {
  // What an interrupt on Windows has taken away fails, too, and the program is about to end.
  while (!unfinished_.empty() && !unfinishedName) std::this_thread::yield();
  unfinishedName = nullptr;  // ends with this object
  throw Error(ExitCode::kOutput, "cannot write", path_, reason);
}

#ifdef _WIN32
void removeUnfinishedFileOnSignals() {
  // Called in a thread of its own; the program ends behind it.
  SetConsoleCtrlHandler(
      [](DWORD) -> BOOL {
        if (const wchar_t* const name = unfinishedName.exchange(nullptr)) {
          // Nobody can remove a file that is open. What is being written goes nowhere from here on.
          if (FILE* const file = unfinishedFile) CloseHandle(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file))));
          DeleteFileW(name);
        }
        return FALSE;
      },
      TRUE);
}
#else
void removeUnfinishedFileOnSignals() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    // What the caller has the program ignore, as nohup does, it goes on ignoring.
    if (std::signal(signal, SIG_IGN) == SIG_IGN) continue;
    std::signal(signal, [](int number) {
      if (const char* const name = unfinishedName) unlink(name);
      // Shells tell by the signal that the program was interrupted.
      std::signal(number, SIG_DFL);
      std::raise(number);
    });
  }
}
#endif

}  // namespace host
