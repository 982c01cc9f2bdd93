#include "host/files.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <new>
#include <opencv2/core.hpp>
#include <random>
#include <thread>
#include <utility>

#include "host/platform.h"

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#define fsync _commit
#else
#include <unistd.h>
#include <csignal>
#endif

namespace host {
namespace {

namespace fs = std::filesystem;

// The file being written, for the signal handler. On Windows the handler runs in a separate thread while the program
// continues.
std::atomic<const fs::path::value_type*> unfinishedName = nullptr;
std::atomic<FILE*> unfinishedFile = nullptr;

// Creates a file; fails if the name exists, so that no link planted under it is followed.
FILE* openNew(const fs::path& path, int mode) {
#ifdef _WIN32
  const int descriptor = _wopen(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, mode);
#else
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
#endif
  return descriptor < 0 ? nullptr : fdopen(descriptor, "wb");
}

// Copies owner and permissions from the file to be replaced. Returns false if renaming must not replace that file: the
// owner could not be set, or the file has further hard links.
bool copyOwnerAndMode(FILE* file, const fs::path& replaced) {
#ifndef _WIN32
  struct stat before, now;
  if (stat(replaced.c_str(), &before) != 0 || fstat(fileno(file), &now) != 0) return true;
  const bool owned = before.st_uid == now.st_uid && before.st_gid == now.st_gid;
  return (owned || fchown(fileno(file), before.st_uid, before.st_gid) == 0) &&
         fchmod(fileno(file), before.st_mode & 07777) == 0 && before.st_nlink == 1;
#else
  static_cast<void>(file), static_cast<void>(replaced);
  return true;
#endif
}

std::error_code lastError() { return {errno, std::generic_category()}; }

}  // namespace

Error::Error(ExitCode code, const std::string& failed, const fs::path& path, const std::string& reason)
    : Error(code, failed + " '" + toName(path) + "': " + reason) {}

std::u16string libraryPath(const std::string& name) {
  try {
    return toPath(name).u16string();
  } catch (const std::system_error&) {
    throw Error(ExitCode::kInput, "cannot use", toPath(name), "its name is not valid UTF-8");
  }
}

bool isOutOfMemory(const std::exception& error) {
  const auto* const cvError = dynamic_cast<const cv::Exception*>(&error);
  return dynamic_cast<const std::bad_alloc*>(&error) || (cvError && cvError->code == cv::Error::StsNoMem);
}

std::string printable(std::string text) {
  const auto isControl = [](unsigned char byte) { return (byte < 0x20 && byte != '\n') || byte == 0x7f; };
  std::replace_if(text.begin(), text.end(), isControl, '?');
  for (size_t at = 0; (at = text.find('\xc2', at)) < text.size() - 1; ++at) {  // U+0080 to U+009F
    if (static_cast<unsigned char>(text[at + 1]) < 0xa0) text.replace(at, 2, "?");
  }
  return text;
}

void note(const std::string& text) { std::cerr << "lumvane-host: " << printable(text) << '\n'; }

std::ifstream openInput(const std::string& failed, const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (file) file.peek();  // a directory can be opened but not read
  if (!file.is_open() || file.bad()) throw Error(ExitCode::kInput, failed, path, std::strerror(errno));
  file.clear();
  return file;
}

void makeFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw Error(ExitCode::kOutput, "cannot create folder", folder, error.message());
}

OutputFile::OutputFile(const fs::path& path) : path_(path), target_(path), file_(stdout) {
  if (path == "-") return;
  std::error_code error;
  if (fs::is_symlink(path, error)) {
    target_ = fs::weakly_canonical(path, error);
    if (error) fail(error);
  }
  const bool exists = fs::exists(target_, error);
  if (exists && !fs::is_regular_file(target_, error)) {
    file_ = std::fopen(toName(target_).c_str(), "wb");
  } else {
    std::random_device random;
    fs::path name = target_;
    name += '.' + std::to_string(random()) + std::to_string(random()) + ".part";
    file_ = openNew(name, exists ? 0600 : 0666);
    if (file_) {
      unfinished_ = name;
      unfinishedName = unfinished_.c_str();
      replaces_ = !exists || copyOwnerAndMode(file_, target_);
    }
  }
  unfinishedFile = file_;
  if (!file_) fail(lastError());
}

OutputFile::~OutputFile() {
  if (file_ && file_ != stdout) std::fclose(file_);
  std::error_code error;
  if (!unfinished_.empty()) fs::remove(unfinished_, error);
  unfinishedName = nullptr;
}

void OutputFile::write(const void* data, size_t size) {
  if (std::fwrite(data, 1, size, file_) != size) fail(lastError());
}

void OutputFile::finish() {
  // Flush to disk before renaming, so that a system crash leaves either the old or the new file.
  if (std::fflush(file_) != 0 || (!unfinished_.empty() && fsync(fileno(file_)) != 0)) fail(lastError());
  FILE* const file = std::exchange(file_, nullptr);
  if (file != stdout && std::fclose(file) != 0) fail(lastError());
  if (unfinished_.empty()) return;
  std::error_code error;
  if (replaces_) {
    fs::rename(unfinished_, target_, error);
  } else {
    fs::copy_file(unfinished_, target_, fs::copy_options::overwrite_existing, error);
  }
  if (error) fail(error);
  if (!replaces_) fs::remove(unfinished_, error);
  unfinishedName = nullptr;
  unfinished_.clear();
}

void OutputFile::fail(const std::error_code& error) const {
  // On Windows this may be the result of an interrupt, whose handler closed the file: wait for the program to end.
  while (!unfinished_.empty() && !unfinishedName) std::this_thread::yield();
  unfinishedName = nullptr;  // points into this object
  Error failure(ExitCode::kOutput, "cannot write", path_, error.message());
  failure.isDiskFull = error == std::errc::no_space_on_device;
  throw failure;
}

#ifdef _WIN32
void removeUnfinishedFileOnSignals() {
  // The handler runs in a separate thread, and the program ends after it.
  SetConsoleCtrlHandler(
      [](DWORD) -> BOOL {
        if (const wchar_t* const name = unfinishedName.exchange(nullptr)) {
          // An open file cannot be deleted. From here on, writes to it fail.
          if (FILE* const file = unfinishedFile) CloseHandle(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file))));
          DeleteFileW(name);
        }
        return FALSE;
      },
      TRUE);
}
#else
void removeUnfinishedFileOnSignals() {
  std::signal(SIGXFSZ, SIG_IGN);  // the write that exceeds the size limit fails and is reported
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    // Signals that the caller set to be ignored, as nohup does, stay ignored.
    if (std::signal(signal, SIG_IGN) == SIG_IGN) continue;
    std::signal(signal, [](int number) {
      if (const char* const name = unfinishedName) unlink(name);
      // Ending by the signal itself tells shells that the program was interrupted.
      std::signal(number, SIG_DFL);
      std::raise(number);
    });
  }
}
#endif

}  // namespace host
