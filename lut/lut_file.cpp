#include "lut/lut_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>

namespace Lumvane {
namespace {

void openAsItStands(std::ifstream& stream, const std::u16string& path) {
  try {
    errno = 0;
#ifdef _WIN32
    // Unit by unit, without a conversion: names there may hold halves of surrogate pairs.
    const std::filesystem::path name(std::wstring(path.begin(), path.end()));
#else
    const std::filesystem::path name(path);
#endif
    stream.open(name, std::ios::binary);
    // Memory that has run out is no missing file: the next try may find it.
    if (!stream.is_open() && errno == ENOMEM) throw std::bad_alloc();
  } catch (const std::filesystem::filesystem_error&) {
    // Half a surrogate pair has no UTF-8 form: no file can have this name.
  }
}

}  // namespace

std::u16string lutExtension(const std::u16string& path) {
  std::u16string extension = path.substr(std::min(path.rfind(u'.'), path.size()));
  for (char16_t& unit : extension) {
    if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - u'a' + u'A');
  }
  return extension;
}

std::ifstream openLutFile(const std::u16string& path) {
  std::ifstream stream;
  openAsItStands(stream, path);
#ifndef _WIN32
  if (!stream.is_open() && path.find(u'\\') != std::u16string::npos) {
    std::u16string withSlashes = path;
    std::replace(withSlashes.begin(), withSlashes.end(), u'\\', u'/');
    openAsItStands(stream, withSlashes);
  }
#endif
  return stream;
}

}  // namespace Lumvane
