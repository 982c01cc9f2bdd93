// Rows of bytes between inaccessible pages: reading or writing one byte outside them crashes the program.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <new>
#include <ostream>

#include "tests/inputs.h"

namespace test {

/// The layout of rows in memory.
struct RowLayout {
  enum Distance { kPacked, kPadded, kPageBetween };
  Distance distance = kPacked;  ///< with kPageBetween, there are inaccessible pages between the rows too
  bool againstEnd = false;      ///< the last byte, rather than the first, is next to an inaccessible page
  bool upwards = false;         ///< a negative stride: the first row has the highest address
};
inline void PrintTo(const RowLayout& layout, std::ostream* out) {
  const char* const names[] = {"packed", "padded", "a page between rows"};
  *out << names[layout.distance] << (layout.againstEnd ? ", against the end" : ", against the start")
       << (layout.upwards ? ", upwards" : "");
}

class GuardedPlane {
 public:
  static constexpr uint8_t kPadding = 0xA5;

  GuardedPlane(int rowBytes, int rows, const RowLayout& layout) : rowBytes_(rowBytes), rows_(rows) {
    const int gaps[] = {0, 12, static_cast<int>(pages(rowBytes)) - rowBytes + page()};
    step_ = rowBytes + gaps[layout.distance];
    const size_t whole = static_cast<size_t>(step_) * static_cast<size_t>(rows - 1) + rowBytes;
    size_ = pages(whole) + 2 * page();
    memory_ = static_cast<uint8_t*>(mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (memory_ == MAP_FAILED) throw std::bad_alloc();
    first_ = memory_ + page() + (layout.againstEnd ? pages(whole) - whole : 0);
    if (layout.upwards) {
      first_ += static_cast<ptrdiff_t>(step_) * (rows - 1);
      step_ = -step_;
    }
    allow(PROT_READ | PROT_WRITE);
    forEachPage([](uint8_t* at) { std::fill_n(at, page(), kPadding); });
  }
  ~GuardedPlane() { munmap(memory_, size_); }
  GuardedPlane(const GuardedPlane&) = delete;

  uint8_t* data() const { return first_; }
  int step() const { return step_; }
  void makeReadOnly() { allow(PROT_READ); }

  void fill(const Bytes& packedRows) {
    for (int y = 0; y < rows_; ++y) std::copy_n(packedRows.begin() + ptrdiff_t{y} * rowBytes_, rowBytes_, row(y));
  }
  Bytes packed() const {
    Bytes bytes;
    for (int y = 0; y < rows_; ++y) bytes.insert(bytes.end(), row(y), row(y) + rowBytes_);
    return bytes;
  }
  /// Returns whether the accessible bytes outside the rows are unchanged. Overwrites the rows.
  bool paddingIntact() {
    for (int y = 0; y < rows_; ++y) std::fill_n(row(y), rowBytes_, kPadding);
    bool intact = true;
    forEachPage([&](const uint8_t* at) { intact &= std::count(at, at + page(), kPadding) == page(); });
    return intact;
  }

 private:
  static int page() {
    static const auto size = static_cast<int>(sysconf(_SC_PAGESIZE));
    return size;
  }
  static size_t pages(size_t bytes) { return (bytes + page() - 1) / page() * page(); }
  uint8_t* row(int y) const { return first_ + static_cast<ptrdiff_t>(step_) * y; }

  // Calls `action` at least once for each page that contains rows.
  template <class Action>
  void forEachPage(const Action& action) const {
    for (int y = 0; y < rows_; ++y) {
      const ptrdiff_t start = row(y) - memory_;
      for (ptrdiff_t at = start / page() * page(); at < start + rowBytes_; at += page()) action(memory_ + at);
    }
  }
  void allow(int access) const {
    forEachPage([&](uint8_t* at) {
      if (mprotect(at, static_cast<size_t>(page()), access) != 0) throw std::bad_alloc();
    });
  }

  int rowBytes_, rows_, step_;
  size_t size_;
  uint8_t *memory_, *first_;
};

}  // namespace test
