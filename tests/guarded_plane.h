// Rows of bytes between pages that nobody may touch: one byte read or written beyond them ends the program.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <ostream>
#include <vector>

namespace test {

/// How rows lie in memory.
struct RowLayout {
  enum Distance { kPacked, kPadded, kPageBetween };
  Distance distance = kPacked;  ///< kPageBetween puts forbidden pages between the rows, too
  bool againstEnd = false;      ///< the last byte lies ahead of a forbidden page; otherwise the first one behind one
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
    const int gap = layout.distance == RowLayout::kPacked   ? 0
                    : layout.distance == RowLayout::kPadded ? 12
                                                            : static_cast<int>(pages(rowBytes)) - rowBytes + page();
    const size_t whole = static_cast<size_t>(rowBytes + gap) * static_cast<size_t>(rows - 1) + rowBytes;
    mapped_ = pages(whole) + 2 * page();
    void* const memory = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    memory_ = static_cast<uint8_t*>(memory);
    first_ = memory_ + page() + (layout.againstEnd ? pages(whole) - whole : 0);
    stride_ = rowBytes + gap;
    if (layout.upwards) {
      first_ += static_cast<ptrdiff_t>(stride_) * (rows - 1);
      stride_ = -stride_;
    }
    allow(PROT_READ | PROT_WRITE);
    forEachPage([](uint8_t* at) { std::fill_n(at, page(), kPadding); });
  }
  ~GuardedPlane() { munmap(memory_, mapped_); }
  GuardedPlane(const GuardedPlane&) = delete;
  GuardedPlane& operator=(const GuardedPlane&) = delete;

  uint8_t* data() const { return first_; }
  int stride() const { return stride_; }
  void makeReadOnly() { allow(PROT_READ); }

  void fill(const std::vector<uint8_t>& packed) {
    for (int y = 0; y < rows_; ++y) std::copy_n(packed.begin() + ptrdiff_t{y} * rowBytes_, rowBytes_, row(y));
  }
  std::vector<uint8_t> packed() const {
    std::vector<uint8_t> bytes;
    for (int y = 0; y < rows_; ++y) bytes.insert(bytes.end(), row(y), row(y) + rowBytes_);
    return bytes;
  }
  /// True when the bytes that may be touched and belong to no row are as they were. Spoils the rows.
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
  uint8_t* row(int y) const { return first_ + static_cast<ptrdiff_t>(stride_) * y; }

  // The pages in which rows lie, each at least once.
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

  int rowBytes_, rows_, stride_;
  size_t mapped_;
  uint8_t* memory_;
  uint8_t* first_;
};

}  // namespace test
