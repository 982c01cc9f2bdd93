#include "lut/lut_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef _WIN32
#include <io.h>
#include <windows.h>
#endif

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <ios>
#include <new>

namespace Lumvane {
namespace {

constexpr size_t kBlock = size_t{1} << 16;

#ifdef _WIN32
int openForReading(const std::u16string& path) {
  // Not converted, because names may contain unpaired surrogates.
  return _wopen(std::wstring(path.begin(), path.end()).c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
}

bool isRegular(int descriptor) {
  return GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(descriptor))) == FILE_TYPE_DISK;
}
#else
int openForReading(const std::u16string& path) {
  try {
    // Neither waits for the other end of a pipe nor makes a terminal the host's controlling terminal.
    return open(std::filesystem::path(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  } catch (const std::filesystem::filesystem_error&) {
    return -1;  // an unpaired surrogate has no UTF-8 form: no file can have this name
  }
}

bool isRegular(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}
#endif

// Returns the descriptor, or -1.
int openRegularFile(const std::u16string& path) {
  errno = 0;
  const int descriptor = openForReading(path);
  // Running out of memory does not mean that the file is missing: the next attempt may succeed.
  if (descriptor < 0 && errno == ENOMEM) throw std::bad_alloc();
  if (descriptor < 0 || isRegular(descriptor)) return descriptor;
  close(descriptor);
  return -1;
}

}  // namespace

std::u16string lutExtension(const std::u16string& path) {
  std::u16string extension = path.substr(std::min(path.rfind(u'.'), path.size()));
  for (char16_t& unit : extension) {
    if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - u'a' + u'A');
  }
  return extension;
}

LutFile::LutFile(const std::u16string& path)
    : buffer_(std::make_unique_for_overwrite<char[]>(kBlock)), descriptor_(openRegularFile(path)) {
#ifndef _WIN32
  if (!isOpen() && path.find(u'\\') != std::u16string::npos) {
    std::u16string withSlashes = path;
    std::replace(withSlashes.begin(), withSlashes.end(), u'\\', u'/');
    descriptor_ = openRegularFile(withSlashes);
  }
#endif
}

LutFile::~LutFile() {
  if (isOpen()) close(descriptor_);
}

LutFile::int_type LutFile::underflow() {
  decltype(read(descriptor_, nullptr, 0)) count;
  do {
    count = read(descriptor_, buffer_.get(), kBlock);
  } while (count < 0 && errno == EINTR);
  if (count < 0) throw std::ios_base::failure("a LUT file cannot be read");
  setg(buffer_.get(), buffer_.get(), buffer_.get() + count);
  return count == 0 ? traits_type::eof() : traits_type::to_int_type(*gptr());
}

}  // namespace Lumvane
