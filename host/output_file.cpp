#include "host/output_file.h"

#include <cerrno>
#include <map>
#include <mutex>
#include <system_error>

#include "host/fault.h"
#include "host/paths.h"
#include "host/platform.h"

#ifdef _WIN32
#include <io.h>
#include <process.h>
#include <windows.h>
#else
#include <unistd.h>
#include <csignal>
#include <thread>
#endif

namespace host {
namespace {

namespace fs = std::filesystem;

struct UnfinishedFiles {
  std::mutex mutex;  // the thread that waits for signals removes them, too
  std::map<fs::path, FILE*> files;
};

// Never destroyed, since that thread may outlive main.
UnfinishedFiles& unfinishedFiles() {
  static auto* const files = new UnfinishedFiles;
  return *files;
}

int processId() {
#ifdef _WIN32
  return _getpid();
#else
  return getpid();
#endif
}

}  // namespace

OutputFile::OutputFile(const fs::path& path) : path_(path), target_(path), file_(stdout) {
  if (path == "-") {
    makeBinary(stdout);
    return;
  }
  std::error_code error;
  if (fs::is_symlink(path, error)) {
    target_ = fs::weakly_canonical(path, error);
    if (error) fail(error.value());
  }
  if (!fs::exists(target_, error) || fs::is_regular_file(target_, error)) {
    const std::lock_guard lock(unfinishedFiles().mutex);
    unfinished_ = target_;
    unfinished_ += '.';
    unfinished_ += std::to_string(processId());
    unfinished_ += ".part";
    file_ = openFile(unfinished_, "wb");
    if (file_) unfinishedFiles().files.emplace(unfinished_, file_);
  } else {
    file_ = openFile(target_, "wb");
  }
  if (!file_) fail(errno);
}

OutputFile::~OutputFile() {
  const std::lock_guard lock(unfinishedFiles().mutex);
  if (file_ && file_ != stdout) std::fclose(file_);
  if (!isPlaced()) return;
  std::error_code error;
  if (unfinishedFiles().files.erase(unfinished_) != 0) fs::remove(unfinished_, error);
}

void OutputFile::write(const void* data, size_t size) {
  if (std::fwrite(data, 1, size, file_) != size) fail(errno);
}

void OutputFile::finish() {
  if (std::fflush(file_) != 0) fail(errno);
  FILE* const file = file_;
  file_ = nullptr;
  const std::lock_guard lock(unfinishedFiles().mutex);
  if (file != stdout && std::fclose(file) != 0) fail(errno);
  if (!isPlaced()) return;
  std::error_code error;
  fs::rename(unfinished_, target_, error);
  if (error) fail(error.value());
  unfinishedFiles().files.erase(unfinished_);
}

void OutputFile::fail(int error) const {
  const std::string name = path_ == "-" ? "the standard output" : "'" + toName(path_) + "'";
  throw Fault(ExitCode::kOutput, "cannot write " + name + ": " + std::generic_category().message(error));
}

#ifdef _WIN32
void removeUnfinishedFilesOnSignals() {
  // Called in a thread of its own; the program ends behind it.
  SetConsoleCtrlHandler(
      [](DWORD) -> BOOL {
        unfinishedFiles().mutex.lock();
        std::error_code error;
        for (const auto& [path, file] : unfinishedFiles().files) {
          // Nobody can remove a file that is open. What is being written goes nowhere from here on.
          CloseHandle(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file))));
          fs::remove(path, error);
        }
        return FALSE;
      },
      TRUE);
}
#else
void removeUnfinishedFilesOnSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    struct sigaction action;
    // What the caller has the program ignore, as nohup does, it goes on ignoring.
    if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) sigaddset(&signals, signal);
  }
  // Held back in this thread, and so in all that it starts, the signals come to the one that waits for them. There they
  // find no code interrupted, and files may be removed as anywhere.
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::thread([signals] {
    int signal = 0;
    if (sigwait(&signals, &signal) != 0) return;
    const std::lock_guard lock(unfinishedFiles().mutex);
    std::error_code error;
    for (const auto& [path, file] : unfinishedFiles().files) fs::remove(path, error);
    // Shells tell by the signal that the program was interrupted.
    std::signal(signal, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    raise(signal);
  }).detach();
}
#endif

}  // namespace host
