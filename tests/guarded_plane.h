// Rows of bytes between pages that nobody may touch: one byte read or written beyond them ends the program.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
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

/// Whole pages of memory from the system, forbidden at first.
class Pages {
 public:
  enum Access { kNone, kRead, kReadAndWrite };

  explicit Pages(size_t bytes)
      : bytes_(bytes), memory_(mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::bad_alloc();
  }
  ~Pages() { munmap(memory_, bytes_); }
  static void allow(void* at, Access access) {
    const int protections[] = {PROT_NONE, PROT_READ, PROT_READ | PROT_WRITE};
    if (mprotect(at, static_cast<size_t>(size()), protections[access]) != 0) throw std::bad_alloc();
  }
  static int size() { return static_cast<int>(sysconf(_SC_PAGESIZE)); }
  Pages(const Pages&) = delete;
  Pages& operator=(const Pages&) = delete;

  uint8_t* data() const { return static_cast<uint8_t*>(memory_); }

 private:
  size_t bytes_;
  void* memory_;
};

class GuardedPlane {
 public:
  static constexpr uint8_t kPadding = 0xA5;

  GuardedPlane(int rowBytes, int rows, const RowLayout& layout) : rowBytes_(rowBytes), rows_(rows) {
    const int gap = layout.distance == RowLayout::kPacked   ? 0
                    : layout.distance == RowLayout::kPadded ? 12
                                                            : static_cast<int>(pages(rowBytes)) - rowBytes + page();
    const size_t whole = static_cast<size_t>(rowBytes + gap) * static_cast<size_t>(rows - 1) + rowBytes;
    memory_ = std::make_unique<Pages>(pages(whole) + 2 * page());
    first_ = memory_->data() + page() + (layout.againstEnd ? pages(whole) - whole : 0);
    stride_ = rowBytes + gap;
    if (layout.upwards) {
      first_ += static_cast<ptrdiff_t>(stride_) * (rows - 1);
      stride_ = -stride_;
    }
    allow(Pages::kReadAndWrite);
    forEachPage([](uint8_t* at) { std::fill_n(at, page(), kPadding); });
  }

  uint8_t* data() const { return first_; }
  int step() const { return stride_; }
  void makeReadOnly() { allow(Pages::kRead); }

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
    static const int size = Pages::size();
    return size;
  }
  static size_t pages(size_t bytes) { return (bytes + page() - 1) / page() * page(); }
  uint8_t* row(int y) const { return first_ + static_cast<ptrdiff_t>(stride_) * y; }

  // The pages in which rows lie, each at least once.
  template <class Action>
  void forEachPage(const Action& action) const {
    for (int y = 0; y < rows_; ++y) {
      const ptrdiff_t start = row(y) - memory_->data();
      for (ptrdiff_t at = start / page() * page(); at < start + rowBytes_; at += page()) action(memory_->data() + at);
    }
  }
  void allow(Pages::Access access) const {
    forEachPage([&](uint8_t* at) { Pages::allow(at, access); });
  }

  int rowBytes_, rows_, stride_;
  std::unique_ptr<Pages> memory_;
  uint8_t* first_;
};

}  // namespace test
